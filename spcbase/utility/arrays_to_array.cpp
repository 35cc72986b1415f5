#include <algorithm>
#include <cstdint>
#include <limits>

#include "spcbase/foundation/internal/locked_block.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/utility/arrays.h"
#include "spcbase/utility/internal/array_counts.h"
#include "spcbase/utility/internal/integer_set.h"

namespace {

/// Elements whose bits are all there is: one copy.
template <class Element>
void build_from_bits(COleSafeArray& target, VARTYPE type, const Element* source, std::size_t count) {
  target.CreateOneDim(type, array_counts::for_array(count, sizeof(Element)), source);
}

/// Elements that are made one by one: `make` fills one that is zero. The array is the target's once it is whole; till
/// then it releases what was made.
template <class Element, class Source, class Make>
void build(COleSafeArray& target, VARTYPE type, const std::vector<Source>& source, Make make) {
  // NOLINTNEXTLINE(bugprone-sizeof-expression): an element may be a pointer
  const ULONG count = array_counts::for_array(source.size(), sizeof(Element));
  target.Clear();
  COleSafeArray built;
  built.CreateOneDim(type, count);
  {
    const safe_array_access access(built.parray);
    Element* element = access.as<Element>();
    for (const Source& value : source)
      make(value, *element++);
  }
  target.Attach(built);
}

void require_integer_type(VARTYPE type) {
  if (!is_in_integer_set(type)) _com_issue_error(E_INVALIDARG);
}

void require_32_bits(const std::vector<long>& source) {
  constexpr long lowest = std::numeric_limits<LONG>::min();
  constexpr long highest = std::numeric_limits<ULONG>::max();
  const bool good =
      std::all_of(source.begin(), source.end(), [](long value) { return value >= lowest && value <= highest; });
  if (!good) _com_issue_error(DISP_E_OVERFLOW);
}

IDispatch* with_reference(const _com_ptr_t<IDispatch>& pointer) {
  IDispatch* const object = pointer.GetInterfacePtr();
  if (object != nullptr) object->AddRef();
  return object;
}

}  // namespace

void to_safe_array(COleSafeArray& target, const std::vector<CString>& source) {
  build<BSTR>(target, VT_BSTR, source, [](const CString& text, BSTR& element) { element = alloc_sys_string(text); });
}

void to_safe_array(COleSafeArray& target, const std::vector<long>& source, unsigned short element_type) {
  require_integer_type(element_type);
  require_32_bits(source);
  build<LONG>(target, element_type, source, [](long value, LONG& element) { element = static_cast<LONG>(value); });
}

void to_safe_array(COleSafeArray& target, const std::vector<int>& source, unsigned short element_type) {
  require_integer_type(element_type);
  build_from_bits(target, element_type, source.data(), source.size());
}

void to_safe_array(COleSafeArray& target, unsigned char* source, int count_bytes) {
  if (count_bytes < 0 || (count_bytes != 0 && source == nullptr)) _com_issue_error(E_INVALIDARG);
  build_from_bits(target, VT_UI1, source, static_cast<std::size_t>(count_bytes));
}

void to_safe_array(COleSafeArray& target, const CLongBinary& source) {
  if (source.m_dwDataLength == 0 || source.m_hData == nullptr) return to_safe_array(target, nullptr, 0);
  const LockedBlock block(source.m_hData);
  if (GlobalSize(source.m_hData) < source.m_dwDataLength) _com_issue_error(E_INVALIDARG);
  build_from_bits(target, VT_UI1, block.bytes(), source.m_dwDataLength);
}

void to_variant_safe_array(COleSafeArray& target, const std::vector<_com_ptr_t<IDispatch>>& source) {
  build<VARIANT>(target, VT_VARIANT, source, [](const _com_ptr_t<IDispatch>& pointer, VARIANT& element) {
    element.vt = VT_DISPATCH;
    element.pdispVal = with_reference(pointer);
  });
}

void to_variant_safe_array(COleSafeArray& target, const std::vector<int>& source) {
  build<VARIANT>(target, VT_VARIANT, source, [](int value, VARIANT& element) {
    element.vt = VT_I4;
    element.lVal = value;
  });
}

void to_variant_safe_array(COleSafeArray& target, const std::vector<_variant_t>& source) {
  build<VARIANT>(target, VT_VARIANT, source, [](const _variant_t& value, VARIANT& element) {
    _com_util::CheckError(VariantCopy(&element, &value));
  });
}

void to_dispatch_safe_array(COleSafeArray& target, const std::vector<_com_ptr_t<IDispatch>>& source) {
  build<IDispatch*>(target, VT_DISPATCH, source, [](const _com_ptr_t<IDispatch>& pointer, IDispatch*& element) {
    element = with_reference(pointer);
  });
}
