// Plan
//   a new record, copies, equality of texts and of dates of any type -> ScheduleInfo.*
//   the element that is written, dates in UTC -> ScheduleInfo_xml.writes_*
//   reading: the walk, absent and odd children, failures -> ScheduleInfo_xml.reads_*, .fails_*
//   there and back in several zones, around both changes -> ScheduleInfo_xml.*
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/schedule/record.h"
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "spcbase/time/calendar.h"
#include "spcbase/utility/internal/xml_elements.h"
#include "spcbase/utility/text.h"

namespace {

using schd::ScheduleInfo;

_variant_t date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  return {static_cast<double>(COleDateTime(year, month, day, hour, minute, second))};
}

IXMLDOMElementPtr element_of(const std::string& text) { return load_xml(text.c_str())->GetdocumentElement(); }

std::string written(const ScheduleInfo& record, int version = 1) {
  IXMLDOMDocumentPtr document = make_document();
  document->PutrefdocumentElement(record.get_xml(version, document));
  CString text(static_cast<const char*>(document->Getxml()));
  return text.Trim().GetString();
}

ScheduleInfo there_and_back(const ScheduleInfo& record) {
  ScheduleInfo read;
  read.set_xml(1, element_of(written(record)));
  return read;
}

ScheduleInfo without_dates() {
  ScheduleInfo record;
  record.start_date = _variant_t();
  return record;
}

TEST(ScheduleInfo, starts_with_every_day_at_8_from_now_on) {
  const test_support::ZoneGuard zone("America/New_York");
  const test_support::HeldClock clock(test_support::utc(2024, 7, 4, 12, 30, 15));
  const ScheduleInfo fresh;
  EXPECT_EQ(fresh.schedule_string, "0 8 * * *");
  EXPECT_EQ(fresh.start_date.vt, VT_R8);
  EXPECT_EQ(COleDateTime(fresh.start_date.dblVal), COleDateTime(2024, 7, 4, 8, 30, 15));
  EXPECT_EQ(fresh.end_date.vt, VT_EMPTY);
  EXPECT_TRUE(fresh.repeat_string.IsEmpty());
}

TEST(ScheduleInfo, copies_all_fields_and_itself_without_harm) {
  ScheduleInfo record = without_dates();
  record.schedule_string = "30 6 */2 * *";
  record.end_date = date(2024, 2, 2);
  record.repeat_string = "10 m 2";
  ScheduleInfo copy;
  copy = record;
  const auto& same = copy;
  copy = same;
  EXPECT_TRUE(copy == record);
  EXPECT_TRUE(ScheduleInfo(copy) == record);
  copy.end_date = date(2025, 2, 2);
  EXPECT_FALSE(copy == record);
}

TEST(ScheduleInfo, a_date_that_cannot_be_copied_fails_with_its_code) {
  ScheduleInfo record = without_dates();
  record.end_date.vt = 0x0FFF;
  ScheduleInfo copy = without_dates();
  try {
    copy = record;
    ADD_FAILURE() << "nothing was thrown";
  } catch (const _com_error& failure) {
    EXPECT_EQ(failure.Error(), DISP_E_BADVARTYPE);
  }
  record.end_date.vt = VT_EMPTY;
}

TEST(ScheduleInfo, differs_by_each_field) {
  const ScheduleInfo record = without_dates();
  ScheduleInfo other = record;
  other.schedule_string = "0 8 * * 1";
  EXPECT_FALSE(other == record);
  other = record;
  other.start_date = date(2024, 1, 1);
  EXPECT_FALSE(other == record);
  other = record;
  other.end_date = date(2024, 1, 1);
  EXPECT_FALSE(other == record);
  other = record;
  other.repeat_string = "10 M 2";
  EXPECT_FALSE(other == record);
  ScheduleInfo lower = other;
  lower.repeat_string = "10 m 2";
  EXPECT_FALSE(lower == other) << "case matters";
}

TEST(ScheduleInfo, an_empty_date_equals_only_an_empty_one) {
  ScheduleInfo left = without_dates();
  ScheduleInfo right = without_dates();
  EXPECT_TRUE(left == right);
  right.start_date = _variant_t(0.0);
  EXPECT_FALSE(left == right);
  EXPECT_FALSE(right == left);
}

