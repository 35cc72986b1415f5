/// Runs the helper program of these tests, for what only a process of its own shows.
#pragma once

#include <string>
#include <vector>

#include "tests/support/helper_process.h"

namespace test_support {

/// A helper program that runs.
class DataEntryProcess : public HelperProcess {
 public:
  /// Starts it with these arguments. Fails: std::runtime_error.
  explicit DataEntryProcess(const std::vector<std::string>& arguments);
};

/// Starts it and waits for it.
std::string run_data_entry_process(const std::vector<std::string>& arguments);

}  // namespace test_support
