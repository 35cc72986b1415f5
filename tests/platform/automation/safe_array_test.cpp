// Plan, beside the recorded rows
//   layout of the descriptor, order of bounds and of elements in two and three dimensions
//   sizes and bounds that overflow are refused; very many elements are not
//   elements of every kind: copied in, copied out, released; a grid of variants; failures leave the old element
//   copying and resizing in several dimensions; interface ids; static data; locks
#include "spcbase/platform/automation/safe_array.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "array_text.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/automation/variant_t.h"

namespace {

using vectors::counted_object;

safe_array_holder create(VARTYPE type, std::initializer_list<SAFEARRAYBOUND> bounds) {
  std::vector<SAFEARRAYBOUND> copy(bounds);
  return safe_array_holder(SafeArrayCreate(type, static_cast<UINT>(copy.size()), copy.data()));
}

TEST(SafeArray, has_the_documented_layout) {
  EXPECT_EQ(offsetof(SAFEARRAY, cDims), 0U);
  EXPECT_EQ(offsetof(SAFEARRAY, fFeatures), 2U);
  EXPECT_EQ(offsetof(SAFEARRAY, cbElements), 4U);
  EXPECT_EQ(offsetof(SAFEARRAY, cLocks), 8U);
  EXPECT_EQ(offsetof(SAFEARRAY, pvData), 16U);
  EXPECT_EQ(offsetof(SAFEARRAY, rgsabound), 24U);
}

TEST(SafeArray, bounds_are_stored_rightmost_first) {
  const safe_array_holder array = create(VT_I4, {{2, 5}, {3, -1}, {4, 7}});
  const SAFEARRAYBOUND* const stored = array.get()->rgsabound;
  EXPECT_EQ(stored[0].cElements, 4U);
  EXPECT_EQ(stored[0].lLbound, 7);
  EXPECT_EQ(stored[2].cElements, 2U);
  EXPECT_EQ(stored[2].lLbound, 5);
}

TEST(SafeArray, the_leftmost_index_runs_fastest_in_two_dimensions) {
  const safe_array_holder array = create(VT_I4, {{2, 5}, {3, -1}});
  for (LONG column = 5; column <= 6; ++column) {
    for (LONG row = -1; row <= 1; ++row) {
      const LONG index[] = {column, row};
      const LONG value = column * 100 + row;
      ASSERT_EQ(SafeArrayPutElement(array.get(), index, &value), S_OK);
    }
  }
  const safe_array_access access(array.get());
  const LONG* const data = access.as<LONG>();
  const LONG expected[] = {499, 599, 500, 600, 501, 601};
  for (std::size_t i = 0; i < 6; ++i)
    EXPECT_EQ(data[i], expected[i]);
}

TEST(SafeArray, three_dimensions_address_every_element_once) {
  const safe_array_holder array = create(VT_I2, {{2, 0}, {3, 10}, {4, -2}});
  SHORT next = 0;
  for (LONG z = -2; z < 2; ++z)
    for (LONG y = 10; y < 13; ++y)
      for (LONG x = 0; x < 2; ++x) {
        const LONG index[] = {x, y, z};
        ASSERT_EQ(SafeArrayPutElement(array.get(), index, &next), S_OK);
        ++next;
      }
  const safe_array_access access(array.get());
  for (SHORT i = 0; i < 24; ++i)
    EXPECT_EQ(access.as<SHORT>()[i], i);
  const LONG index[] = {1, 12, -1};
  SHORT value = 0;
  ASSERT_EQ(SafeArrayGetElement(array.get(), index, &value), S_OK);
  EXPECT_EQ(value, 11);
}

TEST(SafeArray, an_index_outside_any_dimension_is_refused) {
  const safe_array_holder array = create(VT_I4, {{2, 5}, {3, -1}});
  LONG value = 0;
  for (const auto& [column, row] : {std::pair{4, 0},
                                    {7, 0},
                                    {5, -2},
                                    {5, 2},
                                    {std::numeric_limits<LONG>::min(), 0},
                                    {std::numeric_limits<LONG>::max(), 0}}) {
    const LONG index[] = {column, row};
    EXPECT_EQ(SafeArrayGetElement(array.get(), index, &value), DISP_E_BADINDEX) << column << ' ' << row;
    EXPECT_EQ(SafeArrayPutElement(array.get(), index, &value), DISP_E_BADINDEX) << column << ' ' << row;
  }
}

TEST(SafeArray, sizes_that_overflow_are_refused) {
  EXPECT_FALSE(create(VT_UI1, {{0x10000, 0}, {0x10000, 0}}));
  EXPECT_FALSE(create(VT_VARIANT, {{0x10000000, 0}}));
  EXPECT_FALSE(create(VT_R8, {{0x7FFFFFFF, 0}}));
  EXPECT_FALSE(create(VT_R8, {{0x10000, 0}, {0x10000, 0}, {0x10000, 0}, {0x10000, 0}}));
  EXPECT_EQ(SafeArrayCreateVector(VT_I4, 0, 0xFFFFFFFFU), nullptr);
}

TEST(SafeArray, a_last_index_beyond_a_long_is_refused) {
  EXPECT_EQ(SafeArrayCreateVector(VT_UI1, std::numeric_limits<LONG>::max(), 2), nullptr);
  const safe_array_holder last(SafeArrayCreateVector(VT_UI1, std::numeric_limits<LONG>::max(), 1));
  LONG upper = 0;
  ASSERT_EQ(SafeArrayGetUBound(last.get(), 1, &upper), S_OK);
  EXPECT_EQ(upper, std::numeric_limits<LONG>::max());
  const LONG index = std::numeric_limits<LONG>::max();
  const BYTE value = 1;
  EXPECT_EQ(SafeArrayPutElement(last.get(), &index, &value), S_OK);
}

TEST(SafeArray, an_empty_dimension_makes_an_empty_array_whatever_the_others_are) {
  const safe_array_holder array = create(VT_R8, {{0, 0}, {0x7FFFFFFF, 0}, {0x7FFFFFFF, 0}});
  ASSERT_TRUE(array);
  const LONG index[] = {0, 0, 0};
  double value = 0;
  EXPECT_EQ(SafeArrayGetElement(array.get(), index, &value), DISP_E_BADINDEX);
}

TEST(SafeArray, null_bounds_and_too_many_dimensions_are_refused) {
  EXPECT_EQ(SafeArrayCreate(VT_I4, 1, nullptr), nullptr);
  SAFEARRAY* array = nullptr;
  EXPECT_EQ(SafeArrayAllocDescriptor(0x10000, &array), E_INVALIDARG);
  EXPECT_EQ(array, nullptr);
  EXPECT_EQ(SafeArrayAllocDescriptorEx(VT_VOID, 1, &array), E_INVALIDARG);
}

TEST(SafeArray, a_grid_of_variants_owns_its_cells) {
  counted_object object;
  {
    const safe_array_holder grid = create(VT_VARIANT, {{2, 0}, {2, 0}});
    const LONG text_cell[] = {0, 1};
    const LONG object_cell[] = {1, 0};
    const LONG number_cell[] = {1, 1};
    const _variant_t text("Bohrung Ø");
    ASSERT_EQ(SafeArrayPutElement(grid.get(), text_cell, &text), S_OK);
    const _variant_t held(static_cast<IDispatch*>(&object));
    ASSERT_EQ(SafeArrayPutElement(grid.get(), object_cell, &held), S_OK);
    const _variant_t number(0.1);
    ASSERT_EQ(SafeArrayPutElement(grid.get(), number_cell, &number), S_OK);
    ASSERT_EQ(SafeArrayPutElement(grid.get(), number_cell, &held), S_OK);
    ASSERT_EQ(SafeArrayPutElement(grid.get(), number_cell, &number), S_OK);
    EXPECT_EQ(object.references, 3U);

    _variant_t got;
    ASSERT_EQ(SafeArrayGetElement(grid.get(), text_cell, got.GetAddress()), S_OK);
    EXPECT_TRUE(got == text);
    const LONG untouched[] = {0, 0};
    ASSERT_EQ(SafeArrayGetElement(grid.get(), untouched, got.GetAddress()), S_OK);
    EXPECT_EQ(got.vt, VT_EMPTY);
    safe_array_holder copy;
    ASSERT_EQ(SafeArrayCopy(grid.get(), copy.receive()), S_OK);
    EXPECT_EQ(object.references, 4U);
    ASSERT_EQ(SafeArrayGetElement(copy.get(), number_cell, got.GetAddress()), S_OK);
    EXPECT_TRUE(got == number);
  }
  EXPECT_EQ(object.references, 1U);
}

TEST(SafeArray, putting_a_bad_variant_fails_and_keeps_the_old_cell) {
  const safe_array_holder grid = create(VT_VARIANT, {{1, 0}});
  const LONG index = 0;
  const _variant_t number(5);
  ASSERT_EQ(SafeArrayPutElement(grid.get(), &index, &number), S_OK);
  VARIANT bad{};
  bad.vt = VT_PTR;
  EXPECT_EQ(SafeArrayPutElement(grid.get(), &index, &bad), DISP_E_BADVARTYPE);
  EXPECT_EQ(SafeArrayPutElement(grid.get(), &index, nullptr), E_INVALIDARG);
  EXPECT_EQ(SafeArrayGetElement(grid.get(), &index, nullptr), E_INVALIDARG);
  _variant_t got;
  ASSERT_EQ(SafeArrayGetElement(grid.get(), &index, got.GetAddress()), S_OK);
  EXPECT_TRUE(got == number);
}

TEST(SafeArray, texts_with_zeros_and_odd_lengths_are_copied_whole) {
  const safe_array_holder texts = create(VT_BSTR, {{1, 0}});
  const LONG index = 0;
  BSTR const given = SysAllocStringByteLen("ab\0de", 5);
  ASSERT_EQ(SafeArrayPutElement(texts.get(), &index, given), S_OK);
  SysFreeString(given);
  safe_array_holder copy;
  ASSERT_EQ(SafeArrayCopy(texts.get(), copy.receive()), S_OK);
  BSTR got = nullptr;
  ASSERT_EQ(SafeArrayGetElement(copy.get(), &index, static_cast<void*>(&got)), S_OK);
  EXPECT_EQ(SysStringByteLen(got), 5U);
  EXPECT_EQ(std::memcmp(got, "ab\0de", 5), 0);
  SysFreeString(got);
}

TEST(SafeArray, redim_of_two_dimensions_changes_the_rightmost_and_keeps_the_rest) {
  const safe_array_holder array = create(VT_BSTR, {{2, 0}, {2, 0}});
  for (LONG column = 0; column < 2; ++column) {
    for (LONG row = 0; row < 2; ++row) {
      const LONG index[] = {column, row};
      const std::u16string text{static_cast<char16_t>(u'a' + column), static_cast<char16_t>(u'0' + row)};
      const _bstr_t value(text.c_str());
      ASSERT_EQ(SafeArrayPutElement(array.get(), index, static_cast<const char16_t*>(value)), S_OK);
    }
  }
  SAFEARRAYBOUND larger{3, 0};
  ASSERT_EQ(SafeArrayRedim(array.get(), &larger), S_OK);
  const auto text_at = [&](LONG column, LONG row) {
    const LONG index[] = {column, row};
    BSTR got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array.get(), index, static_cast<void*>(&got)), S_OK);
    return _bstr_t(got, false);
  };
  EXPECT_TRUE(text_at(1, 1) == "b1");
  EXPECT_TRUE(text_at(0, 1) == "a1");
  EXPECT_TRUE(!text_at(1, 2));
  SAFEARRAYBOUND smaller{1, 4};
  ASSERT_EQ(SafeArrayRedim(array.get(), &smaller), S_OK);
  EXPECT_TRUE(text_at(1, 4) == "b0");
  SAFEARRAYBOUND too_large{0x80000000U, 0};
  EXPECT_EQ(SafeArrayRedim(array.get(), &too_large), E_INVALIDARG);
  EXPECT_TRUE(text_at(0, 4) == "a0");
  EXPECT_EQ(SafeArrayRedim(array.get(), nullptr), E_INVALIDARG);
}

