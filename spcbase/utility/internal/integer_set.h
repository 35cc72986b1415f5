/// The four element types that are readings of the same 32 bits.
///
/// Part of the utilities, for the library's own use.
#pragma once

#include "spcbase/platform/automation/variant_type.h"

inline constexpr std::uint32_t integer_set = automation_detail::mask_of(VT_I4, VT_UI4, VT_INT, VT_UINT);
static_assert(integer_set == 0xC80008);

constexpr bool is_in_integer_set(VARTYPE type) noexcept { return automation_detail::in_mask(integer_set, type); }
