/// The grammar of the command line, built from the table of commands.
///
/// Part of the command.
#pragma once

#include "tools/spc/command_table.h"

namespace spc {

/// What a command line says.
struct Reading {
  enum class Wish : unsigned char { task, help, version } wish = Wish::task;
  const Command* command = nullptr;  ///< with a task for Wish::task; for Wish::help also a group, or null for all
  Request request = {};
};

/// Fails: Problem (misuse), in which no word stands that may be a password.
Reading read_arguments(int argc, const char* const* argv);

}  // namespace spc
