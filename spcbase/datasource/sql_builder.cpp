#include "spcbase/datasource/sql_builder.h"

#include <utility>

#include "spcbase/datasource/definition.h"

namespace {

/// What the kinds of syntax stand for in the statements that are built by them.
enum SyntaxKind : int { odbc_syntax = 0, ansi_syntax = 1, jet_syntax = 3 };

int syntax_kind_of(int internal_option) {
  if ((internal_option & OLEDBInfo::escape_clauses) != 0) return odbc_syntax;
  if ((internal_option & OLEDBInfo::ansi_sql) != 0) return ansi_syntax;
  if ((internal_option & OLEDBInfo::jet_engine) != 0) return jet_syntax;
  return odbc_syntax;
}

}  // namespace

SQLBuilder::SQLBuilder(int kind_of_syntax, std::shared_ptr<UserDefinedSyntaxInfo> user,
                       std::shared_ptr<UserDefinedSyntaxInfo> standard, int oracle)
    : syntax_kind(kind_of_syntax),
      is_oracle(oracle),
      user_syntax(std::move(user)),
      default_syntax(std::move(standard)) {}

SQLBuilder::~SQLBuilder() = default;

std::shared_ptr<SQLBuilder> get_sql_builder(const OLEDBInfo& definition) {
  return std::make_shared<SQLBuilder>(syntax_kind_of(definition.internal_option), definition.syntax_info,
                                      get_default_user_defined_syntax_info(), 0);
}

std::shared_ptr<SQLBuilder> get_sql_builder(const ADONETDBInfo& definition) {
  const auto is = [&](const char* provider) { return definition.provider.CompareNoCase(provider) == 0; };
  const bool oracle = is("Oracle.ManagedDataAccess.Client") || is("Oracle.DataAccess.Client");
  return std::make_shared<SQLBuilder>(is("System.Data.Odbc") ? odbc_syntax : ansi_syntax, definition.syntax_info,
                                      get_default_user_defined_syntax_info(), oracle ? 1 : 0);
}
