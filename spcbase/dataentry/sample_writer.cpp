// Creating samples and writing grids.
#include <cmath>

#include "spcbase/companion/internal/engine_calls.h"
#include "spcbase/dataentry/internal/cell_writers.h"
#include "spcbase/dataentry/internal/grid_shape.h"
#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/foundation/schema/data_entry.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/time/internal/row_moment.h"
#include "spcbase/time/internal/system_time_converter.h"

namespace oldde {
namespace {

/// Numbers of announced samples, for the whole process.
/// Kept: not atomic; announcing from two threads at once may give one number twice.
int next_temp_id() {
  static int next = 1;
  return next++;
}

/// The local time of a new sample.
TIMESTAMP_STRUCT creation_time(double date) {
  CSystemTime moment;
  if (std::fpclassify(date) == FP_ZERO)
    GetLocalTime(&moment);
  else
    moment.FromOleDateTime(COleDateTime(date));
  TIMESTAMP_STRUCT timestamp{};
  moment.ToTimestamp(&timestamp);
  return timestamp;
}

/// A revision below 1 stands for the current profile and is stored as null.
template <class Rows>
void set_profile_revision(Rows& rows, long revision) {
  rows.profrev = revision;
  if (revision < 1) rows.SetFieldNull(&rows.profrev);
}

/// Sends what was begun; when nothing was sent, the recordset is closed first.
void send(CRecordset& rows) {
  if (rows.Update()) return;
  rows.Close();
  raise_update_failed();
}

void insert_sample(CDatabase* db, long sample, double date, long profile, long revision) {
  CRSSample rows(db);
  rows.m_strFilter = "SAMPID=0";
  if (!open_for_update(rows)) raise_open_failed();
  rows.AddNew();
  rows.sampid = sample;
  rows.profid = profile;
  set_profile_revision(rows, revision);
  rows.ctime = creation_time(date);
  send(rows);
  rows.Close();
}

void clear_sample(CDatabase& db, long sample) {
  for (const char* format : {"DELETE FROM CSVDAT WHERE SAMPID = %d", "DELETE FROM CSDEFDAT WHERE SAMPID = %d",
                             "DELETE FROM CSDEFTOT WHERE SAMPID = %d", "DELETE FROM CSLDAT WHERE SAMPID = %d"}) {
    char statement[64];
    std::snprintf(statement, sizeof statement, format, static_cast<int>(sample));
    db.ExecuteSQL(statement);
  }
}

void store_revision(CDatabase& db, long sample, long revision) {
  CRSSampleRev rows(&db);
  rows.m_strFilter.Format("SAMPID = %ld", sample);
  if (!open_for_update(rows)) raise_open_failed();
  if (rows.m_bEOF) raise_no_array_or_row();
  rows.Edit();
  set_profile_revision(rows, revision);
  rows.Update();
  rows.Close();
}

void save_auto_labels(CProfileCache& cache, long sample, const SPCLib::IQsmSPCPtr& engine) {
  const long result = cache.SaveAutoLabels(sample, engine);
  if (result < 0) raise_result(static_cast<HRESULT>(result));
}

/// Bounds of a dimension, from the array itself.
struct Bounds {
  LONG lower = 0;
  LONG upper = 0;
  long size() const { return long{upper} - lower + 1; }
};

Bounds bounds_of(SAFEARRAY* array, UINT dimension) {
  Bounds bounds;
  if (const HRESULT result = SafeArrayGetLBound(array, dimension, &bounds.lower); FAILED(result)) raise_result(result);
  if (const HRESULT result = SafeArrayGetUBound(array, dimension, &bounds.upper); FAILED(result)) raise_result(result);
  return bounds;
}

bool holds_variants(SAFEARRAY* array) {
  VARTYPE type = VT_EMPTY;
  return SafeArrayGetDim(array) == 2 && SUCCEEDED(SafeArrayGetVartype(array, &type)) && type == VT_VARIANT;
}

/// A caller's grid for reading. The elements lie with the column running fastest.
class Grid {
 public:
  Grid(SAFEARRAY* array, long columns, long rows) : access_(array), columns_(columns), rows_(rows) {
    if (FAILED(access_.result())) raise_result(access_.result());
  }
  const VARIANT& at(long column, long row) const { return access_.as<VARIANT>()[row * columns_ + column]; }
  long rows() const { return rows_; }

 private:
  safe_array_access access_;
  long columns_;
  long rows_;
};

/// Writes the cells of a grid, each by the writer of its column.
class GridWriter {
 public:
  GridWriter(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, long sample)
      : variables_(db, sample), defects_(db, sample), totals_(db, sample), labels_(engine, db, sample) {}

