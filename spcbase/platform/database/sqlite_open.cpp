#include <algorithm>
#include <charconv>
#include <filesystem>

#include "spcbase/platform/database/connect_text.h"
#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/sqlite_connection.h"
#include "spcbase/platform/database/sqlite_session.h"

namespace spcdb {
namespace {

constexpr std::string_view scheme = "sqlite:";
constexpr std::string_view memory = ":memory:";

[[noreturn]] void refuse(const std::string& text, const char* sqlstate = "08001") {
  raise(AFX_SQL_ERROR_CONNECT_FAIL, sqlstate, text);
}

int number_option(const ConnectItem& item) {
  int value = 0;
  const char* end = item.value.data() + item.value.size();
  const auto [stop, error] = std::from_chars(item.value.data(), end, value);
  if (error != std::errc() || stop != end || value < 0)
    refuse("The option " + item.key + " of the connect text wants a whole number, not \"" + item.value + "\".",
           "01S00");
  return value;
}

void take_option(SqliteOptions& options, const ConnectItem& item) {
  if (same_word(item.key, "Create"))
    options.create = number_option(item) != 0;
  else if (same_word(item.key, "Timeout"))
    options.timeout_ms = number_option(item);
  else
    refuse("The connect text has an unknown option \"" + (item.key.empty() ? item.value : item.key) +
               "\"; known are Create and Timeout.",
           "01S00");
}

/// Splits the file's name, braced or not, from the options behind it.
SqliteOptions parse(std::string_view text) {
  SqliteOptions options;
  if (same_word(text.substr(0, scheme.size()), scheme)) text.remove_prefix(scheme.size());
  const std::string keyed = text.starts_with('{') ? "File=" + std::string(text) : std::string();
  const auto end = std::min(text.find(';'), text.size());
  std::vector<ConnectItem> items;
  if (!keyed.empty()) {
    items = parse_connect_text(keyed);
    if (!items.front().closed) refuse("The connect text opens a brace and never closes it.", "01S00");
    options.file = items.front().value;
    items.erase(items.begin());
  } else {
    options.file = text.substr(0, end);
    items = parse_connect_text(text.substr(end));
  }
  for (const auto& item : items)
    take_option(options, item);
  std::replace(options.file.begin(), options.file.end(), '\\', '/');
  if (options.file.empty()) refuse("The connect text names no file; write sqlite:FILE.");
  return options;
}

}  // namespace

std::unique_ptr<Session> open_sqlite(std::string_view connect_text, bool read_only, CallHook* hook) {
  auto options = parse(connect_text);
  options.read_only = read_only;
  return std::make_unique<SqliteSession>(options, hook);
}

SqliteSession::SqliteSession(const SqliteOptions& options, CallHook* hook)
    : read_only_(options.read_only), busy_timeout_ms_(options.timeout_ms) {
  gate_.set_hook(hook);
  // SQLite takes "NAME" for a text when there is no such column; a name in back quotes is always a name.
  quirks_.quote_open = '`';
  quirks_.quote_close = '`';
  quirks_.one_row = OneRow::rowid;
  try {
    open(options);
    set_up(options);
  } catch (...) {
    close();
    throw;
  }
}

void SqliteSession::check_file(const SqliteOptions& options) const {
  namespace fs = std::filesystem;
  if (options.file == memory) return;
  std::error_code ignored;
  const fs::path file(options.file);
  if (fs::is_directory(file, ignored)) refuse("\"" + options.file + "\" is a folder, not a database file.");
  if (fs::exists(file, ignored)) return;
  if (!options.create || options.read_only)
    refuse("The database file \"" + options.file + "\" does not exist. Create=1 in the connect text makes it.");
  const auto folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
  if (!fs::is_directory(folder, ignored))
    refuse("The database file \"" + options.file + "\" cannot be made: there is no folder \"" + folder.string() +
           "\".");
}

void SqliteSession::open(const SqliteOptions& options) {
  check_file(options);
  if (gate_.refused("sqlite3_open_v2")) raise(gate_.refusal());
  int flags = SQLITE_OPEN_NOMUTEX | (options.read_only ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
  if ((options.create || options.file == memory) && !options.read_only) flags |= SQLITE_OPEN_CREATE;
  const int code = sqlite3_open_v2(options.file.c_str(), &db_, flags, nullptr);
  if (code == SQLITE_OK) return;
  auto diagnostic = diagnose(code);
  diagnostic.text = "The database file \"" + options.file + "\" cannot be opened: " + diagnostic.text;
  raise(diagnostic);
}

void SqliteSession::set_up(const SqliteOptions& options) {
  sqlite3_extended_result_codes(db_, 1);
  sqlite3_db_config(db_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(db_, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  apply_busy_timeout();
  const auto pragma = [&](const char* text) {
    if (gate_.refused("sqlite3_exec")) raise(gate_.refusal());
    return sqlite3_exec(db_, text, nullptr, nullptr, nullptr);
  };
  // The first look at the file: opening alone reads nothing.
  if (const int code = pragma("PRAGMA schema_version"); code != SQLITE_OK) {
    auto diagnostic = diagnose(code);
    diagnostic.text = (code & 0xff) == SQLITE_NOTADB
                          ? "\"" + options.file + "\" is not an SQLite database."
                          : "The database file \"" + options.file + "\" cannot be read: " + diagnostic.text;
    raise(diagnostic);
  }
  // Readers and a writer do not disturb each other then. A file that refuses it works without.
  if (!options.read_only && options.file != memory) pragma("PRAGMA journal_mode = WAL");
  for (const char* text : {"PRAGMA synchronous = NORMAL", "PRAGMA foreign_keys = ON"})
    if (const int code = pragma(text); code != SQLITE_OK) raise(diagnose(code));
}

}  // namespace spcdb
