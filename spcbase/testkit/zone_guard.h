/// Sets the current zone for a scope.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace test_support {

/// Sets `TZ` and gives its former value back at the end; a null name takes `TZ` away. The zone is the whole process's:
/// no other thread may look at the environment meanwhile.
class ZoneGuard {
 public:
  /// Sets the zone: a name as tzdata has it.
  [[nodiscard]] explicit ZoneGuard(const char* name) {
    if (const char* old = std::getenv("TZ")) old_ = old;
    set(name);
  }
  ~ZoneGuard() { set(old_ ? old_->c_str() : nullptr); }
  ZoneGuard(const ZoneGuard&) = delete;
  ZoneGuard& operator=(const ZoneGuard&) = delete;

 private:
  static void set(const char* name) {
    if (name) {
      setenv("TZ", name, 1);
    } else {
      unsetenv("TZ");
    }
    tzset();  // for C's own functions; the library looks at TZ each time
  }

  std::optional<std::string> old_;
};

}  // namespace test_support
