#include "spcbase/platform/automation/var_date.h"

#include <new>
#include <string>

#include "spcbase/platform/text/unicode.h"

HRESULT VarBstrFromDate(DATE date, LCID locale, ULONG flags, BSTR* text) noexcept {
  if (text == nullptr) return E_INVALIDARG;
  try {
    std::string narrow;
    const HRESULT result = platform::text_from_date(date, locale, flags, narrow);
    if (FAILED(result)) return result;
    const std::u16string wide = platform::to_utf16(narrow);
    BSTR const made = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (made == nullptr) return E_OUTOFMEMORY;
    *text = made;
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

COleDateTime to_ole_datetime(const VARIANT& source) noexcept {
  COleDateTime result;
  VARIANT changed{};
  if (source.vt == VT_NULL) {
    result.SetStatus(COleDateTime::null);
  } else if (SUCCEEDED(VariantChangeType(&changed, &source, 0, VT_DATE))) {
    result = changed.date;
  } else {
    result.SetStatus(COleDateTime::invalid);
  }
  return result;
}
