// Plan: each word in English and in a translation; its recogniser takes exactly the word, in the language of the table.
#include "spcbase/time/unit_words.h"

#include <gtest/gtest.h>

#include "tests/support/german_messages.h"

namespace {

struct Word {
  CString (*get)();
  bool (*is)(const CString&);
  const char* english;
  const char* german;
};

constexpr Word words[] = {
    {GetDayStr, IsDayStr, "Day", "Tag"},
    {GetWeekStr, IsWeekStr, "Week", "Woche"},
    {GetMonthStr, IsMonthStr, "Month", "Monat"},
    {GetQuarterStr, IsQuarterStr, "Quarter", "Quartal"},
    {GetYearStr, IsYearStr, "Year", "Jahr"},
    {GetHourStr, IsHourStr, "Hour", "Stunde"},
    {GetMinuteStr, IsMinuteStr, "Minute", "Minute"},
    {GetSecondStr, IsSecondStr, "Second", "Sekunde"},
};

TEST(UnitWords, are_those_of_the_message_table) {
  for (const Word& word : words)
    EXPECT_EQ(word.get(), word.english);
}

TEST(UnitWords, are_recognised_by_their_own_recogniser_alone) {
  for (const Word& word : words)
    for (const Word& other : words)
      EXPECT_EQ(word.is(other.english), &word == &other) << word.english << ", " << other.english;
}

TEST(IsDayStr, day_in_lower_case_is_not_the_word_and_Day_is) {
  EXPECT_FALSE(IsDayStr("day"));
  EXPECT_TRUE(IsDayStr("Day"));
}

TEST(UnitWords, only_the_exact_word_is_recognised) {
  for (const Word& word : words) {
    EXPECT_FALSE(word.is(CString(word.english).MakeLower()));
    EXPECT_FALSE(word.is(CString(word.english).MakeUpper()));
    EXPECT_FALSE(word.is(CString(word.english) + " "));
    EXPECT_FALSE(word.is(""));
  }
}

TEST(UnitWords, follow_a_translated_table) {
  const test_support::InstalledMessages german(test_support::german_messages());
  for (const Word& word : words) {
    EXPECT_EQ(word.get(), word.german);
    EXPECT_TRUE(word.is(word.german));
    EXPECT_EQ(word.is(word.english), CString(word.english) == word.german);
  }
}

}  // namespace
