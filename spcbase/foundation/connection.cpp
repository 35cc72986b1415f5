#include "spcbase/foundation/connection.h"

#include <string_view>

#include "spcbase/foundation/internal/dialect_table.h"

namespace {

// Runs a statement whose success is the answer.
bool runs(CDatabase& database, const char* statement) {
  try {
    database.ExecuteSQL(statement);
    return true;
  } catch (CDBException* e) {
    e->Delete();
    return false;
  }
}

}  // namespace

bool CDatabaseEx::attach(void* handle, bool updatable, const char* connect_string) {
  if (attached)
    attached = false;  // the former handle is not ours to close
  else if (m_hdbc != nullptr)
    Close();
  m_bUpdatable = updatable ? TRUE : FALSE;
  m_hdbc = handle;
  m_strConnect = connect_string;
  VerifyConnect();
  GetConnectInfo();
  attached = true;
  return true;
}

bool CDatabaseEx::check_connection(int light) {
  if (m_hdbc == nullptr) return false;
  try {
    if (light == 0) {
      ExecuteSQL("SELECT MONID FROM CSMON WHERE MONID = 0");
      return true;
    }
    constexpr WORD sql_alter_table = 86;
    DWORD value = 0;
    const RETCODE code = GetInfo(sql_alter_table, value);
    return code == 0 || code == 1;
  } catch (CDBException* e) {
    e->Delete();
    return false;
  } catch (...) {
    return false;
  }
}

AutoODBCTransaction::AutoODBCTransaction(CDatabaseEx& database, bool throwing)
    : database_(database), throwing_(throwing) {
  if (!database_.CanTransact() || database_.in_transaction) return;
  try {
    database_.in_transaction = database_.BeginTrans() != FALSE;
    passive_ = !database_.in_transaction;
  } catch (CDBException* e) {
    if (throwing_) throw;
    e->Delete();
  }
}

AutoODBCTransaction::~AutoODBCTransaction() {
  throwing_ = false;
  rollback();
}

bool AutoODBCTransaction::commit() { return end(&CDatabase::CommitTrans); }

bool AutoODBCTransaction::rollback() { return end(&CDatabase::Rollback); }

bool AutoODBCTransaction::end(BOOL (CDatabase::*operation)()) {
  if (passive_ || !database_.in_transaction) return true;
  try {
    const bool done = (database_.*operation)() != FALSE;
    database_.in_transaction = false;
    return done;
  } catch (CDBException* e) {
    if (throwing_) throw;
    e->Delete();
    return false;
  }
}

namespace {

// Puts the arguments into a text of the dialect table.
CString fill(std::string_view form, std::string_view first, std::string_view second) {
  CString text;
  for (;;) {
    const auto mark = form.find('%');
    text += form.substr(0, mark);
    if (mark == std::string_view::npos) return text;
    text += form[mark + 1] == '1' ? first : second;
    form.remove_prefix(mark + 2);
  }
}

CString fill_for(int id, const char* dialect::Row::*form, std::string_view first, std::string_view second = {}) {
  const dialect::Row* row = dialect::find(id);
  return row != nullptr ? fill(row->*form, first, second) : CString();
}

std::string_view view_of(const char* text) { return text != nullptr ? std::string_view(text) : std::string_view(); }

}  // namespace

namespace dbcheck {

int find_db_type(CDatabase& database) {
  for (std::size_t id = 0; id < dialect::rows.size(); ++id)
    if (runs(database, dialect::rows[id].probe)) return static_cast<int>(id);
  return dialect::unknown;
}

CString make_check_null_function(int dialect, const CString& expression, const CString& replacement) {
  return fill_for(dialect, &dialect::Row::null_function, expression.view(), replacement.view());
}

CString make_to_local_time(int dialect, const CString& expression) {
  return fill_for(dialect, &dialect::Row::local_time, expression.view());
}

CString make_bitwise_and_expr(int dialect, const char* left, const char* right) {
  const int known = dialect::find(dialect) != nullptr ? dialect : dialect::sql_server;
  return fill_for(known, &dialect::Row::bitwise_and, view_of(left), view_of(right));
}

CString make_cast_to_dt_expr(int dialect, bool de_to_date_exists, const CString& expression, const char* format) {
  const auto& words = dialect::oracle_moments;
  const CString form(format);
  const bool plain = dialect != dialect::oracle || form.CompareNoCase(words.use_cast) == 0;
  if (plain) return fill_for(dialect, &dialect::Row::cast_to_moment, expression.view());
  const bool by_function = format == nullptr ? de_to_date_exists : form.CompareNoCase(words.use_de_to_date) == 0;
  if (by_function) return fill(words.de_to_date, expression.view(), {});
  return fill(words.to_date, expression.view(), format == nullptr ? words.default_format : format);
}

bool check_de_to_date_sp_exist(CDatabase& database, int dialect) {
  return dialect == dialect::oracle && runs(database, dialect::oracle_moments.de_to_date_probe);
}

}  // namespace dbcheck
