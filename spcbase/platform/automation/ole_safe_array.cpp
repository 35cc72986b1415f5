#include "spcbase/platform/automation/ole_safe_array.h"

#include <utility>
#include <vector>

#include "spcbase/platform/automation/array_elements.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/system/exceptions.h"

namespace {

const VARIANT& checked(const VARIANT& source) {
  const bool array = (source.vt & VT_ARRAY) != 0 && (source.vt & VT_BYREF) == 0;
  if (!array) _com_issue_error(E_INVALIDARG);
  return source;
}

void hold(VARIANT& target, VARTYPE type, SAFEARRAY* array) {
  if (array == nullptr) AfxThrowMemoryException();
  target.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  target.parray = array;
}

}  // namespace

COleSafeArray::COleSafeArray(const VARIANT& source) : COleSafeArray() { *this = source; }

COleSafeArray::COleSafeArray(const COleSafeArray& source) : COleSafeArray() { *this = source; }

COleSafeArray& COleSafeArray::operator=(const VARIANT& source) {
  _com_util::CheckError(VariantCopy(this, &checked(source)));
  return *this;
}

COleSafeArray& COleSafeArray::operator=(const COleSafeArray& source) {
  // One that is still empty is copied as it is.
  _com_util::CheckError(VariantCopy(this, &source));
  return *this;
}

void COleSafeArray::Clear() { _com_util::CheckError(VariantClear(this)); }

void COleSafeArray::Create(VARTYPE type, DWORD dimensions, const DWORD* counts) {
  std::vector<SAFEARRAYBOUND> bounds(dimensions);
  for (DWORD i = 0; i < dimensions; ++i)
    bounds[i] = {counts[i], 0};
  Create(type, dimensions, bounds.data());
}

void COleSafeArray::Create(VARTYPE type, DWORD dimensions, const SAFEARRAYBOUND* bounds) {
  Clear();
  // It only reads the bounds.
  hold(*this, type, SafeArrayCreate(type, dimensions, const_cast<SAFEARRAYBOUND*>(bounds)));
}

void COleSafeArray::CreateOneDim(VARTYPE type, DWORD count, const void* elements, LONG lower_bound) {
  Clear();
  hold(*this, type, automation_detail::make_filled_array(type, {count, lower_bound}, elements));
}

void COleSafeArray::Attach(VARIANT& source) {
  checked(source);
  if (this == &source) return;
  Clear();
  static_cast<VARIANT&>(*this) = std::exchange(source, VARIANT{});
}

VARIANT COleSafeArray::Detach() noexcept { return std::exchange(static_cast<VARIANT&>(*this), VARIANT{}); }
