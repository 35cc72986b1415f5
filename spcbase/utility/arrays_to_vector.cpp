#include <type_traits>
#include <utility>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/utility/arrays.h"
#include "spcbase/utility/internal/array_counts.h"
#include "spcbase/utility/internal/integer_set.h"

namespace {

void require(bool accepted) {
  if (!accepted) _com_issue_error(E_INVALIDARG);
}

bool has_type(SAFEARRAY* array, VARTYPE wanted) {
  VARTYPE type = VT_EMPTY;
  return SUCCEEDED(SafeArrayGetVartype(array, &type)) && type == wanted;
}

/// The type of an array of integers; what its reading answers is raised as it is.
VARTYPE integer_type(SAFEARRAY* array) {
  VARTYPE type = VT_EMPTY;
  _com_util::CheckError(SafeArrayGetVartype(array, &type));
  return type;
}

bool has_dispatch_feature(const SAFEARRAY* array) {
  return array != nullptr && (array->fFeatures & FADF_DISPATCH) != 0;
}

/// The way of every array whose type is accepted: `append` is given the emptied target, the first element and their
/// number.
template <class Element, class T, class Append>
int fill(std::vector<T>& target, SAFEARRAY* source, Append append) {
  if (SafeArrayGetDim(source) != 1) throw_invalid_argument();
  std::int64_t bounds_count = 0;
  _com_util::CheckError(array_counts::from_bounds(source, bounds_count));
  const int count = array_counts::as_int(bounds_count);
  if (count < 1) {
    target.clear();
    return count;
  }
  // What the target held may own the array: it goes when the access has ended.
  std::vector<T> old;
  safe_array_access access(source);
  _com_util::CheckError(access.result());
  const Element* elements = nullptr;
  _com_util::CheckError(array_counts::elements_of(source, access.as<const void>(), elements));
  if constexpr (!std::is_arithmetic_v<T>) old.swap(target);
  target.clear();
  append(elements, static_cast<std::size_t>(count));
  _com_util::CheckError(access.end());
  return count;
}

/// Elements that are converted by assignment, as one block.
template <class Element, class T>
int copy(std::vector<T>& target, SAFEARRAY* source) {
  return fill<Element>(target, source, [&target](const Element* elements, std::size_t count) {
    target.assign(elements, elements + count);
  });
}

/// Elements that are made one by one, so that a failure leaves those before it.
template <class Element, class T, class Make>
int convert(std::vector<T>& target, SAFEARRAY* source, Make make) {
  return fill<Element>(target, source, [&](const Element* elements, std::size_t count) {
    target.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
      target.push_back(make(elements[i]));
  });
}

}  // namespace

int to_vector(std::vector<CString>& target, SAFEARRAY* source) {
  require(has_type(source, VT_BSTR));
  return convert<BSTR>(target, source, [](BSTR text) { return to_cstring(text); });
}

int to_vector(std::vector<_bstr_t>& target, SAFEARRAY* source) {
  require(has_type(source, VT_BSTR));
  return convert<BSTR>(target, source, [](BSTR text) { return _bstr_t(text, true); });
}

int to_vector(std::vector<long>& target, SAFEARRAY* source) {
  require(is_in_integer_set(integer_type(source)));
  return copy<LONG>(target, source);
}

int to_vector(std::vector<int>& target, SAFEARRAY* source) {
  require(is_in_integer_set(integer_type(source)));
  return copy<LONG>(target, source);
}

int to_vector(std::vector<short>& target, SAFEARRAY* source) {
  require(integer_type(source) == VT_I2);
  return copy<SHORT>(target, source);
}

int to_vector(std::vector<bool>& target, SAFEARRAY* source) {
  require(has_type(source, VT_BOOL));
  return convert<VARIANT_BOOL>(target, source, [](VARIANT_BOOL value) { return value != 0; });
}

int to_vector(std::vector<double>& target, SAFEARRAY* source) {
  require(has_type(source, VT_R8));
  return copy<double>(target, source);
}

int to_vector(std::vector<_variant_t>& target, SAFEARRAY* source) {
  require(has_type(source, VT_VARIANT));
  return convert<VARIANT>(target, source, [](const VARIANT& value) { return _variant_t(value); });
}

int to_vector(std::vector<unsigned char>& target, SAFEARRAY* source) {
  require(has_type(source, VT_UI1));
  return copy<BYTE>(target, source);
}

int to_vector(std::vector<_com_ptr_t<IDispatch>>& target, SAFEARRAY* source) {
  require(has_dispatch_feature(source));
  return convert<IDispatch*>(target, source, [](IDispatch* object) { return _com_ptr_t<IDispatch>(object); });
}

int to_vector(std::vector<_com_ptr_t<IUnknown>>& target, SAFEARRAY* source) {
  const bool dispatch = has_dispatch_feature(source);
  require(has_type(source, VT_UNKNOWN) || dispatch);
  const auto referenced = [](IUnknown* object) { return _com_ptr_t<IUnknown>(object); };
  return dispatch ? convert<IDispatch*>(target, source, referenced) : convert<IUnknown*>(target, source, referenced);
}
