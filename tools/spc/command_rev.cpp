// The grammar of the tasks on revisions.
#include "tools/spc/request.h"

namespace spc {
namespace {

constexpr int largest = 2'147'483'647;

using RevisionTask = int (*)(const Place&, const RevisionRequest&, const Terminal&);

CLI::App* add_task(CLI::App& rev, Request& request, const char* name, const char* help, RevisionTask task) {
  CLI::App* command = rev.add_subcommand(name, help);
  command->add_option("--type", request.revision.type, "The type of the object, a number of the program that saves it")
      ->type_name("N")
      ->check(CLI::Range(0, largest))
      ->required();
  command->add_option("--id", request.revision.id, "The object's number")
      ->type_name("N")
      ->check(CLI::Range(1, largest))
      ->required();
  command->callback([&request, task] {
    request.task = [&request, task](const Terminal& terminal) {
      return task(request.place, request.revision, terminal);
    };
  });
  return command;
}

CLI::Option* add_revision_option(CLI::App& command, Request& request, const char* help) {
  return command.add_option("--revision", request.revision.revision, help)
      ->type_name("N")
      ->check(CLI::Range(1, largest));
}

void add_person(CLI::App& command, Request& request) {
  command.add_option("--user", request.revision.user, "The name of the user who does it; spc when it is not given")
      ->type_name("NAME");
  command.add_option("--user-id", request.revision.user_id, "That user's number; 0 when it is not given")
      ->type_name("N")
      ->check(CLI::Range(0, largest));
  command.add_option("--reason", request.revision.reason, "Why")->type_name("TEXT");
}

void add_saving(CLI::App& rev, Request& request) {
  CLI::App* add = add_task(rev, request, "add", "Save a file as the next revision of an object", add_revision);
  add->add_option("--file", request.revision.file, "The payload")->type_name("FILE")->required();
  add_person(*add, request);
  add->add_flag("--major", request.revision.major, "Count the major part of the version on");
  add_max_size(*add, request.revision.max_size);
}

void add_reading(CLI::App& rev, Request& request) {
  constexpr const char* which = "Which one; the latest when it is not given";
  add_task(rev, request, "list", "List the revisions of an object, the latest first", list_revisions);
  CLI::App* show = add_task(rev, request, "show", "Show a revision", show_revision);
  add_revision_option(*show, request, which);
  add_max_size(*show, request.revision.max_size);
  CLI::App* get = add_task(rev, request, "get", "Write the payload of a revision", get_revision);
  add_revision_option(*get, request, which);
  get->add_option("--file", request.revision.file, "A file that does not exist yet; else standard output")
      ->type_name("FILE");
  add_max_size(*get, request.revision.max_size);
}

void add_approving(CLI::App& rev, Request& request) {
  CLI::App* approve = add_task(rev, request, "approve", "Approve the latest revision of an object", approve_revision);
  add_revision_option(*approve, request, "The latest revision, to say what was looked at")->required();
  approve->add_option("--level", request.revision.level, "The level, a number of the program that reads it")
      ->type_name("N")
      ->check(CLI::Range(0, largest))
      ->required();
  approve->add_option("--approval-type", request.revision.approval_type, "The type; 0, which is none, when not given")
      ->type_name("N")
      ->check(CLI::Range(0, largest));
  add_person(*approve, request);
  approve->add_flag("--major", request.revision.major, "Approve a copy with the next major version");
  add_max_size(*approve, request.revision.max_size);
}

void add_maintenance(CLI::App& rev, Request& request) {
  const auto add = [&](const char* name, const char* help, int (*task)(const Place&, bool, const Terminal&)) {
    CLI::App* command = rev.add_subcommand(name, help);
    command->add_flag("--yes", request.yes, "Do it, and not only say what it would change");
    command->callback([&request, task] {
      request.task = [&request, task](const Terminal& terminal) { return task(request.place, request.yes, terminal); };
    });
  };
  add("rebuild", "Count the versions of all revisions anew: 0.1, 0.2, 0.3 ...", rebuild_revisions);
  add("reset", "Throw away all revisions of all objects", reset_revisions);
}

}  // namespace

void add_revision_tasks(CLI::App& app, Request& request) {
  CLI::App* rev = app.add_subcommand("rev", "Save, read and approve revisions of objects");
  add_saving(*rev, request);
  add_reading(*rev, request);
  add_approving(*rev, request);
  add_maintenance(*rev, request);
}

}  // namespace spc
