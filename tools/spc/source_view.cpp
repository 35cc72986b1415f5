// How definitions are shown, for people and for machines.
#include <array>
#include <utility>

#include "spcbase/datasource/sql_builder.h"
#include "tools/spc/connection_text.h"
#include "tools/spc/moments.h"
#include "tools/spc/source_definition.h"

namespace spc {
namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string list;
  for (const auto& word : words)
    list += (list.empty() ? "" : ", ") + word;
  return list.empty() ? "none" : list;
}

/// The bits of `internal_option`.
std::vector<std::string> known_facts(const OLEDBInfo& definition) {
  constexpr std::array<std::pair<int, const char*>, 4> bits = {{{OLEDBInfo::escape_clauses, "escape clauses"},
                                                                {OLEDBInfo::ansi_sql, "ANSI SQL"},
                                                                {OLEDBInfo::jet_engine, "Jet engine"},
                                                                {OLEDBInfo::new_datetime_type, "new date types"}}};
  std::vector<std::string> words;
  for (const auto& [bit, word] : bits)
    if ((definition.internal_option & bit) != 0) words.emplace_back(word);
  return words;
}

template <class Kind>
std::vector<std::string> quoted_identifiers(const Kind& definition) {
  std::vector<std::string> words;
  if (definition.quote_catalog) words.emplace_back("catalog");
  if (definition.quote_schema) words.emplace_back("schema");
  if (definition.quote_table) words.emplace_back("table");
  if (definition.quote_column) words.emplace_back("column");
  return words;
}

void add_own(Facts& facts, const OLEDBInfo& definition) {
  facts.emplace_back("option", std::to_string(definition.option));
  facts.emplace_back("known",
                     std::to_string(definition.internal_option) + " (" + joined(known_facts(definition)) + ")");
}

void add_own(Facts& facts, const ADONETDBInfo& definition) {
  facts.emplace_back("provider", text_of(definition.provider));
  const int seconds = definition.default_command_timeout;
  facts.emplace_back("timeout", seconds == -1 ? "unset" : std::to_string(seconds) + " s");
}

void write_own(JsonWriter& json, const OLEDBInfo& definition) {
  json.key("option").value(definition.option);
  json.key("internal_option").value(definition.internal_option);
}

void write_own(JsonWriter& json, const ADONETDBInfo& definition) {
  json.key("provider").value(definition.provider.view());
  json.key("default_command_timeout");
  if (definition.default_command_timeout == -1)
    json.null();
  else
    json.value(definition.default_command_timeout);
}

/// How names are written; what is not known, or does not exist, is left out.
template <class Kind>
void add_names(Facts& facts, const Kind& definition) {
  std::string whole;
  for (const auto& [part, separator] :
       {std::pair("catalog", &definition.catalog_separator), std::pair("schema", &definition.schema_separator),
        std::pair("table", &definition.table_separator)})
    if (!separator->IsEmpty()) whole += part + text_of(*separator);
  facts.emplace_back("names", whole.empty() ? "not known" : whole + "column");
  const bool quotes = !definition.quote_prefix.IsEmpty() || !definition.quote_suffix.IsEmpty();
  facts.emplace_back("quotes",
                     quotes ? text_of(definition.quote_prefix) + "name" + text_of(definition.quote_suffix) : "none");
}

template <class Kind>
void add_shared(Facts& facts, const Kind& definition) {
  facts.emplace_back("connection", shown_connection(text_of(definition.connection_string)));
  facts.emplace_back("quoted", joined(quoted_identifiers(definition)));
  add_names(facts, definition);
  add_own(facts, definition);
  facts.emplace_back("syntax", syntax_text(definition));
  if (const auto& syntax = definition.syntax_info) {
    facts.emplace_back("date", text_of(syntax->date_literal));
    facts.emplace_back("time", text_of(syntax->time_literal));
    facts.emplace_back("timestamp", text_of(syntax->timestamp_literal));
    facts.emplace_back("concatenation", text_of(syntax->concatenation));
  }
}

void write_syntax(JsonWriter& json, const std::shared_ptr<UserDefinedSyntaxInfo>& syntax) {
  json.key("syntax");
  if (!syntax) {
    json.null();
    return;
  }
  json.begin_object();
  json.key("date_literal").value(syntax->date_literal.view());
  json.key("time_literal").value(syntax->time_literal.view());
  json.key("timestamp_literal").value(syntax->timestamp_literal.view());
  json.key("concatenation").value(syntax->concatenation.view());
  json.end_object();
}

template <class Kind>
void write_shared(JsonWriter& json, const Kind& definition) {
  json.key("version").value(definition.version);
  json.key("connection_string").value(shown_connection(text_of(definition.connection_string)));
  json.key("password").value(holds_password(text_of(definition.connection_string)));
  json.key("quote").begin_array();
  for (const auto& word : quoted_identifiers(definition))
    json.value(word);
  json.end_array();
  json.key("quote_prefix").value(definition.quote_prefix.view());
  json.key("quote_suffix").value(definition.quote_suffix.view());
  json.key("catalog_separator").value(definition.catalog_separator.view());
  json.key("schema_separator").value(definition.schema_separator.view());
  json.key("table_separator").value(definition.table_separator.view());
  write_own(json, definition);
  const auto builder = get_sql_builder(definition);
  json.key("syntax_kind").value(builder->syntax_kind);
  json.key("is_oracle").value(builder->is_oracle != 0);
  write_syntax(json, definition.syntax_info);
}

std::string version_text(const Definition& definition) {
  const int version = version_of(definition);
  const bool future = version > OLEDBInfo::present_version;
  return std::to_string(version) + (future ? ", newer than this program knows: it may show less than there is" : "");
}

}  // namespace

void add_name_facts(Facts& facts, const Definition& definition) {
  std::visit([&](const auto& held) { add_names(facts, held); }, definition);
}

std::string syntax_text(const Definition& definition) {
  const auto builder = std::visit([](const auto& held) { return get_sql_builder(held); }, definition);
  const char* words = builder->syntax_kind == 1   ? "ANSI SQL"
                      : builder->syntax_kind == 3 ? "Jet"
                                                  : "escape clauses of ODBC, or nothing known";
  return std::to_string(builder->syntax_kind) + ", " + words + (builder->is_oracle != 0 ? ", Oracle" : "") +
         (builder->user_syntax ? ", literals of its own" : "");
}

Facts facts_of(const Definition& definition, const SourceRow& row) {
  Facts facts = {{"id", std::to_string(row.id)},
                 {"kind", kind_name(row.kind)},
                 {"name", row.name},
                 {"description", row.description},
                 {"type", row.type},
                 {"flag", std::to_string(row.flag)},
                 {"modified", row.modified},
                 {"state", row.removed ? "removed" : "live"},
                 {"version", version_text(definition)}};
  std::visit([&](const auto& held) { add_shared(facts, held); }, definition);
  return facts;
}

void write_definition(JsonWriter& json, const Definition& definition, const SourceRow& row) {
  write_source_row(json, row);
  std::visit([&](const auto& held) { write_shared(json, held); }, definition);
}

}  // namespace spc
