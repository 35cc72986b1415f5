// Plan
//   every conversion: the element type, the elements, lower bound 0; an empty source is an array without elements
//   the integer types: the four, and refusal of all others with the target as it was
//   ownership: strings are new, references are added and given back with the array, variants are copied deeply
//   a CLongBinary: without block or length, its lock, its size
//   refusals come before the target is touched: counts, missing bytes, numbers beyond 32 bits; an accessed target stays
//   a failing element leaves nothing behind and the target empty
#include <limits>

#include "tests/utility/array_cases.h"

namespace {

using namespace array_cases;

using dispatch_pointer = _com_ptr_t<IDispatch>;
constexpr VARTYPE integer_types[] = {VT_I4, VT_UI4, VT_INT, VT_UINT};

/// What an array is but for its features.
std::string shape(const COleSafeArray& array) {
  VARTYPE type = VT_EMPTY;
  EXPECT_EQ(SafeArrayGetVartype(array.parray, &type), S_OK);
  EXPECT_EQ(array.vt, VT_ARRAY | type);
  const std::string told = describe(array.parray);
  return told.substr(told.find("locks="));
}

TEST(ToSafeArray, of_texts_makes_new_wide_strings) {
  COleSafeArray array;
  to_safe_array(array, std::vector<CString>{"Länge", "", "a\xF0\x9F\x93\x8F"});
  EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=BSTR [0..2] data");
  const auto texts = elements_of<BSTR>(array);
  EXPECT_EQ(std::u16string(texts[0], SysStringLen(texts[0])), u"Länge");
  ASSERT_NE(texts[1], nullptr);
  EXPECT_EQ(SysStringLen(texts[1]), 0U);
  EXPECT_EQ(std::u16string(texts[2], SysStringLen(texts[2])), u"a\U0001F4CF");
}

TEST(ToSafeArray, of_no_texts_is_a_text_array_without_elements_and_not_an_empty_variant) {
  COleSafeArray array;
  to_safe_array(array, std::vector<CString>());
  EXPECT_EQ(array.vt, VT_ARRAY | VT_BSTR);
  EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=BSTR [0..-1] data");
}

TEST(ToSafeArray, of_nothing_is_an_array_without_elements_for_every_source) {
  COleSafeArray array;
  const auto expect_empty = [&array](VARTYPE type) {
    EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=" + vectors::name_of(type) + " [0..-1] data");
    array = held_numbers();
  };
  for (const VARTYPE type : integer_types) {
    to_safe_array(array, std::vector<long>(), type);
    expect_empty(type);
    to_safe_array(array, std::vector<int>(), type);
    expect_empty(type);
  }
  to_safe_array(array, nullptr, 0);
  expect_empty(VT_UI1);
  to_safe_array(array, CLongBinary());
  expect_empty(VT_UI1);
  to_variant_safe_array(array, std::vector<dispatch_pointer>());
  expect_empty(VT_VARIANT);
  to_variant_safe_array(array, std::vector<int>());
  expect_empty(VT_VARIANT);
  to_variant_safe_array(array, std::vector<_variant_t>());
  expect_empty(VT_VARIANT);
  to_dispatch_safe_array(array, std::vector<dispatch_pointer>());
  expect_empty(VT_DISPATCH);
}

TEST(ToSafeArray, of_integers_copies_the_32_bits_under_each_type_of_the_set) {
  for (const VARTYPE type : integer_types) {
    COleSafeArray array = held_numbers();
    to_safe_array(array, std::vector<int>{3, -1, std::numeric_limits<int>::min()}, type);
    EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=" + vectors::name_of(type) + " [0..2] data");
    EXPECT_EQ(elements_of<ULONG>(array), (std::vector<ULONG>{3, 0xFFFFFFFFU, 0x80000000U}));
    to_safe_array(array, std::vector<long>{-1, 0xFFFFFFFFL, -0x80000000L}, type);
    EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=" + vectors::name_of(type) + " [0..2] data");
    EXPECT_EQ(elements_of<ULONG>(array), (std::vector<ULONG>{0xFFFFFFFFU, 0xFFFFFFFFU, 0x80000000U}));
  }
}

TEST(ToSafeArray, with_a_type_outside_the_integer_set_is_refused_and_leaves_the_target_untouched) {
  for (int type = 0; type < 0x60; ++type) {
    const auto element_type = static_cast<unsigned short>(type);
    if (std::find(std::begin(integer_types), std::end(integer_types), element_type) != std::end(integer_types))
      continue;
    COleSafeArray array = held_numbers();
    EXPECT_EQ(thrown_by([&] { to_safe_array(array, std::vector<long>{1}, element_type); }), invalid_argument_code)
        << type;
    EXPECT_EQ(thrown_by([&] { to_safe_array(array, std::vector<int>{1}, element_type); }), invalid_argument_code)
        << type;
    EXPECT_EQ(thrown_by([&] { to_safe_array(array, std::vector<int>(), element_type); }), invalid_argument_code)
        << type;
    expect_held_numbers(array);
  }
}

TEST(ToSafeArray, of_a_long_that_has_no_32_bits_is_refused_and_leaves_the_target_untouched) {
  COleSafeArray array = held_numbers();
  for (const long value : {0x100000000L, -0x80000001L, std::numeric_limits<long>::max()})
    EXPECT_EQ(thrown_by([&] { to_safe_array(array, std::vector<long>{1, value}, VT_I4); }), "0x8002000A") << value;
  expect_held_numbers(array);
}

TEST(ToSafeArray, of_bytes_copies_them) {
  unsigned char bytes[] = {0, 255, 7};
  COleSafeArray array = held_numbers();
  to_safe_array(array, bytes, 3);
  EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=UI1 [0..2] data");
  EXPECT_EQ(elements_of<BYTE>(array), (std::vector<BYTE>{0, 255, 7}));
}

TEST(ToSafeArray, of_a_negative_count_or_of_missing_bytes_is_refused_and_leaves_the_target_untouched) {
  unsigned char bytes[] = {1};
  COleSafeArray array = held_numbers();
  EXPECT_EQ(thrown_by([&] { to_safe_array(array, bytes, -1); }), invalid_argument_code);
  EXPECT_EQ(thrown_by([&] { to_safe_array(array, bytes, std::numeric_limits<int>::min()); }), invalid_argument_code);
  EXPECT_EQ(thrown_by([&] { to_safe_array(array, nullptr, 1); }), invalid_argument_code);
  expect_held_numbers(array);
}

/// A holder of a block of some bytes that says to have so many.
void give(CLongBinary& holder, const std::string& bytes, DWORD length) {
  holder.m_hData = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
  if (!bytes.empty()) std::memcpy(GlobalLock(holder.m_hData), bytes.data(), bytes.size());
  if (!bytes.empty()) GlobalUnlock(holder.m_hData);
  holder.m_dwDataLength = length;
}

TEST(ToSafeArray, of_a_long_binary_copies_its_data_and_not_the_rest_of_its_block) {
  CLongBinary holder;
  give(holder, "abcdef", 4);
  COleSafeArray array = held_numbers();
  to_safe_array(array, holder);
  EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=UI1 [0..3] data");
  EXPECT_EQ(elements_of<BYTE>(array), (std::vector<BYTE>{'a', 'b', 'c', 'd'}));
  EXPECT_EQ(GlobalFlags(holder.m_hData) & 0xFFU, 0U) << "unlocked";
}

TEST(ToSafeArray, of_a_long_binary_without_block_or_without_length_has_no_elements) {
  CLongBinary holder;
  give(holder, "abc", 0);
  COleSafeArray array = held_numbers();
  to_safe_array(array, holder);
  EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=UI1 [0..-1] data");
  CLongBinary none;
  none.m_dwDataLength = 5;
  array = held_numbers();
  to_safe_array(array, none);
  EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=UI1 [0..-1] data");
}

TEST(ToSafeArray, of_a_long_binary_that_cannot_be_locked_is_the_failure_of_the_lock) {
  CLongBinary holder;
  give(holder, "", 5);
  COleSafeArray array = held_numbers();
  const std::string thrown = thrown_by([&] { to_safe_array(array, holder); });
  EXPECT_EQ(thrown.rfind("DBException: GlobalLock() failed with error code 157", 0), 0U) << thrown;
  expect_held_numbers(array);
}

TEST(ToSafeArray, of_a_long_binary_that_is_longer_than_its_block_is_refused) {
  CLongBinary holder;
  give(holder, "abc", 0x80000000U);
  COleSafeArray array = held_numbers();
  EXPECT_EQ(thrown_by([&] { to_safe_array(array, holder); }), invalid_argument_code);
  expect_held_numbers(array);
  EXPECT_EQ(GlobalFlags(holder.m_hData) & 0xFFU, 0U) << "unlocked";
}

TEST(ToVariantSafeArray, of_integers_makes_variants_of_32_bits) {
  COleSafeArray array;
  to_variant_safe_array(array, std::vector<int>{5, -6});
  EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=VARIANT [0..1] data");
  const auto values = elements_of<VARIANT>(array);
  EXPECT_EQ(values[0].vt, VT_I4);
  EXPECT_EQ(values[0].lVal, 5);
  EXPECT_EQ(values[1].vt, VT_I4);
  EXPECT_EQ(values[1].lVal, -6);
}

TEST(ToVariantSafeArray, of_objects_holds_references_of_its_own) {
  counted_object object;
  {
    COleSafeArray array;
    to_variant_safe_array(array, std::vector<dispatch_pointer>{&object, nullptr, &object});
    EXPECT_EQ(object.references, 3U);
    const auto values = elements_of<VARIANT>(array);
    EXPECT_EQ(values[0].vt, VT_DISPATCH);
    EXPECT_EQ(values[0].pdispVal, &object);
    EXPECT_EQ(values[1].vt, VT_DISPATCH);
    EXPECT_EQ(values[1].pdispVal, nullptr);
  }
  EXPECT_EQ(object.references, 1U);
}

TEST(ToVariantSafeArray, of_variants_copies_them_deeply) {
  counted_object object;
  {
    std::vector<_variant_t> source{_variant_t("text"), _variant_t(&object), _variant_t(2.5)};
    COleSafeArray array;
    to_variant_safe_array(array, source);
    EXPECT_EQ(object.references, 3U);
    const auto values = elements_of<VARIANT>(array);
    EXPECT_NE(values[0].bstrVal, source[0].bstrVal);
    source.clear();
    EXPECT_STREQ(_bstr_t(values[0].bstrVal), "text");
    EXPECT_EQ(object.references, 2U);
    EXPECT_EQ(values[2].dblVal, 2.5);
  }
  EXPECT_EQ(object.references, 1U);
}

TEST(ToVariantSafeArray, of_a_variant_that_cannot_be_copied_releases_what_was_copied_and_leaves_the_target_empty) {
  counted_object object;
  std::vector<_variant_t> source{_variant_t(&object), _variant_t(1)};
  source[1].vt = VT_VOID;
  COleSafeArray array = held_numbers();
  EXPECT_EQ(thrown_by([&] { to_variant_safe_array(array, source); }), "0x80020008");
  EXPECT_EQ(array.vt, VT_EMPTY);
  EXPECT_EQ(object.references, 2U);
}

TEST(ToDispatchSafeArray, holds_references_of_its_own) {
  counted_object object;
  {
    COleSafeArray array;
    to_dispatch_safe_array(array, std::vector<dispatch_pointer>{&object, nullptr});
    EXPECT_EQ(shape(array), "locks=0 dims=1 vartype=DISPATCH [0..1] data");
    EXPECT_EQ(object.references, 2U);
    EXPECT_EQ(elements_of<IDispatch*>(array), (std::vector<IDispatch*>{&object, nullptr}));
  }
  EXPECT_EQ(object.references, 1U);
}

TEST(ToSafeArray, leaves_a_target_alone_whose_data_are_accessed) {
  COleSafeArray array = held_numbers();
  {
    const safe_array_access access(array.parray);
    unsigned char byte = 1;
    EXPECT_EQ(thrown_by([&] { to_safe_array(array, std::vector<CString>{"a"}); }), "0x8002000D");
    EXPECT_EQ(thrown_by([&] { to_safe_array(array, std::vector<long>{1}, VT_I4); }), "0x8002000D");
    EXPECT_EQ(thrown_by([&] { to_safe_array(array, std::vector<int>{1}, VT_I4); }), "0x8002000D");
    EXPECT_EQ(thrown_by([&] { to_safe_array(array, &byte, 1); }), "0x8002000D");
    EXPECT_EQ(thrown_by([&] { to_variant_safe_array(array, std::vector<int>{1}); }), "0x8002000D");
  }
  expect_held_numbers(array);
}

}  // namespace
