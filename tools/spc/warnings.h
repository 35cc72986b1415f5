/// What the library takes, but a person hardly meant: told beside the answer, on standard error and in JSON.
///
/// Part of the command.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tools/spc/json.h"

namespace spc {

/// One field of what was given.
struct Warning {
  std::string field;    ///< "minute"
  std::string text;     ///< what stood there, "77"
  std::string taken;    ///< what the library makes of it, "read as 77"
  std::string wanted;   ///< what it may be, "a number from 0 to 59"
  std::string example;  ///< a right one, "30 6 * * *"
};

using Warnings = std::vector<Warning>;

/// Prints a line for each: `spc: warning: minute "77": read as 77; it may be a number ..., as in "30 6 * * *"`.
void print_warnings(std::ostream& err, const Warnings& warnings);

/// Writes the member "warnings".
void write_warnings(JsonWriter& json, const Warnings& warnings);

}  // namespace spc
