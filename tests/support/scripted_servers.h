/// What the drivers of servers that no test machine has answer about names and grammar: scripts for a scripted session.
///
///     test_support::open_scripted(database, test_support::sql_server("10.50.6000"));
#pragma once

#include <memory>
#include <string>

#include "spcbase/platform/database/database.h"
#include "spcbase/testkit/scripted_session.h"

namespace test_support {

/// The answers that differ from driver to driver.
struct ServerFacts {
  std::string name;
  std::string version;
  std::string quote = "\"";
  std::string has_catalogs = "Y";
  std::string catalog_separator = ".";
  unsigned catalog_usage = 31;
  unsigned schema_usage = 31;
  unsigned odbc_grammar = 1;
  unsigned sql_grammar = 1;
  std::string integrity = "Y";
};

inline std::shared_ptr<Script> script_of(const ServerFacts& facts) {
  auto script = std::make_shared<Script>();
  script->information_text(17, 0, facts.name)
      .information_text(18, 0, facts.version)
      .information_text(29, 0, facts.quote)
      .information_text(41, 0, facts.catalog_separator)
      .information_text(73, 0, facts.integrity)
      .information_text(10003, 0, facts.has_catalogs)
      .information(15, 0, facts.odbc_grammar)
      .information(91, 0, facts.schema_usage)
      .information(92, 0, facts.catalog_usage)
      .information(118, 0, facts.sql_grammar);
  return script;
}

inline ServerFacts sql_server(const std::string& version) { return {"Microsoft SQL Server", version}; }

inline ServerFacts oracle() {
  ServerFacts facts{"Oracle", "19.00.0000"};
  facts.has_catalogs = "N";
  facts.catalog_separator = "";  // "@" goes before a link, behind the table
  facts.catalog_usage = 0;
  return facts;
}

inline ServerFacts access() {
  ServerFacts facts{"ACCESS", "04.00.0000", "`"};
  facts.schema_usage = 0;
  facts.odbc_grammar = 0;
  facts.sql_grammar = 0;
  facts.integrity = "N";
  return facts;
}

inline void open_scripted(CDatabase& database, std::shared_ptr<Script> script) {
  database.adopt_session(std::make_unique<ScriptedSession>(std::move(script)));
}

inline void open_scripted(CDatabase& database, const ServerFacts& facts) { open_scripted(database, script_of(facts)); }

}  // namespace test_support
