// Plan, beside the recorded rows
//   texts: hostile numbers end in a result and never in a crash; sizes; zeros inside; random bytes
//   doubles: 15 digits come back as the nearest double of these 15 digits, and 15-digit decimals survive the round trip
//   integers: every width at both ends; 64 bits exactly; truth values; currency
//   in place, by failure unchanged, arrays, objects, flags, locales
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include "array_text.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/automation/variant_t.h"

namespace {

HRESULT change(const VARIANT& source, VARTYPE type, scoped_variant& target) {
  return VariantChangeType(target.receive(), &source, 0, type);
}

HRESULT result_of(const VARIANT& source, VARTYPE type) {
  scoped_variant target;
  return change(source, type, target);
}

std::string text_of(const VARIANT& source) {
  scoped_variant target;
  if (FAILED(change(source, VT_BSTR, target))) return "failed";
  const _bstr_t text(target->bstrVal, true);
  return static_cast<const char*>(text);
}

double double_of(const std::string& text) {
  scoped_variant target;
  EXPECT_EQ(change(_variant_t(text.c_str()), VT_R8, target), S_OK) << text;
  return target->dblVal;
}

_variant_t wide_text(const std::u16string& text) {
  VARIANT value{};
  value.vt = VT_BSTR;
  value.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return _variant_t(value, false);
}

TEST(ChangeTypeOfText, hostile_numbers_end_in_a_result) {
  const std::string nines(100000, '9');
  EXPECT_EQ(result_of(_variant_t(nines.c_str()), VT_R8), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t(nines.c_str()), VT_I8), DISP_E_OVERFLOW);
  EXPECT_EQ(double_of("0." + nines), 1.0);
  EXPECT_EQ(double_of(std::string(100000, '0') + "7"), 7.0);
  EXPECT_EQ(double_of(nines + "e-100000"), 1.0);
  EXPECT_EQ(double_of("1e-999999999999999999999"), 0.0);
  EXPECT_EQ(result_of(_variant_t("1e999999999999999999999"), VT_R8), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t("1e999999999999999999999"), VT_CY), DISP_E_OVERFLOW);
  EXPECT_EQ(double_of("0e999999999999999999999"), 0.0);
  EXPECT_EQ(result_of(_variant_t(std::string(50000, '(').c_str()), VT_R8), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result_of(_variant_t(std::string(50000, ',').c_str()), VT_R8), DISP_E_TYPEMISMATCH);
}

TEST(ChangeTypeOfText, a_zero_or_a_broken_surrogate_inside_is_no_number) {
  EXPECT_EQ(result_of(wide_text(std::u16string(u"1\0", 2)), VT_R8), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result_of(wide_text(std::u16string(u"&H1\0", 4)), VT_R8), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result_of(wide_text(u"1\xD800"), VT_R8), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result_of(wide_text(u"\xDC00"), VT_DATE), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result_of(wide_text(u"&H\xFF11"), VT_I4), DISP_E_TYPEMISMATCH);
}

TEST(ChangeTypeOfText, random_texts_give_a_number_or_a_documented_failure) {
  std::mt19937 random(20240315);
  const std::u16string alphabet = u"0123456789.,+-()$&HhOoeE \t/:aApPmM#'\u00A0\u3000\xD83D";
  std::uniform_int_distribution<std::size_t> letter(0, alphabet.size() - 1);
  std::uniform_int_distribution<int> length(0, 12);
  int numbers = 0;
  for (int i = 0; i < 20000; ++i) {
    std::u16string text;
    for (int left = length(random); left > 0; --left)
      text += alphabet[letter(random)];
    const _variant_t source = wide_text(text);
    for (const VARTYPE type : {VT_R8, VT_I4, VT_UI8, VT_CY, VT_DATE, VT_BOOL}) {
      const HRESULT result = result_of(source, type);
      EXPECT_TRUE(result == S_OK || result == DISP_E_TYPEMISMATCH || result == DISP_E_OVERFLOW) << result;
      numbers += result == S_OK ? 1 : 0;
    }
  }
  EXPECT_GT(numbers, 100);
}

