/// Ctrl-C (SIGINT) and the wish that the command ends (SIGTERM): work stops at the next statement or between its steps,
/// what was begun is rolled back or removed, and the command says what stands. A second signal ends it at once.
///
/// Part of the command. Signals are noted while a Link stands; before, they end the command as ever.
#pragma once

#include <string>

#include "spcbase/foundation/connection.h"
#include "tools/spc/problem.h"

namespace spc {

inline constexpr int exit_interrupted = 130;  ///< 128 and the number of SIGINT
inline constexpr int exit_terminated = 143;   ///< 128 and the number of SIGTERM

/// Whether the command is to stop.
bool interrupted() noexcept;

/// How the command ends then: "spc: interrupted: 3 of 40 samples stand".
Problem interruption(std::string what_stands);

/// Whether a problem comes from that alone, as of a statement that was not sent any more.
bool is_interruption(const Problem& problem);

/// A point between two steps at which work may stop.
/// Fails: Problem, when it is to stop.
void stop_if_interrupted(const std::string& what_stands);

/// Notes signals from now on, and lets the statements of an open connection fail when there was one.
void stop_when_interrupted(CDatabase& db);

/// The statements of a connection pass while it lives, whatever was noted: for work that must not stop in the middle,
/// for cleaning up, and for telling of what stands by then.
class Undisturbed {
 public:
  explicit Undisturbed(CDatabase& db);
  ~Undisturbed();
  Undisturbed(const Undisturbed&) = delete;
  Undisturbed& operator=(const Undisturbed&) = delete;

 private:
  CDatabase& db_;
};

}  // namespace spc
