// Plan, on SQLite and MariaDB
//   in place: what the row holds, the result, the cache afterwards, level and type 0, reasons that are cut
//     -> ApprovalInPlace.*
//   with a major version: the new row, the old one, the record in the cache and what it keeps, stale versions
//     -> ApprovalAsMajor.*
//   refusals: each condition with its reason, and nothing changed -> ApprovalRefused.*
//   two approvers: one wins, the other gets its failure, at every moment -> TwoApprovers.*
//   the life of a revision: a new one after an approval, a superseded one -> ApprovalRefused.*, ApprovalInPlace.*
#include "tests/revision/revision_fixture.h"

namespace {

using test_support::bytes_of;
using test_support::error;
using test_support::HeldClock;
using test_support::payload;
using test_support::reason_of;
using test_support::ServerKind;
using test_support::text_of;
using test_support::utc;
using test_support::version_of;
using test_support::ZoneGuard;
using Result = std::pair<bool, int>;
using Texts = std::vector<std::string>;

constexpr const char* approvals =
    "SELECT REVISION, ALEVEL, ATYPE, AUSERID, AUSER, AREASON FROM CSOBJREV ORDER BY REVISION";

class Approval : public test_support::RevisionTest {
 protected:
  /// A revision that the manager has not seen yet.
  void add_elsewhere(const std::string& bytes, bool major = false) {
    rev::RevisionManager other(object_type, -1);
    add_by(other, bytes, major);
  }
};

class ApprovalInPlace : public Approval {};
class ApprovalAsMajor : public Approval {};
class ApprovalRefused : public Approval {};
class TwoApprovers : public Approval {};
INSTANTIATE_TEST_SUITE_P(Servers, ApprovalInPlace, test_support::main_servers(), test_support::server_name);
INSTANTIATE_TEST_SUITE_P(Servers, ApprovalAsMajor, test_support::main_servers(), test_support::server_name);
INSTANTIATE_TEST_SUITE_P(Servers, ApprovalRefused, test_support::main_servers(), test_support::server_name);
INSTANTIATE_TEST_SUITE_P(Servers, TwoApprovers, test_support::main_servers(), test_support::server_name);

TEST_P(ApprovalInPlace, fills_the_row_and_gives_true_and_the_number) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 7, 1, 12, 30, 15));
  add("a");
  add("b");
  EXPECT_EQ(approve(2), Result(true, 2));
  EXPECT_EQ(rows(approvals), (Texts{"1|NULL|NULL|NULL|NULL|NULL", "2|2|4|8|bob|checked"}));
  EXPECT_THAT(value("SELECT ATIME FROM CSOBJREV WHERE REVISION = 2"), testing::StartsWith("2024-07-01 12:30:15"));
  EXPECT_EQ(versions(), (Texts{"1|0|1", "2|0|2"}));
  rev::RevisionManager fresh(object_type);
  EXPECT_EQ(text_of(fresh.get_revision_info(&db(), -1, 5, 2)->approval->atime), "2024-07-01 14:30:15");
}

/// Lets time go by when the latest revision was read.
class Aging : public spcdb::StatementObserver {
 public:
  Aging(CDatabase& db, HeldClock& clock) : db_(db), clock_(clock) { db_.set_observer(this); }
  ~Aging() override { db_.set_observer(nullptr); }
  Aging(const Aging&) = delete;
  Aging& operator=(const Aging&) = delete;
  void on_statement(const spcdb::StatementReport& report) noexcept override {
    if (aged_ || report.statement.find("MAX(REVISION)") == std::string_view::npos) return;
    aged_ = true;
    clock_.advance(std::chrono::seconds(61));
  }

 private:
  CDatabase& db_;
  HeldClock& clock_;
  bool aged_ = false;
};

