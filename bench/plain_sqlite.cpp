#include "bench/plain_sqlite.h"

#include <time.h>

#include <algorithm>
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

Moment local_of(const Moment& utc) {
  std::tm time{};
  time.tm_year = utc.year - 1900;
  time.tm_mon = utc.month - 1;
  time.tm_mday = utc.day;
  time.tm_hour = utc.hour;
  time.tm_min = utc.minute;
  time.tm_sec = utc.second;
  const std::time_t seconds = timegm(&time);
  localtime_r(&seconds, &time);
  return moment_of(time, utc.millisecond * 1'000'000L);
}

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

PlainSqliteStatement::PlainSqliteStatement(sqlite3* db, const std::string& sql, const std::string& counted_as)
    : db_(db), text_(counted_as) {
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
  begin_ = std::make_unique<Statement>(db_, "BEGIN IMMEDIATE", "BEGIN");
  commit_ = std::make_unique<Statement>(db_, "COMMIT", "COMMIT");
}

PlainSqlite::~PlainSqlite() {
  statements_.clear();
  begin_.reset();
  commit_.reset();
  sqlite3_close(db_);
}

PlainSqlite::Statement& PlainSqlite::prepare(const std::string& sql, const char* /*parameter_kinds*/,
                                             const char* /*column_kinds*/, int /*block_rows*/) {
  return *statements_.emplace_back(std::make_unique<Statement>(db_, sql, sql));
}

PlainSqlite::Statement& PlainSqlite::prepare_long(const std::string& sql, const LongColumn& from,
                                                  const char* /*parameter_kinds*/, const char* /*column_kinds*/) {
  const std::string column = from.column;
  const std::string by_row_id = std::string(sql).replace(sql.find(column), column.size(), "rowid");
  return *statements_.emplace_back(std::make_unique<Statement>(db_, by_row_id, sql));
}

void PlainSqlite::begin() { begin_->write(); }
void PlainSqlite::commit() { commit_->write(); }

sqlite3_blob* PlainSqlite::open_long(const LongColumn& from, sqlite3_int64 row_id, bool to_write) {
  sqlite3_blob* value = nullptr;
  if (sqlite3_blob_open(db_, "main", from.table, from.column, row_id, to_write ? 1 : 0, &value) != SQLITE_OK)
    throw std::runtime_error(sqlite3_errmsg(db_));
  return value;
}

void PlainSqlite::insert_long(Statement& insert, int position, const LongColumn& from, const std::string& value) {
  run("BEGIN IMMEDIATE");
  insert.set_zeros(position, value.size());
  insert.write();
  sqlite3_blob* stored = open_long(from, sqlite3_last_insert_rowid(db_), true);
  int result = SQLITE_OK;
  for (std::size_t at = 0; at < value.size() && result == SQLITE_OK; at += long_piece) {
    const auto count = static_cast<int>(std::min(long_piece, value.size() - at));
    result = sqlite3_blob_write(stored, value.data() + at, count, static_cast<int>(at));
  }
  sqlite3_blob_close(stored);
  if (result != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(db_));
  run("COMMIT");
}

void PlainSqlite::read_long(Statement& row, int column, const LongColumn& from, std::string& value) {
  sqlite3_blob* stored = open_long(from, row.number_at(column), false);
  value.resize(static_cast<std::size_t>(sqlite3_blob_bytes(stored)));
  int result = SQLITE_OK;
  for (std::size_t at = 0; at < value.size() && result == SQLITE_OK; at += long_piece) {
    const auto count = static_cast<int>(std::min(long_piece, value.size() - at));
    result = sqlite3_blob_read(stored, value.data() + at, count, static_cast<int>(at));
  }
  sqlite3_blob_close(stored);
  if (result != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(db_));
}

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
