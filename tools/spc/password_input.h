/// Secrets from people and programs, which are never shown and never stand in the list of arguments.
///
/// Part of the command.
#pragma once

#include <optional>
#include <string>

#include "tools/spc/source_request.h"
#include "tools/spc/terminal.h"

namespace spc {

/// A line typed at the terminal that standard input is, unseen, behind a question.
/// Fails: Problem, also when standard input is no terminal.
std::string ask_unseen(const Terminal& terminal, const std::string& question, const std::string& what);

/// The password that belongs to a connection string of `whose`: from the file descriptor; else, when it is asked for
/// or `expected` and somebody sits there, from the terminal. Nothing when there is none.
/// Fails: Problem.
std::optional<std::string> obtain_password(const PasswordRequest& request, bool expected, const std::string& whose,
                                           const Terminal& terminal, const std::string& what);

}  // namespace spc
