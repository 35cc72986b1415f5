/// Local times that no clock shows, because clocks were put forward over them.
///
/// Part of the platform layer; not for hosts. Local seconds count from 1970-01-01 in local time of the current zone.
#pragma once

#include <cstdint>
#include <optional>

namespace platform {

/// The skipped local times from `begin` up to, not including, `end`: the first one that a clock shows again.
struct LocalGap {
  std::int64_t begin;
  std::int64_t end;
};

/// The gap in which a local time lies; nothing for a time that occurs.
std::optional<LocalGap> gap_around(std::int64_t local_seconds);

}  // namespace platform
