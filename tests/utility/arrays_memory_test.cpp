// Plan: each allocation of every conversion fails once
//   the failure is one of memory; nothing leaks (references are counted here, the rest by the leak checker); the target
//   of a failed to_..._safe_array is empty, what a vector holds is a beginning of the elements; no array stays accessed
#include <algorithm>
#include <memory>

#include "tests/utility/array_cases.h"
#include "tests/utility/failing_allocation.h"

namespace {

using namespace array_cases;
using test_support::FailingAllocation;

using dispatch_pointer = _com_ptr_t<IDispatch>;

const std::vector<CString> texts = {"a text that is long enough to need memory of its own", "kurz",
                                    "ein längerer Text, der eigenen Speicher braucht"};

/// Runs `work` with its first, second, ... allocation failing, until it needs no more; `check` looks at what is left.
template <class Work, class Check>
void fail_each_allocation(Work work, Check check) {
  constexpr int enough = 100;
  for (int k = 1; k < enough; ++k) {
    SCOPED_TRACE(k);
    bool reached = false;
    bool thrown_memory = false;
    std::string thrown;
    {
      const FailingAllocation failing(k);
      thrown = thrown_by(work);
      reached = FailingAllocation::reached();
      thrown_memory = thrown == "memory" || thrown == "0x80030070";
    }
    if (!reached) {
      EXPECT_EQ(thrown, "");
      EXPECT_GT(k, 1) << "it needs memory";
      return;
    }
    EXPECT_TRUE(thrown_memory) << thrown;
    check();
  }
  FAIL() << "more allocations than expected";
}

/// For conversions to an array: an empty target after each failure.
template <class Convert>
void fail_each_allocation_of(Convert convert) {
  COleSafeArray target;
  fail_each_allocation([&] { convert(target); }, [&] { EXPECT_EQ(target.vt, VT_EMPTY); });
  EXPECT_NE(target.vt, VT_EMPTY);
}

TEST(LackOfMemory, leaves_the_target_of_a_new_array_empty) {
  counted_object object;
  {
    const std::vector<dispatch_pointer> objects = {&object, &object};
    const std::vector<_variant_t> values = {_variant_t(&object), _variant_t("text"), _variant_t("another")};
    unsigned char bytes[] = {1, 2};
    CLongBinary holder;
    holder.m_hData = GlobalAlloc(GMEM_MOVEABLE, 5);
    holder.m_dwDataLength = 5;
    fail_each_allocation_of([&](COleSafeArray& target) { to_safe_array(target, texts); });
    fail_each_allocation_of([&](COleSafeArray& target) { to_safe_array(target, std::vector<CString>()); });
    fail_each_allocation_of([&](COleSafeArray& target) { to_safe_array(target, bytes, 2); });
    fail_each_allocation_of([&](COleSafeArray& target) { to_safe_array(target, holder); });
    EXPECT_EQ(GlobalFlags(holder.m_hData) & 0xFFU, 0U) << "unlocked";
    fail_each_allocation_of([&](COleSafeArray& target) { to_variant_safe_array(target, objects); });
    fail_each_allocation_of([&](COleSafeArray& target) { to_variant_safe_array(target, values); });
    fail_each_allocation_of([&](COleSafeArray& target) { to_dispatch_safe_array(target, objects); });
  }
  EXPECT_EQ(object.references, 1U);
}

TEST(LackOfMemory, of_integers_leaves_the_target_of_a_new_array_empty) {
  const std::vector<int> ints = {1, 2};
  const std::vector<long> longs = {1, 2};
  fail_each_allocation_of([&](COleSafeArray& target) { to_safe_array(target, ints, VT_I4); });
  fail_each_allocation_of([&](COleSafeArray& target) { to_safe_array(target, longs, VT_I4); });
  fail_each_allocation_of([&](COleSafeArray& target) { to_variant_safe_array(target, ints); });
}

/// For conversions to a vector: a beginning of the elements after each failure, and no access left.
template <class T>
void fail_each_allocation_to_vector(SAFEARRAY* array) {
  std::vector<T> all;
  to_vector(all, array);
  std::vector<T> target;
  fail_each_allocation(
      [&] {
        std::vector<T>().swap(target);
        to_vector(target, array);
      },
      [&] {
        ASSERT_LE(target.size(), all.size());
        EXPECT_TRUE(std::equal(target.begin(), target.end(), all.begin()));
        EXPECT_EQ(array->cLocks, 0U);
      });
  EXPECT_EQ(target, all);
}

TEST(LackOfMemory, leaves_a_beginning_of_the_elements_in_a_vector) {
  counted_object object;
  {
    COleSafeArray array;
    to_safe_array(array, texts);
    fail_each_allocation_to_vector<CString>(array.parray);
    fail_each_allocation_to_vector<_bstr_t>(array.parray);
    to_safe_array(array, std::vector<int>{1, 2, 3}, VT_I4);
    fail_each_allocation_to_vector<long>(array.parray);
    fail_each_allocation_to_vector<int>(array.parray);
    fail_each_allocation_to_vector<short>(array_of<short>(VT_I2, {1, 2}).parray);
    fail_each_allocation_to_vector<bool>(array_of<short>(VT_BOOL, {1, 0}).parray);
    fail_each_allocation_to_vector<double>(array_of<double>(VT_R8, {1, 2}).parray);
    fail_each_allocation_to_vector<unsigned char>(array_of<BYTE>(VT_UI1, {1, 2}).parray);
    to_variant_safe_array(array,
                          std::vector<_variant_t>{_variant_t(&object), _variant_t("text"), _variant_t("another")});
    fail_each_allocation_to_vector<_variant_t>(array.parray);
    to_dispatch_safe_array(array, {&object, &object});
    fail_each_allocation_to_vector<dispatch_pointer>(array.parray);
    fail_each_allocation_to_vector<_com_ptr_t<IUnknown>>(array.parray);
  }
  EXPECT_EQ(object.references, 1U);
}

TEST(LackOfMemory, leaves_no_bytes_and_no_access) {
  const COleSafeArray array = array_of<BYTE>(VT_UI1, {1, 2});
  unsigned char* bytes = nullptr;
  int count = 0;
  fail_each_allocation([&] { to_byte_array(&bytes, count, array.parray); },
                       [&] {
                         EXPECT_EQ(bytes, nullptr);
                         EXPECT_EQ(array.parray->cLocks, 0U);
                       });
  const std::unique_ptr<unsigned char[]> owned(bytes);
  EXPECT_NE(bytes, nullptr);
}

TEST(LackOfMemory, leaves_a_long_binary_without_data) {
  const COleSafeArray array = array_of<BYTE>(VT_UI1, {1, 2});
  CLongBinary holder;
  fail_each_allocation([&] { to_long_bin(holder, array.parray, 0); },
                       [&] {
                         EXPECT_EQ(holder.m_hData, nullptr);
                         EXPECT_EQ(holder.m_dwDataLength, 0U);
                         EXPECT_EQ(array.parray->cLocks, 0U);
                       });
}

TEST(LackOfMemory, gives_no_stream) {
  unsigned char bytes[] = {1, 2};
  ATL::CComPtr<IStream> stream;
  fail_each_allocation([&] { stream.Attach(create_mem_stream(bytes, 2)); },
                       [&] { EXPECT_EQ(static_cast<IStream*>(stream), nullptr); });
  EXPECT_NE(static_cast<IStream*>(stream), nullptr);
}

}  // namespace
