#include "tools/spc/source_rows.h"

#include <algorithm>

#include "spcbase/datasource/definition.h"
#include "spcbase/foundation/access_predicate.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/schema/column_table.h"
#include "spcbase/time/calendar.h"
#include "spcbase/utility/text.h"
#include "tools/spc/moments.h"
#include "tools/spc/problem.h"
#include "tools/spc/viewer.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

class Rows : public TableRecordset<Rows> {
 public:
  using TableRecordset::TableRecordset;
  long exdbid = 0;
  CString name;
  CString descr;
  CString type;
  long flg1 = 0;
  long flg2 = 0;
  TIMESTAMP_STRUCT mtime{};
  CString vflg;
  static constexpr const char* source = "[CSEXDB]";
  static constexpr auto columns =
      coltab::table(coltab::key("[EXDBID]", &Rows::exdbid), coltab::field("[NAME]", &Rows::name, 255),
                    coltab::field("[DESCR]", &Rows::descr, 255), coltab::field("[TYPE]", &Rows::type, 255),
                    coltab::field("[FLG1]", &Rows::flg1), coltab::field("[FLG2]", &Rows::flg2),
                    coltab::field("[MTIME]", &Rows::mtime), coltab::field("[VFLG]", &Rows::vflg, 255));
};

std::string local_time(const TIMESTAMP_STRUCT& utc) {
  SYSTEMTIME moment{static_cast<WORD>(utc.year),
                    utc.month,
                    0,
                    utc.day,
                    utc.hour,
                    utc.minute,
                    utc.second,
                    static_cast<WORD>(utc.fraction / 1'000'000U)};
  return to_local(moment) ? moment_text(COleDateTime(moment).m_dt) : std::string();
}

std::string plain_name(const CString& name) { return std::string(fix_spc_name(name, false).view()); }

SourceRow taken(Rows& row) {
  SourceRow source;
  source.id = static_cast<int>(row.exdbid);
  source.kind = static_cast<int>(row.flg1);
  source.name = plain_name(row.name);
  source.description = row.IsFieldNull(&row.descr) ? "" : std::string(row.descr.view());
  source.type = row.IsFieldNull(&row.type) ? "" : std::string(row.type.view());
  source.flag = static_cast<int>(row.flg2);
  if (!row.IsFieldNull(&row.mtime)) source.modified = local_time(row.mtime);
  source.removed = !row.IsFieldNull(&row.vflg);
  return source;
}

std::vector<const SourceRow*> named(const std::vector<SourceRow>& rows, const std::string& name, bool removed) {
  std::vector<const SourceRow*> found;
  for (const auto& row : rows)
    if (row.removed == removed && row.name == name) found.push_back(&row);
  return found;
}

[[noreturn]] void refuse_ambiguous(const std::vector<const SourceRow*>& found, const std::string& what) {
  std::vector<std::string> ids;
  for (const auto* row : found)
    ids.push_back(std::to_string(row->id));
  throw Problem{what, "several data sources have this name: " + either(ids),
                "Give the number of the one that is meant.", exit_failed};
}

}  // namespace

std::string kind_name(int kind) {
  if (kind == OLEDBInfo::kind) return "OLE DB";
  if (kind == ADONETDBInfo::kind) return "ADO.NET";
  return "unknown (" + std::to_string(kind) + ")";
}

int kind_of_word(const std::string& word) {
  if (word == "oledb") return OLEDBInfo::kind;
  if (word == "adonet") return ADONETDBInfo::kind;
  throw Problem{"cannot read the command line", "there is no kind " + word, "The kinds are oledb and adonet.",
                exit_misuse};
}

const char* word_of_kind(int kind) { return kind == ADONETDBInfo::kind ? "adonet" : "oledb"; }

std::string described(const SourceRow& row) { return "data source " + std::to_string(row.id) + " " + row.name; }

void write_source_row(JsonWriter& json, const SourceRow& row) {
  json.key("id").value(row.id);
  json.key("kind").value(kind_name(row.kind));
  json.key("name").value(row.name);
  json.key("description").value(row.description);
  json.key("type").value(row.type);
  json.key("flag").value(row.flag);
  json.key("modified").value(row.modified);
  json.key("removed").value(row.removed);
}

std::vector<SourceRow> read_source_rows(Link& link, int as_user, const std::string& what) {
  check_viewer(link, as_user);
  return doing(what, [&] {
    Rows row(&link.db());
    if (as_user != 0) row.m_strFilter = access_predicate::fill(access_predicate::data_sources, "[EXDBID]", as_user);
    row.m_strSort = "[EXDBID]";
    if (!row.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly)) throw_can_not_open_rs_exception();
    std::vector<SourceRow> rows;
    for (; row.m_bEOF == FALSE; row.MoveNext())
      rows.push_back(taken(row));
    return rows;
  });
}

const SourceRow& find_source(const std::vector<SourceRow>& rows, const std::string& id_or_name,
                             const std::string& what) {
  if (const int id = plain_number(id_or_name); id >= 0)
    if (const auto found = std::ranges::find(rows, id, &SourceRow::id); found != rows.end()) return *found;
  const std::string name = plain_name(CString(id_or_name));
  for (const bool removed : {false, true}) {
    const auto found = named(rows, name, removed);
    if (found.size() > 1) refuse_ambiguous(found, what);
    if (found.size() == 1) return *found.front();
  }
  throw Problem{what, "there is no data source " + id_or_name,
                "spc source list shows those that there are; large and small letters differ."};
}

}  // namespace spc