TEST_P(ApprovalInPlace, a_read_afterwards_gives_the_approval_when_the_cache_held_the_revision_once) {
  HeldClock clock(utc(2024, 7, 1, 12));
  manager = rev::RevisionManager(object_type, 1);
  add_elsewhere("a");
  {
    // What the first look kept is too old for the second one, which reads anew.
    const Aging aging(db(), clock);
    EXPECT_EQ(approve(1), Result(true, 1));
  }
  EXPECT_TRUE(kept().empty());
  const auto record = get(1);
  ASSERT_NE(record->approval, nullptr);
  EXPECT_EQ(record->approval->auser, "bob");
}

TEST_P(ApprovalInPlace, of_a_record_that_the_cache_holds_twice_one_stays_without_the_approval_as_is_meant) {
  add_elsewhere("a");
  EXPECT_EQ(approve(1), Result(true, 1));
  ASSERT_EQ(kept().size(), 1U) << "both looks of the approval kept the record, and one of the two went";
  EXPECT_EQ(get(1)->approval, nullptr);
  EXPECT_EQ(known_latest(), 1);
}

TEST_P(ApprovalInPlace, of_a_record_that_adding_kept_already_two_stay_without_the_approval_as_is_meant) {
  add("a");
  const auto added = kept().front();
  EXPECT_EQ(approve(1), Result(true, 1));
  EXPECT_EQ(kept(), (std::vector{added, added}));
  EXPECT_EQ(get(0)->approval, nullptr);
}

TEST_P(ApprovalInPlace, only_the_approved_revision_leaves_the_cache) {
  HeldClock clock(utc(2024, 7, 1, 12));
  manager = rev::RevisionManager(object_type, 1);
  add_elsewhere("a");
  add_elsewhere("b");
  clock.advance(std::chrono::minutes(5));
  {
    const Aging aging(db(), clock);
    EXPECT_EQ(approve(2), Result(true, 2));
  }
  EXPECT_TRUE(kept().empty());
  const auto first = get(1);
  EXPECT_EQ(get(2)->approval->auser, "bob");
  EXPECT_EQ(kept().front(), first);
}

TEST_P(ApprovalInPlace, a_read_afterwards_gives_the_approval_with_caching_off) {
  add_elsewhere("a");
  manager = rev::RevisionManager(object_type, -1);
  EXPECT_EQ(approve(1), Result(true, 1));
  const auto record = get(1);
  ASSERT_NE(record->approval, nullptr);
  EXPECT_EQ(record->approval->auser, "bob");
  EXPECT_EQ(record->approval->alevel, 2);
  EXPECT_EQ(record->approval->atype, 4);
}

TEST_P(ApprovalInPlace, level_0_is_an_approval_and_a_second_one_is_reason_2) {
  add("a");
  EXPECT_EQ(approve(1, false, 0, 0), Result(true, 1));
  EXPECT_EQ(rows(approvals), Texts{"1|0|NULL|8|bob|checked"}) << "type 0 is stored as null";
  rev::RevisionManager fresh(object_type);
  EXPECT_EQ(fresh.get_revision_info(&db(), -1, 5, 1)->approval->atype, 0);
  EXPECT_EQ(reason_of([&] { approve_by(fresh, 1); }), 2);
  EXPECT_EQ(reason_of([&] { approve(1); }), 2) << "whatever the cache believes";
}

TEST_P(ApprovalInPlace, a_reason_of_4001_or_5000_is_stored_with_4000_and_never_half_a_character) {
  add("a", false);
  const std::string umlauts = [] {
    std::string text = "x";
    for (int i = 0; i < 2500; ++i)
      text += "\u00e4";
    return text;
  }();
  approve_by(manager, 1, false, 2, 4, umlauts.c_str());
  EXPECT_EQ(value("SELECT AREASON FROM CSOBJREV"), umlauts.substr(0, 3999));
  for (const int length : {4000, 4001, 5000}) {
    const int revision = add("b");
    approve_by(manager, revision, false, 2, 4, std::string(static_cast<std::size_t>(length), 'r').c_str());
    EXPECT_EQ(value("SELECT AREASON FROM CSOBJREV WHERE REVISION = " + std::to_string(revision)),
              std::string(4000, 'r'));
  }
}

