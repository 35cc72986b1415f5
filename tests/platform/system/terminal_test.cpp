// Plan: a file is a terminal or not, and a descriptor that is not open is none.
#include "spcbase/platform/system/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

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

}  // namespace
