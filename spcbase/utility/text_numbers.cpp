#include <cstdlib>
#include <string>

#include "spcbase/companion/table_helpers.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/platform/text/character.h"
#include "spcbase/platform/text/leading_int.h"
#include "spcbase/platform/text/number_marks.h"
#include "spcbase/platform/text/unicode.h"
#include "spcbase/utility/text.h"

namespace {

// More references than any program makes on purpose.
constexpr int longest_chain = 64;

/// The value at the end of a chain of references to VARIANTs.
const VARIANT& followed(const VARIANT* value) {
  for (int i = 0; value != nullptr && i < longest_chain; ++i) {
    if (value->vt != (VT_VARIANT | VT_BYREF)) return *value;
    value = value->pvarVal;
  }
  _com_issue_error(E_INVALIDARG);
}

_variant_t changed(const VARIANT& source, VARTYPE type) {
  _variant_t result;
  _com_util::CheckError(VariantChangeType(result.GetAddress(), &source, 0, type));
  return result;
}

std::string utf8_of(BSTR text) { return platform::to_utf8(std::u16string_view(text, SysStringLen(text))); }

CString eng_of_text(const std::string& text) {
  // A zero ends what the number readers see; such a text is no number as a whole.
  if (text.find('\0') != std::string::npos) return CString(text);
  CString result;
  double value = 0;
  if (int whole = 0; is_int_str(text.c_str(), &whole)) {
    result.Format("%d", whole);
  } else if (IsNumericString(text.c_str(), value)) {
    result = double_to_eng(value);
  } else {
    result = text;
  }
  return result;
}

CString eng_of_whole(const VARIANT& value) {
  CString result;
  result.Format("%d", changed(value, VT_I4).lVal);
  return result;
}

}  // namespace

bool IsNumericString(const char* text, double& value) {
  if (text == nullptr || *text == '\0') return false;
  const _variant_t source(text);
  scoped_variant number;
  if (FAILED(VariantChangeType(number.get(), &source, 0, VT_R8))) return false;
  value = number->dblVal;
  return true;
}

bool is_int_str(const char* text, int* value) {
  if (value != nullptr) *value = 0;
  if (text == nullptr || *text == '\0') return false;
  const std::string_view digits(text);
  for (const char c : digits) {
    if (!platform::is_digit_byte(c)) return false;
  }
  if (value != nullptr) *value = platform::leading_int(digits);
  return true;
}

CString double_to_eng(double value) {
  CString text;
  text.Format("%.20lf", value);
  text.Replace(platform::decimal_mark().c_str(), ".");
  text.TrimRight('0');
  if (text.ReverseFind('.') == text.GetLength() - 1) text += '0';
  return text;
}

double eng_to_double(const char* text) {
  if (text == nullptr) return 0;
  const std::string mark = platform::decimal_mark();
  if (mark == ".") return std::strtod(text, nullptr);
  CString local(text);
  local.Replace(".", mark.c_str());
  return std::strtod(local.GetString(), nullptr);
}

CString variant_to_eng(const VARIANT* value) {
  const VARIANT& source = followed(value);
  switch (source.vt) {
    case VT_R4:
    case VT_R8:
      return double_to_eng(changed(source, VT_R8).dblVal);
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_INT:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UINT:
      return eng_of_whole(source);
    case VT_EMPTY:
      return {};
    case VT_BSTR:
      return eng_of_text(utf8_of(source.bstrVal));
    default:
      return CString(utf8_of(changed(source, VT_BSTR).bstrVal));
  }
}

CString& eng_to_i18n(CString& text) { return text = TableHelpers::ParseToLocale(text); }

CString& i18n_to_eng(CString& text) { return text = TableHelpers::ParseTextBuffer(0, text); }
