#include "tools/spc/command.h"

#include "tools/spc/completion.h"
#include "tools/spc/dry_run_answer.h"
#include "tools/spc/grammar.h"
#include "tools/spc/help.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

/// What was going on is of no interest then, but what stands is.
Problem as_interruption(const Problem& problem) {
  if (problem.what == interruption({}).what) return problem;
  return interruption(problem.note.empty() ? "nothing was changed" : problem.note);
}

}  // namespace

int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err, bool is_terminal) {
  // Asked by the shells' scripts, with words that the grammar need not understand.
  if (argc > 1 && std::string_view(argv[1]) == "complete") return complete({argv + 2, argv + argc}, out);
  try {
    const Reading reading = read_arguments(argc, argv);
    switch (reading.wish) {
      case Reading::Wish::version:
        out << "spc " SPCBASE_VERSION "\n";
        return exit_done;
      case Reading::Wish::help:
        out << help_text(reading.command);
        return exit_done;
      case Reading::Wish::task:
        break;
    }
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
  } catch (const Problem& problem) {
    out.flush();
    const Problem told = is_interruption(problem) ? as_interruption(problem) : problem;
    report(err, told);
    return told.status;
  }
}

}  // namespace spc
