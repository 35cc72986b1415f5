#include "spcbase/platform/system/folders.h"

#include <sys/stat.h>

#include <cstring>
#include <string>

#include "spcbase/platform/system/path.h"
#include "spcbase/platform/system/system_error.h"
#include "spcbase/platform/system/system_folders.h"

namespace {

/// Makes a folder unless it is there; whether it is afterwards.
bool make_folder(const std::string& path) {
  ::mkdir(path.c_str(), 0700);
  return PathIsDirectoryA(path.c_str()) != FALSE;
}

}  // namespace

DWORD GetTempPathA(DWORD size, char* buffer) {
  const std::string path = platform::temporary_folder();
  if (path.empty()) {
    SetLastError(ERROR_PATH_NOT_FOUND);
    return 0;
  }
  const std::size_t length = path.size() + 1;
  if (!buffer || size <= length) return static_cast<DWORD>(length + 1);
  std::memcpy(buffer, (path + "/").c_str(), length + 1);
  return static_cast<DWORD>(length);
}

HRESULT SHGetFolderPathA(HWND /*owner*/, int folder, HANDLE /*token*/, DWORD /*flags*/, char* path) {
  if (!path) return E_INVALIDARG;
  *path = '\0';
  if ((folder & ~CSIDL_FLAG_CREATE) != CSIDL_LOCAL_APPDATA) return E_INVALIDARG;
  const std::string home = platform::home_folder();
  if (home.empty() || home.front() != '/' || !PathIsDirectoryA(home.c_str())) return E_FAIL;
  const std::string found = home + "/.local/share";
  if (found.size() >= MAX_PATH) return E_FAIL;
  if (!PathIsDirectoryA(found.c_str())) {
    if ((folder & CSIDL_FLAG_CREATE) == 0) return S_FALSE;
    if (!make_folder(home + "/.local") || !make_folder(found)) return E_FAIL;
  }
  std::memcpy(path, found.c_str(), found.size() + 1);
  return S_OK;
}
