#include "spcbase/utility/files.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/system/exceptions.h"
#include "spcbase/platform/system/file.h"
#include "spcbase/platform/system/folders.h"
#include "spcbase/platform/system/native_path.h"
#include "spcbase/platform/system/path.h"
#include "spcbase/platform/system/process.h"
#include "spcbase/utility/text.h"

namespace {

/// All bytes of a file, if they are not more than `limit`. The size that the system tells is where it begins, not what
/// it trusts: a file can grow or shrink while it is read, and what a device or the kernel writes has no size at all.
std::string whole_file(CFile& file, std::size_t limit) {
  const ULONGLONG told = file.GetLength();
  if (told > limit) AfxThrowMemoryException();
  std::string bytes(static_cast<std::size_t>(told) + 1, '\0');
  std::size_t used = 0;
  for (;;) {
    used += file.Read(bytes.data() + used, static_cast<UINT>(bytes.size() - used));
    if (used < bytes.size()) break;
    if (used > limit) AfxThrowMemoryException();
    bytes.resize(std::min(used * 2 + 4096, limit + 1));
  }
  bytes.resize(used);
  return bytes;
}

/// Adds the system's separator to a folder that does not end in one.
void end_in_separator(CString& folder) {
  if (folder.IsEmpty() || !platform::is_separator(folder[folder.GetLength() - 1])) folder += '/';
}

}  // namespace

bool IsRTFFile(const CString& path) {
  constexpr int compared = 5;
  try {
    CFile file(path, CFile::modeRead | CFile::shareDenyNone);
    char head[8] = {};
    if (file.Read(head, sizeof head) == 0) return false;
    head[compared] = '\0';
    return CString(head).CollateNoCase("{\\rtf") == 0;
  } catch (CException* e) {
    e->Delete();
  } catch (...) {
    return false;
  }
  return false;
}

void FileToText(CString& text, const CString& path) {
  CFile file(path, CFile::modeRead | CFile::shareDenyWrite);
  const auto length = static_cast<std::size_t>(text.GetLength());
  std::string bytes = whole_file(file, std::numeric_limits<int>::max() - length);
  if (text.IsEmpty()) {
    text = CString(std::move(bytes));
  } else {
    text += std::string_view(bytes);
  }
}

void TextToFile(const CString& text, const CString& path) {
  CFile file(path, CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
  file.Write(text.GetString(), static_cast<UINT>(text.GetLength()));
  file.Close();
}

CString get_temp_path() {
  const OwnMessages ours;
  char path[MAX_PATH + 1];
  const DWORD length = GetTempPathA(sizeof path, path);
  if (length == 0 || length >= sizeof path) throw_db_exception_by_id(msg::no_temporary_folder);
  return CString(path);
}

CString get_temp_file(const char* folder, const char* prefix) {
  const OwnMessages ours;
  CString name = folder ? CString(folder) : get_temp_path();
  if (!name.IsEmpty()) end_in_separator(name);
  name.AppendFormat("%s-%s-P%u.%s", prefix ? prefix : "spc", create_uuid_str().GetString(), GetCurrentProcessId(),
                    "tmp");
  const HANDLE file = CreateFileA(name, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) throw_db_exception_by_id(msg::no_temporary_file);
  CloseHandle(file);
  return name.GetLength() < static_cast<int>(MAX_PATH) ? name : CString();
}

CString create_uuid_tmp_file(const char* folder, const char* prefix) {
  CString id = create_uuid_str();
  if (id.IsEmpty()) return id;
  CString name(folder);
  end_in_separator(name);
  return name + prefix + id + ".TMP";
}

CString get_user_data_path() {
  char folder[MAX_PATH] = "";
  SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, folder);
  CString path(folder);
  if (path.IsEmpty()) {
    path = get_temp_path();
  } else {
    CString temporary = path;
    end_in_separator(temporary);
    temporary += "Temp";
    if (PathIsDirectoryA(temporary)) path = temporary;
  }
  MakeShortPath(path);
  return path;
}
