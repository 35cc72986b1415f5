// Plan
// - the recorded sequence: sizes, locks, the three unlocks, the empty block, null handles
// - movable and fixed blocks: handle and address, growing and shrinking, locked blocks, filling with zeros
// - trading the bytes of two blocks, and the blocks that refuse it
// - GlobalHandle leads back; GlobalFlags tells locks and the empty block; the task allocator
#include "spcbase/platform/system/memory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <string>

#include "spcbase/platform/system/internal/block_exchange.h"
#include "spcbase/platform/system/system_error.h"
#include "tests/support/vector_file.h"

namespace {

std::string size_after_alloc(std::size_t size) {
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
  const std::string result = std::to_string(GlobalSize(block));
  GlobalFree(block);
  return result;
}

std::string lock_of(HGLOBAL block) {
  SetLastError(0);
  return GlobalLock(block) ? "address" : "null error " + std::to_string(GetLastError());
}

std::string three_unlocks() {
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 10);
  GlobalLock(block);
  GlobalLock(block);
  std::string result;
  for (int i = 0; i < 3; ++i) {
    SetLastError(0);
    const BOOL more = GlobalUnlock(block);
    result += (i ? " " : "") + std::to_string(more) + "," + std::to_string(GetLastError());
  }
  GlobalFree(block);
  return result;
}

std::string empty_block(bool lock) {
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 0);
  const std::string result = lock ? lock_of(block) : (block ? "handle " : "null ") + std::to_string(GlobalSize(block));
  GlobalFree(block);
  return result;
}

std::string same_address_twice() {
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 10);
  const bool same = GlobalLock(block) == GlobalLock(block);
  GlobalFree(block);
  return same ? "yes" : "no";
}

std::string size_after_growth() {
  HGLOBAL block = GlobalReAlloc(GlobalAlloc(GMEM_MOVEABLE, 10), 20, GMEM_MOVEABLE);
  const std::string result = std::to_string(GlobalSize(block));
  GlobalFree(block);
  return result;
}

TEST(Global, recorded_calls_give_their_recorded_results) {
  const std::map<std::string, std::function<std::string()>> calls = {
      {"GlobalAlloc(2, 0): handle and size", [] { return empty_block(false); }},
      {"GlobalLock of a zero size block", [] { return empty_block(true); }},
      {"GlobalAlloc(2, 1): size", [] { return size_after_alloc(1); }},
      {"GlobalAlloc(2, 7): size", [] { return size_after_alloc(7); }},
      {"GlobalAlloc(2, 8): size", [] { return size_after_alloc(8); }},
      {"GlobalAlloc(2, 9): size", [] { return size_after_alloc(9); }},
      {"GlobalAlloc(2, 100): size", [] { return size_after_alloc(100); }},
      {"GlobalLock twice gives the same pointer", same_address_twice},
      {"GlobalUnlock after two locks: first, second, third (result, error)", three_unlocks},
      {"GlobalFree result", [] { return GlobalFree(GlobalAlloc(GMEM_MOVEABLE, 3)) ? "handle" : "null"; }},
      {"GlobalLock(null)", [] { return lock_of(nullptr); }},
      {"GlobalReAlloc 10 to 20: size", size_after_growth},
  };
  std::size_t played = 0;
  for (const auto& row : test_support::read_vectors("safearray.tsv")) {
    if (row["class"] != "global") continue;
    SCOPED_TRACE(row.place());
    ASSERT_TRUE(calls.count(row["case"])) << row["case"];
    EXPECT_EQ(calls.at(row["case"])(), row["output"]);
    ++played;
  }
  EXPECT_EQ(played, calls.size());
}

TEST(Global, a_movable_block_keeps_its_bytes_when_it_grows) {
  HGLOBAL block = GlobalAlloc(GHND, 4);
  std::memcpy(GlobalLock(block), "abc", 4);
  GlobalUnlock(block);
  EXPECT_EQ(GlobalReAlloc(block, 100000, GMEM_MOVEABLE | GMEM_ZEROINIT), block);
  const auto* bytes = static_cast<const char*>(GlobalLock(block));
  EXPECT_STREQ(bytes, "abc");
  for (std::size_t i = 4; i < 100000; ++i) {
    ASSERT_EQ(bytes[i], '\0') << i;
  }
  EXPECT_EQ(GlobalHandle(bytes), block);
  GlobalFree(block);
}

TEST(Global, a_fixed_block_is_its_own_address_and_needs_no_lock) {
  HGLOBAL block = GlobalAlloc(GPTR, 16);
  EXPECT_EQ(GlobalLock(block), block);
  EXPECT_EQ(GlobalUnlock(block), TRUE);
  EXPECT_EQ(GlobalUnlock(block), TRUE);
  EXPECT_EQ(GlobalHandle(block), block);
  EXPECT_EQ(GlobalFlags(block), 0U);
  EXPECT_EQ(static_cast<unsigned char*>(block)[15], 0);
  EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(Global, a_fixed_block_grows_only_when_it_may_move) {
  HGLOBAL block = GlobalAlloc(GMEM_FIXED, 16);
  EXPECT_EQ(GlobalReAlloc(block, 32, 0), nullptr);
  EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(GlobalReAlloc(block, 8, 0), block);
  EXPECT_EQ(GlobalSize(block), 8U);
  block = GlobalReAlloc(block, 1000, GMEM_MOVEABLE);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(GlobalSize(block), 1000U);
  GlobalFree(block);
}

TEST(Global, a_locked_block_grows_only_when_it_may_move) {
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 10);
  GlobalLock(block);
  EXPECT_EQ(GlobalReAlloc(block, 20, 0), nullptr);
  EXPECT_EQ(GlobalSize(block), 10U);
  EXPECT_EQ(GlobalReAlloc(block, 5, 0), block);
  EXPECT_EQ(GlobalSize(block), 5U);
  EXPECT_EQ(GlobalReAlloc(block, 0, 0), nullptr);
  EXPECT_EQ(GlobalReAlloc(block, 20, GMEM_MOVEABLE), block);
  EXPECT_EQ(GlobalSize(block), 20U);
  EXPECT_EQ(GlobalFlags(block), 1U);
  GlobalFree(block);
}

