#include <algorithm>
#include <array>

#include "spcbase/platform/database/odbc_connection.h"

namespace spcdb {
namespace {

/// Parts the "[vendor][component]" in front of a driver's message from the message.
void part_origin(std::string_view message, Diagnostic& record) {
  std::size_t end = 0;
  while (end < message.size() && message[end] == '[') {
    const auto close = message.find(']', end);
    if (close == std::string_view::npos) break;
    end = close + 1;
  }
  record.origin = message.substr(0, end);
  record.text = message.substr(end);
}

bool read_record(SQLSMALLINT handle_type, SQLHANDLE handle, SQLSMALLINT number, Diagnostic& record) {
  std::array<SQLCHAR, 6> state{};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  std::string message(SQL_MAX_MESSAGE_LENGTH, '\0');
  const auto read = [&] {
    return SQLGetDiagRec(handle_type, handle, number, state.data(), &native, odbc_text(message),
                         static_cast<SQLSMALLINT>(message.size()), &length);
  };
  auto code = read();
  if (code == SQL_SUCCESS_WITH_INFO && static_cast<std::size_t>(length) >= message.size()) {
    message.resize(static_cast<std::size_t>(length) + 1);
    code = read();
  }
  if (!SQL_SUCCEEDED(code)) return false;
  message.resize(std::min(message.find('\0'), message.size()));
  record.sqlstate = reinterpret_cast<const char*>(state.data());
  record.native = native;
  part_origin(message, record);
  return true;
}

}  // namespace

Diagnostic read_diagnostic(SQLSMALLINT handle_type, SQLHANDLE handle, SQLRETURN code) {
  constexpr SQLSMALLINT most_records = 16;
  std::vector<Diagnostic> records;
  Diagnostic record;
  for (SQLSMALLINT number = 1; number <= most_records && read_record(handle_type, handle, number, record); ++number)
    records.push_back(record);
  if (records.empty()) {
    record.sqlstate = "HY000";
    record.text = "The driver failed without a word.";
    records.push_back(record);
  }
  std::stable_partition(records.begin(), records.end(),
                        [](const Diagnostic& one) { return !one.sqlstate.starts_with("01"); });
  Diagnostic first = records.front();
  first.return_code = code;
  first.further.assign(records.begin() + 1, records.end());
  return first;
}

}  // namespace spcdb
