/// What the sessions need to know about the text of a statement.
///
/// Part of the database platform layer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace spcdb {

/// Whether a text holds nothing but blanks, comments and semicolons.
bool is_blank(std::string_view sql) noexcept;

/// Whether a second statement stands behind the first one. The body of a CREATE (of a trigger, say) holds several and
/// is one. `backslash_escapes` tells how literals end.
bool holds_two_statements(std::string_view sql, bool backslash_escapes) noexcept;

/// Rewrites {ts '...'}, {d '...'} and {t '...'} outside of literals, names and comments as plain text literals; the
/// first two in the form in which moments are stored, so that they compare with them.
/// Fails: CDBException* (22007) for a {ts} or {d} that holds no moment.
std::string translate_odbc_escapes(std::string_view sql);

}  // namespace spcdb
