/// The demo's chapter on the tree: its folders, and objects found by their paths as a host finds them.
///
/// Part of the command.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "spcbase/revision/record.h"
#include "spcbase/testkit/demo_plant.h"
#include "tools/spc/json.h"
#include "tools/spc/link.h"

namespace spc {

/// What a path leads to.
struct FoundByPath {
  std::string path;
  std::string kind;  ///< "monitor" or "profile"
  int id = 0;
  std::string asked;     ///< "latest", "latest approved", or a number
  std::string revision;  ///< what there is for it, "5, version 1.0"; empty for an object without revisions
};

/// Finds monitors and profiles of the plant by their paths; `history` are the revisions of its first profile.
/// Fails: Problem; a path that leads to another object than it should is one.
std::vector<FoundByPath> find_by_paths(Link& link, const plant::DemoPlant& plant,
                                       const std::vector<rev::RevisionBaseInfo>& history);

void print_found(std::ostream& out, const std::vector<FoundByPath>& found, const std::string& indent);
/// A list of objects.
void write_found(JsonWriter& json, const std::vector<FoundByPath>& found);

}  // namespace spc
