#include "tools/spc/problem.h"

#include "tools/spc/utf8.h"

namespace spc {

Problem problem_of(std::string_view what, const Failure& failure) {
  Problem problem;
  problem.what = what;
  problem.why = trimmed(on_one_line(failure.text.view()));
  if (failure.kind == FailureKind::database || !failure.sqlstate.IsEmpty()) {
    std::string facts = describe(failure.failure_class);
    if (!failure.sqlstate.IsEmpty()) facts += ", SQLSTATE " + std::string(failure.sqlstate.view());
    if (failure.native != 0) facts += ", native " + std::to_string(failure.native);
    problem.why += " (" + facts + ")";
  }
  problem.advice = failure.advice.view();
  if (problem.why == "std::bad_alloc") {
    problem.why = "there is not enough memory";
    problem.advice = "See that the file or the data are not larger than was meant.";
  }
  return problem;
}

void report(std::ostream& err, const Problem& problem) {
  err << "spc: " << problem.what << ": " << problem.why << '\n';
  if (!problem.note.empty()) err << "     " << problem.note << '\n';
  if (!problem.advice.empty()) err << "     " << problem.advice << '\n';
  err.flush();
}

}  // namespace spc
