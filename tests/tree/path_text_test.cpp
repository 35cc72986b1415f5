// Plan
//   which separator a path uses -> determine_sep_char.*
//   revision words -> extract_revision.*
//   folder and name, prefix, doubled separators -> analyse_path.*
//   names, extensions, lists -> split_path.*, split_name_and_ext.*, extract_paths.*
//   random names, joined and split again -> path_text.*
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "spcbase/tree/path.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Analysed {
  bool found = false;
  std::string folder = "untouched";
  std::string name = "untouched";
  int revision = 77;
};

Analysed analysed(const char* path, bool undouble_folder = true, bool undouble_name = true, bool with_revision = true) {
  Analysed result;
  CString folder("untouched");
  CString name("untouched");
  result.found = analyse_path(path, folder, name, undouble_folder, undouble_name, with_revision, &result.revision);
  result.folder = folder.GetString();
  result.name = name.GetString();
  return result;
}

void expect(const Analysed& result, const std::string& folder, const std::string& name, int revision) {
  EXPECT_TRUE(result.found);
  EXPECT_EQ(result.folder, folder);
  EXPECT_EQ(result.name, name);
  EXPECT_EQ(result.revision, revision);
}

std::pair<std::string, int> revision_of(const char* text) {
  CString name("untouched");
  int revision = 77;
  extract_revision(text, name, revision);
  return {name.GetString(), revision};
}

std::vector<std::string> names_of(const char* path) {
  std::vector<CString> names{"old"};
  const int count = split_path(path, names);
  EXPECT_EQ(static_cast<std::size_t>(count), names.size());
  return {names.begin(), names.end()};
}

TEST(determine_sep_char, of_an_empty_text_is_the_default_cut_to_a_char) {
  EXPECT_EQ(determine_sep_char("", '/'), '/');
  EXPECT_EQ(determine_sep_char("", 0), '\0');
  EXPECT_EQ(determine_sep_char("", 0x12F), '/');
}

TEST(determine_sep_char, is_the_first_character_if_that_is_one) {
  EXPECT_EQ(determine_sep_char("/a\\b\\c", 0), '/');
  EXPECT_EQ(determine_sep_char("\\a/b/c", 0), '\\');
  EXPECT_EQ(determine_sep_char("//a\\b", 0), '/') << "doubled or not";
}

TEST(determine_sep_char, of_a_tie_is_the_one_that_was_seen_first) {
  EXPECT_EQ(determine_sep_char("a/b\\c", 0), '/');
  EXPECT_EQ(determine_sep_char("a/b\\c", '\\'), '/');
  EXPECT_EQ(determine_sep_char("a\\b/c", 0), '\\');
}

TEST(determine_sep_char, does_not_count_doubled_ones) {
  EXPECT_EQ(determine_sep_char("a//b", 'x'), 'x');
  EXPECT_EQ(determine_sep_char("a//b\\c", 'x'), '\\');
  EXPECT_EQ(determine_sep_char("a///b", 'x'), '/') << "the third one stands single";
  EXPECT_EQ(determine_sep_char("ab", 'x'), 'x');
}

TEST(determine_sep_char, is_the_one_that_stands_single_more_often) {
  EXPECT_EQ(determine_sep_char("a\\b\\c/d", 0), '\\');
  EXPECT_EQ(determine_sep_char("a/b\\c\\d", 0), '\\');
  EXPECT_EQ(determine_sep_char("a/b/c\\d", 0), '/');
}

TEST(extract_revision, takes_a_number_off) { EXPECT_EQ(revision_of("a|7"), std::pair(std::string("a"), 7)); }

TEST(extract_revision, leaves_a_word_that_is_none_in_the_name) {
  EXPECT_EQ(revision_of("a|b"), std::pair(std::string("a|b"), 0));
  EXPECT_EQ(revision_of("a|"), std::pair(std::string("a|"), 0));
  EXPECT_EQ(revision_of("a|-7"), std::pair(std::string("a|-7"), 0));
  EXPECT_EQ(revision_of("a| 7"), std::pair(std::string("a| 7"), 0));
}

TEST(extract_revision, knows_its_words_in_any_case) {
  EXPECT_EQ(revision_of("a|LATEST"), std::pair(std::string("a"), 0));
  EXPECT_EQ(revision_of("a|latestApproved"), std::pair(std::string("a"), -100));
  EXPECT_EQ(revision_of("a|Approved"), std::pair(std::string("a"), -100));
}

TEST(extract_revision, takes_the_last_bar) {
  EXPECT_EQ(revision_of("a|b|7"), std::pair(std::string("a|b"), 7));
  EXPECT_EQ(revision_of("|7"), std::pair(std::string(), 7));
}

TEST(extract_revision, without_a_bar_asks_for_the_latest) {
  EXPECT_EQ(revision_of("latest"), std::pair(std::string("latest"), 0));
  EXPECT_EQ(revision_of(nullptr), std::pair(std::string(), 0));
}

TEST(analyse_path, of_a_text_without_a_separator_is_false_and_touches_nothing) {
  for (const char* path : {"x", "", "   ", "a//b", "enterprise:/", "enterprise:/x", "//x"}) {
    const auto result = analysed(path);
    EXPECT_FALSE(result.found) << path;
    EXPECT_EQ(result.folder, "untouched");
    EXPECT_EQ(result.name, "untouched");
    EXPECT_EQ(result.revision, 77);
  }
  EXPECT_FALSE(analysed(nullptr).found);
}

TEST(analyse_path, drops_the_prefix_and_with_it_the_leading_separator) {
  expect(analysed("enterprise:/top/sub/prof|approved"), "top/sub", "prof", -100);
  expect(analysed(" ENTERPRISE:/top/x "), "top", "x", 0);
  expect(analysed("enterprise://x"), "/", "x", 0);
}

