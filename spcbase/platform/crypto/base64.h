/// Base64 with the standard alphabet and "=" as padding, without line breaks.
///
/// Part of the platform layer (cryptography).
/// Source: RFC 4648, section 4.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace platform {

/// The length of the text form of so many bytes.
constexpr std::size_t base64_length(std::size_t size_bytes) noexcept { return (size_bytes + 2) / 3 * 4; }
/// How many bytes `decode_base64` needs room for.
constexpr std::size_t base64_room(std::size_t text_length) noexcept { return text_length / 4 * 3; }

/// Writes the text form and a zero: `base64_length` characters and one more must fit into `text`.
void encode_base64(std::span<const unsigned char> bytes, char* text) noexcept;

/// Reads a text form into `bytes`, which must have `base64_room` of its length. Returns the number of bytes.
/// Nothing for a text that `encode_base64` would not have written: another character, white space among them, a length
/// that is no multiple of 4, padding that is missing, misplaced or too long, bits behind the last byte. `bytes` is then
/// of no use.
std::optional<std::size_t> decode_base64(std::string_view text, std::span<unsigned char> bytes) noexcept;

}  // namespace platform
