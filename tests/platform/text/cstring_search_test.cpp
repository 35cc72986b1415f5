// Plan
// - parts: Mid, Left, Right at and beyond the ends; spans
// - finding bytes, texts, sets, from a start, from the end
// - replacing, removing, inserting, deleting, cutting, trimming, with multi-byte sets
// - Tokenize: separators at the ends and in rows, the end of it, a bad start
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "spcbase/platform/text/cstring.h"
#include "tests/support/refusal.h"

namespace {

TEST(CStringParts, beyond_the_ends_are_cut_off) {
  const CString text("abcdef");
  EXPECT_STREQ(text.Mid(2), "cdef");
  EXPECT_STREQ(text.Mid(2, 3), "cde");
  EXPECT_STREQ(text.Mid(4, 99), "ef");
  EXPECT_STREQ(text.Mid(6), "");
  EXPECT_STREQ(text.Mid(99, 1), "");
  EXPECT_STREQ(text.Mid(-3, 2), "ab");
  EXPECT_STREQ(text.Mid(2, -1), "");
  EXPECT_STREQ(text.Mid(2, std::numeric_limits<int>::max()), "cdef");
  EXPECT_STREQ(text.Left(2), "ab");
  EXPECT_STREQ(text.Left(-1), "");
  EXPECT_STREQ(text.Left(99), "abcdef");
  EXPECT_STREQ(text.Right(2), "ef");
  EXPECT_STREQ(text.Right(0), "");
  EXPECT_STREQ(text.Right(-1), "");
  EXPECT_STREQ(text.Right(99), "abcdef");
}

TEST(CStringParts, spans_take_the_longest_beginning) {
  const CString text("aab\u00E4xa");
  EXPECT_STREQ(text.SpanIncluding("ba"), "aab");
  EXPECT_STREQ(text.SpanIncluding("ba\u00E4"), "aab\u00E4");
  EXPECT_STREQ(text.SpanIncluding(""), "");
  EXPECT_STREQ(text.SpanExcluding("x\u00E4"), "aab");
  EXPECT_STREQ(text.SpanExcluding("q"), "aab\u00E4xa");
  EXPECT_STREQ(text.SpanExcluding(""), "aab\u00E4xa");
}

TEST(CStringFind, gives_the_first_index_at_or_after_a_start) {
  const CString text("abcabc");
  EXPECT_EQ(text.Find('b'), 1);
  EXPECT_EQ(text.Find('b', 2), 4);
  EXPECT_EQ(text.Find('z'), -1);
  EXPECT_EQ(text.Find("ca"), 2);
  EXPECT_EQ(text.Find("abc", 1), 3);
  EXPECT_EQ(text.Find("abcd"), -1);
  EXPECT_EQ(text.Find(""), 0);
  EXPECT_EQ(text.Find("", 6), 6);
}

TEST(CStringFind, a_start_outside_finds_nothing) {
  const CString text("abc");
  EXPECT_EQ(text.Find('a', -1), -1);
  EXPECT_EQ(text.Find('a', 3), -1);
  EXPECT_EQ(text.Find("a", -1), -1);
  EXPECT_EQ(text.Find("", 4), -1);
}

TEST(CStringFind, from_the_end_and_by_set) {
  const CString text("ab/cd/e\u00E4");
  EXPECT_EQ(text.ReverseFind('/'), 5);
  EXPECT_EQ(text.ReverseFind('x'), -1);
  EXPECT_EQ(text.FindOneOf("c/"), 2);
  EXPECT_EQ(text.FindOneOf("\u00E4"), 7);
  EXPECT_EQ(text.FindOneOf("\u00F6"), -1);  // shares its first byte with the letter of the text
  EXPECT_EQ(text.FindOneOf(""), -1);
}

TEST(CStringReplace, counts_what_it_replaced) {
  CString text("a-b-c");
  EXPECT_EQ(text.Replace('-', '+'), 2);
  EXPECT_STREQ(text, "a+b+c");
  EXPECT_EQ(text.Replace('x', 'y'), 0);
  EXPECT_EQ(text.Replace('+', '+'), 0);
  EXPECT_EQ(text.Replace("+", "<=>"), 2);
  EXPECT_STREQ(text, "a<=>b<=>c");
  EXPECT_EQ(text.Replace("<=>", ""), 2);
  EXPECT_STREQ(text, "abc");
  EXPECT_EQ(text.Replace("", "x"), 0);
  EXPECT_EQ(text.Replace("q", "x"), 0);
}

TEST(CStringReplace, does_not_look_into_what_it_put_in) {
  CString text("aaa");
  EXPECT_EQ(text.Replace("a", "aa"), 3);
  EXPECT_STREQ(text, "aaaaaa");
  EXPECT_EQ(text.Replace("aaaa", "b"), 1);
  EXPECT_STREQ(text, "baa");
}

TEST(CStringRemove, counts_what_it_took_out) {
  CString text("a b c");
  EXPECT_EQ(text.Remove(' '), 2);
  EXPECT_STREQ(text, "abc");
  EXPECT_EQ(text.Remove('z'), 0);
}

TEST(CStringInsert, brings_the_index_into_the_text) {
  CString text("bc");
  EXPECT_EQ(text.Insert(0, 'a'), 3);
  EXPECT_EQ(text.Insert(99, "ef"), 5);
  EXPECT_EQ(text.Insert(3, "d"), 6);
  EXPECT_EQ(text.Insert(-5, "_"), 7);
  EXPECT_STREQ(text, "_abcdef");
  EXPECT_EQ(text.Insert(1, text.GetString()), 14);
  EXPECT_STREQ(text, "__abcdefabcdef");
}

TEST(CStringDelete, takes_out_what_is_there) {
  CString text("abcdef");
  EXPECT_EQ(text.Delete(0), 5);
  EXPECT_STREQ(text, "bcdef");
  EXPECT_EQ(text.Delete(3, 99), 3);
  EXPECT_STREQ(text, "bcd");
  EXPECT_EQ(text.Delete(3), 3);
  EXPECT_EQ(text.Delete(1, -1), 3);
  EXPECT_EQ(text.Delete(-1, 1), 2);
  EXPECT_STREQ(text, "cd");
}

TEST(CStringTruncate, only_shortens) {
  CString text("abc");
  text.Truncate(5);
  EXPECT_STREQ(text, "abc");
  text.Truncate(1);
  EXPECT_STREQ(text, "a");
  text.Truncate(0);
  EXPECT_STREQ(text, "");
}

TEST(CStringTrim, takes_white_space_off) {
  CString text(" \t\r\n a b \v\f ");
  EXPECT_STREQ(CString(text).TrimLeft(), "a b \v\f ");
  EXPECT_STREQ(CString(text).TrimRight(), " \t\r\n a b");
  EXPECT_STREQ(text.Trim(), "a b");
  CString blank("   ");
  EXPECT_STREQ(CString(blank).TrimLeft(), "");
  EXPECT_STREQ(blank.TrimRight(), "");
  EXPECT_STREQ(blank.Trim(), "");
}

TEST(CStringTrim, takes_characters_off) {
  EXPECT_STREQ(CString("xxaxbxx").Trim('x'), "axb");
  EXPECT_STREQ(CString("xx").Trim('x'), "");
  EXPECT_STREQ(CString("[(a)]").Trim("[]()"), "a");
  EXPECT_STREQ(CString("\u00E4\u00F6a\u00F6\u00E4").Trim("\u00E4\u00F6"), "a");
  EXPECT_STREQ(CString("\u00E4a\u00E4").Trim("\u00F6"), "\u00E4a\u00E4");
  EXPECT_STREQ(CString(" a ").Trim(""), " a ");
}

std::vector<std::string> pieces_of(const CString& text, const char* separators) {
  std::vector<std::string> pieces;
  int at = 0;
  for (CString piece = text.Tokenize(separators, at); at >= 0; piece = text.Tokenize(separators, at)) {
    pieces.emplace_back(piece);
  }
  return pieces;
}

TEST(CStringTokenize, passes_over_empty_pieces) {
  using Pieces = std::vector<std::string>;
  EXPECT_EQ(pieces_of("a,b;c", ",;"), (Pieces{"a", "b", "c"}));
  EXPECT_EQ(pieces_of(",,a,,b,,", ","), (Pieces{"a", "b"}));
  EXPECT_EQ(pieces_of("a", ","), (Pieces{"a"}));
  EXPECT_EQ(pieces_of("", ","), Pieces{});
  EXPECT_EQ(pieces_of(",,,", ","), Pieces{});
  EXPECT_EQ(pieces_of("a\u00A7"
                      "b",
                      "\u00A7"),
            (Pieces{"a", "b"}));
  EXPECT_EQ(pieces_of("a,b", ""), (Pieces{"a,b"}));
}

TEST(CStringTokenize, the_end_gives_an_empty_text_and_minus_1) {
  const CString text("a,");
  int at = 0;
  EXPECT_STREQ(text.Tokenize(",", at), "a");
  EXPECT_EQ(at, 2);
  EXPECT_STREQ(text.Tokenize(",", at), "");
  EXPECT_EQ(at, -1);
}

TEST(CStringTokenize, a_negative_start_is_refused) {
  int at = -1;
  EXPECT_TRUE(test_support::refuses([&] { (void)CString("a").Tokenize(",", at); }));
  EXPECT_EQ(at, -1);
}

}  // namespace
