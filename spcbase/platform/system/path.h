/// Paths: their parts as texts, and what stands where they point.
///
/// Part of the platform layer.
/// Differs: `/` separates as `\` does, everywhere; names follow this system, so there are no drives (a colon separates
/// a text all the same), no short names, and case matters. A path may have any length.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// The extension of a path: where its last point stands, if no separator and no space follows it; else the end of the
/// text.
/// Null:    gives null.
/// Returns a pointer into `path`.
SPCBASE_API char* PathFindExtensionA(const char* path) noexcept;

/// The name that a path ends in: what follows the last separator or colon. Separators at the end do not part it ("a\b\"
/// gives "b\"), and a path of nothing else ("\", "c:\", "c:") is given whole.
/// Null:    gives null.
/// Returns a pointer into `path`.
SPCBASE_API char* PathFindFileNameA(const char* path) noexcept;

/// FILE_ATTRIBUTE_DIRECTORY (0x10) when a path leads to a folder, else FALSE; also for null and an empty text.
SPCBASE_API BOOL PathIsDirectoryA(const char* path) noexcept;

/// TRUE when something stands at a path, a folder too; FALSE for null, an empty text, and a link that leads nowhere.
SPCBASE_API BOOL PathFileExistsA(const char* path) noexcept;

/// The short form of a path that exists.
/// Differs: it is the path itself, since names have only one form here.
/// Shape:   `size` is the buffer's size in bytes, zero included; the buffer may be `path` itself.
/// Returns the length without the zero; the size needed when the buffer is null or too small, which is not written
///          then; 0 with the last error 2 or 3 when nothing stands there, 87 for a null path.
SPCBASE_API DWORD GetShortPathNameA(const char* path, char* buffer, DWORD size) noexcept;
