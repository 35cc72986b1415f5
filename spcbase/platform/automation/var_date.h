/// Dates of the automation layer as texts.
///
/// Part of the platform layer (automation).
#pragma once

#include "spcbase/platform/automation/variant.h"
#include "spcbase/platform/datetime/date_text.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/export.h"

/// Writes a date as the locale does (see date_text.h): both halves, only the time with `VAR_TIMEVALUEONLY`, only the
/// date with `VAR_DATEVALUEONLY`. The locale 0x400 is the user's.
/// Fails:   E_INVALIDARG for a number that is no date or a null pointer, E_OUTOFMEMORY; `*text` stays as it was.
/// Owns:    the caller, with `SysFreeString`.
SPCBASE_API HRESULT VarBstrFromDate(DATE date, LCID locale, ULONG flags, BSTR* text) noexcept;

/// The date that a variant holds or can be changed into; invalid when it cannot, null for VT_NULL.
/// Differs: the constructor of `COleDateTime` from a VARIANT, which cannot stand there since dates are built before
///          variants.
SPCBASE_API COleDateTime to_ole_datetime(const VARIANT& source) noexcept;
