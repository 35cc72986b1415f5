// Plan, on SQLite and MariaDB
//   a revision by number and the latest; none; approvals with and without each column; missing payloads -> Reading.*
//   the cache of revisions: hits, the doubled entry, lifetimes, off -> Reading.*
//   the cache of latest numbers: hits, lifetimes, staleness, what makes it new -> Reading.*
//   the list: order, what stands in it already, none, what it tells the caches -> Listing.*
//   moments: local by the date's own rule, fractions -> Reading.*
#include "spcbase/revision/internal/rows.h"
#include "tests/revision/revision_fixture.h"

namespace {

using rev::RevisionManagerProbe;
using test_support::bytes_of;
using test_support::HeldClock;
using test_support::StatementLog;
using test_support::text_of;
using test_support::utc;
using test_support::version_of;
using test_support::ZoneGuard;
using Texts = std::vector<std::string>;

class Reading : public test_support::RevisionTest {
 protected:
  /// Another process, as far as the manager under test can tell.
  int add_elsewhere(const std::string& bytes) {
    rev::RevisionManager other(object_type, -1);
    return add_by(other, bytes);
  }
  std::string latest_bytes() {
    const auto record = get(0);
    return record ? bytes_of(*record) : "no record";
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, Reading, test_support::main_servers(), test_support::server_name);

TEST_P(Reading, gives_a_revision_by_its_number_and_the_latest_for_0) {
  add_elsewhere("a");
  add_elsewhere("b");
  add_elsewhere("c");
  const auto second = get(2);
  EXPECT_EQ(second->revision, 2);
  EXPECT_EQ(version_of(*second), "0.2");
  EXPECT_EQ(bytes_of(*second), "b");
  EXPECT_EQ(std::to_string(second->revid), value("SELECT REVID FROM CSOBJREV WHERE REVISION = 2"));
  EXPECT_EQ(second->cuserid, 7);
  EXPECT_EQ(second->cuser, "anna");
  EXPECT_EQ(second->creason, "why");
  EXPECT_EQ(second->approval, nullptr);
  EXPECT_EQ(get(0)->revision, 3);
}

TEST_P(Reading, revision_5_of_an_object_with_3_is_null_and_nothing_is_kept) {
  for (const char* bytes : {"a", "b", "c"})
    add_elsewhere(bytes);
  EXPECT_EQ(get(5), nullptr);
  EXPECT_EQ(get(-1), nullptr);
  EXPECT_TRUE(kept().empty());
  EXPECT_EQ(known_latest(), 0);
  EXPECT_EQ(get(0, 99), nullptr) << "an object without revisions";
  EXPECT_EQ(known_latest(99), 0);
}

TEST_P(Reading, an_object_of_another_type_is_another_object) {
  add_elsewhere("a");
  rev::RevisionManager others(object_type + 1);
  EXPECT_EQ(others.get_revision_info(&db(), -1, 5, 0), nullptr);
}

TEST_P(Reading, a_row_without_payload_row_or_with_a_null_payload_has_a_null_handle) {
  insert_row(5, 1);
  insert_row(5, 2);
  execute("INSERT INTO CSREVDAT (REVID, DATA) SELECT REVID, NULL FROM CSOBJREV WHERE REVISION = 2");
  for (const int revision : {1, 2}) {
    const auto record = get(revision);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->data.long_bin.m_hData, nullptr);
    EXPECT_EQ(version_of(*record), "2.3");
    EXPECT_EQ(record->ctime.GetStatus(), COleDateTime::null) << "a row that some other program wrote";
  }
  EXPECT_EQ(list().size(), 2U);
}

TEST_P(Reading, the_flag_is_handed_on_as_it_is_stored) {
  add_elsewhere("a");
  execute("UPDATE CSOBJREV SET FLAG = 77");
  EXPECT_EQ(get(1)->flag, 77);
}

TEST_P(Reading, the_level_alone_decides_whether_a_revision_is_approved) {
  insert_row(5, 1, ", ALEVEL", ", 0");
  insert_row(5, 2, ", ATYPE, ATIME, AUSERID, AUSER, AREASON", ", 4, '2024-07-01 12:00:00', 8, 'bob', 'checked'");
  insert_row(5, 3, ", ALEVEL, ATYPE, ATIME, AUSERID, AUSER, AREASON",
             ", 2, 4, '2024-07-01 12:00:00', 8, 'bob', 'checked'");
  const ZoneGuard zone("Europe/Berlin");
  const auto bare = get(1)->approval;
  ASSERT_NE(bare, nullptr);
  EXPECT_EQ(bare->alevel, 0);
  EXPECT_EQ(bare->atype, 0);
  EXPECT_EQ(bare->atime.GetStatus(), COleDateTime::null);
  EXPECT_EQ(bare->auserid, 0);
  EXPECT_EQ(bare->auser, "");
  EXPECT_EQ(get(2)->approval, nullptr);
  const auto whole = get(3)->approval;
  ASSERT_NE(whole, nullptr);
  EXPECT_EQ(whole->alevel, 2);
  EXPECT_EQ(whole->atype, 4);
  EXPECT_EQ(text_of(whole->atime), "2024-07-01 14:00:00");
  EXPECT_EQ(whole->auserid, 8);
  EXPECT_EQ(whole->auser, "bob");
  EXPECT_EQ(whole->areason, "checked");
}

TEST_P(Reading, moments_are_local_by_the_rule_of_their_own_date) {
  const ZoneGuard zone("Europe/Berlin");
  const char* const stored[] = {"2024-03-31 00:59:59", "2024-03-31 01:00:00", "2024-10-27 00:30:00",
                                "2024-10-27 01:30:00"};
  for (int i = 0; i < 4; ++i)
    insert_row(5, i + 1, ", CTIME", ", '" + std::string(stored[i]) + "'");
  EXPECT_EQ(text_of(get(1)->ctime), "2024-03-31 01:59:59");
  EXPECT_EQ(text_of(get(2)->ctime), "2024-03-31 03:00:00");
  EXPECT_EQ(text_of(get(3)->ctime), "2024-10-27 02:30:00");
  EXPECT_EQ(text_of(get(4)->ctime), "2024-10-27 02:30:00");
}

TEST_P(Reading, a_fraction_of_a_second_survives) {
  insert_row(5, 1, ", CTIME", ", '2024-07-01 12:00:00.000'");
  insert_row(5, 2, ", CTIME", ", '2024-07-01 12:00:00.250'");
  EXPECT_NEAR((get(2)->ctime.m_dt - get(1)->ctime.m_dt) * 86400, 0.25, 1e-5);
}

TEST_P(Reading, the_latest_twice_reads_no_blob_the_second_time_and_keeps_the_record_twice_as_is_meant) {
  add_elsewhere("a");
  const auto first = get(0);
  {
    const StatementLog log(db());
    EXPECT_EQ(get(0), first);
    EXPECT_TRUE(log.statements.empty());
  }
  ASSERT_EQ(kept().size(), 2U);
  EXPECT_EQ(kept()[0], kept()[1]);
  EXPECT_EQ(get(1), first);
  EXPECT_EQ(kept().size(), 3U) << "by number too";
}

TEST_P(Reading, a_record_stays_valid_when_the_manager_is_gone) {
  add_elsewhere("a");
  std::shared_ptr<rev::RevisionInfo> record;
  {
    rev::RevisionManager short_lived(object_type);
    record = short_lived.get_revision_info(&db(), -1, 5, 0);
  }
  EXPECT_EQ(bytes_of(*record), "a");
}

TEST_P(Reading, a_latest_number_of_60_seconds_still_counts_and_one_of_61_is_asked_for_again) {
  HeldClock clock(utc(2024, 7, 1, 12));
  manager = rev::RevisionManager(object_type, 0, 1);
  add_elsewhere("a");
  EXPECT_EQ(latest_bytes(), "a");
  add_elsewhere("b");
  clock.advance(std::chrono::seconds(60));
  EXPECT_EQ(latest_bytes(), "a");
  clock.advance(std::chrono::seconds(60));
  EXPECT_EQ(latest_bytes(), "a") << "kept: the hit made the number young again";
  clock.advance(std::chrono::seconds(61));
  EXPECT_EQ(latest_bytes(), "b");
  EXPECT_EQ(known_latest(), 2);
}

TEST_P(Reading, an_old_number_is_erased_even_when_there_is_no_newer_one) {
  HeldClock clock(utc(2024, 7, 1, 12));
  manager = rev::RevisionManager(object_type, 0, 1);
  add_elsewhere("a");
  get(0);
  execute("DELETE FROM CSREVDAT");
  execute("DELETE FROM CSOBJREV");
  clock.advance(std::chrono::seconds(61));
  EXPECT_EQ(get(0), nullptr);
  EXPECT_EQ(known_latest(), 0);
  EXPECT_EQ(kept().size(), 1U) << "the record itself is still known by its number";
  EXPECT_NE(get(1), nullptr);
}

TEST_P(Reading, a_record_of_60_seconds_still_counts_and_one_of_61_is_read_again) {
  HeldClock clock(utc(2024, 7, 1, 12));
  manager = rev::RevisionManager(object_type, 1);
  add_elsewhere("a");
  const auto first = get(1);
  clock.advance(std::chrono::seconds(60));
  EXPECT_EQ(get(1), first);
  ASSERT_EQ(kept().size(), 2U);
  clock.advance(std::chrono::seconds(1));
  const auto second = get(1);
  EXPECT_NE(second, first);
  EXPECT_EQ(kept(), (std::vector{first, second})) << "kept: one look erases one element, the earliest";
  EXPECT_NE(get(1), second) << "the next look finds the other old one first";
}

TEST_P(Reading, an_objects_place_in_the_cache_stays_when_its_last_record_goes) {
  HeldClock clock(utc(2024, 7, 1, 12));
  manager = rev::RevisionManager(object_type, 1);
  add_elsewhere("a");
  get(1);
  execute("DELETE FROM CSREVDAT");
  execute("DELETE FROM CSOBJREV");
  clock.advance(std::chrono::seconds(61));
  EXPECT_EQ(get(1), nullptr);
  EXPECT_TRUE(RevisionManagerProbe::revisions(manager)->contains(5));
  EXPECT_TRUE(kept().empty());
}

TEST_P(Reading, in_the_hour_that_comes_twice_a_record_lives_longer_as_is_meant) {
  const ZoneGuard zone("Europe/Berlin");
  HeldClock clock(utc(2024, 10, 27, 0, 59, 0));
  manager = rev::RevisionManager(object_type, 1);
  add_elsewhere("a");
  const auto first = get(1);
  clock.advance(std::chrono::minutes(30));  // the present counts as 00:29 once more
  EXPECT_EQ(get(1), first);
  clock.advance(std::chrono::minutes(31));
  EXPECT_NE(get(1), first);
}

TEST_P(Reading, with_caching_off_no_map_is_made_and_every_read_asks_the_database) {
  manager = rev::RevisionManager(object_type, -1, 5);
  add_elsewhere("a");
  const StatementLog log(db());
  const auto first = get(0);
  EXPECT_NE(get(0), first);
  get(1);
  list();
  EXPECT_EQ(log.statements.size(), 4U);
  EXPECT_EQ(RevisionManagerProbe::revisions(manager), nullptr);
  EXPECT_EQ(RevisionManagerProbe::latest(manager).entries, nullptr);
}

TEST_P(Reading, what_another_manager_adds_is_unknown_until_the_list_is_read) {
  add("a");
  add_elsewhere("b");
  EXPECT_EQ(latest_bytes(), "a");
  list();
  EXPECT_EQ(latest_bytes(), "b");
}

TEST_P(Reading, a_number_whose_record_is_not_kept_reads_the_latest_again) {
  add_elsewhere("a");
  list();
  EXPECT_EQ(known_latest(), 1);
  EXPECT_TRUE(kept().empty());
  const StatementLog log(db());
  EXPECT_EQ(latest_bytes(), "a");
  EXPECT_EQ(log.count("MAX(REVISION)"), 1);
}

TEST_P(Reading, a_failure_leaves_the_caches_as_they_were) {
  add("a");
  const auto before = kept();
  const auto script = test_support::play(db());
  script->on_regex("SELECT .*LEFT JOIN.*").refuse_at_prepare(test_support::error("HY000", 4711, "not now"));
  const auto outcome = guarded([&] { return get(2); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().native, 4711) << outcome.failure().text;
  EXPECT_EQ(kept(), before);
}

TEST_P(Reading, a_streaming_refusal_is_the_callers_with_size_0_and_a_second_try_with_another) {
  add_elsewhere("a");
  const auto script = test_support::play(db());
  script->on_regex("SELECT .*LEFT JOIN.*")
      .times(2)
      .refuse_at_prepare(test_support::error("HY000", 4711, "no streaming"));
  EXPECT_FALSE(guarded([&] { return manager.get_revision_info(&db(), 0, 5, 1); }).ok());
  const auto read = guarded([&] { return manager.get_revision_info(&db(), 100, 5, 1); });
  ASSERT_TRUE(read.ok()) << read.failure().text;
  EXPECT_EQ(bytes_of(*read.value()), "a");
}

TEST_P(Reading, the_number_of_no_revision_is_never_looked_up_in_the_cache) {
  insert_row(5, -300);
  const auto first = get(-300);
  ASSERT_NE(first, nullptr);
  EXPECT_NE(get(-300), first);
  EXPECT_EQ(kept().size(), 2U);
}

class Listing : public Reading {};
INSTANTIATE_TEST_SUITE_P(Servers, Listing, test_support::main_servers(), test_support::server_name);

Texts numbers_of(const std::vector<rev::RevisionBaseInfo>& revisions) {
  Texts all;
  for (const rev::RevisionBaseInfo& revision : revisions)
    all.push_back(std::to_string(revision.revision));
  return all;
}

TEST_P(Listing, gives_all_revisions_with_the_highest_first_and_reads_no_payload) {
  for (const int revision : {2, 3, 1})
    insert_row(5, revision);
  insert_row(6, 9);
  const StatementLog log(db());
  EXPECT_EQ(numbers_of(list()), (Texts{"3", "2", "1"}));
  EXPECT_EQ(log.count("CSREVDAT"), 0);
  EXPECT_EQ(log.statements.size(), 1U);
}

TEST_P(Listing, keeps_what_stands_in_the_list_and_sorts_it_in) {
  for (const int revision : {1, 3, 5})
    insert_row(5, revision);
  std::vector<rev::RevisionBaseInfo> all(2);
  all[0].revision = 4;
  all[0].cuser = "mine";
  all[1].revision = 9;
  manager.get_all_revision(&db(), 5, all);
  EXPECT_EQ(numbers_of(all), (Texts{"9", "5", "4", "3", "1"}));
  EXPECT_EQ(all[2].cuser, "mine");
  EXPECT_EQ(known_latest(), 5) << "the highest of the rows, not of the list";
}

TEST_P(Listing, of_an_object_without_rows_leaves_the_list_and_forgets_the_latest_number) {
  add("a");
  execute("DELETE FROM CSREVDAT");
  execute("DELETE FROM CSOBJREV");
  std::vector<rev::RevisionBaseInfo> all(1);
  EXPECT_EQ(manager.get_all_revision(&db(), 5, all), 0);
  EXPECT_EQ(all.size(), 1U);
  EXPECT_EQ(known_latest(), 0);
}

TEST_P(Listing, a_failure_leaves_the_latest_number_forgotten) {
  add("a");
  const auto script = test_support::play(db());
  script->on_regex("SELECT .*").refuse_at_prepare(test_support::error("HY000", 4711, "not now"));
  std::vector<rev::RevisionBaseInfo> all;
  const auto outcome = guarded([&] { return manager.get_all_revision(&db(), 5, all); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().native, 4711);
  EXPECT_EQ(known_latest(), 0);
  EXPECT_EQ(kept().size(), 1U);
}

TEST_P(Listing, a_constant_manager_lists_and_learns_the_latest_number_too) {
  insert_row(5, 4);
  const rev::RevisionManager& constant = manager;
  std::vector<rev::RevisionBaseInfo> all;
  constant.get_all_revision(&db(), 5, all);
  EXPECT_EQ(known_latest(), 4);
}

TEST_P(Listing, gives_approvals_and_local_times) {
  const ZoneGuard zone("Europe/Berlin");
  insert_row(5, 1, ", CTIME, ALEVEL, ATIME", ", '2024-01-15 07:30:00', 2, '2024-07-15 06:30:00'");
  const auto all = list();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(version_of(all[0]), "2.3");
  EXPECT_EQ(text_of(all[0].ctime), "2024-01-15 08:30:00");
  ASSERT_NE(all[0].approval, nullptr);
  EXPECT_EQ(text_of(all[0].approval->atime), "2024-07-15 08:30:00");
}

TEST_P(Listing, on_a_connection_that_is_not_open_cannot_open) {
  CDatabaseEx closed;
  std::vector<rev::RevisionBaseInfo> all;
  const auto listed = guarded([&] { return manager.get_all_revision(&closed, 5, all); });
  const auto read = guarded([&] { return manager.get_revision_info(&closed, 0, 5, 0); });
  ASSERT_FALSE(listed.ok() || read.ok());
  EXPECT_EQ(listed.failure().text, "Can not open recordset.");
  EXPECT_EQ(read.failure().text, "Can not open recordset.");
}

}  // namespace
