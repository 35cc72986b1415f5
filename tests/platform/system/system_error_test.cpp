// Plan
// - the last error belongs to the thread
// - FormatMessageA: every documented text, every recorded number without a text; both forms of the buffer; the other
//   recorded Win32 numbers have a text too; small buffers; calls that cannot be served
#include "spcbase/platform/system/system_error.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

#include "tests/support/vector_file.h"

namespace {

constexpr DWORD allocating = 0x1300;

/// The text of a number by the recorded flags; empty, with the last error set, when there is none.
std::string message_of(DWORD code, DWORD flags, DWORD language, DWORD* length) {
  SetLastError(0);
  if ((flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) == 0) {
    char buffer[512] = "";
    *length = FormatMessageA(flags, nullptr, code, language, buffer, sizeof buffer, nullptr);
    return buffer;
  }
  char* text = nullptr;
  *length = FormatMessageA(flags, nullptr, code, language, reinterpret_cast<char*>(&text), 0, nullptr);
  const std::string result = text ? text : "";
  EXPECT_EQ(LocalFree(text), nullptr);
  return result;
}

TEST(LastError, belongs_to_the_calling_thread) {
  SetLastError(5);
  DWORD elsewhere = 5;
  std::thread([&] { elsewhere = GetLastError(); }).join();
  EXPECT_EQ(elsewhere, 0U);
  EXPECT_EQ(GetLastError(), 5U);
}

TEST(FormatMessageA, recorded_numbers_have_their_documented_texts) {
  int documented = 0;
  int without = 0;
  for (const auto& row : test_support::read_vectors("fmt.tsv")) {
    SCOPED_TRACE(row.place());
    DWORD length = 0;
    const DWORD code = test_support::hex32(row["code"]);
    const std::string text =
        message_of(code, test_support::hex32(row["flags"]), test_support::hex32(row["language"]), &length);
    EXPECT_EQ(length, text.size());
    if (!row["documented_text"].empty()) {
      EXPECT_EQ(text, row["documented_text"]);
      ++documented;
    } else if (row["length"] == "0 error 317") {
      EXPECT_EQ(text, "");
      EXPECT_EQ(GetLastError(), ERROR_MR_MID_NOT_FOUND);
      ++without;
    } else {
      ASSERT_GT(text.size(), 2U);
      EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
    }
  }
  EXPECT_EQ(documented, 38);
  EXPECT_EQ(without, 8);
}

TEST(FormatMessageA, a_buffer_that_is_too_small_gives_0_with_last_error_122) {
  char buffer[8] = "before";
  EXPECT_EQ(FormatMessageA(0x1200, nullptr, 2, 0, buffer, sizeof buffer, nullptr), 0U);
  EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
  EXPECT_STREQ(buffer, "before");
}

TEST(FormatMessageA, a_buffer_of_just_the_right_size_is_enough) {
  constexpr char expected[] = "Access is denied.\r\n";
  char buffer[sizeof expected];
  EXPECT_EQ(FormatMessageA(0x1200, nullptr, 5, 0, buffer, sizeof buffer, nullptr), sizeof expected - 1);
  EXPECT_STREQ(buffer, expected);
}

TEST(FormatMessageA, a_failed_allocating_call_leaves_a_null_pointer) {
  char nothing = 0;
  char* text = &nothing;
  EXPECT_EQ(FormatMessageA(allocating, nullptr, 99999, 0, reinterpret_cast<char*>(&text), 0, nullptr), 0U);
  EXPECT_EQ(text, nullptr);
}

TEST(FormatMessageA, without_the_system_table_or_a_buffer_is_refused) {
  char buffer[64];
  EXPECT_EQ(FormatMessageA(0x0200, nullptr, 2, 0, buffer, sizeof buffer, nullptr), 0U);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(FormatMessageA(0x1200, nullptr, 2, 0, nullptr, 0, nullptr), 0U);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(LocalAlloc, fills_with_zeros_when_asked) {
  auto* block = static_cast<unsigned char*>(LocalAlloc(0x40, 64));
  ASSERT_NE(block, nullptr);
  for (int i = 0; i < 64; ++i) {
    ASSERT_EQ(block[i], 0);
  }
  EXPECT_EQ(LocalFree(block), nullptr);
  EXPECT_EQ(LocalFree(nullptr), nullptr);
}

}  // namespace
