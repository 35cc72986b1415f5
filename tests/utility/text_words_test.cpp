// Plan
// - GetFirstWord, RemoveFirstWord: white space of every kind, multi-byte words, ill-formed bytes, empty texts
// - a property: walking a text word by word gives its words, whatever it is made of
// - RemoveWhiteSpace: length and bytes kept
// - fix_spc_name: what is kept, the flag, names of other languages, ill-formed bytes
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "spcbase/utility/text.h"

namespace {

TEST(GetFirstWord, skips_leading_white_space_and_ends_at_the_next) {
  EXPECT_EQ(GetFirstWord(" \t\r\n\v\fline 4 shift A"), "line");
  EXPECT_EQ(GetFirstWord("line"), "line");
  EXPECT_EQ(GetFirstWord("line\t4"), "line");
}

TEST(GetFirstWord, a_text_of_white_space_gives_an_empty_word) {
  EXPECT_EQ(GetFirstWord(""), "");
  EXPECT_EQ(GetFirstWord(" \t \u3000"), "");
}

TEST(GetFirstWord, multi_byte_characters_stay_whole) {
  EXPECT_EQ(GetFirstWord("\u3000\u5DE5\u5834\u3000\u4E00"), "\u5DE5\u5834");
  EXPECT_EQ(GetFirstWord("Pr\u00FCfstand\u2003"
                         "7"),
            "Pr\u00FCfstand");
  // The last byte of this letter is the one of a line end in some one-byte encodings.
  EXPECT_EQ(GetFirstWord("\u0105\u0445 b"), "\u0105\u0445");
}

TEST(GetFirstWord, a_no_break_space_belongs_to_its_word) { EXPECT_EQ(GetFirstWord("5\u00A0mm x"), "5\u00A0mm"); }

TEST(GetFirstWord, ill_formed_bytes_belong_to_words) {
  EXPECT_EQ(GetFirstWord(" \xA0\x85 \xE2\x80"), "\xA0\x85");
  EXPECT_EQ(GetFirstWord("\xE2\x80"), "\xE2\x80");
  EXPECT_EQ(GetFirstWord("\xF0 a"), "\xF0");
}

TEST(GetFirstWord, a_text_ends_at_its_first_zero) { EXPECT_EQ(GetFirstWord(CString("ab\0cd", 5)), "ab"); }

CString without_first_word(const char* text) {
  CString rest(text);
  RemoveFirstWord(rest);
  return rest;
}

TEST(RemoveFirstWord, takes_the_white_space_on_both_sides_with_it) {
  EXPECT_EQ(without_first_word("  line \t 4  x "), "4  x ");
  EXPECT_EQ(without_first_word("\u3000\u5DE5\u5834\u3000 \u4E00"), "\u4E00");
}

TEST(RemoveFirstWord, nothing_left_makes_the_text_empty) {
  for (const char* text : {"", " ", "line", " line ", "line\n"})
    EXPECT_TRUE(without_first_word(text).IsEmpty()) << text;
}

TEST(Words, a_walk_gives_every_word_of_any_text) {
  const std::vector<std::string> spaces{" ", "\t", "\n", "\u3000", "\u2003", "\r\n"};
  const std::vector<std::string> pieces{"a",    "4",    "\u00E4", "\u5DE5", "\U0001F600",
                                        "\xFF", "\xE4", "\u00A0", "-",      "\""};
  std::mt19937 random(4711);
  const auto one_of = [&](const std::vector<std::string>& all) { return all[random() % all.size()]; };
  for (int round = 0; round < 2000; ++round) {
    std::vector<std::string> words;
    std::string text = random() % 2 == 0 ? "" : one_of(spaces);
    for (auto count = random() % 6; count > 0; --count) {
      std::string word;
      for (auto length = 1 + random() % 5; length > 0; --length)
        word += one_of(pieces);
      words.push_back(word);
      text += word + one_of(spaces);
      if (random() % 2 == 0) text += one_of(spaces);
    }
    CString rest(text);
    for (const std::string& word : words) {
      ASSERT_EQ(GetFirstWord(rest), word.c_str()) << text;
      RemoveFirstWord(rest);
    }
    ASSERT_TRUE(GetFirstWord(rest).IsEmpty());
    RemoveFirstWord(rest);
    ASSERT_TRUE(rest.IsEmpty());
  }
}

TEST(RemoveWhiteSpace, of_a_text_with_a_tab_keeps_its_length_and_makes_the_tab_a_blank) {
  CString text("a\tb");
  RemoveWhiteSpace(text);
  EXPECT_EQ(text, "a b");
}

TEST(RemoveWhiteSpace, removes_nothing_as_is_meant) {
  CString text(" \t\n\v\f\r x ");
  RemoveWhiteSpace(text);
  EXPECT_EQ(text, "       x ");
}

TEST(RemoveWhiteSpace, leaves_multi_byte_characters_and_bytes_above_127_alone) {
  const CString before("\u00E4\u3000\u0105\u0085\xA0\x85\xFF");
  CString text = before;
  RemoveWhiteSpace(text);
  EXPECT_EQ(text, before);
}

TEST(RemoveWhiteSpace, goes_on_behind_a_zero) {
  CString text("a\t\0\tb", 5);
  RemoveWhiteSpace(text);
  EXPECT_EQ(text, CString("a \0 b", 5));
}

TEST(FixSpcName, an_empty_name_stays_empty) {
  EXPECT_EQ(fix_spc_name("", false), "");
  EXPECT_EQ(fix_spc_name("", true), "");
}

TEST(FixSpcName, drops_what_cannot_be_shown) {
  EXPECT_EQ(fix_spc_name("\x01 Bore\t7\r\n\x7F", false), " Bore7");
  EXPECT_EQ(fix_spc_name("\uFEFFBore\u202E\u2028"
                         "7\u0085",
                         false),
            "Bore7");
  EXPECT_EQ(fix_spc_name("\t\n", false), "");
}

TEST(FixSpcName, the_flag_keeps_carriage_return_and_line_feed_alone) {
  EXPECT_EQ(fix_spc_name("a\r\nb\tc\v\u2028", true), "a\r\nbc");
  EXPECT_EQ(fix_spc_name("a\r\nb\tc", false), "abc");
}

TEST(FixSpcName, keeps_names_of_every_language_whole) {
  for (const char* name : {"\u00D8 Bohrung \u00E4", "\u76F4\u5F84", "\u0645\u06CC\u200C\u0631\u0648\u062F",
                           "\u0939\u093F\u0928\u094D\u0926\u0940", "\U0001F468\u200D\U0001F527 e\u0301"})
    EXPECT_EQ(fix_spc_name(name, false), name);
}

TEST(FixSpcName, drops_ill_formed_bytes) {
  EXPECT_EQ(fix_spc_name("a\xFF\xC3(\xE2\x82z\xF0\x9F", true), "a(z");
  EXPECT_EQ(fix_spc_name("\xED\xA0\x80", false), "") << "half a pair is no character";
}

TEST(FixSpcName, a_name_ends_at_its_first_zero) { EXPECT_EQ(fix_spc_name(CString("ab\0cd", 5), true), "ab"); }

}  // namespace
