/// Automation strings: UTF-16 texts that know their length, allocated and freed by the functions below.
///
/// Part of the platform layer (automation). A BSTR points at its first character; the four bytes before it hold the
/// length in bytes without the terminating zero, so a text may hold zeros. A null BSTR means the same as an empty one.
///
/// Differs: `CString::AllocSysString` is the free function `alloc_sys_string`. `SysFreeString` gives memory back at
/// once, there is no cache.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

class CString;

/// A copy of a text that ends in a zero.
/// Null:  a null text gives null.
/// Fails: null when memory runs out.
/// Owns:  the caller, with `SysFreeString`.
SPCBASE_API BSTR SysAllocString(const OLECHAR* text) noexcept;

/// A new string of `length_chars` characters copied from `text`, zeros among them; without a text its characters are
/// zero.
/// Fails: null when memory runs out or the length in bytes does not fit 32 bits.
/// Owns: the caller, with `SysFreeString`.
SPCBASE_API BSTR SysAllocStringLen(const OLECHAR* text, UINT length_chars) noexcept;

/// A new string of `length_bytes` bytes copied from `bytes` without conversion; without bytes they are zero.
/// Fails: null when memory runs out.
/// Owns:  the caller, with `SysFreeString`.
SPCBASE_API BSTR SysAllocStringByteLen(const char* bytes, UINT length_bytes) noexcept;

/// Puts a copy of `text` (which may lie in the old string) in the place of `*target` and frees the old string.
/// Null:  a null text frees the old string and leaves null.
/// Fails: FALSE when memory runs out; the old string stays.
SPCBASE_API INT SysReAllocString(BSTR* target, const OLECHAR* text) noexcept;

/// As `SysReAllocString`, with `length_chars` characters. Without a text the old characters stay as far as they reach.
/// Fails: FALSE when memory runs out; the old string stays.
SPCBASE_API INT SysReAllocStringLen(BSTR* target, const OLECHAR* text, UINT length_chars) noexcept;

/// Frees a string; null does nothing.
SPCBASE_API void SysFreeString(BSTR text) noexcept;

/// The length in characters; 0 for null.
SPCBASE_API UINT SysStringLen(BSTR text) noexcept;

/// The length in bytes; 0 for null.
SPCBASE_API UINT SysStringByteLen(BSTR text) noexcept;

/// The UTF-8 text of a `CString` as a new UTF-16 string; an empty text gives an empty string, not null.
/// Fails: throws `_com_error` with E_OUTOFMEMORY when memory runs out.
/// Owns:  the caller, with `SysFreeString`.
SPCBASE_API BSTR alloc_sys_string(const CString& text);

/// A BSTR as UTF-8; null gives an empty text.
SPCBASE_API CString to_cstring(BSTR text);
