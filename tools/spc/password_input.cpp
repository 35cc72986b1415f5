#include "tools/spc/password_input.h"

#include <cerrno>
#include <system_error>

#include "spcbase/platform/system/terminal.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

constexpr int standard_input = 0;

using platform::LineRead;

std::string taken(LineRead ended, std::string line, const std::string& from, const std::string& what) {
  const int error = errno;
  if (ended == LineRead::end)
    throw Problem{what, "there is nothing to read on " + from, "Give the password in a line."};
  if (ended == LineRead::too_long)
    throw Problem{what, "the line on " + from + " is longer than any password", "Give the password alone."};
  if (ended == LineRead::failed)
    throw Problem{what, "cannot read " + from + ": " + std::generic_category().message(error),
                  "Open it for the command, as in: --password-fd 3 3< FILE"};
  if (find_invalid_utf8(line) || line.find('\0') != std::string::npos)
    throw Problem{what, "the password on " + from + " is no text in UTF-8", "Set LC_ALL, or convert the file."};
  return line;
}

std::string read_from(int file, const std::string& what) {
  const std::string from = "file descriptor " + std::to_string(file);
  std::string line;
  const auto ended = platform::read_line(file, line);
  line = taken(ended, std::move(line), from, what);
  if (line.empty()) throw Problem{what, "the line on " + from + " is empty", "--no-password says that there is none."};
  return line;
}

}  // namespace

std::string ask_unseen(const Terminal& terminal, const std::string& question, const std::string& what) {
  if (!platform::is_terminal(standard_input))
    throw Problem{what, "nobody can be asked: standard input is no terminal",
                  "--password-fd N reads the password from an open file descriptor."};
  std::string line;
  const auto ask = [&] {
    if (interrupted()) terminal.err << '\n';
    stop_if_interrupted("nothing was changed");
    terminal.err << question << ": " << std::flush;
  };
  const auto ended = platform::read_hidden_line(standard_input, ask, line);
  const int error = errno;
  // The line end that was typed was not shown either.
  terminal.err << '\n' << std::flush;
  errno = error;
  return taken(ended, std::move(line), "the terminal", what);
}

std::optional<std::string> obtain_password(const PasswordRequest& request, bool expected, const std::string& whose,
                                           const Terminal& terminal, const std::string& what) {
  if (request.file) return read_from(*request.file, what);
  if (request.none) return std::nullopt;
  if (!request.ask && !(expected && platform::is_terminal(standard_input))) return std::nullopt;
  // What it is changes no row of a dry run; that there is one shows in the answer.
  if (terminal.dry_run != nullptr && platform::is_terminal(standard_input)) return "***";
  std::string typed = ask_unseen(terminal, "Password for " + on_one_line(whose) + " (nothing for none)", what);
  if (typed.empty()) return std::nullopt;
  return typed;
}

}  // namespace spc
