/// The elements of a SAFEARRAY as runs of memory: sizes, copies and releases. Internal.
#pragma once

#include <cstddef>
#include <optional>

#include "spcbase/platform/automation/safe_array.h"

namespace automation_detail {

/// The size of all elements in bytes; nothing when it does not fit the 32 bits that arrays count in.
std::optional<std::size_t> array_size(const SAFEARRAY& array) noexcept;

/// A new array of one dimension whose elements are the bits at `elements`; with them it takes over what they own.
/// Fails: null, as `SafeArrayCreate`; the elements are then still the caller's.
SAFEARRAY* make_filled_array(VARTYPE type, SAFEARRAYBOUND bound, const void* elements) noexcept;

/// Gives back what the elements in `size_bytes` bytes from `first` own and leaves them zero.
/// Fails: as `VariantClear` of an element that cannot be cleared; the elements before it are zero, the rest as they
/// were.
HRESULT release_elements(const SAFEARRAY& array, void* first, std::size_t size_bytes) noexcept;

/// Copies all elements of an array into as many zeroed ones.
/// Fails: E_OUTOFMEMORY, or as `VariantCopy`; what was copied till then stands in the target.
HRESULT copy_elements(const SAFEARRAY& array, void* target) noexcept;

}  // namespace automation_detail
