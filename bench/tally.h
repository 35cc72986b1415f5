/// How often each statement was sent, so that both sides of a job can be held to the same work.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "spcbase/platform/database/observer.h"

namespace bench {

/// Statements by their shape, with the number of times that each was sent.
using Tally = std::map<std::string, long>;

/// The shape of a statement: literals become "?"; quotes and brackets of names, blanks and case do not count.
std::string shape_of(std::string_view statement);

/// The differences between two tallies for people, one line each; empty when they are equal.
std::string differences(const Tally& ours, const Tally& plain);

/// Counts what a connection sends.
class TallyObserver final : public spcdb::StatementObserver {
 public:
  void on_statement(const spcdb::StatementReport& report) noexcept override { ++tally[shape_of(report.statement)]; }

  Tally tally;
};

}  // namespace bench
