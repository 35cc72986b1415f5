// Plan
// - names of the C library's locales as the locale data know them; "C", unknown ones and no name are US English
// - the ids that mean the user's locale follow what the program chose; other ids do not
// - a program that chose nothing has the recorded texts of US English
// - texts in the user's locale: default forms, one half, the neutral pattern; they are read back in every locale
#include "spcbase/platform/datetime/user_locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <stdexcept>
#include <string>

#include "spcbase/platform/datetime/ole_datetime.h"
#include "tests/support/environment_guard.h"
#include "tests/support/made_locale.h"

namespace {

using platform::date_locale;
using platform::HeldUserLocale;
using platform::locale_of_c_name;

constexpr LCID user_default = 0x400;
const COleDateTime moment(2024, 3, 5, 14, 5, 9);

/// Makes a locale of a name and chooses it for dates.
class ChosenForDates {
 public:
  explicit ChosenForDates(const std::string& name)
      : before_(std::setlocale(LC_TIME, nullptr)), made_(name), path_("LOCPATH", made_.folder()) {
    if (!std::setlocale(LC_TIME, name.c_str())) throw std::runtime_error("the locale of the test cannot be chosen");
  }
  ~ChosenForDates() { std::setlocale(LC_TIME, before_.c_str()); }
  ChosenForDates(const ChosenForDates&) = delete;
  ChosenForDates& operator=(const ChosenForDates&) = delete;