TEST(ScheduleInfo, dates_are_equal_whatever_the_type_of_their_variants) {
  ScheduleInfo left = without_dates();
  ScheduleInfo right = without_dates();
  left.start_date = _variant_t(45293.5);
  right.start_date = _variant_t(45293.5, VT_DATE);
  EXPECT_TRUE(left == right);
  right.start_date = "2024-01-02 12:00";
  EXPECT_TRUE(left == right);
  right.start_date = _variant_t(45293.25);
  EXPECT_FALSE(left == right);
}

TEST(ScheduleInfo, dates_that_cannot_be_converted_are_equal_to_each_other_alone) {
  ScheduleInfo left = without_dates();
  ScheduleInfo right = without_dates();
  left.end_date = "soon";
  right.end_date = "later";
  EXPECT_TRUE(left == right);
  right.end_date = _variant_t(0.0);
  EXPECT_FALSE(left == right);
}

TEST(ScheduleInfo_xml, writes_a_new_record_with_a_start_an_empty_end_and_an_empty_repeat) {
  const test_support::ZoneGuard zone("America/New_York");
  const test_support::HeldClock clock(test_support::utc(2024, 7, 4, 12, 0, 0));
  EXPECT_EQ(written(ScheduleInfo()),
            "<schedule_info><schedule_string>0 8 * * *</schedule_string><start_date>45477.5</start_date><end_date/>"
            "<repeat_string/></schedule_info>");
}

TEST(ScheduleInfo_xml, writes_dates_in_utc_by_the_zone_s_rule_for_the_date) {
  const test_support::ZoneGuard zone("Europe/Berlin");
  ScheduleInfo record = without_dates();
  record.start_date = date(2024, 1, 1, 1);
  record.end_date = date(2024, 7, 1, 2);
  const auto text = written(record);
  EXPECT_NE(text.find("<start_date>45292.0</start_date><end_date>45474.0</end_date>"), std::string::npos) << text;
}

TEST(ScheduleInfo_xml, writes_a_date_that_the_zone_cannot_convert_as_it_stands) {
  const test_support::ZoneGuard zone("Europe/Berlin");
  ScheduleInfo record = without_dates();
  record.start_date = _variant_t(-200000.0);  // the year 1352; zones begin with 1601
  EXPECT_NE(written(record).find("<start_date>-200000.0</start_date>"), std::string::npos) << written(record);
  EXPECT_EQ(there_and_back(record).start_date.dblVal, -200000.0);
}

TEST(ScheduleInfo_xml, the_version_makes_no_difference) {
  const ScheduleInfo record;
  for (const int version : {-1, 0, 1, 99}) {
    EXPECT_EQ(written(record, version), written(record));
    ScheduleInfo read;
    read.set_xml(version, element_of(written(record)));
    EXPECT_TRUE(read == record);
  }
}

TEST(ScheduleInfo_xml, reads_nothing_into_a_field_whose_child_is_absent) {
  ScheduleInfo record;
  record.end_date = date(2024, 2, 2);
  const ScheduleInfo before = record;
  record.set_xml(1, element_of("<any/>"));
  EXPECT_TRUE(record == before);
  record.set_xml(1, element_of("<any><repeat_string>5 m 2</repeat_string></any>"));
  EXPECT_EQ(record.repeat_string, "5 m 2");
  EXPECT_TRUE(record.end_date == before.end_date);
}

TEST(ScheduleInfo_xml, reads_an_empty_date_as_none) {
  ScheduleInfo record;
  record.end_date = date(2024, 2, 2);
  record.set_xml(1, element_of("<any><start_date></start_date><end_date/></any>"));
  EXPECT_EQ(record.start_date.vt, VT_EMPTY);
  EXPECT_EQ(record.end_date.vt, VT_EMPTY);
}

