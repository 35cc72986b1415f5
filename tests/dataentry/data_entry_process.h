/// Runs the helper program of these tests, for what only a process of its own shows.
#pragma once

#include <string>
#include <vector>

namespace test_support {

/// A helper program that runs.
class DataEntryProcess {
 public:
  /// Starts it with these arguments. Fails: std::runtime_error.
  explicit DataEntryProcess(const std::vector<std::string>& arguments);
  ~DataEntryProcess();
  DataEntryProcess(DataEntryProcess&& other) noexcept;
  DataEntryProcess& operator=(DataEntryProcess&&) = delete;
  DataEntryProcess(const DataEntryProcess&) = delete;
  DataEntryProcess& operator=(const DataEntryProcess&) = delete;

  /// Waits for its end; gives what it printed. Fails: std::runtime_error when it did not end well, with its output.
  std::string finish();

 private:
  int pid_ = -1;
  int output_ = -1;
};

/// Starts it and waits for it.
std::string run_data_entry_process(const std::vector<std::string>& arguments);

}  // namespace test_support
