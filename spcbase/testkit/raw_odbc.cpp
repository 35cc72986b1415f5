#include "spcbase/testkit/raw_odbc.h"

#include <sql.h>
#include <sqlext.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace test_support {
namespace {

SQLCHAR* narrow(const std::string& text) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));  // ODBC takes texts to read as writable
}

/// A statement handle for one statement.
class Statement {
 public:
  Statement(SQLHDBC connection, const std::string& text) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection, &handle_))) {
      throw std::runtime_error(odbc_diagnostic(SQL_HANDLE_DBC, connection));
    }
    const SQLRETURN result = SQLExecDirect(handle_, narrow(text), SQL_NTS);
    if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return;
    const std::string why = odbc_diagnostic(SQL_HANDLE_STMT, handle_) + " in: " + text;
    SQLFreeHandle(SQL_HANDLE_STMT, handle_);
    throw std::runtime_error(why);
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() { SQLFreeHandle(SQL_HANDLE_STMT, handle_); }

  SQLSMALLINT columns() const {
    SQLSMALLINT count = 0;
    SQLNumResultCols(handle_, &count);
    return count;
  }

  bool fetch() {
    const SQLRETURN result = SQLFetch(handle_);
    if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA) refuse();
    return result != SQL_NO_DATA;
  }

  std::optional<std::string> text(SQLUSMALLINT column) {
    std::string whole;
    std::array<char, 4096> piece{};
    SQLLEN length = 0;
    SQLRETURN result = SQL_SUCCESS_WITH_INFO;
    while (result == SQL_SUCCESS_WITH_INFO) {
      result = SQLGetData(handle_, column, SQL_C_CHAR, piece.data(), static_cast<SQLLEN>(piece.size()), &length);
      if (result == SQL_NO_DATA) break;
      if (!SQL_SUCCEEDED(result)) refuse();
      if (length == SQL_NULL_DATA) return std::nullopt;
      whole += piece.data();
    }
    return whole;
  }

 private:
  /// An answer that ends early must not pass for a whole one.
  [[noreturn]] void refuse() { throw std::runtime_error(odbc_diagnostic(SQL_HANDLE_STMT, handle_)); }

  SQLHSTMT handle_ = SQL_NULL_HSTMT;
};

/// What to install when a driver of the kit is missing; empty for any other failure, and any other driver.
std::string what_to_install(const std::string& connect_text, const std::string& failure) {
  // The driver manager's words for a driver that is not registered, or whose library is gone.
  if (failure.find("Can't open lib") == std::string::npos) return {};
  for (const auto& [driver, package] :
       {std::pair("MariaDB Unicode", "odbc-mariadb"), std::pair("SQLite3", "libsqliteodbc")})
    if (connect_text.find(driver) != std::string::npos)
      return std::string("; the ODBC driver ") + driver + " is missing; the package " + package + " has it";
  return {};
}

}  // namespace

std::string odbc_diagnostic(short kind, void* handle) {
  std::array<SQLCHAR, 6> state{};
  std::array<SQLCHAR, 1024> text{};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  SQLGetDiagRec(kind, handle, 1, state.data(), &native, text.data(), static_cast<SQLSMALLINT>(text.size()), &length);
  return std::string(reinterpret_cast<const char*>(state.data())) + " " + std::to_string(native) + " " +
         reinterpret_cast<const char*>(text.data());
}

RawOdbc::RawOdbc(const std::string& connect_text) {
  SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
  SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                0);  // NOLINT(performance-no-int-to-ptr): ODBC's way
  SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
  const SQLRETURN result =
      SQLDriverConnect(connection_, nullptr, narrow(connect_text), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
  if (SQL_SUCCEEDED(result)) return;
  std::string why = odbc_diagnostic(SQL_HANDLE_DBC, connection_);
  why += what_to_install(connect_text, why);
  SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  SQLFreeHandle(SQL_HANDLE_ENV, environment_);
  throw std::runtime_error(why);
}

RawOdbc::~RawOdbc() {
  SQLDisconnect(connection_);
  SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

void RawOdbc::execute(const std::string& statement) { Statement(connection_, statement); }

std::vector<RawOdbc::Row> RawOdbc::rows(const std::string& statement) {
  Statement opened(connection_, statement);
  const SQLSMALLINT columns = opened.columns();
  std::vector<Row> all;
  while (columns > 0 && opened.fetch()) {
    Row& row = all.emplace_back();
    for (SQLSMALLINT column = 1; column <= columns; ++column) {
      row.push_back(opened.text(static_cast<SQLUSMALLINT>(column)));
    }
  }
  return all;
}

std::string RawOdbc::value(const std::string& statement) {
  const std::vector<Row> all = rows(statement);
  return all.empty() || all.front().empty() ? std::string() : all.front().front().value_or("");
}

}  // namespace test_support
