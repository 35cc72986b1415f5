#include "spcbase/platform/database/odbc_connection.h"

#include <array>
#include <cstring>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/odbc_session.h"
#include "spcbase/platform/database/odbc_statement.h"
#include "spcbase/platform/database/sql_text.h"

namespace spcdb {
namespace {

/// An attribute's number in the form of a pointer, as ODBC wants it.
SQLPOINTER attribute(std::uintptr_t value) noexcept { return reinterpret_cast<SQLPOINTER>(value); }

}  // namespace

OdbcSession::OdbcSession(const std::string& connect_text, bool read_only, CallHook* hook) : owned_(true) {
  gate_.set_hook(hook);
  try {
    connect(connect_text, read_only);
    learn();
  } catch (...) {
    close();
    throw;
  }
}

OdbcSession::OdbcSession(SQLHDBC connection, CallHook* hook) : connection_(connection), connected_(true) {
  gate_.set_hook(hook);
  SQLUINTEGER mode = SQL_AUTOCOMMIT_ON;
  checked("SQLGetConnectAttr", SQL_HANDLE_DBC, connection_,
          [&] { return SQLGetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT, &mode, SQL_IS_UINTEGER, nullptr); });
  host_autocommit_ = mode == SQL_AUTOCOMMIT_ON;
  learn();
}

OdbcSession::~OdbcSession() { close(); }

void OdbcSession::refuse() { raise(gate_.refusal()); }

void OdbcSession::fail(SQLSMALLINT handle_type, SQLHANDLE handle, SQLRETURN code) {
  raise(read_diagnostic(handle_type, handle, code));
}

void OdbcSession::connect(const std::string& connect_text, bool read_only) {
  checked("SQLAllocHandle", SQL_HANDLE_ENV, SQL_NULL_HANDLE,
          [&] { return SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_); });
  checked("SQLSetEnvAttr", SQL_HANDLE_ENV, environment_,
          [&] { return SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, attribute(SQL_OV_ODBC3), 0); });
  checked("SQLAllocHandle", SQL_HANDLE_ENV, environment_,
          [&] { return SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_); });
  // A wish: a driver that cannot keep writers out says nothing of it.
  if (read_only && !gate_.refused("SQLSetConnectAttr"))
    SQLSetConnectAttr(connection_, SQL_ATTR_ACCESS_MODE, attribute(SQL_MODE_READ_ONLY), 0);
  checked("SQLDriverConnect", SQL_HANDLE_DBC, connection_, [&] {
    return SQLDriverConnect(connection_, nullptr, odbc_text(connect_text),
                            static_cast<SQLSMALLINT>(connect_text.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
  });
  connected_ = true;
}

void OdbcSession::learn() {
  const auto dbms = required_text(SQL_DBMS_NAME);
  const auto driver = required_text(SQL_DRIVER_NAME);
  server_ = dbms + " " + required_text(SQL_DBMS_VER) + " through " + driver + " " + required_text(SQL_DRIVER_VER);
  quirks_ = quirks_of(dbms, driver);
  const auto quote = required_text(SQL_IDENTIFIER_QUOTE_CHAR);
  if (!quirks_.fixed_quotes && !quote.empty()) quirks_.quote_open = quirks_.quote_close = quote.front();
  SQLUSMALLINT capable = SQL_TC_NONE;
  checked("SQLGetInfo", SQL_HANDLE_DBC, connection_,
          [&] { return SQLGetInfo(connection_, SQL_TXN_CAPABLE, &capable, sizeof capable, nullptr); });
  transactions_ = capable != SQL_TC_NONE;
  if (quirks_.backslash_escapes) quirks_.backslash_escapes = backslash_escapes_literals();
}

std::string OdbcSession::required_text(SQLUSMALLINT type) {
  std::string text;
  checked("SQLGetInfo", SQL_HANDLE_DBC, connection_, [&] { return ask_text(type, text); });
  return text;
}

SQLRETURN OdbcSession::ask_text(SQLUSMALLINT type, std::string& text) {
  constexpr std::size_t usual_bytes = 256, most_bytes = 32767;
  SQLSMALLINT length = 0;
  const auto ask = [&](std::size_t size) {
    text.assign(size, '\0');
    return SQLGetInfo(connection_, type, text.data(), static_cast<SQLSMALLINT>(size), &length);
  };
  auto code = ask(usual_bytes);
  if (SQL_SUCCEEDED(code) && length >= static_cast<SQLSMALLINT>(usual_bytes)) code = ask(most_bytes);
  // Not every driver tells the length.
  text.resize(SQL_SUCCEEDED(code) ? std::strlen(text.c_str()) : 0);
  return code;
}

bool OdbcSession::backslash_escapes_literals() {
  // Two backslashes are one character where they escape.
  OdbcStatement probe(*this, "SELECT CHAR_LENGTH('\\\\')");
  const ColumnBinding length;
  probe.bind_columns({&length, 1});
  probe.execute({});
  std::int64_t characters = 0;
  return probe.fetch() && probe.integer(0, characters) && characters == 1;
}

SQLHSTMT OdbcSession::allocate_statement() {
  SQLHSTMT statement = SQL_NULL_HSTMT;
  checked("SQLAllocHandle", SQL_HANDLE_DBC, connection_,
          [&] { return SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement); });
  return statement;
}

void OdbcSession::check_text(std::string_view sql) const {
  // One driver takes a blank text without a word.
  if (is_blank(sql)) raise(-1, "42000", "The statement is empty.");
  if (quirks_.runs_several_statements && holds_two_statements(sql, quirks_.backslash_escapes))
    raise(-1, "42000", "The text holds more than one statement.");
}

