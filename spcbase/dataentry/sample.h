/// Samples: from a grid of automation values to rows, and back.
///
/// Part of data entry. The grid is a SAFEARRAY of VARIANT with two dimensions, both from 0: the first is the column,
/// the second the row; row r holds piece r + 1. The columns follow the elements of the profile:
///
/// | element                                   | columns | cell                                     | rows    |
/// |-------------------------------------------|---------|------------------------------------------|---------|
/// | characteristic "VARIABLE"                 | 1       | VT_R8                                    | pieces  |
/// | characteristic "ATTRIBUTE"                | 2       | VT_BSTR the defect, VT_I4 its count      | pieces  |
/// | characteristic "ATTRIBUTE" with a total   | 2       | VT_I4 failures, VT_R8 size or VT_EMPTY   | first   |
/// | characteristic of any other type          | 2       | nothing                                  |         |
/// | label "SAMPLE"                            | 1       | VT_BSTR, or VT_DATE for "DATETIME"       | first   |
/// | label "PIECE"                             | 1       | the same                                 | pieces  |
///
/// Every other cell is VT_EMPTY. Example, two pieces of a profile with one "VARIABLE" characteristic:
///
///     long sample = 0;
///     double date = 0;
///     oldde::DEHelper helper;
///     helper.set_data(engine, db, &sample, profile, 0, station, user, "anna", &grid, &date);
///     SAFEARRAY* again = helper.get_data(engine, db, sample, profile, 0, station, user, &date);
///
/// Nothing here opens a transaction: after a failure, what was written before it stays. A host that wants a sample to
/// be written whole or not at all wraps the call in an `AutoODBCTransaction`.
///
/// Fails: `long`, a sign-extended HRESULT: 0x80041508 a recordset did not open; 0x80041507 nothing was written;
///        0x8004150a the grid has the wrong number of columns, or a cell cannot be converted; 0x8004150d the sample is
///        not one of this profile, or the array cannot be made; DISP_E_BADINDEX a grid of one dimension; E_INVALIDARG
///        no grid or another unusable one; E_UNEXPECTED an element or label of an unknown kind. `_com_error` from the
///        engine, `CDBException*` from the database, `DBException` when the grid's size cannot be asked.
/// Threads: a helper belongs to one thread at a time. The numbers of announced samples come from one counter of the
///          process, which is not atomic.
#pragma once

#include <memory>

#include "spcbase/companion/engine.h"
#include "spcbase/dataentry/profile.h"
#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

namespace oldde {

class DEHelper;

/// A sample that is announced but not yet written.
class SPCBASE_API CSavedSampleInfo {
 public:
  double date = 0.0;          ///< day number of the sample's local time; 0.0 for the present
  int profile = 0;            ///< its profile
  int profile_rev = 0;        ///< the profile's revision
  int temp_id = 0;            ///< the number that the caller holds until the sample is written
  int sample_id = 0;          ///< 0 until it is written
  DEHelper* owner = nullptr;  ///< who made it; not owned

  /// Creates the sample on `owner`, unless it was written before. The `long` is not used.
  /// Returns the sample.
  long WriteSample(const SPCLib::IQsmSPCPtr& engine, CDatabase* db, long unused, const CString& user);
};

/// Reads and writes samples on a profile that it keeps.
class SPCBASE_API DEHelper : public CProfileCache {
 public:
  /// The profile revision that the cache holds; 0 for the current one.
  int profile_rev = 0;
  /// The sample that is announced, or empty.
  std::shared_ptr<CSavedSampleInfo> saved_sample;

  /// Creates a sample and its approval record, or (deferred) only announces one.
  /// Units:   `date` is a local day number, as in COleDateTime; 0.0 is now.
  /// Returns the sample; when deferred, a number of this process that is no sample yet.
  long new_sample(const SPCLib::IQsmSPCPtr& engine, CDatabase* db, double date, long profile, long revision,
                  bool deferred, const CString& user);

  /// Writes a grid as the data of a sample. Sample 0 creates one, with its auto labels, before the grid is looked at;
  /// every other number has its data replaced. The number of rows is the grid's own.
  /// `sample` in: 0 or the sample; out: the sample. `date` receives its local time to the second (null: not wanted).
  /// With revision 0 the current profile is loaded; with another the cache is used as it stands.
  /// Null:    `sample` must not be; a null grid is a failure, after a new sample was created.
  /// Returns true when the sample was created.
  bool set_data(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, long* sample, int profile, long revision, int station,
                int user, const CString& user_name, SAFEARRAY** grid, double* date);

  /// Reads a sample's data as a grid. Its rows: the highest piece that has a number or a label, at least the profile's
  /// fixed size.
  /// Kept:    defects do not count for the rows; without any piece, the number of sample labels stands for the rows.
  /// Owns:    the caller, with `SafeArrayDestroy`. On failure there is no array.
  SAFEARRAY* get_data(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, int sample, int profile, long revision,
                      int station, int user, double* date);
};

/// Gives a sample its approval record, if it has none: everything open, last changed by `user` now (UTC).
SPCBASE_API void AddNewSampleApprovalRecord(CDatabase* db, long sample, const CString& user);

}  // namespace oldde
