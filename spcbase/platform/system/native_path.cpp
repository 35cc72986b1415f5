#include "spcbase/platform/system/native_path.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "spcbase/platform/system/system_error.h"

namespace platform {

namespace {

struct ErrorPair {
  int system_error;
  DWORD error;
};

constexpr ErrorPair error_pairs[] = {
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {ELOOP, ERROR_PATH_NOT_FOUND},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EACCES, ERROR_ACCESS_DENIED},
    {EPERM, ERROR_ACCESS_DENIED},
    {EISDIR, ERROR_ACCESS_DENIED},
    {EBADF, ERROR_INVALID_HANDLE},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EROFS, ERROR_WRITE_PROTECT},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EBUSY, ERROR_SHARING_VIOLATION},
    {EEXIST, ERROR_FILE_EXISTS},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_FULL},
    {EFBIG, ERROR_DISK_FULL},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {EIO, ERROR_IO_DEVICE},
};

}  // namespace

NativePath::NativePath(const char* path) noexcept {
  const std::size_t length = path ? std::strlen(path) : 0;
  if (length == 0) error_ = ERROR_PATH_NOT_FOUND;
  if (length >= std::size(text_)) error_ = ERROR_FILENAME_EXCED_RANGE;
  const std::size_t kept = error_ == 0 ? length : 0;
  for (std::size_t i = 0; i < kept; ++i)
    text_[i] = is_separator(path[i]) ? '/' : path[i];
  text_[kept] = '\0';
}

bool NativePath::has_folder() const noexcept {
  const char* last = std::strrchr(text_, '/');
  if (!last) return true;
  char folder[PATH_MAX];
  const auto length = static_cast<std::size_t>(last - text_) + 1;
  std::memcpy(folder, text_, length);
  folder[length] = '\0';
  struct stat facts {};
  return ::stat(folder, &facts) == 0;
}

DWORD platform_error(int system_error) noexcept {
  for (const ErrorPair& pair : error_pairs) {
    if (pair.system_error == system_error) return pair.error;
  }
  return ERROR_GEN_FAILURE;
}

DWORD platform_error(int system_error, const NativePath& path) noexcept {
  if (system_error == ENOENT && !path.has_folder()) return ERROR_PATH_NOT_FOUND;
  return platform_error(system_error);
}

}  // namespace platform
