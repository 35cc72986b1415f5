/// The fields of a definition as texts, for tests that compare all of them.
#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "spcbase/datasource/definition.h"

namespace test_support {

/// Name and value of every field, in the order of the class.
using FieldTexts = std::vector<std::pair<std::string, std::string>>;

inline std::string text_of_flag(bool flag) { return flag ? "true" : "false"; }

/// "(date, time, timestamp, concatenation)", "none" for null.
inline std::string text_of_syntax(const UserDefinedSyntaxInfo* syntax) {
  if (!syntax) return "none";
  return std::string("(") + syntax->date_literal.GetString() + ", " + syntax->time_literal.GetString() + ", " +
         syntax->timestamp_literal.GetString() + ", " + syntax->concatenation.GetString() + ")";
}

template <class Info>
FieldTexts fields_of(const Info& info) {
  constexpr bool is_ole_db = std::is_same_v<Info, OLEDBInfo>;
  const auto text = [](const CString& field) { return std::string(field.view()); };
  FieldTexts fields{{"id", std::to_string(info.id)},
                    {"name", text(info.name)},
                    {"connection_string", text(info.connection_string)},
                    {"description", text(info.description)},
                    {"type", text(info.type)},
                    {"flag2", std::to_string(info.flag2)},
                    {"modified_time", std::to_string(info.modified_time.m_dt)}};
  if constexpr (!is_ole_db) fields.emplace_back("provider", text(info.provider));
  fields.emplace_back("quote_catalog", text_of_flag(info.quote_catalog));
  fields.emplace_back("quote_schema", text_of_flag(info.quote_schema));
  fields.emplace_back("quote_table", text_of_flag(info.quote_table));
  fields.emplace_back("quote_column", text_of_flag(info.quote_column));
  if constexpr (is_ole_db) fields.emplace_back("option", std::to_string(info.option));
  fields.emplace_back("version", std::to_string(info.version));
  if constexpr (is_ole_db) fields.emplace_back("internal_option", std::to_string(info.internal_option));
  fields.emplace_back("catalog_separator", text(info.catalog_separator));
  fields.emplace_back("schema_separator", text(info.schema_separator));
  fields.emplace_back("table_separator", text(info.table_separator));
  fields.emplace_back("quote_prefix", text(info.quote_prefix));
  fields.emplace_back("quote_suffix", text(info.quote_suffix));
  if constexpr (!is_ole_db)
    fields.emplace_back("default_command_timeout", std::to_string(info.default_command_timeout));
  fields.emplace_back("syntax_info", text_of_syntax(info.syntax_info.get()));
  return fields;
}

/// The fields that differ, with their later values: "option=2 | version=4".
inline std::string changes(const FieldTexts& before, const FieldTexts& after) {
  std::string text;
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (after.at(i) == before.at(i)) continue;
    if (!text.empty()) text += " | ";
    text += after.at(i).first + "=" + after.at(i).second;
  }
  return text;
}

/// A definition in which every field has a value that no default has.
template <class Info>
Info full_definition() {
  Info info;
  info.id = 7;
  info.name = "Warehouse";
  info.connection_string = "DSN=warehouse;UID=spc;PWD=secret";
  info.description = "Goods\r\nreceived";
  info.type = "stock";
  info.flag2 = 3;
  info.modified_time = COleDateTime(45366.5);
  info.quote_catalog = false;
  info.quote_schema = false;
  info.quote_table = false;
  info.quote_column = false;
  info.version = 4;
  info.catalog_separator = ".";
  info.schema_separator = ":";
  info.table_separator = "!";
  info.quote_prefix = "[";
  info.quote_suffix = "]";
  if constexpr (std::is_same_v<Info, OLEDBInfo>) {
    info.option = 5;
    info.internal_option = 11;
  } else {
    info.provider = "System.Data.Odbc";
    info.default_command_timeout = 30;
  }
  info.syntax_info = get_default_user_defined_syntax_info();
  return info;
}

}  // namespace test_support
