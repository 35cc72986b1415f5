/// What readers and machines are given of the table of commands, as files: manual pages, the page docs/commands.md and
/// the schemas of what --json prints.
///
/// Part of the command. The program spc_pages writes them.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/command_table.h"

namespace spc {

/// A manual page in the form of groff's man macros: of a command with a task, or of `spc` itself for null.
std::string manual_of(const Command* command);

/// docs/commands.md.
std::string commands_document();

/// The schema of what a command prints for --json, in JSON Schema of the draft 2020-12. The command has a shape.
std::string schema_of(const Command& command);

/// "spc-sample-import", the name of a command's pages.
std::string page_name(const Command& command);

/// A file and what is to stand in it.
struct Page {
  std::string file;  ///< relative to the folder `share` of an installation
  std::string content;
};

/// All of them, and the completions.
std::vector<Page> all_pages();

}  // namespace spc
