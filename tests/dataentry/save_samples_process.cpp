// The helper program of the data-entry tests: what a process of its own does.
//
//   announce                              prints the numbers of three announced samples of two helpers
//   save CONNECT PROFILE COUNT SEED       saves samples on a profile with one number of 5 pieces and a dynamic label,
//                                         each in a transaction, and prints their numbers
#include <cstdlib>
#include <iostream>
#include <string>

#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/testkit/reference_engine.h"
#include "tests/support/grid.h"

namespace {

void announce() {
  oldde::DEHelper first;
  oldde::DEHelper second;
  for (oldde::DEHelper* helper : {&first, &second, &first})
    std::cout << helper->new_sample(nullptr, nullptr, 0.0, 1, 0, true, "") << ' ';
  std::cout << '\n';
}

/// One sample in one transaction, from the beginning again after a deadlock.
long save_one(CDatabaseEx& db, oldde::DEHelper& helper, int profile, int number, int seed) {
  test_support::TestGrid grid(2, 5);
  for (LONG row = 0; row < 5; ++row)
    grid.put(0, row, _variant_t(seed * 1000.0 + number + row / 10.0));
  grid.put(1, 0, _variant_t(("supplier " + std::to_string(number % 7)).c_str()));
  for (int attempt = 1;; ++attempt) {
    long sample = 0;
    const auto saved = guarded([&] {
      AutoODBCTransaction transaction(db, true);
      helper.set_data(reference_engine::make(db), db, &sample, profile, 0, 1, 1, "anna", grid.pointer(), nullptr);
      transaction.commit();
    });
    if (saved.ok()) return sample;
    if (saved.failure().may_retry() && attempt < 20) continue;
    std::cerr << saved.failure().text.GetString() << '\n';
    std::exit(1);
  }
}

void save(const char* connect, int profile, int count, int seed) {
  CDatabaseEx db;
  db.OpenEx(connect);
  oldde::DEHelper helper;
  for (int number = 0; number < count; ++number)
    std::cout << save_one(db, helper, profile, number, seed) << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode == "announce") {
    announce();
    return 0;
  }
  if (mode == "save" && argc == 6) {
    save(argv[2], std::atoi(argv[3]), std::atoi(argv[4]), std::atoi(argv[5]));
    return 0;
  }
  std::cerr << "unknown job\n";
  return 2;
}
