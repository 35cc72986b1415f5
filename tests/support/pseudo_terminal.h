/// A terminal without a screen and keyboard: what is written to it is seen, and typing is done by the test.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

namespace test_support {

/// It is read at the end, so no more is to be written than it holds.
class PseudoTerminal {
 public:
  [[nodiscard]] PseudoTerminal() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (::grantpt(master_) != 0 || ::unlockpt(master_) != 0) throw std::runtime_error("there are no pseudo-terminals");
    name_ = ::ptsname(master_);
    terminal_ = ::open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  ~PseudoTerminal() {
    ::close(terminal_);
    ::close(master_);
  }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  /// The end that a program has, and the file that another one opens it by.
  int terminal() const { return terminal_; }
  const std::string& name() const { return name_; }

  bool echoes() const {
    termios state{};
    return ::tcgetattr(terminal_, &state) == 0 && (state.c_lflag & ECHO) != 0;
  }
  void type(std::string_view text) const {
    EXPECT_EQ(::write(master_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  /// What stands on the screen by now.
  std::string shown() const {
    std::string all;
    std::array<char, 1024> buffer{};
    for (pollfd screen{master_, POLLIN, 0}; ::poll(&screen, 1, 100) == 1;) {
      const auto count = ::read(master_, buffer.data(), buffer.size());
      if (count <= 0) break;
      all.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return all;
  }

 private:
  int master_;
  int terminal_ = -1;
  std::string name_;
};

}  // namespace test_support
