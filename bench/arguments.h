/// What the benchmark program was asked for.
#pragma once

#include <string>

namespace bench {

struct Arguments {
  std::string job;       ///< only jobs whose name holds this
  std::string server;    ///< only this server; empty: all
  double seconds = 3;    ///< of measuring, for each line
  std::string run_side;  ///< "ours" or "plain": no table, only this side's work, for a profiler
  long times = 1000;     ///< how often `run_side` does the work
};

/// What `--help` prints.
const char* usage();

/// Fails: std::invalid_argument for what it does not know.
Arguments parse_arguments(int count, char** words);

}  // namespace bench
