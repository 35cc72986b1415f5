// The one-line form of ranges.
#include <algorithm>
#include <string_view>

#include "spcbase/platform/text/leading_int.h"
#include "spcbase/time/internal/range_words.h"
#include "spcbase/time/range.h"

namespace {

using range_words::choices;
using range_words::row_of;
using range_words::units;

/// Takes the next word off a line; empty at its end.
std::string_view take_word(std::string_view& line) {
  const auto start = std::min(line.find_first_not_of(' '), line.size());
  const auto end = std::min(line.find(' ', start), line.size());
  const auto word = line.substr(start, end - start);
  line.remove_prefix(end);
  return word;
}

bool is_plain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < '\x7F'; });
}

/// Equality by the collating comparison, in which no two plain characters are the same.
bool is_keyword(std::string_view word, const char* keyword) {
  return word == keyword || (!is_plain(word) && CString(word).Collate(keyword) == 0);
}

/// Equality without regard to case, as `CompareNoCase` has it.
bool is_unit(std::string_view word, std::string_view unit) {
  if (!is_plain(word)) return CString(word).CompareNoCase(unit.data()) == 0;
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(word.begin(), word.end(), unit.begin(), unit.end(), [&](char a, char b) { return lower(a) == b; });
}

bool read_moment(std::string_view word, COleDateTime& moment) {
  CString text(word);
  text.Replace('#', ' ');
  return !word.empty() && moment.ParseDateTime(text);
}

}  // namespace

bool DateTimeRange::parse(const CString& line) {
  CString trimmed = line;
  std::string_view rest = trimmed.Trim().view();
  const auto keyword = take_word(rest);
  if (keyword.empty()) return false;
  const auto* choice =
      std::find_if(choices.begin(), choices.end(), [&](const auto& row) { return is_keyword(keyword, row.line); });
  if (choice == choices.end()) return false;
  const auto found = static_cast<RangeType>(choice - choices.begin());

  if (found == fixed_range) {
    COleDateTime start;
    COleDateTime end;
    if (!read_moment(take_word(rest), start) || !read_moment(take_word(rest), end)) return false;
    from = start;
    to = end;
  } else if (found == last_units) {
    const auto number = take_word(rest);
    const auto word = take_word(rest);
    const auto* unit =
        std::find_if(units.begin(), units.end(), [&](const auto& row) { return is_unit(word, row.word); });
    if (unit == units.end()) return false;
    count = platform::leading_int(number);
    time_unit = static_cast<RangeUnit>(unit - units.begin());
  }
  type = found;
  return true;
}

CString DateTimeRange::to_string() const {
  const auto* choice = row_of(choices, type);
  if (!choice) return {};
  CString text = choice->line;
  if (type == fixed_range) {
    constexpr const char* one_word = "%Y-%m-%d#%H:%M:%S";
    text.AppendFormat(" %s %s", from.Format(one_word).GetString(), to.Format(one_word).GetString());
  } else if (type == last_units) {
    const auto* unit = row_of(units, time_unit);
    text.AppendFormat(" %d %s", count, unit ? unit->word : "");
  }
  return text;
}
