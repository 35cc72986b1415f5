#include "spcbase/platform/database/database.h"

#include <algorithm>
#include <string>
#include <utility>

#include "spcbase/platform/database/connect_text.h"
#include "spcbase/platform/database/connection.h"
#include "spcbase/platform/database/odbc_session.h"
#include "spcbase/platform/database/recordset.h"
#include "spcbase/platform/database/sqlite_session.h"
#include "spcbase/platform/database/watch.h"

using spcdb::Connection;

namespace {

constexpr std::string_view sqlite_prefix = "sqlite:";
constexpr std::string_view odbc_prefix = "ODBC;";
/// What stands in `m_strStateNativeOrigin` before what the driver says of itself; before that are numbers.
constexpr std::string_view origin_mark = ",Origin:";

bool begins_with(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    if (lower(text[i]) != lower(prefix[i])) return false;
  }
  return true;
}

std::unique_ptr<spcdb::Session> open_plainly(std::string_view connect, bool read_only) {
  if (begins_with(connect, sqlite_prefix)) return spcdb::open_sqlite(connect, read_only);
  if (begins_with(connect, odbc_prefix)) connect.remove_prefix(odbc_prefix.size());
  return spcdb::open_odbc(connect, read_only);
}

[[noreturn]] void raise_not_connected() {
  spcdb::raise(AFX_SQL_ERROR_CONNECT_FAIL, "08003", "The database is not connected.");
}

}  // namespace

std::unique_ptr<spcdb::Session> spcdb::open_session(std::string_view connect, bool read_only) {
  // What a driver repeats of the connect text must not tell the password.
  try {
    return open_plainly(connect, read_only);
  } catch (CDBException* failure) {
    failure->m_strError = CString(mask_passwords_in_message(failure->m_strError.view(), connect));
    std::string shown;
    for (auto rest = failure->m_strStateNativeOrigin.view(); !rest.empty();) {
      const auto line = rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1);
      const auto mark = line.find(origin_mark);
      const auto numbers = mark == line.npos ? line.size() : mark + origin_mark.size();
      shown.append(line.substr(0, numbers)).append(mask_passwords_in_message(line.substr(numbers), connect));
      rest.remove_prefix(line.size());
    }
    failure->m_strStateNativeOrigin = CString(std::move(shown));
    throw;
  }
}

CDatabase::CDatabase() = default;

CDatabase::~CDatabase() { CDatabase::Close(); }

BOOL CDatabase::Open(const char* dsn, BOOL exclusive, BOOL read_only, const char* connect, BOOL use_cursor_library) {
  static_cast<void>(exclusive);
  static_cast<void>(use_cursor_library);
  std::string text = connect != nullptr ? connect : "";
  if (dsn != nullptr && *dsn != '\0') {
    if (begins_with(text, odbc_prefix)) text.erase(0, odbc_prefix.size());
    text = std::string("DSN=") + dsn + ";" + text;
  }
  return OpenEx(text.c_str(), read_only ? openReadOnly : 0U);
}

BOOL CDatabase::OpenEx(const char* connect, DWORD options) {
  if (m_hdbc != nullptr) spcdb::raise(AFX_SQL_ERROR_ILLEGAL_MODE, "08002", "The database is connected already.");
  const std::string_view text = connect != nullptr ? std::string_view(connect) : std::string_view();
  const bool read_only = (options & openReadOnly) != 0;
  adopt_session(spcdb::open_session(text, read_only), !read_only);
  m_strConnect = text;
  return TRUE;
}

void CDatabase::adopt_session(std::unique_ptr<spcdb::Session> session, BOOL updatable) {
  CDatabase::Close();
  connection_ = std::make_unique<Connection>(std::move(session));
  m_hdbc = connection_->session().native_handle();
  m_bUpdatable = updatable;
  GetConnectInfo();
}

