#include <CLI/CLI.hpp>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/harness.h"
#include "bench/one_cpu.h"
#include "bench/scan_memory.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"

namespace bench {
namespace {

constexpr int not_measured = 2;

struct Arguments {
  std::string job;
  std::string server;
  double seconds = 2;
  std::string run_side;
  long times = 1000;
};

/// The word by which the jobs without a database are chosen in place of a server's.
constexpr const char* no_server = "none";

void run_side(const Pair& pair, const Arguments& arguments) {
  Work* work = (arguments.run_side == "ours" ? pair.ours : pair.plain).get();
  for (long i = 0; work != nullptr && i < arguments.times; ++i)
    work->run();
}

void run_server(Server server, const Arguments& arguments, const std::vector<Job>& jobs, std::vector<Line>& lines) {
  if (server == Server::mariadb) bring_server_here(test_support::PrivateMariaDb::shared().socket());
  Plant plant(server);
  for (const Job& job : jobs) {
    std::fprintf(stderr, "%s, %s\n", job.name.c_str(), name_of(server));
    if (arguments.run_side.empty())
      lines.push_back(measure(job, plant, arguments.seconds));
    else if (job.pair != nullptr)
      run_side(job.pair(plant), arguments);
  }
}

void run_alone(const Arguments& arguments, const std::vector<Job>& jobs, std::vector<Line>& lines) {
  for (const Job& job : jobs) {
    std::fprintf(stderr, "%s\n", job.name.c_str());
    if (arguments.run_side.empty())
      lines.push_back(measure_alone(job, arguments.seconds));
    else
      run_side(job.pair_alone(), arguments);
  }
}

/// The jobs that run on servers, or those that need none.
std::vector<Job> those(std::vector<Job> jobs, bool on_servers) {
  std::erase_if(jobs, [&](const Job& job) { return job.needs_server() != on_servers; });
  return jobs;
}

/// What is asked for, out of all there is. Fails: std::invalid_argument when that is nothing.
template <class Item, class NameOf>
std::vector<Item> chosen(std::vector<Item> all, const std::string& part, NameOf name) {
  std::erase_if(all, [&](const Item& item) { return name(item).find(part) == std::string::npos; });
  if (all.empty()) throw std::invalid_argument("there is nothing that is called \"" + part + "\"");
  return all;
}

int run(const Arguments& arguments) {
  const auto jobs = chosen(all_jobs(), arguments.job, [](const Job& job) { return job.name; });
  const auto places = chosen(std::vector<std::string>{name_of(Server::sqlite), name_of(Server::mariadb), no_server},
                             arguments.server, [](const std::string& place) { return place; });
  const auto on_servers = those(jobs, true);
  bind_to_one_cpu();
  std::vector<Line> lines;
  for (const std::string& place : places) {
    if (place == no_server)
      run_alone(arguments, those(jobs, false), lines);
    else if (!on_servers.empty())
      run_server(place == name_of(Server::sqlite) ? Server::sqlite : Server::mariadb, arguments, on_servers, lines);
  }
  if (!arguments.run_side.empty()) return 0;
  print_table(lines);
  for (const Line& line : lines)
    if (line.over) return 1;
  return 0;
}

int guarded_main(int count, char** words) {
  if (count == 5 && std::string(words[1]) == scan_memory_word)
    return scan_and_print_growth(words[2], words[3], words[4]);
  Arguments arguments;
  CLI::App app(
      "Measures each job beside the same work in plain C. The last lines are one table.\n"
      "Exit status: 0 all within their limits, 1 some over, 2 not measured.");
  app.add_option("--job", arguments.job, "only jobs whose name holds this text");
  app.add_option("--server", arguments.server, "only SQLite, only MariaDB, or none: only the jobs without a database");
  app.add_option("--seconds", arguments.seconds, "how long each line is measured")->capture_default_str();
  app.add_option("--run", arguments.run_side, "no table: does the work of one side, for a profiler")
      ->check(CLI::IsMember({"ours", "plain"}));
  app.add_option("--times", arguments.times, "how often --run does it")->capture_default_str();
  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : not_measured;
  }
  set_up_batches(words[0]);
  return run(arguments);
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
  const auto outcome = guarded([&] { return bench::guarded_main(count, words); });
  if (outcome) return outcome.value();
  std::fprintf(stderr, "spcbase_bench: %s\n", outcome.failure().text.GetString());
  return bench::not_measured;
}
