// The writers of numbers, defects and totals.
#include "spcbase/dataentry/internal/cell_writers.h"

#include "spcbase/dataentry/internal/cell_conversion.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/internal/raise.h"

namespace oldde {
namespace {

void open_with(CRecordset& rows, std::string_view filter) {
  rows.m_strFilter = filter;
  if (!open_for_update(rows)) raise_open_failed();
}

void delete_row(CRecordset& rows) {
  if (!rows.m_bEOF) rows.Delete();
}

}  // namespace

void VariableWriter::write(const CProfileInfo& element, long piece, const VARIANT& cell) {
  open_with(rows_, filter_.make("SAMPID=%ld AND CHRTID=%ld AND PIECENO=%ld", {sample_, element.id, piece}));
  if (is_empty_cell(cell))
    delete_row(rows_);
  else
    write_value(element, piece, double_of(cell));
  rows_.Close();
}

void VariableWriter::write_value(const CProfileInfo& element, long piece, double value) {
  if (rows_.m_bEOF) {
    rows_.AddNew();
    rows_.sampid = sample_;
    rows_.chrtid = element.id;
    rows_.pieceno = piece;
  } else {
    if (rows_.varvalue == value) return;
    rows_.Edit();
  }
  rows_.varvalue = value;
  rows_.Update();
}

void DefectWriter::write(const CProfileInfo& element, long piece, const VARIANT& defect, const VARIANT& count) {
  open_with(rows_, filter_.make("SAMPID=%ld AND CHRTID=%ld AND PIECENO=%ld", {sample_, element.id, piece}));
  CString text;
  if (!is_empty_cell(defect)) text = text_of(defect).Trim();
  if (text.IsEmpty())
    delete_row(rows_);
  else
    write_value(element, piece, text, is_empty_cell(count) ? 0 : number_of(count));
  rows_.Close();
}

void DefectWriter::write_value(const CProfileInfo& element, long piece, const CString& defect, long count) {
  if (rows_.m_bEOF) {
    rows_.AddNew();
    rows_.chrtid = element.id;
    rows_.sampid = sample_;
    rows_.pieceno = piece;
  } else {
    if (rows_.labvalue == defect && rows_.defcount == count) return;
    rows_.Edit();
  }
  rows_.labvalue = defect;
  rows_.defcount = count;
  rows_.Update();
}

void TotalWriter::write(const CProfileInfo& element, long piece, const VARIANT& failures, const VARIANT& size) {
  if (piece >= 2) return;
  open_with(rows_, filter_.make("SAMPID=%ld AND CHRTID=%ld", {sample_, element.id}));
  const long number = is_empty_cell(failures) ? 0 : number_of(failures);
  if (number < 1)
    delete_row(rows_);
  else
    write_value(element, number, size);
  rows_.Close();
}

/// Kept: an equal total is written again; there is no comparison here.
void TotalWriter::write_value(const CProfileInfo& element, long failures, const VARIANT& size) {
  const bool has_size = size.vt != VT_EMPTY && size.vt != VT_NULL;
  const double size_value = has_size ? double_of(size) : 0;
  if (rows_.m_bEOF) {
    rows_.AddNew();
    rows_.sampid = sample_;
    rows_.chrtid = element.id;
  } else {
    rows_.Edit();
  }
  rows_.nfail = failures;
  rows_.ssize = size_value;
  if (!has_size) rows_.SetFieldNull(&rows_.ssize);
  rows_.Update();
}

}  // namespace oldde
