#include "tools/spc/demo_sources.h"

#include <algorithm>
#include <map>
#include <memory>

#include "spcbase/datasource/stored.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/testkit/plant.h"
#include "spcbase/utility/xml.h"
#include "tools/spc/connection_text.h"
#include "tools/spc/problem.h"
#include "tools/spc/source_definition.h"
#include "tools/spc/table.h"

namespace spc {
namespace {

constexpr const char* cannot_keep = "cannot keep the demo's data sources";

/// What a program of the time stored: a connection string that anyone can read, and names of elements that are gone.
constexpr const char* old_definition =
    "<?xml version=\"1.0\" ?><external_database version=\"2\">"
    "<connection_string>DSN=archive;Trusted_Connection=yes</connection_string>"
    "<quote_table>true</quote_table><quote_column>true</quote_column><option>1</option>"
    "<internal_version>2</internal_version><schema_separator>.</schema_separator><table_separator>.</table_separator>"
    "<identifier_quote>\"</identifier_quote></external_database>";

[[noreturn]] void differ(const std::string& how) {
  throw Problem{"the demo failed", how,
                "The database did not keep what was saved: please report this with the server's name and version."};
}

template <class Kind>
int store_source(Link& link, const char* name, const char* connection) {
  Definition definition = Kind();
  base_of(definition).name = name;
  base_of(definition).connection_string = connection;
  store_new(link, definition, 0, cannot_keep);
  return base_of(definition).id;
}

/// The definitions that a user may see, by id; user 0 sees all.
std::map<int, SeenSource> seen_by(Link& link, int user) {
  std::map<int, SeenSource> seen;
  const auto add = [&](const auto& definitions) {
    for (const auto& definition : definitions)
      seen[definition->id] = {definition->id, kind_name(definition->kind), text_of(definition->name),
                              shown_connection(text_of(definition->connection_string))};
  };
  COleDateTime newest;
  std::vector<std::shared_ptr<OLEDBInfo>> ole_db;
  get_all_ole_db(&link.db(), 0, user, ole_db, newest);
  add(ole_db);
  std::vector<std::shared_ptr<ADONETDBInfo>> adonet;
  get_all_adonet_db(&link.db(), 0, user, adonet, newest);
  add(adonet);
  return seen;
}

CString stored_xml(CDatabase& db, int id) {
  RSExtDB row(&db, 0);
  row.m_strFilter.Format("[EXDBID] = %d", id);
  if (!row.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly)) throw_can_not_open_rs_exception();
  return row.get_blob_str(row);
}

/// Puts a text in the place of a definition, as a program did that is gone by now.
void store_xml(CDatabase& db, int id, const char* xml) {
  RSExtDB row(&db, 0);
  row.m_strFilter.Format("[EXDBID] = %d", id);
  if (!row.Open(CRecordset::snapshot, nullptr, CRecordset::none)) throw_can_not_open_rs_exception();
  row.Edit();
  row.set_blob_data(row, CString(xml));
  row.Update();
}

struct Element {
  std::string name;
  std::string text;
};

std::vector<Element> elements_of(const CString& xml) {
  std::vector<Element> elements;
  const auto children = load_xml(_bstr_t(xml.GetString()))->GetdocumentElement()->GetchildNodes();
  while (const auto child = children->nextNode()) {
    const _bstr_t text = get_elem_value(child);
    elements.push_back(
        {static_cast<const char*>(child->GetnodeName()), text.length() == 0 ? "" : static_cast<const char*>(text)});
  }
  return elements;
}

const std::vector<Element>::value_type* named(const std::vector<Element>& elements, const std::string& name) {
  const auto found = std::ranges::find(elements, name, &Element::name);
  return found == elements.end() ? nullptr : &*found;
}

std::string shown(const Element* element) {
  constexpr std::size_t widest = 44;
  if (element == nullptr) return {};
  const std::string& text = element->text;
  return element->name + "  " + (text.size() <= widest ? text : text.substr(0, widest) + "...");
}

/// What has another name or text now, the old name beside the new one.
std::vector<ChangedElement> changes(const std::vector<Element>& before, const std::vector<Element>& after) {
  struct Pair {
    const char* before;
    const char* after;
  };
  std::vector<ChangedElement> changed;
  for (const auto& [old_name, new_name] :
       {Pair{"connection_string", "connection_string_2"}, Pair{"internal_version", "internal_option"},
        Pair{"identifier_quote", "quote_prefix"}, Pair{"identifier_quote", "quote_suffix"},
        Pair{"quote_table", "quote_table"}, Pair{"table_separator", "table_separator"}})
    changed.push_back({shown(named(before, old_name)), shown(named(after, new_name))});
  return changed;
}

bool same_facts(const OLEDBInfo& left, const OLEDBInfo& right) {
  return left.connection_string == right.connection_string && left.internal_option == right.internal_option &&
         left.quote_prefix == right.quote_prefix && left.quote_suffix == right.quote_suffix &&
         left.table_separator == right.table_separator && left.option == right.option;
}

}  // namespace

