/// Where the command writes to, and how: for people or for machines.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>

namespace spc {

/// The two streams, and what was asked for.
struct Terminal {
  std::ostream& out;
  std::ostream& err;
  bool json = false;
  bool trace = false;
  bool bars = false;  ///< standard error is a terminal, so that long work may show a bar there
};

/// Where statements are shown; null when nobody wants to see them.
inline std::ostream* trace_of(const Terminal& terminal) { return terminal.trace ? &terminal.err : nullptr; }

/// A bar on standard error that is drawn over itself; wiped when the object goes. Draws nothing unless bars are wanted.
class Progress {
 public:
  Progress(const Terminal& terminal, std::string what, std::size_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void step();

 private:
  void draw();

  std::ostream& err_;
  bool shown_;
  std::string what_;
  std::size_t total_;
  std::size_t done_ = 0;
  std::size_t drawn_ = 0;
};

/// "1 sample", "40 samples".
std::string counted(std::size_t count, const std::string& noun);

}  // namespace spc
