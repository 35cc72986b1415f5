/// Measures jobs with Google Benchmark, and judges them.
#pragma once

#include <string>
#include <vector>

#include "bench/jobs.h"

namespace bench {

/// One line of the table.
struct Line {
  std::string job;
  std::string server;  ///< "-" for a job that needs none
  std::string ours;    ///< with its unit
  std::string plain;   ///< with its unit; "-" where there is no such side
  std::string ratio;   ///< "-" where the limit is no ratio
  std::string limit;
  bool over = false;
};

/// Tells Google Benchmark how to run a batch; once, before `measure`. `program` is the name of this one.
void set_up_batches(char* program);

/// Holds both sides of a job to the same statements and the same results, and measures them in interleaved rounds.
/// Fails: std::runtime_error when they do not do the same.
Line measure(const Job& job, Plant& plant, double seconds);

/// The same for a job that needs no database.
Line measure_alone(const Job& job, double seconds);

/// Prints the table: columns parted by " | ", one line for each job and server, or for a job alone.
void print_table(const std::vector<Line>& lines);

}  // namespace bench
