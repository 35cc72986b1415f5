#include "tools/spc/completion_values.h"

#include <algorithm>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/recordset.h"
#include "tools/spc/node_tree.h"
#include "tools/spc/problem.h"
#include "tools/spc/settings.h"
#include "tools/spc/utf8.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

/// Nobody chooses among more.
constexpr std::size_t most_candidates = 1000;
/// How many rows are looked at for what was typed: whoever waits at a prompt does not wait for millions.
constexpr std::size_t most_rows = 100'000;

/// Where candidates stand. The newest come first where that helps.
struct Source {
  const char* table;
  const char* text;   ///< the column that is offered
  const char* about;  ///< what is told of it
  std::string filter = {};
  const char* sort = nullptr;  ///< null: by what is offered
};

/// Two columns of any table, as texts.
class TwoColumns : public CRecordsetFix {
 public:
  TwoColumns(CDatabase* db, const Source& source) : CRecordsetFix(db), source_(source) {
    m_nFields = 2;
    m_nDefaultType = forwardOnly;
  }
  CString GetDefaultSQL() override { return source_.table; }
  void DoFieldExchange(CFieldExchange* exchange) override {
    exchange->SetFieldType(CFieldExchange::outputColumn);
    RFX_Text(exchange, source_.text, text, 255);
    RFX_Text(exchange, source_.about, about, 255);
  }

  CString text;
  CString about;

 private:
  const Source& source_;
};

std::vector<Candidate> read(Link& link, const std::string& typed, const Source& source) {
  TwoColumns rows(&link.db(), source);
  rows.m_strFilter = source.filter.c_str();
  rows.m_strSort = source.sort != nullptr ? source.sort : source.text;
  if (!rows.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly)) throw_can_not_open_rs_exception();
  std::vector<Candidate> found;
  for (std::size_t row = 0; !rows.IsEOF() && row < most_rows && found.size() < most_candidates;
       rows.MoveNext(), ++row) {
    Candidate candidate{std::string(trimmed(rows.text.view())), on_one_line(trimmed(rows.about.view()))};
    if (!candidate.text.starts_with(typed)) continue;
    if (found.empty() || found.back().text != candidate.text) found.push_back(std::move(candidate));
  }
  return found;
}

/// Names with their ids, then ids with their names: an option that takes both is completed with either.
std::vector<Candidate> read_both(Link& link, const std::string& typed, const char* table, const char* id,
                                 const std::string& filter = {}) {
  auto found = read(link, typed, {table, "[NAME]", id, filter});
  std::erase_if(found, [](const Candidate& candidate) { return candidate.text.empty(); });
  const auto ids = read(link, typed, {table, id, "[NAME]", filter});
  found.insert(found.end(), ids.begin(), ids.end());
  return found;
}

std::string value_of(const Said& said, std::string_view name) {
  const auto found = said.values.find(name);
  return found == said.values.end() ? std::string() : found->second;
}

/// "[OTYPE] = 3 AND [OID] = 9", as far as they were said and are numbers.
std::string filter_of(const Said& said, std::initializer_list<std::pair<std::string_view, const char*>> columns) {
  std::string filter;
  for (const auto& [name, column] : columns)
    if (const int number = plain_number(value_of(said, name)); number >= 0)
      filter += (filter.empty() ? "" : " AND ") + std::string(column) + " = " + std::to_string(number);
  return filter;
}

std::vector<Candidate> read_settings_keys(Link& link) {
  std::vector<Candidate> found;
  for (const auto& setting : read_settings(link))
    found.push_back({setting.key, std::to_string(setting.bytes.size()) + " bytes"});
  return found;
}

/// A name as a path has it: a slash in it stands twice.
std::string in_path(const std::string& name) {
  std::string text;
  for (const char c : name)
    text += c == '/' ? "//" : std::string(1, c);
  return text;
}

/// The paths of everything that is not hidden and begins so, the upper levels first.
std::vector<Candidate> read_paths(Link& link, const std::string& typed) {
  const NodeTree tree(link, 0);
  std::vector<Candidate> found;
  const auto offer = [&](const std::string& path, const std::string& about) {
    if (path.starts_with(typed)) found.push_back({path, about});
  };
  std::vector<std::pair<int, std::string>> open = {{0, "/"}};
  for (std::size_t i = 0; i < open.size() && found.size() < most_candidates; ++i) {
    const auto [folder, path] = open[i];
    for (const Folder& inside : tree.folders_in(folder)) {
      if (inside.hidden) continue;
      offer(path + in_path(inside.name), "folder " + std::to_string(inside.id));
      open.emplace_back(inside.id, path + in_path(inside.name) + "/");
    }
    for (const Member& member : tree.members_of(folder))
      offer(path + in_path(member.name), std::string(word_of(member.kind)) + " " + std::to_string(member.id));
  }
  return found;
}

std::vector<Candidate> read_values(Link& link, Offers offers, const std::string& typed, const Said& said) {
  switch (offers) {
    case Offers::profiles:
      return read_both(link, typed, "[CSPROFV]", "[PROFID]");
    case Offers::stations:
      return read_both(link, typed, "[CSSTNV]", "[STNID]");
    case Offers::users:
      return read_both(link, typed, "[CSUSERV]", "[USERID]");
    case Offers::user_ids:
      return read(link, typed, {"[CSUSERV]", "[USERID]", "[NAME]"});
    case Offers::data_sources:
      return read_both(link, typed, "[CSEXDB]", "[EXDBID]", "[VFLG] IS NULL");
    case Offers::settings:
      return read_settings_keys(link);
    case Offers::samples:
      return read(link, typed, {"[CSSAMP]", "[SAMPID]", "[SAMPID]", "", "[SAMPID] DESC"});
    case Offers::payload_ids:
      return value_of(said, "KIND") == "profile" ? read(link, typed, {"[CSPROFV]", "[PROFID]", "[NAME]"})
                                                 : read(link, typed, {"[CSMONV]", "[MONID]", "[NAME]"});
    case Offers::revision_types:
      return read(link, typed, {"[CSOBJREV]", "[OBJTYPE]", "[OBJTYPE]"});
    case Offers::revision_ids:
      return read(link, typed, {"[CSOBJREV]", "[OBJID]", "[OBJID]", filter_of(said, {{"--type", "[OBJTYPE]"}})});
    case Offers::revisions:
      return read(link, typed,
                  {"[CSOBJREV]", "[REVISION]", "[CUSER]",
                   filter_of(said, {{"--type", "[OBJTYPE]"}, {"--id", "[OBJID]"}}), "[REVISION] DESC"});
    case Offers::nodes:
      return read_paths(link, typed);
    default:
      return {};
  }
}

/// An id needs no "1" beside it.
void drop_repeated(std::vector<Candidate>& candidates) {
  for (Candidate& candidate : candidates)
    if (candidate.about == candidate.text) candidate.about.clear();
}

}  // namespace

std::vector<Candidate> database_values(Offers offers, const std::string& typed, const Said& said) {
  std::vector<Candidate> found;
  try {
    const auto outcome = guarded([&] {
      Link link(connect_text_of(said.place, false), nullptr);
      found = read_values(link, offers, typed, said);
    });
    if (!outcome) return {};
  } catch (const Problem&) {
    return {};
  }
  drop_repeated(found);
  return found;
}

}  // namespace spc
