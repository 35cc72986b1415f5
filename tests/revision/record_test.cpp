// Plan
//   a new record, a new approval: what stands in them -> RevisionBaseInfo.*, RevisionApprovalInfo.*, RevisionInfo.*
//   copies: approvals and payloads of their own; to itself; from one without approval
//     -> RevisionBaseInfo.*, RevisionInfo.*
//   the failure's texts by reason -> RevisionException.*
//   the clock of the caches: ages, before day 0, out of range -> is_expired.*
//   the cut of a reason -> cut_reason.*; the number behind the last -> next_number.*
#include <type_traits>

#include "spcbase/revision/internal/rows.h"
#include "tests/revision/revision_fixture.h"

namespace {

using test_support::bytes_of;
using test_support::HeldClock;
using test_support::text_of;
using test_support::utc;
using test_support::ZoneGuard;

TEST(RevisionBaseInfo, a_new_record_is_no_revision_and_has_no_approval) {
  const rev::RevisionBaseInfo record;
  EXPECT_EQ(record.revision, -300);
  EXPECT_EQ(record.approval, nullptr);
  EXPECT_EQ(record.revid, 0);
  EXPECT_EQ(record.majorver, 0);
  EXPECT_EQ(record.minorver, 0);
  EXPECT_EQ(record.flag, 0);
  EXPECT_EQ(record.cuserid, 0);
  EXPECT_EQ(record.ctime.GetStatus(), COleDateTime::null);
  EXPECT_TRUE(record.cuser.IsEmpty());
  EXPECT_TRUE(record.creason.IsEmpty());
  static_assert(!std::is_polymorphic_v<rev::RevisionBaseInfo> && !std::is_polymorphic_v<rev::RevisionInfo> &&
                !std::is_polymorphic_v<rev::RevisionApprovalInfo>);
  static_assert(std::has_virtual_destructor_v<LongBinWrapper>);
}

TEST(RevisionApprovalInfo, a_new_approval_is_empty) {
  const rev::RevisionApprovalInfo approval;
  EXPECT_EQ(approval.atime.GetStatus(), COleDateTime::null);
  EXPECT_EQ(approval.auserid, 0);
  EXPECT_EQ(approval.alevel, 0);
  EXPECT_EQ(approval.atype, 0);
  EXPECT_TRUE(approval.auser.IsEmpty());
  EXPECT_TRUE(approval.areason.IsEmpty());
}

rev::RevisionBaseInfo approved_record() {
  rev::RevisionBaseInfo record;
  record.revid = 1;
  record.revision = 2;
  record.majorver = 3;
  record.minorver = 4;
  record.flag = 5;
  record.ctime = COleDateTime(2024, 3, 15, 8, 30, 0);
  record.cuserid = 6;
  record.cuser = "anna";
  record.creason = "why";
  record.approval = std::make_shared<rev::RevisionApprovalInfo>();
  record.approval->alevel = 9;
  record.approval->auser = "bob";
  return record;
}

TEST(RevisionBaseInfo, a_copy_has_equal_fields_and_an_approval_of_its_own) {
  const rev::RevisionBaseInfo record = approved_record();
  const rev::RevisionBaseInfo copy(record);
  EXPECT_EQ(copy.revid, 1);
  EXPECT_EQ(copy.revision, 2);
  EXPECT_EQ(copy.majorver, 3);
  EXPECT_EQ(copy.minorver, 4);
  EXPECT_EQ(copy.flag, 5);
  EXPECT_EQ(copy.ctime, record.ctime);
  EXPECT_EQ(copy.cuserid, 6);
  EXPECT_EQ(copy.cuser, "anna");
  EXPECT_EQ(copy.creason, "why");
  ASSERT_NE(copy.approval, nullptr);
  EXPECT_NE(copy.approval, record.approval);
  EXPECT_EQ(copy.approval->alevel, 9);
  EXPECT_EQ(copy.approval->auser, "bob");
  copy.approval->alevel = 1;
  EXPECT_EQ(record.approval->alevel, 9);
}

TEST(RevisionBaseInfo, assigned_from_one_without_approval_has_none) {
  rev::RevisionBaseInfo record = approved_record();
  const auto held = record.approval;
  record = rev::RevisionBaseInfo();
  EXPECT_EQ(record.approval, nullptr);
  const rev::RevisionBaseInfo plain;
  rev::RevisionBaseInfo other = approved_record();
  other = plain;
  EXPECT_EQ(other.approval, nullptr);
  EXPECT_EQ(held->alevel, 9);
}

TEST(RevisionBaseInfo, assigned_to_itself_stays_as_it_is) {
  rev::RevisionBaseInfo record = approved_record();
  const auto* approval = record.approval.get();
  const rev::RevisionBaseInfo& same = record;
  record = same;
  EXPECT_EQ(record.approval.get(), approval);
  EXPECT_EQ(record.cuser, "anna");
}

TEST(RevisionInfo, is_stamped_with_the_present_in_utc) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 7, 1, 12, 0, 30));
  const rev::RevisionInfo record;
  EXPECT_EQ(text_of(record.cached_at), "2024-07-01 12:00:30");
  EXPECT_EQ(record.data.long_bin.m_hData, nullptr);
}

