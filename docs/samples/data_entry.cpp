// Data entry on a database that has the schema: a profile, a sample, its grid again, and the engine's numbers.
//
//     data_entry sqlite:plant.db
#include <cstdio>

#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/error_info.h"
#include "spcbase/platform/automation/ole_safe_array.h"
#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/testkit/plant.h"
#include "spcbase/testkit/reference_engine.h"

namespace {

// Two numbers for each sample, a total of the sample, and a label that each sample has.
int make_profile(CDatabaseEx& db) {
  plant::Builder builder(db);
  const int width = builder.add_characteristic({"Width", "mm", plant::Kind::number, 2});
  const int scratched = builder.add_characteristic({"Scratched", "", plant::Kind::total, 2});
  const int batch = builder.add_label({"Batch", plant::Holds::whole_sample, plant::Values::growing_list});
  return builder.add_profile("Rings", "",
                             {plant::characteristic(width), plant::characteristic(scratched), plant::label(batch)});
}

int make_plain_profile(CDatabaseEx& db) {
  plant::Builder builder(db);
  const int length = builder.add_characteristic({"Length", "mm", plant::Kind::number, 2});
  return builder.add_profile("Pins", "", {plant::characteristic(length)});
}

void put(COleSafeArray& grid, LONG column, LONG row, const _variant_t& value) {
  const LONG place[] = {column, row};
  _com_util::CheckError(SafeArrayPutElement(grid.parray, place, &value));
}

// Columns: the width; failures and size of the total; the batch. Row r holds piece r + 1; what belongs to the whole
// sample stands in the first row. Every other cell stays empty.
COleSafeArray make_grid() {
  const DWORD columns_and_rows[] = {4, 2};
  COleSafeArray grid;  // ends the array itself
  grid.Create(VT_VARIANT, 2, columns_and_rows);
  put(grid, 0, 0, 74.03);
  put(grid, 0, 1, 74.002);
  put(grid, 1, 0, 1L);
  put(grid, 2, 0, 50.0);
  put(grid, 3, 0, "A 17");
  return grid;
}

void print_grid(SAFEARRAY* grid) {
  for (LONG row = 0; row < 2; ++row) {
    for (LONG column = 0; column < 4; ++column) {
      const LONG place[] = {column, row};
      _variant_t cell;
      SafeArrayGetElement(grid, place, cell.GetAddress());
      const CString text(cell.vt == VT_EMPTY ? "-" : static_cast<const char*>(static_cast<_bstr_t>(cell)));
      std::printf("%s%s", text.GetString(), column == 3 ? "\n" : "  ");
    }
  }
}

// Whole or not at all: data entry itself opens no transaction.
long save(const SPCLib::IQsmSPCPtr& engine, CDatabaseEx& db, oldde::DEHelper& helper, int profile) {
  COleSafeArray grid = make_grid();
  long sample = 0;  // 0 makes a new one
  AutoODBCTransaction transaction(db, true);
  helper.set_data(engine, db, &sample, profile, 0, 0, 0, "anna", &grid.parray, nullptr);
  transaction.commit();
  return sample;
}

// The next id of a table, from its counter. The exception takes over what the engine said of a failure.
int next_number(const SPCLib::IQsmSPCPtr& engine, const char* counter) {
  LONG number = 0;
  const HRESULT result = engine->GetNextRunningNumber(_bstr_t(counter), &number);
  if (FAILED(result)) {
    IErrorInfo* said = nullptr;
    GetErrorInfo(0, &said);
    throw _com_error(result, said);
  }
  return number;
}

// A sample is found only under its own profile.
void print_failure(const SPCLib::IQsmSPCPtr& engine, CDatabaseEx& db, oldde::DEHelper& helper, int sample,
                   int profile) {
  const auto read = guarded([&] { SafeArrayDestroy(helper.get_data(engine, db, sample, profile, 0, 0, 0, nullptr)); });
  std::printf("0x%08X %s\n", static_cast<unsigned>(read.failure().code), read.failure().advice.GetString());
}

void run(const char* connect) {
  CDatabaseEx db;
  db.OpenEx(connect);
  const SPCLib::IQsmSPCPtr engine = reference_engine::make(db);
  const int profile = make_profile(db);
  const int other = make_plain_profile(db);

  oldde::DEHelper helper;
  const int sample = static_cast<int>(save(engine, db, helper, profile));
  SAFEARRAY* const grid = helper.get_data(engine, db, sample, profile, 0, 0, 0, nullptr);
  std::printf("sample %d\n", sample);
  print_grid(grid);
  SafeArrayDestroy(grid);
  print_failure(engine, db, helper, sample, other);
  std::printf("the next monitor is %d\n", next_number(engine, "CSMNRN"));
  const auto refused = guarded([&] { return next_number(engine, "CSNONE"); });
  std::printf("%s\n", refused.failure().text.GetString());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const auto done = guarded([&] { run(argv[1]); });
  if (!done) std::printf("%s\n%s\n", done.failure().text.GetString(), done.failure().advice.GetString());
  return done ? 0 : 1;
}
