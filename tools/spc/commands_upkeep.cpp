// Numbers, settings and payloads.
#include "tools/spc/command_table.h"
#include "tools/spc/json_shapes.h"

namespace spc {
namespace {

using namespace shapes;

Properties number_properties() {
  return {{"table", text()},    {"highest_id", integer()}, {"counter", text()},  {"rows", integer()},
          {"maxno", integer()}, {"difference", integer()}, {"faulty", boolean()}};
}

Shape numbers_checked() { return array(object(number_properties())); }

Shape numbers_repaired() {
  return array(object(
      with(number_properties(), {{"maxno_before", integer()}, {"rows_before", integer()}, {"changed", boolean()}})));
}

Shape setting() { return object(with(with({{"key", text()}}, bytes_properties()), {optional("damage", text())})); }
Shape settings() { return array(setting()); }

Shape payload() { return object(with({{"kind", text()}, {"id", integer()}}, bytes_properties())); }

const Option table = {.name = "TABLE",
                      .help = "Only this table's; all when it is not given",
                      .target = at<&Request::numbers_table>,
                      .offers = Offers::number_tables};

std::vector<Option> payload_options(std::vector<Option> more = {}) {
  std::vector<Option> options = {{.name = "KIND",
                                  .help = "monitor, profile or monitor-extra",
                                  .target = at<&Request::payload, &PayloadRequest::kind>,
                                  .required = true,
                                  .offers = Offers::suggestions,
                                  .words = {"monitor", "profile", "monitor-extra"}},
                                 {.name = "ID",
                                  .help = "The monitor's or profile's number",
                                  .target = at<&Request::payload, &PayloadRequest::id>,
                                  .required = true,
                                  .within = Bounds{1, largest},
                                  .offers = Offers::payload_ids}};
  options.insert(options.end(), more.begin(), more.end());
  options.push_back(max_size_option(at<&Request::payload, &PayloadRequest::max_size>));
  return options;
}

Option payload_file(std::string_view help, bool required) {
  return {.name = "FILE",
          .help = help,
          .target = at<&Request::payload, &PayloadRequest::file>,
          .required = required,
          .offers = Offers::files};
}

std::vector<Command> number_commands() {
  return {
      {.path = "numbers", .help = "Check and repair the counters that ids are taken from"},
      {.path = "numbers check",
       .help = "Compare each counter with the highest id of its table",
       .more = "A counter that is behind, has no row or several would make the server refuse new rows. One that is "
               "ahead is no fault.",
       .options = {table},
       .examples = {{"--connect sqlite:demo.db numbers check CSSAMP", "the counter of one table"}},
       .failed = "So it does when a counter is faulty.",
       .json = numbers_checked,
       .task = on_database<check_numbers, &Request::numbers_table>},
      {.path = "numbers repair",
       .help = "Set each counter to the highest id of its table",
       .more = "All of them in one transaction. It locks nobody out, so let nobody add rows meanwhile.",
       .options = {table},
       .examples = {{"--connect sqlite:demo.db numbers repair", "look after all of them"}},
       .failed = "So it does when someone added rows meanwhile.",
       .changes = true,
       .json = numbers_repaired,
       .task = on_database<repair_numbers, &Request::numbers_table>},
  };
}

std::vector<Command> setting_commands() {
  return {
      {.path = "settings", .help = "Show the system settings"},
      {.path = "settings list",
       .help = "List all settings",
       .more = "A setting whose stored text is damaged is shown as far as it can be read.",
       .examples = {{"--connect sqlite:demo.db settings list", "all of them with their sizes"}},
       .failed = "So it does when a setting is damaged.",
       .json = settings,
       .task = on_database<list_settings>},
      {.path = "settings get",
       .help = "Print the value of a setting, in hexadecimal when it is no text",
       .options = {{.name = "KEY",
                    .help = "The setting's key",
                    .target = at<&Request::setting>,
                    .required = true,
                    .offers = Offers::settings}},
       .examples = {{"settings get plant.name", "one value, whole"}},
       .failed = "So it does when the setting is damaged.",
       .json = setting,
       .task = on_database<get_setting, &Request::setting>},
  };
}

std::vector<Command> payload_commands() {
  return {
      {.path = "payload", .help = "Read, store and delete the data of monitors and profiles"},
      {.path = "payload get",
       .help = "Write a payload into a new file, or to standard output",
       .options = payload_options({payload_file("A file that does not exist yet", false)}),
       .examples = {{"payload get profile 1 profile-1.bin", "into a file"}},
       .json = payload,
       .task = on_database<get_payload, &Request::payload>},
      {.path = "payload put",
       .help = "Store a file as payload",
       .options = payload_options({payload_file("The file to store", true)}),
       .examples = {{"--connect sqlite:demo.db payload put profile 1 rings.csv", "in the place of what was there"}},
       .changes = true,
       .json = payload,
       .task = on_database<put_payload, &Request::payload>},
      {.path = "payload delete",
       .help = "Delete a payload",
       .options = payload_options(),
       .examples = {{"payload delete monitor-extra 3", "the extra payload of monitor 3"}},
       .changes = true,
       .json = payload,
       .task = on_database<delete_payload, &Request::payload>},
  };
}

}  // namespace

std::vector<Command> upkeep_commands() {
  std::vector<Command> all = number_commands();
  for (const auto& part : {setting_commands(), payload_commands()})
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

}  // namespace spc
