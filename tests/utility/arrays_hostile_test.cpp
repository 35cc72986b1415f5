// Plan: arrays that were made by hand and say what cannot be, and counts that no array can have
//   bounds whose count an int, or 32 bits, cannot hold; bounds that give less than 1; every conversion, no memory taken
//   elements without data; elements of less bytes than their type has
//   sources with more elements than an array can count
#include <limits>

#include "spcbase/utility/internal/array_counts.h"
#include "tests/utility/array_cases.h"
#include "tests/utility/failing_allocation.h"

namespace {

using namespace array_cases;
using test_support::FailingAllocation;

constexpr LONG lowest = std::numeric_limits<LONG>::min();
constexpr LONG highest = std::numeric_limits<LONG>::max();

/// A descriptor with bounds of its own and without data.
class HandMade {
 public:
  HandMade(VARTYPE type, LONG lower, ULONG count) {
    EXPECT_EQ(SafeArrayAllocDescriptorEx(type, 1, array_.receive()), S_OK);
    array_.get()->rgsabound[0] = {count, lower};
  }
  SAFEARRAY* get() const { return array_.get(); }

 private:
  safe_array_holder array_;
};

/// What every vector's conversion of such an array throws, its vector as it was; no allocation fails before it.
template <class T>
std::string thrown_for(VARTYPE type, LONG lower, ULONG count) {
  const HandMade array(type, lower, count);
  std::vector<T> target(2);
  std::string thrown;
  HRESULT code = S_OK;
  {
    const FailingAllocation first(1);
    try {
      to_vector(target, array.get());
    } catch (const _com_error& error) {
      code = error.Error();
    } catch (const std::exception& error) {
      thrown = "memory was asked for";
    }
  }
  EXPECT_EQ(target.size(), 2U);
  EXPECT_EQ(array.get()->cLocks, 0U);
  return thrown.empty() ? vectors::hex(code) : thrown;
}

template <class T>
void expect_refused_by_vector(VARTYPE type, LONG lower, ULONG count) {
  EXPECT_EQ(thrown_for<T>(type, lower, count), invalid_argument_code) << "type " << type << " count " << count;
}

void expect_refused_by_every_vector(LONG lower, ULONG count) {
  expect_refused_by_vector<CString>(VT_BSTR, lower, count);
  expect_refused_by_vector<_bstr_t>(VT_BSTR, lower, count);
  for (const VARTYPE type : {VT_I4, VT_UI4, VT_INT, VT_UINT}) {
    expect_refused_by_vector<long>(type, lower, count);
    expect_refused_by_vector<int>(type, lower, count);
  }
  expect_refused_by_vector<short>(VT_I2, lower, count);
  expect_refused_by_vector<bool>(VT_BOOL, lower, count);
  expect_refused_by_vector<double>(VT_R8, lower, count);
  expect_refused_by_vector<_variant_t>(VT_VARIANT, lower, count);
  expect_refused_by_vector<unsigned char>(VT_UI1, lower, count);
  expect_refused_by_vector<_com_ptr_t<IDispatch>>(VT_DISPATCH, lower, count);
  expect_refused_by_vector<_com_ptr_t<IUnknown>>(VT_UNKNOWN, lower, count);
}

TEST(HostileArray, with_more_elements_than_an_int_counts_is_refused_before_memory_is_asked_for) {
  expect_refused_by_every_vector(lowest, 0xFFFFFFFFU);
  expect_refused_by_every_vector(0, 0x80000000U);
  expect_refused_by_every_vector(-1, 0x80000000U);
}

TEST(HostileArray, with_bounds_from_the_lowest_to_the_highest_is_refused) {
  // The upper bound of this one wraps round, so that it says to have every index there is.
  const HandMade array(VT_I4, lowest, 0);
  LONG upper = 0;
  ASSERT_EQ(SafeArrayGetUBound(array.get(), 1, &upper), S_OK);
  ASSERT_EQ(upper, highest);
  expect_refused_by_every_vector(lowest, 0);
}

TEST(HostileArray, with_elements_but_without_data_is_refused_before_memory_is_asked_for) {
  expect_refused_by_every_vector(0, 1);
  expect_refused_by_every_vector(0, 0x7FFFFFFFU);
  expect_refused_by_every_vector(5, 3);
}

TEST(HostileArray, with_an_upper_bound_far_below_the_lower_is_refused) { expect_refused_by_every_vector(highest, 2); }

TEST(HostileArray, with_an_upper_bound_below_the_lower_clears_the_vector_and_gives_the_negative_count) {
  const HandMade array(VT_I4, 5, 0xFFFFFFFEU);
  std::vector<int> numbers(2);
  EXPECT_EQ(to_vector(numbers, array.get()), -2);
  EXPECT_TRUE(numbers.empty());
}

TEST(HostileArray, with_elements_of_less_bytes_than_their_type_is_refused) {
  COleSafeArray array = array_of<LONG>(VT_I4, {1, 2});
  array.parray->cbElements = 1;
  std::vector<int> numbers(3);
  EXPECT_EQ(thrown_by([&] { to_vector(numbers, array.parray); }), invalid_argument_code);
  EXPECT_EQ(numbers.size(), 3U);
  array.parray->cbElements = sizeof(LONG);

  // The feature is all that the pointers look at; the elements of this array are no pointers.
  array.parray->fFeatures = static_cast<USHORT>(array.parray->fFeatures | FADF_DISPATCH);
  std::vector<_com_ptr_t<IDispatch>> pointers;
  EXPECT_EQ(thrown_by([&] { to_vector(pointers, array.parray); }), invalid_argument_code);
  array.parray->fFeatures = static_cast<USHORT>(array.parray->fFeatures & ~FADF_DISPATCH);
}

TEST(HostileArray, has_no_bytes_to_give) {
  unsigned char* bytes = nullptr;
  int count = 0;
  const auto thrown = [&](LONG lower, ULONG elements) {
    const HandMade array(VT_UI1, lower, elements);
    const std::string text = thrown_by([&] { to_byte_array(&bytes, count, array.get()); });
    EXPECT_EQ(array.get()->cLocks, 0U);
    return text;
  };
  EXPECT_EQ(thrown(lowest, 0xFFFFFFFFU), invalid_argument_code);
  EXPECT_EQ(thrown(lowest, 0), invalid_argument_code);
  EXPECT_EQ(thrown(5, 0xFFFFFFFEU), invalid_argument_code);
  EXPECT_EQ(thrown(0, 0x7FFFFFFFU), invalid_argument_code);
  EXPECT_EQ(bytes, nullptr);
}

TEST(HostileArray, has_no_bytes_for_a_long_binary_either) {
  CLongBinary holder;
  const auto thrown = [&](LONG lower, ULONG elements, unsigned int limit) {
    const HandMade array(VT_UI1, lower, elements);
    return thrown_by([&] { to_long_bin(holder, array.get(), limit); });
  };
  const std::string beyond = "DBException: The array exceeds limit. 0x80004005";
  EXPECT_EQ(thrown(lowest, 0xFFFFFFFFU, 10), beyond);
  EXPECT_EQ(thrown(lowest, 0, 0xFFFFFFFFU), beyond);
  EXPECT_EQ(thrown(lowest, 0, 0), "long 0x80070057") << "32 bits do not hold the count";
  EXPECT_EQ(thrown(5, 0xFFFFFFFEU, 10), "long 0x80070057") << "negative";
  EXPECT_EQ(holder.m_hData, nullptr);
  EXPECT_EQ(thrown(0, 3, 0), "long 0x80070057") << "no data";
}

TEST(ArrayCounts, of_sources_beyond_indices_or_bytes_of_an_array_are_refused) {
  const auto thrown = [](std::size_t count, std::size_t element_bytes) {
    return vectors::hex(vectors::code_thrown_by([&] { array_counts::for_array(count, element_bytes); }));
  };
  EXPECT_EQ(thrown(0x7FFFFFFF, 1), "0x00000000");
  EXPECT_EQ(thrown(0x80000000, 1), invalid_argument_code);
  EXPECT_EQ(thrown(0x3FFFFFFF, 4), "0x00000000");
  EXPECT_EQ(thrown(0x40000000, 4), invalid_argument_code);
  EXPECT_EQ(thrown(0x100000000, 1), invalid_argument_code);
  EXPECT_EQ(thrown(std::numeric_limits<std::size_t>::max(), 24), invalid_argument_code);
  EXPECT_EQ(array_counts::for_array(0x3FFFFFFF, 4), 0x3FFFFFFFU);
}

}  // namespace