TEST(RevisionInfo, a_copy_has_a_payload_of_its_own_and_the_age_of_the_first) {
  HeldClock clock(utc(2024, 7, 1, 12));
  rev::RevisionInfo record;
  static_cast<rev::RevisionBaseInfo&>(record) = approved_record();
  copy_blob(record.data.long_bin, *test_support::payload("abc"));
  clock.advance(std::chrono::hours(1));
  const rev::RevisionInfo copy(record);
  EXPECT_EQ(bytes_of(copy), "abc");
  EXPECT_NE(copy.data.long_bin.m_hData, record.data.long_bin.m_hData);
  EXPECT_EQ(copy.cached_at, record.cached_at);
  EXPECT_NE(copy.approval, record.approval);
  EXPECT_EQ(copy.revision, 2);
}

TEST(RevisionException, reason_4_has_the_text_of_reason_3_as_is_meant_and_later_ones_have_none) {
  const char* const texts[] = {"No revisions.",
                               "Not the latest revision.",
                               "The revision was already approved.",
                               "Approving a broken revision is not allowed.",
                               "Approving a broken revision is not allowed.",
                               "",
                               ""};
  for (int reason = 0; reason < 7; ++reason)
    EXPECT_EQ(rev::RevisionException(3, 5, 1, reason).what(), texts[reason]) << reason;
}

/// The moment as hosts' clocks keep it.
COleDateTime utc_date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  return COleDateTime(year, month, day, hour, minute, second);
}

TEST(is_expired, an_age_of_exactly_the_lifetime_is_still_good) {
  HeldClock clock(utc(2024, 7, 1, 12));
  const COleDateTime stamp = present_utc();
  EXPECT_FALSE(rev::is_expired(1, stamp));
  clock.advance(std::chrono::seconds(60));
  EXPECT_FALSE(rev::is_expired(1, stamp));
  clock.advance(std::chrono::seconds(1));
  EXPECT_TRUE(rev::is_expired(1, stamp));
  EXPECT_FALSE(rev::is_expired(2, stamp));
}

TEST(is_expired, a_lifetime_of_0_or_less_never_ends) {
  const HeldClock clock(utc(2024, 7, 1));
  EXPECT_FALSE(rev::is_expired(0, utc_date(1970, 1, 1)));
  EXPECT_FALSE(rev::is_expired(-5, utc_date(1970, 1, 1)));
  EXPECT_TRUE(rev::is_expired(1, utc_date(1970, 1, 1)));
}

TEST(is_expired, a_stamp_of_the_future_is_good) {
  const HeldClock clock(utc(2024, 7, 1));
  EXPECT_FALSE(rev::is_expired(1, utc_date(2024, 7, 2)));
}

TEST(is_expired, counts_whole_seconds_rounded_to_the_nearest) {
  const HeldClock clock(utc(2024, 7, 1));
  const double now = present_utc().m_dt;
  EXPECT_FALSE(rev::is_expired(1, COleDateTime(now - 60.4 / 86400)));
  EXPECT_TRUE(rev::is_expired(1, COleDateTime(now - 60.6 / 86400)));
}

TEST(is_expired, before_day_0_the_time_of_day_counts_forward) {
  const double six_o_clock = -1.25;
  const double two_minutes = 2.0 / 1440;
  EXPECT_TRUE(rev::is_older(1, six_o_clock - two_minutes, six_o_clock));
  EXPECT_FALSE(rev::is_older(2, six_o_clock - two_minutes, six_o_clock));
  EXPECT_FALSE(rev::is_older(1, six_o_clock, six_o_clock - two_minutes));
  EXPECT_TRUE(rev::is_older(719, 0, -1.5)) << "noon of the day before, 12 hours ago";
  EXPECT_FALSE(rev::is_older(720, 0, -1.5));
}

TEST(is_expired, a_span_beyond_the_calendar_is_over_in_both_directions) {
  EXPECT_TRUE(rev::is_older(1, 0, 3615897.5)) << "a stamp of the far future too";
  EXPECT_FALSE(rev::is_older(1, 0, 3615897.0));
  EXPECT_TRUE(rev::is_older(1, 3615897.0, 0));
  const HeldClock clock(utc(2024, 7, 1));
  EXPECT_TRUE(rev::is_expired(1, COleDateTime(1e9)));
  EXPECT_TRUE(rev::is_expired(1, COleDateTime(-1e9)));
}

TEST(is_expired, a_large_lifetime_does_not_overflow) {
  const HeldClock clock(utc(2024, 7, 1));
  EXPECT_FALSE(rev::is_expired(2147483647, utc_date(1901, 1, 1)));
}

std::string repeated(const std::string& character, int count) {
  std::string text;
  for (int i = 0; i < count; ++i)
    text += character;
  return text;
}

TEST(cut_reason, keeps_4000_bytes_and_no_half_character) {
  const auto cut = [](const std::string& text) { return std::string(rev::cut_reason(CString(text)).view()); };
  EXPECT_EQ(cut(""), "");
  EXPECT_EQ(cut(repeated("x", 4000)), repeated("x", 4000));
  EXPECT_EQ(cut(repeated("x", 4001)), repeated("x", 4000));
  EXPECT_EQ(cut(repeated("x", 5000)), repeated("x", 4000));
  EXPECT_EQ(cut(repeated("\u00e4", 2001)), repeated("\u00e4", 2000));
  EXPECT_EQ(cut("x" + repeated("\u00e4", 2000)), "x" + repeated("\u00e4", 1999));
  EXPECT_EQ(cut("xxx" + repeated("\U0001F600", 1000)), "xxx" + repeated("\U0001F600", 999));
}

TEST(next_number, goes_round_behind_the_last_as_the_column_does) {
  EXPECT_EQ(rev::next_number(-300), -299);
  EXPECT_EQ(rev::next_number(41), 42);
  EXPECT_EQ(rev::next_number(2147483647), -2147483647 - 1);
}

}  // namespace
