/// The whole of a database, to be compared with what it is later.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "spcbase/testkit/database_fixture.h"

namespace command_test {

struct Dump {
  std::vector<std::string> schema;                         ///< tables, views, columns and keys
  std::map<std::string, std::vector<std::string>> tables;  ///< the rows of each, in order

  friend bool operator==(const Dump&, const Dump&) = default;
};

/// Reads all of it on a connection of its own. Where numbers that a server gives out stand is not in it.
Dump dump_of(test_support::ServerKind kind, const std::string& connect_text);

/// The number of rows of each table that has some.
std::ostream& operator<<(std::ostream& out, const Dump& dump);

}  // namespace command_test
