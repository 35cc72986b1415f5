#include "spcbase/foundation/recordset.h"

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/schema/catalogue.h"

namespace {

// The name under which a computed column is exchanged in this pass. While the select list is written the column is its
// expression; later it has the name that the server gave it, which differs from server to server.
const char* name_of_pass(CFieldExchange& exchange, CRecordset& rs, const CString& expression, CString& column_name) {
  if (exchange.m_nOperation == CFieldExchange::Name && !rs.IsOpen()) return expression;
  if (column_name.IsEmpty() && exchange.m_nOperation == CFieldExchange::BindFieldToColumn) {
    CODBCFieldInfo info;
    rs.GetODBCFieldInfo(short{0}, info);
    column_name = info.m_strName;
  }
  return column_name;
}

CString max_of(const CString& column) { return "MAX(" + column + ")"; }

}  // namespace

RSCount::RSCount(CDatabase* database, const CString& table_list, const char* count_expression)
    : CRecordset(database), table(table_list), expression(count_expression != nullptr ? count_expression : "COUNT(*)") {
  m_nFields = 1;
  m_nDefaultType = snapshot;
}

void RSCount::DoFieldExchange(CFieldExchange* exchange) {
  const char* name = name_of_pass(*exchange, *this, expression, column_name);
  exchange->SetFieldType(CFieldExchange::outputColumn);
  RFX_Long(exchange, name, result);
}

RSMax::RSMax(CDatabase* database, const CString& table_name, const CString& id_column)
    : CRecordset(database), table(table_name), column(id_column) {
  m_nFields = 1;
  m_nDefaultType = snapshot;
}

void RSMax::DoFieldExchange(CFieldExchange* exchange) {
  const CString expression = max_of(column);
  const char* name = name_of_pass(*exchange, *this, expression, column_name);
  exchange->SetFieldType(CFieldExchange::outputColumn);
  RFX_Long(exchange, name, result);
}

RSMaxDateTime::RSMaxDateTime(CDatabase* database, const CString& table_name, const CString& moment_column)
    : CRecordset(database), table(table_name), column(moment_column) {
  m_nFields = 1;
  m_nDefaultType = snapshot;
}

void RSMaxDateTime::DoFieldExchange(CFieldExchange* exchange) {
  const CString expression = max_of(column);
  const char* name = name_of_pass(*exchange, *this, expression, column_name);
  exchange->SetFieldType(CFieldExchange::outputColumn);
  RFX_Date(exchange, name, result);
}

RSSQLServerProperty::RSSQLServerProperty(CDatabase* database, const CString& property_name)
    : CRecordset(database), property(property_name) {
  m_nFields = 1;
  m_nDefaultType = snapshot;
}

CString RSSQLServerProperty::GetDefaultSQL() { return "SELECT SERVERPROPERTY('" + property + "')"; }

void RSSQLServerProperty::DoFieldExchange(CFieldExchange* exchange) {
  const CString expression = "SERVERPROPERTY('" + property + "')";
  const char* name = name_of_pass(*exchange, *this, expression, column_name);
  exchange->SetFieldType(CFieldExchange::outputColumn);
  RFX_Text(exchange, name, value, 255, 12, 0);
}

namespace {

void set_filter(CRecordset& rs, const char* filter) {
  if (filter != nullptr) rs.m_strFilter = filter;
}

bool requery_by(bool (*open)(CRecordset&), CRecordset& rs, const char* filter, bool throwing) {
  if (rs.IsOpen() && (rs.m_dwOptions & CRecordset::executeDirect) != 0) {
    rs.Close();
  } else if (rs.IsOpen()) {
    set_filter(rs, filter);
    if (rs.Requery()) return true;
    rs.Close();
  }
  set_filter(rs, filter);
  if (open(rs)) return true;
  if (throwing) throw_can_not_open_rs_exception();
  return false;
}

void open_for_read_or_throw(CRecordset& rs) {
  if (!open_for_read(rs)) throw_can_not_open_rs_exception();
}

}  // namespace

bool requery_rs(CRecordset& rs, const char* filter, bool throwing) {
  return requery_by(open_for_update, rs, filter, throwing);
}

bool requery_rs_for_read(CRecordset& rs, const char* filter, bool throwing) {
  return requery_by(open_for_read, rs, filter, throwing);
}

bool set_rs_where_clause(CRecordset& rs, const char* condition) {
  if (condition == nullptr || *condition == '\0') return false;
  if (rs.m_strFilter.IsEmpty())
    rs.m_strFilter = condition;
  else
    rs.m_strFilter += CString(" AND (") + condition + ")";
  return true;
}

CString get_column_data_type(CDatabase* database, const char* table, const char* column) {
  RS_INFORMATION_SCHEMA_COLUMNS_1 rs(database);
  CString condition;
  condition.Format("TABLE_NAME = '%s' AND COLUMN_NAME = '%s'", table, column);
  set_rs_where_clause(rs, condition);
  open_for_read_or_throw(rs);
  return rs.m_bEOF ? CString() : rs.data_type;
}

CString get_sql_server_edition(CDatabase* database) {
  RSSQLServerProperty rs(database, "edition");
  try {
    open_for_read_or_throw(rs);
    return rs.m_bEOF ? CString() : rs.value;
  } catch (CDBException* e) {
    e->Delete();
    return {};
  }
}

bool check_sql_server_index(CDatabase* database, const char* table, const char* index, bool any_index) {
  RSSQLServerSysIndex rs(database);
  rs.m_strFilter.Format("name = '%s' AND object_id = OBJECT_ID('%s')", index, table);
  if (!any_index) rs.m_strFilter += " AND index_id = 1";
  open_for_read_or_throw(rs);
  return !rs.m_bEOF;
}
