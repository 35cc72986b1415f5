// Plan
// - every recorded text of a date, as an automation string
// - one half, in the user's locale; refusals leave the target alone
// - a variant as a date: dates, texts, numbers, null, what is none
#include "spcbase/platform/automation/var_date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/platform/datetime/user_locale.h"
#include "spcbase/platform/text/cstring.h"
#include "tests/support/vector_file.h"

namespace {

constexpr LCID user_default = 0x400;

/// The text of a date, or its failing code.
std::string written(double date, LCID locale, ULONG flags) {
  BSTR text = nullptr;
  const HRESULT hr = VarBstrFromDate(date, locale, flags, &text);
  if (FAILED(hr)) {
    EXPECT_EQ(text, nullptr);
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(hr));
    return code;
  }
  const std::string narrow = to_cstring(text).GetString();
  SysFreeString(text);
  return narrow;
}

TEST(VarBstrFromDate, recorded_dates_have_their_texts) {
  int rows = 0;
  for (const auto& row : test_support::read_vectors("date_format.tsv")) {
    if (row.is_suspect()) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const std::string expected = row["hresult"] == "0x00000000" ? row["output"] : row["hresult"];
    const auto flags = static_cast<ULONG>(std::stoul(row["flags"], nullptr, 0));
    EXPECT_EQ(written(test_support::from_bits(row["bits"]), test_support::hex32(row["locale"]), flags), expected);
  }
  EXPECT_EQ(rows, 248);
}

TEST(VarBstrFromDate, time_only_and_date_only_are_the_two_halves_in_the_users_locale) {
  const double moment = COleDateTime(2024, 1, 2, 8, 0, 0);
  EXPECT_EQ(written(moment, user_default, 1), "8:00:00 AM");
  EXPECT_EQ(written(moment, user_default, 2), "1/2/2024");
  const platform::HeldUserLocale german("de_DE.UTF-8");
  EXPECT_EQ(written(moment, user_default, 1), "08:00:00");
  EXPECT_EQ(written(moment, user_default, 2), "2.1.2024");
}

TEST(VarBstrFromDate, a_time_of_day_stands_on_day_0_midnight_included) {
  EXPECT_EQ(written(COleDateTime(1899, 12, 30, 17, 30, 0), user_default, VAR_TIMEVALUEONLY), "5:30:00 PM");
  EXPECT_EQ(written(COleDateTime(1899, 12, 30, 0, 0, 0), user_default, VAR_TIMEVALUEONLY), "12:00:00 AM");
}

TEST(VarBstrFromDate, refuses_what_is_no_date_and_a_null_pointer) {
  EXPECT_EQ(written(std::nan(""), user_default, 0), "0x80070057");
  EXPECT_EQ(written(3e6, user_default, 0), "0x80070057");
  EXPECT_EQ(VarBstrFromDate(1.0, user_default, 0, nullptr), E_INVALIDARG);
}

TEST(to_ole_datetime, takes_dates_and_what_can_be_changed_into_one) {
  _variant_t date(45293.0, VT_DATE);
  EXPECT_EQ(to_ole_datetime(date).m_dt, 45293.0);
  EXPECT_EQ(to_ole_datetime(_variant_t("1/2/2024")).m_dt, 45293.0);
  EXPECT_EQ(to_ole_datetime(_variant_t(45293.5)).m_dt, 45293.5);
  EXPECT_EQ(to_ole_datetime(_variant_t(45293L)).GetStatus(), COleDateTime::valid);
}

TEST(to_ole_datetime, null_is_null_and_what_is_no_date_is_invalid) {
  _variant_t null;
  null.vt = VT_NULL;
  EXPECT_EQ(to_ole_datetime(null).GetStatus(), COleDateTime::null);
  EXPECT_STREQ(to_ole_datetime(null).Format(VAR_DATEVALUEONLY), "");
  const COleDateTime none = to_ole_datetime(_variant_t("no date"));
  EXPECT_EQ(none.GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(none.m_dt, 0);
  EXPECT_STREQ(none.Format(VAR_DATEVALUEONLY), "Invalid DateTime");
  EXPECT_EQ(to_ole_datetime(_variant_t(1e9)).GetStatus(), COleDateTime::invalid);
}

}  // namespace
