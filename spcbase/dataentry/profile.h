/// A profile in memory: which characteristics and labels a sample has, in which order, and the auto labels.
///
/// Part of data entry. A profile (`PROFID`) is the layout of a sample. Its elements, characteristics and labels
/// together, stand in one sequence; each takes one or two columns of a sample's grid (sample.h). The cache is read
/// once for each profile:
///
///     oldde::DEHelper helper;  // is an oldde::CProfileCache
///     long result = helper.load_from_db(engine, db, station, user, profile);
///
/// Fails: results and thrown `long`s are sign-extended HRESULTs of the application range; a failing engine call is a
///        `_com_error` with its own code, a null engine one with E_POINTER; a database error is a `CDBException*`.
/// Threads: a cache belongs to one thread at a time.
#pragma once

#include <list>
#include <utility>
#include <vector>

#include "spcbase/companion/engine.h"
#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

namespace oldde {

/// One element of a profile.
class SPCBASE_API CProfileInfo {
 public:
  int kind = 0;           ///< 0 is a characteristic, 1 a label
  int id = 0;             ///< `CHRTID` or `LABELID`
  int seqno = 0;          ///< its place in the profile
  CString type;           ///< "VARIABLE" or "ATTRIBUTE"; "SAMPLE" or "PIECE" for a label
  CString name;           ///< `NAME`
  CString detail;         ///< `DESCR` of a characteristic, `LISTTYPE` of a label ("DATETIME", "DYNAMIC", ...)
  bool is_total = false;  ///< the engine's word: an "ATTRIBUTE" characteristic with it keeps one total for each sample
};

/// The elements of a profile in their order.
class SPCBASE_API CProfileInfoColl : public std::vector<CProfileInfo> {};

/// The elements of one profile and what is derived from them.
class SPCBASE_API CProfileCache : public CProfileInfoColl {
 public:
  /// The profile that is loaded; 0 for none.
  int profile_id = 0;
  /// Identifiers in the order of the profile, joined by commas, ready to stand inside an SQL `IN (...)`.
  CString all_chars;
  CString variable_chars;  ///< of type "VARIABLE"
  CString defect_chars;    ///< of type "ATTRIBUTE" without `is_total`
  CString total_chars;     ///< of type "ATTRIBUTE" with `is_total`
  CString label_ids;
  int max_subgroup_size = 0;      ///< the largest fixed number of pieces in a sample
  bool has_dynamic_size = false;  ///< some characteristic has no fixed number of pieces
  /// Label and value, in the order in which they were added.
  std::list<std::pair<int, CString>> auto_labels;

  /// Loads a profile, unless it is loaded already and of fixed size: then nothing is asked, and the auto labels stay as
  /// they were even if the station or the user is another.
  /// Returns 0; 0x80041508 when the profile's tables cannot be opened; 0x8004150a for a profile that cannot be used
  ///         (the elements stay then, but `profile_id` is 0, so that the next call reads again).
  long load_from_db(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, int station, int user, int profile);

  /// The second half of a load: derives the other fields from the elements and fills the auto labels "STATION" and
  /// "OPERATOR" with the names of the station and the user.
  /// Returns 0, or 0x8004150a when there are no elements, or characteristics of which none has a size.
  long build_extra_info(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, int station, int user, int profile);

  /// Forgets everything.
  void ClearProfileArray();

  /// Sets the value of an auto label; a new one goes to the end. An empty value does nothing.
  void AddAutoLabel(long label, const CString& value);

  /// Stores every auto label of a sample through the engine and stops at the first that fails.
  /// Returns 0, or 0x8004150a for sample 0.
  long SaveAutoLabels(long sample, const SPCLib::IQsmSPCPtr& engine);
};

/// The label of a name, for labels of the whole sample only.
/// Kept:    labels of type "PIECE" are never found, and the name goes into the filter as it stands: one with an
///          apostrophe is not found.
/// Returns  0 when there is none, and for every failure of the database.
SPCBASE_API int GetLabelIDFromName(CDatabase* db, const char* name);

/// Appends the auto labels of a profile (those whose value the system supplies), in their order in the profile.
/// Returns false only when there is no open connection.
SPCBASE_API bool get_auto_label(CDatabase* db, int profile, std::vector<int>& labels);

/// Appends the profiles that hold a characteristic; one that the vector already holds is not repeated.
/// Kept:    the name says the reverse.
/// Returns false only when there is no open connection.
SPCBASE_API bool get_char_in_prof(CDatabase* db, int characteristic, std::vector<int>& profiles);

/// Reads the elements of a profile in their order, without the labels whose value the system supplies. Elements of
/// equal `SEQNO` have no defined order between them.
/// Returns false when there is no open connection; the elements are gone then.
SPCBASE_API bool GetCharsAndLabelsArray(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, long profile,
                                        CProfileInfoColl& elements);

}  // namespace oldde
