/// A test of `spc source` on a database with the schema, at which nobody sits.
#pragma once

#include <string>
#include <vector>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace command_test {

class OnSources : public OnDatabase {
 protected:
  /// `spc source ...`, the password on file descriptor 3 for those who read it.
  Answer source(std::vector<std::string> arguments, const std::string& password = "secret") {
    arguments.insert(arguments.begin(), {"--connect", database().connect_text(), "source"});
    return run_with_line(arguments, password);
  }
  json_check::Value source_json(std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    return json_check::parse(source(arguments).out);
  }
  Answer add(const std::string& name, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"add", name});
    return source(more);
  }
  /// A data source that leads to the database under test itself, through its ODBC driver.
  Answer add_live(const std::string& name, std::vector<std::string> more = {}) {
    more.insert(more.end(), {"--connection-string", database().raw_odbc_text(), "--allow-password-in-arguments"});
    return add(name, more);
  }
  /// Stores a text in the place of a definition.
  void put_definition(int id, const std::string& xml) {
    std::string hex;
    for (const char c : xml) {
      constexpr const char* digits = "0123456789ABCDEF";
      hex += digits[static_cast<unsigned char>(c) >> 4U];
      hex += digits[static_cast<unsigned char>(c) & 0xFU];
    }
    execute("UPDATE CSEXDB SET DATA = X'" + hex + "' WHERE EXDBID = " + std::to_string(id));
  }
  std::string definition(int id) {
    return value("SELECT " + std::string(kind() == test_support::ServerKind::sqlite ? "CAST(DATA AS TEXT)" : "DATA") +
                 " FROM CSEXDB WHERE EXDBID = " + std::to_string(id));
  }
};

}  // namespace command_test