TEST(SafeArray, redim_gives_back_what_falls_off) {
  counted_object object;
  const safe_array_holder array = create(VT_UNKNOWN, {{2, 0}});
  for (LONG i = 0; i < 2; ++i)
    ASSERT_EQ(SafeArrayPutElement(array.get(), &i, static_cast<IUnknown*>(&object)), S_OK);
  EXPECT_EQ(object.references, 3U);
  SAFEARRAYBOUND one{1, 0};
  ASSERT_EQ(SafeArrayRedim(array.get(), &one), S_OK);
  EXPECT_EQ(object.references, 2U);
}

TEST(SafeArray, a_fixed_array_is_not_resized) {
  const safe_array_holder array = create(VT_I4, {{2, 0}});
  array.get()->fFeatures = static_cast<USHORT>(array.get()->fFeatures | FADF_FIXEDSIZE);
  SAFEARRAYBOUND one{1, 0};
  EXPECT_EQ(SafeArrayRedim(array.get(), &one), E_INVALIDARG);
}

TEST(SafeArray, data_of_others_is_released_and_zeroed_but_not_freed) {
  BSTR texts[2] = {SysAllocString(u"a"), SysAllocString(u"b")};
  SAFEARRAY* raw = nullptr;
  ASSERT_EQ(SafeArrayAllocDescriptorEx(VT_BSTR, 1, &raw), S_OK);
  raw->fFeatures = static_cast<USHORT>(raw->fFeatures | FADF_STATIC);
  raw->pvData = static_cast<void*>(texts);
  raw->rgsabound[0] = {2, 0};
  EXPECT_EQ(SafeArrayDestroy(raw), S_OK);
  EXPECT_EQ(texts[0], nullptr);
  EXPECT_EQ(texts[1], nullptr);
}

