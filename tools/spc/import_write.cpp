#include "tools/spc/import_write.h"

#include <chrono>
#include <thread>

#include "spcbase/dataentry/sample.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

constexpr int most_attempts = 5;
constexpr std::chrono::milliseconds pause_before_retry{20};

class Writer {
 public:
  Writer(Link& link, const ProfileShape& shape, const Entrant& entrant)
      : link_(link), shape_(shape), entrant_(entrant) {}

  Outcome<long> write(PreparedSample& sample) {
    for (int attempt = 1;; ++attempt) {
      auto outcome = guarded([&] { return write_once(sample); });
      if (outcome || !outcome.failure().may_retry() || attempt == most_attempts) return outcome;
      std::this_thread::sleep_for(pause_before_retry * attempt);
    }
  }

 private:
  long write_once(PreparedSample& sample) {
    AutoODBCTransaction transaction(link_.db(), true);
    long number = 0;
    double date = 0;
    helper_.set_data(link_.engine(), link_.db(), &number, shape_.id, 0, entrant_.station.id, entrant_.user.id,
                     CString(entrant_.user.name), sample.grid.address(), &date);
    transaction.commit();
    return number;
  }

  Link& link_;
  const ProfileShape& shape_;
  const Entrant& entrant_;
  oldde::DEHelper helper_;
};

std::string numbers_text(const std::vector<long>& numbers) {
  if (numbers.size() == 1) return "number " + std::to_string(numbers.front());
  return "numbers " + std::to_string(numbers.front()) + " to " + std::to_string(numbers.back());
}

std::string what_stands(const std::vector<long>& written, const PreparedSample& failed, std::size_t total,
                        FailureClass why) {
  std::string text = std::to_string(written.size()) + " of " + std::to_string(total) + " samples stand";
  if (!written.empty()) text += " (" + numbers_text(written) + ")";
  text += why == FailureClass::commit_in_doubt ? "; whether sample " : "; sample ";
  text += failed.key + " of the file (line " + std::to_string(failed.line) + ")";
  return text + (why == FailureClass::commit_in_doubt ? " stands nobody knows." : " and what follows it do not.");
}

}  // namespace

std::vector<long> write_samples(Link& link, const std::string& file, const ProfileShape& shape, const Entrant& entrant,
                                std::span<PreparedSample> samples, const std::function<void()>& after_each) {
  std::vector<long> written;
  Writer writer(link, shape, entrant);
  for (auto& sample : samples) {
    stop_if_interrupted(what_stands(written, sample, samples.size(), FailureClass::other));
    const auto outcome = writer.write(sample);
    if (!outcome) {
      const FailureClass why = outcome.failure().failure_class;
      stop_if_interrupted(what_stands(written, sample, samples.size(), why));
      Problem problem = problem_of("cannot import " + file, outcome.failure());
      problem.note = what_stands(written, sample, samples.size(), why);
      if (link.db().link_is_dead()) problem.note += " The driver says that the link is dead.";
      throw problem;
    }
    written.push_back(outcome.value());
    after_each();
  }
  return written;
}

}  // namespace spc
