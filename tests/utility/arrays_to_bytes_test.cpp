// Plan
//   to_byte_array: the bytes, no elements, the order of the checks, an access that cannot be ended
//   to_long_bin: what the target held goes first; the limit; failing codes are long; neither type nor dimensions count
//   create_mem_stream: the bytes with the position at their end, no bytes, one reference, refusals
#include <memory>

#include "tests/utility/array_cases.h"
#include "tests/utility/failing_allocation.h"

namespace {

using namespace array_cases;
using test_support::FailingAllocation;

TEST(ToByteArray, copies_the_bytes_and_leaves_the_array) {
  const COleSafeArray array = array_of<BYTE>(VT_UI1, {9, 0, 255}, 3);
  unsigned char* bytes = nullptr;
  int count = -1;
  to_byte_array(&bytes, count, array.parray);
  const std::unique_ptr<unsigned char[]> owned(bytes);
  ASSERT_EQ(count, 3);
  EXPECT_EQ(std::vector<int>(bytes, bytes + count), (std::vector<int>{9, 0, 255}));
  EXPECT_EQ(array.parray->cLocks, 0U);
}

TEST(ToByteArray, of_an_empty_array_gives_a_count_of_0_and_a_null_pointer) {
  unsigned char before = 0;
  unsigned char* bytes = &before;
  int count = -1;
  to_byte_array(&bytes, count, array_of<BYTE>(VT_UI1, {}).parray);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(bytes, nullptr);
}

TEST(ToByteArray, does_not_look_at_the_type_and_takes_the_number_of_elements_as_that_of_bytes) {
  const COleSafeArray array = array_of<LONG>(VT_I4, {0x04030201, 0x08070605});
  unsigned char* bytes = nullptr;
  int count = -1;
  to_byte_array(&bytes, count, array.parray);
  const std::unique_ptr<unsigned char[]> owned(bytes);
  // Kept: two elements are two bytes.
  ASSERT_EQ(count, 2);
  EXPECT_EQ(std::vector<int>(bytes, bytes + count), (std::vector<int>{1, 2}));
}

TEST(ToByteArray, refuses_more_than_one_dimension_and_no_array_and_writes_nothing) {
  unsigned char before = 0;
  unsigned char* bytes = &before;
  int count = -1;
  const COleSafeArray array = two_dimensions(VT_UI1);
  EXPECT_EQ(thrown_by([&] { to_byte_array(&bytes, count, array.parray); }), invalid_argument);
  EXPECT_EQ(thrown_by([&] { to_byte_array(&bytes, count, nullptr); }), invalid_argument);
  EXPECT_EQ(bytes, &before);
  EXPECT_EQ(count, -1);
}

TEST(ToByteArray, data_that_cannot_be_accessed_are_the_failure_of_the_access) {
  const COleSafeArray array = array_of<BYTE>(VT_UI1, {1});
  array.parray->cLocks = 0xFFFFFFFFU;
  unsigned char* bytes = nullptr;
  int count = -1;
  EXPECT_EQ(thrown_by([&] { to_byte_array(&bytes, count, array.parray); }), "0x8000FFFF");
  array.parray->cLocks = 0;
  EXPECT_EQ(bytes, nullptr);
}

TEST(ToByteArray, an_access_that_cannot_be_ended_frees_the_buffer_and_nulls_the_pointer) {
  const COleSafeArray array = array_of<BYTE>(VT_UI1, {1, 2});
  unsigned char before = 0;
  unsigned char* bytes = &before;
  int count = -1;
  {
    // The buffer is the first thing that is allocated; somebody else ends the access meanwhile.
    const FailingAllocation meddled(1, [&] { SafeArrayUnaccessData(array.parray); });
    EXPECT_EQ(thrown_by([&] { to_byte_array(&bytes, count, array.parray); }), "0x8000FFFF");
  }
  EXPECT_EQ(bytes, nullptr);
  EXPECT_EQ(count, 2);
}

/// A holder with old data.
class ToLongBin : public testing::Test {
 protected:
  void SetUp() override {
    holder.m_hData = GlobalAlloc(GMEM_MOVEABLE, 3);
    holder.m_dwDataLength = 3;
  }
  std::string thrown_for(SAFEARRAY* array, unsigned int limit) {
    return thrown_by([&] { to_long_bin(holder, array, limit); });
  }
  std::string held() const {
    const std::string bytes(static_cast<const char*>(GlobalLock(holder.m_hData)), holder.m_dwDataLength);
    GlobalUnlock(holder.m_hData);
    return bytes;
  }
  void expect_nothing_held() const {
    EXPECT_EQ(holder.m_hData, nullptr);
    EXPECT_EQ(holder.m_dwDataLength, 0U);
  }
  static COleSafeArray bytes(const std::string& text, LONG lower = 0) {
    return array_of<BYTE>(VT_UI1, {text.begin(), text.end()}, lower);
  }