TEST(ChangeTypeOfText, one_sign_one_bracket_and_one_dollar_are_allowed) {
  for (const char* text : {"-$1", "$-1", "($1)", "-(1)", "(-1)", "$(1)", "1 -", "( 1 )"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(double_of(text), std::string(text).find_first_of("-(") == std::string::npos ? 1.0 : -1.0);
  }
  for (const char* text : {"-+1", "1--", "$$1", "(1)-", "1 $", "+", "1)", "(1))", "-&H1", "&HFFFFFFFFFFFFFFFFFg"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(result_of(_variant_t(text), VT_R8), DISP_E_TYPEMISMATCH);
  }
}

TEST(ChangeTypeOfText, bits_of_32_are_a_signed_long_and_more_are_64) {
  EXPECT_EQ(double_of("&HFFFFFFFF"), -1.0);
  EXPECT_EQ(double_of("&O37777777777"), -1.0);
  EXPECT_EQ(static_cast<long long>(_variant_t("&H100000000")), 0x100000000LL);
  EXPECT_EQ(static_cast<int>(_variant_t("&H80000000")), std::numeric_limits<int>::min());
  EXPECT_EQ(result_of(_variant_t("&H100000000"), VT_I4), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t("&H10000000000000000"), VT_I8), DISP_E_OVERFLOW);
  EXPECT_EQ(static_cast<CY>(_variant_t("&HA")).int64, 100000);
}

TEST(ChangeTypeOfText, truth_values_are_words_or_numbers) {
  for (const char* text : {"True", "TRUE", "#TRUE#", "1", "-0.001", "&H1"})
    EXPECT_TRUE(static_cast<bool>(_variant_t(text))) << text;
  for (const char* text : {"false", "#False#", "0", "0.0"})
    EXPECT_FALSE(static_cast<bool>(_variant_t(text))) << text;
  for (const char* text : {"", "yes", "tru", "#true"})
    EXPECT_EQ(result_of(_variant_t(text), VT_BOOL), DISP_E_TYPEMISMATCH) << text;
}

TEST(ChangeTypeOfDouble, fifteen_digits_come_back_as_the_nearest_double_of_them) {
  std::mt19937_64 random(42);
  int tried = 0;
  while (tried < 50000) {
    const double value = std::bit_cast<double>(random());
    // What rounds up beyond the largest double has no way back.
    if (!std::isfinite(value) || std::fabs(value) > 1.797e308) continue;
    char fifteen[40];
    std::snprintf(fifteen, sizeof fifteen, "%.15g", value);
    const double back = double_of(text_of(_variant_t(value)));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(std::strtod(fifteen, nullptr)))
        << fifteen;
    ++tried;
  }
}

TEST(ChangeTypeOfDouble, decimals_of_fifteen_digits_survive_to_the_last_bit) {
  std::mt19937_64 random(7);
  std::uniform_int_distribution<long long> digits(-999'999'999'999'999, 999'999'999'999'999);
  std::uniform_int_distribution<int> places(0, 14);
  for (int i = 0; i < 50000; ++i) {
    const double value = static_cast<double>(digits(random)) / std::pow(10.0, places(random));
    EXPECT_EQ(double_of(text_of(_variant_t(value))), value);
  }
}

TEST(ChangeTypeOfDouble, extremes_have_texts_and_what_is_no_number_becomes_no_integer) {
  EXPECT_EQ(text_of(_variant_t(DBL_MAX)), "1.79769313486232E+308");
  EXPECT_EQ(text_of(_variant_t(-0.0)), "0");
  EXPECT_EQ(text_of(_variant_t(std::nan(""))), "NAN");
  EXPECT_EQ(result_of(_variant_t(std::nan("")), VT_I4), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t(std::nan("")), VT_DATE), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t(HUGE_VAL), VT_UI8), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t(HUGE_VAL), VT_R4), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t(1e300), VT_CY), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t(1e39), VT_R4), DISP_E_OVERFLOW);
}

struct integer_case {
  VARTYPE type;
  const char* lowest;
  const char* below;
  const char* highest;
  const char* above;
};

