/// Turns the literals of a condition into parameters, so that conditions which differ in values alone share one
/// statement.
///
/// Part of the database platform layer.
///
///     [SAMPID] = 17 AND NAME='O''Hara'     becomes     [SAMPID] = ? AND NAME=?     with 17 and O'Hara
///
/// In a text literal a doubled apostrophe is one apostrophe and nothing else is special: a backslash or a quote in a
/// name can never change a statement, whatever the server's own rules for literals are. What only looks like a value
/// stays as it stands: quoted names, comments, {ts '...'} and its kin, typed literals (DATE '...', N'...', X'...'),
/// widths of types (DECIMAL(10,2)), positions behind ORDER BY and GROUP BY, the character behind ESCAPE.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/platform/database/session.h"

namespace spcdb {

/// One `?` of a lifted text: a literal that was lifted, or a parameter of the host.
struct LiftedSlot {
  enum class Source : unsigned char { integer, real, text, unescaped_text, host };
  Source source = Source::host;
  std::int64_t integer = 0;
  double real = 0;
  std::size_t offset = 0;  ///< of a text: in the given text, or in `unescaped`
  std::size_t length = 0;
};

/// What lifting found. Kept and reused, so that lifting allocates nothing once it is warm.
struct LiftedLiterals {
  std::vector<LiftedSlot> slots;
  std::string unescaped;  ///< texts in which an apostrophe was doubled
  bool any_lifted = false;

  void clear() {
    slots.clear();
    unescaped.clear();
    any_lifted = false;
  }
  /// The value of a slot that is not the host's; `given` is the text that was lifted.
  Parameter value_of(const LiftedSlot& slot, std::string_view given) const;
};

/// Where lifting begins.
enum class LiftFrom : unsigned char {
  beginning,  ///< the text is a condition
  where,      ///< the text is a whole SELECT: literals in front of its WHERE are a part of its shape
};

/// Appends the shape of `given` to `shape` and the slots to `literals` (offsets count from the start of `given`).
void lift_literals(std::string_view given, LiftFrom from, std::string& shape, LiftedLiterals& literals);

/// Replaces square brackets around names by a server's quote characters; literals and comments stay as they are.
std::string quote_names(std::string_view sql, char quote_open, char quote_close);

/// Doubles the backslashes inside text literals, for a server on which a backslash in a literal escapes.
std::string double_literal_backslashes(std::string_view sql);

}  // namespace spcdb
