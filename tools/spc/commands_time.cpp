// Ranges and schedules.
#include "tools/spc/command_table.h"
#include "tools/spc/json_shapes.h"
#include "tools/spc/moments.h"

namespace spc {
namespace {

using namespace shapes;

/// An empty moment, as of a variable that was never set, is not the same as none.
std::string problem_of_moment(const std::string& text) {
  return text.empty() ? std::string("\"\" is not a moment, such as ") + moment_example : std::string();
}

Option moment(std::string_view name, std::string_view help, Target (*target)(Request&)) {
  return {.name = name, .value = "MOMENT", .help = help, .target = target, .problem = problem_of_moment};
}

Shape range() {
  return object({{"range", text()},
                 {"type", integer()},
                 optional("count", integer()),
                 optional("unit", text()),
                 {"from", nullable(text())},
                 {"to", nullable(text())},
                 {"utc", boolean()},
                 {"display", text()},
                 {"log", text()},
                 {"xml", text()},
                 warnings_property()});
}

Shape schedule() {
  const Shape repeat = object({{"repeat", text()},
                               {"interval", integer()},
                               {"unit", integer()},
                               {"unit_name", text()},
                               {"end_mode", integer()},
                               {"end_name", constants({"open", "until", "for"})},
                               {"end_hour", integer()},
                               {"end_minute", integer()}});
  return object({{"schedule", text()},
                 {"type", integer()},
                 {"type_name", constants({"none", "daily", "weekly", "monthly", "customised"})},
                 {"hour", integer()},
                 {"minute", integer()},
                 {"value", integer()},
                 {"day", integer()},
                 optional("weekdays", array(text())),
                 optional("months", array(text())),
                 {"sentence", text()},
                 {"repeat", nullable(repeat)},
                 {"start", nullable(text())},
                 {"end", nullable(text())},
                 {"after", text()},
                 {"moments", array(text())},
                 {"why_none", nullable(text())},
                 warnings_property()});
}

}  // namespace

std::vector<Command> time_commands() {
  using R = RangeRequest;
  using S = ScheduleRequest;
  return {
      {.path = "range",
       .help = "Show what a date-time range means",
       .more =
           "A line is a choice (today, this_week, last_month ...), units back from the present (last 5 day), or two "
           "moments (fixed_range). A moment is 2024-03-15, which is its midnight, \"2024-03-15 08:00\" or "
           "\"2024-03-15 08:00:00\".",
       .options = {{.name = "LINE",
                    .help = "Such as today, \"last 5 day\", \"fixed_range 2024-03-01 2024-03-15\"",
                    .target = at<&Request::range, &R::line>,
                    .required = true,
                    .offers = Offers::suggestions,
                    .words = {"today", "this_week", "this_month", "this_quarter", "this_year", "yesterday", "last_week",
                              "last_month", "last_quarter", "last_year", "all_data", "no_initial_data"}},
                   {.name = "--xml", .help = "Print its XML and nothing else", .target = at<&Request::range, &R::xml>},
                   {.name = "--week-start",
                    .value = "WEEKDAY|1-7",
                    .help = "The day on which weeks start; Sunday when it is not given",
                    .target = at<&Request::range, &R::week_start>,
                    .offers = Offers::suggestions,
                    .words = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"}},
                   {.name = "--utc",
                    .help = "Reckon in UTC and not in local time",
                    .target = at<&Request::range, &R::utc>},
                   moment("--at", "Reckon as if this local time were the present", at<&Request::range, &R::at>)},
       .examples = {{"range 'last 5 day' --at '2024-03-15 08:00'", "the five days before a moment"},
                    {"range this_week --week-start Monday --json", "this week, for a program"}},
       .json = range,
       .task = on_its_own<show_range, &Request::range>},
      {.path = "schedule",
       .help = "Show what a schedule means, and when it is due next",
       .more =
           "A schedule that is never due is shown with the reason, and a field that hardly means what it says with a "
           "warning; both are no failure. An argument that begins with - goes behind --.",
       .options = {{.name = "TEXT",
                    .help = "Five fields, such as \"0 8 * * 1,3,5\"; empty for no days of its own",
                    .target = at<&Request::schedule, &S::text>,
                    .required = true},
                   {.name = "--repeat",
                    .value = "TEXT",
                    .help = "How often again within a day, such as \"10 m 0 17 30\"",
                    .target = at<&Request::schedule, &S::repeat>},
                   moment("--start", "When it begins to hold", at<&Request::schedule, &S::start>),
                   moment("--end", "When it ceases to hold", at<&Request::schedule, &S::end>),
                   moment("--after", "Show the moments after this one; the present when it is not given",
                          at<&Request::schedule, &S::after>),
                   {.name = "--count",
                    .value = "N",
                    .help = "Show so many moments; 10 when it is not given",
                    .target = at<&Request::schedule, &S::count>,
                    .within = Bounds{1, 100'000}}},
       .examples = {{"schedule '0 8 * * 1,3,5' --repeat '30 m 1 1 0' --after 2024-03-28 --count 4",
                     "the next four moments after a day"}},
       .json = schedule,
       .task = on_its_own<show_schedule, &Request::schedule>},
  };
}

}  // namespace spc
