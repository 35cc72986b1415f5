// Plan
//   a new one is empty; it has the size of a VARIANT, whose part it can play
//   Create: element type, dimensions leftmost first, bounds; what was held goes; what cannot be made is a memory
//   failure CreateOneDim: zeroed, or the given bits, which the array owns from then on; after a failure they are the
//   caller's copies and assignments are deep; only arrays are taken; an array that is accessed stays Attach and Detach
//   hand the array over
#include "spcbase/platform/automation/ole_safe_array.h"

#include <gtest/gtest.h>

#include <utility>

#include "array_text.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/system/exceptions.h"

namespace {

using vectors::code_thrown_by;
using vectors::counted_object;
using vectors::describe;

template <class Call>
bool is_memory_failure(Call call) {
  try {
    call();
  } catch (CMemoryException* failure) {
    failure->Delete();
    return true;
  }
  return false;
}

TEST(COleSafeArray, is_empty_at_first_and_as_large_as_a_variant) {
  const COleSafeArray array;
  EXPECT_EQ(array.vt, VT_EMPTY);
  EXPECT_EQ(sizeof(COleSafeArray), sizeof(VARIANT));
}

TEST(COleSafeArray, create_makes_zeroed_elements_and_tells_type_and_array_in_its_variant) {
  COleSafeArray array;
  const DWORD counts[] = {2, 3};
  array.Create(VT_I4, 2, counts);
  EXPECT_EQ(array.vt, VT_ARRAY | VT_I4);
  EXPECT_EQ(describe(array.parray), "features=0x0080 element_size=4 locks=0 dims=2 vartype=I4 [0..1] [0..2] data");
  const LONG last[] = {1, 2};
  LONG value = 7;
  ASSERT_EQ(SafeArrayGetElement(array.parray, last, &value), S_OK);
  EXPECT_EQ(value, 0);
}

TEST(COleSafeArray, create_takes_bounds_and_drops_what_was_held) {
  COleSafeArray array;
  counted_object object;
  IDispatch* pointer = &object;
  pointer->AddRef();
  array.CreateOneDim(VT_DISPATCH, 1, &pointer);
  const SAFEARRAYBOUND bound{3, 5};
  array.Create(VT_UI1, 1, &bound);
  EXPECT_EQ(object.references, 1U);
  EXPECT_EQ(describe(array.parray), "features=0x0080 element_size=1 locks=0 dims=1 vartype=UI1 [5..7] data");
}

TEST(COleSafeArray, what_cannot_be_made_is_a_memory_failure_and_leaves_it_empty) {
  COleSafeArray array;
  array.CreateOneDim(VT_I4, 1);
  EXPECT_TRUE(is_memory_failure([&] { array.CreateOneDim(VT_NULL, 1); }));
  EXPECT_EQ(array.vt, VT_EMPTY);
  EXPECT_TRUE(is_memory_failure([&] { array.CreateOneDim(VT_I4, 0x40000000U); })) << "the bytes exceed 32 bits";
  const int value = 1;
  EXPECT_TRUE(is_memory_failure([&] { array.CreateOneDim(VT_I4, 0x80000001U, &value); })) << "so do the indices";
  EXPECT_TRUE(is_memory_failure([&] { array.Create(VT_I4, 0, static_cast<const DWORD*>(nullptr)); }));
  EXPECT_EQ(array.vt, VT_EMPTY);
}

TEST(COleSafeArray, one_dimension_holds_the_given_bits_from_the_given_lower_bound_on) {
  COleSafeArray array;
  const short numbers[] = {3, -1, 4};
  array.CreateOneDim(VT_I2, 3, numbers, -1);
  EXPECT_EQ(array.vt, VT_ARRAY | VT_I2);
  EXPECT_EQ(describe(array.parray), "features=0x0080 element_size=2 locks=0 dims=1 vartype=I2 [-1..1] data");
  const LONG middle = 0;
  short value = 0;
  ASSERT_EQ(SafeArrayGetElement(array.parray, &middle, &value), S_OK);
  EXPECT_EQ(value, -1);
}

TEST(COleSafeArray, one_dimension_without_bits_is_zero_and_without_elements_still_an_array) {
  COleSafeArray array;
  array.CreateOneDim(VT_I4, 2);
  const LONG last = 1;
  LONG value = 7;
  ASSERT_EQ(SafeArrayGetElement(array.parray, &last, &value), S_OK);
  EXPECT_EQ(value, 0);
  array.CreateOneDim(VT_BSTR, 0);
  EXPECT_EQ(describe(array.parray), "features=0x0180 element_size=8 locks=0 dims=1 vartype=BSTR [0..-1] data");
  array.CreateOneDim(VT_BSTR, 0, &value);
  EXPECT_EQ(describe(array.parray), "features=0x0180 element_size=8 locks=0 dims=1 vartype=BSTR [0..-1] data");
}

TEST(COleSafeArray, owns_what_came_with_the_bits_until_it_ends) {
  counted_object object;
  {
    VARIANT element{};
    element.vt = VT_DISPATCH;
    element.pdispVal = &object;
    object.AddRef();
    COleSafeArray array;
    array.CreateOneDim(VT_VARIANT, 1, &element);
    EXPECT_EQ(object.references, 2U);
  }
  EXPECT_EQ(object.references, 1U);
}

TEST(COleSafeArray, copies_and_assignments_are_deep) {
  counted_object object;
  IDispatch* pointer = &object;
  pointer->AddRef();
  COleSafeArray array;
  array.CreateOneDim(VT_DISPATCH, 1, &pointer);
  const COleSafeArray copy(array);
  EXPECT_NE(copy.parray, array.parray);
  EXPECT_EQ(object.references, 3U);
  COleSafeArray assigned;
  assigned = static_cast<const VARIANT&>(array);
  EXPECT_EQ(object.references, 4U);
  assigned = COleSafeArray();
  EXPECT_EQ(assigned.vt, VT_EMPTY);
  EXPECT_EQ(object.references, 3U);
  array.Clear();
  EXPECT_EQ(array.vt, VT_EMPTY);
  EXPECT_EQ(object.references, 2U);
}

TEST(COleSafeArray, takes_only_arrays) {
  VARIANT number{};
  number.vt = VT_I4;
  EXPECT_EQ(code_thrown_by([&] { const COleSafeArray array(number); }), E_INVALIDARG);
  COleSafeArray array;
  array.CreateOneDim(VT_I4, 1);
  EXPECT_EQ(code_thrown_by([&] { array = number; }), E_INVALIDARG);
  EXPECT_EQ(code_thrown_by([&] { array.Attach(number); }), E_INVALIDARG);
  SAFEARRAY* elsewhere = array.parray;
  VARIANT reference{};
  reference.vt = VT_ARRAY | VT_BYREF | VT_I4;
  reference.pparray = &elsewhere;
  EXPECT_EQ(code_thrown_by([&] { array = reference; }), E_INVALIDARG);
  EXPECT_EQ(array.vt, VT_ARRAY | VT_I4);
}

TEST(COleSafeArray, an_array_that_is_accessed_is_neither_cleared_nor_replaced) {
  COleSafeArray array;
  array.CreateOneDim(VT_I4, 1);
  SAFEARRAY* const held = array.parray;
  const safe_array_access access(held);
  EXPECT_EQ(code_thrown_by([&] { array.Clear(); }), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(code_thrown_by([&] { array.CreateOneDim(VT_I2, 5); }), DISP_E_ARRAYISLOCKED);
  COleSafeArray other;
  other.CreateOneDim(VT_I2, 1);
  EXPECT_EQ(code_thrown_by([&] { array.Attach(other); }), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(array.parray, held);
  EXPECT_EQ(other.vt, VT_ARRAY | VT_I2);
}

TEST(COleSafeArray, attach_and_detach_hand_the_array_over) {
  COleSafeArray array;
  array.CreateOneDim(VT_I4, 1);
  SAFEARRAY* const made = array.parray;
  VARIANT detached = array.Detach();
  EXPECT_EQ(array.vt, VT_EMPTY);
  EXPECT_EQ(detached.parray, made);
  COleSafeArray other;
  other.CreateOneDim(VT_BSTR, 1);
  other.Attach(detached);
  EXPECT_EQ(detached.vt, VT_EMPTY);
  EXPECT_EQ(other.parray, made);
  other.Attach(other);
  EXPECT_EQ(other.parray, made);
}

}  // namespace
