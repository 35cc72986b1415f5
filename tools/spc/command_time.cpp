// The grammar of the tasks on ranges and schedules.
#include "tools/spc/moments.h"
#include "tools/spc/request.h"

namespace spc {
namespace {

/// An empty moment, as of a variable that was never set, is not the same as none.
std::string problem_of_moment(const std::string& text) {
  return text.empty() ? std::string("\"\" is not a moment, such as ") + moment_example : std::string();
}

CLI::Option* add_moment(CLI::App& command, const char* name, std::string& moment, const char* help) {
  return command.add_option(name, moment, help)->type_name("MOMENT")->check(problem_of_moment);
}

void add_range(CLI::App& app, Request& request) {
  RangeRequest& range = request.range;
  CLI::App* command = app.add_subcommand("range", "Show what a date-time range means");
  command->add_option("LINE", range.line, "Such as today, \"last 5 day\", \"fixed_range 2024-03-01 2024-03-15\"")
      ->required();
  command->add_flag("--xml", range.xml, "Print its XML and nothing else");
  command->add_option("--week-start", range.week_start, "The day on which weeks start; Sunday when it is not given")
      ->type_name("WEEKDAY|1-7");
  command->add_flag("--utc", range.utc, "Reckon in UTC and not in local time");
  add_moment(*command, "--at", range.at, "Reckon as if this local time were the present");
  command->callback(
      [&] { request.task = [&](const Terminal& terminal) { return show_range(request.range, terminal); }; });
}

void add_schedule(CLI::App& app, Request& request) {
  ScheduleRequest& schedule = request.schedule;
  CLI::App* command = app.add_subcommand("schedule", "Show what a schedule means, and when it is due next");
  command->add_option("TEXT", schedule.text, "Five fields, such as \"0 8 * * 1,3,5\"; empty for no days of its own")
      ->required();
  command->add_option("--repeat", schedule.repeat, "How often again within a day, such as \"10 m 0 17 30\"")
      ->type_name("TEXT");
  add_moment(*command, "--start", schedule.start, "When it begins to hold");
  add_moment(*command, "--end", schedule.end, "When it ceases to hold");
  add_moment(*command, "--after", schedule.after, "Show the moments after this one; the present when it is not given");
  command->add_option("--count", schedule.count, "Show so many moments; 10 when it is not given")
      ->type_name("N")
      ->check(CLI::Range(1, 100'000));
  command->callback(
      [&] { request.task = [&](const Terminal& terminal) { return show_schedule(request.schedule, terminal); }; });
}

}  // namespace

void add_time_tasks(CLI::App& app, Request& request) {
  add_range(app, request);
  add_schedule(app, request);
}

}  // namespace spc
