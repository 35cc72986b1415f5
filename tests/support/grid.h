/// Grids for data-entry tests: built cell by cell, and read as texts.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "spcbase/platform/automation/bstr.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/text/cstring.h"

namespace test_support {

/// A grid of columns by rows, empty at first.
class TestGrid {
 public:
  TestGrid(long columns, long rows, LONG first_column = 0, LONG first_row = 0) {
    SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(columns), first_column}, {static_cast<ULONG>(rows), first_row}};
    array_.reset(SafeArrayCreate(VT_VARIANT, 2, bounds));
  }

  TestGrid& put(LONG column, LONG row, const _variant_t& value) {
    const LONG index[2] = {column, row};
    _com_util::CheckError(SafeArrayPutElement(array_.get(), index, &value));
    return *this;
  }

  /// What `set_data` wants.
  SAFEARRAY** pointer() {
    raw_ = array_.get();
    return &raw_;
  }
  SAFEARRAY* get() const { return array_.get(); }

 private:
  safe_array_holder array_;
  SAFEARRAY* raw_ = nullptr;
};

/// A date as a cell.
inline _variant_t date_cell(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  return {COleDateTime(year, month, day, hour, minute, second).m_dt, VT_DATE};
}

inline _variant_t null_cell() {
  VARIANT null{};
  null.vt = VT_NULL;
  return {null};
}

/// A cell as "1.5", "#3" for a whole number, "'text'", "@2024-03-15 08:30:00" for a date, "." for an empty one.
inline std::string text_of_cell(const VARIANT& cell) {
  char text[64];
  switch (cell.vt) {
    case VT_EMPTY:
      return ".";
    case VT_R8:
      std::snprintf(text, sizeof text, "%.17g", cell.dblVal);
      return text;
    case VT_I4:
      return "#" + std::to_string(cell.lVal);
    case VT_BSTR:
      return std::string("'") + to_cstring(cell.bstrVal).GetString() + "'";
    case VT_DATE:
      return std::string("@") + COleDateTime(cell.date).Format("%Y-%m-%d %H:%M:%S").GetString();
    default:
      return "type " + std::to_string(cell.vt);
  }
}

/// A grid as one text for each row, its cells parted by " | ".
inline std::vector<std::string> texts_of(SAFEARRAY* grid) {
  LONG last_column = 0;
  LONG last_row = 0;
  _com_util::CheckError(SafeArrayGetUBound(grid, 1, &last_column));
  _com_util::CheckError(SafeArrayGetUBound(grid, 2, &last_row));
  std::vector<std::string> rows;
  for (LONG row = 0; row <= last_row; ++row) {
    std::string& line = rows.emplace_back();
    for (LONG column = 0; column <= last_column; ++column) {
      const LONG index[2] = {column, row};
      scoped_variant cell;
      _com_util::CheckError(SafeArrayGetElement(grid, index, cell.get()));
      line += (column == 0 ? "" : " | ") + text_of_cell(*cell);
    }
  }
  return rows;
}

}  // namespace test_support
