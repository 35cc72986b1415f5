// Plan
// - making, copying, moving; lengths and bytes; assignment and its mark; joining; comparing; order as a map key, hash
// - formats; buffers; case and reversal; loading by number; failures by pointer
#include "spcbase/platform/text/cstring.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <unordered_set>
#include <utility>

#include "spcbase/platform/system/message_source.h"
#include "tests/support/refusal.h"

namespace {

using test_support::refuses;

TEST(CString, is_made_of_texts_buffers_and_repeated_bytes) {
  EXPECT_STREQ(CString().GetString(), "");
  EXPECT_STREQ(CString("abc"), "abc");
  EXPECT_STREQ(CString('x', 3), "xxx");
  EXPECT_STREQ(CString('x', 0), "");
  EXPECT_STREQ(CString('x', -1), "");
  EXPECT_STREQ(CString("abcdef", 3), "abc");
  EXPECT_STREQ(CString(std::string("std")), "std");
  EXPECT_STREQ(CString(std::string_view("view")), "view");
}

TEST(CString, a_null_pointer_reads_as_an_empty_text) {
  const char* null = nullptr;
  CString text(null);
  EXPECT_TRUE(text.IsEmpty());
  text = "x";
  text = null;
  EXPECT_TRUE(text.IsEmpty());
  text += null;
  EXPECT_TRUE(text == null);
  EXPECT_EQ(text.Compare(null), 0);
  EXPECT_EQ(text.Find(null), -1);
}

TEST(CString, keeps_zeros_of_a_buffer) {
  const CString text("a\0b", 3);
  EXPECT_EQ(text.GetLength(), 3);
  EXPECT_EQ(text[1], '\0');
  EXPECT_EQ(text[2], 'b');
  EXPECT_NE(text, CString("a"));
}

TEST(CString, length_counts_bytes) {
  EXPECT_EQ(CString("\u20AC").GetLength(), 3);
  EXPECT_TRUE(CString().IsEmpty());
  EXPECT_FALSE(CString(" ").IsEmpty());
}

TEST(CString, a_moved_text_leaves_an_empty_one) {
  CString from("a text that does not fit into the small buffer of the string");
  CString to(std::move(from));
  EXPECT_EQ(from.GetLength(), 0);  // NOLINT(bugprone-use-after-move): what it leaves is defined
  EXPECT_STREQ(to.Left(6), "a text");
  CString other;
  other = std::move(to);
  EXPECT_EQ(to.GetLength(), 0);  // NOLINT(bugprone-use-after-move): the same
  EXPECT_STREQ(other.Left(6), "a text");
}

TEST(CString, assigns_parts_of_itself) {
  CString text("hello world");
  text = text.GetString() + 6;
  EXPECT_STREQ(text, "world");
  text += text;
  EXPECT_STREQ(text, "worldworld");
  text.SetString(text.GetString() + 1, 3);
  EXPECT_STREQ(text, "orl");
  const CString& same = text;
  text = same;
  EXPECT_STREQ(text, "orl");
}

TEST(CString, bytes_are_read_up_to_the_terminating_zero_and_set_below_it) {
  CString text("abc");
  EXPECT_EQ(text.GetAt(0), 'a');
  EXPECT_EQ(text[2], 'c');
  EXPECT_EQ(text[3], '\0');
  text.SetAt(1, 'X');
  EXPECT_STREQ(text, "aXc");
}

TEST(CString, an_index_outside_is_refused) {
  CString text("abc");
  EXPECT_TRUE(refuses([&] { text.GetAt(-1); }));
  EXPECT_TRUE(refuses([&] { text.GetAt(4); }));
  EXPECT_TRUE(refuses([&] { text.SetAt(-1, 'x'); }));
  EXPECT_TRUE(refuses([&] { text.SetAt(3, 'x'); }));
  EXPECT_TRUE(refuses([&] { CString bad("abc", -1); }));
  EXPECT_TRUE(refuses([&] { text.SetString(nullptr, 1); }));
  EXPECT_TRUE(refuses([&] { text.Append("x", -1); }));
  EXPECT_STREQ(text, "abc");
}

TEST(CString, joins_with_texts_and_bytes_on_either_side) {
  const CString a("a");
  const CString b("b");
  EXPECT_STREQ(a + b, "ab");
  EXPECT_STREQ(a + "x", "ax");
  EXPECT_STREQ("x" + a, "xa");
  EXPECT_STREQ(a + 'x', "ax");
  EXPECT_STREQ('x' + a, "xa");
  EXPECT_STREQ(a + b + "c" + 'd', "abcd");
}

TEST(CString, appends_in_place) {
  CString text("a");
  text += CString("b");
  text += "c";
  text += 'd';
  text.Append("efg", 2);
  text.Append(CString("h"));
  text.Append("i");
  text.AppendChar('j');
  EXPECT_STREQ(text, "abcdefhij");
}

TEST(CString, compares_byte_by_byte_with_texts_on_either_side) {
  const CString a("abc");
  EXPECT_TRUE(a == CString("abc"));
  EXPECT_TRUE(a == "abc");
  EXPECT_TRUE("abc" == a);
  EXPECT_TRUE(a != "ABC");
  EXPECT_TRUE(a < CString("abd"));
  EXPECT_TRUE(a < "abcd");
  EXPECT_TRUE("ab" < a);
  EXPECT_TRUE(a >= "abc");
  EXPECT_TRUE(a > "ABC");
  EXPECT_EQ(a.Compare("abd"), -1);
  EXPECT_EQ(a.Compare("abc"), 0);
  EXPECT_EQ(a.Compare("ab"), 1);
  EXPECT_GT(CString("\u00E4"), CString("z"));  // bytes above 127 stand behind the others
}

TEST(CString, compares_without_case_and_by_the_dictionary) {
  EXPECT_EQ(CString("STRASSE \u00C4").CompareNoCase("strasse \u00E4"), 0);
  EXPECT_EQ(CString("a").CompareNoCase("B"), -1);
  EXPECT_EQ(CString("\u00E4").Collate("b"), -1);
  EXPECT_EQ(CString("a").CollateNoCase("A"), 0);
}

TEST(CString, serves_as_a_key) {
  std::map<CString, int> ordered{{"b", 2}, {"a", 1}};
  EXPECT_STREQ(ordered.begin()->first, "a");
  const std::unordered_set<CString> hashed{"a", "b", "a"};
  EXPECT_EQ(hashed.size(), 2U);
}

TEST(CString, is_written_to_a_stream_as_its_text) {
  std::ostringstream out;
  out << CString("text");
  EXPECT_EQ(out.str(), "text");
}

TEST(CStringFormat, follows_printf) {
  CString text;
  text.Format("%s=%d %.3f %5s|%-4d|%%", "x", 42, 1.5, "ab", 7);
  EXPECT_STREQ(text, "x=42 1.500    ab|7   |%");
  text.AppendFormat(" +%u", 9U);
  EXPECT_STREQ(text, "x=42 1.500    ab|7   |% +9");
}

TEST(CStringFormat, long_results_come_out_whole) {
  const std::string large(100000, 'y');
  CString text;
  text.Format("[%s]", large.c_str());
  EXPECT_EQ(text.view(), "[" + large + "]");
  text.Format("%s", std::string(511, 'z').c_str());
  EXPECT_EQ(text.GetLength(), 511);
  text.Format("%s", std::string(512, 'z').c_str());
  EXPECT_EQ(text.GetLength(), 512);
}

TEST(CStringFormat, arguments_may_lie_in_the_text_itself) {
  CString text("abc");
  text.Format("<%s>", text.GetString());
  EXPECT_STREQ(text, "<abc>");
  text.AppendFormat("%s", text.GetString());
  EXPECT_STREQ(text, "<abc><abc>");
}

TEST(CStringFormat, a_null_format_is_refused) {
  CString text("kept");
  const char* volatile null = nullptr;
  va_list none{};
  EXPECT_TRUE(refuses([&] { text.FormatV(null, none); }));
  EXPECT_STREQ(text, "kept");
}

TEST(CStringBuffer, what_is_written_ends_at_the_first_zero) {
  CString text("ab");
  char* buffer = text.GetBuffer(10);
  EXPECT_STREQ(buffer, "ab");
  std::strcpy(buffer, "hello");
  text.ReleaseBuffer();
  EXPECT_EQ(text.GetLength(), 5);
  EXPECT_STREQ(text, "hello");
}

TEST(CStringBuffer, a_length_ends_it_too) {
  CString text;
  std::memcpy(text.GetBufferSetLength(4), "a\0bc", 4);
  text.ReleaseBufferSetLength(3);
  EXPECT_EQ(text, CString("a\0b", 3));
  EXPECT_TRUE(refuses([&] { text.ReleaseBuffer(4); }));
  EXPECT_TRUE(refuses([&] { text.ReleaseBuffer(-2); }));
  EXPECT_TRUE(refuses([&] { text.GetBuffer(-1); }));
  EXPECT_TRUE(refuses([&] { text.GetBufferSetLength(-1); }));
}

TEST(CStringBuffer, room_is_made_and_given_back_without_a_change) {
  CString text("abc");
  text.Preallocate(1000);
  text.FreeExtra();
  EXPECT_STREQ(text, "abc");
  EXPECT_TRUE(refuses([&] { text.Preallocate(-1); }));
}

TEST(CStringCase, follows_unicode) {
  CString text("stra\u00DFe \u00E4");
  EXPECT_STREQ(text.MakeUpper(), "STRA\u00DFE \u00C4");
  EXPECT_STREQ(text.MakeLower(), "stra\u00DFe \u00E4");
}

TEST(CStringReverse, keeps_characters_whole) {
  CString text("a\u20AC\U0001D11Eb");
  EXPECT_STREQ(text.MakeReverse(),
               "b\U0001D11E\u20AC"
               "a");
  CString none;
  EXPECT_STREQ(none.MakeReverse(), "");
}

class OneMessage : public MessageSource {
 public:
  const char* find(UINT id) const noexcept override { return id == 3 ? "message three" : nullptr; }
};

TEST(CStringLoad, takes_the_text_from_the_current_source) {
  const OneMessage source;
  HINSTANCE before = AfxGetResourceHandle();
  AfxSetResourceHandle(source.handle());
  CString text("kept");
  EXPECT_EQ(text.LoadString(4), FALSE);
  EXPECT_STREQ(text, "kept");
  EXPECT_EQ(text.LoadString(3), TRUE);
  EXPECT_STREQ(text, "message three");
  AfxSetResourceHandle(before);
  EXPECT_EQ(text.LoadString(source.handle(), 3), TRUE);
}

TEST(CStringAssignment, a_new_text_is_not_set_and_a_given_or_copied_one_is) {
  const CString fresh;
  EXPECT_FALSE(CStringAssignment::test(fresh));
  EXPECT_TRUE(CStringAssignment::test(CString("")));
  EXPECT_TRUE(CStringAssignment::test(CString('x')));
  EXPECT_TRUE(CStringAssignment::test(CString("x", 0)));
  const CString copy(fresh);
  EXPECT_TRUE(CStringAssignment::test(copy));
  CString source;
  const CString moved(std::move(source));
  EXPECT_TRUE(CStringAssignment::test(moved));
}

TEST(CStringAssignment, clear_empties_the_text_and_forget_keeps_it) {
  CString text("abc");
  CStringAssignment::forget(text);
  EXPECT_STREQ(text, "abc");
  EXPECT_FALSE(CStringAssignment::test(text));
  text = "abc";
  CStringAssignment::clear(text);
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_FALSE(CStringAssignment::test(text));
}

TEST(CStringAssignment, reading_does_not_set_a_text) {
  CString text("abc");
  CStringAssignment::forget(text);
  (void)text.GetLength();
  (void)text.Mid(1);
  (void)text.Find('b');
  (void)text.Compare("abc");
  (void)(text + "x");
  (void)text.GetString();
  EXPECT_FALSE(CStringAssignment::test(text));
}

TEST(CStringAssignment, every_change_sets_the_text_even_an_equal_one) {
  void (*changes[])(CString&) = {
      [](CString& t) { t = CString("abc"); },
      [](CString& t) { t = ""; },
      [](CString& t) { t = "abc"; },
      [](CString& t) { t = 'c'; },
      [](CString& t) { t = std::string("abc"); },
      [](CString& t) { t = std::string_view("abc"); },
      [](CString& t) { t.SetString("abc"); },
      [](CString& t) { t.SetString("abc", 3); },
      [](CString& t) { t.Empty(); },
      [](CString& t) { t.SetAt(0, 'a'); },
      [](CString& t) { t += ""; },
      [](CString& t) { t += 'c'; },
      [](CString& t) { t += CString(); },
      [](CString& t) { t.Append("", 0); },
      [](CString& t) { t.AppendChar('x'); },
      [](CString& t) { t.Replace('x', 'y'); },
      [](CString& t) { t.Replace("x", "y"); },
      [](CString& t) { t.Remove('x'); },
      [](CString& t) { t.Insert(0, ""); },
      [](CString& t) { t.Insert(0, 'x'); },
      [](CString& t) { t.Delete(9); },
      [](CString& t) { t.Truncate(3); },
      [](CString& t) { t.Trim(); },
      [](CString& t) { t.TrimLeft(); },
      [](CString& t) { t.TrimRight('x'); },
      [](CString& t) { t.TrimLeft("x"); },
      [](CString& t) { t.MakeUpper(); },
      [](CString& t) { t.MakeLower(); },
      [](CString& t) { t.MakeReverse(); },
      [](CString& t) { t.Format("%s", "abc"); },
      [](CString& t) { t.AppendFormat("%s", "abc"); },
      [](CString& t) { t.GetBuffer(3); },
      [](CString& t) { t.GetBufferSetLength(3); },
      [](CString& t) { t.ReleaseBuffer(); },
      [](CString& t) {
        const CString to(std::move(t));
        (void)to;
      },
      [](CString& t) {
        CString to;
        to = std::move(t);
      },
  };
  int number = 0;
  for (const auto change : changes) {
    CString text("abc");
    CStringAssignment::forget(text);
    change(text);
    EXPECT_TRUE(CStringAssignment::test(text)) << "change number " << number;
    ++number;
  }
}

}  // namespace