TEST_P(ApprovalInPlace, an_approved_revision_stays_as_it_is_when_a_new_one_goes_above_it) {
  add("a");
  approve(1);
  EXPECT_EQ(add("b"), 2);
  EXPECT_EQ(add("c", true), 3);
  EXPECT_EQ(versions(), (Texts{"1|0|1", "2|0|2", "3|1|0"}));
  EXPECT_EQ(rows(approvals).front(), "1|2|4|8|bob|checked");
}

TEST_P(ApprovalInPlace, null_texts_are_stored_as_empty_ones) {
  add("a");
  EXPECT_EQ(manager.approve(&db(), -1, 5, 1, 2, 4, bob, nullptr, nullptr, false), Result(true, 1));
  EXPECT_EQ(rows(approvals), Texts{"1|2|4|8||"});
}

TEST_P(ApprovalAsMajor, of_version_0_3_adds_1_0_that_is_approved_from_birth) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 7, 1, 12, 30, 15));
  for (const char* bytes : {"a", "b", "c"})
    add_elsewhere(bytes);
  const Texts before = rows("SELECT * FROM CSOBJREV WHERE REVISION < 4 ORDER BY REVISION");
  EXPECT_EQ(approve(3, true), Result(true, 4));
  EXPECT_EQ(rows("SELECT * FROM CSOBJREV WHERE REVISION < 4 ORDER BY REVISION"), before);
  EXPECT_EQ(versions().back(), "4|1|0");
  EXPECT_EQ(rows("SELECT CUSERID, CUSER, CREASON, FLAG, ALEVEL, ATYPE, AUSERID, AUSER, AREASON FROM CSOBJREV WHERE "
                 "REVISION = 4"),
            Texts{"8|bob|Duplicate of version 0.3 (major version on approval)|0|2|4|8|bob|checked"});
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV WHERE REVISION = 4 AND CTIME = ATIME"), "1");
  EXPECT_THAT(value("SELECT CTIME FROM CSOBJREV WHERE REVISION = 4"), testing::StartsWith("2024-07-01 12:30:15"));
  rev::RevisionManager fresh(object_type);
  EXPECT_EQ(bytes_of(*fresh.get_revision_info(&db(), -1, 5, 4)), "c");
}

TEST_P(ApprovalAsMajor, the_record_in_the_cache_keeps_the_id_of_its_original_as_is_meant) {
  add_elsewhere("a");
  HeldClock clock(utc(2024, 7, 1, 12));
  const auto original = get(1);
  clock.advance(std::chrono::minutes(5));
  approve(1, true);
  const auto copy = get(0);
  EXPECT_EQ(copy->revision, 2);
  EXPECT_EQ(version_of(*copy), "1.0");
  EXPECT_EQ(copy->revid, original->revid);
  EXPECT_NE(std::to_string(copy->revid), value("SELECT REVID FROM CSOBJREV WHERE REVISION = 2"));
  EXPECT_EQ(copy->cached_at, original->cached_at);
  EXPECT_EQ(copy->ctime, copy->approval->atime);
  EXPECT_EQ(bytes_of(*copy), "a");
  EXPECT_EQ(original->approval, nullptr);
  EXPECT_EQ(version_of(*original), "0.1");
  EXPECT_EQ(known_latest(), 2);
}

TEST_P(ApprovalAsMajor, of_a_record_that_adding_left_in_the_cache_gives_1_0_as_is_meant) {
  add_elsewhere("a");
  add_elsewhere("b", true);
  add_elsewhere("c", true);
  EXPECT_EQ(add("d"), 4);
  EXPECT_EQ(versions().back(), "4|2|1");
  EXPECT_EQ(approve(4, true), Result(true, 5));
  EXPECT_EQ(versions().back(), "5|1|0");
  EXPECT_EQ(value("SELECT CREASON FROM CSOBJREV WHERE REVISION = 5"),
            "Duplicate of version 0.0 (major version on approval)");
}

