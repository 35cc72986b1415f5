// Every call into the driver fails once: k = 1, 2, 3 ... until a run comes to its end without the k-th call.
//
// Plan, on SQLite and MariaDB
//   adding, approving in place and with a major version; each alone and in the caller's transaction
//   a failure is the driver's own; the caches are as they were; nothing is open, every statement is released
//   in the caller's transaction the rows are as they were, or the work is whole
//   alone, what stands after a failure is at most a broken revision
#include "tests/support/failure_sweep.h"
#include "spcbase/platform/database/connection.h"
#include "tests/revision/revision_fixture.h"

namespace {

using test_support::bytes_of;
using test_support::FailKthCall;
using test_support::payload;

class RevisionSweep : public test_support::RevisionTest {
 protected:
  static constexpr const char* no_waiting = "PRAGMA synchronous = OFF";
  using Work = int (*)(rev::RevisionManager& manager, CDatabaseEx& db);

  RevisionSweep() {
    if (kind() == test_support::ServerKind::sqlite) execute(no_waiting);
  }

  static int add_one(rev::RevisionManager& manager, CDatabaseEx& db) {
    return manager.add_new_revision(&db, -1, 5, *payload("new"), anna, "anna", "why", false);
  }
  static int approve_one(rev::RevisionManager& manager, CDatabaseEx& db) {
    return manager.approve(&db, -1, 5, 1, 2, 4, bob, "bob", "checked", false).second;
  }
  static int approve_major(rev::RevisionManager& manager, CDatabaseEx& db) {
    return manager.approve(&db, -1, 5, 1, 2, 4, bob, "bob", "checked", true).second;
  }

  std::string all_rows() {
    std::string all;
    for (const std::string& row :
         rows("SELECT O.OBJID, O.REVISION, O.MAJORVER, O.MINORVER, O.CUSER, O.CREASON, O.ALEVEL, "
              "O.AUSER, D.DATA FROM CSOBJREV O LEFT JOIN CSREVDAT D ON O.REVID = D.REVID ORDER "
              "BY O.OBJID, O.REVISION"))
      all += row + "\n";
    return all;
  }
  void begin_anew() {
    execute("DELETE FROM CSREVDAT");
    execute("DELETE FROM CSOBJREV");
    rev::RevisionManager other(object_type, -1);
    other.add_new_revision(&db(), -1, 5, *payload("old"), anna, "anna", "first", false);
  }
  /// What the caches hold, apart from when: records by number and bytes, and the latest number.
  static std::string caches(rev::RevisionManager& manager) {
    std::string all;
    if (const auto& revisions = rev::RevisionManagerProbe::revisions(manager)) {
      for (const auto& [object, records] : *revisions)
        for (const auto& record : records)
          all += std::to_string(object) + ":" + std::to_string(record->revision) + bytes_of(*record) + " ";
    }
    if (const auto& entries = rev::RevisionManagerProbe::latest(manager).entries) {
      for (const auto& [object, entry] : *entries)
        all += std::to_string(object) + "=" + std::to_string(entry.revision) + " ";
    }
    return all;
  }
  /// The payload of a revision as the database has it.
  std::string stored_bytes(int revision) {
    rev::RevisionManager fresh(object_type, -1);
    const auto record = fresh.get_revision_info(&db(), -1, 5, revision);
    return record ? bytes_of(*record) : "no row";
  }

  /// Fails each call of `work` once. The caches hold then what they held before: nothing, and when the writing of an
  /// approval fails what its two looks at the revision have read.
  int sweep(Work work, bool in_transaction) {
    const bool reads_first = work != &RevisionSweep::add_one;
    const std::vector<std::string> after_failure{"", reads_first ? "5:1old 5:1old 5=1 " : ""};
    int failures = 0;
    std::vector<int> open;
    for (std::size_t k = 1;; ++k) {
      SCOPED_TRACE("call " + std::to_string(k));
      begin_anew();
      const std::string before = all_rows();
      rev::RevisionManager swept(object_type);
      FailKthCall hook(k);
      const auto run = second_connection();
      if (kind() == test_support::ServerKind::sqlite) run->ExecuteSQL(no_waiting);
      run->connection()->session().gate().set_hook(&hook);
      bool work_done = false;
      const auto outcome = guarded([&] {
        if (!in_transaction) return work(swept, *run);
        AutoODBCTransaction transaction(*run, true);
        const int revision = work(swept, *run);
        work_done = true;
        transaction.commit();
        return revision;
      });
      SCOPED_TRACE(hook.failed_function());
      test_support::expect_nothing_held(*run);
      const bool disturbed = hook.fired();
      run->Close();
      open.push_back(test_support::calls_without_release(hook));
      if (outcome.ok()) {
        EXPECT_THAT(stored_bytes(outcome.value()), testing::AnyOf("new", "old"));
      } else {
        ++failures;
        // Where only the count of the rows cannot be read, the payload stands, and the second attempt finds it.
        if (hook.failed_function() == "SQLRowCount" && outcome.failure().failure_class == FailureClass::duplicate_key)
          EXPECT_EQ(outcome.failure().kind, FailureKind::database);
        else
          test_support::expect_staged_failure(outcome.failure());
        if (in_transaction) {
          EXPECT_EQ(all_rows(), before);
        } else {
          EXPECT_THAT(all_rows(),
                      testing::StartsWith(work == &RevisionSweep::approve_one ? "5|1|0|1|anna|first|" : before));
        }
        // Where only the end of the caller's transaction fails, the caches know nothing of it.
        if (!work_done) {
          EXPECT_THAT(after_failure, testing::Contains(caches(swept)));
        }
      }
      if (HasFailure() || !disturbed) break;
    }
    EXPECT_THAT(open, testing::Each(open.back())) << "every statement is released";
    return failures;
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, RevisionSweep, test_support::main_servers(), test_support::server_name);

TEST_P(RevisionSweep, adding_alone) { EXPECT_GT(sweep(&RevisionSweep::add_one, false), 0); }

TEST_P(RevisionSweep, adding_in_the_callers_transaction) { EXPECT_GT(sweep(&RevisionSweep::add_one, true), 0); }

TEST_P(RevisionSweep, approving_in_place_alone) { EXPECT_GT(sweep(&RevisionSweep::approve_one, false), 3); }

TEST_P(RevisionSweep, approving_in_place_in_the_callers_transaction) {
  EXPECT_GT(sweep(&RevisionSweep::approve_one, true), 3);
}

TEST_P(RevisionSweep, approving_with_a_major_version_alone) {
  EXPECT_GT(sweep(&RevisionSweep::approve_major, false), 3);
}

TEST_P(RevisionSweep, approving_with_a_major_version_in_the_callers_transaction) {
  EXPECT_GT(sweep(&RevisionSweep::approve_major, true), 3);
}

}  // namespace
