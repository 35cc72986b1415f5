/// "Now": the one place that reads the system's clock.
///
/// Part of the platform layer; not for hosts, and not exported. Tests hold the clock of their thread still with
/// `HeldClock`.
#pragma once

#include <chrono>

namespace platform {

using Moment = std::chrono::system_clock::time_point;

/// The present, in UTC.
Moment now() noexcept;

/// Holds the calling thread's "now" at a moment for as long as the object lives. Objects nest; each must end on its
/// thread, the latest first.
class HeldClock {
 public:
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
