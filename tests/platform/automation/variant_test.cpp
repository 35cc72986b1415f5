// Plan
//   VARIANT: documented layout; clear, copy and copy-through-reference own what they should and refuse what they should
//   _variant_t: constructors by type, conversions and their failures, attach, detach, comparison
//   scoped_variant: releases what it holds
#include "spcbase/platform/automation/variant.h"

#include <gtest/gtest.h>

#include <cstddef>

#include "array_text.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/automation/variant_t.h"

namespace {

using vectors::code_thrown_by;
using vectors::counted_object;

VARIANT of_object(counted_object& object) {
  VARIANT value{};
  value.vt = VT_DISPATCH;
  value.pdispVal = &object;
  return value;
}

TEST(Variant, has_the_documented_layout) {
  EXPECT_EQ(sizeof(VARIANT), 24U);
  EXPECT_EQ(offsetof(VARIANT, vt), 0U);
  EXPECT_EQ(offsetof(VARIANT, lVal), 8U);
  VARIANT value;
  value.vt = VT_I4;
  VariantInit(&value);
  EXPECT_EQ(value.vt, VT_EMPTY);
}

TEST(Variant, null_arguments_are_refused) {
  VARIANT value{};
  EXPECT_EQ(VariantClear(nullptr), E_INVALIDARG);
  EXPECT_EQ(VariantCopy(&value, nullptr), E_INVALIDARG);
  EXPECT_EQ(VariantCopy(nullptr, &value), E_INVALIDARG);
  EXPECT_EQ(VariantCopyInd(&value, nullptr), E_INVALIDARG);
  EXPECT_EQ(VariantChangeType(nullptr, &value, 0, VT_I4), E_INVALIDARG);
  EXPECT_EQ(VariantChangeType(&value, nullptr, 0, VT_I4), E_INVALIDARG);
}

TEST(Variant, objects_are_counted_by_copy_and_clear) {
  counted_object object;
  const VARIANT given = of_object(object);
  VARIANT copy{};
  ASSERT_EQ(VariantCopy(&copy, &given), S_OK);
  EXPECT_EQ(object.references, 2U);
  ASSERT_EQ(VariantClear(&copy), S_OK);
  EXPECT_EQ(object.references, 1U);
}

TEST(Variant, clearing_a_locked_array_fails_and_leaves_it_as_it_was) {
  scoped_variant value;
  value->vt = VT_ARRAY | VT_I4;
  value->parray = SafeArrayCreateVector(VT_I4, 0, 1);
  {
    const safe_array_access access(value->parray);
    EXPECT_EQ(VariantClear(value.get()), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(value->vt, VT_ARRAY | VT_I4);
    VARIANT number{};
    number.vt = VT_I4;
    EXPECT_EQ(VariantCopy(value.get(), &number), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(VariantChangeType(value.get(), &number, 0, VT_BSTR), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(access.as<LONG>()[0], 0);
  }
  EXPECT_EQ(VariantClear(value.get()), S_OK);
}

TEST(Variant, a_copy_from_within_the_target_is_made_before_the_target_goes) {
  scoped_variant value;
  value->vt = VT_ARRAY | VT_VARIANT;
  value->parray = SafeArrayCreateVector(VT_VARIANT, 0, 1);
  const LONG index = 0;
  VARIANT text{};
  text.vt = VT_BSTR;
  text.bstrVal = SysAllocString(u"inside");
  ASSERT_EQ(SafeArrayPutElement(value->parray, &index, &text), S_OK);
  VariantClear(&text);
  void* element = nullptr;
  ASSERT_EQ(SafeArrayPtrOfIndex(value->parray, &index, &element), S_OK);
  ASSERT_EQ(VariantCopy(value.get(), static_cast<VARIANT*>(element)), S_OK);
  EXPECT_TRUE(_bstr_t(value->bstrVal, true) == "inside");
}

TEST(Variant, a_reference_to_a_reference_is_followed_once_and_a_chain_is_refused) {
  LONG number = 7;
  VARIANT inner{};
  inner.vt = VT_BYREF | VT_I4;
  inner.plVal = &number;
  VARIANT outer{};
  outer.vt = VT_BYREF | VT_VARIANT;
  outer.pvarVal = &inner;
  scoped_variant target;
  ASSERT_EQ(VariantCopyInd(target.get(), &outer), S_OK);
  EXPECT_EQ(target->vt, VT_I4);
  EXPECT_EQ(target->lVal, 7);

  VARIANT circle{};
  circle.vt = VT_BYREF | VT_VARIANT;
  circle.pvarVal = &circle;
  EXPECT_EQ(VariantCopyInd(target.get(), &circle), E_INVALIDARG);
  EXPECT_EQ(VariantChangeType(target.get(), &circle, 0, VT_I4), E_INVALIDARG);
  VARIANT nowhere{};
  nowhere.vt = VT_BYREF | VT_BSTR;
  EXPECT_EQ(VariantCopyInd(target.get(), &nowhere), E_INVALIDARG);
  EXPECT_EQ(VariantChangeType(target.get(), &nowhere, 0, VT_I4), E_INVALIDARG);
  EXPECT_EQ(target->lVal, 7);
}

TEST(Variant, a_decimal_is_carried_by_copy_and_by_reference) {
  VARIANT decimal{};
  decimal.vt = VT_DECIMAL;
  decimal.wReserved1 = 5;
  decimal.ullVal = 12345;
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_DECIMAL;
  reference.byref = &decimal;
  scoped_variant copy;
  ASSERT_EQ(VariantCopyInd(copy.get(), &reference), S_OK);
  EXPECT_EQ(copy->vt, VT_DECIMAL);
  EXPECT_EQ(copy->wReserved1, 5);
  EXPECT_EQ(copy->ullVal, 12345U);
  EXPECT_EQ(VariantChangeType(copy.get(), copy.get(), 0, VT_R8), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(copy->vt, VT_DECIMAL);
}

TEST(VariantT, constructors_choose_the_documented_types) {
  EXPECT_EQ(_variant_t().vt, VT_EMPTY);
  EXPECT_EQ(_variant_t(short{1}).vt, VT_I2);
  EXPECT_EQ(_variant_t(short{1}, VT_BOOL).boolVal, VARIANT_TRUE);
  EXPECT_EQ(_variant_t(1).vt, VT_I4);
  EXPECT_EQ(_variant_t(1L).vt, VT_I4);
  EXPECT_EQ(_variant_t(LONG{5}, VT_ERROR).vt, VT_ERROR);
  EXPECT_EQ(_variant_t(1.5F).vt, VT_R4);
  EXPECT_EQ(_variant_t(1.5).vt, VT_R8);
  EXPECT_EQ(_variant_t(1.5, VT_DATE).vt, VT_DATE);
  EXPECT_EQ(_variant_t(CY{15000}).vt, VT_CY);
  EXPECT_EQ(_variant_t("text").vt, VT_BSTR);
  EXPECT_EQ(_variant_t(u"text").vt, VT_BSTR);
  EXPECT_EQ(_variant_t(true).boolVal, VARIANT_TRUE);
  EXPECT_EQ(_variant_t(BYTE{1}).vt, VT_UI1);
  EXPECT_EQ(_variant_t('a').vt, VT_I1);
  EXPECT_EQ(_variant_t(static_cast<unsigned short>(1)).vt, VT_UI2);
  EXPECT_EQ(_variant_t(1U).vt, VT_UI4);
  EXPECT_EQ(_variant_t(1UL).vt, VT_UI4);
  EXPECT_EQ(_variant_t(1LL).vt, VT_I8);
  EXPECT_EQ(_variant_t(1ULL).vt, VT_UI8);
}

TEST(VariantT, a_wrong_type_and_a_long_that_does_not_fit_throw) {
  EXPECT_EQ(code_thrown_by([] { _variant_t(short{1}, VT_R8); }), E_INVALIDARG);
  EXPECT_EQ(code_thrown_by([] { _variant_t(1, VT_R8); }), E_INVALIDARG);
  EXPECT_EQ(code_thrown_by([] { _variant_t(1.5, VT_I4); }), E_INVALIDARG);
  EXPECT_EQ(code_thrown_by([] { _variant_t(0x80000000L); }), DISP_E_OVERFLOW);
  EXPECT_EQ(code_thrown_by([] { _variant_t(0x100000000UL); }), DISP_E_OVERFLOW);
}

TEST(VariantT, converts_to_every_documented_type) {
  const _variant_t number("-3.5");
  EXPECT_EQ(static_cast<short>(number), -4);
  EXPECT_EQ(static_cast<int>(number), -4);
  EXPECT_EQ(static_cast<long>(number), -4L);
  EXPECT_EQ(static_cast<long long>(number), -4LL);
  EXPECT_EQ(static_cast<char>(number), -4);
  EXPECT_EQ(static_cast<float>(number), -3.5F);
  EXPECT_EQ(static_cast<double>(number), -3.5);
  EXPECT_EQ(static_cast<CY>(number).int64, -35000);
  EXPECT_TRUE(static_cast<bool>(number));
  EXPECT_TRUE(static_cast<_bstr_t>(number) == "-3.5");
  const _variant_t seven(7.0);
  EXPECT_EQ(static_cast<BYTE>(seven), 7);
  EXPECT_EQ(static_cast<unsigned short>(seven), 7);
  EXPECT_EQ(static_cast<unsigned int>(seven), 7U);
  EXPECT_EQ(static_cast<unsigned long>(seven), 7UL);
  EXPECT_EQ(static_cast<unsigned long long>(seven), 7ULL);
}

TEST(VariantT, a_failed_conversion_throws_its_result) {
  EXPECT_EQ(code_thrown_by([] { (void)static_cast<long>(_variant_t("no number")); }), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(code_thrown_by([] { (void)static_cast<BYTE>(_variant_t(256)); }), DISP_E_OVERFLOW);
  VARIANT unknown{};
  unknown.vt = VT_PTR;
  EXPECT_EQ(code_thrown_by([&] { _variant_t copy(unknown); }), DISP_E_BADVARTYPE);
}

TEST(VariantT, gives_objects_with_a_reference) {
  counted_object object;
  {
    const _variant_t held(static_cast<IDispatch*>(&object));
    EXPECT_EQ(object.references, 2U);
    IDispatch* const got = held;
    EXPECT_EQ(object.references, 3U);
    got->Release();
    IUnknown* const root = held;
    EXPECT_EQ(object.references, 3U);
    root->Release();
    const _variant_t copy(held);
    EXPECT_EQ(object.references, 3U);
    EXPECT_TRUE(copy == held);
  }
  EXPECT_EQ(object.references, 1U);
  object.AddRef();
  { const _variant_t taken(static_cast<IUnknown*>(&object), false); }
  EXPECT_EQ(object.references, 1U);
}

TEST(VariantT, attach_takes_over_and_detach_hands_out) {
  VARIANT raw{};
  raw.vt = VT_BSTR;
  raw.bstrVal = SysAllocString(u"abc");
  _variant_t held(raw, false);
  EXPECT_EQ(raw.vt, VT_EMPTY);
  raw = held.Detach();
  EXPECT_EQ(held.vt, VT_EMPTY);
  held.Attach(raw);
  EXPECT_EQ(raw.vt, VT_EMPTY);
  EXPECT_TRUE(held == _variant_t("abc"));
  const _variant_t copied(held.GetVARIANT(), true);
  EXPECT_TRUE(copied == held);
  held.GetAddress()->vt = VT_NULL;
  EXPECT_EQ(held.vt, VT_NULL);
}

TEST(VariantT, assignment_moves_copies_and_stands_itself) {
  _variant_t value("abc");
  const _variant_t& same = value;
  value = same;
  EXPECT_TRUE(value == _variant_t("abc"));
  value = _variant_t(5);
  EXPECT_TRUE(value == _variant_t(5));
  const _variant_t number(1.5);
  value = static_cast<const VARIANT*>(&number);
  EXPECT_TRUE(value == number);
  value.SetString("text");
  value.ChangeType(VT_BSTR);
  EXPECT_TRUE(value == _variant_t("text"));
  value.ChangeType(VT_I4, &number);
  EXPECT_TRUE(value == _variant_t(2));
  value.Clear();
  EXPECT_EQ(value.vt, VT_EMPTY);
}

TEST(VariantT, equality_looks_at_the_type_and_the_value) {
  EXPECT_FALSE(_variant_t(1) == _variant_t(1.0));
  EXPECT_FALSE(_variant_t(1) == _variant_t(2));
  EXPECT_TRUE(_variant_t(2.5F) == _variant_t(2.5F));
  EXPECT_FALSE(_variant_t("a") == _variant_t("b"));
  EXPECT_TRUE(_variant_t("") == _variant_t(static_cast<const char*>(nullptr)));
  EXPECT_TRUE(_variant_t() == _variant_t());
  EXPECT_FALSE(_variant_t(true) == _variant_t(false));
  EXPECT_FALSE(_variant_t(BYTE{1}) == _variant_t(BYTE{2}));
  EXPECT_FALSE(_variant_t(1LL) == _variant_t(2LL));
}

TEST(ScopedVariant, receives_releases_and_clears) {
  counted_object object;
  {
    scoped_variant held;
    *held.receive() = of_object(object);
    object.AddRef();
    held.receive();
    EXPECT_EQ(object.references, 1U);
    *held = of_object(object);
    object.AddRef();
    VARIANT out = held.release();
    EXPECT_EQ(held->vt, VT_EMPTY);
    EXPECT_EQ(object.references, 2U);
    *held = out;
  }
  EXPECT_EQ(object.references, 1U);
}

}  // namespace
