/// Moments as the texts in which databases keep them.
///
/// Part of the database platform layer.
#pragma once

#include <array>
#include <string_view>

#include "spcbase/platform/datetime/timestamp.h"
#include "spcbase/platform/system/export.h"

namespace spcdb {

/// Length of a moment's text: "2024-02-03 04:05:06.123".
inline constexpr std::size_t moment_text_length = 23;

/// Whether a moment names a day of the calendar, years 1 to 9999, and a time of day.
bool is_moment(const TIMESTAMP_STRUCT& moment) noexcept;

/// Writes a moment with three digits of the second; further digits are cut. The moment must be one.
SPCBASE_API std::array<char, moment_text_length> format_moment(const TIMESTAMP_STRUCT& moment) noexcept;

/// Reads "YYYY-MM-DD", alone or with " HH:MM" or "THH:MM", seconds and up to nine digits of the second behind it.
/// False, with `moment` left alone, for anything else.
SPCBASE_API bool parse_moment(std::string_view text, TIMESTAMP_STRUCT& moment) noexcept;

}  // namespace spcdb