  void write(const CProfileInfoColl& elements, const Grid& grid) {
    long column = 0;
    for (const CProfileInfo& element : elements) {
      for (long row = 0; row < grid.rows(); ++row)
        write_cell(element, grid, column, row);
      column += columns_of(element);
    }
  }

 private:
  void write_cell(const CProfileInfo& element, const Grid& grid, long column, long row) {
    const long piece = row + 1;
    const VARIANT& cell = grid.at(column, row);
    if (element.kind == kind_label) return labels_.write(element, piece, cell);
    if (element.kind != kind_characteristic) raise_unexpected();
    if (is_variable(element)) return variables_.write(element, piece, cell);
    const VARIANT& second = grid.at(column + 1, row);
    if (is_attribute(element) && !element.is_total) return defects_.write(element, piece, cell, second);
    // Kept: a characteristic of a type that nobody knows is written as a total, and never read.
    totals_.write(element, piece, cell, second);
  }

  VariableWriter variables_;
  DefectWriter defects_;
  TotalWriter totals_;
  LabelWriter labels_;
};

/// What is known of a grid before anything is deleted for it.
Grid checked_grid(CDatabase& db, const CProfileCache& cache, long sample, SAFEARRAY** grid) {
  if (grid == nullptr || *grid == nullptr) raise_invalid_argument_code();
  const Bounds columns = bounds_of(*grid, 1);
  const Bounds rows = bounds_of(*grid, 2);
  const GridShape expected = shape_of(db, cache, sample);
  if (columns.lower != 0 || rows.lower != 0) raise_invalid_argument_code();
  if (!holds_variants(*grid)) raise_invalid_argument_code();
  if (columns.size() != expected.columns) raise_bad_value();
  return Grid(*grid, columns.size(), rows.size());
}

}  // namespace

long CSavedSampleInfo::WriteSample(const SPCLib::IQsmSPCPtr& engine, CDatabase* db, long /*unused*/,
                                   const CString& user) {
  if (sample_id == 0)
    sample_id = static_cast<int>(owner->new_sample(engine, db, date, profile, profile_rev, false, user));
  return sample_id;
}

long DEHelper::new_sample(const SPCLib::IQsmSPCPtr& engine, CDatabase* db, double date, long profile, long revision,
                          bool deferred, const CString& user) {
  if (deferred) {
    saved_sample.reset();
    auto announced = std::make_shared<CSavedSampleInfo>();
    announced->date = date;
    announced->profile = static_cast<int>(profile);
    announced->profile_rev = static_cast<int>(revision);
    announced->temp_id = next_temp_id();
    announced->owner = this;
    saved_sample = std::move(announced);
    return saved_sample->temp_id;
  }
  const long sample = SPCLib::next_running_number(engine, u"CSSPRN");
  insert_sample(db, sample, date, profile, revision);
  AddNewSampleApprovalRecord(db, sample, user);
  return sample;
}

bool DEHelper::set_data(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, long* sample, int profile, long revision,
                        int station, int user, const CString& user_name, SAFEARRAY** grid, double* date) {
  if (revision == 0) {
    // An unusable profile shows in the number of columns.
    static_cast<void>(load_from_db(engine, db, station, user, profile));
    profile_rev = 0;
  }
  const bool created = *sample == 0;
  if (created) {
    *sample = new_sample(engine, &db, 0.0, profile, revision, false, user_name);
    save_auto_labels(*this, *sample, engine);
  }
  const double moment = sample_date(db, *sample, profile);
  if (date != nullptr) *date = moment;

  const Grid cells = checked_grid(db, *this, *sample, grid);
  if (!created) {
    clear_sample(db, *sample);
    save_auto_labels(*this, *sample, engine);
  }
  GridWriter(engine, db, *sample).write(*this, cells);
  if (!created) store_revision(db, *sample, revision);
  return created;
}

void AddNewSampleApprovalRecord(CDatabase* db, long sample, const CString& user) {
  CRSSampleApprove rows(db);
  rows.m_strFilter.Format("[SAMPID] = %d", static_cast<int>(sample));
  if (!open_for_update(rows)) raise_open_failed();
  if (!rows.m_bEOF) return;
  rows.AddNew();
  rows.sampid = sample;
  rows.astat = 0;
  rows.cstat = 0;
  rows.flg1 = 0;
  rows.flg2 = 0;
  rows.muser = user;
  rows.mtime = to_utc_timestamp(COleDateTime::GetCurrentTime());
  send(rows);
  rows.Close();
}

}  // namespace oldde
