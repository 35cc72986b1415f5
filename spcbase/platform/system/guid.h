/// Globally unique ids: their structure, comparison, creation and text forms.
///
/// Part of the platform layer.
#pragma once

#include <compare>
#include <cstdint>
#include <string>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// A unique id. In memory the first three fields are in the machine's byte order.
struct _GUID {
  /// The id in its documented parts.
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];

  friend bool operator==(const _GUID&, const _GUID&) = default;
};
static_assert(sizeof(_GUID) == 16);

/// The documented names.
using GUID = _GUID;
using UUID = _GUID;
using IID = _GUID;
using CLSID = _GUID;
using REFGUID = const _GUID&;
using REFIID = const _GUID&;
using REFCLSID = const _GUID&;

/// The id whose bits are all zero.
inline constexpr GUID GUID_NULL{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};

/// Whether two ids are the same.
inline BOOL IsEqualGUID(REFGUID a, REFGUID b) noexcept { return a == b ? TRUE : FALSE; }
inline BOOL IsEqualIID(REFIID a, REFIID b) noexcept { return IsEqualGUID(a, b); }
inline BOOL IsEqualCLSID(REFCLSID a, REFCLSID b) noexcept { return IsEqualGUID(a, b); }

/// Makes a new random id (version 4). S_OK, or E_POINTER for a null pointer.
SPCBASE_API HRESULT CoCreateGuid(GUID* id) noexcept;

/// Writes "{00020400-0000-0000-C000-000000000046}", upper case, with a terminating zero.
/// Shape:  `size_chars` counts UTF-16 units and must be at least 39.
/// Returns 39, the zero included, or 0 when the buffer is null or too small.
SPCBASE_API int StringFromGUID2(REFGUID id, OLECHAR* buffer, int size_chars) noexcept;

/// The same text in a new block.
/// Owns:   the caller releases `*text` with `CoTaskMemFree` (memory.h).
/// Returns S_OK, E_POINTER for a null pointer, E_OUTOFMEMORY.
SPCBASE_API HRESULT StringFromIID(REFIID id, OLECHAR** text) noexcept;

/// Writes "00020400-0000-0000-c000-000000000046", lower case, into a new block.
/// Owns:   the caller releases `*text` with `RpcStringFreeA`.
/// Returns 0, 87 for a null pointer, 14 when memory runs out.
SPCBASE_API LONG UuidToStringA(const UUID* id, unsigned char** text) noexcept;
/// Releases a text of `UuidToStringA` and sets the pointer to null. Returns 0.
SPCBASE_API LONG RpcStringFreeA(unsigned char** text) noexcept;

namespace platform {

/// The braced upper-case text of an id.
SPCBASE_API std::string guid_text(REFGUID id);
/// The bare lower-case text of an id.
SPCBASE_API std::string uuid_text(REFGUID id);
/// Reads an id from its text, with or without braces, in either case; false leaves `id` untouched.
SPCBASE_API bool guid_from_text(const char* text, GUID& id) noexcept;

}  // namespace platform
