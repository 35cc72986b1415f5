/// Names of files as this system wants them, and its error numbers as the platform tells them.
///
/// Part of the platform layer; not for hosts, and not exported.
#pragma once

#include <climits>

#include "spcbase/platform/system/types.h"

namespace platform {

/// Whether a byte parts the names of a path.
constexpr bool is_separator(char c) noexcept { return c == '\\' || c == '/'; }

/// A path with this system's own separator throughout. It allocates nothing, so that calls which never throw can use
/// it.
class NativePath {
 public:
  explicit NativePath(const char* path) noexcept;

  /// False when the text is null or empty, or longer than any path of this system: `error` tells which.
  bool is_usable() const noexcept { return error_ == 0; }
  DWORD error() const noexcept { return error_; }
  const char* get() const noexcept { return text_; }

  /// Whether the folder that this path lies in is there.
  bool has_folder() const noexcept;

 private:
  char text_[PATH_MAX];
  DWORD error_ = 0;
};

/// The platform's error number for one of this system's (an `errno`).
DWORD platform_error(int system_error) noexcept;

/// The same for a call on a path: that a file is missing is told apart from its folder missing.
DWORD platform_error(int system_error, const NativePath& path) noexcept;

}  // namespace platform
