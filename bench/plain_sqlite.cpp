#include "bench/plain_sqlite.h"

#include <time.h>

#include <array>
#include <cstdio>

namespace bench {
namespace {

Moment moment_of(const std::tm& time, long nanoseconds) {
  return {time.tm_year + 1900,
          time.tm_mon + 1,
          time.tm_mday,
          time.tm_hour,
          time.tm_min,
          time.tm_sec,
          static_cast<int>(nanoseconds / 1'000'000)};
}

int digits(const char* text, int count) {
  int value = 0;
  for (int i = 0; i < count; ++i)
    value = value * 10 + (text[i] - '0');
  return value;
}

}  // namespace

Moment local_now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  std::tm time{};
  localtime_r(&now.tv_sec, &time);
  return moment_of(time, now.tv_nsec);
}

Moment utc_now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  std::tm time{};
  gmtime_r(&now.tv_sec, &time);
  return moment_of(time, now.tv_nsec);
}

PlainSqliteStatement::PlainSqliteStatement(sqlite3* db, const std::string& sql) : db_(db), text_(sql) {
  check(sqlite3_prepare_v3(db, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement_, nullptr));
}

void PlainSqliteStatement::fail() const {
  throw std::runtime_error(std::string(sqlite3_errmsg(db_)) + " in: " + text_);
}

void PlainSqliteStatement::set_moment(int position, const Moment& value) {
  std::array<char, 64> text{};
  const int length = std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d.%03d", value.year,
                                   value.month, value.day, value.hour, value.minute, value.second, value.millisecond);
  check(sqlite3_bind_text(statement_, position + 1, text.data(), length, SQLITE_TRANSIENT));
}

Moment PlainSqliteStatement::moment_at(int column) {
  const char* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  if (text == nullptr || sqlite3_column_bytes(statement_, column) != 23) fail();
  return {digits(text, 4),      digits(text + 5, 2),  digits(text + 8, 2), digits(text + 11, 2),
          digits(text + 14, 2), digits(text + 17, 2), digits(text + 20, 3)};
}

PlainSqlite::PlainSqlite(const std::string& file) {
  if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr) !=
      SQLITE_OK)
    throw std::runtime_error("cannot open " + file);
  run("PRAGMA journal_mode = WAL");
  run("PRAGMA synchronous = NORMAL");
  run("PRAGMA foreign_keys = ON");
  begin_ = std::make_unique<Statement>(db_, "BEGIN IMMEDIATE");
  commit_ = std::make_unique<Statement>(db_, "COMMIT");
}

PlainSqlite::~PlainSqlite() {
  statements_.clear();
  begin_.reset();
  commit_.reset();
  sqlite3_close(db_);
}

PlainSqlite::Statement& PlainSqlite::prepare(const std::string& sql, const char* /*parameter_kinds*/,
                                             const char* /*column_kinds*/, int /*block_rows*/) {
  return *statements_.emplace_back(std::make_unique<Statement>(db_, sql));
}

void PlainSqlite::begin() { begin_->write(); }
void PlainSqlite::commit() { commit_->write(); }

void PlainSqlite::run(const std::string& sql) {
  char* why = nullptr;
  if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &why) == SQLITE_OK) return;
  const std::string text = why != nullptr ? why : "unknown failure";
  sqlite3_free(why);
  throw std::runtime_error(text + " in: " + sql);
}

Tally PlainSqlite::tally() const {
  Tally tally;
  for (const auto& statement : statements_)
    if (statement->sent() != 0) tally[shape_of(statement->text())] += statement->sent();
  if (begin_->sent() != 0) tally["BEGIN"] = begin_->sent();
  if (commit_->sent() != 0) tally["COMMIT"] = commit_->sent();
  return tally;
}

}  // namespace bench