TEST(Global, size_zero_empties_a_block_and_a_size_fills_it_again) {
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 10);
  EXPECT_EQ(GlobalReAlloc(block, 0, GMEM_MOVEABLE), block);
  EXPECT_EQ(GlobalFlags(block), 0x4000U);
  EXPECT_EQ(lock_of(block), "null error 157");
  EXPECT_EQ(GlobalReAlloc(block, 10, GMEM_MOVEABLE), block);
  EXPECT_NE(GlobalLock(block), nullptr);
  GlobalFree(block);
}

TEST(Global, null_handles_have_last_error_6) {
  SetLastError(0);
  EXPECT_EQ(GlobalSize(nullptr), 0U);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_EQ(GlobalUnlock(nullptr), FALSE);
  EXPECT_EQ(GlobalReAlloc(nullptr, 1, 0), nullptr);
  EXPECT_EQ(GlobalHandle(nullptr), nullptr);
  EXPECT_EQ(GlobalFlags(nullptr), 0x8000U);
  EXPECT_EQ(GlobalFree(nullptr), nullptr);
}

TEST(Global, memory_that_nobody_has_gives_null_with_last_error_8) {
  SetLastError(0);
  EXPECT_EQ(GlobalAlloc(GMEM_MOVEABLE, SIZE_MAX - 4), nullptr);
  EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 4);
  EXPECT_EQ(GlobalReAlloc(block, SIZE_MAX - 4, GMEM_MOVEABLE), nullptr);
  EXPECT_EQ(GlobalSize(block), 4U);
  GlobalFree(block);
}

TEST(CoTaskMem, grows_and_keeps_the_bytes) {
  auto* text = static_cast<char*>(CoTaskMemAlloc(4));
  std::memcpy(text, "abc", 4);
  text = static_cast<char*>(CoTaskMemRealloc(text, 400));
  EXPECT_STREQ(text, "abc");
  EXPECT_EQ(CoTaskMemRealloc(text, 0), nullptr);
  CoTaskMemFree(nullptr);
}

HGLOBAL block_of(UINT flags, const std::string& bytes) {
  HGLOBAL block = GlobalAlloc(flags, bytes.size());
  if (!bytes.empty()) std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
  GlobalUnlock(block);
  return block;
}

std::string text_in(HGLOBAL block) {
  std::string bytes(static_cast<const char*>(GlobalLock(block)), GlobalSize(block));
  GlobalUnlock(block);
  return bytes;
}

TEST(exchange_bytes, gives_each_block_the_others_address_and_leaves_handles_and_sizes) {
  HGLOBAL one = block_of(GMEM_MOVEABLE, "one");
  HGLOBAL two = block_of(GMEM_MOVEABLE, "two");
  void* const address = GlobalLock(one);
  GlobalUnlock(one);
  EXPECT_TRUE(platform::exchange_bytes(one, two));
  EXPECT_EQ(text_in(one), "two");
  EXPECT_EQ(text_in(two), "one");
  EXPECT_EQ(GlobalLock(two), address) << "nothing was copied";
  EXPECT_EQ(GlobalHandle(address), two);
  GlobalUnlock(two);
  GlobalFree(one);
  EXPECT_EQ(text_in(two), "one") << "each is released by its own handle";
  GlobalFree(two);
}

TEST(exchange_bytes, refuses_locked_fixed_empty_and_missing_blocks_and_those_of_another_size) {
  HGLOBAL block = block_of(GMEM_MOVEABLE, "abc");
  HGLOBAL locked = block_of(GMEM_MOVEABLE, "def");
  GlobalLock(locked);
  HGLOBAL fixed = block_of(GMEM_FIXED, "ghi");
  HGLOBAL longer = block_of(GMEM_MOVEABLE, "jklm");
  HGLOBAL empty = GlobalAlloc(GMEM_MOVEABLE, 0);
  HGLOBAL also_empty = GlobalAlloc(GMEM_MOVEABLE, 0);
  for (HGLOBAL other : {locked, fixed, longer, empty, HGLOBAL{}}) {
    EXPECT_FALSE(platform::exchange_bytes(block, other));
    EXPECT_FALSE(platform::exchange_bytes(other, block));
  }
  EXPECT_FALSE(platform::exchange_bytes(empty, also_empty));
  EXPECT_EQ(text_in(block), "abc");
  EXPECT_EQ(text_in(longer), "jklm");
  for (HGLOBAL each : {block, locked, fixed, longer, empty, also_empty})
    GlobalFree(each);
}

}  // namespace
