// Every path function on one text. The text lies in memory of exactly its size, so that a read beyond it is seen.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "spcbase/platform/system/path.h"
#include "spcbase/utility/files.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

bool is_separator(char c) { return c == '/' || c == '\\'; }
bool has_separator(std::string_view text) { return text.find_first_of("/\\") != std::string_view::npos; }

/// A copy in memory of exactly its size.
std::unique_ptr<char[]> exact(std::string_view text) {
  auto copy = std::make_unique<char[]>(text.size() + 1);
  std::copy(text.begin(), text.end(), copy.get());
  return copy;
}

/// The text with the other separator in the place of each.
std::string turned(std::string_view text) {
  std::string other(text);
  for (char& c : other)
    c = c == '/' ? '\\' : c == '\\' ? '/' : c;
  return other;
}

template <typename Change>
std::string changed(const char* path, Change change) {
  CString text(path);
  require(change(text));
  return std::string(text.view());
}

std::string cleaned(const char* name) {
  return changed(name, [](CString& text) {
    MakeValidFileName(text);
    return true;
  });
}

void check_extension(const char* path) {
  const std::string_view whole(path);
  const char* found = PathFindExtensionA(path);
  require(found >= path && found <= path + whole.size());
  const std::string_view extension(found);
  require(extension.empty() || extension[0] == '.');
  require(extension.find_first_of("/\\ ") == std::string_view::npos);
  require(extension.empty() || extension.find('.', 1) == std::string_view::npos);
  const std::string stem = changed(path, RemoveExt);
  require(stem + std::string(extension) == whole);
  require(GetExtFromFileOrPath(path).view() == extension.substr(extension.empty() ? 0 : 1));
}

void check_name_and_folder(const char* path) {
  const std::string_view whole(path);
  const char* found = PathFindFileNameA(path);
  require(found >= path && found <= path + whole.size());
  const auto at = static_cast<std::size_t>(found - path);
  const std::string name = changed(path, PathToFileName);
  const std::string folder = changed(path, RemoveFileNameAndExt);
  require(whole.substr(0, folder.size()) == folder);
  if (!whole.empty() && is_separator(whole.back())) {
    require(name.empty());
    require(folder.size() == whole.size() - 1);
    return;
  }
  require(whole.substr(at) == name && !has_separator(name));
  if (at > 0 && is_separator(whole[at - 1])) {
    require(folder.size() == (at - 1 > 2 ? at - 1 : at));
  } else {
    require(folder == whole || (folder.size() < at && has_separator(whole)));
  }
}

void check_cleaning(const char* path) {
  const std::string_view whole(path);
  const std::string clean = cleaned(path);
  require(clean.size() == whole.size());
  for (std::size_t i = 0; i < clean.size(); ++i) {
    const char one[] = {whole[i], '\0'};
    require(clean[i] == whole[i] || (clean[i] == '_' && !IsValidFileName(one)));
  }
  require(cleaned(clean.c_str()) == clean);
  require(!IsValidFileName(path) || clean == whole);
  const std::size_t last = clean.find_last_of("/\\");
  require(IsValidFileName(clean.substr(last == std::string::npos ? 0 : last + 1).c_str()));
}

void check_what_stands_there(const char* path) {
  const bool is_folder = PathIsDirectoryA(path) != FALSE;
  const bool is_there = PathFileExistsA(path) != FALSE;
  require(is_there || !is_folder);
  const bool is_file = is_valid_full_normal_file(path);
  if (is_folder) require(!is_file);
  if (is_there && !is_folder) require(is_file);
  if (is_file && !is_there) require(has_separator(path) && IsValidFileName(PathFindFileNameA(path)));
  const std::string same = changed(path, [](CString& text) {
    MakeShortPath(text);
    return true;
  });
  require(same == path);
}

/// Which of the two separators a path uses makes no difference to where its parts are.
void check_separators(const char* path) {
  const std::string other = turned(path);
  require(PathFindExtensionA(path) - path == PathFindExtensionA(other.c_str()) - other.c_str());
  require(PathFindFileNameA(path) - path == PathFindFileNameA(other.c_str()) - other.c_str());
  require(turned(changed(path, RemoveFileNameAndExt)) == changed(other.c_str(), RemoveFileNameAndExt));
  require(turned(cleaned(path)) == cleaned(other.c_str()));
  require(PathFileExistsA(path) == PathFileExistsA(other.c_str()));
  require(is_valid_full_normal_file(path) == is_valid_full_normal_file(other.c_str()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::unique_ptr<char[]> path = exact(bytes);
  check_extension(path.get());
  check_name_and_folder(path.get());
  check_cleaning(path.get());
  check_what_stands_there(path.get());
  check_separators(path.get());
  // A text with zeros in it ends at the first one, unless it is cleaned: then its length stays.
  CString whole(bytes);
  MakeValidFileName(whole);
  require(static_cast<std::size_t>(whole.GetLength()) == size);
  whole = bytes;
  require(PathToFileName(whole) && whole.view() == changed(path.get(), PathToFileName));
  return 0;
}
