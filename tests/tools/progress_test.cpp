// Plan
//   A terminal at standard error gets a bar that is wiped; none for machines, or when none is wanted
//   Whatever else stands there gets no bar
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

#include "tests/tools/program.h"

namespace {

/// A terminal that shows what is written to it. It is read at the end, so no more is written than it holds.
class Screen {
 public:
  Screen() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (::grantpt(master_) != 0 || ::unlockpt(master_) != 0) throw std::runtime_error("there are no pseudo-terminals");
    terminal_ = ::open(::ptsname(master_), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  ~Screen() {
    ::close(terminal_);
    ::close(master_);
  }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  /// What a command writes there.
  std::string shown_by(const std::vector<std::string>& arguments) const {
    const auto answer = command_test::run_prepared(arguments, [&] { ::dup2(terminal_, STDERR_FILENO); });
    EXPECT_EQ(answer.status, 0) << answer;
    std::string all;
    std::array<char, 1024> buffer{};
    for (pollfd screen{master_, POLLIN, 0}; ::poll(&screen, 1, 50) == 1;) {
      const auto count = ::read(master_, buffer.data(), buffer.size());
      if (count <= 0) break;
      all.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return all;
  }

 private:
  int master_;
  int terminal_ = -1;
};

class BarOfAnAudit : public testing::Test {
 protected:
  std::vector<std::string> audit(const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = {"--connect", database_.connect_text(), "doctor"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  test_support::SchemaDatabase database_{test_support::ServerKind::sqlite};
  Screen screen_;
};

TEST_F(BarOfAnAudit, is_drawn_on_a_terminal_and_wiped) {
  for (const auto& arguments : {audit(), audit({"--progress", "bar"}), audit({"--progress", "bar", "--json"})}) {
    const std::string shown = screen_.shown_by(arguments);
    EXPECT_NE(shown.find("examining [###"), std::string::npos) << shown;
    EXPECT_TRUE(shown.ends_with("\r\x1b[K")) << shown;
  }
}

TEST_F(BarOfAnAudit, is_not_drawn_for_machines_or_when_it_is_not_wanted) {
  EXPECT_EQ(screen_.shown_by(audit({"--json"})), "");
  EXPECT_EQ(screen_.shown_by(audit({"--progress", "none"})), "");
  const std::string lines = screen_.shown_by(audit({"--progress", "line"}));
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