TEST_P(ApprovalAsMajor, type_0_and_a_long_reason_are_stored_as_in_place) {
  add("a");
  approve_by(manager, 1, true, 0, 0, std::string(5000, 'r').c_str());
  EXPECT_EQ(rows("SELECT ALEVEL, ATYPE, AREASON FROM CSOBJREV WHERE REVISION = 2"),
            Texts{"0|NULL|" + std::string(4000, 'r')});
}

TEST_P(ApprovalAsMajor, the_old_revision_stays_unapproved_for_good) {
  add("a");
  approve(1, true);
  EXPECT_EQ(reason_of([&] { approve(1); }), 1);
  EXPECT_EQ(reason_of([&] { approve(2); }), 2);
  EXPECT_EQ(rows(approvals).front(), "1|NULL|NULL|NULL|NULL|NULL");
}

TEST_P(ApprovalAsMajor, with_caching_off_nothing_is_kept) {
  rev::RevisionManager forgetful(object_type, -1);
  add_by(forgetful, "a");
  EXPECT_EQ(approve_by(forgetful, 1, true), Result(true, 2));
  EXPECT_EQ(rev::RevisionManagerProbe::revisions(forgetful), nullptr);
  EXPECT_EQ(rev::RevisionManagerProbe::latest(forgetful).entries, nullptr);
  EXPECT_EQ(value("SELECT CREASON FROM CSOBJREV WHERE REVISION = 2"),
            "Duplicate of version 0.1 (major version on approval)");
}

TEST_P(ApprovalAsMajor, a_payload_that_fails_leaves_an_approved_broken_revision_but_in_a_transaction) {
  add("a");
  const auto before = kept();
  const auto script = test_support::play(db());
  const auto refuse_payload = [&] {
    script->on_regex("INSERT INTO .?CSREVDAT.*").times(2).refuse(error("HY000", 4711, "no room"));
  };
  refuse_payload();
  const auto in_transaction = guarded([&] {
    AutoODBCTransaction transaction(db(), true);
    approve(1, true);
    transaction.commit();
  });
  ASSERT_FALSE(in_transaction.ok());
  EXPECT_EQ(versions().size(), 1U);
  refuse_payload();
  const auto bare = guarded([&] { return approve(1, true); });
  ASSERT_FALSE(bare.ok());
  EXPECT_EQ(bare.failure().native, 4711);
  EXPECT_EQ(rows(approvals).back(), "2|2|4|8|bob|checked");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT"), "1");
  EXPECT_EQ(known_latest(), 1);
  EXPECT_EQ(get(1), before.front());
}

TEST_P(ApprovalAsMajor, a_row_whose_id_cannot_be_read_back_is_reason_4) {
  add("a");
  const auto script = test_support::play(db());
  script->on_regex("SELECT .?REVID.?,.?OBJID.?,.?OBJTYPE.?,.?REVISION.? FROM .*")
      .answer({"REVID", "OBJID", "OBJTYPE", "REVISION"}, {});
  EXPECT_EQ(reason_of([&] { approve(1, true); }), 4);
}

TEST_P(ApprovalRefused, without_revisions_a_number_is_reason_1_and_0_is_no_failure) {
  EXPECT_EQ(reason_of([&] { approve(1); }), 1);
  EXPECT_EQ(approve(0), Result(false, 0));
  EXPECT_EQ(approve(0, true), Result(false, 0));
}

TEST_P(ApprovalRefused, number_0_and_every_number_but_the_latest_are_reason_1) {
  for (const char* bytes : {"a", "b", "c"})
    add(bytes);
  for (const int number : {0, 1, 2, 4, -1}) {
    for (const bool major : {false, true})
      EXPECT_EQ(reason_of([&] { approve(number, major); }), 1) << number;
  }
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV WHERE ALEVEL IS NOT NULL"), "0");
}

