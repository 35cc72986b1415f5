#include "spcbase/platform/database/odbc_connection.h"

#include <algorithm>
#include <array>

#include "spcbase/platform/database/connect_text.h"
#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/odbc_session.h"

namespace spcdb {
namespace {

constexpr std::string_view prefix = "ODBC;";

/// What a driver needs and a connect text may leave out.
struct Addition {
  std::string_view driver;  ///< a part of the driver's name, in capitals
  std::string_view key;
  std::string_view value;
};

constexpr std::array<Addition, 5> additions{{
    {"MARIADB", "OPTION", "2"},  // counts the rows that an UPDATE found, not those that it changed
    {"SQLITE3", "JournalMode", "WAL"},
    {"SQLITE3", "SyncPragma", "NORMAL"},
    {"SQLITE3", "FKSupport", "1"},
    {"SQLITE3", "Timeout", "5000"},  // the driver would wait for 100 seconds
}};

bool names(const ConnectItem* item) { return item != nullptr && !item->value.empty(); }

/// A data source keeps what its administrator has set; only a bare driver is completed.
std::string completed(std::string_view text) {
  std::string complete(text);
  const auto items = parse_connect_text(text);
  const auto* driver = find_item(items, "Driver");
  if (!names(driver)) return complete;
  std::string name = driver->value;
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  for (const auto& addition : additions) {
    if (name.find(addition.driver) == std::string::npos || find_item(items, addition.key) != nullptr) continue;
    if (!complete.ends_with(';')) complete += ';';
    complete.append(addition.key).append("=").append(addition.value);
  }
  return complete;
}

}  // namespace

std::unique_ptr<Session> open_odbc(std::string_view connect_text, bool read_only, CallHook* hook) {
  if (same_word(connect_text.substr(0, prefix.size()), prefix)) connect_text.remove_prefix(prefix.size());
  const auto items = parse_connect_text(connect_text);
  if (!names(find_item(items, "Driver")) && !names(find_item(items, "DSN")) && !names(find_item(items, "FILEDSN")))
    raise(AFX_SQL_ERROR_CONNECT_FAIL, "IM002",
          "The connect text names neither a driver (Driver=...) nor a data source (DSN=...).");
  return std::make_unique<OdbcSession>(completed(connect_text), read_only, hook);
}

std::unique_ptr<Session> adopt_odbc(void* connection, CallHook* hook) {
  return std::make_unique<OdbcSession>(static_cast<SQLHDBC>(connection), hook);
}

}  // namespace spcdb
