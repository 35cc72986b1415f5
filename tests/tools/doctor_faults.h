/// Faults for `spc doctor` to find: what each plants, and what is to be found then.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "spcbase/testkit/database_fixture.h"
#include "tools/spc/doctor/examination.h"

namespace doctor_test {

/// A finding: its name, its table and what it names.
struct Found {
  std::string name;
  std::string table;
  std::vector<std::string> ids;

  friend auto operator<=>(const Found&, const Found&) = default;
};
std::ostream& operator<<(std::ostream& out, const Found& found);

/// A fault of one kind.
struct Fault {
  Found found;
  std::vector<std::string> statements;
  bool against_foreign_key = false;
};
std::ostream& operator<<(std::ostream& out, const Fault& fault);

/// Faults in rows, one or more of each kind. All of them fit into one database.
const std::vector<Fault>& faults_in_rows();

/// A small plant without a fault: a tree, a profile with a sample, revisions, a setting, a data source.
void build_sound_plant(test_support::SchemaDatabase& database);
void plant(test_support::SchemaDatabase& database, const Fault& fault);

/// What all checks find, sorted; each finding names up to `limit` ids.
std::vector<Found> findings_of(const std::string& connect_text, std::size_t limit = 100);
/// The same with one fault, which is taken back again.
std::vector<Found> findings_with(test_support::SchemaDatabase& database, const Fault& fault);
spc::doctor::Audit audit_of(spc::Link& link, const std::vector<std::string>& only = {}, std::size_t limit = 5);

/// Makes an SQLite table anew by its own statement, in which a text is replaced. Its rows are lost.
void remake_sqlite_table(test_support::SchemaDatabase& database, const std::string& table, const std::string& text,
                         const std::string& replacement);

/// All rows of all tables.
std::string dump_of(test_support::SchemaDatabase& database);

}  // namespace doctor_test