std::unique_ptr<Statement> OdbcSession::prepare(std::string_view sql, Reading reading) {
  static_cast<void>(reading);  // no driver of the table streams without costing more than it gives
  settle();
  check_text(sql);
  return std::make_unique<OdbcStatement>(*this, sql);
}

std::int64_t OdbcSession::run(std::string_view sql) {
  settle();
  check_text(sql);
  struct Holder {
    OdbcSession& session;
    SQLHSTMT handle;
    ~Holder() {
      session.gate().release("SQLFreeHandle");
      SQLFreeHandle(SQL_HANDLE_STMT, handle);
    }
  } const holder{*this, allocate_statement()};
  const auto statement = holder.handle;
  if (query_timeout_s_ != 0 && !gate_.refused("SQLSetStmtAttr"))
    SQLSetStmtAttr(statement, SQL_ATTR_QUERY_TIMEOUT, attribute(query_timeout_s_), 0);
  const auto code = checked("SQLExecDirect", SQL_HANDLE_STMT, statement, [&] {
    return SQLExecDirect(statement, odbc_text(sql), static_cast<SQLINTEGER>(sql.size()));
  });
  if (code == SQL_NO_DATA) return 0;
  SQLSMALLINT columns = 0;
  checked("SQLNumResultCols", SQL_HANDLE_STMT, statement, [&] { return SQLNumResultCols(statement, &columns); });
  if (columns != 0) return -1;
  SQLLEN rows = -1;
  checked("SQLRowCount", SQL_HANDLE_STMT, statement, [&] { return SQLRowCount(statement, &rows); });
  return rows;
}

void OdbcSession::set_autocommit(bool on) {
  checked("SQLSetConnectAttr", SQL_HANDLE_DBC, connection_, [&] {
    return SQLSetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT, attribute(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF),
                             SQL_IS_UINTEGER);
  });
}

void OdbcSession::restore_autocommit() {
  set_autocommit(true);
  autocommit_due_ = false;
}

void OdbcSession::begin() {
  if (in_transaction_) raise(-1, "25000", "A transaction is open already.");
  set_autocommit(false);
  autocommit_due_ = false;
  in_transaction_ = true;
}

void OdbcSession::end_transaction(SQLSMALLINT how) {
  checked("SQLEndTran", SQL_HANDLE_DBC, connection_, [&] { return SQLEndTran(SQL_HANDLE_DBC, connection_, how); });
  in_transaction_ = false;
  // The work is done, whatever becomes of the mode: a failure here waits for the next statement.
  autocommit_due_ = host_autocommit_;
  try {
    settle();
  } catch (CDBException* failure) {
    failure->Delete();
  }
}

void OdbcSession::commit() {
  if (!in_transaction_) raise(-1, "25000", "No transaction is open.");
  end_transaction(SQL_COMMIT);
}

void OdbcSession::rollback() {
  if (in_transaction_) end_transaction(SQL_ROLLBACK);
}

short OdbcSession::information(unsigned short type, std::uint32_t& value) {
  value = 0;
  if (gate_.refused("SQLGetInfo")) return gate_.refusal().return_code;
  // Some drivers write two bytes where four are documented: the others stay zero.
  return SQLGetInfo(connection_, type, &value, sizeof value, nullptr);
}

short OdbcSession::information_text(unsigned short type, std::string& text) {
  text.clear();
  return gate_.refused("SQLGetInfo") ? gate_.refusal().return_code : ask_text(type, text);
}

bool OdbcSession::link_is_dead() {
  if (gate_.refused("SQLGetConnectAttr")) return false;
  SQLUINTEGER dead = SQL_CD_FALSE;
  const auto code = SQLGetConnectAttr(connection_, SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr);
  return SQL_SUCCEEDED(code) && dead == SQL_CD_TRUE;
}

std::string OdbcSession::describe_server() { return server_; }

void OdbcSession::set_query_timeout(unsigned seconds) {
  query_timeout_s_ = seconds;
  if (quirks_.timeout_statement.empty() || (seconds == 0 && !timeout_was_set_)) return;
  auto statement = quirks_.timeout_statement;
  statement.replace(statement.find("%s"), std::strlen("%s"), std::to_string(seconds));
  try {
    run(statement);
    timeout_was_set_ = seconds != 0;
  } catch (CDBException* failure) {
    // Never an error: a server that has no such thing goes on without.
    failure->Delete();
  }
}

void OdbcSession::close() noexcept {
  if (connected_ && in_transaction_) {
    gate_.release("SQLEndTran");
    SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_ROLLBACK);
    in_transaction_ = false;
    autocommit_due_ = host_autocommit_;
  }
  if (connected_ && autocommit_due_) {
    gate_.release("SQLSetConnectAttr");
    SQLSetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT, attribute(SQL_AUTOCOMMIT_ON), SQL_IS_UINTEGER);
    autocommit_due_ = false;
  }
  if (owned_ && connected_) {
    gate_.release("SQLDisconnect");
    SQLDisconnect(connection_);
  }
  connected_ = false;
  if (owned_ && connection_ != SQL_NULL_HDBC) {
    gate_.release("SQLFreeHandle");
    SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  }
  if (environment_ != SQL_NULL_HENV) {
    gate_.release("SQLFreeHandle");
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
  }
  connection_ = SQL_NULL_HDBC;
  environment_ = SQL_NULL_HENV;
}

}  // namespace spcdb
