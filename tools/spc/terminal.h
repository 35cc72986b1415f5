/// Where the command writes to, and how: for people or for machines.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace spc {

class DryRun;

/// How long work tells on standard error how far it is.
enum class ProgressStyle : unsigned char {
  none,
  bar,   ///< drawn over itself, and wiped at the end: for terminals alone
  line,  ///< a line of text at each tenth
  json   ///< an object on a line of its own at each hundredth: {"task": "...", "done": 3, "total": 140}
};

/// What --progress asks for; "" when it is not given. A bar needs a terminal, and lines of a trace would tear it.
ProgressStyle progress_style(std::string_view word, bool is_terminal, bool json, bool trace);

/// The two streams, and what was asked for.
struct Terminal {
  std::ostream& out;
  std::ostream& err;
  bool json = false;
  bool trace = false;
  ProgressStyle progress = ProgressStyle::none;
  DryRun* dry_run = nullptr;  ///< null: what is done stays
};

/// Where statements are shown; null when nobody wants to see them.
inline std::ostream* trace_of(const Terminal& terminal) { return terminal.trace ? &terminal.err : nullptr; }

/// Tells how far long work is, from its making on. A bar is wiped when the object goes.
class Progress {
 public:
  Progress(const Terminal& terminal, std::string what, std::size_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void step();

 private:
  std::size_t part() const;
  void tell();

  std::ostream& err_;
  ProgressStyle style_;
  std::string what_;
  std::size_t total_;
  std::size_t done_ = 0;
  std::size_t told_ = 0;  ///< how many parts of the whole were done when it last told
};

/// "1 sample", "40 samples".
std::string counted(std::size_t count, const std::string& noun);

}  // namespace spc
