/// Samples as they stand in the database, for people and machines.
///
/// Part of the command.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tools/spc/json.h"
#include "tools/spc/link.h"
#include "tools/spc/profile_shape.h"
#include "tools/spc/table.h"
#include "tools/spc/terminal.h"

namespace spc {

/// A sample that has been read.
struct SampleView {
  long sample = 0;
  ProfileShape shape;
  std::string taken;                                             ///< local time, to the second
  std::vector<std::pair<std::string, std::string>> auto_labels;  ///< names and values
  Grid grid;
};

/// Reads a sample with its grid.
/// Fails: Problem; also when there is no such sample.
SampleView read_sample(Link& link, long sample);

/// The rows worth showing: what is filled, and the pieces that the profile wants.
LONG shown_rows(const SampleView& view);

/// Prints a line of facts and the grid, each line behind `indent`.
void print_sample(std::ostream& out, const SampleView& view, const std::string& indent = {});
void write_sample(JsonWriter& json, const SampleView& view);

/// One line of a list of samples.
struct SampleLine {
  long sample = 0;
  int profile = 0;
  std::string profile_name;
  std::string taken;
};

/// The newest samples first, at most `limit`; of one profile unless it is 0, and of those that a user may see unless
/// the user is 0.
/// Fails: Problem.
std::vector<SampleLine> list_samples(Link& link, int profile, std::size_t limit, int as_user = 0);

}  // namespace spc
