/// The calling thread's last error number, and the platform's English texts for error numbers and result codes.
///
/// Part of the platform layer.
/// Differs: the texts are a compiled table of the documented English ones; no other language and no message module
/// exists. A language that is asked for is not looked at.
#pragma once

#include <cstddef>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// The documented error numbers that occur here.
inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_INVALID_DATA = 13;
inline constexpr DWORD ERROR_OUTOFMEMORY = 14;
inline constexpr DWORD ERROR_NO_MORE_FILES = 18;
inline constexpr DWORD ERROR_WRITE_PROTECT = 19;
inline constexpr DWORD ERROR_GEN_FAILURE = 31;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_HANDLE_DISK_FULL = 39;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_INVALID_NAME = 123;
inline constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
inline constexpr DWORD ERROR_DISCARDED = 157;
inline constexpr DWORD ERROR_NOT_LOCKED = 158;
inline constexpr DWORD ERROR_BAD_PATHNAME = 161;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr DWORD ERROR_MR_MID_NOT_FOUND = 317;
inline constexpr DWORD ERROR_IO_DEVICE = 1117;
inline constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;

/// `FormatMessageA` allocates the buffer; its argument is then the address of a pointer, cast to `char*`.
inline constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x00000100;
/// The text's insertion marks stay as they are. No text of the table has any, so the flag changes nothing here.
inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x00000200;
/// The text comes from the platform's own table, the only one here: without this flag every call fails.
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x00001000;

/// The last error number of the calling thread.
SPCBASE_API DWORD GetLastError() noexcept;
/// Sets the last error number of the calling thread.
SPCBASE_API void SetLastError(DWORD error) noexcept;

/// Gives the platform's text for an error number or a result code; it ends in a carriage return and a line feed.
///
///     char* text = nullptr;
///     FormatMessageA(0x1300, nullptr, error, 0x400, reinterpret_cast<char*>(&text), 0, nullptr);
///     LocalFree(text);
///
/// A result code of the Win32 facility (0x8007xxxx) has the text of its low 16 bits.
/// Shape:  without the allocating flag `size` is the buffer's size in bytes, zero included; a text that does not fit
/// gives
///         0 with last error 122. With the flag it is the least size to allocate.
/// Owns:   with the allocating flag the caller releases the text with `LocalFree`.
/// Returns the length in bytes without the zero; 0 on failure, with last error 317 for a number that has no text and 87
/// for unusable arguments. A failed allocating call leaves a null pointer.
SPCBASE_API DWORD FormatMessageA(DWORD flags, const void* source, DWORD id, DWORD language, char* buffer, DWORD size,
                                 void* arguments) noexcept;

/// A block of plain memory; `flags` 0x40 fills it with zeros. Null with last error 8 when memory runs out.
/// Owns:   the caller releases it with `LocalFree`.
SPCBASE_API void* LocalAlloc(UINT flags, std::size_t size_bytes) noexcept;
/// Releases a block of `LocalAlloc` or `FormatMessageA`; null does nothing. Always null, which means success.
SPCBASE_API void* LocalFree(void* block) noexcept;
