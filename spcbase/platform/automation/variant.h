/// VARIANT, the tagged value of automation, and the calls that copy, clear and convert it.
///
/// Part of the platform layer (automation). `vt` says which member of the union counts. A value of the types BSTR,
/// UNKNOWN, DISPATCH or ARRAY belongs to the variant and goes with `VariantClear`; with VT_BYREF it belongs to others.
///
/// Differs: decimals are carried as bytes but not converted (DISP_E_TYPEMISMATCH), and there are no records
/// (DISP_E_BADVARTYPE). The currency has only its 64-bit form. Objects have no default property, so they change only
/// into other interfaces.
#pragma once

#include "spcbase/platform/automation/bstr.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

struct IUnknown;
struct IDispatch;
struct tagSAFEARRAY;
struct tagVARIANT;

/// One of the VT_ numbers below.
using VARTYPE = unsigned short;
/// VARIANT_TRUE or VARIANT_FALSE; every other number than 0 counts as true.
using VARIANT_BOOL = short;
/// Days since 30 December 1899, the time of day as the fraction's magnitude.
using DATE = double;
/// An address of anything.
using PVOID = void*;

/// The two truth values.
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

/// The types of a value, as documented; VT_ARRAY and VT_BYREF are added to another.
inline constexpr VARTYPE VT_EMPTY = 0;
inline constexpr VARTYPE VT_NULL = 1;
inline constexpr VARTYPE VT_I2 = 2;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_R4 = 4;
inline constexpr VARTYPE VT_R8 = 5;
inline constexpr VARTYPE VT_CY = 6;
inline constexpr VARTYPE VT_DATE = 7;
inline constexpr VARTYPE VT_BSTR = 8;
inline constexpr VARTYPE VT_DISPATCH = 9;
inline constexpr VARTYPE VT_ERROR = 10;
inline constexpr VARTYPE VT_BOOL = 11;
inline constexpr VARTYPE VT_VARIANT = 12;
inline constexpr VARTYPE VT_UNKNOWN = 13;
inline constexpr VARTYPE VT_DECIMAL = 14;
inline constexpr VARTYPE VT_I1 = 16;
inline constexpr VARTYPE VT_UI1 = 17;
inline constexpr VARTYPE VT_UI2 = 18;
inline constexpr VARTYPE VT_UI4 = 19;
inline constexpr VARTYPE VT_I8 = 20;
inline constexpr VARTYPE VT_UI8 = 21;
inline constexpr VARTYPE VT_INT = 22;
inline constexpr VARTYPE VT_UINT = 23;
inline constexpr VARTYPE VT_VOID = 24;
inline constexpr VARTYPE VT_HRESULT = 25;
inline constexpr VARTYPE VT_PTR = 26;
inline constexpr VARTYPE VT_SAFEARRAY = 27;
inline constexpr VARTYPE VT_LPSTR = 30;
inline constexpr VARTYPE VT_LPWSTR = 31;
inline constexpr VARTYPE VT_RECORD = 36;
inline constexpr VARTYPE VT_FILETIME = 64;
inline constexpr VARTYPE VT_VECTOR = 0x1000;
inline constexpr VARTYPE VT_ARRAY = 0x2000;
inline constexpr VARTYPE VT_BYREF = 0x4000;
inline constexpr VARTYPE VT_TYPEMASK = 0x0FFF;

/// Change-type flags. Only VARIANT_ALPHABOOL changes anything here: truth values become "True" and "False".
inline constexpr USHORT VARIANT_NOVALUEPROP = 0x01;
inline constexpr USHORT VARIANT_ALPHABOOL = 0x02;
inline constexpr USHORT VARIANT_NOUSEROVERRIDE = 0x04;
inline constexpr USHORT VARIANT_LOCALBOOL = 0x10;

/// Money in ten-thousandths.
union CY {
  /// The amount times 10,000.
  LONGLONG int64;
};

