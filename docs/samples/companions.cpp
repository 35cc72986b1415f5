// A product that puts its own functions in the place of the library's, and facts of its own into a definition.
#include <cstdio>

#include "spcbase/companion/adonet_support.h"
#include "spcbase/companion/oledb_connection.h"
#include "spcbase/companion/table_helpers.h"
#include "spcbase/datasource/definition.h"
#include "spcbase/datasource/sql_builder.h"
#include "spcbase/foundation/outcome.h"

namespace TableHelpers {
CString ParseToLocale(const CString& text) { return "[" + text + "]"; }
}  // namespace TableHelpers

namespace ADONETSupport {
_com_ptr_t<_DbSyntaxInfo> create_syntax_info() { return {}; }  // this product has none
}  // namespace ADONETSupport

int main() {
  std::printf("%s\n", TableHelpers::ParseToLocale("1.5").GetString());

  OLEDBInfo definition;
  OLEDBConnection facts;
  facts.sql_support = 0x10;  // entry level of SQL-92, no escape clauses
  facts.quote_prefix = facts.quote_suffix = "\"";
  definition.update_internal_data(facts);
  std::printf("syntax of kind %d\n", get_sql_builder(definition)->syntax_kind);

  ADONETDBInfo other;
  _com_ptr_t<ADONETSupport::_DbConnection> connection;
  const auto learnt = guarded([&] { other.update_internal_data(connection); });
  std::printf("0x%08X\n", static_cast<unsigned>(learnt.failure().code));
}
