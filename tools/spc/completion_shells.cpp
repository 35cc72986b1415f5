// How the shells ask for completions and are answered.
#include <algorithm>

#include "spcbase/platform/system/signals.h"
#include "tools/spc/completion.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

constexpr unsigned longest_wait_s = 2;

/// A text as a word of bash.
std::string escaped_for_bash(std::string_view text) {
  constexpr std::string_view special = " \t\\\"'`$&|;<>()[]{}*?!#~";
  std::string escaped;
  for (const char c : text) {
    if (special.find(c) != std::string_view::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

/// Bash completes only what stands behind the last of these in a word.
std::size_t part_that_stays(const std::string& typed, char open_quote) {
  return open_quote != 0 ? 0 : typed.find_last_of("=:") + 1;
}

void answer_bash(const std::string& line, std::ostream& out) {
  BashLine read = read_bash_line(line);
  if (read.words.size() < 2) return;
  read.words.erase(read.words.begin());
  const std::size_t stays = part_that_stays(read.words.back(), read.open_quote);
  for (const Candidate& candidate : candidates_for(read.words)) {
    const std::string rest = candidate.text.substr(stays);
    out << (read.open_quote != 0 ? rest : escaped_for_bash(rest)) << '\n';
  }
}

constexpr std::string_view bash_script = R"(# bash completion for spc: spc itself knows what may stand at the cursor.
_spc() {
  local candidate
  COMPREPLY=()
  while IFS= read -r candidate; do
    COMPREPLY+=("$candidate")
  done < <("$1" complete bash -- "${COMP_LINE:0:COMP_POINT}" 2>/dev/null)
  [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *[/:] ]] && compopt -o nospace 2>/dev/null
  return 0
}
complete -F _spc spc
)";

constexpr std::string_view zsh_script = R"(#compdef spc
# zsh completion for spc: spc itself knows what may stand at the cursor.
_spc() {
  local line
  local -a texts shown going_on
  for line in "${(@f)$("${(Q)words[1]}" complete zsh -- "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)}"; do
    [[ -z $line ]] && continue
    if [[ ${line%%$'\t'*} == *[/:] ]]; then
      going_on+=("${line%%$'\t'*}")
    else
      texts+=("${line%%$'\t'*}")
      shown+=("${line/$'\t'/  -- }")
    fi
  done
  (( $#texts )) && compadd -l -d shown -a texts
  (( $#going_on )) && compadd -S '' -a going_on
  return 0
}
# Loaded by compinit this file is the function itself, called for the first time; sourced, it has to be made known.
if [[ ${funcstack[1]:-} == _spc ]]; then
  _spc "$@"
elif (( $+functions[compdef] )); then
  compdef _spc spc
fi
)";

constexpr std::string_view fish_script = R"(# fish completion for spc: spc itself knows what may stand at the cursor.
function __spc_candidates
    set -l words (commandline -opc)
    set -l current (commandline -ct | string unescape)
    test (count $current) -eq 0; and set current ''
    $words[1] complete fish -- $words[2..-1] $current 2>/dev/null
end
complete -c spc -f -a '(__spc_candidates)'
)";

}  // namespace

BashLine read_bash_line(std::string_view line) {
  BashLine read;
  bool inside = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    const bool blank = read.open_quote == 0 && (c == ' ' || c == '\t');
    if (blank) {
      inside = false;
      continue;
    }
    if (!inside) read.words.emplace_back();
    inside = true;
    if (read.open_quote != 0 && c == read.open_quote)
      read.open_quote = 0;
    else if (read.open_quote == 0 && (c == '"' || c == '\''))
      read.open_quote = c;
    else if (c == '\\' && read.open_quote != '\'' && i + 1 < line.size())
      read.words.back() += line[++i];
    else
      read.words.back() += c;
  }
  if (!inside) read.words.emplace_back();
  return read;
}

int complete(const std::vector<std::string>& arguments, std::ostream& out) {
  if (arguments.size() < 2 || arguments[1] != "--") return exit_misuse;
  // Nobody waits longer at a prompt.
  platform::end_quietly_after(longest_wait_s);
  const std::vector<std::string> words(arguments.begin() + 2, arguments.end());
  const std::string& shell = arguments.front();
  if (shell == "bash") {
    if (!words.empty()) answer_bash(words.front(), out);
  } else if (shell == "zsh" || shell == "fish") {
    for (const Candidate& candidate : candidates_for(words))
      out << candidate.text << (candidate.about.empty() ? "" : "\t") << candidate.about << '\n';
  } else {
    return exit_misuse;
  }
  return exit_done;
}

std::string completion_script(std::string_view shell) {
  if (shell == "bash") return std::string(bash_script);
  return std::string(shell == "zsh" ? zsh_script : fish_script);
}

}  // namespace spc
