// Plan
//   every element type: what is accepted, how elements are converted, the count; what the vector held is gone
//   the two kinds of pointers differ on purpose; references are counted
//   the order of the checks, for every type: element type, dimensions, bounds, access
//   bounds other than 0; arrays without elements
//   a failure in the middle leaves what was added; an access that cannot be ended is a failure
#include <functional>
#include <set>

#include "tests/utility/array_cases.h"

namespace {

using namespace array_cases;

using dispatch_pointer = _com_ptr_t<IDispatch>;
using unknown_pointer = _com_ptr_t<IUnknown>;

const std::set<VARTYPE> integer_set = {VT_I4, VT_UI4, VT_INT, VT_UINT};
const std::vector<VARTYPE> all_types = {VT_I2,      VT_I4,      VT_R8,  VT_BSTR, VT_DISPATCH, VT_BOOL,
                                        VT_VARIANT, VT_UNKNOWN, VT_UI1, VT_UI4,  VT_INT,      VT_UINT,
                                        VT_I1,      VT_UI2,     VT_R4,  VT_CY,   VT_DATE,     VT_I8};

template <class T>
std::set<VARTYPE> accepted();
template <>
std::set<VARTYPE> accepted<CString>() {
  return {VT_BSTR};
}
template <>
std::set<VARTYPE> accepted<_bstr_t>() {
  return {VT_BSTR};
}
template <>
std::set<VARTYPE> accepted<long>() {
  return integer_set;
}
template <>
std::set<VARTYPE> accepted<int>() {
  return integer_set;
}
template <>
std::set<VARTYPE> accepted<short>() {
  return {VT_I2};
}
template <>
std::set<VARTYPE> accepted<bool>() {
  return {VT_BOOL};
}
template <>
std::set<VARTYPE> accepted<double>() {
  return {VT_R8};
}
template <>
std::set<VARTYPE> accepted<_variant_t>() {
  return {VT_VARIANT};
}
template <>
std::set<VARTYPE> accepted<unsigned char>() {
  return {VT_UI1};
}
template <>
std::set<VARTYPE> accepted<dispatch_pointer>() {
  return {VT_DISPATCH};
}
template <>
std::set<VARTYPE> accepted<unknown_pointer>() {
  return {VT_UNKNOWN, VT_DISPATCH};
}

/// What every element type has in common.
template <class T>
class ToVectorOf : public testing::Test {
 protected:
  std::vector<T> target = std::vector<T>(2);