std::vector<SeenSource> make_sources(Link& link, const plant::DemoPlant& plant) {
  return doing(cannot_keep, [&] {
    const int goods = store_source<OLEDBInfo>(link, "Goods received",
                                              "Provider=MSDASQL;Data Source=goods;User ID=spc;Password=conveyor");
    const int press =
        store_source<ADONETDBInfo>(link, "Filling log", "Server=filling;Database=log;Integrated Security=true");
    const int drawings = store_source<OLEDBInfo>(link, "Drawings", "DSN=drawings;UID=reader");
    plant::Builder builder(link.db());
    builder.show_data_source(goods, plant::user(plant.anna.id));
    builder.show_data_source(press, plant::group(plant.filling_group));
    builder.show_data_source(drawings, plant::user(plant.anna.id));
    builder.show_data_source(drawings, plant::group(plant.filling_group));
    const auto anna = seen_by(link, plant.anna.id);
    const auto bo = seen_by(link, plant.bo.id);
    std::vector<SeenSource> sources;
    for (auto& [id, source] : seen_by(link, 0)) {
      source.by_anna = anna.contains(id);
      source.by_bo = bo.contains(id);
      sources.push_back(source);
    }
    if (sources.size() != 3 || anna.size() != 2 || bo.size() != 2 || anna.contains(press) || bo.contains(goods))
      differ("a user sees other data sources than those that list the user");
    return sources;
  });
}

void print_seen(std::ostream& out, const std::vector<SeenSource>& sources, const std::string& indent) {
  Table table(indent);
  table.add_column("number", Align::right);
  for (const char* heading : {"kind", "name", "connection", "anna sees", "bo sees"})
    table.add_column(heading);
  for (const auto& source : sources)
    table.add_row({std::to_string(source.id), source.kind, source.name, source.connection,
                   source.by_anna ? source.name : "", source.by_bo ? source.name : ""});
  table.print(out);
}

void write_seen(JsonWriter& json, const std::vector<SeenSource>& sources) {
  json.begin_array();
  for (const auto& source : sources) {
    json.begin_object();
    json.key("id").value(source.id);
    json.key("kind").value(source.kind);
    json.key("name").value(source.name);
    json.key("connection_string").value(source.connection);
    json.key("seen_by").begin_array();
    if (source.by_anna) json.value("anna");
    if (source.by_bo) json.value("bo");
    json.end_array();
    json.end_object();
  }
  json.end_array();
}

std::vector<ChangedElement> renew_old_source(Link& link) {
  return doing("cannot renew an old definition", [&] {
    const int id = store_source<OLEDBInfo>(link, "Archive", "");
    store_xml(link.db(), id, old_definition);
    const auto before = elements_of(stored_xml(link.db(), id));
    const std::unique_ptr<OLEDBInfo> old(OLEDBInfo::retrieve(&link.db(), 0, id));
    if (old->version != 2 || old->connection_string.IsEmpty()) differ("a definition of version 2 reads otherwise");
    old->save(&link.db(), 0);
    const std::unique_ptr<OLEDBInfo> renewed(OLEDBInfo::retrieve(&link.db(), 0, id));
    if (!same_facts(*old, *renewed)) differ("a definition says something else after it was saved");
    return changes(before, elements_of(stored_xml(link.db(), id)));
  });
}

void print_renewal(std::ostream& out, const std::vector<ChangedElement>& elements, const std::string& indent) {
  Table table(indent);
  table.add_column("as it was stored");
  table.add_column("as it is saved");
  for (const auto& element : elements)
    table.add_row({element.before, element.after});
  table.print(out);
}

void write_renewal(JsonWriter& json, const std::vector<ChangedElement>& elements) {
  json.begin_array();
  for (const auto& element : elements) {
    json.begin_object();
    json.key("before").value(element.before);
    json.key("after").value(element.after);
    json.end_object();
  }
  json.end_array();
}

}  // namespace spc
