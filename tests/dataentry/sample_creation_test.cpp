// Creating samples: at once, announced first, and their approval records.
//
// Plan
//   at once              the row, its number, its local time with milliseconds, a given date, the revision
//   approval             the record, its UTC time, only one for a sample
//   announced            nothing in the database, one for each helper, numbers of the process, written once
//   failures             a closed connection, a failing or null engine, a number that is taken
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/dataentry/data_entry_fixture.h"
#include "tests/dataentry/data_entry_process.h"

namespace {

using test_support::code_of;
using test_support::DataEntryTest;
using test_support::failure_of;
using test_support::HeldClock;
using test_support::StatementLog;
using test_support::utc;
using test_support::ZoneGuard;
using testing::ElementsAre;

class NewSample : public DataEntryTest {
 protected:
  long create(double date = 0.0, long profile = 1, long revision = 0, const CString& user = "anna") {
    return helper.new_sample(engine.pointer(), &db(), date, profile, revision, false, user);
  }
  long announce(double date = 0.0, long profile = 1, long revision = 0) {
    return helper.new_sample(engine.pointer(), &db(), date, profile, revision, true, "anna");
  }
  std::string to_the_second(const std::string& statement) { return value(statement).substr(0, 19); }
};

TEST_P(NewSample, takes_its_number_from_the_engine) {
  execute("UPDATE CSSPRN SET MAXNO = 41");
  EXPECT_EQ(create(), 42);
  EXPECT_EQ(create(), 43);
  EXPECT_THAT(rows("SELECT SAMPID, PROFID FROM CSSAMP ORDER BY SAMPID"), ElementsAre("42|1", "43|1"));
  EXPECT_THAT(engine.calls, ElementsAre("GetNextRunningNumber CSSPRN", "GetNextRunningNumber CSSPRN"));
}

TEST_P(NewSample, a_date_of_0_is_the_present_in_local_time_while_the_approval_is_in_utc) {
  const ZoneGuard zone("Asia/Tokyo");
  const HeldClock clock(utc(2024, 3, 15, 20, 30, 40, 567));
  create();
  EXPECT_EQ(to_the_second("SELECT CTIME FROM CSSAMP"), "2024-03-16 05:30:40");
  EXPECT_EQ(to_the_second("SELECT MTIME FROM CSSPAPPR"), "2024-03-15 20:30:40");
}

TEST_P(NewSample, a_given_date_is_stored_as_it_is) {
  const ZoneGuard zone("Asia/Tokyo");
  create(COleDateTime(2020, 2, 29, 23, 59, 58).m_dt);
  EXPECT_EQ(to_the_second("SELECT CTIME FROM CSSAMP"), "2020-02-29 23:59:58");
}

TEST_P(NewSample, minus_0_is_the_present_too) {
  const HeldClock clock(utc(2024, 3, 15, 12, 0, 0));
  const ZoneGuard zone("UTC");
  create(-0.0);
  EXPECT_EQ(to_the_second("SELECT CTIME FROM CSSAMP"), "2024-03-15 12:00:00");
}

TEST_P(NewSample, a_revision_below_1_is_stored_as_null) {
  create(0.0, 1, 0);
  create(0.0, 1, -100);
  create(0.0, 1, 1);
  create(0.0, 1, 7);
  EXPECT_THAT(rows("SELECT PROFREV FROM CSSAMP ORDER BY SAMPID"), ElementsAre("NULL", "NULL", "1", "7"));
}

TEST_P(NewSample, gets_an_approval_record_with_everything_open) {
  const long sample = create(0.0, 1, 0, "ännä");
  EXPECT_THAT(rows("SELECT SAMPID, ASTAT, CSTAT, FLG1, FLG2, MUSER FROM CSSPAPPR"),
              ElementsAre(std::to_string(sample) + "|0|0|0|0|ännä"));
}

TEST_P(NewSample, an_empty_user_is_stored_as_an_empty_text) {
  create(0.0, 1, 0, "");
  EXPECT_EQ(value("SELECT MUSER FROM CSSPAPPR"), "");
}

TEST_P(NewSample, a_sample_has_at_most_one_approval_record) {
  oldde::AddNewSampleApprovalRecord(&db(), 5, "anna");
  execute("UPDATE CSSPAPPR SET ASTAT = 3");
  oldde::AddNewSampleApprovalRecord(&db(), 5, "ben");
  EXPECT_THAT(rows("SELECT SAMPID, ASTAT, MUSER FROM CSSPAPPR"), ElementsAre("5|3|anna"));
}

TEST_P(NewSample, statements_go_out_with_their_filters_to_the_letter) {
  const StatementLog log(db());
  create();
  EXPECT_EQ(log.count("WHERE SAMPID=0"), 1);
  EXPECT_EQ(log.count("SAMPID] = 1") + log.count("SAMPID\" = 1") + log.count("SAMPID` = 1"), 1);
}

TEST_P(NewSample, a_sample_number_that_is_taken_is_the_databases_refusal_and_nothing_more_is_written) {
  execute("INSERT INTO CSSAMP (SAMPID, PROFID) VALUES (1, 3)");
  const Failure failure = failure_of([&] { create(); });
  EXPECT_EQ(failure.kind, FailureKind::database);
  EXPECT_EQ(failure.failure_class, FailureClass::duplicate_key);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSPAPPR"), "0");
}

TEST_P(NewSample, a_user_name_beyond_its_column_is_the_databases_refusal) {
  const CString long_name('x', 256);
  const Failure failure = failure_of([&] { create(0.0, 1, 0, long_name); });
  EXPECT_EQ(failure.failure_class, FailureClass::value_too_long);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "1") << "what was written stays";
}

