// The look-ups around a profile, and the reading of its elements.
#include <algorithm>

#include "spcbase/companion/internal/engine_calls.h"
#include "spcbase/dataentry/internal/grid_shape.h"
#include "spcbase/dataentry/profile.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/schema/data_entry.h"
#include "spcbase/platform/database/db_exception.h"

namespace oldde {
namespace {

int first_label_id(CDatabase* db, const char* name) {
  CRSLabel labels(db);
  labels.m_strFilter.Format("NAME='%s' AND LTYPE='SAMPLE'", name);
  if (!open_read_only(labels) || labels.m_bEOF) return 0;
  return static_cast<int>(labels.labelid);
}

/// A row's texts may come filled up with blanks.
CString trimmed_right(CString text) {
  text.TrimRight();
  return text;
}

CProfileInfo element_of(const profile_lists::CRSLabelInProfile2& row) {
  CProfileInfo element;
  element.kind = kind_label;
  element.id = static_cast<int>(row.labelid);
  element.seqno = static_cast<int>(row.seqno);
  element.type = trimmed_right(row.ltype);
  element.name = trimmed_right(row.name);
  element.detail = trimmed_right(row.listtype);
  return element;
}

CProfileInfo element_of(const profile_lists::CRSCharInProfile2& row) {
  CProfileInfo element;
  element.kind = kind_characteristic;
  element.id = static_cast<int>(row.chrtid);
  element.seqno = static_cast<int>(row.seqno);
  element.type = trimmed_right(row.ctype);
  element.name = trimmed_right(row.name);
  element.detail = trimmed_right(row.descr);
  return element;
}

template <class Rows>
bool append_elements(CDatabase& db, long profile, CProfileInfoColl& elements) {
  CString statement;
  statement.Format(Rows::statement, profile);
  Rows rows(&db);
  if (!open_read_only(rows, statement)) return false;
  for (; !rows.m_bEOF; rows.MoveNext())
    elements.push_back(element_of(rows));
  rows.Close();
  return true;
}

/// Kept: the engine is asked about labels too; nothing reads their flag.
void mark_totals(const SPCLib::IQsmSPCPtr& engine, CProfileInfoColl& elements) {
  for (CProfileInfo& element : elements) {
    if (element.kind == kind_characteristic && is_variable(element)) continue;
    if (SPCLib::characteristic_flags(engine, element.id).total != 0) element.is_total = true;
  }
}

}  // namespace

int GetLabelIDFromName(CDatabase* db, const char* name) {
  try {
    return first_label_id(db, name);
  } catch (CDBException* e) {
    e->Delete();
  } catch (...) {
    // Whoever asks takes every failure for "there is no such label".
  }
  return 0;
}

bool get_auto_label(CDatabase* db, int profile, std::vector<int>& labels) {
  CRSLabelInProfile rows(db);
  rows.m_strFilter.Format("PROFID=%d AND ALFLG='YES'", profile);
  rows.m_strSort = "SEQNO";
  if (!open_read_only(rows)) return false;
  for (; !rows.m_bEOF; rows.MoveNext())
    labels.push_back(static_cast<int>(rows.labelid));
  return true;
}

bool get_char_in_prof(CDatabase* db, int characteristic, std::vector<int>& profiles) {
  CRSCharInProfile rows(db);
  rows.m_strFilter.Format("[CHRTID] = %d", characteristic);
  if (!open_read_only(rows)) return false;
  for (; !rows.m_bEOF; rows.MoveNext()) {
    const int profile = static_cast<int>(rows.profid);
    if (std::find(profiles.begin(), profiles.end(), profile) == profiles.end()) profiles.push_back(profile);
  }
  return true;
}

bool GetCharsAndLabelsArray(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, long profile, CProfileInfoColl& elements) {
  elements.clear();
  if (!append_elements<profile_lists::CRSLabelInProfile2>(db, profile, elements)) return false;
  if (!append_elements<profile_lists::CRSCharInProfile2>(db, profile, elements)) return false;
  std::stable_sort(elements.begin(), elements.end(),
                   [](const CProfileInfo& a, const CProfileInfo& b) { return a.seqno < b.seqno; });
  mark_totals(engine, elements);
  return true;
}

}  // namespace oldde
