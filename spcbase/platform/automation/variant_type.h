/// What the types of a VARIANT mean: which are valid, how large an element is, and who owns it. Internal.
#pragma once

#include <cstdint>

#include "spcbase/platform/automation/variant.h"

namespace automation_detail {

constexpr bool in_mask(std::uint32_t mask, VARTYPE type) noexcept { return type < 32 && (mask >> type & 1U) != 0; }

constexpr std::uint32_t mask_of() noexcept { return 0; }
template <class... Rest>
constexpr std::uint32_t mask_of(VARTYPE type, Rest... rest) noexcept {
  return 1U << type | mask_of(rest...);
}

/// The types whose value is all there is: copied by assignment, cleared by forgetting.
inline constexpr std::uint32_t plain_types =
    mask_of(VT_EMPTY, VT_NULL, VT_I2, VT_I4, VT_R4, VT_R8, VT_CY, VT_DATE, VT_ERROR, VT_BOOL, VT_DECIMAL, VT_I1, VT_UI1,
            VT_UI2, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT);
/// The types whose value belongs to the variant.
inline constexpr std::uint32_t owning_types = mask_of(VT_BSTR, VT_DISPATCH, VT_UNKNOWN);
/// The types of array elements, which are those that a VT_BYREF may point at, too.
inline constexpr std::uint32_t element_types =
    ((plain_types | owning_types) & ~mask_of(VT_EMPTY, VT_NULL)) | mask_of(VT_VARIANT);

constexpr bool is_plain(VARTYPE type) noexcept { return in_mask(plain_types, type); }

/// Whether a variant may have this type.
constexpr bool is_valid(VARTYPE type) noexcept {
  if (in_mask(plain_types | owning_types, type)) return true;
  constexpr int known_bits = VT_TYPEMASK | VT_ARRAY | VT_BYREF;
  const bool compound = (type & (VT_ARRAY | VT_BYREF)) != 0 && (type & ~known_bits) == 0;
  return compound && in_mask(element_types, static_cast<VARTYPE>(type & VT_TYPEMASK));
}

/// The size of an array element in bytes; 0 for a type that arrays cannot hold.
constexpr ULONG element_size(VARTYPE type) noexcept {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return 8;
    case VT_DECIMAL:
      return 16;
    case VT_VARIANT:
      return sizeof(VARIANT);
    default:
      return 0;
  }
}

/// Makes `view` the value that `source` stands for, looking through VT_BYREF; it owns nothing.
/// Fails: E_INVALIDARG without an address, or when the variant pointed at points at another variant.
HRESULT look_through(const VARIANT& source, VARIANT& view) noexcept;

}  // namespace automation_detail
