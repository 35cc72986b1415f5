#include "spcbase/platform/datetime/clock.h"

namespace platform {

namespace {

thread_local const HeldClock* held = nullptr;

}  // namespace

Moment now() noexcept { return held ? held->moment() : std::chrono::system_clock::now(); }

HeldClock::HeldClock(Moment moment) noexcept : moment_(moment), outer_(held) { held = this; }

HeldClock::~HeldClock() { held = outer_; }

}  // namespace platform
