/// The revision manager: adding, reading, listing and approving the revisions of one type of object.
///
/// Part of revision control. Every saved state of an object is a revision: a row in CSOBJREV and its payload, a block
/// of bytes that belongs to the caller, in CSREVDAT. Numbers count on from 1; the version that people see goes 0.1,
/// 0.2, and with a major version 1.0, 1.1. Only the latest revision can be approved, once and for good.
///
///     rev::RevisionManager manager(3);
///     int number = manager.add_new_revision(&db, 0, object, payload, 7, "anna", "first draft", false);
///     auto latest = manager.get_revision_info(&db, 0, object, 0);
///     auto [approved, where] = manager.approve(&db, 0, object, number, 1, 0, 7, "anna", "checked", true);
///
/// A manager keeps what it read and wrote for as long as it lives, or for the lifetimes that it is given. It knows
/// nothing of other managers and processes: who needs the truth turns the caching off, or lists the revisions first,
/// which finds the latest number anew. A manager belongs to one thread at a time.
///
/// No operation opens a transaction. A host that wants a revision to be whole or absent opens an `AutoODBCTransaction`
/// around the call.
///
/// The maximum size of a blob in bytes, where one is asked for, matters on drivers that cannot stream: 0 gives their
/// refusal to the caller when reading, else it is the size that a buffer starts with.
#pragma once

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/revision/record.h"

namespace rev {

/// The numbers of the latest revisions, by object id. A part of the manager, which alone calls it: not exported.
class LatestRevisionCacheHelper {
 public:
  /// What is known of an object.
  struct Data {
    int revision = no_revision;  ///< the number of the latest revision
    COleDateTime stored_at;      ///< in UTC
  };

  int minutes = 0;                               ///< the lifetime of an entry; 0 or less: it never ends
  std::shared_ptr<std::map<int, Data>> entries;  ///< by object id; null until the first

  /// The number that is known and not too old, else `no_revision`. An entry that is too old is dropped.
  int find(int object_id);
  /// Notes the number, as of now.
  void set_latest(int object_id, int revision);
  /// Forgets the number.
  void drop_latest(int object_id);
};

/// The revisions of the objects of one type.
class RevisionManager {
 public:
  /// `objtype` is the host's number for the type of the objects. `cache_minutes` is how long a revision is kept: 0 for
  /// ever; below 0 nothing is kept at all. `latest_minutes` is how long the number of an object's latest revision is
  /// believed: 0 or less for ever.
  explicit RevisionManager(int objtype, int cache_minutes = 0, int latest_minutes = 0)
      : cache_minutes_(cache_minutes), objtype_(objtype) {
    latest_.minutes = latest_minutes;
  }

  /// Saves a state of an object as its next revision, and gives the number. The first of an object has version 0.1
  /// whatever `major` says. Of the reason the first 4000 bytes are stored, never half a character.
  /// When the database refuses, as it does when another writer took the same number first, the next number is tried, up
  /// to five times in all. An attempt whose payload failed leaves its row behind as a broken revision, unless the
  /// caller's transaction takes it away.
  /// Null:   null texts are stored as empty ones.
  /// Fails:  CDBException* of the fifth attempt; `DBException` when the connection is not open; RevisionException with
  ///         reason 4 when the new row cannot be read back. The caches are as they were then.
  /// Kept:   the record that enters the cache has id 0 and version 0.0, and the reason uncut.
  SPCBASE_API int add_new_revision(CDatabase* database, int maximum_blob_size, int object_id,
                                   const CLongBinary& payload, int user_id, const char* user, const char* reason,
                                   bool major);

  /// Reads a revision, 0 for the latest; null when there is none. The record is shared with the cache and must not be
  /// changed.
  /// Fails:  CDBException*; `DBException` when the connection is not open.
  /// Kept:   a record that comes out of the cache is put in once more.
  SPCBASE_API std::shared_ptr<RevisionInfo> get_revision_info(CDatabase* database, int maximum_blob_size, int object_id,
                                                              int revision);

  /// Adds all revisions of an object to the list, without payloads, and sorts the whole list, the highest number first.
  /// Returns 0.
  /// Fails:  as above; rows read so far are in the list then.
  SPCBASE_API int get_all_revision(CDatabase* database, int object_id, std::vector<RevisionBaseInfo>& revisions) const;

  /// Approves the latest revision, whose number must be given: in place, or with `major` as a copy with the next major
  /// version that is approved from birth, while the revision itself stays as it was for good. The number is compared
  /// with the latest that the caches know. Of the reason the first 4000 bytes are stored; `type` 0 is stored as null.
  /// Returns true and the number of the revision that is approved now; false and the given number when it has gone.
  /// Fails:  RevisionException, nothing changed, with reason 1 when another revision is the latest, or none, 2 when it
  ///         is approved already, 3 when it has no payload; with reason 4 when the copy's row cannot be read back;
  ///         CDBException*, for instance when someone else added a revision first; `DBException` when the connection is
  ///         not open. A copy whose payload failed stays, approved and broken, unless the caller's transaction takes it
  ///         away.
  /// Kept:   of a revision that the cache has from `add_new_revision` the version counts as 0.0. An approval in place
  ///         takes one of the cache's entries for the revision away; since it has looked at the revision twice itself,
  ///         another one stays, without the approval, unless the first had grown too old at the second look.
  SPCBASE_API std::pair<bool, int> approve(CDatabase* database, int maximum_blob_size, int object_id, int revision,
                                           int level, int type, int user_id, const char* user, const char* reason,
                                           bool major);

 private:
  friend struct RevisionManagerProbe;
  using Records = std::vector<std::shared_ptr<RevisionInfo>>;

  bool caching() const { return cache_minutes_ >= 0; }
  std::shared_ptr<RevisionInfo> cache_find(int object_id, int revision);
  void cache_add(int object_id, std::shared_ptr<RevisionInfo> record);
  void cache_drop(int object_id, int revision);
  std::pair<bool, int> approve_in_place(CDatabase* database, int object_id, int revision,
                                        const RevisionApprovalInfo& approval);
  std::pair<bool, int> approve_as_major(CDatabase* database, int maximum_blob_size, int object_id,
                                        const RevisionInfo& record, const RevisionApprovalInfo& approval);

  mutable LatestRevisionCacheHelper latest_;  // listing refreshes it
  int cache_minutes_;
  int objtype_;
  std::shared_ptr<std::map<int, Records>> revisions_;
};

}  // namespace rev