TEST_P(NewSample, a_closed_connection_is_open_failed) {
  CDatabase closed;
  test_support::RecordingEngine own;
  EXPECT_EQ(code_of([&] { helper.new_sample(own.pointer(), &closed, 0.0, 1, 0, false, "anna"); }),
            result_code::open_failed);
  EXPECT_EQ(code_of([&] { oldde::AddNewSampleApprovalRecord(&closed, 1, "anna"); }), result_code::open_failed);
}

TEST_P(NewSample, a_failing_or_null_engine_is_raised_before_anything_is_written) {
  engine.fail("GetNextRunningNumber", E_FAIL);
  EXPECT_EQ(failure_of([&] { create(); }).code, long{E_FAIL});
  EXPECT_EQ(failure_of([&] { helper.new_sample(nullptr, &db(), 0.0, 1, 0, false, "anna"); }).code, long{E_POINTER});
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "0");
}

// Announced samples

TEST_P(NewSample, announcing_touches_neither_database_nor_engine) {
  const StatementLog log(db());
  announce(45000.5, 3, 7);
  EXPECT_TRUE(log.statements.empty());
  EXPECT_TRUE(engine.calls.empty());
  ASSERT_NE(helper.saved_sample, nullptr);
  EXPECT_EQ(helper.saved_sample->date, 45000.5);
  EXPECT_EQ(helper.saved_sample->profile, 3);
  EXPECT_EQ(helper.saved_sample->profile_rev, 7);
  EXPECT_EQ(helper.saved_sample->sample_id, 0);
  EXPECT_EQ(helper.saved_sample->owner, &helper);
}

TEST_P(NewSample, announced_numbers_rise_by_one_across_all_helpers) {
  const long first = announce();
  oldde::DEHelper other;
  EXPECT_EQ(other.new_sample(nullptr, nullptr, 0.0, 1, 0, true, ""), first + 1);
  EXPECT_EQ(announce(), first + 2);
  EXPECT_EQ(helper.saved_sample->temp_id, first + 2);
}

TEST_P(NewSample, a_new_announcement_drops_the_one_before) {
  announce(1.0);
  const std::weak_ptr<oldde::CSavedSampleInfo> first = helper.saved_sample;
  announce(2.0);
  EXPECT_TRUE(first.expired());
  EXPECT_EQ(helper.saved_sample->date, 2.0);
}

TEST_P(NewSample, writing_an_announced_sample_twice_returns_the_same_sample_and_inserts_one_row) {
  announce(COleDateTime(2020, 2, 29, 12, 0, 0).m_dt, 3, 7);
  const long sample = helper.saved_sample->WriteSample(engine.pointer(), &db(), 0, "ben");
  EXPECT_EQ(helper.saved_sample->WriteSample(engine.pointer(), &db(), 99, "anna"), sample);
  EXPECT_EQ(helper.saved_sample->sample_id, sample);
  EXPECT_THAT(rows("SELECT SAMPID, PROFID, PROFREV FROM CSSAMP"), ElementsAre(std::to_string(sample) + "|3|7"));
  EXPECT_EQ(to_the_second("SELECT CTIME FROM CSSAMP"), "2020-02-29 12:00:00");
  EXPECT_THAT(rows("SELECT MUSER FROM CSSPAPPR"), ElementsAre("ben"));
}

TEST_P(NewSample, a_write_that_failed_can_be_tried_again) {
  announce();
  engine.fail("GetNextRunningNumber", E_FAIL);
  EXPECT_EQ(failure_of([&] { helper.saved_sample->WriteSample(engine.pointer(), &db(), 0, "ben"); }).code,
            long{E_FAIL});
  EXPECT_EQ(helper.saved_sample->sample_id, 0);
  engine.mend("GetNextRunningNumber");
  EXPECT_EQ(helper.saved_sample->WriteSample(engine.pointer(), &db(), 0, "ben"), 1);
}

INSTANTIATE_TEST_SUITE_P(Servers, NewSample, test_support::main_servers(), test_support::server_name);

TEST(AnnouncedNumbers, begin_at_1_in_a_fresh_process_and_count_on_across_helpers) {
  EXPECT_EQ(test_support::run_data_entry_process({"announce"}), "1 2 3 \n");
}

}  // namespace
