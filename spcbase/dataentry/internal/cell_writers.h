/// The four writers of cells, each on one table with one recordset that all its cells share.
///
/// Part of data entry; not for hosts. They share one pattern: find the row by a filter, delete it when the cell is
/// empty, leave it when it holds the value already, else change it or add one. What the database refuses passes as
/// CDBException*; a recordset that does not open is 0x80041508.
#pragma once

#include <string_view>

#include "spcbase/companion/engine.h"
#include "spcbase/dataentry/internal/filter_text.h"
#include "spcbase/dataentry/profile.h"
#include "spcbase/foundation/schema/data_entry.h"
#include "spcbase/platform/automation/variant.h"

namespace oldde {

/// Numbers, on CSVDAT.
class VariableWriter {
 public:
  VariableWriter(CDatabase& db, long sample) : rows_(&db), sample_(sample) {}
  void write(const CProfileInfo& element, long piece, const VARIANT& cell);

 private:
  void write_value(const CProfileInfo& element, long piece, double value);

  CRSVariable rows_;
  FilterText filter_;
  long sample_;
};

/// Defects, on CSDEFDAT: a text and a count.
class DefectWriter {
 public:
  DefectWriter(CDatabase& db, long sample) : rows_(&db), sample_(sample) {}
  void write(const CProfileInfo& element, long piece, const VARIANT& defect, const VARIANT& count);

 private:
  void write_value(const CProfileInfo& element, long piece, const CString& defect, long count);

  CRSDefectData rows_;
  FilterText filter_;
  long sample_;
};

/// Totals, on CSDEFTOT: how many failed of how many. Only the first row of a grid holds one.
class TotalWriter {
 public:
  TotalWriter(CDatabase& db, long sample) : rows_(&db), sample_(sample) {}
  void write(const CProfileInfo& element, long piece, const VARIANT& failures, const VARIANT& size);

 private:
  void write_value(const CProfileInfo& element, long failures, const VARIANT& size);

  CRSDEFTOT rows_;
  FilterText filter_;
  long sample_;
};

/// Labels, on CSLDAT, of the sample or of a piece. Values of a "DYNAMIC" label join its list.
class LabelWriter {
 public:
  LabelWriter(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, long sample)
      : engine_(engine), db_(db), rows_(&db), sample_(sample) {}
  void write(const CProfileInfo& element, long piece, const VARIANT& cell);

 private:
  void open(const CProfileInfo& element, long piece);
  void write_text(const CProfileInfo& element, long piece, const CString& text);

  SPCLib::IQsmSPCPtr engine_;
  CDatabase& db_;
  CRSLabelData rows_;
  FilterText filter_;
  long sample_;
};

/// Adds a value to the list of a "DYNAMIC" label, unless it is there; surrounding blanks do not count. A database that
/// refuses leaves the list as it was, and nobody is told.
/// Fails: `_com_error` when the engine gives no number.
void learn_value(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, long label, CString text);

}  // namespace oldde
