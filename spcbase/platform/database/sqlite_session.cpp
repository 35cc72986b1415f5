#include "spcbase/platform/database/sqlite_session.h"

#include <algorithm>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/sql_text.h"
#include "spcbase/platform/database/sqlite_connection.h"

namespace spcdb {
namespace {

/// How many steps of SQLite's machine pass between two looks at the clock.
constexpr int steps_between_looks = 2000;

/// Finds the statement behind the first one, if there is any.
bool holds_another(sqlite3* db, std::string_view tail) {
  while (!tail.empty()) {
    sqlite3_stmt* statement = nullptr;
    const char* rest = nullptr;
    const int code = sqlite3_prepare_v3(db, tail.data(), static_cast<int>(tail.size()), 0, &statement, &rest);
    sqlite3_finalize(statement);
    if (code != SQLITE_OK || statement != nullptr) return true;
    const auto used = static_cast<std::size_t>(rest - tail.data());
    if (used == 0) return false;
    tail.remove_prefix(used);
  }
  return false;
}

}  // namespace

SqliteSession::~SqliteSession() { close(); }

Diagnostic SqliteSession::diagnose(int code) const {
  Diagnostic diagnostic;
  const int extended = db_ != nullptr ? sqlite3_extended_errcode(db_) : code;
  // A misuse is answered without a trace in the connection's own error state.
  const bool told = (extended & 0xff) == (code & 0xff);
  diagnostic.native = told ? extended : code;
  diagnostic.text = told && db_ != nullptr ? sqlite3_errmsg(db_) : sqlite3_errstr(code);
  diagnostic.sqlstate = sqlite_sqlstate(static_cast<int>(diagnostic.native), diagnostic.text);
  diagnostic.origin = "[SQLite]";
  if ((code & 0xff) == SQLITE_INTERRUPT && timed_out_) {
    diagnostic.sqlstate = "HYT00";
    diagnostic.text = "the statement took longer than " + std::to_string(query_timeout_s_) + " s";
  }
  return diagnostic;
}

std::unique_ptr<SqliteStatement> SqliteSession::prepare_statement(std::string_view sql) {
  std::string translated;
  if (sql.find('{') != std::string_view::npos) {
    translated = translate_odbc_escapes(sql);
    sql = translated;
  }
  if (gate_.refused("sqlite3_prepare_v3")) raise(gate_.refusal());
  sqlite3_stmt* statement = nullptr;
  const char* tail = nullptr;
  arm_timeout();
  const int code =
      sqlite3_prepare_v3(db_, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT, &statement, &tail);
  if (code != SQLITE_OK) raise(diagnose(code));
  if (statement == nullptr) raise(-1, "42000", "The statement is empty.");
  auto prepared = std::make_unique<SqliteStatement>(*this, statement);
  if (holds_another(db_, sql.substr(static_cast<std::size_t>(tail - sql.data()))))
    raise(-1, "42000", "The text holds more than one statement.");
  return prepared;
}

std::unique_ptr<Statement> SqliteSession::prepare(std::string_view sql, Reading reading) {
  static_cast<void>(reading);  // rows are read one by one from the file in any case
  return prepare_statement(sql);
}

std::int64_t SqliteSession::run(std::string_view sql) {
  const auto statement = prepare_statement(sql);
  statement->execute({});
  while (statement->fetch()) {
  }
  return statement->rows_affected();
}

void SqliteSession::run_kept(std::unique_ptr<SqliteStatement>& statement, std::string_view sql) {
  if (statement == nullptr) statement = prepare_statement(sql);
  statement->execute({});
}

void SqliteSession::begin() {
  // A transaction that begins by reading could not write any more once another writer was faster.
  run_kept(begin_, read_only_ ? "BEGIN" : "BEGIN IMMEDIATE");
}

void SqliteSession::commit() { run_kept(commit_, "COMMIT"); }

void SqliteSession::rollback() {
  // Some failures, a full disk among them, have ended the transaction already.
  if (in_transaction()) run_kept(rollback_, "ROLLBACK");
}

void SqliteSession::enter_savepoint() { run_kept(savepoint_, "SAVEPOINT long_data"); }

void SqliteSession::leave_savepoint() { run_kept(release_, "RELEASE long_data"); }

void SqliteSession::undo_savepoint() noexcept {
  // Some failures have ended the transaction, and the savepoint with it, already.
  if (!in_transaction()) return;
  gate_.release("sqlite3_exec");
  sqlite3_exec(db_, "ROLLBACK TO long_data; RELEASE long_data", nullptr, nullptr, nullptr);
}

std::string SqliteSession::describe_server() { return std::string("SQLite ") + sqlite3_libversion(); }

void SqliteSession::set_query_timeout(unsigned seconds) {
  query_timeout_s_ = seconds;
  apply_busy_timeout();
  if (seconds == 0)
    sqlite3_progress_handler(db_, 0, nullptr, nullptr);
  else
    sqlite3_progress_handler(db_, steps_between_looks, &SqliteSession::on_progress, this);
}

void SqliteSession::apply_busy_timeout() noexcept {
  // Waiting for a lock is part of a statement's time.
  constexpr unsigned longest_s = 1'000'000;
  const int limit_ms = static_cast<int>(std::min(query_timeout_s_, longest_s) * 1000U);
  sqlite3_busy_timeout(db_, query_timeout_s_ == 0 ? busy_timeout_ms_ : std::min(busy_timeout_ms_, limit_ms));
}

int SqliteSession::on_progress(void* self) noexcept {
  auto& session = *static_cast<SqliteSession*>(self);
  session.timed_out_ = std::chrono::steady_clock::now() > session.deadline_;
  return session.timed_out_ ? 1 : 0;
}

std::vector<std::string> SqliteSession::names(std::string_view sql, std::string_view argument) {
  const auto statement = prepare_statement(sql);
  const Parameter parameter = Parameter::of_text(argument);
  statement->execute({&parameter, 1});
  std::vector<std::string> found;
  std::string_view name;
  while (statement->fetch())
    found.emplace_back(statement->text(0, name) ? name : std::string_view());
  return found;
}

TableKey SqliteSession::find_key(std::string_view table) {
  if (const auto dot = table.rfind('.'); dot != std::string_view::npos) table.remove_prefix(dot + 1);
  TableKey key{names("SELECT name FROM pragma_table_info(?) WHERE pk > 0 ORDER BY pk", table)};
  if (!key.columns.empty()) return key;
  const auto indexes =
      names("SELECT name FROM pragma_index_list(?) WHERE `unique` = 1 AND partial = 0 ORDER BY seq DESC", table);
  const auto never_null = names("SELECT name FROM pragma_table_info(?) WHERE `notnull` = 1", table);
  const auto is_never_null = [&](const std::string& column) {
    return std::find(never_null.begin(), never_null.end(), column) != never_null.end();
  };
  for (const auto& index : indexes) {
    auto columns = names("SELECT name FROM pragma_index_info(?) ORDER BY seqno", index);
    if (!columns.empty() && std::all_of(columns.begin(), columns.end(), is_never_null)) return {std::move(columns)};
  }
  return {};
}

void SqliteSession::close() noexcept {
  if (db_ == nullptr) return;
  begin_.reset();
  commit_.reset();
  rollback_.reset();
  savepoint_.reset();
  release_.reset();
  if (in_transaction()) {
    gate_.release("sqlite3_exec");
    sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
  }
  gate_.release("sqlite3_close_v2");
  sqlite3_close_v2(db_);
  db_ = nullptr;
}

}  // namespace spcdb
