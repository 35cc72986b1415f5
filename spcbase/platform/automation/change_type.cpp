#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <string>

#include "spcbase/platform/automation/number_text.h"
#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/automation/variant.h"
#include "spcbase/platform/automation/variant_type.h"
#include "spcbase/platform/datetime/date_text.h"
#include "spcbase/platform/text/number_marks.h"
#include "spcbase/platform/text/unicode.h"
#include "spcbase/platform/text/utf8_walk.h"

namespace {

using automation_detail::text_number;
using automation_detail::whole_number;
using platform::NumberMarks;

// The last day of the year 9999 and the first of the year 100 bound what is a date.
constexpr double date_limit = 2958466;
constexpr double date_lower_limit = -657435;
constexpr LCID us_english = 0x409;
constexpr int r8_digits = 15;
constexpr int r4_digits = 7;

/// The marks of the process's locale. One without a group mark, as "C" is, has that of US English when it has its
/// decimal mark.
NumberMarks current_marks() noexcept {
  NumberMarks marks = platform::number_marks();
  if (marks.group == 0 && marks.decimal == platform::english_marks.decimal) marks.group = platform::english_marks.group;
  return marks;
}

std::u16string_view view(BSTR text) {
  return text == nullptr ? std::u16string_view() : std::u16string_view(text, SysStringLen(text));
}

whole_number whole_of(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return {value < 0, value < 0 ? 0 - bits : bits};
}

// The integer types, and the others that hold an integer as it is.
bool integer_value(const VARIANT& source, whole_number& value) {
  switch (source.vt) {
    case VT_EMPTY:
      value = {};
      return true;
    case VT_I1:
      value = whole_of(static_cast<signed char>(source.cVal));
      return true;
    case VT_I2:
    case VT_BOOL:
      value = whole_of(source.iVal);
      return true;
    case VT_I4:
    case VT_INT:
      value = whole_of(source.lVal);
      return true;
    case VT_I8:
      value = whole_of(source.llVal);
      return true;
    case VT_UI1:
      value = {false, source.bVal};
      return true;
    case VT_UI2:
      value = {false, source.uiVal};
      return true;
    case VT_UI4:
    case VT_UINT:
      value = {false, source.ulVal};
      return true;
    case VT_UI8:
      value = {false, source.ullVal};
      return true;
    default:
      return false;
  }
}

bool real_value(const VARIANT& source, double& value) {
  if (source.vt == VT_R4) value = source.fltVal;
  if (source.vt == VT_R8) value = source.dblVal;
  if (source.vt == VT_DATE) value = source.date;
  return source.vt == VT_R4 || source.vt == VT_R8 || source.vt == VT_DATE;
}

HRESULT to_whole(const VARIANT& source, const NumberMarks& marks, whole_number& value) {
  if (integer_value(source, value)) return S_OK;
  if (double real = 0; real_value(source, real)) return automation_detail::to_whole(real, value);
  if (source.vt == VT_CY) {
    value = automation_detail::currency_to_whole(source.cyVal.int64);
    return S_OK;
  }
  if (source.vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
  text_number number;
  const HRESULT result = automation_detail::read_number(view(source.bstrVal), marks, number);
  return FAILED(result) ? result : automation_detail::to_whole(number, 0, value);
}

HRESULT to_real(const VARIANT& source, const NumberMarks& marks, double& value) {
  if (real_value(source, value)) return S_OK;
  if (whole_number whole; integer_value(source, whole)) {
    const auto size = static_cast<double>(whole.magnitude);
    value = whole.negative ? -size : size;
    return S_OK;
  }
  if (source.vt == VT_CY) {
    value = static_cast<double>(source.cyVal.int64) / 10000.0;
    return S_OK;
  }
  if (source.vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
  text_number number;
  const HRESULT result = automation_detail::read_number(view(source.bstrVal), marks, number);
  return FAILED(result) ? result : automation_detail::to_double(number, value);
}

HRESULT to_signed(whole_number value, int bits, LONGLONG& result) {
  const std::uint64_t limit = (std::uint64_t{1} << (bits - 1)) - (value.negative ? 0U : 1U);
  if (value.magnitude > limit) return DISP_E_OVERFLOW;
  result = static_cast<LONGLONG>(value.negative ? 0 - value.magnitude : value.magnitude);
  return S_OK;
}

HRESULT to_unsigned(whole_number value, int bits, ULONGLONG& result) {
  const std::uint64_t limit = std::numeric_limits<std::uint64_t>::max() >> (64 - bits);
  if (value.magnitude > limit || (value.negative && value.magnitude != 0)) return DISP_E_OVERFLOW;
  result = value.magnitude;
  return S_OK;
}

HRESULT make_integer(const VARIANT& source, const NumberMarks& marks, VARTYPE type, VARIANT& result) {
  whole_number value;
  const HRESULT read = to_whole(source, marks, value);
  if (FAILED(read)) return read;
  const int bits = static_cast<int>(automation_detail::element_size(type)) * 8;
  const bool is_signed = type == VT_I1 || type == VT_I2 || type == VT_I4 || type == VT_I8 || type == VT_INT;
  // On this machine the smaller members lie in the low bytes of the larger ones.
  if (is_signed) return to_signed(value, bits, result.llVal);
  // True is all bits set in every unsigned type, too.
  if (source.vt == VT_BOOL && value.negative) {
    result.ullVal = (0 - value.magnitude) & (std::numeric_limits<std::uint64_t>::max() >> (64 - bits));
    return S_OK;
  }
  return to_unsigned(value, bits, result.ullVal);
}

HRESULT make_r4(const VARIANT& source, const NumberMarks& marks, VARIANT& result) {
  double value = 0;
  const HRESULT read = to_real(source, marks, value);
  if (FAILED(read)) return read;
  if (std::fabs(value) > FLT_MAX) return DISP_E_OVERFLOW;
  result.fltVal = static_cast<float>(value);
  return S_OK;
}

HRESULT scale_currency(const VARIANT& source, const NumberMarks& marks, whole_number& value) {
  if (source.vt == VT_BSTR) {
    text_number number;
    const HRESULT read = automation_detail::read_number(view(source.bstrVal), marks, number);
    return FAILED(read) ? read : automation_detail::to_whole(number, 4, value);
  }
  if (double real = 0; real_value(source, real)) return automation_detail::to_whole(real * 10000.0, value);
  if (!integer_value(source, value)) return DISP_E_TYPEMISMATCH;
  return __builtin_mul_overflow(value.magnitude, std::uint64_t{10000}, &value.magnitude) ? DISP_E_OVERFLOW : S_OK;
}

HRESULT make_currency(const VARIANT& source, const NumberMarks& marks, VARIANT& result) {
  whole_number value;
  const HRESULT scaled = scale_currency(source, marks, value);
  return FAILED(scaled) ? scaled : to_signed(value, 64, result.cyVal.int64);
}

HRESULT make_date(const VARIANT& source, const NumberMarks& marks, VARIANT& result) {
  if (source.vt == VT_BSTR) {
    return platform::date_from_text(platform::to_utf8(view(source.bstrVal)), us_english, 0, result.date);
  }
  double value = 0;
  const HRESULT read = to_real(source, marks, value);
  if (FAILED(read)) return read;
  if (!(value > date_lower_limit && value < date_limit)) return DISP_E_OVERFLOW;
  result.date = value;
  return S_OK;
}

bool same_word(std::u16string_view text, std::u16string_view lower_case_word) {
  if (text.size() != lower_case_word.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    const auto lower = static_cast<char16_t>(c >= u'A' && c <= u'Z' ? c + 32 : c);
    if (lower != lower_case_word[i]) return false;
  }
  return true;
}

HRESULT make_bool(const VARIANT& source, const NumberMarks& marks, VARIANT& result) {
  const std::u16string_view text = source.vt == VT_BSTR ? view(source.bstrVal) : std::u16string_view();
  bool truth = same_word(text, u"true") || same_word(text, u"#true#");
  if (!truth && !same_word(text, u"false") && !same_word(text, u"#false#")) {
    double value = 0;
    const HRESULT read = to_real(source, marks, value);
    if (FAILED(read)) return read;
    truth = value != 0;
  }
  result.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

std::string with_mark(std::string text, const NumberMarks& marks) {
  const std::size_t point = text.find('.');
  if (point == std::string::npos || marks.decimal == U'.') return text;
  std::string mark;
  platform::utf8_append(mark, marks.decimal);
  return text.replace(point, 1, mark);
}

HRESULT text_of(const VARIANT& source, const NumberMarks& marks, USHORT flags, std::string& text) {
  if (source.vt == VT_BOOL && (flags & VARIANT_ALPHABOOL) != 0) {
    text = source.boolVal != VARIANT_FALSE ? "True" : "False";
    return S_OK;
  }
  if (source.vt == VT_DATE) return platform::text_from_date(source.date, us_english, 0, text);
  if (source.vt == VT_EMPTY) return S_OK;
  whole_number whole;
  if (integer_value(source, whole)) {
    text = automation_detail::whole_text(whole);
  } else if (source.vt == VT_R4) {
    text = with_mark(automation_detail::real_text(source.fltVal, r4_digits), marks);
  } else if (source.vt == VT_R8) {
    text = with_mark(automation_detail::real_text(source.dblVal, r8_digits), marks);
  } else if (source.vt == VT_CY) {
    text = with_mark(automation_detail::currency_text(source.cyVal.int64), marks);
  } else {
    return DISP_E_TYPEMISMATCH;
  }
  return S_OK;
}

HRESULT make_text(const VARIANT& source, const NumberMarks& marks, USHORT flags, VARIANT& result) {
  std::string text;
  const HRESULT told = text_of(source, marks, flags, text);
  if (FAILED(told)) return told;
  const std::u16string wide = platform::to_utf16(text);
  result.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  return result.bstrVal == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT make_object(const VARIANT& source, VARTYPE type, VARIANT& result) {
  if (source.vt != VT_DISPATCH && source.vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
  IUnknown* const object = source.vt == VT_DISPATCH ? source.pdispVal : source.punkVal;
  if (object == nullptr) return S_OK;
  void* found = nullptr;
  if (FAILED(object->QueryInterface(type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown, &found))) {
    return DISP_E_TYPEMISMATCH;
  }
  if (type == VT_DISPATCH) result.pdispVal = static_cast<IDispatch*>(found);
  if (type == VT_UNKNOWN) result.punkVal = static_cast<IUnknown*>(found);
  return S_OK;
}

HRESULT make_value(const VARIANT& source, const NumberMarks& marks, USHORT flags, VARTYPE type, VARIANT& result) {
  switch (type) {
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_I8:
    case VT_INT:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UI8:
    case VT_UINT:
      return make_integer(source, marks, type, result);
    case VT_R4:
      return make_r4(source, marks, result);
    case VT_R8:
      return to_real(source, marks, result.dblVal);
    case VT_CY:
      return make_currency(source, marks, result);
    case VT_DATE:
      return make_date(source, marks, result);
    case VT_BOOL:
      return make_bool(source, marks, result);
    case VT_BSTR:
      return make_text(source, marks, flags, result);
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return make_object(source, type, result);
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

// Makes a new value of its own.
HRESULT change(const VARIANT& source, const NumberMarks& marks, USHORT flags, VARTYPE type, VARIANT& result) {
  VARIANT seen{};
  const HRESULT looked = automation_detail::look_through(source, seen);
  if (FAILED(looked)) return looked;
  if (seen.vt == type) return VariantCopy(&result, &seen);
  try {
    const HRESULT made = make_value(seen, marks, flags, type, result);
    if (SUCCEEDED(made)) result.vt = type;
    return made;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

HRESULT change_in_place(VARIANTARG* target, const VARIANTARG* source, const NumberMarks& marks, USHORT flags,
                        VARTYPE type) noexcept {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  if (!automation_detail::is_valid(source->vt) || !automation_detail::is_valid(type) || (type & VT_BYREF) != 0) {
    return DISP_E_BADVARTYPE;
  }
  VARIANT fresh{};
  HRESULT result = change(*source, marks, flags, type, fresh);
  if (FAILED(result)) return result;
  result = VariantClear(target);
  if (FAILED(result)) {
    VariantClear(&fresh);
    return result;
  }
  *target = fresh;
  return S_OK;
}

}  // namespace

HRESULT VariantChangeType(VARIANTARG* target, const VARIANTARG* source, USHORT flags, VARTYPE type) noexcept {
  return change_in_place(target, source, current_marks(), flags, type);
}

HRESULT VariantChangeTypeEx(VARIANTARG* target, const VARIANTARG* source, LCID, USHORT flags, VARTYPE type) noexcept {
  return change_in_place(target, source, platform::english_marks, flags, type);
}
