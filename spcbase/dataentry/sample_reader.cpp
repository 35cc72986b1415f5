// Reading a sample as a grid.
#include <algorithm>
#include <vector>

#include "spcbase/dataentry/internal/grid_shape.h"
#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/foundation/schema/data_entry.h"
#include "spcbase/platform/automation/bstr.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/datetime/ole_datetime.h"

namespace oldde {
namespace {

/// An element's place in the grid, found by its identifier.
struct Place {
  int id = 0;
  long column = 0;
  const CProfileInfo* element = nullptr;
};

/// The elements of one kind, by identifier. Of elements with equal identifiers the first of the profile is found.
class ColumnIndex {
 public:
  ColumnIndex(const CProfileInfoColl& elements, int kind) {
    long column = 0;
    places_.reserve(elements.size());
    for (const CProfileInfo& element : elements) {
      if (element.kind == kind) places_.push_back({element.id, column, &element});
      column += columns_of(element);
    }
    std::stable_sort(places_.begin(), places_.end(), [](const Place& a, const Place& b) { return a.id < b.id; });
  }

  /// Null when no element has the identifier.
  const Place* find(long id) const {
    const auto place =
        std::lower_bound(places_.begin(), places_.end(), id, [](const Place& p, long wanted) { return p.id < wanted; });
    return place != places_.end() && place->id == id ? &*place : nullptr;
  }

 private:
  std::vector<Place> places_;
};

/// A new grid while it is filled. The elements lie with the column running fastest; every one starts as VT_EMPTY.
class NewGrid {
 public:
  explicit NewGrid(const GridShape& shape) : columns_(shape.columns), rows_(shape.rows), array_(make(shape)) {
    if (!array_ || FAILED(SafeArrayAccessData(array_.get(), reinterpret_cast<void**>(&cells_))))
      raise_no_array_or_row();
  }
  NewGrid(const NewGrid&) = delete;
  NewGrid& operator=(const NewGrid&) = delete;
  ~NewGrid() { end_access(); }

  /// Whether a row exists; pieces beyond the grid are passed over by whoever reads them.
  bool has_row(long row) const { return row >= 0 && row < rows_; }

  void put(long column, long row, double value) {
    VARIANT& cell = cleared(column, row);
    cell.vt = VT_R8;
    cell.dblVal = value;
  }
  void put(long column, long row, long value) {
    VARIANT& cell = cleared(column, row);
    cell.vt = VT_I4;
    cell.lVal = static_cast<LONG>(value);
  }
  void put(long column, long row, const CString& value) {
    const BSTR text = alloc_sys_string(value);
    VARIANT& cell = cleared(column, row);
    cell.vt = VT_BSTR;
    cell.bstrVal = text;
  }
  void put(long column, long row, const COleDateTime& value) {
    VARIANT& cell = cleared(column, row);
    cell.vt = VT_DATE;
    cell.date = value.m_dt;
  }

  SAFEARRAY* release() {
    end_access();
    return array_.release();
  }

 private:
  static SAFEARRAY* make(const GridShape& shape) {
    // A piece number below 1 can leave fewer rows than none.
    if (shape.rows < 0) return nullptr;
    SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(shape.columns), 0}, {static_cast<ULONG>(shape.rows), 0}};
    return SafeArrayCreate(VT_VARIANT, 2, bounds);
  }

  /// A cell to write to; what an earlier row of the database put there goes.
  VARIANT& cleared(long column, long row) {
    VARIANT& cell = cells_[row * columns_ + column];
    if (cell.vt != VT_EMPTY) VariantClear(&cell);
    return cell;
  }

  void end_access() {
    if (cells_ != nullptr) SafeArrayUnaccessData(array_.get());
    cells_ = nullptr;
  }

  long columns_;
  long rows_;
  safe_array_holder array_;
  VARIANT* cells_ = nullptr;
};

