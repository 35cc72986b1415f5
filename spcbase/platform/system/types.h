/// The plain number types, result codes and their constants that the Windows-shaped interfaces are written in.
///
/// Part of the platform layer. Widths are those of the originals, whatever the width of `long` here: `LONG`, `DWORD`
/// and `HRESULT` have 32 bits. Code that throws or returns a plain `long` as a result code uses the sign-extended
/// HRESULT, so that `hr < 0`, `FAILED(hr)` and comparisons with the constants below hold.
///
/// Differs: there is no `WCHAR`; wide text is UTF-16 in `char16_t` (`OLECHAR`), and wide literals are written `u"..."`.
/// The names agree with those of <sqltypes.h> but for ULONG, which has 64 bits there. A source that includes <sql.h>
/// does so before every header of ours, with `#define ULONG odbc_ulong` in front of it and `#undef ULONG` behind.
#pragma once

#include <cstdint>

#ifndef BOOL
/// TRUE or FALSE.
using BOOL = int;
#endif
/// The documented names of types; LONG, ULONG, DWORD, HRESULT and SCODE have 32 bits.
using BYTE = unsigned char;
using CHAR = char;
using WORD = unsigned short;
using SHORT = short;
using USHORT = unsigned short;
using INT = int;
using UINT = unsigned int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = unsigned int;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using HRESULT = std::int32_t;
using SCODE = std::int32_t;
using LCID = std::uint32_t;
using LPSTR = char*;
using LPCSTR = const char*;
using LPCTSTR = const char*;
using HINSTANCE = void*;
using OLECHAR = char16_t;
using BSTR = OLECHAR*;

#ifndef TRUE
/// The truth value of a BOOL.
#define TRUE 1
#endif
#ifndef FALSE
/// The other truth value of a BOOL.
#define FALSE 0
#endif

/// True when a result code means success (not negative).
constexpr bool SUCCEEDED(long hr) noexcept { return hr >= 0; }
/// True when a result code means failure (negative).
constexpr bool FAILED(long hr) noexcept { return hr < 0; }

/// Makes a result code from its 32 bits.
constexpr HRESULT make_hresult(std::uint32_t bits) noexcept { return static_cast<HRESULT>(bits); }

/// The documented result codes that occur here.
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = make_hresult(0x80004001U);
inline constexpr HRESULT E_NOINTERFACE = make_hresult(0x80004002U);
inline constexpr HRESULT E_POINTER = make_hresult(0x80004003U);
inline constexpr HRESULT E_FAIL = make_hresult(0x80004005U);
inline constexpr HRESULT E_UNEXPECTED = make_hresult(0x8000FFFFU);
inline constexpr HRESULT E_OUTOFMEMORY = make_hresult(0x8007000EU);
inline constexpr HRESULT E_INVALIDARG = make_hresult(0x80070057U);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = make_hresult(0x80040154U);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = make_hresult(0x80020005U);
inline constexpr HRESULT DISP_E_BADVARTYPE = make_hresult(0x80020008U);
inline constexpr HRESULT DISP_E_OVERFLOW = make_hresult(0x8002000AU);
inline constexpr HRESULT DISP_E_BADINDEX = make_hresult(0x8002000BU);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = make_hresult(0x8002000DU);
inline constexpr HRESULT STG_E_INVALIDFUNCTION = make_hresult(0x80030001U);
inline constexpr HRESULT STG_E_SEEKERROR = make_hresult(0x80030019U);
