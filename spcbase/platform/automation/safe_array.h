/// SAFEARRAY, the array of automation: several dimensions, bounds, and elements that are owned by their type.
///
/// Part of the platform layer (automation). Dimension 1 is the leftmost index; elements lie with the leftmost index
/// running fastest, and `rgsabound` holds the bounds in reverse, the rightmost dimension first. Indices are given left
/// to right. Example, a grid of columns by rows:
///
///     SAFEARRAYBOUND bounds[2] = {{columns, 0}, {rows, 0}};
///     SAFEARRAY* grid = SafeArrayCreate(VT_VARIANT, 2, bounds);
///     LONG index[2] = {column, row};
///     SafeArrayPutElement(grid, index, &value);
///
/// Differs: no records. The whole data must fit 32 bits of bytes.
/// Threads: locks are counted but not atomic: an array belongs to one thread at a time.
#pragma once

#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/automation/variant.h"

/// One dimension.
struct SAFEARRAYBOUND {
  ULONG cElements;  ///< how many elements
  LONG lLbound;     ///< the index of the first
};

/// The documented head of an array. Read it by the functions below; only `rgsabound` of a descriptor that was allocated
/// alone is for the caller to fill.
struct tagSAFEARRAY {
  USHORT cDims;                 ///< how many dimensions
  USHORT fFeatures;             ///< the FADF_ flags
  ULONG cbElements;             ///< the size of an element in bytes
  ULONG cLocks;                 ///< how many times the data is locked
  PVOID pvData;                 ///< the elements
  SAFEARRAYBOUND rgsabound[1];  ///< the dimensions, the rightmost first
};
/// The documented names.
using SAFEARRAY = tagSAFEARRAY;
using LPSAFEARRAY = tagSAFEARRAY*;

/// What `fFeatures` tells: where the array lives, what its elements are, and what stands in front of the head.
inline constexpr USHORT FADF_AUTO = 0x0001;
inline constexpr USHORT FADF_STATIC = 0x0002;
inline constexpr USHORT FADF_EMBEDDED = 0x0004;
inline constexpr USHORT FADF_FIXEDSIZE = 0x0010;
inline constexpr USHORT FADF_RECORD = 0x0020;
inline constexpr USHORT FADF_HAVEIID = 0x0040;
inline constexpr USHORT FADF_HAVEVARTYPE = 0x0080;
inline constexpr USHORT FADF_BSTR = 0x0100;
inline constexpr USHORT FADF_UNKNOWN = 0x0200;
inline constexpr USHORT FADF_DISPATCH = 0x0400;
inline constexpr USHORT FADF_VARIANT = 0x0800;
inline constexpr USHORT FADF_CREATEVECTOR = 0x2000;

/// A new array of zeroed elements; `bounds` has one entry for each dimension, leftmost first.
/// Null:  an array may have 0 elements; its data pointer is set all the same.
/// Fails: null for an element type that arrays cannot hold, no dimension, bounds or sizes that overflow, no memory.
/// Owns:  the caller, with `SafeArrayDestroy`.
SPCBASE_API SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) noexcept;
/// As `SafeArrayCreate`; `extra` is null or, for objects, the `IID` of the elements.
SPCBASE_API SAFEARRAY* SafeArrayCreateEx(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds, PVOID extra) noexcept;
/// A new array of one dimension, marked as a vector.
SPCBASE_API SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lower_bound, ULONG count) noexcept;

/// A descriptor with zero bounds, without type and data.
/// Fails: E_INVALIDARG for 0 dimensions or null, E_OUTOFMEMORY.
SPCBASE_API HRESULT SafeArrayAllocDescriptor(UINT dimensions, SAFEARRAY** array) noexcept;
/// A descriptor of a type.
/// Fails: also E_INVALIDARG for a type that arrays cannot hold.
SPCBASE_API HRESULT SafeArrayAllocDescriptorEx(VARTYPE type, UINT dimensions, SAFEARRAY** array) noexcept;
/// Gives a descriptor its zeroed data by `cbElements` and `rgsabound`.
/// Fails: E_INVALIDARG for null or overflowing sizes, E_OUTOFMEMORY.
SPCBASE_API HRESULT SafeArrayAllocData(SAFEARRAY* array) noexcept;

