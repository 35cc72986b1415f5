/// "Now": the one place that reads the system's clock.
///
/// Part of the platform layer; not for hosts. Tests, a host's own too, hold the clock of their thread still with
/// `HeldClock`.
#pragma once

#include <chrono>

#include "spcbase/platform/system/export.h"

namespace platform {

/// A moment in UTC, to the clock's own precision.
using Moment = std::chrono::system_clock::time_point;

/// The present, in UTC.
Moment now() noexcept;

/// Holds the calling thread's "now" at a moment for as long as the object lives. Objects nest; each must end on its
/// thread, the latest first.
class SPCBASE_API HeldClock {
 public:
  /// Holds "now" from here on.
  explicit HeldClock(Moment moment) noexcept;
  ~HeldClock();
  HeldClock(const HeldClock&) = delete;
  HeldClock& operator=(const HeldClock&) = delete;

  /// Moves the held moment on.
  void advance(std::chrono::system_clock::duration by) noexcept { moment_ += by; }
  Moment moment() const noexcept { return moment_; }

 private:
  Moment moment_;
  const HeldClock* outer_;
};

}  // namespace platform
