#include "tools/spc/command.h"

#include "tools/spc/completion.h"
#include "tools/spc/grammar.h"
#include "tools/spc/help.h"
#include "tools/spc/problem.h"

namespace spc {

int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err, bool bars) {
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
    const Terminal terminal{out, err, request.json, request.trace, bars};
    return doing("the command failed", [&] { return reading.command->task(request, terminal); });
  } catch (const Problem& problem) {
    out.flush();
    report(err, problem);
    return problem.status;
  }
}

}  // namespace spc
