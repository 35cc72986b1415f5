#include "spcbase/dataentry/internal/cell_conversion.h"

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/automation/bstr.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/exceptions.h"

namespace oldde {
namespace {

/// The one place that turns every failure of a conversion into the code that callers know.
template <class Conversion>
auto converted(Conversion&& conversion) {
  try {
    return conversion();
  } catch (CException* e) {
    e->Delete();
  } catch (...) {
    // Whatever it was, the host is told that the cell is unusable.
  }
  raise_bad_value();
}

void change(VARIANT* target, const VARIANT& cell, VARTYPE type) {
  _com_util::CheckError(VariantChangeType(target, &cell, 0, type));
}

CString formatted(DATE date) {
  const COleDateTime moment(date);
  SYSTEMTIME fields{};
  // A number that is no date would be written as a sentence, which nobody could read back.
  if (!moment.GetAsSystemTime(fields)) _com_issue_error(DISP_E_TYPEMISMATCH);
  return moment.Format("%Y-%m-%d %H:%M:%S");
}

}  // namespace

double double_of(const VARIANT& cell) {
  if (cell.vt == VT_R8) return cell.dblVal;
  return converted([&] {
    VARIANT number{};
    change(&number, cell, VT_R8);
    return number.dblVal;
  });
}

long number_of(const VARIANT& cell) {
  if (cell.vt == VT_I4) return cell.lVal;
  return converted([&]() -> long {
    VARIANT number{};
    change(&number, cell, VT_I4);
    return number.lVal;
  });
}

CString text_of(const VARIANT& cell) {
  return converted([&] {
    if (cell.vt == VT_BSTR) return to_cstring(cell.bstrVal);
    scoped_variant text;
    change(text.get(), cell, VT_BSTR);
    return to_cstring(text->bstrVal);
  });
}

CString datetime_text_of(const VARIANT& cell) {
  if (cell.vt != VT_DATE) return text_of(cell);
  return converted([&] { return formatted(cell.date); });
}

}  // namespace oldde
