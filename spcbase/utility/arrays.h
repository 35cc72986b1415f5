/// Automation arrays: what hosts pass (`SAFEARRAY`) to and from what the library works on (vectors, `CLongBinary`,
/// plain bytes), and bytes as a stream.
///
/// Part of the utilities. Every array here has one dimension; what the data mean is not known here.
///
///     COleSafeArray array;
///     to_safe_array(array, std::vector<int>{3, 1, 4}, VT_I4);   // a VARIANT of type VT_ARRAY | VT_I4
///     std::vector<int> numbers;
///     to_vector(numbers, array.parray);                         // 3
///
/// The integer set is VT_I4, VT_UI4, VT_INT and VT_UINT: four readings of the same 32 bits, which go over as they
/// stand.
/// Threads: no state; two threads may convert different arrays at the same time.
#pragma once

#include <vector>

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_ptr.h"
#include "spcbase/platform/automation/ole_safe_array.h"
#include "spcbase/platform/automation/stream.h"
#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/platform/database/long_binary.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

// ---- to an array ----------------------------------------------------------------------------------------------------
//
// Each clears `target` and fills it anew: lower bound 0, elements in the source's order. An empty source gives an array
// without elements, never an empty variant.
// Owns:  the array owns its strings, references and values; `target` owns the array.
// Fails: `_com_error` with E_INVALIDARG for what an array cannot count (above 2,147,483,647 elements or 4 GB), before
//        memory is asked for; with DISP_E_ARRAYISLOCKED while the data of `target` are accessed. In both cases `target`
//        is as it was. `CMemoryException*` when memory runs out, or, from an element, `_com_error` with E_OUTOFMEMORY:
//        `target` is then empty.

/// VT_BSTR: each text as a new string, UTF-16.
SPCBASE_API void to_safe_array(COleSafeArray& target, const std::vector<CString>& source);
/// An array of `element_type`, one of the integer set.
/// Fails: `_com_error` with E_INVALIDARG for another type, DISP_E_OVERFLOW for a number that has no 32 bits
///        (below -2,147,483,648 or above 4,294,967,295); `target` is as it was.
SPCBASE_API void to_safe_array(COleSafeArray& target, const std::vector<long>& source, unsigned short element_type);
/// An array of `element_type`, one of the integer set.
/// Fails: `_com_error` with E_INVALIDARG for another type; `target` is as it was.
SPCBASE_API void to_safe_array(COleSafeArray& target, const std::vector<int>& source, unsigned short element_type);
/// VT_UI1. With a count of 0 `source` is not looked at.
/// Fails: `_com_error` with E_INVALIDARG for a negative count, or no bytes where there should be some; `target` is as
///        it was.
SPCBASE_API void to_safe_array(COleSafeArray& target, unsigned char* source, int count_bytes);
/// VT_UI1: the bytes of the holder; none without a block or with a length of 0.
/// Fails: as `throw_global_lock_error_exception` when the block has no address, `_com_error` with E_INVALIDARG when it
///        is smaller than the length; `target` is as it was.
SPCBASE_API void to_safe_array(COleSafeArray& target, const CLongBinary& source);

/// VT_VARIANT of VT_DISPATCH: each element has a reference of its own.
SPCBASE_API void to_variant_safe_array(COleSafeArray& target, const std::vector<_com_ptr_t<IDispatch>>& source);
/// VT_VARIANT of VT_I4.
SPCBASE_API void to_variant_safe_array(COleSafeArray& target, const std::vector<int>& source);
/// VT_VARIANT: a deep copy of each.
/// Fails: also `_com_error` with the result of `VariantCopy`; `target` is then empty.
SPCBASE_API void to_variant_safe_array(COleSafeArray& target, const std::vector<_variant_t>& source);

/// VT_DISPATCH: each element has a reference of its own.
SPCBASE_API void to_dispatch_safe_array(COleSafeArray& target, const std::vector<_com_ptr_t<IDispatch>>& source);

