// Plan
// - GetNextParm: white space, quotes of both kinds, unclosed and empty ones, the end, null, multi-byte text
// - a property: parameters that were quoted come out as they went in
// - get_reason_param: the switch in its forms and places, the file's bytes, that it is gone, failures
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "spcbase/platform/system/file.h"
#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/utility/text.h"

namespace {

/// A parameter and what is left behind it.
struct Taken {
  std::string parameter;
  std::string rest;
  friend bool operator==(const Taken&, const Taken&) = default;
  friend void PrintTo(const Taken& taken, std::ostream* out) { *out << taken.parameter << " | " << taken.rest; }
};

Taken take(const char* line) {
  CString parameter("before");
  const char* const rest = GetNextParm(line, parameter);
  return {parameter.GetString(), rest};
}

TEST(GetNextParm, a_bare_parameter_runs_to_white_space_or_the_end) {
  EXPECT_EQ(take(" \t\r\n\v\f/n file"), (Taken{"/n", " file"}));
  EXPECT_EQ(take("file"), (Taken{"file", ""}));
  EXPECT_EQ(take("a\"b c\""), (Taken{"a\"b", " c\""})) << "a quote inside is like any other character";
}

TEST(GetNextParm, a_quoted_parameter_runs_to_the_next_quote_of_its_kind) {
  EXPECT_EQ(take("\"a b'c\"d e"), (Taken{"a b'c", "d e"}));
  EXPECT_EQ(take("  'a \"b\tc' d"), (Taken{"a \"b\tc", " d"}));
}

TEST(GetNextParm, of_a_quoted_parameter_with_no_closing_quote_gives_everything_to_the_end) {
  EXPECT_EQ(take("\"a b 'c' "), (Taken{"a b 'c' ", ""}));
  EXPECT_EQ(take("'a b"), (Taken{"a b", ""}));
  EXPECT_EQ(take("\""), (Taken{"", ""}));
}

TEST(GetNextParm, an_empty_parameter_empties_the_output) {
  EXPECT_EQ(take("\"\" x"), (Taken{"", " x"}));
  EXPECT_EQ(take("''"), (Taken{"", ""}));
}

TEST(GetNextParm, at_the_end_the_output_is_empty_and_the_position_stays_there) {
  EXPECT_EQ(take(""), (Taken{"", ""}));
  const char* const blanks = "  \t";
  CString parameter("before");
  EXPECT_EQ(GetNextParm(blanks, parameter), blanks + 3);
  EXPECT_EQ(parameter, "");
}

TEST(GetNextParm, a_null_line_gives_null) {
  CString parameter("before");
  EXPECT_EQ(GetNextParm(nullptr, parameter), nullptr);
  EXPECT_EQ(parameter, "");
}

TEST(GetNextParm, bytes_above_127_are_no_white_space) {
  EXPECT_EQ(take("\u0105\u3000\xA0\x85 x"), (Taken{"\u0105\u3000\xA0\x85", " x"}));
}

TEST(GetNextParm, quoted_parameters_come_out_as_they_went_in) {
  const std::string letters = "ab \t'\"/\\\xE4n";
  std::mt19937 random(77);
  for (int round = 0; round < 2000; ++round) {
    std::vector<std::string> parameters;
    std::string line;
    for (auto count = random() % 5; count > 0; --count) {
      const char quote = random() % 2 == 0 ? '"' : '\'';
      std::string parameter;
      for (auto length = random() % 6; length > 0; --length)
        if (const char c = letters[random() % letters.size()]; c != quote) parameter += c;
      parameters.push_back(parameter);
      line += std::string(random() % 2, ' ') + quote + parameter + quote;
    }
    const char* at = line.c_str();
    for (const std::string& parameter : parameters) {
      CString taken;
      at = GetNextParm(at, taken);
      ASSERT_EQ(taken, parameter.c_str()) << line;
    }
    ASSERT_STREQ(at, "");
  }
}

class GetReasonParam : public testing::Test {
 protected:
  void write(const std::string& content) const { std::ofstream(file_, std::ios::binary) << content; }
  bool file_is_there() const { return std::filesystem::exists(file_); }
  CString reason(const std::string& before, const std::string& after = "") const {
    return get_reason_param((before + file_ + after).c_str());
  }

  test_support::ScratchFolder folder_;
  std::string file_ = folder_.file("reason.txt");
};

TEST_F(GetReasonParam, reads_the_file_and_takes_it_away) {
  write("New die, see order 17\r\n");
  EXPECT_EQ(reason("/q \"a b\" /n ", " /x"), "New die, see order 17\r\n");
  EXPECT_FALSE(file_is_there());
}

TEST_F(GetReasonParam, knows_the_switch_in_both_cases_and_no_other) {
  write("reason");
  EXPECT_EQ(reason("/N "), "reason");
  write("reason");
  for (const char* other : {"-n ", "/nn ", "/n", "n ", "//n "})
    EXPECT_EQ(reason(other), "") << other;
  EXPECT_TRUE(file_is_there());
}

TEST_F(GetReasonParam, with_the_switch_as_the_last_parameter_gives_an_empty_text) {
  EXPECT_EQ(get_reason_param("/n"), "");
  EXPECT_EQ(get_reason_param("a /N  "), "");
}

TEST_F(GetReasonParam, without_a_file_name_gives_an_empty_text) {
  EXPECT_EQ(get_reason_param(""), "");
  EXPECT_EQ(get_reason_param("a b \"c"), "");
  EXPECT_EQ(get_reason_param("/n \"\" /N ''"), "");
  EXPECT_EQ(get_reason_param(nullptr), "");
}

TEST_F(GetReasonParam, goes_on_behind_an_empty_name_and_an_empty_parameter) {
  write("reason");
  EXPECT_EQ(reason("\"\" /n '' /n \"", "\""), "reason");
}

TEST_F(GetReasonParam, what_follows_the_switch_is_the_name_whatever_it_is) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  std::ofstream("-n") << "reason";
  EXPECT_EQ(get_reason_param("/n -n /n other"), "reason") << "the first name counts";
  std::filesystem::current_path(before);
}

TEST_F(GetReasonParam, gives_any_bytes_of_any_length_whole) {
  std::string content(10000, 'x');
  content += std::string("\0\xFF\r\n\u00E4", 6);
  content += std::string(4096, '\0');
  write(content);
  EXPECT_EQ(reason("/n "), CString(content));
  write("");
  EXPECT_EQ(reason("/n "), "");
  EXPECT_FALSE(file_is_there()) << "an empty file is consumed too";
}

TEST_F(GetReasonParam, a_file_that_cannot_be_opened_raises_the_file_exception) {
  try {
    reason("/n ");
    FAIL();
  } catch (CFileException* e) {
    EXPECT_EQ(e->m_cause, CFileException::fileNotFound);
    e->Delete();
  }
}

}  // namespace
