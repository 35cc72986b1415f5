#include "spcbase/platform/automation/variant_t.h"

#include <limits>
#include <utility>

#include "spcbase/platform/automation/com_error.h"

static_assert(sizeof(_variant_t) == sizeof(VARIANT));

namespace {

// A value of another type, owned by the caller.
VARIANT changed(const VARIANT& source, VARTYPE type) {
  VARIANT result{};
  _com_util::CheckError(VariantChangeType(&result, &source, 0, type));
  return result;
}

VARIANT of_type(VARTYPE type) noexcept {
  VARIANT result{};
  result.vt = type;
  return result;
}

VARIANT from_long(LONG value, VARTYPE type) {
  if (type != VT_I4 && type != VT_ERROR && type != VT_BOOL) _com_issue_error(E_INVALIDARG);
  VARIANT result = of_type(type);
  if (type == VT_BOOL) {
    result.boolVal = value != 0 ? VARIANT_TRUE : VARIANT_FALSE;
  } else {
    result.lVal = value;
  }
  return result;
}

template <class Narrow, class Wide>
Narrow narrowed(Wide value) {
  if (!std::in_range<Narrow>(value)) _com_issue_error(DISP_E_OVERFLOW);
  return static_cast<Narrow>(value);
}

}  // namespace

_variant_t::_variant_t() noexcept : tagVARIANT{} {}
_variant_t::_variant_t(const VARIANT& source) : tagVARIANT{} { _com_util::CheckError(VariantCopy(this, &source)); }
_variant_t::_variant_t(const VARIANT* source) : tagVARIANT{} { _com_util::CheckError(VariantCopy(this, source)); }
_variant_t::_variant_t(const _variant_t& source) : _variant_t(static_cast<const VARIANT&>(source)) {}
_variant_t::_variant_t(_variant_t&& source) noexcept : tagVARIANT(source.Detach()) {}

_variant_t::_variant_t(VARIANT& source, bool copy) : tagVARIANT{} {
  if (copy) {
    _com_util::CheckError(VariantCopy(this, &source));
  } else {
    GetVARIANT() = std::exchange(source, VARIANT{});
  }
}

_variant_t::_variant_t(short value, VARTYPE type) : tagVARIANT(of_type(type)) {
  if (type != VT_I2 && type != VT_BOOL) _com_issue_error(E_INVALIDARG);
  iVal = value;
  if (type == VT_BOOL) boolVal = value != 0 ? VARIANT_TRUE : VARIANT_FALSE;
}

_variant_t::_variant_t(int value, VARTYPE type) : tagVARIANT(from_long(value, type)) {}
_variant_t::_variant_t(long value, VARTYPE type) : tagVARIANT(from_long(narrowed<LONG>(value), type)) {}
_variant_t::_variant_t(float value) noexcept : tagVARIANT(of_type(VT_R4)) { fltVal = value; }

_variant_t::_variant_t(double value, VARTYPE type) : tagVARIANT(of_type(type)) {
  if (type != VT_R8 && type != VT_DATE) _com_issue_error(E_INVALIDARG);
  dblVal = value;
}

_variant_t::_variant_t(const CY& value) noexcept : tagVARIANT(of_type(VT_CY)) { cyVal = value; }
_variant_t::_variant_t(const _bstr_t& value) : tagVARIANT(of_type(VT_BSTR)) { bstrVal = value.copy(); }
_variant_t::_variant_t(const char16_t* value) : _variant_t(_bstr_t(value)) {}
_variant_t::_variant_t(const char* value) : _variant_t(_bstr_t(value)) {}

_variant_t::_variant_t(IDispatch* value, bool add_reference) noexcept : tagVARIANT(of_type(VT_DISPATCH)) {
  pdispVal = value;
  if (value != nullptr && add_reference) value->AddRef();
}

_variant_t::_variant_t(IUnknown* value, bool add_reference) noexcept : tagVARIANT(of_type(VT_UNKNOWN)) {
  punkVal = value;
  if (value != nullptr && add_reference) value->AddRef();
}

_variant_t::_variant_t(bool value) noexcept : tagVARIANT(of_type(VT_BOOL)) {
  boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}
