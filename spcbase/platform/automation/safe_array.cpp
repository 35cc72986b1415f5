#include "spcbase/platform/automation/safe_array.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include "spcbase/platform/automation/array_elements.h"
#include "spcbase/platform/automation/variant_type.h"

using automation_detail::array_size;
using automation_detail::copy_elements;
using automation_detail::release_elements;

namespace {

// Sixteen bytes stand before the descriptor: an interface id, or the element type in the last four of them.
constexpr std::size_t head_bytes = sizeof(GUID);
constexpr USHORT foreign_memory = FADF_AUTO | FADF_STATIC | FADF_EMBEDDED;

char* head_of(SAFEARRAY* array) { return reinterpret_cast<char*>(array) - head_bytes; }

void set_hidden_type(SAFEARRAY* array, VARTYPE type) {
  const DWORD wide = type;
  std::memcpy(head_of(array) + head_bytes - sizeof wide, &wide, sizeof wide);
}

VARTYPE hidden_type(SAFEARRAY* array) {
  DWORD wide = 0;
  std::memcpy(&wide, head_of(array) + head_bytes - sizeof wide, sizeof wide);
  return static_cast<VARTYPE>(wide);
}

USHORT features_of(VARTYPE type) {
  switch (type) {
    case VT_UNKNOWN:
      return FADF_UNKNOWN | FADF_HAVEIID;
    case VT_DISPATCH:
      return FADF_DISPATCH | FADF_HAVEIID;
    case VT_BSTR:
      return FADF_BSTR | FADF_HAVEVARTYPE;
    case VT_VARIANT:
      return FADF_VARIANT | FADF_HAVEVARTYPE;
    default:
      return FADF_HAVEVARTYPE;
  }
}

void set_type(SAFEARRAY* array, VARTYPE type) {
  array->cbElements = automation_detail::element_size(type);
  array->fFeatures = features_of(type);
  if ((array->fFeatures & FADF_HAVEIID) != 0) {
    SafeArraySetIID(array, type == VT_UNKNOWN ? IID_IUnknown : IID_IDispatch);
  } else {
    set_hidden_type(array, type);
  }
}

// The last index must still be a LONG.
bool upper_bound_fits(const SAFEARRAYBOUND& bound) {
  return std::int64_t{bound.lLbound} + bound.cElements - 1 <= std::numeric_limits<LONG>::max();
}

// Data of undetermined bytes, for who fills them at once. An array without elements has an address, too.
HRESULT alloc_raw_data(SAFEARRAY& array, std::size_t& size) {
  const std::optional<std::size_t> wanted = array_size(array);
  if (!wanted) return E_INVALIDARG;
  size = *wanted;
  array.pvData = std::malloc(size == 0 ? 1 : size);
  return array.pvData == nullptr ? E_OUTOFMEMORY : S_OK;
}

SAFEARRAY* make_array(VARTYPE type, UINT dimensions, const SAFEARRAYBOUND* bounds, const void* elements) {
  SAFEARRAY* array = nullptr;
  if (bounds == nullptr || FAILED(SafeArrayAllocDescriptorEx(type, dimensions, &array))) return nullptr;
  SAFEARRAYBOUND* const reversed = array->rgsabound;
  bool good = true;
  for (UINT i = 0; i < dimensions; ++i) {
    reversed[dimensions - 1U - i] = bounds[i];
    good = good && upper_bound_fits(bounds[i]);
  }
  std::size_t size = 0;
  if (good && SUCCEEDED(elements == nullptr ? SafeArrayAllocData(array) : alloc_raw_data(*array, size))) {
    if (size != 0) std::memcpy(array->pvData, elements, size);
    return array;
  }
  SafeArrayDestroyDescriptor(array);
  return nullptr;
}

SAFEARRAYBOUND* bound_of(SAFEARRAY* array, UINT dimension) {
  if (dimension == 0 || dimension > array->cDims) return nullptr;
  SAFEARRAYBOUND* const reversed = array->rgsabound;
  return reversed + (array->cDims - dimension);
}

}  // namespace

