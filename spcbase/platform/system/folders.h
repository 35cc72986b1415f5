/// The folders that the system has ready: for temporary files, and for a user's data.
///
/// Part of the platform layer.
/// Differs: the original looks into the environment of the process first (`TMP`, `TEMP`) or into the user's settings.
/// Here the environment is never read: a library must not change where it writes because of what a shell or a service
/// manager happened to export into its host, and a privileged host must not be led by its caller. A host that wants
/// another folder passes it. So temporary files have the folder that the C library was built with (`/tmp`), and the
/// user is the one that the process acts as, with the home that the user database gives.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/file.h"
#include "spcbase/platform/system/types.h"

/// A window; there are none, so it is null.
using HWND = void*;

/// The size that a buffer for a path must have, its zero included.
inline constexpr DWORD MAX_PATH = 260;

/// The data of the user's programs that belong to this machine: `.local/share` in the home.
inline constexpr int CSIDL_LOCAL_APPDATA = 0x001C;
/// Joined to a folder's number: the folder is made when it is missing.
inline constexpr int CSIDL_FLAG_CREATE = 0x8000;

/// Writes the path of the folder for temporary files, with a separator at its end. Whether it is there is not looked
/// at.
/// Shape:   `size` is the buffer's size in bytes, zero included.
/// Returns the length without the zero; the size needed when the buffer is null or too small, which is not written
///          then; 0 with last error 3 when the system names no such folder.
SPCBASE_API DWORD GetTempPathA(DWORD size, char* buffer);

/// Writes the path of one of the user's folders, without a separator at its end. CSIDL_LOCAL_APPDATA is the only folder
/// here.
/// What CSIDL_FLAG_CREATE makes is the user's alone (0700); the home itself is never made.
/// Shape:   `path` has room for MAX_PATH bytes, zero included.
/// Null:    `owner` and `token` are not looked at; a null `path` is E_INVALIDARG.
/// Returns  S_OK; S_FALSE when the folder is not there; E_INVALIDARG for another folder; E_FAIL when the user has no
///          home, the folder cannot be made or its path does not fit. The text is empty unless the result is S_OK.
SPCBASE_API HRESULT SHGetFolderPathA(HWND owner, int folder, HANDLE token, DWORD flags, char* path);