/// The place of a record (never filled); it gives VARIANT its documented size.
struct tagBRECORD {
  /// Never used.
  PVOID pvRecord;
  PVOID pRecInfo;
};

/// Shape: 24 bytes, the type at 0, the value at 8. An aggregate without constructor: `VARIANT v{};` or `VariantInit`.
struct tagVARIANT {
  VARTYPE vt;       ///< the type: which of the values below holds
  WORD wReserved1;  ///< not used
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONGLONG llVal;
    LONG lVal;
    BYTE bVal;
    SHORT iVal;
    float fltVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    SCODE scode;
    CY cyVal;
    DATE date;
    BSTR bstrVal;
    IUnknown* punkVal;
    IDispatch* pdispVal;
    tagSAFEARRAY* parray;
    BYTE* pbVal;
    SHORT* piVal;
    LONG* plVal;
    LONGLONG* pllVal;
    float* pfltVal;
    double* pdblVal;
    VARIANT_BOOL* pboolVal;
    SCODE* pscode;
    CY* pcyVal;
    DATE* pdate;
    BSTR* pbstrVal;
    IUnknown** ppunkVal;
    IDispatch** ppdispVal;
    tagSAFEARRAY** pparray;
    tagVARIANT* pvarVal;
    PVOID byref;
    CHAR cVal;
    USHORT uiVal;
    ULONG ulVal;
    ULONGLONG ullVal;
    INT intVal;
    UINT uintVal;
    CHAR* pcVal;
    USHORT* puiVal;
    ULONG* pulVal;
    ULONGLONG* pullVal;
    INT* pintVal;
    UINT* puintVal;
    tagBRECORD brecVal;
  };
};
/// The documented names.
using VARIANT = tagVARIANT;
using VARIANTARG = tagVARIANT;
using LPVARIANT = tagVARIANT*;
static_assert(sizeof(VARIANT) == 24);

/// Makes a variant empty without looking at what it held.
inline void VariantInit(VARIANTARG* variant) noexcept { *variant = VARIANT{}; }

/// Releases what the variant owns and makes it empty.
/// Fails: DISP_E_BADVARTYPE for an unknown type, DISP_E_ARRAYISLOCKED for a locked array, E_INVALIDARG for null; it is
///        then as before.
SPCBASE_API HRESULT VariantClear(VARIANTARG* variant) noexcept;

/// Clears the target and copies: texts and arrays become copies of their own, objects get a reference, VT_BYREF values
/// keep their address. Copying onto itself does nothing.
/// Fails: as `VariantClear`; DISP_E_BADVARTYPE; E_OUTOFMEMORY, with the target as before.
SPCBASE_API HRESULT VariantCopy(VARIANTARG* target, const VARIANTARG* source) noexcept;

/// As `VariantCopy`, and a VT_BYREF value is copied from where it points.
/// Fails: also E_INVALIDARG for VT_BYREF without a type or without an address.
SPCBASE_API HRESULT VariantCopyInd(VARIANT* target, const VARIANTARG* source) noexcept;

/// Converts a value to another type. Target and source may be the same variant.
/// The marks that part a number's digits are those of the process's locale (a comma for the decimal point in a German
/// one); all else is by the rules of US English, as are all numbers under the locale "C".
/// Numbers become text with 15 significant digits (7 for floats); a fraction becomes an integer by rounding half to
/// even; texts are read as numbers with separators, sign before or behind, brackets, "$", "&H" and "&O".
/// Fails: DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, DISP_E_BADVARTYPE, E_INVALIDARG, E_OUTOFMEMORY; the target is as
///        before.
SPCBASE_API HRESULT VariantChangeType(VARIANTARG* target, const VARIANTARG* source, USHORT flags,
                                      VARTYPE type) noexcept;

/// As `VariantChangeType`, by US English alone.
/// Differs: every locale is taken as 0x409.
SPCBASE_API HRESULT VariantChangeTypeEx(VARIANTARG* target, const VARIANTARG* source, LCID locale, USHORT flags,
                                        VARTYPE type) noexcept;
