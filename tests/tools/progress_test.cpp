// Plan
//   A terminal at standard error gets a bar that is wiped; none for machines, or when none is wanted
//   Whatever else stands there gets no bar
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/pseudo_terminal.h"
#include "tests/tools/program.h"

namespace {

/// What a command writes to a terminal at standard error.
std::string shown_by(const test_support::PseudoTerminal& screen, const std::vector<std::string>& arguments) {
  const auto answer = command_test::run_prepared(arguments, [&] { ::dup2(screen.terminal(), STDERR_FILENO); });
  EXPECT_EQ(answer.status, 0) << answer;
  return screen.shown();
}

class BarOfAnAudit : public testing::Test {
 protected:
  std::vector<std::string> audit(const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = {"--connect", database_.connect_text(), "doctor"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  test_support::SchemaDatabase database_{test_support::ServerKind::sqlite};
  test_support::PseudoTerminal screen_;
};

TEST_F(BarOfAnAudit, is_drawn_on_a_terminal_and_wiped) {
  for (const auto& arguments : {audit(), audit({"--progress", "bar"}), audit({"--progress", "bar", "--json"})}) {
    const std::string shown = shown_by(screen_, arguments);
    EXPECT_NE(shown.find("examining [###"), std::string::npos) << shown;
    EXPECT_TRUE(shown.ends_with("\r\x1b[K")) << shown;
  }
}

TEST_F(BarOfAnAudit, is_not_drawn_for_machines_or_when_it_is_not_wanted) {
  EXPECT_EQ(shown_by(screen_, audit({"--json"})), "");
  EXPECT_EQ(shown_by(screen_, audit({"--progress", "none"})), "");
  const std::string lines = shown_by(screen_, audit({"--progress", "line"}));
  EXPECT_EQ(lines.find("[#"), std::string::npos) << lines;
  EXPECT_NE(lines, "");
}

TEST_F(BarOfAnAudit, is_not_drawn_where_there_is_no_terminal) {
  EXPECT_EQ(command_test::run(audit()).err, "");
  const auto answer = command_test::run(audit({"--progress", "bar"}));
  EXPECT_EQ(answer.err.find('['), std::string::npos) << answer;
  EXPECT_TRUE(answer.complains("examining: 0 of ")) << answer;
}

}  // namespace
