// Plan
//   BSTR: length before the text, zeros inside, odd byte lengths, terminating zero, reallocation from itself, null as
//   empty,
//     UTF-8 both ways
//   _bstr_t: null, sharing and own copies, taking over, UTF-8 form, comparison, appending, failures
#include "spcbase/platform/automation/bstr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/text/cstring.h"

namespace {

std::u16string_view view(BSTR text) { return {text, SysStringLen(text)}; }

TEST(Bstr, length_in_bytes_stands_in_the_four_bytes_before_the_text) {
  BSTR const text = SysAllocString(u"abc");
  DWORD length = 0;
  std::memcpy(&length, reinterpret_cast<char*>(text) - 4, 4);
  EXPECT_EQ(length, 6U);
  EXPECT_EQ(text[3], u'\0');
  SysFreeString(text);
}

TEST(Bstr, a_null_string_counts_as_empty) {
  EXPECT_EQ(SysStringLen(nullptr), 0U);
  EXPECT_EQ(SysStringByteLen(nullptr), 0U);
  SysFreeString(nullptr);
  EXPECT_TRUE(to_cstring(nullptr).IsEmpty());
}

TEST(Bstr, zeros_inside_are_part_of_the_text) {
  BSTR const text = SysAllocStringLen(u"a\0b", 3);
  EXPECT_EQ(view(text), std::u16string_view(u"a\0b", 3));
  EXPECT_EQ(to_cstring(text).GetLength(), 3);
  SysFreeString(text);
}

TEST(Bstr, an_odd_number_of_bytes_ends_in_a_whole_zero_character) {
  BSTR const text = SysAllocStringByteLen("abc", 3);
  EXPECT_EQ(SysStringByteLen(text), 3U);
  EXPECT_EQ(SysStringLen(text), 1U);
  EXPECT_EQ(std::memcmp(text, "abc\0\0\0", 6), 0);
  SysFreeString(text);
}

TEST(Bstr, a_length_beyond_32_bits_of_bytes_is_refused) { EXPECT_EQ(SysAllocStringLen(nullptr, 0x80000000U), nullptr); }

TEST(Bstr, reallocation_takes_a_text_from_the_old_string) {
  BSTR text = SysAllocString(u"prefix tail");
  EXPECT_EQ(SysReAllocString(&text, text + 7), TRUE);
  EXPECT_EQ(view(text), u"tail");
  EXPECT_EQ(SysReAllocStringLen(&text, text + 1, 2), TRUE);
  EXPECT_EQ(view(text), u"ai");
  EXPECT_EQ(SysReAllocStringLen(&text, nullptr, 3), TRUE);
  EXPECT_EQ(view(text), std::u16string_view(u"ai\0", 3));
  EXPECT_EQ(SysReAllocStringLen(&text, nullptr, 0x80000000U), FALSE);
  EXPECT_EQ(SysStringLen(text), 3U);
  EXPECT_EQ(SysReAllocString(&text, nullptr), TRUE);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(SysReAllocString(nullptr, u"x"), FALSE);
}

TEST(Bstr, utf8_goes_both_ways) {
  const CString given("Maß 5 µm \xF0\x9F\x98\x80");
  BSTR const text = alloc_sys_string(given);
  EXPECT_EQ(view(text), u"Maß 5 µm \U0001F600");
  EXPECT_TRUE(to_cstring(text) == given);
  SysFreeString(text);
  BSTR const empty = alloc_sys_string(CString());
  EXPECT_NE(empty, nullptr);
  EXPECT_EQ(SysStringLen(empty), 0U);
  SysFreeString(empty);
}

TEST(BstrT, a_null_one_gives_null_pointers_and_length_0) {
  const _bstr_t none;
  EXPECT_EQ(none.length(), 0U);
  EXPECT_EQ(static_cast<const char*>(none), nullptr);
  EXPECT_EQ(static_cast<const char16_t*>(none), nullptr);
  EXPECT_EQ(none.copy(), nullptr);
  EXPECT_TRUE(!none);
  EXPECT_EQ(_bstr_t(static_cast<const char*>(nullptr)).copy(), nullptr);
  EXPECT_EQ(_bstr_t(static_cast<const char16_t*>(nullptr)).copy(), nullptr);
}

TEST(BstrT, both_text_forms_are_given) {
  const _bstr_t narrow(
      "gr\xC3\xB6\xC3\x9F"
      "er");
  EXPECT_EQ(narrow.length(), 6U);
  EXPECT_STREQ(static_cast<const char*>(narrow),
               "gr\xC3\xB6\xC3\x9F"
               "er");
  EXPECT_EQ(std::u16string_view(static_cast<const char16_t*>(narrow)), u"größer");
  EXPECT_TRUE(narrow == _bstr_t(u"größer"));
}

TEST(BstrT, copies_share_the_string_until_one_is_written) {
  _bstr_t first(u"abc");
  const _bstr_t second(first);
  EXPECT_EQ(static_cast<const char16_t*>(first), static_cast<const char16_t*>(second));
  first.GetBSTR()[0] = u'x';
  EXPECT_TRUE(first == u"xbc");
  EXPECT_TRUE(second == u"abc");
}

TEST(BstrT, its_utf8_form_follows_a_write) {
  _bstr_t text(u"abc");
  EXPECT_STREQ(static_cast<const char*>(text), "abc");
  text.GetBSTR()[0] = u'x';
  EXPECT_STREQ(static_cast<const char*>(text), "xbc");
}

TEST(BstrT, takes_over_copies_and_hands_out) {
  BSTR const given = SysAllocString(u"abc");
  const _bstr_t copied(given, true);
  _bstr_t taken(given, false);
  EXPECT_NE(static_cast<const char16_t*>(copied), given);
  EXPECT_EQ(static_cast<const char16_t*>(taken), given);
  BSTR const out = taken.Detach();
  EXPECT_EQ(out, given);
  EXPECT_TRUE(!taken);
  taken.Assign(out);
  EXPECT_NE(static_cast<const char16_t*>(taken), out);
  taken.Attach(out);
  EXPECT_EQ(static_cast<const char16_t*>(taken), out);
  *taken.GetAddress() = SysAllocString(u"new");
  EXPECT_TRUE(taken == "new");
}

TEST(BstrT, detaching_null_throws_e_pointer) {
  try {
    _bstr_t().Detach();
    FAIL();
  } catch (const _com_error& error) {
    EXPECT_EQ(error.Error(), E_POINTER);
  }
}

TEST(BstrT, detaching_a_shared_string_leaves_the_other_copy) {
  _bstr_t first(u"abc");
  const _bstr_t second(first);
  SysFreeString(first.Detach());
  EXPECT_TRUE(second == u"abc");
}

TEST(BstrT, compares_character_by_character_and_null_comes_first) {
  EXPECT_TRUE(_bstr_t("a") < _bstr_t("b"));
  EXPECT_TRUE(_bstr_t("ab") > _bstr_t("a"));
  EXPECT_TRUE(_bstr_t() < _bstr_t(""));
  EXPECT_TRUE(_bstr_t() == _bstr_t());
  EXPECT_FALSE(_bstr_t("a") == "A");
  EXPECT_TRUE(_bstr_t(SysAllocStringLen(u"a\0b", 3), false) != _bstr_t("a"));
}

TEST(BstrT, appending_makes_a_new_string) {
  _bstr_t text("ab");
  const _bstr_t before(text);
  text += "cd";
  EXPECT_TRUE(text == "abcd");
  EXPECT_TRUE(before == "ab");
  EXPECT_TRUE(_bstr_t() + text == text);
}

}  // namespace