TEST_P(ApprovalRefused, the_failure_carries_type_object_and_the_number_given) {
  add("a");
  try {
    approve(9);
    FAIL() << "there is no revision 9";
  } catch (const rev::RevisionException& failure) {
    EXPECT_EQ(failure.object_type, 3);
    EXPECT_EQ(failure.object_id, 5);
    EXPECT_EQ(failure.revision, 9);
    EXPECT_EQ(failure.what(), "Not the latest revision.");
  }
}

TEST_P(ApprovalRefused, an_approved_revision_is_reason_2_in_both_ways) {
  add("a");
  approve(1);
  for (const bool major : {false, true}) {
    rev::RevisionManager fresh(object_type);
    EXPECT_EQ(reason_of([&] { approve_by(fresh, 1, major); }), 2);
  }
  EXPECT_EQ(versions().size(), 1U);
}

TEST_P(ApprovalRefused, a_broken_revision_is_reason_3_while_it_is_the_latest_and_1_afterwards) {
  insert_row(5, 1);
  for (const bool major : {false, true})
    EXPECT_EQ(reason_of([&] { approve(1, major); }), 3);
  EXPECT_EQ(add("b"), 2);
  EXPECT_EQ(reason_of([&] { approve(1); }), 1);
  EXPECT_EQ(approve(2), Result(true, 2));
}

TEST_P(ApprovalRefused, a_latest_revision_with_the_number_of_none_is_reason_0) {
  insert_row(5, -300);
  EXPECT_EQ(reason_of([&] { approve(-300); }), 0);
  EXPECT_EQ(reason_of([&] { approve(1); }), 0);
}

TEST_P(ApprovalRefused, an_approval_that_is_seen_only_on_the_row_is_reason_2_and_the_cache_keeps_its_record) {
  add("a");
  rev::RevisionManager other(object_type, -1);
  approve_by(other, 1);
  const auto before = get(1);
  EXPECT_EQ(reason_of([&] { approve(1); }), 2);
  EXPECT_EQ(get(1), before);
  EXPECT_EQ(before->approval, nullptr);
  EXPECT_TRUE(db().connection() != nullptr);
}

TEST_P(ApprovalRefused, on_a_connection_that_is_not_open_cannot_open) {
  CDatabaseEx closed;
  const auto read = guarded([&] { return manager.approve(&closed, 0, 5, 1, 2, 4, bob, "bob", "", false); });
  ASSERT_FALSE(read.ok());
  EXPECT_EQ(read.failure().text, "Can not open recordset.");
  add("a");
  // The record is in the cache, so that it is the row that cannot be looked at.
  for (const bool major : {false, true}) {
    const auto written = guarded([&] { return manager.approve(&closed, 0, 5, 1, 2, 4, bob, "bob", "", major); });
    ASSERT_FALSE(written.ok());
    EXPECT_EQ(written.failure().text, "Can not open recordset.");
  }
}

TEST_P(ApprovalRefused, a_row_that_has_gone_meanwhile_gives_false_and_the_number) {
  add("a");
  execute("DELETE FROM CSREVDAT");
  execute("DELETE FROM CSOBJREV");
  EXPECT_EQ(approve(1), Result(false, 1));
}

TEST_P(ApprovalRefused, a_record_that_has_gone_between_the_two_looks_gives_false) {
  // The number is known, the record is not, and the row has gone: the second look finds nothing.
  class Deleting : public spcdb::StatementObserver {
   public:
    Deleting(CDatabase& db, test_support::SchemaDatabase& database) : db_(db), database_(database) {
      db_.set_observer(this);
    }
    ~Deleting() override { db_.set_observer(nullptr); }
    Deleting(const Deleting&) = delete;
    Deleting& operator=(const Deleting&) = delete;
    void on_statement(const spcdb::StatementReport& report) noexcept override {
      if (report.statement.find("MAX(REVISION)") == std::string_view::npos) return;
      database_.execute("DELETE FROM CSREVDAT");
      database_.execute("DELETE FROM CSOBJREV");
    }

   private:
    CDatabase& db_;
    test_support::SchemaDatabase& database_;
  };
  add_elsewhere("a");
  manager = rev::RevisionManager(object_type, -1);
  const Deleting deleting(db(), database());
  EXPECT_EQ(approve(1), Result(false, 1));
}

