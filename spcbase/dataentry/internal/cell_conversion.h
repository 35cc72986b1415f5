/// The values of cells on their way into columns.
///
/// Part of data entry; not for hosts.
/// Fails: 0x8004150a, as a `long`, whatever kept a cell from being converted.
#pragma once

#include "spcbase/platform/automation/variant.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

namespace oldde {

/// Kept: VT_NULL is not empty, and cannot be converted either.
inline bool is_empty_cell(const VARIANT& cell) { return cell.vt == VT_EMPTY; }

double double_of(const VARIANT& cell);
long number_of(const VARIANT& cell);
CString text_of(const VARIANT& cell);

/// The text of a label whose values are moments: "2024-03-15 08:30:00" for a date, else as `text_of`.
CString datetime_text_of(const VARIANT& cell);

}  // namespace oldde
