#include "spcbase/platform/automation/variant.h"

#include <cstring>

#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/automation/variant_type.h"

using automation_detail::is_plain;
using automation_detail::is_valid;

namespace {

constexpr VARTYPE without(VARTYPE type, VARTYPE flag) { return static_cast<VARTYPE>(type & ~flag); }

HRESULT copy_text(BSTR text, BSTR& copy) {
  copy = text == nullptr ? nullptr : SysAllocStringByteLen(reinterpret_cast<const char*>(text), SysStringByteLen(text));
  return copy != nullptr || text == nullptr ? S_OK : E_OUTOFMEMORY;
}

// Makes `copy`, which owns nothing yet, an independent value.
HRESULT duplicate(const VARIANT& source, VARIANT& copy) {
  copy = source;
  if (is_plain(source.vt) || (source.vt & VT_BYREF) != 0) return S_OK;
  if ((source.vt & VT_ARRAY) != 0) return SafeArrayCopy(source.parray, &copy.parray);
  if (source.vt == VT_BSTR) return copy_text(source.bstrVal, copy.bstrVal);
  IUnknown* const object = source.vt == VT_DISPATCH ? source.pdispVal : source.punkVal;
  if (object != nullptr) object->AddRef();
  return S_OK;
}

// Gives back what a valid variant owns.
HRESULT release(const VARIANT& variant) {
  if (is_plain(variant.vt) || (variant.vt & VT_BYREF) != 0) return S_OK;
  if ((variant.vt & VT_ARRAY) != 0) return SafeArrayDestroy(variant.parray);
  if (variant.vt == VT_BSTR) {
    SysFreeString(variant.bstrVal);
  } else {
    IUnknown* const object = variant.vt == VT_DISPATCH ? variant.pdispVal : variant.punkVal;
    if (object != nullptr) object->Release();
  }
  return S_OK;
}

}  // namespace

HRESULT VariantClear(VARIANTARG* variant) noexcept {
  if (variant == nullptr) return E_INVALIDARG;
  if (!is_valid(variant->vt)) return DISP_E_BADVARTYPE;
  const HRESULT result = release(*variant);
  if (SUCCEEDED(result)) *variant = VARIANT{};
  return result;
}

HRESULT VariantCopy(VARIANTARG* target, const VARIANTARG* source) noexcept {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  if (is_plain(source->vt) && is_plain(target->vt)) {
    *target = *source;
    return S_OK;
  }
  if (!is_valid(source->vt)) return DISP_E_BADVARTYPE;
  if (target == source) return S_OK;
  // The copy comes first: the source may lie in what the target owns.
  VARIANT copy{};
  HRESULT result = duplicate(*source, copy);
  if (FAILED(result)) return result;
  result = VariantClear(target);
  if (FAILED(result)) {
    release(copy);
    return result;
  }
  *target = copy;
  return S_OK;
}

HRESULT VariantCopyInd(VARIANT* target, const VARIANTARG* source) noexcept {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  VARIANT view{};
  const HRESULT result = automation_detail::look_through(*source, view);
  if (FAILED(result)) return result;
  return (source->vt & VT_BYREF) != 0 ? VariantCopy(target, &view) : VariantCopy(target, source);
}

namespace automation_detail {

HRESULT look_through(const VARIANT& source, VARIANT& view) noexcept {
  view = source;
  if ((source.vt & VT_BYREF) == 0) return S_OK;
  if (source.vt == VT_BYREF || source.byref == nullptr) return E_INVALIDARG;
  if (!is_valid(source.vt)) return DISP_E_BADVARTYPE;
  if (source.vt == (VT_BYREF | VT_VARIANT)) {
    // One variant may point at another, and no further: a chain could be a circle.
    const VARIANT& inner = *source.pvarVal;
    return inner.vt == (VT_BYREF | VT_VARIANT) ? E_INVALIDARG : look_through(inner, view);
  }
  view = VARIANT{};
  view.vt = without(source.vt, VT_BYREF);
  if ((view.vt & VT_ARRAY) != 0) {
    view.parray = *source.pparray;
  } else {
    // The decimal alone fills the whole variant but its type word.
    const bool decimal = view.vt == VT_DECIMAL;
    std::memcpy(decimal ? static_cast<void*>(&view) : static_cast<void*>(&view.llVal), source.byref,
                element_size(view.vt));
    if (decimal) view.vt = VT_DECIMAL;
  }
  return S_OK;
}

}  // namespace automation_detail
