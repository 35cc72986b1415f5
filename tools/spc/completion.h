/// What a shell offers at the cursor, from the table of commands and from the database that the words before name.
///
/// Part of the command. The shells' scripts are tiny: they ask `spc complete SHELL -- WORDS...`, which is no command of
/// the table since nobody types it. For zsh and fish the words are those behind `spc`, the last one as far as it is
/// typed; bash hands over its whole line up to the cursor, as one word, since it parts words in ways of its own.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/spc/command_table.h"

namespace spc {

/// Something that may stand at the cursor.
struct Candidate {
  std::string text;
  std::string about = {};  ///< may be empty

  friend bool operator==(const Candidate&, const Candidate&) = default;
};

/// The candidates for the last of the words. Files end in a slash when they are folders.
std::vector<Candidate> candidates_for(const std::vector<std::string>& words);

/// Answers the shell: a candidate on each line, for zsh and fish with what it is behind a tab.
/// `arguments` are those behind `complete`. Exit status 0, and 2 for a shell that is not known.
int complete(const std::vector<std::string>& arguments, std::ostream& out);

/// A line of bash in words, as far as it is typed.
struct BashLine {
  std::vector<std::string> words;  ///< quotes and backslashes taken away; the first is the command
  char open_quote = 0;             ///< that the last word stands in; 0: none
};
BashLine read_bash_line(std::string_view line);

/// The script of a shell: "bash", "zsh" or "fish".
std::string completion_script(std::string_view shell);

}  // namespace spc
