/// Counting the elements of an array, in numbers that cannot wrap.
///
/// Part of the utilities, for the library's own use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/safe_array.h"

namespace array_counts {

/// What the bounds of the first dimension make the number of its elements: 0 or less, and more than 32 bits hold, come
/// from bounds that were made by hand.
/// Fails: as `SafeArrayGetLBound`.
inline HRESULT from_bounds(SAFEARRAY* array, std::int64_t& count) noexcept {
  LONG lower = 0;
  LONG upper = 0;
  HRESULT result = SafeArrayGetLBound(array, 1, &lower);
  if (SUCCEEDED(result)) result = SafeArrayGetUBound(array, 1, &upper);
  count = std::int64_t{upper} - lower + 1;
  return result;
}

/// The number as the `int` that callers are given.
/// Fails: `_com_error` with E_INVALIDARG when it is none.
inline int as_int(std::int64_t count) {
  if (count < std::numeric_limits<int>::min() || count > std::numeric_limits<int>::max())
    _com_issue_error(E_INVALIDARG);
  return static_cast<int>(count);
}

/// How many elements an array is to have. Its indices are a LONG's, its bytes are counted in 32 bits.
/// Fails: `_com_error` with E_INVALIDARG when that is too many.
inline ULONG for_array(std::size_t count, std::size_t element_bytes) {
  const bool fits = count <= static_cast<std::size_t>(std::numeric_limits<LONG>::max()) &&
                    count <= std::numeric_limits<ULONG>::max() / element_bytes;
  if (!fits) _com_issue_error(E_INVALIDARG);
  return static_cast<ULONG>(count);
}

/// The accessed data of an array as elements of this type.
/// Fails: E_INVALIDARG when the array has no data, or elements of less bytes: arrays made by hand can be so.
template <class Element>
HRESULT elements_of(SAFEARRAY* array, const void* data, const Element*& elements) noexcept {
  elements = static_cast<const Element*>(data);
  // NOLINTNEXTLINE(bugprone-sizeof-expression): an element may be a pointer
  return data != nullptr && SafeArrayGetElemsize(array) >= sizeof(Element) ? S_OK : E_INVALIDARG;
}

}  // namespace array_counts
