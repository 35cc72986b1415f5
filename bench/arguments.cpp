#include "bench/arguments.h"

#include <stdexcept>

namespace bench {

const char* usage() {
  return "spcbase_bench [OPTIONS]: measures each job beside the same statements in plain C.\n"
         "\n"
         "  --job TEXT        only jobs whose name holds TEXT\n"
         "  --server NAME     only SQLite or only MariaDB\n"
         "  --seconds S       how long each line is measured (3)\n"
         "  --run SIDE        no table: does the work of one side, ours or plain, for a profiler\n"
         "  --times N         how often --run does it (1000)\n"
         "\n"
         "The last lines are one table. Exit status: 0 all within their limits, 1 some over, 2 not measured.\n";
}

Arguments parse_arguments(int count, char** words) {
  Arguments arguments;
  for (int i = 1; i < count; i += 2) {
    const std::string option = words[i];
    if (i + 1 >= count) throw std::invalid_argument(option + " wants a value");
    const std::string value = words[i + 1];
    if (option == "--job")
      arguments.job = value;
    else if (option == "--server")
      arguments.server = value;
    else if (option == "--seconds")
      arguments.seconds = std::stod(value);
    else if (option == "--run" && (value == "ours" || value == "plain"))
      arguments.run_side = value;
    else if (option == "--times")
      arguments.times = std::stol(value);
    else
      throw std::invalid_argument("unknown option " + option + " " + value);
  }
  return arguments;
}

}  // namespace bench
