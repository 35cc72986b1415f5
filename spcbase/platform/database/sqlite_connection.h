/// The session and statement of SQLite, for their own sources.
///
/// Part of the database platform layer.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <string>
#include <vector>

#include "spcbase/platform/database/session.h"
#include "spcbase/platform/database/sqlite_long_data.h"

namespace spcdb {

/// What a connect text of SQLite says.
struct SqliteOptions {
  std::string file;
  bool create = false;
  bool read_only = false;
  int timeout_ms = 5000;
};

class SqliteStatement;

/// A connection to one file.
class SqliteSession final : public Session {
 public:
  SqliteSession(const SqliteOptions& options, CallHook* hook);
  ~SqliteSession() override;
  SqliteSession(const SqliteSession&) = delete;
  SqliteSession& operator=(const SqliteSession&) = delete;

  const Quirks& quirks() const override { return quirks_; }
  CallGate& gate() override { return gate_; }
  void* native_handle() const override { return db_; }
  std::unique_ptr<Statement> prepare(std::string_view sql, Reading reading) override;
  std::int64_t run(std::string_view sql) override;
  bool transactions_supported() const override { return true; }
  void begin() override;
  void commit() override;
  void rollback() override;
  bool in_transaction() const override { return db_ != nullptr && sqlite3_get_autocommit(db_) == 0; }
  short information(unsigned short type, std::uint32_t& value) override;
  short information_text(unsigned short type, std::string& text) override;
  bool link_is_dead() override { return false; }
  std::string describe_server() override;
  void set_query_timeout(unsigned seconds) override;
  TableKey find_key(std::string_view table) override;
  void close() noexcept override;

  /// For the statements.
  sqlite3* db() const noexcept { return db_; }
  /// Starts the clock of the statement that is about to run.
  void arm_timeout() noexcept {
    if (query_timeout_s_ != 0) [[unlikely]]
      deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(query_timeout_s_);
  }
  /// A step of several statements within the transaction, or as one of its own where none is open.
  void enter_savepoint();
  /// Fails with the step undone.
  void leave_savepoint();
  void undo_savepoint() noexcept;
  /// What SQLite said about the call that just failed with `code`.
  Diagnostic diagnose(int code) const;

 private:
  void open(const SqliteOptions& options);
  void check_file(const SqliteOptions& options) const;
  void set_up(const SqliteOptions& options);
  std::unique_ptr<SqliteStatement> prepare_statement(std::string_view sql);
  void run_kept(std::unique_ptr<SqliteStatement>& statement, std::string_view sql);
  void apply_busy_timeout() noexcept;
  std::vector<std::string> names(std::string_view sql, std::string_view argument);
  static int on_progress(void* self) noexcept;

  sqlite3* db_ = nullptr;
  bool read_only_ = false;
  int busy_timeout_ms_ = 0;
  unsigned query_timeout_s_ = 0;
  std::chrono::steady_clock::time_point deadline_{};
  bool timed_out_ = false;
  CallGate gate_;
  Quirks quirks_;
  std::unique_ptr<SqliteStatement> begin_;
  std::unique_ptr<SqliteStatement> commit_;
  std::unique_ptr<SqliteStatement> rollback_;
  std::unique_ptr<SqliteStatement> savepoint_;
  std::unique_ptr<SqliteStatement> release_;
};

/// A prepared statement of SQLite. Nothing is allocated per execution or row once texts have reached their size.
class SqliteStatement final : public Statement {
 public:
  /// Takes the handle.
  SqliteStatement(SqliteSession& session, sqlite3_stmt* statement);
  ~SqliteStatement() override;
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  unsigned column_count() const override { return columns_; }
  bool integer(unsigned column, std::int64_t& value) override;
  bool real(unsigned column, double& value) override;
  bool text(unsigned column, std::string_view& value) override;
  bool moment(unsigned column, TIMESTAMP_STRUCT& value) override;
  bool bytes(unsigned column, std::string_view& value) override;
  bool long_length(unsigned column, std::int64_t& length) override;
  std::size_t read_long(unsigned column, std::span<std::byte> piece) override;

  void bind_columns(std::span<const ColumnBinding> columns) override;
  void execute(std::span<const Parameter> parameters) override;
  std::int64_t rows_affected() const override { return rows_affected_; }
  bool fetch() override;
  void close() noexcept override;
  ColumnInfo describe(unsigned column) override;

 private:
  enum class State : unsigned char { closed, first_row, row, at_end };

  void bind(int position, const Parameter& parameter);
  int bind_text(int position, std::string_view text);
  int bind_moment(int position, const TIMESTAMP_STRUCT& moment);
  // sqlite_long_data.cpp
  void choose_form(std::span<const ColumnBinding> columns);
  SqliteLongColumn& long_column(unsigned column);
  int bind_bytes(int position, const Parameter& parameter);
  bool writes_in_pieces(std::span<const Parameter> parameters);
  void execute_in_pieces(std::span<const Parameter> parameters);
  void write_pieces(const Parameter& parameter, sqlite3_int64 row_id);

  bool step();
  [[noreturn]] void fail_step(const Diagnostic& diagnostic);
  /// A value of the current row.
  sqlite3_value* value_at(unsigned column) const;
  [[noreturn]] void refuse_column(unsigned column) const;
  std::string_view number_text(unsigned column, sqlite3_value* stored);
  std::string name_of(unsigned column) const;

  unsigned columns_now() const;

  SqliteSession& session_;
  sqlite3_stmt* plain_;      ///< as it was given
  sqlite3_stmt* statement_;  ///< the form of it that runs
  int parameter_count_;
  unsigned columns_;
  bool writes_;
  State state_ = State::closed;
  std::int64_t rows_affected_ = -1;
  std::vector<int> widths_;                ///< of texts in characters, of bytes in bytes; 0 is no limit
  std::vector<std::string> kept_texts_;    ///< parameters that SQLite refers to while rows are read
  std::vector<std::string> number_texts_;  ///< numbers that are read as texts
  std::vector<SqliteLongColumn> long_columns_;
  SqliteHandle parted_;
  SqliteHandle writer_;
  bool writer_tried_ = false;
  SqliteValue value_;  ///< the long value that is being read
  std::size_t long_offset_ = 0;
};

/// The SQLSTATE that fits one of SQLite's result codes.
const char* sqlite_sqlstate(int extended_code, std::string_view message) noexcept;

/// ODBC's numbers for a declared type, e.g. "VARCHAR(255)"; an empty one is an expression.
void describe_sqlite_type(std::string_view declared, ColumnInfo& info);

}  // namespace spcdb
