/// Connection strings of outside databases and the passwords in them.
///
/// Part of the command. Two spellings: ODBC's puts a value with special characters in {braces}, that of OLE DB and
/// ADO.NET in "quotes". What reads them back is the driver or provider.
#pragma once

#include <string>
#include <string_view>

namespace spc {

enum class Spelling : unsigned char { odbc, quotes };

/// ODBC's for a text that names a driver or a data source and no OLE DB provider, else the other one.
Spelling spelling_of(std::string_view connection_string);

/// Whether it names an SQLite file, which has no password.
bool names_sqlite_file(std::string_view connection_string);

/// Whether a password stands in it.
bool holds_password(const std::string& connection_string);

/// A value as it stands behind its key, in braces or quotes where it must.
std::string written_value(std::string_view value, Spelling spelling);

/// The text with this password: in the place of the one that it has (of all, when it has several), else at the end.
std::string with_password(const std::string& connection_string, std::string_view password);

/// The text with "***" for its passwords.
std::string shown_connection(const std::string& connection_string);

/// Whether a text has a word for a password in it.
bool speaks_of_password(std::string_view text);

}  // namespace spc
