/// What a dry run answers: what the command itself says, then the rows that it touched.
///
/// Part of the command.
///
///     DryRunAnswer answer(request.dry_run, request.json, out);
///     const Terminal terminal{answer.out(), ..., answer.dry_run()};
///     return answer.of([&] { return task(request, terminal); });
#pragma once

#include <functional>
#include <ostream>
#include <sstream>

#include "tools/spc/dry_run.h"
#include "tools/spc/json_shape.h"

namespace spc {

class DryRunAnswer {
 public:
  /// Without `wanted` the command runs as ever.
  DryRunAnswer(bool wanted, bool json, std::ostream& out) : wanted_(wanted), json_(json), out_(out) {}

  /// Where the command answers; for machines its answer is kept, to stand inside of another.
  std::ostream& out() { return wanted_ && json_ ? held_ : out_; }
  /// Null: this is no dry run.
  DryRun* dry_run() { return wanted_ ? &dry_run_ : nullptr; }

  /// Runs a task and tells what it did. Gives its exit status.
  /// Fails: Problem, that of the task, or one that says why the dry run cannot be trusted.
  int of(const std::function<int()>& task);

 private:
  void print(bool failed);
  void write(bool failed);

  bool wanted_;
  bool json_;
  std::ostream& out_;
  std::ostringstream held_;
  DryRun dry_run_;
};

/// What --json prints for a dry run of a command whose own answer has this shape.
Shape dry_run_shape(Shape answer);

}  // namespace spc
