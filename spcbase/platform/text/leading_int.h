/// The number that a text begins with.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

namespace platform {

/// Reads as `atoi` does: white space, one sign, digits; what follows is passed over, and no digits give 0. A number
/// beyond 32 bits gives the nearest one that fits, where `atoi` leaves it open.
constexpr std::int32_t leading_int(std::string_view text) noexcept {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r')))
    ++i;
  const bool negative = i < text.size() && text[i] == '-';
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) ++i;
  constexpr std::int64_t beyond = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
  std::int64_t number = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9' && number < beyond; ++i)
    number = number * 10 + (text[i] - '0');
  if (number > beyond) number = beyond;
  if (negative) return static_cast<std::int32_t>(-number);
  return static_cast<std::int32_t>(number < beyond ? number : beyond - 1);
}

}  // namespace platform
