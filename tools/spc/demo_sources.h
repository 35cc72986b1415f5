/// The demo's chapter on data sources: who sees which, and an old definition that is read and saved.
///
/// Part of the command.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "spcbase/testkit/demo_plant.h"
#include "tools/spc/json.h"
#include "tools/spc/link.h"

namespace spc {

/// A data source and who sees it.
struct SeenSource {
  int id = 0;
  std::string kind;
  std::string name;
  std::string connection;  ///< as it may be shown
  bool by_anna = false;
  bool by_bo = false;
};

/// Stores the plant's data sources, lists them for two users, and gives all of them.
/// Fails: Problem; a list that is not what it should be is one.
std::vector<SeenSource> make_sources(Link& link, const plant::DemoPlant& plant);

void print_seen(std::ostream& out, const std::vector<SeenSource>& sources, const std::string& indent);
/// A list of objects.
void write_seen(JsonWriter& json, const std::vector<SeenSource>& sources);

/// One element of a stored definition; empty texts where there is none.
struct ChangedElement {
  std::string before;
  std::string after;
};

/// Stores a definition of version 2 as programs of that time did, reads and saves it, and gives what has changed in
/// its XML.
/// Fails: Problem; a definition that says something else afterwards is one.
std::vector<ChangedElement> renew_old_source(Link& link);

void print_renewal(std::ostream& out, const std::vector<ChangedElement>& elements, const std::string& indent);
void write_renewal(JsonWriter& json, const std::vector<ChangedElement>& elements);

}  // namespace spc