HRESULT SafeArrayAllocDescriptor(UINT dimensions, SAFEARRAY** array) noexcept {
  if (array == nullptr) return E_INVALIDARG;
  *array = nullptr;
  if (dimensions == 0 || dimensions > std::numeric_limits<USHORT>::max()) return E_INVALIDARG;
  void* const block = std::calloc(1, head_bytes + sizeof(SAFEARRAY) + (dimensions - 1U) * sizeof(SAFEARRAYBOUND));
  if (block == nullptr) return E_OUTOFMEMORY;
  *array = reinterpret_cast<SAFEARRAY*>(static_cast<char*>(block) + head_bytes);
  (*array)->cDims = static_cast<USHORT>(dimensions);
  return S_OK;
}

HRESULT SafeArrayAllocDescriptorEx(VARTYPE type, UINT dimensions, SAFEARRAY** array) noexcept {
  if (array == nullptr) return E_INVALIDARG;
  *array = nullptr;
  if (automation_detail::element_size(type) == 0) return E_INVALIDARG;
  const HRESULT result = SafeArrayAllocDescriptor(dimensions, array);
  if (SUCCEEDED(result)) set_type(*array, type);
  return result;
}

HRESULT SafeArrayAllocData(SAFEARRAY* array) noexcept {
  if (array == nullptr) return E_INVALIDARG;
  const std::optional<std::size_t> size = array_size(*array);
  if (!size) return E_INVALIDARG;
  // An array without elements has an address, too.
  array->pvData = std::calloc(1, *size == 0 ? 1 : *size);
  return array->pvData == nullptr ? E_OUTOFMEMORY : S_OK;
}

SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) noexcept {
  return SafeArrayCreateEx(type, dimensions, bounds, nullptr);
}

SAFEARRAY* SafeArrayCreateEx(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds, PVOID extra) noexcept {
  SAFEARRAY* const array = make_array(type, dimensions, bounds, nullptr);
  if (array != nullptr && extra != nullptr) SafeArraySetIID(array, *static_cast<const GUID*>(extra));
  return array;
}

SAFEARRAY* automation_detail::make_filled_array(VARTYPE type, SAFEARRAYBOUND bound, const void* elements) noexcept {
  return make_array(type, 1, &bound, elements);
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lower_bound, ULONG count) noexcept {
  SAFEARRAYBOUND bound{count, lower_bound};
  SAFEARRAY* const array = SafeArrayCreate(type, 1, &bound);
  if (array != nullptr) array->fFeatures = static_cast<USHORT>(array->fFeatures | FADF_CREATEVECTOR);
  return array;
}

HRESULT SafeArrayDestroyDescriptor(SAFEARRAY* array) noexcept {
  if (array == nullptr) return S_OK;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  std::free(head_of(array));
  return S_OK;
}

HRESULT SafeArrayDestroyData(SAFEARRAY* array) noexcept {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  if (array->pvData == nullptr) return S_OK;
  const std::size_t size = array_size(*array).value_or(0);
  HRESULT const result = release_elements(*array, array->pvData, size);
  if (FAILED(result)) return result;
  if ((array->fFeatures & foreign_memory) != 0) {
    std::memset(array->pvData, 0, size);
  } else {
    std::free(std::exchange(array->pvData, nullptr));
  }
  return S_OK;
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) noexcept {
  if (array == nullptr) return S_OK;
  const HRESULT result = SafeArrayDestroyData(array);
  return FAILED(result) ? result : SafeArrayDestroyDescriptor(array);
}

UINT SafeArrayGetDim(SAFEARRAY* array) noexcept { return array == nullptr ? 0 : array->cDims; }

UINT SafeArrayGetElemsize(SAFEARRAY* array) noexcept { return array == nullptr ? 0 : array->cbElements; }

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) noexcept {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND* const found = bound_of(array, dimension);
  if (found == nullptr) return DISP_E_BADINDEX;
  *bound = found->lLbound;
  return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) noexcept {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND* const found = bound_of(array, dimension);
  if (found == nullptr) return DISP_E_BADINDEX;
  *bound = static_cast<LONG>(std::int64_t{found->lLbound} + found->cElements - 1);
  return S_OK;
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) noexcept {
  if (array == nullptr || type == nullptr) return E_INVALIDARG;
  if ((array->fFeatures & FADF_HAVEVARTYPE) != 0) {
    *type = hidden_type(array);
  } else if ((array->fFeatures & FADF_DISPATCH) != 0) {
    *type = VT_DISPATCH;
  } else if ((array->fFeatures & FADF_UNKNOWN) != 0) {
    *type = VT_UNKNOWN;
  } else {
    return E_INVALIDARG;
  }
  return S_OK;
}

