// A whole host: opens a database, saves a sample of two pieces, all or nothing, and reads it back.
//
//     save_sample 'sqlite:plant.db' PROFILE      the profile has one number for each of two pieces
#include <cstdio>
#include <cstdlib>

#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/ole_safe_array.h"
#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/testkit/reference_engine.h"

namespace {

// The first dimension is the column, the second the row; row r holds piece r + 1.
COleSafeArray make_grid() {
  const DWORD columns_and_rows[] = {1, 2};
  COleSafeArray grid;  // ends the array itself
  grid.Create(VT_VARIANT, 2, columns_and_rows);
  for (LONG row = 0; row < 2; ++row) {
    const LONG place[2] = {0, row};
    const _variant_t value(74.03 + row);
    _com_util::CheckError(SafeArrayPutElement(grid.parray, place, &value));
  }
  return grid;
}

void save_and_read(const char* connect, int profile) {
  CDatabaseEx db;
  db.OpenEx(connect);
  const SPCLib::IQsmSPCPtr engine = reference_engine::make(db);
  oldde::DEHelper helper;

  COleSafeArray grid = make_grid();
  long sample = 0;  // 0 makes a new one
  double date = 0;
  AutoODBCTransaction transaction(db, true);
  helper.set_data(engine, db, &sample, profile, 0, 0, 0, "anna", &grid.parray, &date);
  transaction.commit();

  SAFEARRAY* const read = helper.get_data(engine, db, static_cast<int>(sample), profile, 0, 0, 0, &date);
  const LONG second_piece[2] = {0, 1};
  _variant_t value;
  SafeArrayGetElement(read, second_piece, value.GetAddress());
  SafeArrayDestroy(read);
  std::printf("sample %ld, second piece %.2f\n", sample, static_cast<double>(value));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const auto done = guarded([&] { save_and_read(argv[1], std::atoi(argv[2])); });
  if (!done) std::fprintf(stderr, "%s\n%s\n", done.failure().text.GetString(), done.failure().advice.GetString());
  return done ? 0 : 1;
}
