/// Tells the observer of a statement, and tells a failure which statement it was.
///
/// Part of the database platform layer; hosts do not see it.
#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/database/session.h"

namespace spcdb {

/// A statement in its given form, with the values of its `?` and the columns that these belong to (may be empty).
struct GivenStatement {
  std::string_view text;
  std::span<const Parameter> parameters;
  std::span<const std::string_view> columns;
};

/// Writes the values of a statement's `?` for people; those of password columns are masked.
std::string parameters_for_people(const GivenStatement& given);

/// Fails: CDBException* (HY008) when the connection is to stop; never for BEGIN, COMMIT and ROLLBACK.
void refuse_when_stopping(CDatabase& database, const GivenStatement& given);

/// Watches one statement. The clock runs only while somebody observes.
class StatementWatch {
 public:
  explicit StatementWatch(CDatabase& database) : database_(database), observed_(database.observer() != nullptr) {
    start();
  }

  void start() {
    if (observed_) [[unlikely]]
      started_ = Clock::now();
  }
  void stop() {
    if (observed_) [[unlikely]]
      time_ += Clock::now() - started_;
  }
  /// Reports success. `rows` is -1 when unknown.
  void done(const GivenStatement& given, std::int64_t rows) {
    stop();
    if (observed_) [[unlikely]]
      report(given, rows, nullptr);
  }
  /// Completes a failure with its statement, notes a transaction that the server gave up, and reports.
  void failed(const GivenStatement& given, CDBException& failure);

 private:
  using Clock = std::chrono::steady_clock;

  void report(const GivenStatement& given, std::int64_t rows, const CDBException* failure);

  CDatabase& database_;
  bool observed_;
  Clock::time_point started_{};
  std::chrono::nanoseconds time_{};
};

/// Runs `run`, which gives the rows it touched, under a watch.
template <class Run>
std::int64_t watched(CDatabase& database, const GivenStatement& given, Run&& run) {
  StatementWatch watch(database);
  try {
    refuse_when_stopping(database, given);
    const std::int64_t rows = run();
    watch.done(given, rows);
    return rows;
  } catch (CDBException* failure) {
    watch.failed(given, *failure);
    throw;
  }
}

}  // namespace spcdb
