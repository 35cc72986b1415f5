/// Sets a variable of the environment for a scope.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace test_support {

/// Sets a variable and gives its former value back at the end.
class EnvironmentGuard {
 public:
  [[nodiscard]] EnvironmentGuard(std::string name, const std::string& value) : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str())) old_ = old;
    setenv(name_.c_str(), value.c_str(), 1);
  }
  ~EnvironmentGuard() {
    if (old_) {
      setenv(name_.c_str(), old_->c_str(), 1);
    } else {
      unsetenv(name_.c_str());
    }
  }
  EnvironmentGuard(const EnvironmentGuard&) = delete;
  EnvironmentGuard& operator=(const EnvironmentGuard&) = delete;

 private:
  std::string name_;
  std::optional<std::string> old_;
};

}  // namespace test_support
