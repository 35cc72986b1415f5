// Plan
//   Good files: plain, quoted (commas, doubled quotes, line ends), CRLF, byte order mark, no final line end, empty
//     lines and fields, several bytes to a character; lines are counted through quoted line ends
//   Bad files: empty, header alone, wrong number of fields, fields parted by semicolons or tabs, open quote, text
//   behind or before a quote, bytes that are
//     not UTF-8, zero byte, no such file, a folder
#include "tools/spc/csv.h"

#include <gtest/gtest.h>

#include <fstream>

#include "spcbase/testkit/scratch_folder.h"
#include "tools/spc/problem.h"

namespace {

using Fields = std::vector<std::string>;

std::string why_not(std::string_view text) {
  try {
    spc::parse_csv("a.csv", text);
  } catch (const spc::Problem& problem) {
    EXPECT_EQ(problem.what, "cannot read a.csv");
    EXPECT_EQ(problem.status, spc::exit_failed);
    return problem.why;
  }
  return "nothing is wrong";
}

TEST(ParseCsv, takes_fields_apart_and_counts_lines) {
  const auto file = spc::parse_csv("a.csv", "sample,x\n1,2\n3,4\n");
  EXPECT_EQ(file.header.fields, (Fields{"sample", "x"}));
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(file.rows[0].line, 2U);
  EXPECT_EQ(file.rows[1].fields, (Fields{"3", "4"}));
}

TEST(ParseCsv, keeps_commas_quotes_and_line_ends_of_a_quoted_field) {
  const auto file = spc::parse_csv("a.csv", "a,b\n\"x,y\",\"say \"\"hi\"\"\nand\"\n5,6");
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(file.rows[0].fields, (Fields{"x,y", "say \"hi\"\nand"}));
  EXPECT_EQ(file.rows[1].line, 4U);
}

TEST(ParseCsv, takes_crlf_a_byte_order_mark_and_a_last_line_without_end) {
  const auto file = spc::parse_csv("a.csv",
                                   "\xEF\xBB\xBF"
                                   "sample,x\r\n1,2\r\n3,\"4\"");
  EXPECT_EQ(file.header.fields.front(), "sample");
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(file.rows[0].fields, (Fields{"1", "2"}));
  EXPECT_EQ(file.rows[1].fields, (Fields{"3", "4"}));
}

TEST(ParseCsv, passes_over_empty_lines_and_keeps_empty_fields) {
  const auto file = spc::parse_csv("a.csv", "\n a , b \n\n1,\n\r\n,\"\"\n\n");
  EXPECT_EQ(file.header.fields, (Fields{"a", "b"}));
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(file.rows[0].fields, (Fields{"1", ""}));
  EXPECT_EQ(file.rows[0].line, 4U);
  EXPECT_EQ(file.rows[1].fields, (Fields{"", ""}));
}

TEST(ParseCsv, keeps_characters_of_several_bytes) {
  EXPECT_EQ(spc::parse_csv("a.csv", "größe\n日本\n").rows[0].fields, (Fields{"日本"}));
}

TEST(ParseCsv, refuses_a_file_without_content) {
  EXPECT_EQ(why_not(""), "the file is empty");
  EXPECT_EQ(why_not("\xEF\xBB\xBF\n\n"), "the file is empty");
  EXPECT_EQ(why_not("sample,x\n\n"), "there is a header and nothing below it");
}

TEST(ParseCsv, refuses_a_wrong_number_of_fields_and_names_the_line) {
  EXPECT_EQ(why_not("a,b\n1,2\n1\n"), "line 3: 1 fields, but the header has 2");
  EXPECT_EQ(why_not("a,b\n1,2,3\n"), "line 2: 3 fields, but the header has 2");
}

TEST(ParseCsv, says_which_other_character_parts_the_fields) {
  EXPECT_EQ(why_not("sample;Diameter\n1;74,03\n"), "line 1: the fields are parted by semicolons");
  EXPECT_EQ(why_not("\nsample\tDiameter\n1\t74.03\n"), "line 2: the fields are parted by tabs");
  EXPECT_EQ(spc::parse_csv("a.csv", "a;b,c\n1,2\n").header.fields, (Fields{"a;b", "c"})) << "commas part these";
}

TEST(ParseCsv, refuses_quotes_out_of_place) {
  EXPECT_EQ(why_not("a\n1\n\"open\nmore"), "line 3: a quote is never closed");
  EXPECT_EQ(why_not("a\n\"1\"2\n"), "line 2: text stands behind a closing quote");
  EXPECT_EQ(why_not("a\n1\"2\"\n"), "line 2: a quote stands inside a field that does not begin with one");
}

TEST(ParseCsv, refuses_what_is_not_utf8_text) {
  EXPECT_EQ(why_not("a\n1\nGr\xF6\xDF"
                    "e\n"),
            "line 3: bytes that are not UTF-8");
  EXPECT_EQ(why_not(std::string_view("a\n\0\n", 4)), "line 2: a zero byte, so this is not a text");
}

TEST(ReadCsv, reads_a_file) {
  const test_support::ScratchFolder folder;
  std::ofstream(folder.file("x.csv")) << "a\n7\n";
  EXPECT_EQ(spc::read_csv(folder.file("x.csv")).rows[0].fields, (Fields{"7"}));
}

TEST(ReadCsv, says_why_a_file_cannot_be_read) {
  const test_support::ScratchFolder folder;
  try {
    spc::read_csv(folder.file("none.csv"));
    FAIL() << "the file is not there";
  } catch (const spc::Problem& problem) {
    EXPECT_EQ(problem.why, "No such file or directory");
  }
  try {
    spc::read_csv(folder.path().string());
    FAIL() << "a folder is no file";
  } catch (const spc::Problem& problem) {
    EXPECT_EQ(problem.why, "it is a folder");
  }
}

}  // namespace
