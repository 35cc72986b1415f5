#include "spcbase/platform/system/terminal.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace platform {
namespace {

/// Holds back the signals that would leave a terminal silent. `descriptor` can be read from when one waits.
class HeldSignals {
 public:
  HeldSignals() noexcept {
    sigset_t held;
    ::sigemptyset(&held);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP})
      ::sigaddset(&held, number);
    ::pthread_sigmask(SIG_BLOCK, &held, &before_);
    descriptor_ = ::signalfd(-1, &held, SFD_CLOEXEC);
  }
  ~HeldSignals() {
    const int error = errno;
    if (descriptor_ >= 0) ::close(descriptor_);
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    errno = error;
  }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  int descriptor() const { return descriptor_; }

 private:
  sigset_t before_{};
  int descriptor_ = -1;
};

/// Turns the echo off while it lives. What was typed before is thrown away: it was shown.
class Silence {
 public:
  explicit Silence(int terminal) noexcept : terminal_(terminal) {
    if (::tcgetattr(terminal_, &before_) != 0) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    silent.c_lflag |= ICANON;
    holds_ = ::tcsetattr(terminal_, TCSAFLUSH, &silent) == 0;
  }
  ~Silence() {
    const int error = errno;
    if (holds_) ::tcsetattr(terminal_, TCSADRAIN, &before_);
    errno = error;
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

  bool holds() const { return holds_; }

 private:
  int terminal_;
  termios before_{};
  bool holds_ = false;
};

enum class Waited : unsigned char { input, signal, failed };

Waited wait_for_input(int file, int signals) noexcept {
  std::array<pollfd, 2> files{{{file, POLLIN, 0}, {signals, POLLIN, 0}}};
  while (::poll(files.data(), files.size(), -1) < 0)
    if (errno != EINTR) return Waited::failed;
  return files[1].revents != 0 ? Waited::signal : Waited::input;
}

}  // namespace

bool is_terminal(int file) noexcept { return ::isatty(file) == 1; }

LineRead read_line(int file, std::string& line) {
  line.clear();
  for (;;) {
    char c = 0;
    const auto count = ::read(file, &c, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return LineRead::failed;
    if (count == 0 && line.empty()) return LineRead::end;
    if (count == 0) return LineRead::line;
    if (c == '\n') {
      if (line.ends_with('\r')) line.pop_back();
      return LineRead::line;
    }
    if (line.size() == longest_line) return LineRead::too_long;
    line += c;
  }
}

LineRead read_hidden_line(int terminal, const std::function<void()>& ask, std::string& line) {
  for (;;) {
    // The signals come when both have gone, the terminal first.
    const HeldSignals signals;
    const Silence silence(terminal);
    if (!silence.holds()) return LineRead::failed;
    ask();
    const Waited waited = wait_for_input(terminal, signals.descriptor());
    if (waited == Waited::failed) return LineRead::failed;
    if (waited == Waited::input) return read_line(terminal, line);
  }
}

}  // namespace platform
