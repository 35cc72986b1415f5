#include "spcbase/foundation/running_number.h"

#include <string_view>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/dialect_table.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/recordset.h"

namespace {

template <class Aggregate>
long result_of(Aggregate&& rows) {
  if (!open_for_read(rows)) throw_can_not_open_rs_exception();
  const long result = rows.IsEOF() ? 0 : rows.result;
  rows.Close();
  return result;
}

long highest_id(CDatabase* database, const char* table, const char* id_column) {
  // The highest of no rows is null, which is no number.
  if (result_of(RSCount(database, table, nullptr)) == 0) return 0;
  return result_of(RSMax(database, table, id_column));
}

bool contains(const CString& text, const char* part) { return part != nullptr && text.Find(part) >= 0; }

}  // namespace

void update_running_table(CDatabaseEx* database, const char* table, const char* id_column, const char* counter,
                          bool rewrite) {
  AutoODBCTransaction transaction(*database, false);
  const int highest = static_cast<int>(highest_id(database, table, id_column));
  CString statement;
  if (rewrite) {
    statement.Format("DELETE FROM %s", counter);
    database->ExecuteSQL(statement);
    statement.Format("INSERT INTO %s VALUES (%d)", counter, highest);
  } else {
    statement.Format("UPDATE %s SET MAXNO = %d", counter, highest);
  }
  database->ExecuteSQL(statement);
  transaction.commit();
}

void update_running_table(CDatabaseEx* database) {
  AutoODBCTransaction transaction(*database, false);
  for (const running_number& number : running_numbers)
    update_running_table(database, number.table, number.id_column, number.counter, true);
  transaction.commit();
}

bool is_pk_violation(CDBException* exception, const char* constraint) {
  const CString& message = exception->m_strError;
  // Two servers' marks in one text give the same answer in any order, but for MySQL's, which stand last.
  for (const dialect::Row& server : dialect::rows) {
    const dialect::DuplicateMarks& marks = server.duplicate;
    if (!contains(message, marks.in_message) && !contains(exception->m_strStateNativeOrigin, marks.in_state)) continue;
    return contains(message, marks.confirmed_by_constraint ? constraint : marks.confirmed_by);
  }
  return contains(message, constraint);
}
