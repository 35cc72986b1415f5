/// Ids and names from a database, for completions.
///
/// Part of the command.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tools/spc/completion.h"

namespace spc {

/// What the words before the cursor said.
struct Said {
  Place place;
  std::map<std::string_view, std::string> values;  ///< of options and arguments by their names
};

/// The values of this kind in the database that begin as typed. Whatever fails, there are none; no database is made.
std::vector<Candidate> database_values(Offers offers, const std::string& typed, const Said& said);

}  // namespace spc
