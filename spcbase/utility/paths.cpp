#include <cstddef>
#include <string_view>

#include "spcbase/platform/system/native_path.h"
#include "spcbase/platform/system/path.h"
#include "spcbase/utility/files.h"

namespace {

using platform::is_separator;

constexpr std::string_view separators = "\\/";
constexpr std::string_view forbidden = "\\/:*?\"<>|";

bool is_forbidden(char c) { return forbidden.find(c) != std::string_view::npos; }
bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool ends_in_separator(std::string_view path) { return !path.empty() && is_separator(path.back()); }

/// The path as its calls see it: up to the first zero.
std::string_view seen(const CString& path) { return path.GetString(); }

int name_index(const CString& path) { return static_cast<int>(PathFindFileNameA(path) - path.GetString()); }

bool is_full_path(std::string_view path) {
  if (path.size() > 2 && is_letter(path[0]) && path[1] == ':' && is_separator(path[2])) return true;
  return path.size() > 1 && is_separator(path[0]);
}

}  // namespace

bool RemoveExt(CString& path) {
  path.Truncate(static_cast<int>(PathFindExtensionA(path) - path.GetString()));
  return true;
}

bool RemoveFileNameAndExt(CString& path) {
  const std::string_view text = seen(path);
  if (ends_in_separator(text)) {
    path.Truncate(static_cast<int>(text.size()) - 1);
    return true;
  }
  const std::size_t at = text.substr(0, static_cast<std::size_t>(name_index(path))).find_last_of(separators);
  if (at != std::string_view::npos) path.Truncate(static_cast<int>(at > 2 ? at : at + 1));
  return true;
}

bool PathToFileName(CString& path) {
  path = ends_in_separator(seen(path)) ? "" : PathFindFileNameA(path);
  return true;
}

CString GetExtFromFileOrPath(const CString& path) {
  const char* extension = PathFindExtensionA(path);
  return *extension ? extension + 1 : extension;
}

bool IsValidFileName(const char* name) {
  return !name || std::string_view(name).find_first_of(forbidden) == std::string_view::npos;
}

bool is_valid_full_normal_file(const char* path) {
  if (!path || PathIsDirectoryA(path)) return false;
  if (PathFileExistsA(path)) return true;
  const char* name = PathFindFileNameA(path);
  if (name == path || !is_separator(name[-1]) || !IsValidFileName(name)) return false;
  // A root is its own separator: with that cut off nothing would be left to look for.
  const bool is_in_root = name - path == 1;
  const CString folder(path, static_cast<int>(name - path) - (is_in_root ? 0 : 1));
  return PathIsDirectoryA(folder) != FALSE;
}

void MakeValidFileName(CString& name) {
  const std::string_view text = name.view();
  std::size_t first = 0;
  if (is_full_path(text)) first = text.find_last_of(separators) + 1;
  for (std::size_t i = first; i < text.size(); ++i) {
    if (is_forbidden(text[i])) name.SetAt(static_cast<int>(i), '_');
  }
}

void MakeShortPath(CString& path) {
  if (path.IsEmpty()) return;
  const auto size = static_cast<DWORD>(path.GetLength()) + 1;
  char* buffer = path.GetBuffer();
  const DWORD needed = GetShortPathNameA(buffer, buffer, size);
  if (needed > size) {
    buffer = path.GetBuffer(static_cast<int>(needed) - 1);
    GetShortPathNameA(buffer, buffer, needed);
  }
  path.ReleaseBuffer();
}