TEST(SafeArray, destroyed_data_can_be_allocated_again) {
  const safe_array_holder array = create(VT_BSTR, {{2, 0}});
  const LONG index = 0;
  const _bstr_t text("a");
  ASSERT_EQ(SafeArrayPutElement(array.get(), &index, static_cast<const char16_t*>(text)), S_OK);
  ASSERT_EQ(SafeArrayDestroyData(array.get()), S_OK);
  void* element = nullptr;
  EXPECT_EQ(SafeArrayPtrOfIndex(array.get(), &index, &element), E_INVALIDARG);
  ASSERT_EQ(SafeArrayAllocData(array.get()), S_OK);
  BSTR got = nullptr;
  ASSERT_EQ(SafeArrayGetElement(array.get(), &index, static_cast<void*>(&got)), S_OK);
  EXPECT_EQ(got, nullptr);
}

TEST(SafeArray, object_arrays_know_their_interface) {
  const GUID other{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  SAFEARRAYBOUND one{1, 0};
  const safe_array_holder plain(SafeArrayCreate(VT_DISPATCH, 1, &one));
  const safe_array_holder special(SafeArrayCreateEx(VT_UNKNOWN, 1, &one, const_cast<GUID*>(&other)));
  GUID iid{};
  ASSERT_EQ(SafeArrayGetIID(plain.get(), &iid), S_OK);
  EXPECT_EQ(iid, IID_IDispatch);
  safe_array_holder copy;
  ASSERT_EQ(SafeArrayCopy(special.get(), copy.receive()), S_OK);
  ASSERT_EQ(SafeArrayGetIID(copy.get(), &iid), S_OK);
  EXPECT_EQ(iid, other);
  const safe_array_holder numbers = create(VT_I4, {{1, 0}});
  EXPECT_EQ(SafeArrayGetIID(numbers.get(), &iid), E_INVALIDARG);
  EXPECT_EQ(SafeArraySetIID(numbers.get(), other), E_INVALIDARG);
}

TEST(SafeArray, too_many_locks_are_refused) {
  const safe_array_holder array = create(VT_I4, {{1, 0}});
  array.get()->cLocks = std::numeric_limits<ULONG>::max();
  EXPECT_EQ(SafeArrayLock(array.get()), E_UNEXPECTED);
  void* data = &data;
  EXPECT_EQ(SafeArrayAccessData(array.get(), &data), E_UNEXPECTED);
  EXPECT_EQ(data, nullptr);
  array.get()->cLocks = 0;
}

TEST(SafeArray, a_locked_array_inside_keeps_the_outer_one_from_going) {
  const safe_array_holder outer = create(VT_VARIANT, {{1, 0}});
  VARIANT inner{};
  inner.vt = VT_ARRAY | VT_I4;
  inner.parray = SafeArrayCreateVector(VT_I4, 0, 1);
  const safe_array_access data(outer.get());
  data.as<VARIANT>()[0] = inner;
  ASSERT_EQ(SafeArrayUnaccessData(outer.get()), S_OK);
  ASSERT_EQ(SafeArrayLock(inner.parray), S_OK);
  EXPECT_EQ(SafeArrayDestroyData(outer.get()), DISP_E_ARRAYISLOCKED);
  ASSERT_EQ(SafeArrayUnlock(inner.parray), S_OK);
  ASSERT_EQ(SafeArrayLock(outer.get()), S_OK);
}

TEST(SafeArrayHolder, moves_and_hands_out) {
  safe_array_holder first = create(VT_I4, {{1, 0}});
  SAFEARRAY* const array = first.get();
  safe_array_holder second(std::move(first));
  EXPECT_EQ(second.get(), array);
  first = std::move(second);
  EXPECT_EQ(first.get(), array);
  first.reset(array);
  EXPECT_EQ(first.get(), array);
  EXPECT_EQ(SafeArrayDestroy(first.release()), S_OK);
  EXPECT_FALSE(first);
  const safe_array_access none(nullptr);
  EXPECT_EQ(none.result(), E_INVALIDARG);
}

}  // namespace
