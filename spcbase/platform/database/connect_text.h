/// Connect texts: KEY=value pairs parted by semicolons, a value with special characters standing in {braces}.
///
/// Part of the database platform layer, for the library's own use: all but `mask_password_in_connect_text` is not
/// exported.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/platform/system/export.h"

namespace spcdb {

/// One pair of a connect text.
struct ConnectItem {
  std::string key;              ///< as given, without blanks around it
  std::string value;            ///< without braces; a doubled closing brace is one
  std::size_t value_begin = 0;  ///< where the value stands in the text, braces included
  std::size_t value_end = 0;
  bool closed = true;  ///< false: an opening brace was never closed
};

/// Takes a connect text apart. A word without "=" is a pair with an empty key. Never fails.
std::vector<ConnectItem> parse_connect_text(std::string_view text);

/// The pair of a key, whatever its case; null when there is none.
const ConnectItem* find_item(const std::vector<ConnectItem>& items, std::string_view key);

/// Whether two words are equal but for the case of ASCII letters.
bool same_word(std::string_view a, std::string_view b) noexcept;

/// What `mask_passwords` gives.
struct MaskedConnectText {
  std::string text;  ///< the text with each secret as "***"
  /// What was hidden: each value as it stood, and as what it may be read for without quotes and braces. Never empty
  /// when there was a password key.
  std::vector<std::string> passwords;
};

/// Replaces the value of every password key (PWD, Password, ...) by ***, an empty one too, with its quotes or braces.
/// Reads the spellings of ODBC, OLE DB and ADO.NET and pairs inside of quoted values. Where quotes or braces do not
/// come out even, everything from the first password on is hidden. Masking what was masked changes nothing.
MaskedConnectText mask_passwords(std::string_view text);
/// Replaces in a message whatever `mask_passwords` hides in a connect text: drivers repeat what they were given. A
/// password of one or two letters is hidden where it is a word, so that the message can still be read.
std::string mask_passwords_in_message(std::string_view message, std::string_view connect_text);
/// A connect text that may be shown.
SPCBASE_API std::string mask_password_in_connect_text(std::string_view text);

}  // namespace spcdb
