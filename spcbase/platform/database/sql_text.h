/// What the sessions need to know about the text of a statement.
///
/// Part of the database platform layer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace spcdb {

/// The position behind the literal, quoted name or comment that begins at `start`, or `start` itself when none begins
/// there. A doubled quote stays inside; what is never closed ends with the text.
std::size_t skip_quoted(std::string_view sql, std::size_t start) noexcept;

/// Rewrites {ts '...'}, {d '...'} and {t '...'} outside of literals, names and comments as plain text literals; the
/// first two in the form in which moments are stored, so that they compare with them.
/// Fails: CDBException* (22007) for a {ts} or {d} that holds no moment.
std::string translate_odbc_escapes(std::string_view sql);

/// How many characters a UTF-8 text has.
std::size_t count_characters(std::string_view utf8) noexcept;

}  // namespace spcdb
