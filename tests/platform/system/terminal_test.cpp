// Plan
//   A file is a terminal or not, and a descriptor that is not open is none
//   A line: its end of either kind, a last one without, none at all, one that is too long, a refusal; not a byte more
//   A hidden line, on a pseudo-terminal: what is typed is read and not shown; the terminal is as it was, behind a line,
//     behind Ctrl-C and behind a question that throws; a file that is no terminal is refused
#include "spcbase/platform/system/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "tests/support/pseudo_terminal.h"

namespace {

using platform::LineRead;
using test_support::PseudoTerminal;

/// A file that is open while the object lives.
class OpenFile {
 public:
  explicit OpenFile(const char* path) : file_(::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
  ~OpenFile() { close(); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  int descriptor() const { return file_; }
  void close() {
    if (file_ >= 0) ::close(file_);
    file_ = -1;
  }

 private:
  int file_;
};

TEST(is_terminal, is_true_for_a_terminal) {
  const OpenFile terminal("/dev/ptmx");
  ASSERT_GE(terminal.descriptor(), 0);
  EXPECT_TRUE(platform::is_terminal(terminal.descriptor()));
}

TEST(is_terminal, is_false_for_another_device) {
  const OpenFile nothing("/dev/null");
  ASSERT_GE(nothing.descriptor(), 0);
  EXPECT_FALSE(platform::is_terminal(nothing.descriptor()));
}

TEST(is_terminal, is_false_for_what_is_not_open) {
  OpenFile nothing("/dev/null");
  const int descriptor = nothing.descriptor();
  nothing.close();
  EXPECT_FALSE(platform::is_terminal(descriptor));
  EXPECT_FALSE(platform::is_terminal(-1));
}

/// Both ends of a pipe.
class Pipe {
 public:
  Pipe() { EXPECT_EQ(::pipe2(ends_.data(), O_CLOEXEC), 0); }
  ~Pipe() {
    ::close(ends_[0]);
    close_writing_end();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int reading_end() const { return ends_[0]; }
  void write(const std::string& text) {
    EXPECT_EQ(::write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  void close_writing_end() {
    if (ends_[1] >= 0) ::close(ends_[1]);
    ends_[1] = -1;
  }

 private:
  std::array<int, 2> ends_{-1, -1};
};

TEST(read_line, gives_a_line_at_a_time_without_its_end) {
  Pipe pipe;
  pipe.write("one\ntwo\r\n\nlast");
  pipe.close_writing_end();
  std::string line = "old";
  for (const char* expected : {"one", "two", "", "last"}) {
    EXPECT_EQ(platform::read_line(pipe.reading_end(), line), LineRead::line);
    EXPECT_EQ(line, expected);
  }
  EXPECT_EQ(platform::read_line(pipe.reading_end(), line), LineRead::end);
  EXPECT_EQ(line, "");
}

TEST(read_line, leaves_what_follows_to_others) {
  Pipe pipe;
  pipe.write("mine\nyours");
  std::string line;
  platform::read_line(pipe.reading_end(), line);
  std::array<char, 16> rest{};
  EXPECT_EQ(::read(pipe.reading_end(), rest.data(), rest.size()), 5);
  EXPECT_STREQ(rest.data(), "yours");
}

TEST(read_line, stops_at_the_longest_line) {
  Pipe pipe;
  std::thread writer([&] {
    pipe.write(std::string(platform::longest_line, 'x') + "\n" + std::string(platform::longest_line + 1, 'y') + "\n");
  });
  std::string line;
  EXPECT_EQ(platform::read_line(pipe.reading_end(), line), LineRead::line);
  EXPECT_EQ(line.size(), platform::longest_line);
  EXPECT_EQ(platform::read_line(pipe.reading_end(), line), LineRead::too_long);
  writer.join();
}

TEST(read_line, tells_of_what_cannot_be_read) {
  std::string line;
  EXPECT_EQ(platform::read_line(-1, line), LineRead::failed);
  EXPECT_EQ(errno, EBADF);
}

TEST(read_hidden_line, reads_what_is_typed_and_shows_nothing_of_it) {
  const PseudoTerminal pseudo;
  ASSERT_TRUE(pseudo.echoes());
  std::string line;
  const auto ended = platform::read_hidden_line(
      pseudo.terminal(),
      [&] {
        EXPECT_FALSE(pseudo.echoes());
        pseudo.type("s\xC3\xA9same 7\n");
      },
      line);
  EXPECT_EQ(ended, LineRead::line);
  EXPECT_EQ(line, "s\xC3\xA9same 7");
  EXPECT_EQ(pseudo.shown(), "");
  EXPECT_TRUE(pseudo.echoes());
}

TEST(read_hidden_line, does_not_take_what_was_typed_before_the_question) {
  const PseudoTerminal pseudo;
  pseudo.type("early\n");
  // What is typed arrives a moment later.
  pollfd arrival{pseudo.terminal(), POLLIN, 0};
  ASSERT_EQ(::poll(&arrival, 1, 10'000), 1);
  std::string line;
  platform::read_hidden_line(
      pseudo.terminal(), [&] { pseudo.type("answer\n"); }, line);
  EXPECT_EQ(line, "answer");
}

TEST(read_hidden_line, leaves_the_terminal_as_it_was_when_the_question_throws) {
  const PseudoTerminal pseudo;
  std::string line;
  EXPECT_THROW(platform::read_hidden_line(
                   pseudo.terminal(), [] { throw std::runtime_error("no"); }, line),
               std::runtime_error);
  EXPECT_TRUE(pseudo.echoes());
}

TEST(read_hidden_line, refuses_what_is_no_terminal) {
  Pipe pipe;
  std::string line;
  bool asked = false;
  EXPECT_EQ(platform::read_hidden_line(
                pipe.reading_end(), [&] { asked = true; }, line),
            LineRead::failed);
  EXPECT_FALSE(asked);
}

TEST(read_hidden_line, tells_of_the_end_of_typing) {
  const PseudoTerminal pseudo;
  std::string line;
  EXPECT_EQ(platform::read_hidden_line(
                pseudo.terminal(), [&] { pseudo.type("\x04"); }, line),
            LineRead::end);
}

TEST(read_hidden_line, leaves_the_terminal_as_it_was_when_a_signal_ends_the_program) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    const PseudoTerminal pseudo;
    Pipe asked;
    const pid_t child = ::fork();
    if (child == 0) {
      std::string line;
      ::signal(number, SIG_DFL);
      platform::read_hidden_line(
          pseudo.terminal(), [&] { asked.write("x"); }, line);
      ::_exit(7);
    }
    char byte = 0;
    ASSERT_EQ(::read(asked.reading_end(), &byte, 1), 1);
    EXPECT_FALSE(pseudo.echoes());
    ::kill(child, number);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << status;
    EXPECT_TRUE(pseudo.echoes());
  }
}

/// A handler, so that the signal does not end the program.
void pass_over(int) {}

TEST(read_hidden_line, asks_again_when_the_program_goes_on_behind_a_signal) {
  const PseudoTerminal pseudo;
  const auto before = ::signal(SIGINT, pass_over);
  std::string line;
  int asked = 0;
  const auto ended = platform::read_hidden_line(
      pseudo.terminal(),
      [&] {
        ++asked;
        if (asked == 1)
          ::raise(SIGINT);
        else
          pseudo.type("second\n");
      },
      line);
  ::signal(SIGINT, before);
  EXPECT_EQ(ended, LineRead::line);
  EXPECT_EQ(line, "second");
  EXPECT_EQ(asked, 2);
}

}  // namespace
