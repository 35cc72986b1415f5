#include "bench/harness.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

/// Long enough that the clock does not matter, short enough to fit between two bursts of a busy neighbour.
constexpr double round_s = 0.003;
/// So many rounds of each side make a batch, whose median counts; the quietest batch of each side is its result.
constexpr std::size_t rounds_of_batch = 15;
constexpr int fewest_batches = 3;
/// A line that is over its limit is measured so many times longer before it counts.
constexpr int second_looks = 3;

double seconds_of(Work& work, long times) {
  const auto start = Clock::now();
  work.run(times);
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

std::string text_of(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string time_text(double seconds) {
  return seconds < 1e-3 ? text_of("%.2f us", seconds * 1e6) : text_of("%.2f ms", seconds * 1e3);
}

/// The rounds of a pair. Both sides do the same number of repetitions in each, and take turns in going first.
class Rounds {
 public:
  explicit Rounds(Pair& pair) : pair_(pair) {
    // Caches are warm after this on both sides, and statements prepared.
    const double ours = seconds_of(*pair.ours, 1);
    const double plain = seconds_of(*pair.plain, 1);
    times_ = std::max(1L, std::lround(round_s / std::max(ours + plain, 1e-7)));
    const double both = seconds_of(*pair.ours, times_) + seconds_of(*pair.plain, times_);
    times_ = std::max(1L, std::lround(static_cast<double>(times_) * 2 * round_s / both));
  }

  void run_for(double seconds) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    for (int batch = 0; batch < fewest_batches || Clock::now() < end; ++batch)
      run_batch();
  }

  double ours() const { return ours_ / static_cast<double>(times_); }
  double plain() const { return plain_ / static_cast<double>(times_); }
  double ratio() const { return ours_ / plain_; }

 private:
  void run_batch() {
    std::vector<double> ours;
    std::vector<double> plain;
    while (plain.size() < rounds_of_batch) {
      const bool ours_first = plain.size() % 2 == 0;
      if (ours_first) ours.push_back(seconds_of(*pair_.ours, times_));
      plain.push_back(seconds_of(*pair_.plain, times_));
      if (!ours_first) ours.push_back(seconds_of(*pair_.ours, times_));
    }
    ours_ = std::min(ours_, median(std::move(ours)));
    plain_ = std::min(plain_, median(std::move(plain)));
  }

  Pair& pair_;
  long times_ = 1;
  double ours_ = std::numeric_limits<double>::infinity();
  double plain_ = std::numeric_limits<double>::infinity();
};

void require_same_statements(const Job& job, Pair& pair) {
  // The first time may do more: the profile is learnt, statements are prepared.
  pair.ours->run(1);
  pair.plain->run(1);
  const std::string unlike = differences(pair.ours->statements_of_one(), pair.plain->statements_of_one());
  if (!unlike.empty()) throw std::runtime_error(job.name + ": the sides send different statements\n" + unlike);
}

void require_same_result(const Job& job, Pair& pair) {
  const double ours = pair.ours->result();
  const double plain = pair.plain->result();
  if (std::fabs(ours - plain) > 1e-9 * std::fabs(plain) || plain == 0)
    throw std::runtime_error(job.name + ": the sides come to different results, " + text_of("%.17g", ours) + " and " +
                             text_of("%.17g", plain));
}

Line measure_times(const Job& job, Plant& plant, double seconds) {
  Pair pair = job.pair(plant);
  require_same_statements(job, pair);
  require_same_result(job, pair);
  Rounds rounds(pair);
  rounds.run_for(seconds);
  const double limit = job.limit(plant.server());
  for (int look = 0; look < second_looks && rounds.ratio() > limit; ++look)
    rounds.run_for(seconds);
  require_same_result(job, pair);
  Line line;
  line.ours = time_text(rounds.ours());
  line.plain = time_text(rounds.plain());
  line.ratio = text_of("%.2f", rounds.ratio());
  line.limit = text_of("%.2f", limit);
  line.over = rounds.ratio() > limit;
  return line;
}

Line measure_growth(const Job& job, Plant& plant) {
  const Growth growth = job.growth(plant);
  const double limit = job.limit(plant.server());
  Line line;
  line.ours = text_of("%.2f MiB", growth.ours_mib);
  line.plain = text_of("%.2f MiB", growth.plain_mib);
  line.ratio = "-";
  line.limit = text_of("plain+%.0f MiB", limit);
  line.over = growth.ours_mib > growth.plain_mib + limit;
  return line;
}

}  // namespace

Line measure(const Job& job, Plant& plant, double seconds) {
  Line line = job.pair != nullptr ? measure_times(job, plant, seconds) : measure_growth(job, plant);
  line.job = job.name;
  line.server = name_of(plant.server());
  return line;
}

void print_table(const std::vector<Line>& lines) {
  const char* format = "%-30s | %-7s | %10s | %10s | %5s | %11s | %s\n";
  std::printf(format, "job", "server", "ours", "plain", "ratio", "limit", "verdict");
  for (const auto& line : lines)
    std::printf(format, line.job.c_str(), line.server.c_str(), line.ours.c_str(), line.plain.c_str(),
                line.ratio.c_str(), line.limit.c_str(), line.over ? "over" : "ok");
}

}  // namespace bench
