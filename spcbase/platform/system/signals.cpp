#include "spcbase/platform/system/signals.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

namespace platform {
namespace {

// A handler can reach nothing but what lives as long as the process, without locks.
std::atomic<int> noted{0};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void note(int number) {
  noted.store(number, std::memory_order_relaxed);
  // The next one, of either kind, ends the process.
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
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
  for (const int number : {SIGINT, SIGTERM})
    if (!is_ignored(number)) handle(number, note);
}

int noted_stop_signal() noexcept { return noted.load(std::memory_order_relaxed); }

void end_quietly_after(unsigned seconds) noexcept {
  handle(SIGALRM, end);
  ::alarm(seconds);
}

}  // namespace platform