// ---- to a vector ----------------------------------------------------------------------------------------------------
//
// Each puts the array's elements into `target` in their order, whatever the lower bound is, and gives their number; an
// array without elements clears `target`. Checked in this order: the element type, the dimensions, the bounds.
// Fails: `_com_error` with E_INVALIDARG for another element type or a null array; `DBException` "Invalid argument."
//        when there is not one dimension; `_com_error` with what the bounds and the access to the data give; with
//        E_INVALIDARG for a count above 2,147,483,647 and for elements without data, before memory is asked for.
//        `target` is as it was. A failure of a single element leaves what was added before it.

/// Of VT_BSTR; each as UTF-8.
SPCBASE_API int to_vector(std::vector<CString>& target, SAFEARRAY* source);
/// Of VT_BSTR; copies, a null string stays null.
SPCBASE_API int to_vector(std::vector<_bstr_t>& target, SAFEARRAY* source);
/// Of the integer set; 0xFFFFFFFF becomes -1.
SPCBASE_API int to_vector(std::vector<long>& target, SAFEARRAY* source);
SPCBASE_API int to_vector(std::vector<int>& target, SAFEARRAY* source);
/// Of VT_I2.
SPCBASE_API int to_vector(std::vector<short>& target, SAFEARRAY* source);
/// Of VT_BOOL; true is whatever is not 0.
SPCBASE_API int to_vector(std::vector<bool>& target, SAFEARRAY* source);
/// Of VT_R8.
SPCBASE_API int to_vector(std::vector<double>& target, SAFEARRAY* source);
/// Of VT_VARIANT; deep copies.
/// Fails: also `_com_error` with the result of `VariantCopy`.
SPCBASE_API int to_vector(std::vector<_variant_t>& target, SAFEARRAY* source);
/// Of VT_UI1.
SPCBASE_API int to_vector(std::vector<unsigned char>& target, SAFEARRAY* source);
/// Of whatever has the feature FADF_DISPATCH; each with a reference of its own.
/// Kept: only the feature is looked at, so an array of VT_UNKNOWN is refused.
SPCBASE_API int to_vector(std::vector<_com_ptr_t<IDispatch>>& target, SAFEARRAY* source);
/// Of VT_UNKNOWN, or with the feature FADF_DISPATCH; each with a reference of its own.
SPCBASE_API int to_vector(std::vector<_com_ptr_t<IUnknown>>& target, SAFEARRAY* source);

// ---- to bytes -------------------------------------------------------------------------------------------------------

/// The data of an array as bytes, `count_bytes` of them; `*target` is null when there are none.
/// Kept:  the element type is not looked at; the number of elements is the number of bytes.
/// Fails: `DBException` "Invalid argument." when there is not one dimension (a null array has none); `_com_error` with
///        what the bounds and the access give, with E_INVALIDARG for a count that an int cannot hold or a negative one
///        or elements without data. After a failure at the end of the access `*target` is null.
/// Owns:  the caller, with `delete[]`.
SPCBASE_API void to_byte_array(unsigned char** target, int& count_bytes, SAFEARRAY* source);

/// The data of an array, as bytes in a new block; what `target` held is released first, also when this fails.
/// `limit_bytes`, when it is not 0, is the most that is taken.
/// Kept:  neither the element type nor the number of dimensions is looked at: the number of elements of the first
///        dimension is the number of bytes. Failing result codes are thrown as `long`, unlike everywhere else here.
/// Fails: `DBException` "The array exceeds limit."; `long` with what the bounds and the access give, or with
///        E_INVALIDARG for a count that 32 bits cannot hold or a negative one or elements without data;
///        `CMemoryException*`. After a failure of the access `target` has a block of the array's length, its bytes are
///        undetermined.
SPCBASE_API void to_long_bin(CLongBinary& target, SAFEARRAY* source, unsigned int limit_bytes);

// ---- to a stream ----------------------------------------------------------------------------------------------------

/// A stream in memory that holds a copy of `count_bytes` bytes. With a count of 0 `source` is not looked at.
/// Kept:  its position is the end of the data: a reader goes to the start first.
/// Fails: `_com_error` with E_INVALIDARG for a negative count, else with what the stream answers.
/// Owns:  the caller holds the one reference.
SPCBASE_API IStream* create_mem_stream(unsigned char* source, int count_bytes);
