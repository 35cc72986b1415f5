/// Rows as texts, for comparing many of them at once.
#pragma once

#include <string>
#include <vector>

#include "spcbase/testkit/database_fixture.h"

namespace test_support {

/// The rows of a statement, each as its values parted by "|", a null as "NULL".
inline std::vector<std::string> row_texts(SchemaDatabase& database, const std::string& statement) {
  std::vector<std::string> texts;
  for (const auto& row : database.rows(statement)) {
    std::string& text = texts.emplace_back();
    for (std::size_t i = 0; i < row.size(); ++i)
      text += (i == 0 ? "" : "|") + row[i].value_or("NULL");
  }
  return texts;
}

}  // namespace test_support
