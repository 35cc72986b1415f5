#include "tools/spc/profile_shape.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/schema.h"
#include "tools/spc/problem.h"
#include "tools/spc/viewer.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

/// The two columns that all three tables share. The name of the table and of its id are given on making.
class NamedRows : public CRecordsetFix {
 public:
  NamedRows(CDatabase* db, const char* table, const char* id_column)
      : CRecordsetFix(db), table_(table), id_column_(id_column) {
    m_nFields = 2;
    m_nDefaultType = snapshot;
  }
  CString GetDefaultSQL() override { return table_; }
  void DoFieldExchange(CFieldExchange* exchange) override {
    exchange->SetFieldType(CFieldExchange::outputColumn);
    RFX_Long(exchange, id_column_, id);
    RFX_Text(exchange, "[NAME]", name, 255);
  }

  long id = 0;
  CString name;

 private:
  const char* table_;
  const char* id_column_;
};

struct Kind {
  const char* word;
  const char* table;
  const char* id_column;
};

constexpr Kind profiles = {"profile", "[CSPROFV]", "[PROFID]"};
constexpr Kind stations = {"station", "[CSSTNV]", "[STNID]"};
constexpr Kind users = {"user", "[CSUSERV]", "[USERID]"};

std::vector<Named> rows_of(Link& link, const Kind& kind, const CString& filter, const CString& condition = {}) {
  std::vector<Named> found;
  NamedRows rows(&link.db(), kind.table, kind.id_column);
  rows.m_strFilter = filter;
  set_rs_where_clause(rows, condition);
  rows.m_strSort = kind.id_column;
  if (!rows.Open()) throw_can_not_open_rs_exception();
  for (; !rows.m_bEOF; rows.MoveNext())
    found.push_back({static_cast<int>(rows.id), std::string(rows.name.view())});
  return found;
}

CString name_is(const std::string& name) { return CString("[NAME]=" + sql_literal(name)); }

std::optional<int> whole_number(const std::string& text) {
  int number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::string list_of(const std::vector<Named>& all) {
  constexpr std::size_t most = 10;
  std::string text;
  for (std::size_t i = 0; i < std::min(all.size(), most); ++i)
    text += (i == 0 ? "" : ", ") + all[i].name + " (" + std::to_string(all[i].id) + ")";
  return all.size() > most ? text + ", ..." : text;
}

std::string there_are(const std::vector<Named>& all) {
  return "There " + std::string(all.size() == 1 ? "is " : "are ") + list_of(all) + ".";
}

/// Finds among the rows that satisfy `condition`, which may be empty.
Named find(Link& link, const Kind& kind, const std::string& wanted, const CString& condition = {}) {
  const std::string word = kind.word;
  const std::string what = "cannot find the " + word + " \"" + wanted + "\"";
  return doing(what, [&] {
    auto found = rows_of(link, kind, name_is(wanted), condition);
    if (const auto id = whole_number(wanted); found.empty() && id) {
      CString filter;
      filter.Format("%s=%d", kind.id_column, *id);
      found = rows_of(link, kind, filter, condition);
    }
    if (found.size() == 1) return found.front();
    if (!found.empty())
      throw Problem{what, "there are several: " + list_of(found), "Give the number in brackets instead of the name."};
    const auto all = rows_of(link, kind, "", condition);
    throw Problem{what, "there is none of that name or number",
                  all.empty() ? (condition.IsEmpty() ? "The database has no " + word + " at all."
                                                     : "There is no " + word + " that this user may see.")
                              : there_are(all)};
  });
}

bool is_by_piece(const GridColumn& column) { return column.by_piece; }

}  // namespace

Named find_profile(Link& link, const std::string& name_or_id, int as_user) {
  return find(link, profiles, name_or_id, visible_profiles(profiles.id_column, as_user));
}
Named find_station(Link& link, const std::string& name_or_id) { return find(link, stations, name_or_id); }
Named find_user(Link& link, const std::string& name_or_id) { return find(link, users, name_or_id); }

std::string users_there_are(Link& link) {
  const auto all = doing("cannot read the users", [&] { return rows_of(link, users, ""); });
  return all.empty() ? "The database has no user at all." : there_are(all);
}

std::string profile_name(Link& link, int id) {
  return doing("cannot read the profiles", [&] {
    CString filter;
    filter.Format("[PROFID]=%d", id);
    const auto found = rows_of(link, profiles, filter);
    return found.empty() ? std::string("?") : found.front().name;
  });
}

ProfileShape shape_of(const oldde::CProfileCache& cache, const Named& profile) {
  ProfileShape shape{profile.name, profile.id, columns_of(cache), grid_width(cache), 0};
  const bool any_by_piece = std::any_of(shape.columns.begin(), shape.columns.end(), is_by_piece);
  if (cache.has_dynamic_size) return shape;
  if (cache.max_subgroup_size > 0)
    shape.pieces = static_cast<std::size_t>(cache.max_subgroup_size);
  else if (!any_by_piece)
    shape.pieces = 1;
  return shape;
}

ProfileShape read_shape(Link& link, const Named& profile) {
  const std::string what = "cannot use the profile \"" + profile.name + "\"";
  return doing(what, [&] {
    oldde::CProfileCache cache;
    const long result = cache.load_from_db(link.engine(), link.db(), 0, 0, profile.id);
    if (result == result_code::bad_value)
      throw Problem{what, "it has neither labels to fill in nor characteristics with a size", ""};
    if (result < 0) throw result;
    return shape_of(cache, profile);
  });
}

}  // namespace spc