/// Opens the rows of a sample whose identifier column holds one of a list.
void open_rows(CRecordset& rows, const char* id_column, long sample, const CString& ids) {
  rows.m_strFilter.Format("SAMPID = %ld AND %s IN (%s)", sample, id_column, ids.GetString());
  if (!open_read_only(rows)) raise_open_failed();
}

void read_variables(CDatabase& db, long sample, const CString& ids, const ColumnIndex& columns, NewGrid& grid) {
  CRSVariable rows(&db);
  open_rows(rows, "CHRTID", sample, ids);
  for (; !rows.m_bEOF; rows.MoveNext()) {
    const Place* place = columns.find(rows.chrtid);
    const long row = rows.pieceno - 1;
    if (place != nullptr && grid.has_row(row)) grid.put(place->column, row, rows.varvalue);
  }
}

void read_defects(CDatabase& db, long sample, const CString& ids, const ColumnIndex& columns, NewGrid& grid) {
  CRSDefectData rows(&db);
  open_rows(rows, "CHRTID", sample, ids);
  for (; !rows.m_bEOF; rows.MoveNext()) {
    const Place* place = columns.find(rows.chrtid);
    const long row = rows.pieceno - 1;
    if (place == nullptr || !grid.has_row(row)) continue;
    grid.put(place->column, row, rows.labvalue);
    grid.put(place->column + 1, row, rows.defcount);
  }
}

void read_totals(CDatabase& db, long sample, const CString& ids, const ColumnIndex& columns, NewGrid& grid) {
  CRSDEFTOT rows(&db);
  open_rows(rows, "CHRTID", sample, ids);
  for (; !rows.m_bEOF; rows.MoveNext()) {
    const Place* place = columns.find(rows.chrtid);
    if (place == nullptr || !grid.has_row(0)) continue;
    grid.put(place->column, 0, rows.nfail);
    if (!rows.IsFieldNull(&rows.ssize)) grid.put(place->column + 1, 0, rows.ssize);
  }
}

void put_label(const Place& place, long row, const CString& value, NewGrid& grid) {
  if (!is_datetime_label(*place.element)) return grid.put(place.column, row, value);
  COleDateTime moment;
  if (moment.ParseDateTime(value)) grid.put(place.column, row, moment);
}

void read_labels(CDatabase& db, long sample, const CString& ids, const ColumnIndex& columns, NewGrid& grid) {
  CRSLabelData rows(&db);
  open_rows(rows, "LABELID", sample, ids);
  for (; !rows.m_bEOF; rows.MoveNext()) {
    const Place* place = columns.find(rows.labelid);
    const long row = rows.IsFieldNull(&rows.pieceno) ? 0 : rows.pieceno - 1;
    if (place != nullptr && grid.has_row(row)) put_label(*place, row, rows.labvalue, grid);
  }
}

void read_cells(CDatabase& db, const CProfileCache& cache, long sample, NewGrid& grid) {
  const ColumnIndex characteristics(cache, kind_characteristic);
  if (!cache.variable_chars.IsEmpty()) read_variables(db, sample, cache.variable_chars, characteristics, grid);
  if (!cache.defect_chars.IsEmpty()) read_defects(db, sample, cache.defect_chars, characteristics, grid);
  if (!cache.total_chars.IsEmpty()) read_totals(db, sample, cache.total_chars, characteristics, grid);
  if (!cache.label_ids.IsEmpty()) read_labels(db, sample, cache.label_ids, ColumnIndex(cache, kind_label), grid);
}

}  // namespace

SAFEARRAY* DEHelper::get_data(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, int sample, int profile, long revision,
                              int station, int user, double* date) {
  if (revision == 0) {
    // A profile that cannot be loaded reads as a grid without columns.
    static_cast<void>(load_from_db(engine, db, station, user, profile));
    profile_rev = 0;
  }
  NewGrid grid(shape_of(db, *this, sample));
  const double moment = sample_date(db, sample, profile);
  if (date != nullptr) *date = moment;
  read_cells(db, *this, sample, grid);
  return grid.release();
}

}  // namespace oldde
