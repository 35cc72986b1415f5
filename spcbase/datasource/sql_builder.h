/// Which SQL an outside database is spoken to in.
///
/// Part of the data sources. The library chooses; what builds statements by the choice is the product's.
#pragma once

#include <memory>

#include "spcbase/companion/syntax_info.h"
#include "spcbase/platform/system/export.h"

class OLEDBInfo;
class ADONETDBInfo;

/// The choice. It keeps its syntaxes alive when the definition is gone.
class SPCBASE_API SQLBuilder {
 public:
  /// Holds the choice as it is given; `standard` must be there.
  SQLBuilder(int kind_of_syntax, std::shared_ptr<UserDefinedSyntaxInfo> user,
             std::shared_ptr<UserDefinedSyntaxInfo> standard, int oracle);
  virtual ~SQLBuilder();

  int syntax_kind;                                        ///< 0, 1 or 3
  int is_oracle;                                          ///< 1 for Oracle's own providers, else 0
  std::shared_ptr<UserDefinedSyntaxInfo> user_syntax;     ///< the definition's, may be null
  std::shared_ptr<UserDefinedSyntaxInfo> default_syntax;  ///< never null
};

/// By what is known of the source (`internal_option`): 0 with escape clauses or nothing known, 1 with ANSI SQL, 3 for a
/// Jet engine; the first that holds decides. `is_oracle` is 0.
SPCBASE_API std::shared_ptr<SQLBuilder> get_sql_builder(const OLEDBInfo& definition);
/// By the provider's name, in any case of letters: 0 for "System.Data.Odbc", else 1; `is_oracle` for
/// "Oracle.ManagedDataAccess.Client" and "Oracle.DataAccess.Client".
SPCBASE_API std::shared_ptr<SQLBuilder> get_sql_builder(const ADONETDBInfo& definition);