  CLongBinary holder;
};

TEST_F(ToLongBin, replaces_what_was_held_by_the_bytes) {
  const COleSafeArray array = bytes("0123456789", -4);
  to_long_bin(holder, array.parray, 0);
  EXPECT_EQ(held(), "0123456789");
  EXPECT_EQ(array.parray->cLocks, 0U);
  EXPECT_EQ(GlobalFlags(holder.m_hData) & 0xFFU, 0U) << "unlocked";
}

TEST_F(ToLongBin, passes_with_as_many_bytes_as_the_limit) {
  to_long_bin(holder, bytes("0123456789").parray, 10);
  EXPECT_EQ(held(), "0123456789");
}

TEST_F(ToLongBin, beyond_the_limit_is_a_failure_and_the_old_data_are_gone_by_then) {
  EXPECT_EQ(thrown_for(bytes("01234567890").parray, 10), "DBException: The array exceeds limit. 0x80004005");
  expect_nothing_held();
}

TEST_F(ToLongBin, with_a_limit_of_0_has_no_limit) {
  to_long_bin(holder, bytes(std::string(100000, 'x')).parray, 0);
  EXPECT_EQ(held(), std::string(100000, 'x'));
}

TEST_F(ToLongBin, of_no_bytes_has_a_block_without_any) {
  to_long_bin(holder, bytes("").parray, 0);
  EXPECT_NE(holder.m_hData, nullptr);
  EXPECT_EQ(GlobalSize(holder.m_hData), 0U);
  EXPECT_EQ(holder.m_dwDataLength, 0U);
  COleSafeArray back;
  to_safe_array(back, holder);
  EXPECT_EQ(elements_of<BYTE>(back), std::vector<BYTE>());
}

TEST_F(ToLongBin, looks_neither_at_the_type_nor_at_the_dimensions) {
  COleSafeArray array;
  const DWORD counts[] = {2, 3};
  array.Create(VT_UI1, 2, counts);
  std::memcpy(array.parray->pvData, "abcdef", 6);
  // Kept: the first dimension's number of elements is the number of bytes.
  to_long_bin(holder, array.parray, 2);
  EXPECT_EQ(held(), "ab");
  to_long_bin(holder, array_of<LONG>(VT_I4, {0x44434241, 0}).parray, 0);
  EXPECT_EQ(held(), "AB");
}

TEST_F(ToLongBin, throws_failing_codes_as_long) {
  EXPECT_EQ(thrown_for(nullptr, 0), "long 0x80070057");
  expect_nothing_held();
  const COleSafeArray array = bytes("abc");
  array.parray->cLocks = 0xFFFFFFFFU;
  EXPECT_EQ(thrown_for(array.parray, 0), "long 0x8000FFFF");
  array.parray->cLocks = 0;
}

TEST_F(ToLongBin, has_a_block_of_the_length_already_when_the_access_fails) {
  const COleSafeArray array = bytes("abcd");
  array.parray->cLocks = 0xFFFFFFFFU;
  EXPECT_EQ(thrown_for(array.parray, 0), "long 0x8000FFFF");
  array.parray->cLocks = 0;
  EXPECT_EQ(holder.m_dwDataLength, 4U);
  EXPECT_EQ(GlobalSize(holder.m_hData), 4U);
}

std::string rest_of(IStream* stream) {
  char bytes[16] = {};
  ULONG count = 0;
  EXPECT_EQ(stream->Read(bytes, sizeof bytes, &count), S_OK);
  return {bytes, count};
}

ULONGLONG size_of(IStream* stream) {
  STATSTG statistics{};
  EXPECT_EQ(stream->Stat(&statistics, STATFLAG_NONAME), S_OK);
  return statistics.cbSize.QuadPart;
}

TEST(CreateMemStream, holds_the_bytes_and_stands_at_their_end) {
  unsigned char bytes[] = {'a', 'b', 0, 'c'};
  ATL::CComPtr<IStream> stream;
  stream.Attach(create_mem_stream(bytes, 4));
  bytes[0] = 'x';
  // Kept: no rewind is done, so there is nothing left to read.
  EXPECT_EQ(rest_of(stream), "");
  EXPECT_EQ(size_of(stream), 4U);
  ASSERT_EQ(stream->Seek({0}, STREAM_SEEK_SET, nullptr), S_OK);
  EXPECT_EQ(rest_of(stream), std::string("ab\0c", 4));
}

TEST(CreateMemStream, with_a_count_of_0_is_empty_and_does_not_touch_the_data_pointer) {
  ATL::CComPtr<IStream> stream;
  stream.Attach(create_mem_stream(reinterpret_cast<unsigned char*>(1), 0));
  EXPECT_EQ(size_of(stream), 0U);
  EXPECT_EQ(rest_of(stream), "");
  stream.Attach(create_mem_stream(nullptr, 0));
  EXPECT_EQ(size_of(stream), 0U);
}

TEST(CreateMemStream, gives_the_caller_the_one_reference) {
  unsigned char byte = 1;
  IStream* const stream = create_mem_stream(&byte, 1);
  EXPECT_EQ(stream->Release(), 0U);
}

TEST(CreateMemStream, refuses_a_negative_count_and_missing_bytes) {
  unsigned char byte = 1;
  EXPECT_EQ(thrown_by([&] { create_mem_stream(&byte, -1); }), invalid_argument_code);
  EXPECT_EQ(thrown_by([&] { create_mem_stream(&byte, std::numeric_limits<int>::min()); }), invalid_argument_code);
  EXPECT_EQ(thrown_by([&] { create_mem_stream(nullptr, 1); }), "0x80030009") << "what the stream's Write answers";
}

}  // namespace
