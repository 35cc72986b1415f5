#include "spcbase/platform/database/db_exception.h"

#include <array>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr std::array<std::pair<RETCODE, const char*>, 13> layer_texts{{
    {AFX_SQL_ERROR, "The database layer failed."},
    {AFX_SQL_ERROR_CONNECT_FAIL, "The connection could not be made."},
    {AFX_SQL_ERROR_RECORDSET_FORWARD_ONLY, "A forward-only recordset moves to the next row only."},
    {AFX_SQL_ERROR_EMPTY_COLUMN_LIST, "The recordset names no columns."},
    {AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "A field's kind does not fit its column."},
    {AFX_SQL_ERROR_ILLEGAL_MODE, "The recordset's state or options do not allow this."},
    {AFX_SQL_ERROR_MULTIPLE_ROWS_AFFECTED, "More than one row was affected."},
    {AFX_SQL_ERROR_NO_CURRENT_RECORD, "There is no current row."},
    {AFX_SQL_ERROR_NO_ROWS_AFFECTED, "No row was affected: the row is gone."},
    {AFX_SQL_ERROR_RECORDSET_READONLY, "The recordset is read-only."},
    {AFX_SQL_ERROR_PARAMETER_COUNT, "The number of parameters does not fit the statement."},
    {AFX_SQL_ERROR_TRANSACTION_LOST, "The server has rolled the transaction back; nothing was committed."},
    {AFX_SQL_ERROR_DATA_TRUNCATED, "A value does not fit its field."},
}};

const char* text_for(RETCODE code) {
  for (const auto& [known, text] : layer_texts)
    if (known == code) return text;
  return "The database operation failed.";
}

void append_record(CDBException& exception, const spcdb::Diagnostic& record) {
  if (!exception.m_strError.IsEmpty()) exception.m_strError += "\n";
  exception.m_strError += record.text.c_str();
  if (!exception.m_strStateNativeOrigin.IsEmpty()) exception.m_strStateNativeOrigin += "\n";
  const std::string line =
      "State:" + record.sqlstate + ",Native:" + std::to_string(record.native) + ",Origin:" + record.origin;
  exception.m_strStateNativeOrigin += line.c_str();
}

}  // namespace

CDBException::CDBException(const spcdb::Diagnostic& diagnostic) : m_nRetCode(diagnostic.return_code) {
  append_record(*this, diagnostic);
  for (const auto& record : diagnostic.further)
    append_record(*this, record);
}

BOOL CDBException::GetErrorMessage(char* buffer, UINT size, UINT* help_context) const {
  return write_message(m_strError.GetString(), buffer, size, help_context);
}

void AfxThrowDBException(RETCODE code, const char* text) {
  auto exception = std::make_unique<CDBException>(code);
  exception->m_strError = text != nullptr ? text : text_for(code);
  throw exception.release();
}

namespace spcdb {

void raise(const Diagnostic& diagnostic) { throw std::make_unique<CDBException>(diagnostic).release(); }

void raise(RETCODE code, const char* sqlstate, std::string_view text) {
  Diagnostic diagnostic;
  diagnostic.sqlstate = sqlstate;
  diagnostic.text = text;
  diagnostic.origin = "[spcbase]";
  diagnostic.return_code = code;
  raise(diagnostic);
}

}  // namespace spcdb
