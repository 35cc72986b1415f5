#include <algorithm>
#include <iterator>
#include <optional>

#include "spcbase/schedule/description.h"
#include "spcbase/schedule/occurrence.h"
#include "tools/spc/json.h"
#include "tools/spc/moments.h"
#include "tools/spc/problem.h"
#include "tools/spc/schedule_text.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"

namespace spc {
namespace {

using schd::RepeatStringInfo;
using schd::ScheduleStringInfo;

/// What was asked about, and what the library says to it.
struct ScheduleView {
  ScheduleStringInfo schedule;
  std::optional<RepeatStringInfo> repeat;
  std::optional<COleDateTime> start;
  std::optional<COleDateTime> end;
  COleDateTime after;
  std::string sentence;
  std::vector<COleDateTime> moments;
  std::string why_none;  ///< why there are no moments; empty when there are
  Warnings warnings;

  const RepeatStringInfo* repeat_or_null() const { return repeat ? &*repeat : nullptr; }
};

std::optional<COleDateTime> optional_moment(const char* option, const std::string& text) {
  if (text.empty()) return std::nullopt;
  return moment_of_option(option, text);
}

_variant_t date_of(const std::optional<COleDateTime>& moment) {
  return moment ? _variant_t(moment->m_dt, VT_DATE) : _variant_t();
}

/// Why a schedule that the library takes is not due any more.
std::string why_never(const ScheduleView& view) {
  const auto& schedule = view.schedule;
  if (schedule.type == ScheduleStringInfo::none && !view.repeat) return "It has no days of its own, and no repeat.";
  if (schedule.type == ScheduleStringInfo::weekly && schedule.value == 0) return "It names no day of the week.";
  if (schedule.type == ScheduleStringInfo::monthly && schedule.value == 0) return "It names no month.";
  if (schedule.type == ScheduleStringInfo::monthly && !has_day(schedule))
    return "None of its months has a day " + std::to_string(schedule.day) + ".";
  if (view.end) return "It is not due again before its end, " + moment_text(view.end->m_dt) + ".";
  return "It is not due again before the year 10000.";
}

void find_moments(ScheduleView& view, int count) {
  auto outcome = guarded([&] {
    return schd::next_moments(view.schedule, view.repeat_or_null(), date_of(view.start), date_of(view.end), view.after,
                              count);
  });
  if (outcome) {
    view.moments = std::move(outcome).value();
    if (view.moments.empty()) view.why_none = why_never(view);
  } else if (outcome.failure().kind == FailureKind::library) {
    view.why_none = outcome.failure().text.view();
  } else {
    throw problem_of("cannot reckon when the schedule is due", outcome.failure());
  }
}

ScheduleView view_of(const ScheduleRequest& request) {
  ScheduleView view;
  ReadSchedule read = read_schedule(request.text);
  view.schedule = read.schedule;
  view.warnings = std::move(read.warnings);
  if (!request.repeat.empty()) {
    ReadRepeat repeat = read_repeat(request.repeat);
    view.repeat = repeat.repeat;
    std::ranges::move(repeat.warnings, std::back_inserter(view.warnings));
  }
  view.start = optional_moment("--start", request.start);
  view.end = optional_moment("--end", request.end);
  if (view.start && view.end && *view.end < *view.start)
    throw Problem{"cannot read the command line", "--end lies before --start",
                  "A schedule holds from its start to its end.", exit_misuse};
  view.after = request.after.empty() ? COleDateTime::GetCurrentTime() : moment_of_option("--after", request.after);
  view.sentence = doing("cannot describe the schedule", [&] {
    return std::string(schd::get_schedule_descriptive_text(view.schedule, view.repeat_or_null(), date_of(view.start),
                                                           date_of(view.end))
                           .view());
  });
  find_moments(view, request.count);
  return view;
}

const char* type_name(int type) {
  switch (type) {
    case ScheduleStringInfo::daily:
      return "daily";
    case ScheduleStringInfo::weekly:
      return "weekly";
    case ScheduleStringInfo::monthly:
      return "monthly";
    case ScheduleStringInfo::none:
      return "none";
    default:
      return "customised";
  }
}

const char* unit_name(int unit) {
  switch (unit) {
    case RepeatStringInfo::minutes:
      return "minute";
    case RepeatStringInfo::hours:
      return "hour";
    case RepeatStringInfo::seconds:
      return "second";
    default:
      return "day";
  }
}

const char* end_name(int mode) {
  switch (mode) {
    case RepeatStringInfo::until_time:
      return "until";
    case RepeatStringInfo::for_length:
      return "for";
    default:
      return "open";
  }
}

/// "1 day", "2 days".
std::string amount(int number, const std::string& unit) {
  return std::to_string(number) + " " + unit + (number == 1 ? "" : "s");
}

/// "Monday, Wednesday"; "none" for no names.
std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (const auto& name : names)
    list += (list.empty() ? "" : ", ") + name;
  return list.empty() ? "none" : list;
}

void add_days(Facts& facts, const ScheduleStringInfo& schedule) {
  if (schedule.type == ScheduleStringInfo::daily) {
    facts.emplace_back("step", amount(schedule.value, "day"));
  } else if (schedule.type == ScheduleStringInfo::weekly) {
    facts.emplace_back("weekdays", listed(weekdays_of(schedule.value)));
  } else if (schedule.type == ScheduleStringInfo::monthly) {
    facts.emplace_back("day", std::to_string(schedule.day));
    facts.emplace_back("months", listed(months_of(schedule.value)));
  }
}

std::string end_text(const RepeatStringInfo& repeat) {
  if (repeat.end_mode == RepeatStringInfo::for_length)
    return "after " + amount(repeat.end_hour, "hour") + " and " + amount(repeat.end_minute, "minute");
  if (repeat.end_mode != RepeatStringInfo::until_time) return "with the day";
  CString text;
  text.Format("at %02d:%02d", repeat.end_hour, repeat.end_minute);
  return std::string(text.view());
}

std::string text_or_none(const std::string& text) { return text.empty() ? "none" : text; }

Facts facts_of(const ScheduleView& view) {
  Facts facts;
  facts.emplace_back("schedule", text_or_none(std::string(view.schedule.get_rep_str().view())));
  facts.emplace_back("sentence", text_or_none(view.sentence));
  facts.emplace_back("type", type_name(view.schedule.type));
  if (view.schedule.type != ScheduleStringInfo::none) {
    facts.emplace_back("hour", std::to_string(view.schedule.hour));
    facts.emplace_back("minute", std::to_string(view.schedule.minute));
  }
  add_days(facts, view.schedule);
  if (view.repeat) {
    facts.emplace_back("repeat", std::string(view.repeat->get_rep_str().view()));
    facts.emplace_back("interval", amount(view.repeat->interval, unit_name(view.repeat->unit)));
    facts.emplace_back("repeat ends", end_text(*view.repeat));
  }
  if (view.start) facts.emplace_back("start", moment_text(view.start->m_dt));
  if (view.end) facts.emplace_back("end", moment_text(view.end->m_dt));
  return facts;
}

void print_moments(std::ostream& out, const ScheduleView& view, int wanted) {
  if (!view.why_none.empty()) {
    out << "No next moments. " << view.why_none << '\n';
    return;
  }
  Table table;
  table.add_column("due next");
  table.add_column("weekday");
  for (const auto& moment : view.moments)
    table.add_row({moment_text(moment.m_dt), weekday_name(moment.GetDayOfWeek() - 1)});
  table.print(out);
  if (view.moments.size() < static_cast<std::size_t>(wanted)) out << "Then no more. " << why_never(view) << '\n';
}

void write_names(JsonWriter& json, const char* key, const std::vector<std::string>& names) {
  json.key(key).begin_array();
  for (const auto& name : names)
    json.value(name);
  json.end_array();
}

void write_optional(JsonWriter& json, const char* key, const std::optional<COleDateTime>& moment) {
  json.key(key);
  moment ? json.value(moment_text(moment->m_dt)) : json.null();
}

void write_fields(JsonWriter& json, const ScheduleStringInfo& schedule) {
  json.key("schedule").value(schedule.get_rep_str().view());
  json.key("type").value(schedule.type);
  json.key("type_name").value(type_name(schedule.type));
  json.key("hour").value(schedule.hour);
  json.key("minute").value(schedule.minute);
  json.key("value").value(schedule.value);
  json.key("day").value(schedule.day);
  if (schedule.type == ScheduleStringInfo::weekly) write_names(json, "weekdays", weekdays_of(schedule.value));
  if (schedule.type == ScheduleStringInfo::monthly) write_names(json, "months", months_of(schedule.value));
}

void write_repeat(JsonWriter& json, const RepeatStringInfo* repeat) {
  json.key("repeat");
  if (!repeat) {
    json.null();
    return;
  }
  json.begin_object();
  json.key("repeat").value(repeat->get_rep_str().view());
  json.key("interval").value(repeat->interval);
  json.key("unit").value(repeat->unit);
  json.key("unit_name").value(unit_name(repeat->unit));
  json.key("end_mode").value(repeat->end_mode);
  json.key("end_name").value(end_name(repeat->end_mode));
  json.key("end_hour").value(repeat->end_hour);
  json.key("end_minute").value(repeat->end_minute);
  json.end_object();
}

void write_schedule(std::ostream& out, const ScheduleView& view) {
  JsonWriter json(out);
  json.begin_object();
  write_fields(json, view.schedule);
  json.key("sentence").value(view.sentence);
  write_repeat(json, view.repeat_or_null());
  write_optional(json, "start", view.start);
  write_optional(json, "end", view.end);
  json.key("after").value(moment_text(view.after.m_dt));
  std::vector<std::string> moments;
  for (const auto& moment : view.moments)
    moments.push_back(moment_text(moment.m_dt));
  write_names(json, "moments", moments);
  json.key("why_none");
  view.why_none.empty() ? json.null() : json.value(view.why_none);
  write_warnings(json, view.warnings);
  json.end_object();
}

}  // namespace

int show_schedule(const ScheduleRequest& request, const Terminal& terminal) {
  use_dates_of_user();
  const ScheduleView view = view_of(request);
  if (terminal.json) {
    write_schedule(terminal.out, view);
  } else {
    print_facts(terminal.out, facts_of(view));
    terminal.out << '\n';
    print_moments(terminal.out, view, request.count);
  }
  terminal.out.flush();
  print_warnings(terminal.err, view.warnings);
  return exit_done;
}

}  // namespace spc
