#include "spcbase/platform/system/signals.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <string_view>

namespace platform {
namespace {

// A handler can reach nothing but what lives as long as the process, without locks.
std::atomic<int> noted{0};
/// Whether the one alarm that a process has is taken already.
std::atomic<bool> time_is_limited{false};
std::atomic<bool> at_terminal{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

// At a terminal something may stand on the line: what was typed, or a bar.
constexpr std::string_view still_at_work = "\nStopping at the next safe point; a second signal stops at once.\n";

void handle(int number, void (*handler)(int)) noexcept;

extern "C" void tell_of_stopping(int /*number*/) {
  const int before = errno;
  const auto text = still_at_work.substr(at_terminal.load(std::memory_order_relaxed) ? 0 : 1);
  // Nobody can be told of a stream that takes nothing.
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
  errno = before;
}

extern "C" void note(int number) {
  noted.store(number, std::memory_order_relaxed);
  // The next one, of either kind, ends the process.
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
  // Who waits for a server is not silent for longer than this.
  if (time_is_limited.load(std::memory_order_relaxed)) return;
  handle(SIGALRM, tell_of_stopping);
  ::alarm(1);
}

extern "C" void end(int /*number*/) { ::_exit(0); }

bool is_ignored(int number) noexcept {
  struct sigaction before {};
  ::sigaction(number, nullptr, &before);
  return before.sa_handler == SIG_IGN;
}

void handle(int number, void (*handler)(int)) noexcept {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  ::sigemptyset(&action.sa_mask);
  ::sigaction(number, &action, nullptr);
}

}  // namespace

void note_stop_signals() noexcept {
  at_terminal.store(::isatty(STDERR_FILENO) == 1, std::memory_order_relaxed);
  for (const int number : {SIGINT, SIGTERM})
    if (!is_ignored(number)) handle(number, note);
}

int noted_stop_signal() noexcept { return noted.load(std::memory_order_relaxed); }

void end_quietly_after(unsigned seconds) noexcept {
  time_is_limited.store(true, std::memory_order_relaxed);
  handle(SIGALRM, end);
  ::alarm(seconds);
}

}  // namespace platform
