#include <cstdio>
#include <exception>
#include <string>

#include "bench/arguments.h"
#include "bench/harness.h"
#include "bench/one_cpu.h"
#include "bench/scan_memory.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"

namespace bench {
namespace {

bool wanted(const std::string& part, const std::string& name) { return name.find(part) != std::string::npos; }

void run_side(const Job& job, Plant& plant, const Arguments& arguments) {
  if (job.pair == nullptr) return;
  const Pair pair = job.pair(plant);
  (arguments.run_side == "ours" ? pair.ours : pair.plain)->run(arguments.times);
}

void run_server(Server server, const Arguments& arguments, std::vector<Line>& lines) {
  if (server == Server::mariadb) bring_server_here(test_support::PrivateMariaDb::shared().socket());
  Plant plant(server);
  for (const Job& job : all_jobs()) {
    if (!wanted(arguments.job, job.name)) continue;
    std::fprintf(stderr, "%s, %s\n", job.name.c_str(), name_of(server));
    if (!arguments.run_side.empty())
      run_side(job, plant, arguments);
    else
      lines.push_back(measure(job, plant, arguments.seconds));
  }
}

int run(const Arguments& arguments) {
  bind_to_one_cpu();
  std::vector<Line> lines;
  for (const Server server : {Server::sqlite, Server::mariadb})
    if (wanted(arguments.server, name_of(server))) run_server(server, arguments, lines);
  if (!arguments.run_side.empty()) return 0;
  print_table(lines);
  for (const Line& line : lines)
    if (line.over) return 1;
  return 0;
}

int guarded_main(int count, char** words) {
  if (count == 5 && std::string(words[1]) == scan_memory_word)
    return scan_and_print_growth(words[2], words[3], words[4]);
  if (count == 2 && std::string(words[1]) == "--help") {
    std::fputs(usage(), stdout);
    return 0;
  }
  return run(parse_arguments(count, words));
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
  constexpr int not_measured = 2;
  const auto outcome = guarded([&] { return bench::guarded_main(count, words); });
  if (outcome) return outcome.value();
  std::fprintf(stderr, "spcbase_bench: %s\n", outcome.failure().text.GetString());
  return not_measured;
}
