#include "spcbase/datasource/internal/learning.h"
#include "spcbase/datasource/definition.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_error.h"

namespace {

/// The capabilities that count, among the bits of the connection.
constexpr DWORD escape_clause_bit = 0x100;
constexpr DWORD ansi_sql_bits = 0xD0;

using Getter = HRESULT (ADONETSupport::_DbSyntaxInfo::*)(BSTR*);

CString learnt(ADONETSupport::_DbSyntaxInfo& syntax, Getter getter) {
  _bstr_t text;
  _com_util::CheckError((syntax.*getter)(text.GetAddress()));
  return to_cstring(text.GetBSTR());
}

}  // namespace

void OLEDBInfo::update_internal_data(OLEDBConnection& connection) {
  internal_option = 0;
  if ((connection.sql_support & escape_clause_bit) != 0) internal_option |= escape_clauses;
  if ((connection.sql_support & ansi_sql_bits) != 0) internal_option |= ansi_sql;
  if (connection.is_msjet()) internal_option |= jet_engine;
  if (connection.has_sql_server_new_datetime_type()) internal_option |= new_datetime_type;

  catalog_separator = connection.catalog_separator;
  schema_separator = connection.schema_separator;
  table_separator = connection.table_separator;
  quote_prefix = connection.quote_prefix;
  quote_suffix = connection.quote_suffix;
  version = present_version;
}

void learn_names(const _com_ptr_t<ADONETSupport::_DbSyntaxInfo>& syntax, ADONETSupport::_DbConnection* connection,
                 ADONETDBInfo& definition) {
  using Syntax = ADONETSupport::_DbSyntaxInfo;
  _com_util::CheckError(syntax->set_connection(connection));
  definition.catalog_separator = learnt(*syntax, &Syntax::get_catalog_separator);
  definition.schema_separator = learnt(*syntax, &Syntax::get_schema_separator);
  definition.table_separator = learnt(*syntax, &Syntax::get_table_separator);
  definition.quote_prefix = learnt(*syntax, &Syntax::get_quote_prefix);
  definition.quote_suffix = learnt(*syntax, &Syntax::get_quote_suffix);
  definition.version = 0;
}

void ADONETDBInfo::update_internal_data(_com_ptr_t<ADONETSupport::_DbConnection>& connection) {
  learn_names(ADONETSupport::create_syntax_info(), connection, *this);
}