/// Lets another approver approve when this connection has looked at the row, before it writes.
class Overtaken : public spcdb::StatementObserver {
 public:
  Overtaken(CDatabaseEx& db, CDatabaseEx& second) : db_(db), second_(second) { db_.set_observer(this); }
  ~Overtaken() override { db_.set_observer(nullptr); }
  Overtaken(const Overtaken&) = delete;
  Overtaken& operator=(const Overtaken&) = delete;
  void on_statement(const spcdb::StatementReport& report) noexcept override {
    const bool looks_at_the_row = report.statement.starts_with("SELECT") &&
                                  report.statement.find("AREASON") != std::string_view::npos &&
                                  report.statement.find("CREASON") == std::string_view::npos;
    if (done || !looks_at_the_row) return;
    done = true;
    rev::RevisionManager other(3, -1);
    other.approve(&second_, -1, 5, 1, 9, 9, 9, "carla", "faster", false);
  }

  bool done = false;

 private:
  CDatabaseEx& db_;
  CDatabaseEx& second_;
};

TEST_P(TwoApprovers, in_place_the_one_who_is_overtaken_after_the_look_at_the_row_gets_reason_2) {
  add("a");
  const auto second = second_connection();
  Overtaken overtaken(db(), *second);
  EXPECT_EQ(reason_of([&] { approve(1); }), 2);
  EXPECT_TRUE(overtaken.done);
  EXPECT_EQ(rows(approvals), Texts{"1|9|9|9|carla|faster"});
}

/// Only here can another connection write while a transaction reads.
class SnapshotApprovers : public Approval {};
INSTANTIATE_TEST_SUITE_P(Servers, SnapshotApprovers, testing::Values(ServerKind::mariadb), test_support::server_name);

TEST_P(SnapshotApprovers, in_place_the_one_who_looks_at_an_old_snapshot_never_believes_to_have_won) {
  add_elsewhere("a");
  const auto second = second_connection();
  const auto outcome = guarded([&] {
    AutoODBCTransaction transaction(db(), true);
    get(1);
    rev::RevisionManager other(object_type, -1);
    EXPECT_EQ(other.approve(second.get(), -1, 5, 1, 9, 9, 9, "carla", "faster", false), Result(true, 1));
    const auto result = approve(1);
    transaction.commit();
    return result;
  });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().kind, FailureKind::database);
  EXPECT_EQ(rows(approvals), Texts{"1|9|9|9|carla|faster"});
}

TEST_P(TwoApprovers, with_a_major_version_the_slower_one_gets_the_refusal_of_the_double_number) {
  add_elsewhere("a");
  rev::RevisionManager other(object_type);
  get(0);
  other.get_revision_info(&db(), -1, 5, 0);
  EXPECT_EQ(approve(1, true), Result(true, 2));
  const auto outcome = guarded([&] { return approve_by(other, 1, true); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().kind, FailureKind::database);
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::duplicate_key);
  EXPECT_EQ(versions().size(), 2U);
  EXPECT_EQ(rev::RevisionManagerProbe::latest(other).entries->at(5).revision, 1) << "its caches are as they were";
}

TEST_P(TwoApprovers, in_place_and_major_meet_only_in_what_the_caches_know_as_is_meant) {
  add_elsewhere("a");
  rev::RevisionManager other(object_type);
  other.get_revision_info(&db(), -1, 5, 0);
  EXPECT_EQ(approve(1), Result(true, 1));
  EXPECT_EQ(approve_by(other, 1, true), Result(true, 2)) << "a major version does not look at the row again";
}

}  // namespace