TEST(analyse_path, of_a_name_in_the_root_has_the_separator_as_folder) {
  expect(analysed("/x"), "/", "x", 0);
  expect(analysed("\\x|3"), "\\", "x", 3);
}

TEST(analyse_path, makes_doubled_separators_single_where_it_is_asked_to) {
  expect(analysed("a/b//c"), "a", "b/c", 0);
  expect(analysed("a/b//c", true, false), "a", "b//c", 0);
  expect(analysed("p//q/x//y", false, true), "p//q", "x/y", 0);
  expect(analysed("p//q/x//y", true, false), "p/q", "x//y", 0);
}

TEST(analyse_path, leaves_the_revision_alone_unless_it_is_asked_for) {
  expect(analysed("a/b|7", true, true, false), "a", "b|7", 77);
  CString folder;
  CString name;
  EXPECT_TRUE(analyse_path("a/b|7", folder, name, true, true, true, nullptr));
  EXPECT_EQ(name, "b");
}

TEST(analyse_path, of_a_path_that_ends_in_a_separator_has_an_empty_name) { expect(analysed("a/b/"), "a/b", "", 0); }

TEST(analyse_path, looks_from_the_end_for_a_separator_that_stands_single) {
  // Of three, the last two are the doubled ones.
  expect(analysed("a/b///c"), "a/b", "/c", 0);
}

TEST(analyse_path, may_read_from_an_argument_that_it_writes) {
  CString folder;
  CString name = "a/b|7";
  int revision = 0;
  EXPECT_TRUE(analyse_path(name, folder, name, true, true, true, &revision));
  EXPECT_EQ(folder, "a");
  EXPECT_EQ(name, "b");
}

TEST(split_path, gives_the_names_with_doubled_separators_single) {
  EXPECT_THAT(names_of("/a//b/c"), ElementsAre("a/b", "c"));
  EXPECT_THAT(names_of("\\a\\\\b\\c"), ElementsAre("a\\b", "c"));
  EXPECT_THAT(names_of("a\\b/c\\d"), ElementsAre("a", "b/c", "d"));
}

TEST(split_path, has_no_empty_names) {
  EXPECT_THAT(names_of(""), IsEmpty());
  EXPECT_THAT(names_of(nullptr), IsEmpty());
  EXPECT_THAT(names_of("/"), IsEmpty());
  EXPECT_THAT(names_of("/a/"), ElementsAre("a"));
}

TEST(split_path, of_one_name_is_that_name) { EXPECT_THAT(names_of("alone"), ElementsAre("alone")); }

TEST(split_path, makes_a_tab_in_a_name_a_separator) { EXPECT_THAT(names_of("a\tb/c"), ElementsAre("a/b", "c")); }

TEST(split_path, of_a_doubled_separator_in_front_begins_with_it) {
  EXPECT_THAT(names_of("//a/b"), ElementsAre("/a", "b"));
}

TEST(split_name_and_ext, parts_at_the_last_dot) {
  const auto parts = [](const char* text) {
    CString name("old");
    CString extension("old");
    const bool has_name = split_name_and_ext(text, name, extension);
    return std::tuple(has_name, std::string(name.GetString()), std::string(extension.GetString()));
  };
  using Parts = std::tuple<bool, std::string, std::string>;
  EXPECT_EQ(parts("a.b.c"), Parts(true, "a.b", "c"));
  EXPECT_EQ(parts(".c"), Parts(false, "", "c"));
  EXPECT_EQ(parts("a."), Parts(true, "a", ""));
  EXPECT_EQ(parts("a"), Parts(true, "a", ""));
  EXPECT_EQ(parts(""), Parts(false, "", ""));
}

TEST(split_name_and_ext, may_write_the_text_that_it_reads) {
  CString text("a.b");
  CString extension;
  EXPECT_TRUE(split_name_and_ext(text, text, extension));
  EXPECT_EQ(text, "a");
  EXPECT_EQ(extension, "b");
}

TEST(extract_paths, appends_what_stands_between_colons_and_keeps_what_was_there) {
  std::vector<CString> paths{"old"};
  EXPECT_EQ(extract_paths("a::b", paths), 2);
  EXPECT_THAT(paths, ElementsAre("old", "a", "b"));
  EXPECT_EQ(extract_paths("", paths), 0);
  EXPECT_EQ(extract_paths(nullptr, paths), 0);
  EXPECT_EQ(extract_paths(":c:", paths), 1);
  EXPECT_THAT(paths, ElementsAre("old", "a", "b", "c"));
}

TEST(path_text, names_joined_with_doubled_separators_come_back_from_a_split) {
  std::mt19937 random{5};
  static constexpr std::string_view letters = "ab|. '%_/\\\xC3\xA4";
  for (int i = 0; i < 5000; ++i) {
    const char separator = random() % 2 == 0 ? '/' : '\\';
    std::vector<std::string> names(1 + random() % 4);
    std::string path(1, separator);
    for (auto& name : names) {
      // A name that begins with the separator cannot be told from one that the name before ends with.
      name = "n";
      for (auto k = random() % 6; k > 0; --k)
        name += letters[random() % letters.size()];
      name += "m";
      for (const char c : name)
        path += c == separator ? std::string(2, c) : std::string(1, c);
      path += separator;
    }
    path.pop_back();
    ASSERT_EQ(names_of(path.c_str()), names) << path;
    const auto result = analysed(path.c_str(), true, true, false);
    ASSERT_TRUE(result.found);
    ASSERT_EQ(result.name, names.back()) << path;
  }
}

}  // namespace
