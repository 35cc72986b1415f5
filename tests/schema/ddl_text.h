/// The whole DDL of a server as one text, as the golden files in tests/data/ddl hold it.
#pragma once

#include <string>

#include "schema/ddl.h"

inline std::string whole_ddl(schema::Server server) {
  std::string text;
  for (const std::string& statement : schema::create_statements(server))
    text += statement + ";\n";
  text += "\n";
  for (const std::string& statement : schema::drop_statements(server))
    text += statement + ";\n";
  return text;
}
