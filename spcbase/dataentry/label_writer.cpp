// The writer of labels, and the learning of new values.
#include "spcbase/companion/internal/engine_calls.h"
#include "spcbase/dataentry/internal/cell_conversion.h"
#include "spcbase/dataentry/internal/cell_writers.h"
#include "spcbase/dataentry/internal/grid_shape.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/database/db_exception.h"

namespace oldde {
namespace {

constexpr std::string_view sample_label_filter = "SAMPID=%ld AND CHRTID IS NULL AND LABELID=%ld AND PIECENO IS NULL";
constexpr std::string_view piece_label_filter = "SAMPID=%ld AND CHRTID IS NULL AND LABELID=%ld AND PIECENO=%ld";

bool is_known_value(CDatabase& db, long label, const CString& text) {
  CRSSearchLabelValue search(&db);
  search.m_strFilter.Format(CRSSearchLabelValue::filter, static_cast<int>(label));
  search.name = text;
  if (!open_read_only(search)) raise_open_failed();
  return !search.m_bEOF;
}

/// Sends the new row; when nothing was sent, the recordset is closed first.
void add_row(CRecordset& rows) {
  if (rows.Update()) return;
  rows.Close();
  raise_update_failed();
}

void add_value(CDatabase& db, long value, const CString& text) {
  CRSValue rows(&db);
  rows.m_strFilter = "VALUEID=0";
  if (!open_for_update(rows)) raise_open_failed();
  rows.AddNew();
  rows.valueid = value;
  rows.name = text;
  add_row(rows);
}

void add_value_to_label(CDatabase& db, long label, long value) {
  CRSValueInLabel rows(&db);
  rows.m_strFilter = "LABELID=0 AND VALUEID=0";
  if (!open_for_update(rows)) raise_open_failed();
  rows.AddNew();
  rows.labelid = label;
  rows.valueid = value;
  add_row(rows);
}

}  // namespace

void learn_value(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, long label, CString text) {
  text.Trim();
  // Kept: a value that cannot be learnt is no failure, the cell that holds it stays.
  try {
    if (is_known_value(db, label, text)) return;
    const long value = SPCLib::next_running_number(engine, u"CSVLRN");
    add_value(db, value, text);
    add_value_to_label(db, label, value);
  } catch (CDBException* e) {
    e->Delete();
  } catch (long) {
    // A recordset that did not open or took nothing.
  }
}

void LabelWriter::write(const CProfileInfo& element, long piece, const VARIANT& cell) {
  const bool of_sample = is_sample_label(element);
  if (of_sample && piece > 1) return;
  if (!of_sample && !is_piece_label(element)) raise_unexpected();
  open(element, piece);
  if (is_empty_cell(cell)) {
    if (!rows_.m_bEOF) rows_.Delete();
    rows_.Close();
    return;
  }
  const CString text = is_datetime_label(element) ? datetime_text_of(cell) : text_of(cell);
  write_text(element, piece, text);
  rows_.Close();
  // An unchanged text is looked up too: its value may have left the list.
  if (is_dynamic_label(element)) learn_value(engine_, db_, element.id, text);
}

void LabelWriter::open(const CProfileInfo& element, long piece) {
  rows_.m_strFilter = is_sample_label(element) ? filter_.make(sample_label_filter, {sample_, element.id})
                                               : filter_.make(piece_label_filter, {sample_, element.id, piece});
  if (!open_for_update(rows_)) raise_open_failed();
}

void LabelWriter::write_text(const CProfileInfo& element, long piece, const CString& text) {
  if (!rows_.m_bEOF) {
    if (rows_.labvalue == text) return;
    rows_.Edit();
    rows_.labvalue = text;
    rows_.Update();
    return;
  }
  rows_.AddNew();
  rows_.sampid = sample_;
  rows_.SetFieldNull(&rows_.chrtid);
  rows_.labelid = element.id;
  if (is_sample_label(element))
    rows_.SetFieldNull(&rows_.pieceno);
  else
    rows_.pieceno = piece;
  rows_.labvalue = text;
  rows_.Update();
}

}  // namespace oldde