TEST(ChangeTypeOfInteger, every_width_ends_where_it_should) {
  const std::array<integer_case, 10> cases = {{
      {VT_I1, "-128", "-129", "127", "128"},
      {VT_I2, "-32768", "-32769", "32767", "32768"},
      {VT_I4, "-2147483648", "-2147483649", "2147483647", "2147483648"},
      {VT_INT, "-2147483648", "-2147483649", "2147483647", "2147483648"},
      {VT_I8, "-9223372036854775808", "-9223372036854775809", "9223372036854775807", "9223372036854775808"},
      {VT_UI1, "0", "-1", "255", "256"},
      {VT_UI2, "0", "-1", "65535", "65536"},
      {VT_UI4, "0", "-1", "4294967295", "4294967296"},
      {VT_UINT, "0", "-1", "4294967295", "4294967296"},
      {VT_UI8, "0", "-1", "18446744073709551615", "18446744073709551616"},
  }};
  for (const integer_case& each : cases) {
    SCOPED_TRACE(each.type);
    for (const char* good : {each.lowest, each.highest}) {
      scoped_variant value;
      ASSERT_EQ(change(_variant_t(good), each.type, value), S_OK);
      EXPECT_EQ(text_of(*value), good);
    }
    EXPECT_EQ(result_of(_variant_t(each.below), each.type), DISP_E_OVERFLOW);
    EXPECT_EQ(result_of(_variant_t(each.above), each.type), DISP_E_OVERFLOW);
  }
}

TEST(ChangeTypeOfInteger, a_long_text_rounds_by_all_its_digits) {
  EXPECT_EQ(static_cast<long long>(_variant_t("9223372036854775806.5")), 9223372036854775806LL);
  EXPECT_EQ(static_cast<long long>(_variant_t("9223372036854775806.50000000000000000000000001")),
            9223372036854775807LL);
  EXPECT_EQ(result_of(_variant_t("9223372036854775807.5"), VT_I8), DISP_E_OVERFLOW);
  EXPECT_EQ(result_of(_variant_t("18446744073709551615.5"), VT_UI8), DISP_E_OVERFLOW);
  EXPECT_EQ(static_cast<int>(_variant_t("0.05e1")), 0);
  EXPECT_EQ(static_cast<int>(_variant_t("0.051e1")), 1);
  EXPECT_EQ(static_cast<int>(_variant_t("15e-1")), 2);
}

TEST(ChangeTypeOfBool, true_is_minus_one_or_all_bits) {
  EXPECT_EQ(static_cast<int>(_variant_t(true)), -1);
  EXPECT_EQ(static_cast<BYTE>(_variant_t(true)), 255);
  EXPECT_EQ(static_cast<unsigned int>(_variant_t(true)), 0xFFFFFFFFU);
  EXPECT_EQ(static_cast<unsigned long long>(_variant_t(true)), ~0ULL);
  scoped_variant text;
  const _variant_t truth(true);
  ASSERT_EQ(VariantChangeType(text.get(), &truth, VARIANT_ALPHABOOL, VT_BSTR), S_OK);
  EXPECT_TRUE(_bstr_t(text->bstrVal, true) == "True");
  const _variant_t falsehood(false);
  ASSERT_EQ(VariantChangeType(text.get(), &falsehood, VARIANT_ALPHABOOL, VT_BSTR), S_OK);
  EXPECT_TRUE(_bstr_t(text->bstrVal, true) == "False");
}

