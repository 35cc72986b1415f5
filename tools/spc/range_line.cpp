#include "tools/spc/range_line.h"

#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

constexpr const char* last_example = "last 5 day";
constexpr const char* fixed_example = "fixed_range 2024-03-01#00:00:00 2024-03-15#23:59:59";

using Words = std::vector<std::string>;

Words words_of_line(const std::string& line) {
  CString trimmed(line.c_str());
  return words_of(trimmed.Trim().view(), " ");
}

/// The word with which lines of a choice begin.
std::string word_of(DateTimeRange::RangeType type) {
  DateTimeRange range;
  range.type = type;
  return words_of_line(std::string(range.to_string().view())).front();
}

/// The choices that are a line by themselves.
Words keywords() {
  Words words;
  for (int type = DateTimeRange::fixed_range; type <= DateTimeRange::last_year; ++type)
    if (type != DateTimeRange::fixed_range && type != DateTimeRange::last_units)
      words.push_back(word_of(static_cast<DateTimeRange::RangeType>(type)));
  return words;
}

Words unit_words() {
  Words words;
  for (int unit = DateTimeRange::day; unit <= DateTimeRange::year; ++unit)
    words.emplace_back(DateTimeRange::get_unit_eng_str(static_cast<DateTimeRange::RangeUnit>(unit)).view());
  return words;
}

bool parses(const std::string& line) {
  DateTimeRange range;
  return range.parse(line.c_str());
}

std::string fault_of_moments(const Words& words) {
  for (std::size_t i = 1; i <= 2; ++i) {
    if (words.size() <= i) return "the " + std::string(i == 1 ? "first" : "second") + " moment is missing";
    if (!parses(words[0] + " 2024-03-01 " + words[i])) return quoted(words[i]) + " is not a moment";
  }
  return "its moments are wrong";
}

std::string fault_of_units(const Words& words) {
  if (words.size() == 1) return "the number and the unit are missing";
  if (words.size() == 2) return "the unit behind " + quoted(words[1]) + " is missing";
  return quoted(words[2]) + " is not a unit; units are " + either(unit_words());
}

/// Why a line is none.
std::string fault_of(const Words& words) {
  if (words.empty()) return "the line is empty";
  if (words[0] == word_of(DateTimeRange::fixed_range)) return fault_of_moments(words);
  if (words[0] == word_of(DateTimeRange::last_units)) return fault_of_units(words);
  return quoted(words[0]) + " is not a choice, and capital letters count";
}

Warnings warnings_for(const DateTimeRange& range, const Words& words) {
  Warnings warnings;
  std::size_t expected = 1;
  std::string example = word_of(range.type);
  if (range.type == DateTimeRange::last_units) {
    expected = 3;
    example = last_example;
    const std::string read = std::to_string(range.count);
    if (words[1] != read)
      warnings.push_back({"number", words[1], "read as " + read, "a whole number below 2147483648", last_example});
    else if (range.count < 0)
      warnings.push_back({"number", words[1], "reaches into the future, and ends before it begins",
                          "a number of 1 or more", last_example});
  } else if (range.type == DateTimeRange::fixed_range) {
    expected = 3;
    example = fixed_example;
    if (range.to < range.from)
      warnings.push_back({"second moment", words[2], "before the first one, so that nothing lies between",
                          "a later moment", fixed_example});
  }
  for (std::size_t i = expected; i < words.size(); ++i)
    warnings.push_back({"word", words[i], "passed over", "left out", example});
  return warnings;
}

}  // namespace

ReadRange read_range(const std::string& line) {
  ReadRange read;
  const Words words = words_of_line(line);
  if (!read.range.parse(line.c_str()))
    throw Problem{"cannot read the range", fault_of(words),
                  "Right ones are " + either(keywords()) + "; \"" + last_example + "\"; \"" + fixed_example + "\".",
                  exit_misuse};
  read.warnings = warnings_for(read.range, words);
  return read;
}

}  // namespace spc