_variant_t::_variant_t(BYTE value) noexcept : tagVARIANT(of_type(VT_UI1)) { bVal = value; }
_variant_t::_variant_t(char value) noexcept : tagVARIANT(of_type(VT_I1)) { cVal = value; }
_variant_t::_variant_t(unsigned short value) noexcept : tagVARIANT(of_type(VT_UI2)) { uiVal = value; }
_variant_t::_variant_t(unsigned int value) noexcept : tagVARIANT(of_type(VT_UI4)) { ulVal = value; }
_variant_t::_variant_t(unsigned long value) : _variant_t(narrowed<ULONG>(value)) {}
_variant_t::_variant_t(long long value) noexcept : tagVARIANT(of_type(VT_I8)) { llVal = value; }
_variant_t::_variant_t(unsigned long long value) noexcept : tagVARIANT(of_type(VT_UI8)) { ullVal = value; }

_variant_t::~_variant_t() { VariantClear(this); }

_variant_t& _variant_t::operator=(const VARIANT& source) {
  _com_util::CheckError(VariantCopy(this, &source));
  return *this;
}

_variant_t& _variant_t::operator=(const VARIANT* source) {
  _com_util::CheckError(VariantCopy(this, source));
  return *this;
}

_variant_t& _variant_t::operator=(const _variant_t& source) { return *this = static_cast<const VARIANT&>(source); }

_variant_t& _variant_t::operator=(_variant_t&& source) noexcept {
  std::swap(GetVARIANT(), source.GetVARIANT());
  return *this;
}

_variant_t::operator short() const { return changed(*this, VT_I2).iVal; }
_variant_t::operator int() const { return changed(*this, VT_I4).lVal; }
_variant_t::operator long() const { return changed(*this, VT_I4).lVal; }
_variant_t::operator float() const { return changed(*this, VT_R4).fltVal; }
_variant_t::operator double() const { return changed(*this, VT_R8).dblVal; }
_variant_t::operator CY() const { return changed(*this, VT_CY).cyVal; }
_variant_t::operator _bstr_t() const { return _bstr_t(changed(*this, VT_BSTR).bstrVal, false); }
_variant_t::operator bool() const { return changed(*this, VT_BOOL).boolVal != VARIANT_FALSE; }
_variant_t::operator BYTE() const { return changed(*this, VT_UI1).bVal; }
_variant_t::operator char() const { return changed(*this, VT_I1).cVal; }
_variant_t::operator unsigned short() const { return changed(*this, VT_UI2).uiVal; }
_variant_t::operator unsigned int() const { return changed(*this, VT_UI4).ulVal; }
_variant_t::operator unsigned long() const { return changed(*this, VT_UI4).ulVal; }
_variant_t::operator long long() const { return changed(*this, VT_I8).llVal; }
_variant_t::operator unsigned long long() const { return changed(*this, VT_UI8).ullVal; }
_variant_t::operator IDispatch*() const { return changed(*this, VT_DISPATCH).pdispVal; }
_variant_t::operator IUnknown*() const { return changed(*this, VT_UNKNOWN).punkVal; }

bool _variant_t::operator==(const VARIANT& other) const noexcept {
  if (vt != other.vt) return false;
  switch (vt) {
    case VT_EMPTY:
    case VT_NULL:
      return true;
    case VT_R4:
      return fltVal == other.fltVal;
    case VT_R8:
    case VT_DATE:
      return dblVal == other.dblVal;
    case VT_BSTR: {
      const std::u16string_view left(bstrVal == nullptr ? u"" : bstrVal, SysStringLen(bstrVal));
      const std::u16string_view right(other.bstrVal == nullptr ? u"" : other.bstrVal, SysStringLen(other.bstrVal));
      return left == right;
    }
    case VT_I1:
    case VT_UI1:
      return bVal == other.bVal;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return uiVal == other.uiVal;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_ERROR:
      return ulVal == other.ulVal;
    default:
      return ullVal == other.ullVal;
  }
}

void _variant_t::Clear() { _com_util::CheckError(VariantClear(this)); }

void _variant_t::Attach(VARIANT& source) {
  Clear();
  GetVARIANT() = std::exchange(source, VARIANT{});
}

VARIANT _variant_t::Detach() noexcept { return std::exchange(GetVARIANT(), VARIANT{}); }

VARIANT* _variant_t::GetAddress() {
  Clear();
  return this;
}

void _variant_t::ChangeType(VARTYPE type, const VARIANT* source) {
  _com_util::CheckError(VariantChangeType(this, source == nullptr ? this : source, 0, type));
}

void _variant_t::SetString(const char* text) { *this = _variant_t(text); }
