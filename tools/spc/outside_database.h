/// The database that a definition leads to: opened, asked, closed again.
///
/// Part of the command.
#pragma once

#include <string>

#include "tools/spc/source_definition.h"
#include "tools/spc/terminal.h"

namespace spc {

/// What there is behind a definition.
struct OutsideDatabase {
  std::string server;  ///< name and version of server and driver
  double connecting_ms = 0;
  double asking_ms = 0;
};

/// Opens the outside database for reading over ODBC, or as an SQLite file, and lets the definition learn its facts.
/// Fails: Problem with the driver's own text, in which no password stands.
OutsideDatabase learn_from_outside(Definition& definition, const Terminal& terminal, const std::string& what);

}  // namespace spc
