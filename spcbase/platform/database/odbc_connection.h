/// The session of ODBC, for its own sources. Includes the ODBC headers: to be included first.
///
/// Part of the database platform layer.
#pragma once

#include "spcbase/platform/database/odbc_api.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/platform/database/session.h"

namespace spcdb {

/// What a driver says about the call on a handle that just failed with `code`: all records, the error before warnings.
Diagnostic read_diagnostic(SQLSMALLINT handle_type, SQLHANDLE handle, SQLRETURN code);

/// Text in the form of ODBC's functions, which do not write to it.
inline SQLCHAR* odbc_text(std::string_view text) noexcept {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.data() != nullptr ? text.data() : ""));
}

/// A connection, its own or a host's.
class OdbcSession final : public Session {
 public:
  /// Connects.
  OdbcSession(const std::string& connect_text, bool read_only, CallHook* hook);
  /// Takes a host's connection.
  OdbcSession(SQLHDBC connection, CallHook* hook);
  ~OdbcSession() override;
  OdbcSession(const OdbcSession&) = delete;
  OdbcSession& operator=(const OdbcSession&) = delete;

  const Quirks& quirks() const override { return quirks_; }
  CallGate& gate() override { return gate_; }
  void* native_handle() const override { return connection_; }
  std::unique_ptr<Statement> prepare(std::string_view sql, Reading reading) override;
  std::int64_t run(std::string_view sql) override;
  bool transactions_supported() const override { return transactions_; }
  void begin() override;
  void commit() override;
  void rollback() override;
  bool in_transaction() const override { return in_transaction_; }
  short information(unsigned short type, std::uint32_t& value) override;
  short information_text(unsigned short type, std::string& text) override;
  bool link_is_dead() override;
  std::string describe_server() override;
  void set_query_timeout(unsigned seconds) override;
  TableKey find_key(std::string_view table) override;
  void close() noexcept override;

  /// For the statements.
  unsigned query_timeout_s() const noexcept { return query_timeout_s_; }
  /// Does what a finished transaction could not: turns autocommit on again. Before each statement.
  void settle() {
    if (autocommit_due_) [[unlikely]]
      restore_autocommit();
  }
  /// A new statement handle.
  SQLHSTMT allocate_statement();
  /// Passes the door, makes the call and raises what the handle says when it failed.
  template <class Call>
  SQLRETURN checked(const char* function, SQLSMALLINT handle_type, SQLHANDLE handle, Call&& call) {
    if (gate_.refused(function)) [[unlikely]]
      refuse();
    const SQLRETURN code = call();
    if (!SQL_SUCCEEDED(code) && code != SQL_NO_DATA && code != SQL_NEED_DATA) [[unlikely]]
      fail(handle_type, handle, code);
    return code;
  }

 private:
  void connect(const std::string& connect_text, bool read_only);
  void learn();
  void check_text(std::string_view sql) const;
  void end_transaction(SQLSMALLINT how);
  void restore_autocommit();
  void set_autocommit(bool on);
  std::string required_text(SQLUSMALLINT type);
  SQLRETURN ask_text(SQLUSMALLINT type, std::string& text);
  bool backslash_escapes_literals();
  std::vector<std::string> primary_key(std::string_view table);
  std::vector<std::string> unique_key(std::string_view table);
  std::vector<std::string> never_null_columns(std::string_view table);
  [[noreturn]] void refuse();
  [[noreturn]] void fail(SQLSMALLINT handle_type, SQLHANDLE handle, SQLRETURN code);

  SQLHENV environment_ = SQL_NULL_HENV;
  SQLHDBC connection_ = SQL_NULL_HDBC;
  bool owned_ = false;
  bool connected_ = false;
  bool transactions_ = false;
  bool in_transaction_ = false;
  bool host_autocommit_ = true;  ///< what the connection goes back to behind a transaction
  bool autocommit_due_ = false;
  bool timeout_was_set_ = false;
  unsigned query_timeout_s_ = 0;
  CallGate gate_;
  Quirks quirks_;
  std::string server_;
};

}  // namespace spcdb
