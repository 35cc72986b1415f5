// Plan, for both kinds, on SQLite and MariaDB, with the clock held still
//   create leaves UTC in the definition and its argument, save local time -> StoredTime.*
//   so the first refresh elsewhere than in UTC reads anew, in UTC it does not -> StoredTime.*
//   the repeated hour of a change back; fractions of a second -> StoredTime.*
//   the newest time of a list -> NewestTime.*
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/datasource/stored_fixture.h"

namespace {

using test_support::HeldClock;
using test_support::text_of;
using test_support::utc;
using test_support::ZoneGuard;

constexpr const char* time_of_7 = "SELECT MTIME FROM CSEXDB WHERE EXDBID = 7";

template <class Case>
class StoredTime : public test_support::StoredTest<Case> {
 protected:
  using Definition = typename Case::Definition;

  /// Creates the row 7 and gives the definition as the call leaves it.
  Definition created() {
    Definition definition = this->sample(7);
    COleDateTime modified;
    Definition::create(&this->db(), 0, definition, modified);
    EXPECT_EQ(definition.modified_time, modified);
    return definition;
  }
  int refresh(Definition& definition) { return definition.refresh(&this->db(), 0); }
  /// The stored time, to the second.
  std::string stored() { return this->value(time_of_7).substr(0, 19); }
};
TYPED_TEST_SUITE(StoredTime, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(StoredTime, create_leaves_utc_as_is_meant_so_the_first_refresh_elsewhere_reads_anew) {
  const HeldClock clock(utc(2024, 7, 1, 12, 30, 15, 600));
  for (const auto& [zone, local] :
       {std::pair("America/New_York", "2024-07-01 08:30:15"), std::pair("Asia/Kolkata", "2024-07-01 18:00:15"),
        std::pair("Australia/Lord_Howe", "2024-07-01 23:00:15")}) {
    SCOPED_TRACE(zone);
    const ZoneGuard guard(zone);
    this->execute("DELETE FROM CSEXDB");
    auto definition = this->created();
    EXPECT_EQ(text_of(definition.modified_time), "2024-07-01 12:30:15");
    EXPECT_EQ(this->stored(), "2024-07-01 12:30:15");
    EXPECT_EQ(this->refresh(definition), 1);
    EXPECT_EQ(text_of(definition.modified_time), local);
    EXPECT_EQ(this->refresh(definition), 0);
  }
}

TYPED_TEST(StoredTime, in_utc_the_first_refresh_after_create_finds_nothing_new) {
  const HeldClock clock(utc(2024, 7, 1, 12, 30, 15, 600));
  const ZoneGuard zone("UTC");
  auto definition = this->created();
  EXPECT_EQ(this->refresh(definition), 0) << "a time is stored without its fraction";
}

TYPED_TEST(StoredTime, save_leaves_local_time_and_stores_utc) {
  HeldClock clock(utc(2024, 1, 15, 12));
  for (const auto& [zone, local] :
       {std::pair("America/New_York", "2024-01-15 07:00:00"), std::pair("Asia/Kolkata", "2024-01-15 17:30:00")}) {
    SCOPED_TRACE(zone);
    const ZoneGuard guard(zone);
    this->execute("DELETE FROM CSEXDB");
    this->insert_row(7, "");
    auto definition = this->sample(7);
    definition.save(&this->db(), 0);
    EXPECT_EQ(text_of(definition.modified_time), local);
    EXPECT_EQ(this->stored(), "2024-01-15 12:00:00");
    EXPECT_EQ(this->refresh(definition), 0);
    EXPECT_EQ(this->read(7)->modified_time, definition.modified_time);
  }
}

TYPED_TEST(StoredTime, every_second_that_save_writes_is_found_again_as_the_same_number) {
  const ZoneGuard zone("America/New_York");
  HeldClock clock(utc(2024, 2, 29, 4, 59, 50));
  this->insert_row(7, "");
  auto definition = this->sample(7);
  for (int second = 0; second < 30; ++second, clock.advance(std::chrono::milliseconds(1037))) {
    definition.save(&this->db(), 0);
    ASSERT_EQ(this->refresh(definition), 0) << text_of(definition.modified_time);
  }
}

TYPED_TEST(StoredTime, in_the_repeated_hour_the_earlier_moment_is_stored) {
  const ZoneGuard zone("America/New_York");
  this->insert_row(7, "");
  auto definition = this->sample(7);
  // 01:30 comes twice: at 05:30 and at 06:30 UTC.
  for (const int hour : {5, 6}) {
    const HeldClock clock(utc(2024, 11, 3, hour, 30));
    definition.save(&this->db(), 0);
    EXPECT_EQ(text_of(definition.modified_time), "2024-11-03 01:30:00");
    EXPECT_EQ(this->stored(), "2024-11-03 05:30:00") << hour;
    EXPECT_EQ(this->refresh(definition), 0);
  }
  this->execute("UPDATE CSEXDB SET MTIME = '2024-11-03 06:30:00'");
  EXPECT_EQ(this->refresh(definition), 0) << "kept: both moments are the same local time";
}

TYPED_TEST(StoredTime, create_in_the_repeated_hour_gives_the_earlier_moment_too) {
  const ZoneGuard zone("America/New_York");
  const HeldClock clock(utc(2024, 11, 3, 6, 30));
  EXPECT_EQ(text_of(this->created().modified_time), "2024-11-03 05:30:00");
  EXPECT_EQ(this->stored(), "2024-11-03 05:30:00");
}

TYPED_TEST(StoredTime, a_row_is_local_by_the_rule_of_its_own_date_and_keeps_its_fraction) {
  const ZoneGuard zone("America/New_York");
  constexpr int kind = TypeParam::Definition::kind;
  this->insert_row(7, "", "NULL", kind, "'2024-01-15 12:00:00'");
  this->insert_row(8, "", "NULL", kind, "'2024-07-15 12:00:00.000'");
  this->insert_row(9, "", "NULL", kind, "'2024-07-15 12:00:00.250'");
  EXPECT_EQ(text_of(this->read(7)->modified_time), "2024-01-15 07:00:00");
  EXPECT_EQ(text_of(this->read(8)->modified_time), "2024-07-15 08:00:00");
  const double days = this->read(9)->modified_time.m_dt - this->read(8)->modified_time.m_dt;
  EXPECT_NEAR(days * 86400, 0.25, 1e-5);
}

template <class Case>
class NewestTime : public test_support::StoredTest<Case> {
 protected:
  void add(int id, const std::string& time, const std::string& flag = "NULL", int kind = Case::Definition::kind) {
    this->insert_row(id, "", flag, kind, time);
  }
  /// What a listing makes of a time that was something else before.
  COleDateTime newest() {
    COleDateTime moment(2030, 1, 1, 0, 0, 0);
    typename test_support::StoredTest<Case>::Definitions all;
    test_support::StoredTest<Case>::Kind::list(&this->db(), 0, 0, all, moment);
    return moment;
  }
};
TYPED_TEST_SUITE(NewestTime, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(NewestTime, without_rows_is_null_and_the_count_0) {
  COleDateTime moment(2030, 1, 1, 0, 0, 0);
  typename TestFixture::Definitions all;
  EXPECT_EQ(TestFixture::Kind::list(&this->db(), 0, 0, all, moment), 0);
  EXPECT_EQ(moment.GetStatus(), COleDateTime::null);
  EXPECT_TRUE(all.empty());
}

TYPED_TEST(NewestTime, is_the_latest_of_the_rows_in_utc_wherever_it_stands) {
  const ZoneGuard zone("America/New_York");
  this->add(1, "'2024-07-01 12:00:00'");
  this->add(2, "'2024-11-03 06:30:00.900'");
  this->add(3, "'2023-12-31 23:59:59'");
  EXPECT_EQ(text_of(this->newest()), "2024-11-03 06:30:00") << "to the second, and not rounded up";
}

TYPED_TEST(NewestTime, takes_no_notice_of_rows_that_are_not_listed_or_have_no_time) {
  this->add(1, "NULL");
  this->add(2, "'2024-07-01 12:00:00'");
  this->add(3, "NULL");
  this->add(4, "'2025-01-01 00:00:00'", "'D'");
  this->add(5, "'2025-01-01 00:00:00'", "NULL", TestFixture::Other::kind);
  EXPECT_EQ(text_of(this->newest()), "2024-07-01 12:00:00");
}

TYPED_TEST(NewestTime, of_rows_without_times_is_null) {
  this->add(1, "NULL");
  EXPECT_EQ(text_of(this->newest()), "null");
}

TYPED_TEST(NewestTime, is_what_create_gave_for_the_last_one) {
  const ZoneGuard zone("Asia/Kolkata");
  HeldClock clock(utc(2024, 7, 1, 12));
  this->create(7);
  clock.advance(std::chrono::seconds(1));
  const COleDateTime last = this->create(8);
  EXPECT_EQ(this->newest(), last);
}

}  // namespace