  std::string thrown_for(SAFEARRAY* array) {
    return thrown_by([&] { to_vector(target, array); });
  }
  static VARTYPE accepted_type() { return *accepted<T>().begin(); }
};

using element_types = testing::Types<CString, _bstr_t, long, int, short, bool, double, _variant_t, unsigned char,
                                     dispatch_pointer, unknown_pointer>;
TYPED_TEST_SUITE(ToVectorOf, element_types);

TYPED_TEST(ToVectorOf, accepts_its_element_types_and_refuses_all_others) {
  for (const VARTYPE type : all_types) {
    COleSafeArray array;
    array.CreateOneDim(type, 3);
    this->target = std::vector<TypeParam>(2);
    const bool good = accepted<TypeParam>().count(type) != 0;
    EXPECT_EQ(this->thrown_for(array.parray), good ? "" : invalid_argument_code) << type;
    EXPECT_EQ(this->target.size(), good ? 3U : 2U) << type;
    EXPECT_EQ(array.parray->cLocks, 0U);
  }
  EXPECT_EQ(this->thrown_for(nullptr), invalid_argument_code);
}

TYPED_TEST(ToVectorOf, two_dimensions_are_an_invalid_argument_once_the_element_type_has_passed) {
  for (const VARTYPE type : all_types) {
    const bool good = accepted<TypeParam>().count(type) != 0;
    const COleSafeArray array = two_dimensions(type);
    EXPECT_EQ(this->thrown_for(array.parray), good ? invalid_argument : invalid_argument_code) << type;
  }
  EXPECT_EQ(this->target.size(), 2U) << "as it was";
}

TYPED_TEST(ToVectorOf, an_array_without_elements_clears_it) {
  COleSafeArray array;
  const SAFEARRAYBOUND bound{0, 5};
  array.Create(this->accepted_type(), 1, &bound);
  EXPECT_EQ(to_vector(this->target, array.parray), 0);
  EXPECT_TRUE(this->target.empty());
}

TYPED_TEST(ToVectorOf, data_that_cannot_be_accessed_are_the_failure_of_the_access) {
  COleSafeArray array;
  array.CreateOneDim(this->accepted_type(), 3);
  array.parray->cLocks = 0xFFFFFFFFU;
  EXPECT_EQ(this->thrown_for(array.parray), "0x8000FFFF");
  array.parray->cLocks = 0;
  EXPECT_EQ(this->target.size(), 2U) << "as it was";
}

TYPED_TEST(ToVectorOf, an_array_may_be_accessed_by_others_meanwhile) {
  COleSafeArray array;
  array.CreateOneDim(this->accepted_type(), 3);
  const safe_array_access access(array.parray);
  EXPECT_EQ(to_vector(this->target, array.parray), 3);
  EXPECT_EQ(array.parray->cLocks, 1U);
}

TEST(ToVector, of_texts_converts_from_wide_characters) {
  COleSafeArray array;
  array.CreateOneDim(VT_BSTR, 3);
  const safe_array_access access(array.parray);
  access.as<BSTR>()[0] = SysAllocString(u"Breite \u00FC");
  access.as<BSTR>()[1] = SysAllocStringLen(u"a\0b", 3);
  std::vector<CString> texts;
  EXPECT_EQ(to_vector(texts, array.parray), 3);
  EXPECT_EQ(texts[0], CString("Breite ü"));
  EXPECT_EQ(texts[1], CString("a\0b", 3));
  EXPECT_EQ(texts[2], CString()) << "a null string is an empty one";
}

TEST(ToVector, of_strings_copies_them_and_leaves_null_null) {
  COleSafeArray array;
  array.CreateOneDim(VT_BSTR, 2);
  const safe_array_access access(array.parray);
  access.as<BSTR>()[0] = SysAllocString(u"x");
  std::vector<_bstr_t> texts;
  EXPECT_EQ(to_vector(texts, array.parray), 2);
  EXPECT_NE(static_cast<const char16_t*>(texts[0]), access.as<BSTR>()[0]);
  EXPECT_EQ(texts[0], u"x");
  EXPECT_TRUE(!texts[1]);
}

TEST(ToVector, of_integers_accepts_unsigned_ones_and_copies_the_bits) {
  const COleSafeArray array = array_of<ULONG>(VT_UI4, {0xFFFFFFFFU, 0x80000000U, 5});
  std::vector<long> longs;
  EXPECT_EQ(to_vector(longs, array.parray), 3);
  EXPECT_EQ(longs, (std::vector<long>{-1, -0x80000000L, 5}));
  std::vector<int> ints;
  EXPECT_EQ(to_vector(ints, array.parray), 3);
  EXPECT_EQ(ints, (std::vector<int>{-1, std::numeric_limits<int>::min(), 5}));
}

TEST(ToVector, with_bounds_5_to_7_gives_3_elements_from_the_first_on) {
  const COleSafeArray array = array_of<LONG>(VT_I4, {30, 10, 20}, 5);
  std::vector<long> numbers{99};
  EXPECT_EQ(to_vector(numbers, array.parray), 3);
  EXPECT_EQ(numbers, (std::vector<long>{30, 10, 20}));
}

TEST(ToVector, with_bounds_at_both_ends_of_their_range_gives_the_elements) {
  for (const LONG lower : {std::numeric_limits<LONG>::min(), -2, std::numeric_limits<LONG>::max() - 1}) {
    const COleSafeArray array = array_of<short>(VT_I2, {-3, 4}, lower);
    std::vector<short> numbers;
    EXPECT_EQ(to_vector(numbers, array.parray), 2);
    EXPECT_EQ(numbers, (std::vector<short>{-3, 4}));
  }
}

TEST(ToVector, of_truth_values_takes_whatever_is_not_0_as_true) {
  const COleSafeArray array = array_of<VARIANT_BOOL>(VT_BOOL, {0, VARIANT_TRUE, 1, 256});
  std::vector<bool> values;
  EXPECT_EQ(to_vector(values, array.parray), 4);
  EXPECT_EQ(values, (std::vector<bool>{false, true, true, true}));
}

TEST(ToVector, of_plain_elements_copies_them_as_they_stand) {
  std::vector<double> doubles;
  EXPECT_EQ(to_vector(doubles, array_of<double>(VT_R8, {0.1, -1e300}).parray), 2);
  EXPECT_EQ(doubles, (std::vector<double>{0.1, -1e300}));
  std::vector<unsigned char> bytes;
  EXPECT_EQ(to_vector(bytes, array_of<BYTE>(VT_UI1, {0, 255}).parray), 2);
  EXPECT_EQ(bytes, (std::vector<unsigned char>{0, 255}));
}

TEST(ToVector, of_variants_copies_them_deeply) {
  counted_object object;
  std::vector<_variant_t> values;
  {
    COleSafeArray array;
    to_variant_safe_array(array, std::vector<_variant_t>{_variant_t("text"), _variant_t(&object)});
    EXPECT_EQ(to_vector(values, array.parray), 2);
    EXPECT_EQ(object.references, 3U);
  }
  EXPECT_EQ(object.references, 2U);
  EXPECT_EQ(values[0], _variant_t("text"));
  values.clear();
  EXPECT_EQ(object.references, 1U);
}

TEST(ToVector, of_variants_may_replace_the_variant_that_holds_the_array) {
  COleSafeArray array;
  to_variant_safe_array(array, std::vector<int>{1, 2});
  std::vector<_variant_t> values{_variant_t(static_cast<const VARIANT&>(array))};
  EXPECT_EQ(to_vector(values, values[0].parray), 2);
  EXPECT_EQ(values[1], _variant_t(2));
}

TEST(ToVector, of_objects_adds_a_reference_to_each_and_null_stays_null) {
  counted_object object;
  COleSafeArray array;
  to_dispatch_safe_array(array, {&object, nullptr});
  std::vector<dispatch_pointer> dispatch_pointers;
  EXPECT_EQ(to_vector(dispatch_pointers, array.parray), 2);
  EXPECT_EQ(object.references, 3U);
  EXPECT_EQ(dispatch_pointers[0].GetInterfacePtr(), &object);
  EXPECT_EQ(dispatch_pointers[1].GetInterfacePtr(), nullptr);
  std::vector<unknown_pointer> unknown_pointers;
  EXPECT_EQ(to_vector(unknown_pointers, array.parray), 2);
  EXPECT_EQ(object.references, 4U);
  EXPECT_EQ(unknown_pointers[0].GetInterfacePtr(), static_cast<IUnknown*>(&object));
}

TEST(ToVector, of_dispatch_pointers_looks_only_at_the_feature_and_of_unknown_ones_accepts_both_kinds) {
  counted_object object;
  IUnknown* pointer = &object;
  object.AddRef();
  COleSafeArray array;
  array.CreateOneDim(VT_UNKNOWN, 1, &pointer);
  std::vector<dispatch_pointer> dispatch_pointers;
  // Kept: an array of VT_UNKNOWN is not looked into, whatever its objects could do.
  EXPECT_EQ(thrown_by([&] { to_vector(dispatch_pointers, array.parray); }), invalid_argument_code);
  std::vector<unknown_pointer> unknown_pointers;
  EXPECT_EQ(to_vector(unknown_pointers, array.parray), 1);
  EXPECT_EQ(unknown_pointers[0].GetInterfacePtr(), pointer);

  // The feature alone makes it acceptable.
  array.parray->fFeatures = static_cast<USHORT>(array.parray->fFeatures | FADF_DISPATCH);
  EXPECT_EQ(to_vector(dispatch_pointers, array.parray), 1);
  EXPECT_EQ(object.references, 4U);
}

TEST(ToVector, keeps_what_was_added_before_an_element_that_fails) {
  counted_object object;
  COleSafeArray array;
  to_variant_safe_array(array, std::vector<_variant_t>{_variant_t(1), _variant_t(&object), _variant_t(3)});
  const safe_array_access access(array.parray);
  access.as<VARIANT>()[2].vt = VT_VOID;
  std::vector<_variant_t> values(5);
  EXPECT_EQ(thrown_by([&] { to_vector(values, array.parray); }), "0x80020008");
  ASSERT_EQ(values.size(), 2U);
  EXPECT_EQ(values[0], _variant_t(1));
  EXPECT_EQ(object.references, 3U);
}

/// An object that ends the access to an array when it is counted.
class meddling_object final : public IDispatch {
 public:
  HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG AddRef() override {
    SafeArrayUnaccessData(array);
    return 2;
  }
  ULONG Release() override { return 1; }

  SAFEARRAY* array = nullptr;
};

TEST(ToVector, an_access_that_cannot_be_ended_is_a_failure_with_all_elements_added) {
  meddling_object object;
  COleSafeArray array;
  array.CreateOneDim(VT_DISPATCH, 1);
  object.array = array.parray;
  *static_cast<IDispatch**>(array.parray->pvData) = &object;
  std::vector<dispatch_pointer> pointers;
  EXPECT_EQ(thrown_by([&] { to_vector(pointers, array.parray); }), "0x8000FFFF");
  EXPECT_EQ(pointers.size(), 1U);
}

}  // namespace