void CDatabase::Close() {
  if (connection_ != nullptr) {
    // Closing a recordset takes it off the list.
    while (!connection_->open_recordsets().empty())
      connection_->open_recordsets().back()->Close();
    connection_.reset();
  }
  m_hdbc = nullptr;
  m_bTransactions = FALSE;
  m_bUpdatable = FALSE;
}

void CDatabase::VerifyConnect() {
  // What stood under the former handle is dropped; the handle itself was its host's.
  if (connection_ != nullptr) {
    while (!connection_->open_recordsets().empty())
      connection_->open_recordsets().back()->Close();
    connection_.reset();
  }
  if (m_hdbc == nullptr) raise_not_connected();
  connection_ = std::make_unique<Connection>(spcdb::adopt_odbc(m_hdbc));
}

void CDatabase::GetConnectInfo() {
  if (connection_ == nullptr) raise_not_connected();
  m_bTransactions = connection_->session().transactions_supported() ? TRUE : FALSE;
  if (query_timeout_s_ != 0) connection_->session().set_query_timeout(query_timeout_s_);
}

void CDatabase::ExecuteSQL(const char* sql) {
  if (connection_ == nullptr) raise_not_connected();
  const std::string_view text = sql != nullptr ? std::string_view(sql) : std::string_view();
  spcdb::watched(*this, {text, {}, {}}, [&] { return connection_->session().run(text); });
}

BOOL CDatabase::BeginTrans() {
  if (connection_ == nullptr) raise_not_connected();
  if (!m_bTransactions || connection_->in_transaction) return FALSE;
  spcdb::watched(*this, {"BEGIN", {}, {}}, [&] {
    connection_->session().begin();
    return -1;
  });
  connection_->in_transaction = true;
  connection_->transaction_lost = false;
  return TRUE;
}

BOOL CDatabase::CommitTrans() {
  if (connection_ == nullptr) raise_not_connected();
  if (!m_bTransactions || !connection_->in_transaction) return FALSE;
  spcdb::watched(*this, {"COMMIT", {}, {}}, [&] {
    // The driver would say that it had committed, with nothing committed.
    if (connection_->transaction_lost)
      spcdb::raise(AFX_SQL_ERROR_TRANSACTION_LOST, "40001",
                   "The server has rolled this transaction back; nothing of it was committed.");
    connection_->session().commit();
    return -1;
  });
  connection_->in_transaction = false;
  return TRUE;
}

BOOL CDatabase::Rollback() {
  if (connection_ == nullptr) raise_not_connected();
  if (!m_bTransactions || !connection_->in_transaction) return FALSE;
  spcdb::watched(*this, {"ROLLBACK", {}, {}}, [&] {
    connection_->session().rollback();
    return -1;
  });
  connection_->in_transaction = false;
  connection_->transaction_lost = false;
  return TRUE;
}

void CDatabase::SetQueryTimeout(DWORD seconds) {
  query_timeout_s_ = seconds;
  if (connection_ != nullptr) connection_->session().set_query_timeout(seconds);
}

DWORD CDatabase::GetQueryTimeout() const { return query_timeout_s_; }

RETCODE CDatabase::GetInfo(WORD type, DWORD& value) {
  if (connection_ == nullptr) return -2;
  std::uint32_t answer = 0;
  const RETCODE code = connection_->session().information(type, answer);
  value = answer;
  return code;
}

RETCODE CDatabase::information_text(WORD type, CString& text) {
  std::string answer;
  const RETCODE code = connection_ == nullptr ? RETCODE{-2} : connection_->session().information_text(type, answer);
  text = CString(std::move(answer));
  return code;
}

void CDatabase::set_observer(spcdb::StatementObserver* observer) { observer_ = observer; }

spcdb::StatementObserver* CDatabase::observer() const { return observer_; }

bool CDatabase::link_is_dead() { return connection_ == nullptr || connection_->session().link_is_dead(); }

CString CDatabase::describe_server() {
  return connection_ == nullptr ? CString() : CString(connection_->session().describe_server());
}
