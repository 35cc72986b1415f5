// Plan
//   a new range, copies, equality -> DateTimeRange.*
//   the words of XML and their fallbacks -> DateTimeRange_words.*
//   what people and logs read -> DateTimeRange_text.*
//   XML there and back, the walk, failures -> DateTimeRange_xml.*
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/datetime/user_locale.h"
#include "spcbase/time/range.h"
#include "spcbase/utility/internal/xml_elements.h"
#include "tests/support/german_messages.h"

namespace {

constexpr auto outside_types = static_cast<DateTimeRange::RangeType>(14);
constexpr auto below_types = static_cast<DateTimeRange::RangeType>(-1);
constexpr auto outside_units = static_cast<DateTimeRange::RangeUnit>(8);

DateTimeRange of_type(int type) {
  DateTimeRange range;
  range.type = static_cast<DateTimeRange::RangeType>(type);
  range.from = COleDateTime(2024, 3, 15, 8, 5, 9);
  range.to = COleDateTime(2024, 3, 16, 17, 30, 0);
  range.count = 5;
  range.time_unit = DateTimeRange::day;
  return range;
}

IXMLDOMElementPtr element_of(const std::string& text) { return load_xml(text.c_str())->GetdocumentElement(); }

std::string written(const DateTimeRange& range, const char* tag = "range") {
  IXMLDOMDocumentPtr document = make_document();
  document->PutrefdocumentElement(range.get_xml(document, tag));
  CString text(static_cast<const char*>(document->Getxml()));
  return text.Trim().GetString();
}

TEST(DateTimeRange, starts_as_this_week_count_1_unit_week_with_null_moments) {
  const DateTimeRange fresh;
  EXPECT_EQ(fresh.type, 2);
  EXPECT_EQ(fresh.count, 1);
  EXPECT_EQ(fresh.time_unit, 1);
  EXPECT_EQ(fresh.from.GetStatus(), COleDateTime::null);
  EXPECT_EQ(fresh.to.GetStatus(), COleDateTime::null);
}

TEST(DateTimeRange, copies_all_five_fields_and_itself_without_harm) {
  const DateTimeRange range = of_type(6);
  DateTimeRange copy;
  copy = range;
  const auto& same = copy;
  copy = same;
  EXPECT_EQ(copy.from, range.from);
  EXPECT_EQ(copy.to, range.to);
  EXPECT_EQ(copy.type, 6);
  EXPECT_EQ(copy.count, 5);
  EXPECT_EQ(copy.time_unit, 0);
  EXPECT_EQ(DateTimeRange(copy).count, 5);
}

TEST(DateTimeRange, two_of_one_named_period_are_equal_whatever_their_moments) {
  for (const int type : {1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13}) {
    const DateTimeRange left = of_type(type);
    DateTimeRange right = of_type(type);
    right.from = COleDateTime(1999, 1, 1, 0, 0, 0);
    right.count = 9;
    EXPECT_TRUE(left == right) << type;
    right.type = DateTimeRange::fixed_range;
    EXPECT_FALSE(left == right) << type;
  }
}

TEST(DateTimeRange, fixed_ones_are_equal_by_their_moments_to_the_second) {
  const DateTimeRange left = of_type(0);
  DateTimeRange right = of_type(0);
  right.count = 77;
  EXPECT_TRUE(left == right);
  right.from.m_dt += 0.2 / 86400;
  EXPECT_TRUE(left == right);
  right.from = COleDateTime(2024, 3, 15, 8, 5, 10);
  EXPECT_FALSE(left == right);
  right = of_type(0);
  right.to = COleDateTime(2024, 3, 16, 17, 30, 1);
  EXPECT_FALSE(left == right);
}

TEST(DateTimeRange, the_last_units_are_equal_by_count_and_unit) {
  DateTimeRange right = of_type(6);
  right.from = COleDateTime(1999, 1, 1, 0, 0, 0);
  EXPECT_TRUE(of_type(6) == right);
  right.count = 6;
  EXPECT_FALSE(of_type(6) == right);
  right = of_type(6);
  right.time_unit = DateTimeRange::week;
  EXPECT_FALSE(of_type(6) == right);
}

TEST(DateTimeRange_words, every_type_has_its_xml_word_and_comes_back_from_it) {
  const char* const words[] = {
      "user_defined",    "today", "this_week", "this_month", "this_quarter", "this_year",    "user_defined_range",
      "no_initial_data", "all",   "yesterday", "last_week",  "last_month",   "last_quarter", "last_year"};
  for (int type = 0; type < 14; ++type) {
    EXPECT_EQ(DateTimeRange::get_range_type_eng_str(static_cast<DateTimeRange::RangeType>(type)), words[type]);
    EXPECT_EQ(DateTimeRange::get_range_type(words[type]), type);
  }
}

TEST(DateTimeRange_words, a_type_outside_the_table_is_written_as_this_week) {
  EXPECT_EQ(DateTimeRange::get_range_type_eng_str(outside_types), "this_week");
  EXPECT_EQ(DateTimeRange::get_range_type_eng_str(below_types), "this_week");
}

TEST(DateTimeRange_words, the_words_of_a_line_are_no_words_of_xml_and_read_as_this_week) {
  EXPECT_EQ(DateTimeRange::get_range_type("all_data"), 2);
  EXPECT_EQ(DateTimeRange::get_range_type("fixed_range"), 2);
  EXPECT_EQ(DateTimeRange::get_range_type("last"), 2);
  EXPECT_EQ(DateTimeRange::get_range_type("Today"), 2) << "case matters";
  EXPECT_EQ(DateTimeRange::get_range_type(""), 2);
}

TEST(DateTimeRange_words, every_unit_has_its_word_and_comes_back_from_it) {
  const char* const words[] = {"day", "week", "month", "quarter", "hour", "minute", "second", "year"};
  for (int unit = 0; unit < 8; ++unit) {
    EXPECT_EQ(DateTimeRange::get_unit_eng_str(static_cast<DateTimeRange::RangeUnit>(unit)), words[unit]);
    EXPECT_EQ(DateTimeRange::get_unit(words[unit]), unit);
  }
}

TEST(DateTimeRange_words, a_unit_with_a_capital_or_none_is_week) {
  EXPECT_EQ(DateTimeRange::get_unit("Day"), 1);
  EXPECT_EQ(DateTimeRange::get_unit(""), 1);
  EXPECT_EQ(DateTimeRange::get_unit_eng_str(outside_units), "week");
}

TEST(DateTimeRange_text, each_choice_is_shown_by_its_message) {
  const char* const texts[] = {"between 3/15/2024 8:05:09 AM and 3/16/2024 5:30:00 PM",
                               "Today",
                               "This week",
                               "This month",
                               "This quarter",
                               "This year",
                               "last 5 day",
                               "No initial data",
                               "All data",
                               "Yesterday",
                               "Last week",
                               "Last month",
                               "Last quarter",
                               "Last year"};
  for (int type = 0; type < 14; ++type)
    EXPECT_EQ(of_type(type).get_display_string(""), texts[type]);
}

TEST(DateTimeRange_text, a_name_stands_before_the_choice) {
  EXPECT_EQ(of_type(1).get_display_string(""), "Today");
  EXPECT_EQ(of_type(1).get_display_string("Created"), "Created = Today");
  EXPECT_EQ(of_type(1).get_display_string("100%s"), "100%s = Today");
}

TEST(DateTimeRange_text, every_unit_is_shown_and_a_strange_one_is_left_out) {
  const char* const words[] = {"day", "week", "month", "quarter", "hour", "minute", "second", "year"};
  DateTimeRange range = of_type(6);
  for (int unit = 0; unit < 8; ++unit) {
    range.time_unit = static_cast<DateTimeRange::RangeUnit>(unit);
    EXPECT_EQ(range.get_display_string(""), (std::string("last 5 ") + words[unit]).c_str());
  }
  range.time_unit = outside_units;
  EXPECT_EQ(range.get_display_string(""), "last 5 ");
  EXPECT_EQ(range.get_log_str(), "last 5 week") << "a log takes the word of XML";
}

TEST(DateTimeRange_text, a_type_outside_the_table_is_empty_everywhere) {
  DateTimeRange range = of_type(0);
  range.type = outside_types;
  EXPECT_TRUE(range.get_display_string("").IsEmpty());
  EXPECT_TRUE(range.get_display_string("Created").IsEmpty());
  EXPECT_TRUE(range.get_log_str().IsEmpty());
  EXPECT_TRUE(range.to_string().IsEmpty());
}

TEST(DateTimeRange_text, each_choice_is_logged_in_english) {
  const char* const texts[] = {"from [3/15/2024 8:05:09 AM] to [3/16/2024 5:30:00 PM]",
                               "today",
                               "this week",
                               "this month",
                               "this quarter",
                               "this year",
                               "last 5 day",
                               "no initial data",
                               "all data",
                               "yesterday",
                               "last week",
                               "last month",
                               "last quarter",
                               "last year"};
  for (int type = 0; type < 14; ++type)
    EXPECT_EQ(of_type(type).get_log_str(), texts[type]);
}

TEST(DateTimeRange_text, moments_that_are_null_or_invalid_are_told_so) {
  DateTimeRange range = of_type(0);
  range.from.SetStatus(COleDateTime::null);
  range.to.SetStatus(COleDateTime::invalid);
  EXPECT_EQ(range.get_log_str(), "from [] to [Invalid DateTime]");
}

TEST(DateTimeRange_text, the_display_follows_a_translated_table_and_the_users_locale) {
  const test_support::InstalledMessages german(test_support::german_messages());
  const platform::HeldUserLocale users("de_DE.UTF-8");
  const char* const texts[] = {"zwischen 15.3.2024 08:05:09 und 16.3.2024 17:30:00",
                               "Heute",
                               "Diese Woche",
                               "Dieser Monat",
                               "Dieses Quartal",
                               "Dieses Jahr",
                               "letzte 5 Tag(e)",
                               "Keine Anfangsdaten",
                               "Alle Daten",
                               "Gestern",
                               "Letzte Woche",
                               "Letzter Monat",
                               "Letztes Quartal",
                               "Letztes Jahr"};
  for (int type = 0; type < 14; ++type) {
    EXPECT_EQ(of_type(type).get_display_string(""), texts[type]);
    EXPECT_EQ(of_type(type).get_display_string("Erstellt"), CString("Erstellt = ") + texts[type]);
  }
  const char* const units[] = {"Tag(e)",    "Woche(n)",  "Monat(e)",   "Quartal(e)",
                               "Stunde(n)", "Minute(n)", "Sekunde(n)", "Jahr(e)"};
  DateTimeRange range = of_type(6);
  for (int unit = 0; unit < 8; ++unit) {
    range.time_unit = static_cast<DateTimeRange::RangeUnit>(unit);
    EXPECT_EQ(range.get_display_string(""), CString("letzte 5 ") + units[unit]);
  }
}

TEST(DateTimeRange_text, line_log_and_xml_follow_no_table_and_no_locale) {
  const auto forms = [] {
    std::string all;
    for (int type = 0; type < 14; ++type)
      all += std::string(of_type(type).to_string()) + '\n' + std::string(of_type(type).get_log_str()) + '\n' +
             written(of_type(type)) + '\n';
    return all;
  };
  const std::string english = forms();
  const test_support::InstalledMessages german(test_support::german_messages());
  const platform::HeldUserLocale users("de_DE.UTF-8");
  EXPECT_EQ(forms(), english);
}

TEST(DateTimeRange_xml, writes_all_five_children_whatever_the_type) {
  for (const int type : {0, 1, 6, 8})
    EXPECT_EQ(written(of_type(type), "when"),
              "<when><type>" + std::string(DateTimeRange::get_range_type_eng_str(of_type(type).type)) +
                  "</type><count>5</count><time_unit>day</time_unit><from>45366.33690972222393611446</from>"
                  "<to>45367.72916666667151730508</to></when>");
}

TEST(DateTimeRange_xml, comes_back_to_the_last_bit) {
  std::mt19937_64 random{20240315};
  std::uniform_real_distribution<double> days(-600000, 2900000);
  for (int i = 0; i < 2000; ++i) {
    DateTimeRange range = of_type(static_cast<int>(random() % 14));
    range.from = COleDateTime(days(random));
    range.to = COleDateTime(days(random));
    range.count = static_cast<int>(random());
    range.time_unit = static_cast<DateTimeRange::RangeUnit>(random() % 8);
    DateTimeRange read;
    read.set_xml(element_of(written(range)));
    ASSERT_EQ(read.type, range.type);
    ASSERT_EQ(read.count, range.count);
    ASSERT_EQ(read.time_unit, range.time_unit);
    ASSERT_EQ(read.from, range.from);
    ASSERT_EQ(read.to, range.to);
  }
}

TEST(DateTimeRange_xml, null_moments_keep_their_day_numbers_and_come_back_valid) {
  DateTimeRange range = of_type(8);
  range.Recalculate(DateTimeCalculation());
  ASSERT_EQ(range.from.GetStatus(), COleDateTime::null);
  ASSERT_EQ(range.to.GetStatus(), COleDateTime::null);
  DateTimeRange read;
  read.set_xml(element_of(written(range)));
  EXPECT_EQ(read.from, of_type(8).from);
  EXPECT_EQ(read.to.GetStatus(), COleDateTime::valid);
  EXPECT_EQ(read.to.m_dt, range.to.m_dt);
}

TEST(DateTimeRange_xml, reads_nothing_into_a_field_whose_child_is_absent_and_passes_over_strange_ones) {
  DateTimeRange range = of_type(6);
  range.set_xml(element_of("<r><Count>9</Count><time_unit>month</time_unit><x/></r>"));
  EXPECT_EQ(range.type, 6);
  EXPECT_EQ(range.count, 5);
  EXPECT_EQ(range.time_unit, DateTimeRange::month);
  EXPECT_EQ(range.from, of_type(6).from);
}

TEST(DateTimeRange_xml, bad_words_and_numbers_are_taken_as_this_week_week_and_0) {
  DateTimeRange range = of_type(6);
  range.set_xml(element_of("<r><type>soon</type><count>x</count><time_unit>Day</time_unit><from>y</from></r>"));
  EXPECT_EQ(range.type, 2);
  EXPECT_EQ(range.count, 0);
  EXPECT_EQ(range.time_unit, 1);
  EXPECT_EQ(range.from, COleDateTime(0.0));
}

TEST(DateTimeRange_xml, reads_nothing_behind_a_comment) {
  DateTimeRange range = of_type(6);
  range.set_xml(element_of("<r><type>today</type><!-- --><count>9</count></r>"));
  EXPECT_EQ(range.type, 1);
  EXPECT_EQ(range.count, 5);
}

TEST(DateTimeRange_xml,
     fails_with_e_pointer_without_a_document_or_an_element_and_with_xml_error_for_a_child_without_text) {
  DateTimeRange range = of_type(6);
  IXMLDOMDocumentPtr no_document;
  try {
    range.get_xml(no_document, "r");
    ADD_FAILURE() << "nothing was thrown";
  } catch (const _com_error& failure) {
    EXPECT_EQ(failure.Error(), E_POINTER);
  }
  try {
    range.set_xml(IXMLDOMElementPtr());
    ADD_FAILURE() << "nothing was thrown";
  } catch (const _com_error& failure) {
    EXPECT_EQ(failure.Error(), E_POINTER);
  }
  EXPECT_THROW(range.set_xml(element_of("<r><type><b/></type></r>")), DBException);
}

}  // namespace
