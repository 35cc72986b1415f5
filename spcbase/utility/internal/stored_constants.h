/// The constants that hidden and enciphered texts depend on. They belong to the stored format
/// (docs/formats/protected_texts.md): changing one makes every stored text unreadable.
///
/// Part of utilities, for the library's own use.
#pragma once

#include <string_view>

namespace stored_constants {

/// The key of `encode_str` and `decode_str` when the caller gives none.
inline constexpr char default_key[] = "q7#Xe";

/// The letter for each hexadecimal digit. No digit is among them, so that a hidden text is never taken for plain
/// hexadecimal.
inline constexpr std::string_view digit_letters = "GHJKLMNPQRSTVWXZ";

/// What `TextCipher` hashes ahead of the key text, or sets as salt on the key.
inline constexpr std::string_view cipher_salt_text = "Kq7#vL2!xZp";
/// What `TextCipher` sets as initial vector on the key.
inline constexpr std::string_view cipher_iv_text = "b8R$w1Ne";

constexpr bool all_differ(std::string_view letters) {
  for (std::size_t i = 0; i < letters.size(); ++i)
    if (letters.find(letters[i], i + 1) != std::string_view::npos) return false;
  return true;
}

static_assert(std::string_view(default_key).size() == 5);
static_assert(digit_letters.size() == 16 && all_differ(digit_letters));
static_assert(cipher_salt_text.size() == 11);
static_assert(cipher_iv_text.size() == 8);

}  // namespace stored_constants
