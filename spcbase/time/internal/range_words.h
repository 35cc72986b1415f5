/// The words of date-time ranges: one row for each choice and each unit.
///
/// Part of time; not for hosts.
#pragma once

#include <array>

#include "spcbase/foundation/internal/message_table.h"
#include "spcbase/time/range.h"

namespace range_words {

struct Choice {
  const char* xml;
  const char* line;
  const char* log;  ///< of a fixed range and of the last units a format
  UINT message;     ///< likewise
};

/// By `DateTimeRange::RangeType`.
inline constexpr std::array<Choice, 14> choices = {{
    {"user_defined", "fixed_range", "from [%s] to [%s]", msg::between},
    {"today", "today", "today", msg::today},
    {"this_week", "this_week", "this week", msg::this_week},
    {"this_month", "this_month", "this month", msg::this_month},
    {"this_quarter", "this_quarter", "this quarter", msg::this_quarter},
    {"this_year", "this_year", "this year", msg::this_year},
    {"user_defined_range", "last", "last %d %s", msg::last_n_units},
    {"no_initial_data", "no_initial_data", "no initial data", msg::no_initial_data},
    {"all", "all_data", "all data", msg::all_data},
    {"yesterday", "yesterday", "yesterday", msg::yesterday},
    {"last_week", "last_week", "last week", msg::last_week},
    {"last_month", "last_month", "last month", msg::last_month},
    {"last_quarter", "last_quarter", "last quarter", msg::last_quarter},
    {"last_year", "last_year", "last year", msg::last_year},
}};

struct Unit {
  const char* word;
  UINT message;
};

/// By `DateTimeRange::RangeUnit`.
inline constexpr std::array<Unit, 8> units = {{
    {"day", msg::day},
    {"week", msg::week},
    {"month", msg::month},
    {"quarter", msg::quarter},
    {"hour", msg::hour},
    {"minute", msg::minute},
    {"second", msg::second},
    {"year", msg::year},
}};

/// The row of a value, null outside the table.
template <class Table, class Value>
constexpr const typename Table::value_type* row_of(const Table& table, Value value) {
  const auto index = static_cast<std::size_t>(value);
  return index < table.size() ? &table[index] : nullptr;
}

}  // namespace range_words
