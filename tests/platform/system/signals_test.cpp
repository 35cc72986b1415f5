// Plan
//   note_stop_signals: the first signal is noted and the process goes on; the second ends it; ignored ones stay ignored
//     who goes on for a second says so, who ends before does not
//   end_quietly_after: ends a process that hangs, without a word, also when it was signalled; not one that ended before
#include "spcbase/platform/system/signals.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <string>

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

/// What a process says on standard error that is signalled and then does this.
std::string said_when_signalled(const std::function<void()>& work) {
  int ends[2] = {-1, -1};
  EXPECT_EQ(::pipe(ends), 0);
  EXPECT_EQ(exit_status_of([&] {
              ::dup2(ends[1], STDERR_FILENO);
              work();
            }),
            0);
  ::close(ends[1]);
  std::array<char, 256> buffer{};
  const auto count = ::read(ends[0], buffer.data(), buffer.size());
  ::close(ends[0]);
  return {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

TEST(note_stop_signals, says_that_it_was_heard_when_the_work_goes_on_for_a_second) {
  EXPECT_EQ(said_when_signalled([] {
              platform::note_stop_signals();
              ::raise(SIGINT);
              ::pause();
              ::_exit(0);
            }),
            "Stopping at the next safe point; a second signal stops at once.\n");
}

TEST(note_stop_signals, says_nothing_when_the_work_ends_at_once) {
  EXPECT_EQ(said_when_signalled([] {
              platform::note_stop_signals();
              ::raise(SIGTERM);
              ::_exit(0);
            }),
            "");
}

TEST(end_quietly_after, is_not_talked_into_by_a_signal_that_was_noted) {
  EXPECT_EQ(said_when_signalled([] {
              platform::end_quietly_after(1);
              platform::note_stop_signals();
              ::raise(SIGINT);
              for (;;)
                ::pause();
            }),
            "");
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