TEST(ChangeTypeOfCurrency, four_places_are_exact_and_round_half_to_even) {
  EXPECT_EQ(static_cast<CY>(_variant_t("922337203685477.5807")).int64, std::numeric_limits<LONGLONG>::max());
  EXPECT_EQ(static_cast<CY>(_variant_t("-922337203685477.5808")).int64, std::numeric_limits<LONGLONG>::min());
  EXPECT_EQ(text_of(_variant_t(CY{std::numeric_limits<LONGLONG>::min()})), "-922337203685477.5808");
  EXPECT_EQ(result_of(_variant_t("922337203685477.5808"), VT_CY), DISP_E_OVERFLOW);
  EXPECT_EQ(static_cast<CY>(_variant_t("1.00005")).int64, 10000);
  EXPECT_EQ(static_cast<CY>(_variant_t("1.00015")).int64, 10002);
  EXPECT_EQ(static_cast<CY>(_variant_t(1.5)).int64, 15000);
  EXPECT_EQ(static_cast<CY>(_variant_t(-7)).int64, -70000);
  EXPECT_EQ(static_cast<int>(_variant_t(CY{-25000})), -2);
  EXPECT_EQ(result_of(_variant_t(std::numeric_limits<long long>::max()), VT_CY), DISP_E_OVERFLOW);
}

TEST(ChangeType, works_in_place_and_frees_the_old_value) {
  _variant_t value("12.5");
  ASSERT_EQ(VariantChangeType(&value, &value, 0, VT_R8), S_OK);
  EXPECT_EQ(value.dblVal, 12.5);
  ASSERT_EQ(VariantChangeType(&value, &value, 0, VT_BSTR), S_OK);
  EXPECT_TRUE(value == _variant_t("12.5"));
}

TEST(ChangeType, a_failure_leaves_the_target_as_it_was) {
  _variant_t target("keep me");
  const _variant_t source("no number");
  EXPECT_EQ(VariantChangeType(&target, &source, 0, VT_I4), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(VariantChangeType(&target, &target, 0, VT_I4), DISP_E_TYPEMISMATCH);
  EXPECT_TRUE(target == _variant_t("keep me"));
}

TEST(ChangeType, invalid_types_are_bad_and_others_do_not_match) {
  const _variant_t number(1);
  for (const int type : {0x0F, 0x18, 0x40, 0x1000, 0x2001, 0x4003, 0xFFFF})
    EXPECT_EQ(result_of(number, static_cast<VARTYPE>(type)), DISP_E_BADVARTYPE) << type;
  for (const int type : {0x00, 0x01, 0x09, 0x0A, 0x0D, 0x0E, 0x2003})
    EXPECT_EQ(result_of(number, static_cast<VARTYPE>(type)), DISP_E_TYPEMISMATCH) << type;
}

TEST(ChangeType, an_array_changes_only_into_its_own_type) {
  scoped_variant source;
  source->vt = VT_ARRAY | VT_UI1;
  source->parray = SafeArrayCreateVector(VT_UI1, 0, 3);
  scoped_variant copy;
  ASSERT_EQ(change(*source, VT_ARRAY | VT_UI1, copy), S_OK);
  EXPECT_NE(copy->parray, source->parray);
  EXPECT_EQ(result_of(*source, VT_BSTR), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result_of(*source, VT_ARRAY | VT_I4), DISP_E_TYPEMISMATCH);
}

TEST(ChangeType, objects_change_into_their_other_interface_only) {
  vectors::counted_object object;
  {
    const _variant_t held(static_cast<IUnknown*>(&object));
    scoped_variant other;
    ASSERT_EQ(change(held, VT_DISPATCH, other), S_OK);
    EXPECT_EQ(other->pdispVal, &object);
    EXPECT_EQ(object.references, 3U);
    EXPECT_EQ(result_of(held, VT_I4), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(result_of(held, VT_BSTR), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(result_of(held, VT_BOOL), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(result_of(held, VT_DATE), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(result_of(held, VT_CY), DISP_E_TYPEMISMATCH);
  }
  EXPECT_EQ(object.references, 1U);
  const _variant_t none(static_cast<IUnknown*>(nullptr));
  scoped_variant still_none;
  ASSERT_EQ(change(none, VT_DISPATCH, still_none), S_OK);
  EXPECT_EQ(still_none->pdispVal, nullptr);
}

TEST(ChangeType, every_locale_reads_as_us_english) {
  const _variant_t number("1,234.5");
  scoped_variant value;
  ASSERT_EQ(VariantChangeTypeEx(value.get(), &number, 0x407, 0, VT_R8), S_OK);
  EXPECT_EQ(value->dblVal, 1234.5);
}

}  // namespace
