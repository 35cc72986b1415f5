// Plan
// - every recorded text of a date, and every recorded reading of one
// - what the recordings leave open: dates in other locales, month names of other languages, flags, the current year
// - what is written is read back, in every locale with known habits
#include "spcbase/platform/datetime/date_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/support/vector_file.h"

namespace {

using platform::date_from_text;
using platform::text_from_date;
using test_support::HeldClock;
using test_support::read_vectors;
using test_support::utc;
using test_support::ZoneGuard;

constexpr LCID us = 0x409;
constexpr LCID german = 0x407;
constexpr LCID french = 0x40C;
constexpr LCID japanese = 0x411;
constexpr LCID swedish = 0x41D;
constexpr LCID british = 0x809;
constexpr double moment = 45366.586909722224;  // 2024-03-15 14:05:09

/// What a date is written as, or its failing code.
std::string written(double date, LCID locale, DWORD flags = 0) {
  std::string text = "untouched";
  const HRESULT hr = text_from_date(date, locale, flags, text);
  if (SUCCEEDED(hr)) return text;
  char code[16];
  std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(hr));
  return text == "untouched" ? code : text;
}

/// What a text is read as; NaN for a text that is no date.
double read(std::string_view text, LCID locale = us, DWORD flags = 0) {
  double date = -1;
  const HRESULT hr = date_from_text(text, locale, flags, date);
  if (SUCCEEDED(hr)) return date;
  EXPECT_EQ(hr, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(date, -1);
  return std::nan("");
}

bool is_refused(std::string_view text, LCID locale = us) { return std::isnan(read(text, locale)); }

TEST(TextFromDate, recorded_dates_have_their_texts) {
  int rows = 0;
  for (const auto& row : read_vectors("date_format.tsv")) {
    if (row.is_suspect()) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const std::string expected = row["hresult"] == "0x00000000" ? row["output"] : row["hresult"];
    const auto flags = static_cast<DWORD>(std::stoul(row["flags"], nullptr, 0));
    EXPECT_EQ(written(test_support::from_bits(row["bits"]), test_support::hex32(row["locale"]), flags), expected);
  }
  EXPECT_EQ(rows, 248);
}

TEST(TextFromDate, a_flag_asks_for_its_half_even_when_that_is_nothing) {
  EXPECT_EQ(written(45366, us, VAR_TIMEVALUEONLY), "12:00:00 AM");
  EXPECT_EQ(written(0.5, us, VAR_DATEVALUEONLY), "12/30/1899");
}

TEST(TextFromDate, what_is_no_date_is_refused) {
  EXPECT_EQ(written(std::nan(""), us), "0x80070057");
  EXPECT_EQ(written(1e300, german), "0x80070057");
}

TEST(TextFromDate, other_locales_follow_the_locale_data_with_plain_blanks_and_full_years) {
  const std::string canada = written(moment, 0x1009);
  EXPECT_NE(canada.find("2024"), std::string::npos);
  EXPECT_EQ(canada.find("\u202F"), std::string::npos);
  EXPECT_EQ(written(moment, 0x410), "15/03/2024 14:05:09");
  EXPECT_EQ(written(moment, 0x413), "15-03-2024 14:05:09");
}

TEST(DateFromText, recorded_texts_have_their_dates) {
  const ZoneGuard zone("UTC");
  const HeldClock clock(utc(2026, 5, 1));
  int rows = 0;
  for (const auto& row : read_vectors("variant_change.tsv")) {
    const bool open_century = row["note"] == "suspect-two-digit-cutoff-2049";
    if (row["input_type"] != "BSTR" || row["target_type"] != "DATE" || row["input"] == "(null)") continue;
    if (row.is_suspect() && !open_century) continue;
    SCOPED_TRACE(row.place() + " " + row["input"]);
    ++rows;
    double date = 0;
    const HRESULT hr = date_from_text(row["input"], us, 0, date);
    EXPECT_EQ(static_cast<std::uint32_t>(hr), test_support::hex32(row["hresult"]));
    if (SUCCEEDED(hr)) {
      EXPECT_EQ(test_support::bits_of(date), row["bits"]);
    }
  }
  EXPECT_EQ(rows, 93);
}

TEST(DateFromText, dots_part_a_date_where_they_cannot_part_a_time) {
  EXPECT_EQ(read("2024.03.15"), 45366);
  EXPECT_EQ(read("3.15.2024"), 45366);
  EXPECT_EQ(read("14.05.09"), 0.58690972222222226);
}

TEST(DateFromText, the_locale_gives_the_order_of_day_and_month) {
  EXPECT_EQ(read("3/4/2024", us), 45355);
  EXPECT_EQ(read("3/4/2024", british), 45385);
  EXPECT_EQ(read("3/4/2024", french), 45385);
  EXPECT_EQ(read("3.4.2024", german), 45385);
  EXPECT_EQ(read("2024-03-15", german), 45366);
  EXPECT_EQ(read("24/3/15", japanese), 45366);
  EXPECT_EQ(read("24-03-15", swedish), 45366);
  EXPECT_EQ(read("3/25/2024", british), 45376);
}

TEST(DateFromText, dots_part_dates_first_where_the_locale_writes_them_so) {
  EXPECT_EQ(read("1.2.03", german), 37653);
  EXPECT_EQ(read("1.2.2003 6:00", german), 37653.25);
}

TEST(DateFromText, months_are_known_in_the_language_and_in_english) {
  EXPECT_EQ(read("15. M\u00E4rz 2024", german), 45366);
  EXPECT_EQ(read("15 M\u00C4RZ 2024", german), 45366);
  EXPECT_EQ(read("Freitag, 15. M\u00E4rz 2024 14:05:09", german), moment);
  EXPECT_EQ(read("15 march 2024", german), 45366);
  EXPECT_EQ(read("15 mars 2024", french), 45366);
  EXPECT_TRUE(is_refused("15 mars 2024", us));
}

TEST(DateFromText, a_named_month_takes_a_day_or_a_year) {
  const ZoneGuard zone("UTC");
  const HeldClock clock(utc(2024, 5, 1));
  EXPECT_EQ(read("March 15"), 45366);
  EXPECT_EQ(read("March 2024"), 45352);
  EXPECT_TRUE(is_refused("March"));
  EXPECT_TRUE(is_refused("March April 15 2024"));
  EXPECT_TRUE(is_refused("March 1 2 2024"));
}

TEST(DateFromText, a_date_without_a_year_lies_in_the_current_local_one) {
  const HeldClock clock(utc(2023, 12, 31, 23, 0, 0));
  const ZoneGuard zone("Asia/Kolkata");  // 2024 there
  EXPECT_EQ(read("3/15"), 45366);
}

TEST(DateFromText, flags_drop_the_other_half) {
  EXPECT_EQ(read("3/15/2024 12:00", us, VAR_TIMEVALUEONLY), 0.5);
  EXPECT_EQ(read("3/15/2024 12:00", us, VAR_DATEVALUEONLY), 45366);
}

TEST(DateFromText, the_half_of_the_day_must_fit_the_hour) {
  EXPECT_EQ(read("12:00 PM"), 0.5);
  EXPECT_EQ(read("11 pm"), 23 / 24.0);
  EXPECT_TRUE(is_refused("13:00 AM"));
  EXPECT_TRUE(is_refused("25 PM"));
  EXPECT_TRUE(is_refused("AM"));
}

TEST(DateFromText, junk_is_refused) {
  for (const char* text :
       {"1/2/3/4", "1:2:3:4", "1:00 2:00", "1//2/2024", "1, ,2", "\xFF", "1/2/2024 x", "99999999999999999999",
        "3/15/2024,", "-3/15/2024", "3/15/2024 :", "12:00:00:00 PM", "1:2/3", "Monday 12"}) {
    EXPECT_TRUE(is_refused(text)) << text;
  }
}

TEST(DateText, what_is_written_is_read_back) {
  for (const LCID locale :
       {us, german, french, japanese, swedish, british, LCID{0}, LCID{0x7F}, LCID{0x400}, LCID{0x410}}) {
    for (const double date :
         {45366.0, moment, 0.0, 0.5, 2.25, -1.25, 73051.271180555545, 45657.99998842593, -18136.211863425924}) {
      const double back = read(written(date, locale), locale);
      EXPECT_EQ(written(back, locale), written(date, locale));
      EXPECT_NEAR(back, date, 0.5 / 86400) << locale << " " << date;
    }
  }
}

}  // namespace
