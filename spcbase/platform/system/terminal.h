/// What a program asks of the terminal it may be writing to, and how it reads a secret from whoever sits there.
///
/// Part of the platform layer.
#pragma once

#include <functional>
#include <string>

#include "spcbase/platform/system/export.h"

namespace platform {

/// Whether an open file is a terminal, so that something for people may be drawn on it.
/// `file`: a file descriptor: 0, 1 and 2 are standard input, output and error. False for one that is not open.
SPCBASE_API bool is_terminal(int file) noexcept;

/// How the reading of a line ended.
enum class LineRead : unsigned char {
  line,      ///< a line was read, perhaps an empty one
  end,       ///< there was nothing left
  too_long,  ///< more than `longest_line` bytes
  failed     ///< the system refused; errno tells why
};

/// The most bytes that a line may have.
inline constexpr std::size_t longest_line = 65536;

/// Reads one line into `line`, without its end ("\n" or "\r\n"), and not a byte more, so that the rest is left to
/// others. The last line of a file needs no end.
/// Fails: std::bad_alloc.
SPCBASE_API LineRead read_line(int file, std::string& line);

/// Reads one line from a terminal that does not show what is typed meanwhile. However this ends, the terminal is as it
/// was: a signal that ends or stops the program (Ctrl-C, Ctrl-Z, a lost line) is held back until it is; when the
/// program goes on behind it, so does the reading.
/// `ask` is called when nothing is shown any more, before each attempt: what was typed earlier does not count.
/// Threads: only the calling thread holds signals back; another one that takes them ends the program before the
///          terminal is as it was.
/// Fails: std::bad_alloc, and what `ask` throws.
SPCBASE_API LineRead read_hidden_line(int terminal, const std::function<void()>& ask, std::string& line);

}  // namespace platform
