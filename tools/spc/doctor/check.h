/// What `spc doctor` looks for, as data: each check is an entry in one of the lists below.
///
/// Part of the command. A check names its faulty rows by conditions in SQL that every server understands (names in
/// brackets, NOT EXISTS, no limits, no functions), so that the server counts and only answers travel; what SQL alone
/// cannot tell is looked for by a function. Nothing here changes anything.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace spc::doctor {

class Examination;

enum class Severity : unsigned char {
  error,    ///< data are lost, hidden or refused
  warning,  ///< something is not as it should be, and may become an error
  note,     ///< worth knowing
};

/// "error", "warning", "note".
const char* word_of(Severity severity);

/// Rows that are faults: those of a table that meet a condition.
struct Query {
  std::string table;        ///< named in the finding
  std::string id;           ///< the column whose values it names
  std::string condition;    ///< may be empty when `source` holds nothing but faults
  std::string source = {};  ///< what is asked instead of the table: a SELECT in brackets with a name behind it
};

/// One kind of finding.
struct Check {
  const char* name;
  Severity severity;
  const char* meaning;
  const char* advice;
  std::vector<Query> queries = {};
  void (*look)(Examination& examination) = nullptr;  ///< null when the queries tell all
  const char* looked_at = "";                        ///< the tables that `look` reads, "CSOBJREV"; else empty

  /// The tables of a finding, each once: "CSMINN, CSPINN".
  std::string tables() const;
};

std::vector<Check> schema_checks();
std::vector<Check> server_checks();
std::vector<Check> number_checks();
std::vector<Check> revision_checks();
std::vector<Check> tree_checks();
std::vector<Check> profile_checks();
std::vector<Check> sample_checks();
std::vector<Check> stored_checks();

/// All of them, in the order in which they run. Made once.
const std::vector<Check>& all_checks();

/// The check of that name, or null.
const Check* find_check(std::string_view name);

/// The rows whose reference leads to no row.
Query without_parent(const std::string& table, const std::string& id, const std::string& column,
                     const std::string& parent, const std::string& parent_column);
/// The same, named by the reference.
Query without_parent(const std::string& table, const std::string& column, const std::string& parent);

}  // namespace spc::doctor