/// Releases the elements, the data and the descriptor; null is fine.
/// Fails: DISP_E_ARRAYISLOCKED, nothing is freed.
SPCBASE_API HRESULT SafeArrayDestroy(SAFEARRAY* array) noexcept;
/// Releases the elements and the data; data that is not the array's own (FADF_STATIC) is only zeroed.
/// Fails: DISP_E_ARRAYISLOCKED; E_INVALIDARG for null.
SPCBASE_API HRESULT SafeArrayDestroyData(SAFEARRAY* array) noexcept;
/// Frees the descriptor alone; null is fine.
/// Fails: DISP_E_ARRAYISLOCKED.
SPCBASE_API HRESULT SafeArrayDestroyDescriptor(SAFEARRAY* array) noexcept;

/// The number of dimensions; 0 for null.
SPCBASE_API UINT SafeArrayGetDim(SAFEARRAY* array) noexcept;
/// The size of an element in bytes; 0 for null.
SPCBASE_API UINT SafeArrayGetElemsize(SAFEARRAY* array) noexcept;
/// The bounds of a dimension, counted from 1; the upper one of an empty dimension is one less than the lower.
/// Fails: DISP_E_BADINDEX for a dimension that is not there, E_INVALIDARG for null.
SPCBASE_API HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) noexcept;
SPCBASE_API HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) noexcept;
/// The element type.
/// Fails: E_INVALIDARG for null or a descriptor that does not know it.
SPCBASE_API HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) noexcept;
/// The interface of object elements.
/// Fails: E_INVALIDARG for null or another kind of array.
SPCBASE_API HRESULT SafeArrayGetIID(SAFEARRAY* array, GUID* iid) noexcept;
/// Sets that interface.
/// Fails: E_INVALIDARG for null or another kind of array.
SPCBASE_API HRESULT SafeArraySetIID(SAFEARRAY* array, REFGUID iid) noexcept;

/// Counts one lock more or less; a locked array is neither resized nor destroyed.
/// Fails: E_UNEXPECTED for an unlock too many or too many locks, E_INVALIDARG for null.
SPCBASE_API HRESULT SafeArrayLock(SAFEARRAY* array) noexcept;
SPCBASE_API HRESULT SafeArrayUnlock(SAFEARRAY* array) noexcept;
/// Locks and gives the data (null when there is none); each access is paid back by `SafeArrayUnaccessData`.
/// Fails: as `SafeArrayLock`.
SPCBASE_API HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) noexcept;
SPCBASE_API HRESULT SafeArrayUnaccessData(SAFEARRAY* array) noexcept;

/// The address of an element.
/// Fails: DISP_E_BADINDEX outside the bounds, E_INVALIDARG for null or no data.
SPCBASE_API HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, const LONG* indices, void** element) noexcept;
/// Copies an element out: a new string, an added reference, a copied VARIANT. `value` is written over unread.
/// Fails: DISP_E_BADINDEX, E_INVALIDARG, E_OUTOFMEMORY.
SPCBASE_API HRESULT SafeArrayGetElement(SAFEARRAY* array, const LONG* indices, void* value) noexcept;
/// Copies a value in and releases the old one. `value` points at the value, or is itself the BSTR or the object.
/// Fails: DISP_E_BADINDEX, E_INVALIDARG, E_OUTOFMEMORY; the old element stays.
SPCBASE_API HRESULT SafeArrayPutElement(SAFEARRAY* array, const LONG* indices, const void* value) noexcept;

/// A copy with copies of its elements, not locked.
/// Null: a null array gives null and S_OK.
/// Fails: E_INVALIDARG, E_OUTOFMEMORY, DISP_E_BADVARTYPE from an element.
/// Owns:  the caller, with `SafeArrayDestroy`.
SPCBASE_API HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy) noexcept;
/// Gives the rightmost dimension a new bound; elements beyond it are released, new ones are zero.
/// Fails: DISP_E_ARRAYISLOCKED, E_INVALIDARG for null, overflowing sizes or a fixed array, E_OUTOFMEMORY; nothing
/// changes.
SPCBASE_API HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* bound) noexcept;
