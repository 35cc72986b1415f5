/// A revision manager on each kind of server, and a look into its caches.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/revision/manager.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/scripted_session.h"
#include "spcbase/testkit/statement_log.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/support/row_texts.h"

namespace rev {

/// Sees what hosts do not.
struct RevisionManagerProbe {
  static LatestRevisionCacheHelper& latest(RevisionManager& manager) { return manager.latest_; }
  static auto& revisions(RevisionManager& manager) { return manager.revisions_; }
};

}  // namespace rev

namespace test_support {

/// A payload of these bytes; none for an empty text.
inline std::unique_ptr<CLongBinary> payload(const std::string& bytes) {
  auto block = std::make_unique<CLongBinary>();
  set_blob_data(*block, CString(bytes));
  return block;
}

/// The bytes of a record's payload; "none" when it has none.
inline std::string bytes_of(const rev::RevisionInfo& record) {
  if (record.data.long_bin.m_hData == nullptr) return "none";
  return std::string(get_blob_data(record.data.long_bin).view());
}

inline std::string version_of(const rev::RevisionBaseInfo& record) {
  return std::to_string(record.majorver) + "." + std::to_string(record.minorver);
}

/// "2024-03-15 08:30:00"
inline std::string text_of(const COleDateTime& moment) {
  return moment.GetStatus() == COleDateTime::null ? "null" : moment.Format("%Y-%m-%d %H:%M:%S").GetString();
}

/// The reason of a RevisionException; -1 when nothing was thrown, a failed test for everything else.
template <class Work>
int reason_of(Work&& work) {
  try {
    work();
  } catch (const rev::RevisionException& failure) {
    EXPECT_EQ(failure.error_code, result_code::failed);
    EXPECT_TRUE(failure.message.IsEmpty());
    return failure.reason;
  }
  return -1;
}

/// Objects are of type 3.
class RevisionTest : public DatabaseTest {
 protected:
  static constexpr int object_type = 3;
  static constexpr int anna = 7;
  static constexpr int bob = 8;

  int add(const std::string& bytes, bool major = false, int object = 5) {
    return add_by(manager, bytes, major, object);
  }
  int add_by(rev::RevisionManager& by, const std::string& bytes, bool major = false, int object = 5) {
    return by.add_new_revision(&db(), -1, object, *payload(bytes), anna, "anna", "why", major);
  }
  std::shared_ptr<rev::RevisionInfo> get(int revision, int object = 5) {
    return manager.get_revision_info(&db(), -1, object, revision);
  }
  std::pair<bool, int> approve(int revision, bool major = false, int level = 2, int type = 4) {
    return approve_by(manager, revision, major, level, type);
  }
  std::pair<bool, int> approve_by(rev::RevisionManager& by, int revision, bool major = false, int level = 2,
                                  int type = 4, const char* reason = "checked") {
    return by.approve(&db(), -1, 5, revision, level, type, bob, "bob", reason, major);
  }
  std::vector<rev::RevisionBaseInfo> list(int object = 5) {
    std::vector<rev::RevisionBaseInfo> all;
    EXPECT_EQ(manager.get_all_revision(&db(), object, all), 0);
    return all;
  }
  std::vector<std::string> rows(const std::string& statement) { return row_texts(database(), statement); }
  /// Number and version of each row of an object.
  std::vector<std::string> versions(int object = 5) {
    return rows("SELECT REVISION, MAJORVER, MINORVER FROM CSOBJREV WHERE OBJTYPE = 3 AND OBJID = " +
                std::to_string(object) + " ORDER BY REVISION");
  }
  /// A row without a payload.
  void insert_row(int object, int revision, const std::string& more_columns = "", const std::string& more_values = "") {
    execute("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, FLAG, CUSERID, CUSER, CREASON" +
            more_columns + ") VALUES (" + std::to_string(object) + ", 3, " + std::to_string(revision) +
            ", 2, 3, 0, 7, 'anna', 'why'" + more_values + ")");
  }

  /// The records that the manager keeps of an object.
  std::vector<std::shared_ptr<rev::RevisionInfo>> kept(int object = 5) {
    const auto& all = rev::RevisionManagerProbe::revisions(manager);
    if (!all || !all->contains(object)) return {};
    return all->at(object);
  }
  /// The latest number that the manager knows of an object; 0 when it knows none.
  int known_latest(int object = 5) {
    const auto& entries = rev::RevisionManagerProbe::latest(manager).entries;
    if (!entries || !entries->contains(object)) return 0;
    return entries->at(object).revision;
  }

  rev::RevisionManager manager{object_type};
};

}  // namespace test_support
