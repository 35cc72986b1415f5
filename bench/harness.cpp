#include "bench/harness.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <stdexcept>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

/// A batch: rounds of a millisecond, long enough that the clock does not matter and short enough to fit between two
/// bursts of a busy neighbour, those of both sides in random order. The median of each side counts.
constexpr const char* batch_options[] = {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=7",
                                         "--benchmark_min_time=0.001"};
constexpr int fewest_batches = 3;
/// A line that is over its limit is measured so many times longer before it counts.
constexpr int second_looks = 3;

std::string text_of(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string time_text(double seconds) {
  return seconds < 1e-3 ? text_of("%.2f us", seconds * 1e6) : text_of("%.2f ms", seconds * 1e3);
}

/// Both sides under the clock. The quietest batch of each is its result.
class Clocked final : public benchmark::BenchmarkReporter {
 public:
  explicit Clocked(Pair& pair) {
    add("ours", pair.ours.get());
    add("plain", pair.plain.get());
  }
  ~Clocked() override { benchmark::ClearRegisteredBenchmarks(); }

  void run_for(double seconds) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    for (int batch = 0; batch < fewest_batches || Clock::now() < end; ++batch)
      benchmark::RunSpecifiedBenchmarks(this, "all");
  }

  double seconds_of(const std::string& side) const { return sides_.at(side).seconds; }

  /// Lets each side do what the other did more often.
  void draw_level() {
    benchmark::IterationCount most = 0;
    for (const auto& [name, side] : sides_)
      most = std::max(most, side.done);
    for (auto& [name, side] : sides_)
      for (; side.done < most; ++side.done)
        side.work->run();
  }

 private:
  struct Side {
    Work* work = nullptr;
    benchmark::IterationCount done = 0;
    double seconds = std::numeric_limits<double>::infinity();
  };

  void add(const char* name, Work* work) {
    if (work == nullptr) return;
    Side& side = sides_[name];
    side.work = work;
    benchmark::RegisterBenchmark(name, [&side](benchmark::State& state) {
      for ([[maybe_unused]] const auto _ : state)
        side.work->run();
      side.done += state.iterations();
    })->UseRealTime();
  }

  bool ReportContext(const Context& /*context*/) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.aggregate_name != "median") continue;
      double& quietest = sides_.at(run.run_name.function_name).seconds;
      quietest = std::min(quietest, run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit));
    }
  }

  std::map<std::string, Side> sides_;
};

void require_same_statements(const Job& job, Pair& pair) {
  // The first time may do more: the profile is learnt, statements are prepared.
  pair.ours->run();
  if (pair.plain != nullptr) pair.plain->run();
  const Tally plain = pair.plain != nullptr ? pair.plain->statements_of_one() : Tally();
  const std::string unlike = differences(pair.ours->statements_of_one(), plain);
  if (!unlike.empty()) throw std::runtime_error(job.name + ": the sides send different statements\n" + unlike);
}

void require_same_result(const Job& job, Pair& pair) {
  if (pair.plain == nullptr) return;
  const double ours = pair.ours->result();
  const double plain = pair.plain->result();
  if (std::fabs(ours - plain) > 1e-9 * std::fabs(plain) || plain == 0)
    throw std::runtime_error(job.name + ": the sides come to different results, " + text_of("%.17g", ours) + " and " +
                             text_of("%.17g", plain));
}

Line measure_times(const Job& job, Pair pair, double limit, double seconds) {
  const bool compared = pair.plain != nullptr;
  require_same_statements(job, pair);
  require_same_result(job, pair);
  Clocked clocked(pair);
  const auto measured = [&] { return clocked.seconds_of("ours") / (compared ? clocked.seconds_of("plain") : 1e-6); };
  clocked.run_for(seconds);
  for (int look = 0; look < second_looks && measured() > limit; ++look)
    clocked.run_for(seconds);
  clocked.draw_level();
  require_same_result(job, pair);
  Line line;
  line.ours = time_text(clocked.seconds_of("ours"));
  line.plain = compared ? time_text(clocked.seconds_of("plain")) : "-";
  line.ratio = compared ? text_of("%.2f", measured()) : "-";
  line.limit = text_of(compared ? "%.2f" : "%.2f us", limit);
  line.over = measured() > limit;
  return line;
}

Line measure_growth(const Job& job, Plant& plant) {
  const Growth growth = job.growth(plant);
  const double limit = job.limit(plant.server());
  Line line;
  line.ours = text_of("%.2f MiB", growth.ours_mib);
  line.plain = text_of("%.2f MiB", growth.plain_mib);
  line.ratio = "-";
  line.limit = text_of("%.2f MiB", limit);
  line.over = growth.ours_mib > limit;
  return line;
}

}  // namespace

void set_up_batches(char* program) {
  std::vector<char*> words{program};
  for (const char* option : batch_options)
    words.push_back(const_cast<char*>(option));  // they are only read
  int count = static_cast<int>(words.size());
  words.push_back(nullptr);
  benchmark::Initialize(&count, words.data());
}

Line measure(const Job& job, Plant& plant, double seconds) {
  Line line = job.pair != nullptr ? measure_times(job, job.pair(plant), job.limit(plant.server()), seconds)
                                  : measure_growth(job, plant);
  line.job = job.name;
  line.server = name_of(plant.server());
  return line;
}

Line measure_alone(const Job& job, double seconds) {
  Line line = measure_times(job, job.pair_alone(), job.alone_limit, seconds);
  line.job = job.name;
  line.server = "-";
  return line;
}

void print_table(const std::vector<Line>& lines) {
  const char* format = "%-38s | %-7s | %10s | %10s | %5s | %8s | %s\n";
  std::printf(format, "job", "server", "ours", "plain", "ratio", "limit", "verdict");
  for (const auto& line : lines)
    std::printf(format, line.job.c_str(), line.server.c_str(), line.ours.c_str(), line.plain.c_str(),
                line.ratio.c_str(), line.limit.c_str(), line.over ? "over" : "ok");
}

}  // namespace bench
