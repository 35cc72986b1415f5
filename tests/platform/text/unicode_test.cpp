// Plan
// - valid text of every width goes both ways without loss, zeros included
// - ill-formed UTF-8 and unpaired surrogates become U+FFFD
// - counting and cutting never split a character, whatever the limit
#include "spcbase/platform/text/unicode.h"

#include <gtest/gtest.h>

#include <string>

#include "spcbase/platform/text/utf8_walk.h"

namespace {

using namespace std::string_literals;
using platform::to_utf16;
using platform::to_utf8;
using platform::utf8_cut;
using platform::utf8_cut_chars;
using platform::utf8_length_chars;

constexpr const char* euro_and_clef = "a\u00E4\u20AC\U0001D11E";  // 1, 2, 3 and 4 bytes

TEST(Utf16, text_of_every_width_goes_both_ways) {
  EXPECT_EQ(to_utf16(euro_and_clef), u"a\u00E4\u20AC\U0001D11E");
  EXPECT_EQ(to_utf8(u"a\u00E4\u20AC\U0001D11E"), euro_and_clef);
}

TEST(Utf16, every_code_point_goes_both_ways) {
  for (char32_t c = 1; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    std::string text;
    platform::utf8_append(text, c);
    ASSERT_EQ(to_utf8(to_utf16(text)), text) << static_cast<unsigned>(c);
    ASSERT_EQ(platform::utf8_step(text, 0).code_point, c);
    ASSERT_EQ(platform::utf8_step(text, 0).length_bytes, text.size());
  }
}

TEST(Utf16, zeros_and_empty_texts_are_kept) {
  EXPECT_EQ(to_utf16("a\0b"s), u"a\0b"s);
  EXPECT_EQ(to_utf8(u"a\0b"s), "a\0b"s);
  EXPECT_EQ(to_utf16(""), u"");
  EXPECT_EQ(to_utf8(u""), "");
}

TEST(Utf16, ill_formed_bytes_become_the_replacement_character) {
  EXPECT_EQ(to_utf16("a\xFF"
                     "b"),
            u"a\uFFFDb");
  EXPECT_EQ(to_utf16("\xC3"), u"\uFFFD");            // cut short
  EXPECT_EQ(to_utf16("\xC0\x80"), u"\uFFFD\uFFFD");  // an overlong zero
  EXPECT_EQ(to_utf16("\x80"), u"\uFFFD");            // continues nothing
}

TEST(Utf16, an_unpaired_surrogate_becomes_the_replacement_character) {
  const std::u16string lone = {u'a', static_cast<char16_t>(0xD800), u'b', static_cast<char16_t>(0xDC00)};
  EXPECT_EQ(to_utf8(lone),
            "a\uFFFD"
            "b\uFFFD");
}

TEST(IsValidUtf8, tells_text_from_bytes) {
  EXPECT_TRUE(platform::is_valid_utf8(""));
  EXPECT_TRUE(platform::is_valid_utf8(euro_and_clef));
  for (const char* bytes :
       {"\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xE2\x82"}) {
    EXPECT_FALSE(platform::is_valid_utf8(bytes)) << bytes;
  }
}

TEST(Utf8LengthChars, counts_characters_and_not_bytes) {
  EXPECT_EQ(utf8_length_chars(""), 0U);
  EXPECT_EQ(utf8_length_chars("abc"), 3U);
  EXPECT_EQ(utf8_length_chars(euro_and_clef), 4U);
}

TEST(Utf8Cut, never_splits_a_character) {
  const std::string text = euro_and_clef;
  const std::size_t expected[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
  for (std::size_t limit = 0; limit < std::size(expected); ++limit) {
    EXPECT_EQ(utf8_cut(text, limit).size(), expected[limit]) << limit;
    EXPECT_TRUE(platform::is_valid_utf8(utf8_cut(text, limit)));
  }
}

TEST(Utf8Cut, bytes_that_are_no_text_are_cut_at_the_limit) {
  EXPECT_EQ(utf8_cut(std::string(10, '\x80'), 6).size(), 6U);
}

TEST(Utf8CutChars, keeps_so_many_characters) {
  EXPECT_EQ(utf8_cut_chars(euro_and_clef, 0), "");
  EXPECT_EQ(utf8_cut_chars(euro_and_clef, 2), "a\u00E4");
  EXPECT_EQ(utf8_cut_chars(euro_and_clef, 3), "a\u00E4\u20AC");
  EXPECT_EQ(utf8_cut_chars(euro_and_clef, 4), euro_and_clef);
  EXPECT_EQ(utf8_cut_chars(euro_and_clef, 99), euro_and_clef);
}

}  // namespace
