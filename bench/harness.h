/// Measures pairs, and judges them.
#pragma once

#include <string>
#include <vector>

#include "bench/jobs.h"

namespace bench {

/// One line of the table.
struct Line {
  std::string job;
  std::string server;
  std::string ours;   ///< with its unit
  std::string plain;  ///< with its unit
  std::string ratio;  ///< "-" where the limit is no ratio
  std::string limit;
  bool over = false;
};

/// Holds both sides of a job to the same statements and the same results, and measures them in alternating rounds.
/// Fails: std::runtime_error when they do not do the same.
Line measure(const Job& job, Plant& plant, double seconds);

/// Prints the table: columns parted by " | ", one line for each job and server.
void print_table(const std::vector<Line>& lines);

}  // namespace bench
