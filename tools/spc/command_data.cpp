// The grammar of the tasks on numbers, settings and payloads.
#include "tools/spc/request.h"

namespace spc {
namespace {

constexpr int largest = 2'147'483'647;

using NumbersTask = int (*)(const Place&, const std::string&, const Terminal&);
using PayloadTask = int (*)(const Place&, const PayloadRequest&, const Terminal&);

void add_numbers(CLI::App& app, Request& request) {
  CLI::App* numbers = app.add_subcommand("numbers", "Check and repair the counters that ids are taken from");
  const auto add = [&](const char* name, const char* help, NumbersTask task) {
    CLI::App* command = numbers->add_subcommand(name, help);
    command->add_option("TABLE", request.numbers_table, "Only this table's; all when it is not given");
    command->callback([&request, task] {
      request.task = [&request, task](const Terminal& terminal) {
        return task(request.place, request.numbers_table, terminal);
      };
    });
  };
  add("check", "Compare each counter with the highest id of its table", check_numbers);
  add("repair", "Set each counter to the highest id of its table", repair_numbers);
}

void add_settings(CLI::App& app, Request& request) {
  CLI::App* settings = app.add_subcommand("settings", "Show the system settings");
  settings->add_subcommand("list", "List all settings")->callback([&] {
    request.task = [&](const Terminal& terminal) { return list_settings(request.place, terminal); };
  });
  CLI::App* get = settings->add_subcommand("get", "Print the value of a setting, in hexadecimal when it is no text");
  get->add_option("KEY", request.setting, "The setting's key")->required();
  get->callback([&] {
    request.task = [&](const Terminal& terminal) { return get_setting(request.place, request.setting, terminal); };
  });
}

void add_payload(CLI::App& app, Request& request) {
  CLI::App* payload = app.add_subcommand("payload", "Read, store and delete the data of monitors and profiles");
  const auto add = [&](const char* name, const char* help, PayloadTask task) {
    CLI::App* command = payload->add_subcommand(name, help);
    command->add_option("KIND", request.payload.kind, "monitor, profile or monitor-extra")->required();
    command->add_option("ID", request.payload.id, "The monitor's or profile's number")
        ->required()
        ->check(CLI::Range(1, largest));
    add_max_size(*command, request.payload.max_size);
    command->callback([&request, task] {
      request.task = [&request, task](const Terminal& terminal) {
        return task(request.place, request.payload, terminal);
      };
    });
    return command;
  };
  add("get", "Write a payload into a new file, or to standard output", get_payload)
      ->add_option("FILE", request.payload.file, "A file that does not exist yet");
  add("put", "Store a file as payload", put_payload)
      ->add_option("FILE", request.payload.file, "The file to store")
      ->required();
  add("delete", "Delete a payload", delete_payload);
}

}  // namespace

void add_max_size(CLI::App& command, int& size) {
  command
      .add_option("--max-size", size, "For drivers that cannot stream: the bytes that a buffer begins with; 0 for none")
      ->type_name("BYTES")
      ->check(CLI::Range(0, largest));
}

void add_data_tasks(CLI::App& app, Request& request) {
  add_numbers(app, request);
  add_settings(app, request);
  add_payload(app, request);
}

}  // namespace spc
