/// The schema in a database: creating it, and finding what is missing.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/spc/link.h"

namespace spc {

/// What of the schema a database holds.
struct SchemaState {
  std::size_t tables = 0;            ///< that stand
  std::size_t views = 0;             ///< that stand
  std::vector<std::string> present;  ///< their names, in the order of creation
  std::vector<std::string> missing;  ///< "table CSVDAT", "view CSVALUEV", "column CSSAMP.PROFREV"
};

/// Looks for every table, view and column.
/// Fails: Problem when the database cannot be asked.
SchemaState inspect_schema(Link& link);

/// Creates every table and view in a database that holds none of them, all or nothing: what a server will not roll back
/// is dropped again. Returns the number of objects.
/// Fails: Problem; also when something of the schema stands there already, which stays as it is.
std::size_t create_schema(Link& link);

/// What dropping the schema and creating it again send.
std::vector<std::string> renewal_statements(Link& link);

/// Drops the whole schema with everything in it.
void drop_schema(Link& link);

}  // namespace spc
