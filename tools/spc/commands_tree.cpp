// Paths and the tree.
#include "tools/spc/command_table.h"
#include "tools/spc/json_shapes.h"

namespace spc {
namespace {

using namespace shapes;

Shape found() {
  const Shape folder = object({{"id", integer()}, {"name", text()}, {"hidden", boolean()}});
  const Shape location = object({{"path", nullable(text())}, {"broken", text()}, {"folders", array(folder)}});
  const Shape thing = object({{"kind", text()}, {"id", integer()}, {"name", text()}, {"locations", array(location)}});
  return object({{"asked", text()},
                 {"revision", nullable(integer())},
                 {"revision_text", text()},
                 {"note", text()},
                 {"found", array(thing)}});
}

Shape shown() {
  const Shape lost =
      object({{"kind", text()}, {"id", integer()}, {"name", text()}, {"hidden", boolean()}, {"why", text()}});
  return object({{"tree", folder_shape()}, {"not_reachable", array(lost)}});
}

}  // namespace

std::vector<Command> tree_commands() {
  return {
      {.path = "path",
       .help = "Tell what a path names, or the paths of a number",
       .more = "When a monitor and a profile have the name, both are told.",
       .options = {{.name = "PATH",
                    .help = "Such as \"/Plant/Line 4/Bore|approved\", or a number",
                    .target = at<&Request::path, &PathRequest::path>,
                    .required = true,
                    .offers = Offers::nodes},
                   {.name = "--kind",
                    .value = "folder|monitor|profile",
                    .help = "Only this kind; all that there are when it is not given",
                    .target = at<&Request::path, &PathRequest::kind>,
                    .offers = Offers::suggestions,
                    .words = {"folder", "monitor", "profile"}}},
       .examples = {{"--connect sqlite:demo.db path '/Plant/Forge/Line 1/Piston rings|approved'",
                     "what a path names, in its latest approved revision"},
                    {"--connect sqlite:demo.db path 2 --kind profile", "the paths of profile 2"}},
       .failed = "So it does when nothing is found.",
       .json = found,
       .task = on_database<show_path, &Request::path, &Request::as_user>},
      {.path = "tree",
       .help = "Show the folders with their monitors and profiles",
       .more = "Hidden folders are left out with what is in them. What no way from the root leads to is listed at the "
               "end, with the reason.",
       .options = {{.name = "PATH",
                    .help = "The folder to begin with, or its number; the root when not given",
                    .target = at<&Request::tree, &TreeRequest::path>,
                    .offers = Offers::nodes},
                   {.name = "--depth",
                    .value = "N",
                    .help = "So many levels; all when it is not given",
                    .target = at<&Request::tree, &TreeRequest::depth>,
                    .within = Bounds{1, largest}},
                   {.name = "--all",
                    .help = "With hidden folders, and what is in them",
                    .target = at<&Request::tree, &TreeRequest::all>}},
       .examples = {{"--connect sqlite:demo.db tree /Plant/Forge", "one folder and all below it"},
                    {"--connect sqlite:demo.db --as-user 2 tree --depth 2", "the upper levels, as a user sees them"}},
       .json = shown,
       .task = on_database<show_tree, &Request::tree, &Request::as_user>},
  };
}

}  // namespace spc
