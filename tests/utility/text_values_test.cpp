// Plan: variant_to_eng
// - each type of the list; texts: empty, digits, numbers, others, zeros inside
// - references: followed, null, in a circle; other references and other types: as the platform changes them
// - failing conversions raise their own code; the value itself stays as it was
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/utility/text.h"

namespace {

VARIANT of_type(VARTYPE type) {
  VARIANT value{};
  value.vt = type;
  return value;
}

CString eng(const VARIANT& value) { return variant_to_eng(&value); }

HRESULT raised_by(const VARIANT* value) {
  try {
    variant_to_eng(value);
  } catch (const _com_error& e) {
    return e.Error();
  }
  return S_OK;
}

TEST(VariantToEng, doubles_and_floats_become_neutral) {
  EXPECT_EQ(eng(_variant_t(1.5)), "1.5");
  EXPECT_EQ(eng(_variant_t(2.0)), "2.0");
  EXPECT_EQ(eng(_variant_t(-0.25F)), "-0.25");
  EXPECT_EQ(eng(_variant_t(0.1F)), "0.10000000149011611938");
}

TEST(VariantToEng, integers_are_decimal) {
  EXPECT_EQ(eng(_variant_t(static_cast<char>(-5))), "-5");
  EXPECT_EQ(eng(_variant_t(static_cast<BYTE>(200))), "200");
  EXPECT_EQ(eng(_variant_t(static_cast<short>(-300))), "-300");
  EXPECT_EQ(eng(_variant_t(static_cast<unsigned short>(65535))), "65535");
  EXPECT_EQ(eng(_variant_t(std::numeric_limits<int>::min())), "-2147483648");
  EXPECT_EQ(eng(_variant_t(2147483647U)), "2147483647");
  for (const VARTYPE type : {VT_INT, VT_UINT, VT_I1}) {
    VARIANT value = of_type(type);
    value.lVal = 42;
    EXPECT_EQ(eng(value), "42") << type;
  }
}

TEST(VariantToEng, an_unsigned_integer_beyond_32_signed_bits_is_refused) {
  const _variant_t value(4294967295U);
  EXPECT_EQ(raised_by(&value), DISP_E_OVERFLOW);
}

TEST(VariantToEng, an_empty_value_is_an_empty_text) { EXPECT_EQ(eng(VARIANT{}), ""); }

TEST(VariantToEng, an_empty_text_stays_empty) {
  EXPECT_EQ(eng(_variant_t("")), "");
  EXPECT_EQ(eng(of_type(VT_BSTR)), "") << "a null text is an empty one";
}

TEST(VariantToEng, a_text_of_digits_loses_its_leading_zeros) {
  EXPECT_EQ(eng(_variant_t("0042")), "42");
  EXPECT_EQ(eng(_variant_t("000")), "0");
  EXPECT_EQ(eng(_variant_t("99999999999")), "2147483647") << "it is an int on its way, as is meant";
}

TEST(VariantToEng, a_text_that_is_a_number_becomes_neutral) {
  EXPECT_EQ(eng(_variant_t("-5")), "-5.0");
  EXPECT_EQ(eng(_variant_t(" 1.50 ")), "1.5");
  EXPECT_EQ(eng(_variant_t("1,234.5")), "1234.5");
  EXPECT_EQ(eng(_variant_t("1e3")), "1000.0");
}

TEST(VariantToEng, any_other_text_stays_as_it_is) {
  for (const char* text : {" ", "Bore 7", "1.5 mm", "\u5DE5\u5834 1", "1e999"})
    EXPECT_EQ(eng(_variant_t(text)), text);
}

TEST(VariantToEng, a_text_with_a_zero_inside_stays_whole) {
  VARIANT value = of_type(VT_BSTR);
  value.bstrVal = SysAllocStringLen(
      u"12\0"
      u"34",
      5);
  const _variant_t owned(value, false);
  EXPECT_EQ(eng(owned), CString("12\0"
                                "34",
                                5));
}

TEST(VariantToEng, a_text_with_half_a_pair_has_the_replacement_character) {
  const char16_t text[] = {u'a', 0xD800, 0};
  EXPECT_EQ(eng(_variant_t(text)), "a\uFFFD");
}

TEST(VariantToEng, references_to_a_variant_are_followed) {
  _variant_t value(1.5);
  VARIANT first = of_type(VT_VARIANT | VT_BYREF);
  first.pvarVal = &value;
  VARIANT second = of_type(VT_VARIANT | VT_BYREF);
  second.pvarVal = &first;
  EXPECT_EQ(eng(first), "1.5");
  EXPECT_EQ(eng(second), "1.5");
}

TEST(VariantToEng, a_null_reference_is_refused) {
  const VARIANT value = of_type(VT_VARIANT | VT_BYREF);
  EXPECT_EQ(raised_by(&value), E_INVALIDARG);
  EXPECT_EQ(raised_by(nullptr), E_INVALIDARG);
}

TEST(VariantToEng, references_in_a_circle_are_refused) {
  VARIANT first = of_type(VT_VARIANT | VT_BYREF);
  VARIANT second = first;
  first.pvarVal = &second;
  second.pvarVal = &first;
  EXPECT_EQ(raised_by(&first), E_INVALIDARG);
}

TEST(VariantToEng, anything_else_is_changed_by_the_platform) {
  EXPECT_EQ(eng(_variant_t(true)), "-1");
  EXPECT_EQ(eng(_variant_t(9000000000LL)), "9000000000");
  EXPECT_EQ(eng(_variant_t(CY{12500})), "1.25");
  double number = 2.0;
  VARIANT reference = of_type(VT_R8 | VT_BYREF);
  reference.pdblVal = &number;
  EXPECT_EQ(eng(reference), "2") << "a reference to a double is no double";
}

TEST(VariantToEng, a_failing_conversion_raises_its_own_code) {
  const VARIANT null = of_type(VT_NULL);
  EXPECT_EQ(raised_by(&null), DISP_E_TYPEMISMATCH);
  const VARIANT unknown = of_type(77);
  EXPECT_EQ(raised_by(&unknown), DISP_E_BADVARTYPE);
}

TEST(VariantToEng, leaves_the_value_as_it_was) {
  const _variant_t value("0042");
  const BSTR before = value.bstrVal;
  EXPECT_EQ(eng(value), "42");
  EXPECT_EQ(value.vt, VT_BSTR);
  EXPECT_EQ(value.bstrVal, before);
}

}  // namespace
