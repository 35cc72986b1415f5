#include "spcbase/dataentry/internal/grid_shape.h"

#include <algorithm>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/schema/data_entry.h"
#include "spcbase/time/internal/system_time_converter.h"

namespace oldde {
namespace {

/// Opens an aggregate and takes its result; nothing and null count as 0.
template <class Aggregate>
long result_of(Aggregate& aggregate, const CString& filter) {
  set_rs_where_clause(aggregate, filter);
  if (!open_for_read(aggregate)) throw_can_not_open_rs_exception();
  const bool usable = !aggregate.m_bEOF && !aggregate.IsFieldNull(&aggregate.result);
  const long result = usable ? aggregate.result : 0;
  aggregate.Close();
  return result;
}

CString filter_for(const char* format, long sample) {
  CString filter;
  filter.Format(format, static_cast<int>(sample));
  return filter;
}

long highest_measured_piece(CDatabase& db, long sample) {
  RSMax highest(&db, "CSVDAT", "PIECENO");
  return result_of(highest, filter_for("SAMPID = %d", sample));
}

long highest_labelled_piece(CDatabase& db, long sample) {
  RSMax highest(&db, "CSLDAT", "PIECENO");
  return result_of(highest, filter_for("SAMPID = %d AND LABELID IS NOT NULL AND PIECENO IS NOT NULL", sample));
}

long count_of_sample_labels(CDatabase& db, long sample) {
  RSCount count(&db, "CSLDAT", nullptr);
  return result_of(count, filter_for("SAMPID = %d AND LABELID IS NOT NULL AND PIECENO IS NULL", sample));
}

/// Kept: defects are not asked for, so a piece with a defect alone makes no row.
long rows_with_characteristics(CDatabase& db, const CProfileCache& cache, long sample) {
  long rows = std::max(highest_measured_piece(db, sample), highest_labelled_piece(db, sample));
  // Kept: the number of labels of the sample stands for a number of rows.
  if (rows == 0) rows = count_of_sample_labels(db, sample);
  if (!cache.has_dynamic_size) rows = std::max<long>(rows, cache.max_subgroup_size);
  return rows;
}

long rows_of_labels_only(CDatabase& db, const CProfileCache& cache, long sample) {
  if (std::none_of(cache.begin(), cache.end(), is_piece_label)) return 1;
  const long rows = highest_labelled_piece(db, sample);
  if (rows != 0) return rows;
  return std::any_of(cache.begin(), cache.end(), is_sample_label) ? 1 : 0;
}

long rows_of(CDatabase& db, const CProfileCache& cache, long sample) {
  if (cache.empty()) return 0;
  const bool labels_only =
      std::none_of(cache.begin(), cache.end(), [](const CProfileInfo& e) { return e.kind == kind_characteristic; });
  return labels_only ? rows_of_labels_only(db, cache, sample) : rows_with_characteristics(db, cache, sample);
}

}  // namespace

bool is_variable(const CProfileInfo& element) { return element.type == "VARIABLE"; }
bool is_attribute(const CProfileInfo& element) { return element.type == "ATTRIBUTE"; }

bool is_sample_label(const CProfileInfo& element) {
  return element.kind == kind_label && element.type.CompareNoCase("SAMPLE") == 0;
}
bool is_piece_label(const CProfileInfo& element) {
  return element.kind == kind_label && element.type.CompareNoCase("PIECE") == 0;
}
bool is_datetime_label(const CProfileInfo& element) { return element.detail.CompareNoCase("DATETIME") == 0; }
bool is_dynamic_label(const CProfileInfo& element) { return element.detail.CompareNoCase("DYNAMIC") == 0; }

long columns_of(const CProfileInfo& element) {
  const bool single = element.kind == kind_label || (element.kind == kind_characteristic && is_variable(element));
  return single ? 1 : 2;
}

GridShape shape_of(CDatabase& db, const CProfileCache& cache, long sample) {
  GridShape shape;
  for (const CProfileInfo& element : cache)
    shape.columns += columns_of(element);
  shape.rows = rows_of(db, cache, sample);
  return shape;
}

double sample_date(CDatabase& db, long sample, long profile) {
  CRSSample row(&db);
  row.m_strFilter.Format("(SAMPID = %ld) AND (PROFID = %ld)", sample, profile);
  if (!open_read_only(row)) raise_open_failed();
  if (row.m_bEOF) raise_no_array_or_row();
  CSystemTime moment;
  moment.FromTimestamp(&row.ctime);
  COleDateTime date;
  moment.ToOleDateTime(&date);
  row.Close();
  return date.m_dt;
}

}  // namespace oldde
