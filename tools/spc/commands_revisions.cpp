// Revisions.
#include "tools/spc/command_table.h"
#include "tools/spc/json_shapes.h"

namespace spc {
namespace {

using namespace shapes;
using R = RevisionRequest;

Properties head() { return with({{"type", integer()}, {"id", integer()}}, revision_properties()); }

Shape history() { return array(object(revision_properties())); }
/// A broken revision has no payload, and no size of one.
Shape told() { return object(with(head(), {{"bytes", nullable(integer())}})); }
Shape with_payload() { return object(with(head(), bytes_properties())); }

Shape planned() {
  return object(
      {{"changes", array(object({{"table", text()}, {"rows", integer()}, {"what", text()}}))}, {"done", boolean()}});
}

/// The object, then what else a task takes.
std::vector<Option> options(std::vector<Option> more = {}) {
  std::vector<Option> all = {{.name = "--type",
                              .value = "N",
                              .help = "The type of the object, a number of the program that saves it",
                              .target = at<&Request::revision, &R::type>,
                              .required = true,
                              .within = Bounds{0, largest},
                              .offers = Offers::revision_types},
                             {.name = "--id",
                              .value = "N",
                              .help = "The object's number",
                              .target = at<&Request::revision, &R::id>,
                              .required = true,
                              .within = Bounds{1, largest},
                              .offers = Offers::revision_ids}};
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

const Option max_size = max_size_option(at<&Request::revision, &R::max_size>);

Option revision_option(std::string_view help, bool required = false) {
  return {.name = "--revision",
          .value = "N",
          .help = help,
          .target = at<&Request::revision, &R::revision>,
          .required = required,
          .within = Bounds{1, largest},
          .offers = Offers::revisions};
}
constexpr std::string_view which = "Which one; the latest when it is not given";

const Option user = {.name = "--user",
                     .value = "NAME",
                     .help = "The name of the user who does it; spc when it is not given",
                     .target = at<&Request::revision, &R::user>,
                     .offers = Offers::users};
const Option user_id = {.name = "--user-id",
                        .value = "N",
                        .help = "That user's number; 0 when it is not given",
                        .target = at<&Request::revision, &R::user_id>,
                        .within = Bounds{0, largest},
                        .offers = Offers::user_ids};
const Option reason = {
    .name = "--reason", .value = "TEXT", .help = "Why", .target = at<&Request::revision, &R::reason>};

Option major(std::string_view help) {
  return {.name = "--major", .help = help, .target = at<&Request::revision, &R::major>};
}

Option file_option(std::string_view help, bool required) {
  return {.name = "--file",
          .value = "FILE",
          .help = help,
          .target = at<&Request::revision, &R::file>,
          .required = required,
          .offers = Offers::files};
}

const Option yes = {
    .name = "--yes", .help = "Do it, and not only say what it would change", .target = at<&Request::yes>};

}  // namespace

std::vector<Command> revision_commands() {
  return {
      {.path = "rev", .help = "Save, read and approve revisions of objects"},
      {.path = "rev add",
       .help = "Save a file as the next revision of an object",
       .more = "The revision is there whole or not at all. When two save at the same time, both get a number.",
       .options = options({file_option("The payload", true), user, user_id, reason,
                           major("Count the major part of the version on"), max_size}),
       .examples = {{"--connect sqlite:demo.db rev add --type 1 --id 9 --file rings.csv --user anna --reason 'first "
                     "draft'",
                     "the first revision of an object, and why it was saved"}},
       .changes = true,
       .json = told,
       .task = on_database<add_revision, &Request::revision>},
      {.path = "rev list",
       .help = "List the revisions of an object, the latest first",
       .options = options(),
       .examples = {{"--connect sqlite:demo.db rev list --type 3 --id 1", "the history of an object"}},
       .json = history,
       .task = on_database<list_revisions, &Request::revision>},
      {.path = "rev show",
       .help = "Show a revision",
       .options = options({revision_option(which), max_size}),
       .examples = {{"--connect sqlite:demo.db rev show --type 3 --id 1 --revision 2", "one that is not the latest"}},
       .json = told,
       .task = on_database<show_revision, &Request::revision>},
      {.path = "rev get",
       .help = "Write the payload of a revision",
       .options = options({revision_option(which),
                           file_option("A file that does not exist yet; else standard output", false), max_size}),
       .examples = {{"--connect sqlite:demo.db rev get --type 3 --id 1 --file latest.json", "into a file"}},
       .json =
           [] {
             return any_of({with_payload(), told()});
           },
       .task = on_database<get_revision, &Request::revision>},
      {.path = "rev approve",
       .help = "Approve the latest revision of an object",
       .more = "Only the latest revision can be approved, once and for good.",
       .options = options({revision_option("The latest revision, to say what was looked at", true),
                           {.name = "--level",
                            .value = "N",
                            .help = "The level, a number of the program that reads it",
                            .target = at<&Request::revision, &R::level>,
                            .required = true,
                            .within = Bounds{0, largest}},
                           {.name = "--approval-type",
                            .value = "N",
                            .help = "The type; 0, which is none, when not given",
                            .target = at<&Request::revision, &R::approval_type>,
                            .within = Bounds{0, largest}},
                           user,
                           user_id,
                           reason,
                           major("Approve a copy with the next major version"),
                           max_size}),
       .examples = {{"rev approve --type 1 --id 9 --revision 1 --level 1 --user bo --major",
                     "approve what was looked at, as version 1.0"}},
       .changes = true,
       .json = told,
       .task = on_database<approve_revision, &Request::revision>},
      {.path = "rev rebuild",
       .help = "Count the versions of all revisions anew: 0.1, 0.2, 0.3 and so on",
       .more = "All of them or none. It says first what it is about to change, and goes on only with --yes.",
       .options = {yes},
       .examples = {{"--connect sqlite:demo.db rev rebuild --yes", "count them"}},
       .changes = true,
       .json = planned,
       .task = on_database<rebuild_revisions, &Request::yes>},
      {.path = "rev reset",
       .help = "Throw away all revisions of all objects",
       .more = "Their approvals too. It says first what it is about to change, and goes on only with --yes. It drops a "
               "foreign key and adds it again, which servers cannot undo, so it looks first whether it can and may.",
       .options = {yes},
       .examples = {{"--dsn plant rev reset --yes", "begin anew"}},
       .changes = true,
       .json = planned,
       .task = on_database<reset_revisions, &Request::yes>},
  };
}

}  // namespace spc