 private:
  std::string before_;
  test_support::MadeLocale made_;
  test_support::EnvironmentGuard path_;
};

TEST(locale_of_c_name, is_the_name_without_encoding_and_modifier) {
  EXPECT_EQ(locale_of_c_name("de_DE.UTF-8"), "de_DE");
  EXPECT_EQ(locale_of_c_name("de_AT"), "de_AT");
  EXPECT_EQ(locale_of_c_name("de_DE@euro"), "de_DE");
  EXPECT_EQ(locale_of_c_name("fr"), "fr");
}

TEST(locale_of_c_name, stands_for_us_english_where_no_language_is_chosen_or_known) {
  for (const char* name : {"C", "POSIX", "C.UTF-8", "C.utf8", "", "xx_YY.UTF-8", "no such locale", "numbers"})
    EXPECT_EQ(locale_of_c_name(name), "en_US") << name;
}

TEST(date_locale, the_neutral_and_default_ids_are_the_users) {
  const HeldUserLocale french("fr_FR.UTF-8");
  for (const LCID id : {0x0U, 0x400U, 0x800U, 0x80000400U})
    EXPECT_EQ(date_locale(id), "fr_FR") << id;
}

TEST(date_locale, other_ids_stay_what_they_are) {
  const HeldUserLocale french("fr_FR.UTF-8");
  EXPECT_EQ(date_locale(0x409), "en_US");
  EXPECT_EQ(date_locale(0x407), "de_DE");
  EXPECT_EQ(date_locale(0x7F), "");
}

TEST(date_locale, a_program_that_chose_none_has_us_english) { EXPECT_EQ(date_locale(user_default), "en_US"); }

TEST(date_locale, follows_what_the_process_chose_for_dates) {
  {
    const ChosenForDates german("de_DE.UTF-8");
    EXPECT_EQ(date_locale(user_default), "de_DE");
    EXPECT_STREQ(moment.Format(), "5.3.2024 14:05:09");
  }
  EXPECT_EQ(date_locale(user_default), "en_US");
}

TEST(date_locale, is_not_moved_by_the_environment_nor_by_a_choice_for_other_categories) {
  const test_support::EnvironmentGuard all("LC_ALL", "de_DE.UTF-8");
  EXPECT_EQ(date_locale(user_default), "en_US");
  const std::string before = std::setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  EXPECT_EQ(date_locale(user_default), "en_US");
  std::setlocale(LC_CTYPE, before.c_str());
}

TEST(HeldUserLocale, nests) {
  const HeldUserLocale outer("de_DE");
  {
    const HeldUserLocale inner("sv_SE");
    EXPECT_EQ(date_locale(user_default), "sv_SE");
  }
  EXPECT_EQ(date_locale(user_default), "de_DE");
}

struct UsersDate {
  const char* locale;
  const char* both;
  const char* time;
  const char* date;
};

constexpr UsersDate users_dates[] = {
    {"C", "3/5/2024 2:05:09 PM", "2:05:09 PM", "3/5/2024"},
    {"en_US.UTF-8", "3/5/2024 2:05:09 PM", "2:05:09 PM", "3/5/2024"},
    {"en_GB.UTF-8", "05/03/2024 14:05:09", "14:05:09", "05/03/2024"},
    {"de_DE.UTF-8", "5.3.2024 14:05:09", "14:05:09", "5.3.2024"},
    {"fr_FR.UTF-8", "05/03/2024 14:05:09", "14:05:09", "05/03/2024"},
    {"sv_SE.UTF-8", "2024-03-05 14:05:09", "14:05:09", "2024-03-05"},
    {"ja_JP.UTF-8", "2024/3/5 14:05:09", "14:05:09", "2024/3/5"},
    // A region that has no locale id of its own.
    {"en_DK.UTF-8", "05/03/2024 14.05.09", "14.05.09", "05/03/2024"},
};

TEST(Format, by_default_is_in_the_users_locale) {
  for (const UsersDate& row : users_dates) {
    const HeldUserLocale locale(row.locale);
    EXPECT_STREQ(moment.Format(), row.both) << row.locale;
    EXPECT_STREQ(moment.Format(VAR_TIMEVALUEONLY, user_default), row.time) << row.locale;
    EXPECT_STREQ(moment.Format(VAR_DATEVALUEONLY, user_default), row.date) << row.locale;
  }
}

TEST(Format, in_american_english_does_not_look_at_the_users_locale) {
  const HeldUserLocale german("de_DE.UTF-8");
  EXPECT_STREQ(moment.Format(0, 0x409), "3/5/2024 2:05:09 PM");
}

TEST(Format, has_a_plain_blank_before_am_and_pm) {
  for (const char* name : {"C", "en_US", "en_CA", "en_AU", "es_MX", "ko_KR", "hi_IN"}) {
    const HeldUserLocale locale(name);
    const CString text = moment.Format(VAR_TIMEVALUEONLY);
    EXPECT_EQ(text.Find("\u202F"), -1) << name << ": " << text.GetString();
    EXPECT_EQ(text.Find("\u00A0"), -1) << name << ": " << text.GetString();
  }
}

TEST(Format, by_a_pattern_of_numbers_is_the_same_in_every_locale) {
  const ChosenForDates german("de_DE.UTF-8");
  EXPECT_STREQ(moment.Format("%Y-%m-%d#%H:%M:%S"), "2024-03-05#14:05:09");
}

TEST(ParseDateTime, with_flags_0_reads_by_the_users_locale) {
  COleDateTime date;
  {
    const HeldUserLocale british("en_GB.UTF-8");
    ASSERT_TRUE(date.ParseDateTime("3/4/2024 14:05", 0, user_default));
    EXPECT_EQ(date.GetMonth(), 4);
  }
  ASSERT_TRUE(date.ParseDateTime("3/4/2024 2:05 PM", 0, user_default));
  EXPECT_EQ(date.GetMonth(), 3);
  const HeldUserLocale german("de_DE.UTF-8");
  ASSERT_TRUE(date.ParseDateTime("4. März 2024", 0, user_default));
  EXPECT_EQ(date.GetMonth(), 3);
}

TEST(ParseDateTime, reads_the_neutral_form_in_every_users_locale) {
  for (const char* name : {"C", "en_US", "en_GB", "de_DE", "fr_FR", "sv_SE", "ja_JP", "en_DK", "fi_FI", "hu_HU",
                           "ko_KR", "zh_CN", "ar_EG", "fa_IR", "th_TH", "hi_IN", "it_IT", "da_DK"}) {
    const HeldUserLocale locale(name);
    // Every order of small numbers must be told apart by the year of four digits.
    for (const COleDateTime& expected :
         {moment, COleDateTime(2012, 11, 10, 9, 8, 7), COleDateTime(1930, 1, 31, 0, 0, 0),
          COleDateTime(9999, 12, 31, 23, 59, 59), COleDateTime(100, 1, 2, 0, 0, 1)}) {
      CString text = expected.Format("%Y-%m-%d#%H:%M:%S");
      text.Replace("#", " ");
      COleDateTime date;
      ASSERT_TRUE(date.ParseDateTime(text, 0, user_default)) << name << ": " << text.GetString();
      EXPECT_STREQ(date.Format("%Y-%m-%d %H:%M:%S"), text) << name;
    }
  }
}

TEST(ParseDateTime, reads_back_what_format_writes_in_the_users_locale) {
  for (const UsersDate& row : users_dates) {
    const HeldUserLocale locale(row.locale);
    COleDateTime date;
    ASSERT_TRUE(date.ParseDateTime(moment.Format(), 0, user_default)) << row.locale;
    EXPECT_TRUE(date == moment) << row.locale;
  }
}

}  // namespace
