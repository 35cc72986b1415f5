// Plan, on SQLite and on a private MariaDB server
//   Every command that changes something, walked from the table, is interrupted at each of its statements from the
//   first
//     change on: what it says stands is what the database then holds, and it is nothing or all of it
#include <gtest/gtest.h>

#include <csignal>
#include <regex>
#include <set>
#include <string_view>

#include "tests/tools/on_demo.h"
#include "tools/spc/command_table.h"

namespace {

using command_test::Answer;
using command_test::Dump;

/// Whether a line of a trace shows the first of the statements that change something.
bool shows_change(const std::string& line) {
  static const std::regex change("trace .*(BEGIN|INSERT INTO|UPDATE|DELETE FROM).*");
  return std::regex_match(line, change);
}

class InterruptedAnywhere : public command_test::OnDemo {
 protected:
  /// Interrupted when this statement is traced, counted from the first change on.
  Answer interrupted_at(std::size_t statement, std::vector<std::string> line) {
    line.insert(line.end(), {"--trace", "--json"});  // for programs some read again what they have stored
    std::size_t seen = 0;
    return command_test::run_and_signal(
        on_database(std::move(line)),
        [&](const std::string& told) { return (seen > 0 || shows_change(told)) && ++seen == statement; }, {SIGINT});
  }
  void interrupt_everywhere(const std::string& path);
};

INSTANTIATE_TEST_SUITE_P(Servers, InterruptedAnywhere, test_support::main_servers(), test_support::server_name);

/// Until it is too late and the command is done.
void InterruptedAnywhere::interrupt_everywhere(const std::string& path) {
  auto line = line_for(path);
  ASSERT_FALSE(line.empty()) << path << " wants a case";
  if (path == "numbers repair") line.emplace_back("CSMON");  // one of 27 is as good
  const Dump before = dump();
  std::size_t stopped = 0;
  for (bool done = false; !done; ++stopped) {
    const Answer answer = interrupted_at(stopped + 1, line);
    // Whatever works in several transactions says which of them stand; then some are enough here.
    done = !answer.err.ends_with("spc: interrupted: nothing was changed\n") &&
           !answer.complains("spc: interrupted: 0 of ");
    EXPECT_EQ(dump() != before, done) << path << " at statement " << stopped + 1 << '\n' << answer;
    EXPECT_EQ(answer.status, answer.complains("spc: interrupted: ") ? 130 : 0) << path << '\n' << answer;
    ASSERT_LT(stopped, 500U) << path << " never ends";
  }
  const bool is_one_statement = path == "source remove";
  EXPECT_GT(stopped, is_one_statement ? 0U : 1U) << path << " was never stopped";
}

TEST_P(InterruptedAnywhere, every_command_has_done_what_it_says) {
  const std::set<std::string_view> elsewhere = {"db create", "demo", "rev reset"};  // interruption_test.cpp
  for (const spc::Command& command : spc::commands())
    if (command.changes && !elsewhere.contains(command.path)) interrupt_everywhere(std::string(command.path));
}

}  // namespace
