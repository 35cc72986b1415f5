#include "spcbase/platform/system/path.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <limits>

#include "spcbase/platform/system/file.h"
#include "spcbase/platform/system/native_path.h"
#include "spcbase/platform/system/system_error.h"

namespace {

using platform::is_separator;

bool find(const platform::NativePath& path, struct stat& facts) {
  return path.is_usable() && ::stat(path.get(), &facts) == 0;
}

}  // namespace

char* PathFindExtensionA(const char* path) noexcept {
  if (!path) return nullptr;
  const char* extension = nullptr;
  const char* at = path;
  for (; *at; ++at) {
    if (*at == '.') extension = at;
    if (*at == ' ' || is_separator(*at)) extension = nullptr;
  }
  return const_cast<char*>(extension ? extension : at);
}

char* PathFindFileNameA(const char* path) noexcept {
  if (!path) return nullptr;
  const char* name = path;
  for (const char* at = path; *at; ++at) {
    const bool parts = is_separator(*at) || *at == ':';
    if (parts && at[1] && !is_separator(at[1])) name = at + 1;
  }
  return const_cast<char*>(name);
}

BOOL PathIsDirectoryA(const char* path) noexcept {
  struct stat facts {};
  const bool is_folder = find(platform::NativePath(path), facts) && S_ISDIR(facts.st_mode);
  return is_folder ? static_cast<BOOL>(FILE_ATTRIBUTE_DIRECTORY) : FALSE;
}

BOOL PathFileExistsA(const char* path) noexcept {
  struct stat facts {};
  return find(platform::NativePath(path), facts) ? TRUE : FALSE;
}

DWORD GetShortPathNameA(const char* path, char* buffer, DWORD size) noexcept {
  const platform::NativePath native(path);
  struct stat facts {};
  if (!path) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  if (!find(native, facts)) {
    SetLastError(native.is_usable() ? platform::platform_error(errno, native) : native.error());
    return 0;
  }
  const std::size_t length = std::strlen(path);
  if (!buffer || size <= length) return static_cast<DWORD>(length + 1);
  std::memmove(buffer, path, length + 1);
  return static_cast<DWORD>(length);
}
