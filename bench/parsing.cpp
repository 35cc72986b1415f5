// A schedule and a range line, each parsed alone, and beside two plain ways to come to the same numbers: std::regex,
// and a split by hand with std::from_chars. A fixed range, whose moments any locale may write in its own way, has no
// plain way that takes the same. A run takes the next of a few lines.
#include <array>
#include <charconv>
#include <regex>
#include <string>

#include "bench/jobs.h"
#include "spcbase/schedule/strings.h"
#include "spcbase/time/range.h"

namespace bench {
namespace {

constexpr std::array<const char*, 4> schedules = {"0 8 * * *", "30 6 */2 * *", "15 22 * * 1,3,5", "5 4 15 1,7,12 *"};
constexpr std::array<const char*, 4> ranges = {"last 5 day", "this_quarter", "last 120 MINUTE", "last 3 month"};
constexpr std::array<const char*, 4> fixed_ranges = {
    "fixed_range 2024-03-01#00:00:00 2024-03-15#23:59:59", "fixed_range 1999-12-31#08:05:09 2000-02-29#17:30:00",
    "fixed_range 2024-03-01 2024-03-15", "fixed_range 2023-11-05#01:30:00 2024-01-01#00:00:00"};

/// Goes through its lines, over and over.
template <const std::array<const char*, 4>& Lines>
class Parser : public WorkAlone {
 public:
  void run() override {
    sum_ += parsed(next_);
    next_ = (next_ + 1) % Lines.size();
  }

 protected:
  /// A number that depends on everything that the line says.
  virtual double parsed(std::size_t index) = 0;

 private:
  std::size_t next_ = 0;
};

double number(int type, int minute, int hour, int value, int day) {
  return type * 1e7 + minute * 1e5 + hour * 1e3 + value + day * 0.01;
}

class OurSchedule : public Parser<schedules> {
  double parsed(std::size_t index) override {
    schd::ScheduleStringInfo schedule;
    schd::ScheduleStringInfo::parse_schedule_string(schedules[index], schedule);
    return number(schedule.type, schedule.minute, schedule.hour, schedule.value, schedule.day);
  }
};

template <const std::array<const char*, 4>& Lines>
class RangeParser : public Parser<Lines> {
 public:
  RangeParser() : lines_(Lines.begin(), Lines.end()) {}

 private:
  double parsed(std::size_t index) override {
    range_.parse(lines_[index]);
    return number(range_.type, range_.count, range_.time_unit, 0, 0) + range_.from + range_.to;
  }

  std::vector<CString> lines_;
  DateTimeRange range_;
};
using OurRange = RangeParser<ranges>;
using OurFixedRange = RangeParser<fixed_ranges>;

int mask_of(const char* text, const char* end) {
  int mask = 0;
  for (int bit = 0; text < end; ++text) {
    text = std::from_chars(text, end, bit).ptr;
    mask |= 1 << bit;
  }
  return mask;
}

int int_of(const std::csub_match& piece) {
  int value = 0;
  std::from_chars(piece.first, piece.second, value);
  return value;
}

class RegexSchedule : public Parser<schedules> {
  double parsed(std::size_t index) override {
    std::cmatch found;
    std::regex_match(schedules[index], found, form_);
    const int minute = int_of(found[1]);
    const int hour = int_of(found[2]);
    if (found[3].matched) return number(0, minute, hour, found[4].matched ? int_of(found[4]) : 1, 1);
    if (found[5].matched) return number(1, minute, hour, mask_of(found[5].first, found[5].second), 1);
    return number(2, minute, hour, mask_of(found[7].first, found[7].second), int_of(found[6]));
  }

  std::regex form_{R"((\d+) (\d+) (?:(\*(?:/(\d+))?) \* \*|\* \* ([\d,]+)|(\d+) ([\d,]+) \*))",
                   std::regex::ECMAScript | std::regex::optimize};
};

const char* end_of(const char* text) { return text + std::char_traits<char>::length(text); }

class SplitSchedule : public Parser<schedules> {
  double parsed(std::size_t index) override {
    const char* text = schedules[index];
    const char* const end = end_of(text);
    int minute = 0;
    int hour = 0;
    text = std::from_chars(text, end, minute).ptr + 1;
    text = std::from_chars(text, end, hour).ptr + 1;
    if (*text != '*') {
      int day = 0;
      text = std::from_chars(text, end, day).ptr + 1;
      return number(2, minute, hour, mask_of(text, end - 2), day);
    }
    if (text[1] == '/') {
      int step = 0;
      std::from_chars(text + 2, end, step);
      return number(0, minute, hour, step, 1);
    }
    if (text[4] == '*') return number(0, minute, hour, 1, 1);
    return number(1, minute, hour, mask_of(text + 4, end), 1);
  }
};

/// A range that is named leaves count and unit as they were.
class PlainRange : public Parser<ranges> {
 protected:
  double last(int count, char first_of_unit) {
    count_ = count;
    unit_ = first_of_unit == 'd' ? 0 : first_of_unit == 'M' ? 5 : 2;
    return number(6, count_, unit_, 0, 0);
  }
  double named() const { return number(4, count_, unit_, 0, 0); }

 private:
  int count_ = 1;
  int unit_ = 1;
};

class RegexRange : public PlainRange {
  double parsed(std::size_t index) override {
    std::cmatch found;
    std::regex_match(ranges[index], found, form_);
    return found[1].matched ? last(int_of(found[1]), *found[2].first) : named();
  }

  std::regex form_{"last +(-?\\d+) +(day|week|month|quarter|year|hour|minute|second|MINUTE)|this_quarter",
                   std::regex::ECMAScript | std::regex::optimize};
};

class SplitRange : public PlainRange {
  double parsed(std::size_t index) override {
    const std::string_view text = ranges[index];
    if (text == "this_quarter") return named();
    int count = 0;
    const char* const rest = std::from_chars(text.data() + 5, text.data() + text.size(), count).ptr;
    return last(count, rest[1]);
  }
};

template <class Ours, class Plain>
Pair pair_of() {
  return {std::make_unique<Ours>(), std::make_unique<Plain>()};
}

template <class Ours>
Pair only() {
  return {std::make_unique<Ours>(), nullptr};
}

Job job(const char* name, Pair (*pair)(), double limit) {
  Job made;
  made.name = name;
  made.pair_alone = pair;
  made.alone_limit = limit;
  return made;
}

}  // namespace

Job parse_schedule() { return job("parse a schedule", only<OurSchedule>, 1.0); }
Job parse_schedule_by_regex() { return job("schedule beside std::regex", pair_of<OurSchedule, RegexSchedule>, 1.0); }
Job parse_schedule_by_hand() { return job("schedule beside a hand-split", pair_of<OurSchedule, SplitSchedule>, 20.0); }
Job parse_range() { return job("parse a range line", only<OurRange>, 1.0); }
Job parse_fixed_range() { return job("parse a fixed range line", only<OurFixedRange>, 1.0); }
Job parse_range_by_regex() { return job("range line beside std::regex", pair_of<OurRange, RegexRange>, 1.0); }
Job parse_range_by_hand() { return job("range line beside a hand-split", pair_of<OurRange, SplitRange>, 20.0); }

}  // namespace bench
