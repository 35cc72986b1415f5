/// Runs a helper program, for what only processes of their own show.
#pragma once

#include <string>
#include <vector>

namespace test_support {

/// A helper program that runs.
class HelperProcess {
 public:
  /// Starts it with these arguments. Fails: std::runtime_error.
  [[nodiscard]] HelperProcess(const std::string& program, const std::vector<std::string>& arguments);
  ~HelperProcess();
  HelperProcess(HelperProcess&& other) noexcept;
  HelperProcess& operator=(HelperProcess&&) = delete;
  HelperProcess(const HelperProcess&) = delete;
  HelperProcess& operator=(const HelperProcess&) = delete;

  /// Waits for its end; gives what it printed. Fails: std::runtime_error when it did not end well, with its output.
  std::string finish();

 private:
  int pid_ = -1;
  int output_ = -1;
};

}  // namespace test_support