TEST(ScheduleInfo_xml, reads_the_last_of_a_repeated_child_and_passes_over_strange_ones) {
  ScheduleInfo record;
  record.set_xml(1, element_of("<any><schedule_string>a</schedule_string><Repeat_string>x</Repeat_string>"
                               "<schedule_string>b</schedule_string></any>"));
  EXPECT_EQ(record.schedule_string, "b");
  EXPECT_TRUE(record.repeat_string.IsEmpty());
}

TEST(ScheduleInfo_xml, reads_nothing_behind_a_comment) {
  ScheduleInfo record;
  record.set_xml(1,
                 element_of("<any><schedule_string>a</schedule_string><!-- --><repeat_string>x</repeat_string></any>"));
  EXPECT_EQ(record.schedule_string, "a");
  EXPECT_TRUE(record.repeat_string.IsEmpty());
}

TEST(ScheduleInfo_xml, reads_schedules_that_no_parser_takes) {
  ScheduleInfo record;
  record.set_xml(1, element_of("<any><schedule_string>whenever</schedule_string></any>"));
  EXPECT_EQ(record.schedule_string, "whenever");
}

TEST(ScheduleInfo_xml, fails_with_xml_error_where_a_child_has_children_but_no_text_and_keeps_what_came_before) {
  ScheduleInfo record;
  try {
    record.set_xml(1, element_of("<any><schedule_string>a</schedule_string><repeat_string><b/></repeat_string></any>"));
    ADD_FAILURE() << "nothing was thrown";
  } catch (const DBException& failure) {
    EXPECT_EQ(failure.what(), "XML error.");
  }
  EXPECT_EQ(record.schedule_string, "a");
}

TEST(ScheduleInfo_xml, fails_with_e_pointer_without_a_document_or_an_element) {
  ScheduleInfo record;
  IXMLDOMDocumentPtr no_document;
  const auto code_of = [](auto work) {
    try {
      work();
    } catch (const _com_error& failure) {
      return failure.Error();
    }
    return S_OK;
  };
  EXPECT_EQ(code_of([&] { record.get_xml(1, no_document); }), E_POINTER);
  EXPECT_EQ(code_of([&] { record.set_xml(1, IXMLDOMElementPtr()); }), E_POINTER);
}

TEST(ScheduleInfo_xml, a_date_near_a_change_comes_back_by_the_rule_of_that_date) {
  const test_support::HeldClock clock(test_support::utc(2024, 7, 4, 12, 0, 0));
  for (const char* name :
       {"America/New_York", "Europe/Berlin", "Asia/Kolkata", "America/St_Johns", "Australia/Sydney", "UTC"}) {
    const test_support::ZoneGuard zone(name);
    for (const auto& start : {date(2024, 1, 1, 0, 30), date(2024, 3, 9, 23, 59, 59), date(2024, 3, 10, 3, 30),
                              date(2024, 3, 31, 4), date(2024, 4, 7, 4), date(2024, 10, 6, 4), date(2024, 10, 27, 4),
                              date(2024, 11, 3, 3), date(2024, 12, 31, 23, 59, 59), date(1969, 12, 31, 12)}) {
      ScheduleInfo record = without_dates();
      record.start_date = start;
      EXPECT_TRUE(there_and_back(record) == record) << name << " " << start.dblVal;
    }
  }
}

TEST(ScheduleInfo_xml, comes_back_equal_but_for_what_is_below_a_second) {
  const test_support::ZoneGuard zone("Asia/Kolkata");
  std::mt19937 random{7};
  for (int i = 0; i < 300; ++i) {
    ScheduleInfo record;
    record.schedule_string = CString("a<&\"' \xC3\xA4") + CString(std::to_string(random()));
    record.repeat_string = std::to_string(random()).c_str();
    const double seconds = static_cast<double>(random() % 4000000000U);
    record.start_date = _variant_t(seconds / 86400 + 1000);
    const auto read = there_and_back(record);
    EXPECT_EQ(read.schedule_string, record.schedule_string);
    EXPECT_EQ(read.repeat_string, record.repeat_string);
    EXPECT_NEAR(read.start_date.dblVal, record.start_date.dblVal, 0.5 / 86400);
    EXPECT_TRUE(there_and_back(read) == read) << "whole seconds come back as they are";
  }
}

}  // namespace
