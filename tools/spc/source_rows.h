/// What the rows of CSEXDB tell of data sources without their definitions, so that one that cannot be read is listed
/// and found like any other.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/json.h"
#include "tools/spc/link.h"

namespace spc {

struct SourceRow {
  int id = 0;
  int kind = 0;  ///< `OLEDBInfo::kind`, `ADONETDBInfo::kind`, or what else stands there
  std::string name;
  std::string description;
  std::string type;
  int flag = 0;
  std::string modified;  ///< local time
  bool removed = false;
};

/// "OLE DB", "ADO.NET".
std::string kind_name(int kind);
/// "oledb", "adonet": the kinds on the command line.
/// Fails: Problem for another word.
int kind_of_word(const std::string& word);
const char* word_of_kind(int kind);

/// "data source 3 Warehouse".
std::string described(const SourceRow& row);

/// The members of one row, for an object that is open.
void write_source_row(JsonWriter& json, const SourceRow& row);

/// The rows by id, those that a user may see; user 0 sees all.
/// Fails: Problem.
std::vector<SourceRow> read_source_rows(Link& link, int as_user, const std::string& what);

/// The row of an id or, when no row has it, of a name, which a removed one has only when no live one does.
/// Fails: Problem; also for a name that several have.
const SourceRow& find_source(const std::vector<SourceRow>& rows, const std::string& id_or_name,
                             const std::string& what);

}  // namespace spc
