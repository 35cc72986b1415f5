/// Numbers as texts, for sessions that find a number where a text is wanted or the other way round.
///
/// Part of the database platform layer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "spcbase/platform/system/export.h"

namespace spcdb {

/// How a value fits a whole number of 64 bits.
enum class Whole : unsigned char { yes, no_whole_number, too_large };

/// Reads a whole number; "12.0" is one. `value` is left alone unless the answer is `yes`.
SPCBASE_API Whole read_whole(std::string_view text, std::int64_t& value) noexcept;
SPCBASE_API Whole read_whole(double real, std::int64_t& value) noexcept;

/// Reads a number; false when the text is anything else.
SPCBASE_API bool read_real(std::string_view text, double& value) noexcept;

/// Writes a number in the fewest digits that give it back exactly.
SPCBASE_API void write_number(std::string& text, std::int64_t value);
SPCBASE_API void write_number(std::string& text, double value);

/// Whether a text has more than `width` characters of UTF-8.
SPCBASE_API bool is_wider(std::string_view text, int width) noexcept;

/// Raise the failures of a value that does not fit what is read, naming its column.
[[noreturn]] SPCBASE_API void refuse_value(const std::string& column, const char* sqlstate, const char* wanted);
[[noreturn]] SPCBASE_API void refuse_whole(const std::string& column, Whole why);
[[noreturn]] SPCBASE_API void refuse_width(const std::string& column, int width);
/// Of bytes that do not fit their buffer.
[[noreturn]] SPCBASE_API void refuse_size(const std::string& column, std::size_t length_bytes, int room_bytes);
[[noreturn]] void refuse_nan();
[[noreturn]] void refuse_moment();

}  // namespace spcdb
