// The grammar of the tasks on paths and the tree.
#include "tools/spc/request.h"

namespace spc {
namespace {

void add_path(CLI::App& app, Request& request) {
  CLI::App* command = app.add_subcommand("path", "Tell what a path names, or the paths of a number");
  command->add_option("PATH", request.path.path, "Such as \"/Plant/Line 4/Bore|approved\", or a number")->required();
  command->add_option("--kind", request.path.kind, "Only this kind; all that there are when it is not given")
      ->type_name("folder|monitor|profile");
  command->callback([&] {
    request.task = [&](const Terminal& terminal) {
      return show_path(request.place, request.path, request.as_user, terminal);
    };
  });
}

void add_tree(CLI::App& app, Request& request) {
  CLI::App* command = app.add_subcommand("tree", "Show the folders with their monitors and profiles");
  command->add_option("PATH", request.tree.path, "The folder to begin with, or its number; the root when not given");
  command->add_option("--depth", request.tree.depth, "So many levels; all when it is not given")
      ->type_name("N")
      ->check(CLI::Range(1, 2'147'483'647));
  command->add_flag("--all", request.tree.all, "With hidden folders, and what is in them");
  command->callback([&] {
    request.task = [&](const Terminal& terminal) {
      return show_tree(request.place, request.tree, request.as_user, terminal);
    };
  });
}

}  // namespace

void add_tree_tasks(CLI::App& app, Request& request) {
  add_path(app, request);
  add_tree(app, request);
}

}  // namespace spc
