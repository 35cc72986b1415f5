/// The payloads that can be read and written by name.
///
/// Part of the command.
#pragma once

#include <string>

#include "spcbase/platform/database/database.h"

namespace spc {

/// One kind of payload.
struct PayloadKind {
  const char* name;       ///< on the command line
  const char* object;     ///< "monitor"
  const char* table;      ///< of the objects
  const char* id_column;  ///< of that table
  std::string (*read)(CDatabase& db, int max_size, int id);
  void (*write)(CDatabase& db, int max_size, int id, const std::string& bytes);
};

/// Fails: Problem that names the kinds there are.
const PayloadKind& find_payload_kind(const std::string& name);

/// Whether the object itself is there.
bool object_exists(CDatabase& db, const PayloadKind& kind, int id);

}  // namespace spc
