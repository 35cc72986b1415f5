/// What goes wrong, as the command tells it: `spc: what failed: why`, then what to do.
///
/// Part of the command. Work on the library runs inside `doing`, which turns each of its kinds of failure into a
/// Problem. A Problem is none of those kinds and so passes through `guarded` as it is.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "spcbase/foundation/outcome.h"

namespace spc {

inline constexpr int exit_done = 0;
inline constexpr int exit_failed = 1;
inline constexpr int exit_misuse = 2;

/// A failure for a person. Thrown and caught by value.
struct Problem {
  std::string what = {};    ///< what failed: "cannot import rings.csv"
  std::string why = {};     ///< one line
  std::string advice = {};  ///< what to do about it; may be empty
  int status = exit_failed;
  std::string note = {};  ///< what stands nevertheless; may be empty
};

/// A failure of the library as a Problem: its text, its class and SQLSTATE when a database had a say, its advice.
Problem problem_of(std::string_view what, const Failure& failure);

/// Prints a problem on standard error.
void report(std::ostream& err, const Problem& problem);

/// Runs `work` and gives its result.
/// Fails: Problem, "what" being what failed.
template <class Work>
auto doing(std::string_view what, Work&& work) -> std::remove_cvref_t<std::invoke_result_t<Work>> {
  auto outcome = guarded(std::forward<Work>(work));
  if (!outcome) throw problem_of(what, outcome.failure());
  if constexpr (!std::is_void_v<std::invoke_result_t<Work>>) return std::move(outcome).value();
}

}  // namespace spc
