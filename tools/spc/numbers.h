/// The running numbers as an administrator sees them: how each counter stands against its table.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "spcbase/foundation/running_number.h"
#include "tools/spc/link.h"

namespace spc {

/// How one counter stands.
struct NumberState {
  running_number number;
  long highest = 0;  ///< the highest id of the table; 0 without rows
  long rows = 0;     ///< of the counter; it must have one
  long maxno = 0;    ///< the highest number of the counter; 0 without rows

  long difference() const { return maxno - highest; }
  /// Whether the next id would be one that is taken, or cannot be had at all.
  bool faulty() const { return rows != 1 || maxno < highest; }
  /// "behind", "no row", "3 rows", "ahead", or "" when it is at the highest id.
  std::string verdict() const;
};

/// The numbers of one base table, its name in any case, or all of them for an empty name.
/// Fails: Problem that names the tables which have a running number.
std::vector<running_number> numbers_of(const std::string& table);

/// Looks, and changes nothing.
/// Fails: Problem.
std::vector<NumberState> inspect_numbers(Link& link, const std::vector<running_number>& numbers);

/// Sets counters to the truth: all of these or none, where the server has transactions.
/// Fails: Problem; the counters are as they were then.
void repair_numbers(Link& link, const std::vector<running_number>& numbers);

}  // namespace spc
