#include "spcbase/platform/automation/array_elements.h"

#include <cstring>
#include <limits>
#include <utility>

#include "spcbase/platform/automation/variant_type.h"

namespace {

constexpr int owned_kinds = FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH | FADF_VARIANT;

// Objects of either kind are released through their root, which is what the array holds them as.
IUnknown* object_at(USHORT features, const void* element) {
  return (features & FADF_DISPATCH) != 0 ? *static_cast<IDispatch* const*>(element)
                                         : *static_cast<IUnknown* const*>(element);
}

HRESULT copy_text(BSTR source, BSTR* target) {
  *target = nullptr;
  if (source == nullptr) return S_OK;
  *target = SysAllocStringByteLen(reinterpret_cast<const char*>(source), SysStringByteLen(source));
  return *target == nullptr ? E_OUTOFMEMORY : S_OK;
}

void copy_plain(void* target, const void* source, ULONG size) {
  switch (size) {
    case 8:
      std::memcpy(target, source, 8);
      return;
    case 4:
      std::memcpy(target, source, 4);
      return;
    case 2:
      std::memcpy(target, source, 2);
      return;
    case 1:
      std::memcpy(target, source, 1);
      return;
    default:
      std::memcpy(target, source, size);
  }
}

HRESULT find_element(const SAFEARRAY* array, const LONG* indices, void*& element) {
  if (array == nullptr || indices == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND* bound = array->rgsabound + array->cDims;
  std::size_t offset = 0;
  std::size_t stride = 1;
  for (const LONG* index = indices; bound != array->rgsabound; ++index) {
    --bound;
    const std::int64_t from_lower = std::int64_t{*index} - bound->lLbound;
    if (from_lower < 0 || from_lower >= bound->cElements) return DISP_E_BADINDEX;
    offset += static_cast<std::size_t>(from_lower) * stride;
    stride *= bound->cElements;
  }
  if (array->pvData == nullptr) return E_INVALIDARG;
  element = static_cast<char*>(array->pvData) + offset * array->cbElements;
  return S_OK;
}

}  // namespace

namespace automation_detail {

std::optional<std::size_t> array_size(const SAFEARRAY& array) noexcept {
  const SAFEARRAYBOUND* const bounds = array.rgsabound;
  for (UINT i = 0; i < array.cDims; ++i) {
    if (bounds[i].cElements == 0) return 0;
  }
  std::uint64_t size = array.cbElements;
  for (UINT i = 0; i < array.cDims; ++i) {
    // Both factors fit 32 bits, so the product cannot wrap.
    size *= bounds[i].cElements;
    if (size > std::numeric_limits<ULONG>::max()) return std::nullopt;
  }
  return size;
}

HRESULT release_elements(const SAFEARRAY& array, void* first, std::size_t size_bytes) noexcept {
  if ((array.fFeatures & owned_kinds) == 0) return S_OK;
  char* const end = static_cast<char*>(first) + size_bytes;
  for (char* element = static_cast<char*>(first); element != end; element += array.cbElements) {
    if ((array.fFeatures & FADF_VARIANT) != 0) {
      const HRESULT result = VariantClear(reinterpret_cast<VARIANT*>(element));
      // A type that nobody knows owns nothing that could be released.
      if (result == DISP_E_BADVARTYPE) VariantInit(reinterpret_cast<VARIANT*>(element));
      if (FAILED(result) && result != DISP_E_BADVARTYPE) return result;
    } else if ((array.fFeatures & FADF_BSTR) != 0) {
      SysFreeString(std::exchange(*reinterpret_cast<BSTR*>(element), nullptr));
    } else {
      IUnknown* const object = object_at(array.fFeatures, element);
      std::memset(element, 0, array.cbElements);
      if (object != nullptr) object->Release();
    }
  }
  return S_OK;
}

HRESULT copy_elements(const SAFEARRAY& array, void* target) noexcept {
  const std::size_t size = array_size(array).value_or(0);
  if (size == 0) return S_OK;
  const char* source = static_cast<const char*>(array.pvData);
  if ((array.fFeatures & (FADF_VARIANT | FADF_BSTR)) == 0) std::memcpy(target, source, size);
  if ((array.fFeatures & owned_kinds) == 0) return S_OK;
  char* element = static_cast<char*>(target);
  for (const char* const end = source + size; source != end; source += array.cbElements, element += array.cbElements) {
    HRESULT result = S_OK;
    if ((array.fFeatures & FADF_VARIANT) != 0) {
      result = VariantCopy(reinterpret_cast<VARIANT*>(element), reinterpret_cast<const VARIANT*>(source));
    } else if ((array.fFeatures & FADF_BSTR) != 0) {
      result = copy_text(*reinterpret_cast<const BSTR*>(source), reinterpret_cast<BSTR*>(element));
    } else if (IUnknown* const object = object_at(array.fFeatures, element); object != nullptr) {
      object->AddRef();
    }
    if (FAILED(result)) return result;
  }
  return S_OK;
}

}  // namespace automation_detail

HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, const LONG* indices, void** element) noexcept {
  if (element == nullptr) return E_INVALIDARG;
  *element = nullptr;
  return find_element(array, indices, *element);
}

HRESULT SafeArrayGetElement(SAFEARRAY* array, const LONG* indices, void* value) noexcept {
  if (value == nullptr) return E_INVALIDARG;
  void* element = nullptr;
  const HRESULT result = find_element(array, indices, element);
  if (FAILED(result)) return result;
  const int kind = array->fFeatures & owned_kinds;
  if (kind == 0) {
    copy_plain(value, element, array->cbElements);
    return S_OK;
  }
  if ((kind & FADF_VARIANT) != 0) {
    auto* const target = static_cast<VARIANT*>(value);
    VariantInit(target);
    return VariantCopy(target, static_cast<const VARIANT*>(element));
  }
  if ((kind & FADF_BSTR) != 0) return copy_text(*static_cast<BSTR*>(element), static_cast<BSTR*>(value));
  IUnknown* const object = object_at(array->fFeatures, element);
  if (object != nullptr) object->AddRef();
  std::memcpy(value, element, sizeof(void*));
  return S_OK;
}

HRESULT SafeArrayPutElement(SAFEARRAY* array, const LONG* indices, const void* value) noexcept {
  void* element = nullptr;
  const HRESULT result = find_element(array, indices, element);
  if (FAILED(result)) return result;
  const int kind = array->fFeatures & owned_kinds;
  if (kind == 0 || (kind & FADF_VARIANT) != 0) {
    if (value == nullptr) return E_INVALIDARG;
    if (kind != 0) return VariantCopy(static_cast<VARIANT*>(element), static_cast<const VARIANT*>(value));
    copy_plain(element, value, array->cbElements);
    return S_OK;
  }
  if ((kind & FADF_BSTR) != 0) {
    // The value is the string itself.
    BSTR copy = nullptr;
    const HRESULT copied = copy_text(static_cast<BSTR>(const_cast<void*>(value)), &copy);
    if (SUCCEEDED(copied)) SysFreeString(std::exchange(*static_cast<BSTR*>(element), copy));
    return copied;
  }
  IUnknown* const fresh = object_at(array->fFeatures, static_cast<const void*>(&value));
  IUnknown* const old = object_at(array->fFeatures, element);
  if (fresh != nullptr) fresh->AddRef();
  std::memcpy(element, static_cast<const void*>(&value), sizeof value);
  if (old != nullptr) old->Release();
  return S_OK;
}