HRESULT SafeArrayGetIID(SAFEARRAY* array, GUID* iid) noexcept {
  if (array == nullptr || iid == nullptr || (array->fFeatures & FADF_HAVEIID) == 0) return E_INVALIDARG;
  std::memcpy(iid, head_of(array), sizeof *iid);
  return S_OK;
}

HRESULT SafeArraySetIID(SAFEARRAY* array, REFGUID iid) noexcept {
  if (array == nullptr || (array->fFeatures & FADF_HAVEIID) == 0) return E_INVALIDARG;
  std::memcpy(head_of(array), &iid, sizeof iid);
  return S_OK;
}

HRESULT SafeArrayLock(SAFEARRAY* array) noexcept {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks == std::numeric_limits<ULONG>::max()) return E_UNEXPECTED;
  ++array->cLocks;
  return S_OK;
}

HRESULT SafeArrayUnlock(SAFEARRAY* array) noexcept {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks == 0) return E_UNEXPECTED;
  --array->cLocks;
  return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) noexcept {
  if (array == nullptr || data == nullptr) return E_INVALIDARG;
  const HRESULT result = SafeArrayLock(array);
  *data = SUCCEEDED(result) ? array->pvData : nullptr;
  return result;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) noexcept { return SafeArrayUnlock(array); }

HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy) noexcept {
  if (copy == nullptr) return E_INVALIDARG;
  *copy = nullptr;
  if (array == nullptr) return S_OK;
  SAFEARRAY* fresh = nullptr;
  HRESULT result = SafeArrayAllocDescriptor(array->cDims, &fresh);
  if (FAILED(result)) return result;
  constexpr USHORT own_state = foreign_memory | FADF_FIXEDSIZE | FADF_CREATEVECTOR;
  fresh->fFeatures = static_cast<USHORT>(array->fFeatures & ~own_state);
  fresh->cbElements = array->cbElements;
  if ((array->fFeatures & (FADF_HAVEIID | FADF_HAVEVARTYPE)) != 0) {
    std::memcpy(head_of(fresh), head_of(array), head_bytes);
  }
  std::memcpy(static_cast<void*>(fresh->rgsabound), static_cast<const void*>(array->rgsabound),
              array->cDims * sizeof(SAFEARRAYBOUND));
  if (array->pvData != nullptr) {
    result = SafeArrayAllocData(fresh);
    if (SUCCEEDED(result)) result = copy_elements(*array, fresh->pvData);
  }
  if (FAILED(result)) {
    SafeArrayDestroy(fresh);
    return result;
  }
  *copy = fresh;
  return S_OK;
}

HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* bound) noexcept {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  if ((array->fFeatures & (foreign_memory | FADF_FIXEDSIZE)) != 0 || !upper_bound_fits(*bound)) return E_INVALIDARG;
  const SAFEARRAYBOUND old_bound = array->rgsabound[0];
  const std::optional<std::size_t> old_size = array_size(*array);
  array->rgsabound[0] = *bound;
  const std::optional<std::size_t> new_size = array_size(*array);
  array->rgsabound[0] = old_bound;
  if (!old_size || !new_size) return E_INVALIDARG;

  // The rightmost dimension varies slowest, so what goes and what comes lies at the end.
  auto* const fresh = static_cast<char*>(std::calloc(1, *new_size == 0 ? 1 : *new_size));
  if (fresh == nullptr) return E_OUTOFMEMORY;
  if (array->pvData != nullptr) {
    const std::size_t kept = *new_size < *old_size ? *new_size : *old_size;
    const HRESULT result = release_elements(*array, static_cast<char*>(array->pvData) + kept, *old_size - kept);
    if (FAILED(result)) {
      std::free(fresh);
      return result;
    }
    if (kept != 0) std::memcpy(fresh, array->pvData, kept);
    std::free(array->pvData);
  }
  array->pvData = fresh;
  array->rgsabound[0] = *bound;
  return S_OK;
}
