// Plan
//   note_stop_signals: the first signal is noted and the process goes on; the second ends it; ignored ones stay ignored
//   end_quietly_after: ends a process that hangs, without a word; not one that ended before
#include "spcbase/platform/system/signals.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>

namespace {

/// How a process of its own ends that does this.
int status_of(const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    work();
    ::_exit(7);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return status;
}

bool ends_by(int number, const std::function<void()>& work) {
  const int status = status_of(work);
  return WIFSIGNALED(status) && WTERMSIG(status) == number;
}

int exit_status_of(const std::function<void()>& work) {
  const int status = status_of(work);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(note_stop_signals, notes_the_first) {
  for (const int number : {SIGINT, SIGTERM})
    EXPECT_EQ(exit_status_of([=] {
                platform::note_stop_signals();
                if (platform::noted_stop_signal() != 0) ::_exit(1);
                ::raise(number);
                ::_exit(platform::noted_stop_signal());
              }),
              number);
}

TEST(note_stop_signals, lets_the_second_end_the_process_whichever_it_is) {
  for (const int second : {SIGINT, SIGTERM})
    EXPECT_TRUE(ends_by(second, [=] {
      platform::note_stop_signals();
      ::raise(SIGINT);
      ::raise(second);
    }));
}

TEST(note_stop_signals, leaves_ignored_ones_ignored) {
  EXPECT_EQ(exit_status_of([] {
              std::signal(SIGINT, SIG_IGN);
              platform::note_stop_signals();
              ::raise(SIGINT);
              ::_exit(platform::noted_stop_signal());
            }),
            0);
}

TEST(end_quietly_after, ends_a_process_that_hangs) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(exit_status_of([] {
              platform::end_quietly_after(1);
              for (;;)
                ::pause();
            }),
            0);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST(end_quietly_after, is_of_no_matter_to_one_that_ends_before) {
  EXPECT_EQ(exit_status_of([] {
              platform::end_quietly_after(60);
              ::_exit(3);
            }),
            3);
}

}  // namespace
