#include "spcbase/platform/database/watch.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "spcbase/platform/database/connection.h"

namespace spcdb {

namespace {

void append_text(std::string& out, std::string_view text) {
  out += '\'';
  for (const char c : text) {
    out += c;
    if (c == '\'') out += c;
  }
  out += '\'';
}

void append_moment(std::string& out, const TIMESTAMP_STRUCT& moment) {
  std::array<char, 64> text{};
  const int size =
      std::snprintf(text.data(), text.size(), "'%04d-%02u-%02u %02u:%02u:%02u.%03u'", moment.year, moment.month,
                    moment.day, moment.hour, moment.minute, moment.second, moment.fraction / 1000000U);
  out.append(text.data(), static_cast<std::size_t>(size));
}

template <class Number>
void append_number(std::string& out, Number value) {
  std::array<char, 40> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  out.append(text.data(), end);
}

void append_value(std::string& out, const Parameter& value) {
  if (value.is_null) {
    out += "NULL";
    return;
  }
  switch (value.kind) {
    case ValueKind::integer:
      return append_number(out, value.integer);
    case ValueKind::real:
      return append_number(out, value.real);
    case ValueKind::text:
      return append_text(out, value.text);
    case ValueKind::moment:
      return append_moment(out, value.moment);
    case ValueKind::bytes:
    case ValueKind::long_bytes:
      append_number(out, value.text.size());
      out += " bytes";
      return;
  }
}

/// States by which a server says that it has rolled the whole transaction back.
bool ends_the_transaction(std::string_view state_native_origin) {
  return state_native_origin.starts_with("State:40001,") || state_native_origin.starts_with("State:40P01,");
}

}  // namespace

std::string parameters_for_people(const GivenStatement& given) {
  std::string out;
  for (std::size_t i = 0; i < given.parameters.size(); ++i) {
    if (i > 0) out += ", ";
    if (i < given.columns.size() && names_a_password(given.columns[i])) {
      out += "'***'";
    } else {
      append_value(out, given.parameters[i]);
    }
  }
  return out;
}

void refuse_when_stopping(CDatabase& database, const GivenStatement& given) {
  const auto* connection = database.connection();
  if (connection == nullptr || connection->wants_to_stop == nullptr) [[likely]]
    return;
  if (given.text == "BEGIN" || given.text == "COMMIT" || given.text == "ROLLBACK") return;
  if (connection->wants_to_stop()) raise(AFX_SQL_ERROR, "HY008", "The program is to stop.");
}

void StatementWatch::failed(const GivenStatement& given, CDBException& failure) {
  stop();
  if (failure.m_strStatement.IsEmpty()) failure.m_strStatement = CString(mask_password_literals(given.text));
  auto* connection = database_.connection();
  if (connection != nullptr && connection->in_transaction &&
      ends_the_transaction(failure.m_strStateNativeOrigin.view()))
    connection->transaction_lost = true;
  if (observed_) report(given, -1, &failure);
}

void StatementWatch::report(const GivenStatement& given, std::int64_t rows, const CDBException* failure) {
  const auto parameters = parameters_for_people(given);
  const auto text = mask_password_literals(given.text);
  StatementReport report;
  report.statement = text;
  report.parameters = parameters;
  report.rows = rows;
  report.time = time_;
  report.failure = failure;
  database_.observer()->on_statement(report);
}

}  // namespace spcdb
