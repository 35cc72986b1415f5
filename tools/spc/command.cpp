#include "tools/spc/command.h"

#include <algorithm>
#include <cstdlib>

#include "tools/spc/completion.h"
#include "tools/spc/dry_run_answer.h"
#include "tools/spc/grammar.h"
#include "tools/spc/help.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

/// What was going on is of no interest then, but what stands is.
Problem as_interruption(const Problem& problem) {
  if (problem.what == interruption({}).what) return problem;
  return interruption(problem.note.empty() ? "nothing was changed" : problem.note);
}

/// What the shell says of the terminal's width, as far as texts can be read in it.
std::size_t page_width() {
  constexpr int narrowest = 40;
  constexpr int widest = 100;
  const char* columns = std::getenv("COLUMNS");
  const int width = columns == nullptr ? -1 : plain_number(columns);
  return width <= 0 ? usual_page_width : static_cast<std::size_t>(std::clamp(width, narrowest, widest));
}

int do_task(const Reading& reading, std::ostream& out, std::ostream& err, bool is_terminal) {
  const Request& request = reading.request;
  DryRunAnswer answer(request.dry_run, request.json, out);
  const Terminal terminal{answer.out(),
                          err,
                          request.json,
                          request.trace,
                          progress_style(request.progress, is_terminal, request.json, request.trace),
                          answer.dry_run()};
  return answer.of(
      [&] { return doing("the command failed", [&] { return reading.command->task(request, terminal); }); });
}

int answer_to(const Reading& reading, std::ostream& out, std::ostream& err, bool is_terminal) {
  switch (reading.wish) {
    case Reading::Wish::version:
      out << "spc " SPCBASE_VERSION "\n";
      return exit_done;
    case Reading::Wish::help:
      out << help_text(reading.command, page_width());
      return exit_done;
    case Reading::Wish::task:
      break;
  }
  return do_task(reading, out, err, is_terminal);
}

/// An answer that nobody got must not pass for one: the disk that it was written to may be full.
void require_written(std::ostream& out, const Reading& reading) {
  if (out.flush()) return;
  const bool changed = reading.command != nullptr && reading.command->changes && !reading.request.dry_run;
  throw Problem{"cannot write the answer", "standard output does not take it",
                "See that the disk is not full, and that whatever reads the answer still runs.", exit_failed,
                changed ? "The work itself is done." : ""};
}

}  // namespace

int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err, bool is_terminal) {
  // Asked by the shells' scripts, with words that the grammar need not understand.
  if (argc > 1 && std::string_view(argv[1]) == "complete") return complete({argv + 2, argv + argc}, out);
  try {
    const Reading reading = read_arguments(argc, argv);
    const int status = answer_to(reading, out, err, is_terminal);
    require_written(out, reading);
    return status;
  } catch (const Problem& problem) {
    out.flush();
    const Problem told = is_interruption(problem) ? as_interruption(problem) : problem;
    report(err, told);
    return told.status;
  }
}

}  // namespace spc
