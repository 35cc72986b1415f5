// Plan
// - RemoveExt, RemoveFileNameAndExt, PathToFileName, GetExtFromFileOrPath: tables of texts with both separators, roots,
//   ends in a separator, short folders, no folder, UTF-8, zeros, very long
// - IsValidFileName, MakeValidFileName: each forbidden character, full paths and plain texts, empty, UTF-8
// - is_valid_full_normal_file: folder, file, place for a file, no folder, the root, forbidden characters
// - MakeShortPath: every text stays, also where nothing is
//
// Edge cases asked for by the subsystem
//   a file in a drive root keeps the root        RemoveFileNameAndExt
//   a path ending in a separator becomes empty   PathToFileName
//   an empty name is valid                       IsValidFileName
//   only the last name of a full path is cleaned MakeValidFileName
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <type_traits>

#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/utility/files.h"

namespace {

namespace fs = std::filesystem;
using test_support::ScratchFolder;

struct Change {
  int line;
  const char* from;
  const char* to;
};

/// Holds a function that changes a text to a table. A function that tells success must tell it.
template <typename Function, std::size_t count>
void hold_to(Function change, const Change (&table)[count]) {
  for (const Change& row : table) {
    CString text(row.from);
    if constexpr (std::is_same_v<decltype(change(text)), bool>) {
      EXPECT_TRUE(change(text)) << "line " << row.line;
    } else {
      change(text);
    }
    EXPECT_STREQ(text.GetString(), row.to) << "line " << row.line;
  }
}

TEST(RemoveExt, cuts_before_the_last_extension) {
  hold_to(RemoveExt, {
                         {__LINE__, "", ""},
                         {__LINE__, "a", "a"},
                         {__LINE__, "a.txt", "a"},
                         {__LINE__, "a.tar.gz", "a.tar"},
                         {__LINE__, ".txt", ""},
                         {__LINE__, "a.", "a"},
                         {__LINE__, "C:\\dir.x\\a.b", "C:\\dir.x\\a"},
                         {__LINE__, "C:\\dir.x\\a", "C:\\dir.x\\a"},
                         {__LINE__, "/dir.x/a", "/dir.x/a"},
                         {__LINE__, "/dir.x/a.b", "/dir.x/a"},
                         {__LINE__, "/dir.x/", "/dir.x/"},
                         {__LINE__, "a.b c", "a.b c"},
                         {__LINE__, "Prüfung.tür", "Prüfung"},
                     });
}

TEST(RemoveFileNameAndExt, keeps_the_root_of_a_drive_with_its_separator) {
  hold_to(RemoveFileNameAndExt, {
                                    {__LINE__, "C:\\a.txt", "C:\\"},
                                    {__LINE__, "C:/a.txt", "C:/"},
                                    {__LINE__, "\\a.txt", "\\"},
                                    {__LINE__, "/a.txt", "/"},
                                    {__LINE__, "//a.txt", "//"},
                                });
}

TEST(RemoveFileNameAndExt, leaves_the_folder) {
  hold_to(RemoveFileNameAndExt, {
                                    {__LINE__, "C:\\dir\\a.txt", "C:\\dir"},
                                    {__LINE__, "/data/line 4/run.csv", "/data/line 4"},
                                    {__LINE__, "/data\\line 4/run", "/data\\line 4"},
                                    {__LINE__, "\\\\srv\\share\\a", "\\\\srv\\share"},
                                    {__LINE__, "dir//a", "dir/"},
                                    {__LINE__, "Öl/ü", "Öl"},
                                });
}

TEST(RemoveFileNameAndExt, takes_only_the_separator_that_ends_a_path) {
  hold_to(RemoveFileNameAndExt, {
                                    {__LINE__, "C:\\dir\\", "C:\\dir"},
                                    {__LINE__, "/data/line/", "/data/line"},
                                    {__LINE__, "dir\\\\", "dir\\"},
                                    {__LINE__, "C:\\", "C:"},
                                    {__LINE__, "/", ""},
                                });
}

TEST(RemoveFileNameAndExt, leaves_a_text_without_a_folder) {
  hold_to(RemoveFileNameAndExt, {
                                    {__LINE__, "", ""},
                                    {__LINE__, "a.txt", "a.txt"},
                                    {__LINE__, ".", "."},
                                    {__LINE__, "C:a.txt", "C:a.txt"},
                                    {__LINE__, "C:", "C:"},
                                });
}

TEST(RemoveFileNameAndExt, a_short_folder_keeps_its_separator_as_is_meant) {
  hold_to(RemoveFileNameAndExt, {
                                    {__LINE__, "a/b", "a/"},
                                    {__LINE__, "ab\\c", "ab\\"},
                                    {__LINE__, "/a/b", "/a/"},
                                    {__LINE__, "abc\\d", "abc"},
                                    {__LINE__, "/ab/c", "/ab"},
                                });
}

TEST(PathToFileName, a_path_ending_in_a_separator_becomes_empty) {
  hold_to(PathToFileName, {
                              {__LINE__, "C:\\dir\\", ""},
                              {__LINE__, "/data/line/", ""},
                              {__LINE__, "C:\\", ""},
                              {__LINE__, "/", ""},
                          });
}

TEST(PathToFileName, leaves_the_name) {
  hold_to(PathToFileName, {
                              {__LINE__, "", ""},
                              {__LINE__, "a.txt", "a.txt"},
                              {__LINE__, "C:\\dir\\a.txt", "a.txt"},
                              {__LINE__, "/data/line 4/run.csv", "run.csv"},
                              {__LINE__, "C:a.txt", "a.txt"},
                              {__LINE__, "/data/Prüfung", "Prüfung"},
                          });
}

TEST(GetExtFromFileOrPath, gives_the_extension_without_its_point) {
  const Change table[] = {
      {__LINE__, "a.txt", "txt"},
      {__LINE__, "C:\\dir\\a.tar.gz", "gz"},
      {__LINE__, "/dir/a.csv", "csv"},
      {__LINE__, "/dir.x/a", ""},
      {__LINE__, "a", ""},
      {__LINE__, "", ""},
      {__LINE__, "a.", ""},
      {__LINE__, "a.b c", ""},
      {__LINE__, "a.tür", "tür"},
      {__LINE__, "C:\\dir.x\\a.", ""},
      {__LINE__, "/dir.x/", ""},
  };
  for (const Change& row : table) {
    EXPECT_STREQ(GetExtFromFileOrPath(row.from).GetString(), row.to) << "line " << row.line;
  }
}

TEST(Paths, end_at_their_first_zero) {
  const CString path("/dir/a.b\0/c.d", 13);
  CString text = path;
  RemoveExt(text);
  EXPECT_EQ(text, "/dir/a");
  text = path;
  RemoveFileNameAndExt(text);
  EXPECT_EQ(text, "/dir");
  text = path;
  PathToFileName(text);
  EXPECT_EQ(text, "a.b");
  EXPECT_EQ(GetExtFromFileOrPath(path), "b");
}

TEST(Paths, may_have_any_length) {
  const std::string folder = "/" + std::string(100000, 'd');
  const CString path(folder + "/" + std::string(100000, 'n') + ".ext");
  CString text = path;
  RemoveFileNameAndExt(text);
  EXPECT_EQ(text.view(), folder);
  text = path;
  PathToFileName(text);
  EXPECT_EQ(text.GetLength(), 100004);
  EXPECT_EQ(GetExtFromFileOrPath(path), "ext");
  EXPECT_FALSE(is_valid_full_normal_file(path));
}

TEST(IsValidFileName, an_empty_name_is_valid) {
  EXPECT_TRUE(IsValidFileName(""));
  EXPECT_TRUE(IsValidFileName(nullptr));
}

TEST(IsValidFileName, each_of_the_nine_characters_is_forbidden) {
  const std::string nine = "\\/:*?\"<>|";
  for (int c = 1; c < 256; ++c) {
    const std::string name = {'a', static_cast<char>(c), 'b'};
    EXPECT_EQ(IsValidFileName(name.c_str()), nine.find(static_cast<char>(c)) == std::string::npos) << c;
  }
  EXPECT_TRUE(IsValidFileName("Prüfung 4 (neu).txt"));
}

TEST(MakeValidFileName, a_full_path_keeps_its_colon_and_its_folders) {
  hold_to(MakeValidFileName, {
                                 {__LINE__, "C:\\a:b\\x*y?.txt", "C:\\a:b\\x_y_.txt"},
                                 {__LINE__, "C:\\x|y", "C:\\x_y"},
                                 {__LINE__, "z:/a?/x:y", "z:/a?/x_y"},
                                 {__LINE__, "C:\\dir/x:y", "C:\\dir/x_y"},
                                 {__LINE__, "/data/a*b/\"c\"", "/data/a*b/_c_"},
                                 {__LINE__, "\\\\srv\\sh<are\\a>b", "\\\\srv\\sh<are\\a_b"},
                                 {__LINE__, "/:", "/_"},
                                 {__LINE__, "\\/:*?\"<>|", "\\/_______"},
                                 {__LINE__, "/data/Prüfung:1", "/data/Prüfung_1"},
                             });
}

TEST(MakeValidFileName, a_full_path_that_ends_in_a_separator_stays) {
  hold_to(MakeValidFileName, {
                                 {__LINE__, "C:\\", "C:\\"},
                                 {__LINE__, "C:\\a*b\\", "C:\\a*b\\"},
                                 {__LINE__, "/a:b/", "/a:b/"},
                                 {__LINE__, "\\\\", "\\\\"},
                             });
}

TEST(MakeValidFileName, any_other_text_is_one_name) {
  hold_to(MakeValidFileName, {
                                 {__LINE__, "", ""},
                                 {__LINE__, "a.txt", "a.txt"},
                                 {__LINE__, "a/b\\c", "a_b_c"},
                                 {__LINE__, "C:", "C_"},
                                 {__LINE__, "C:x", "C_x"},
                                 {__LINE__, "1:\\a", "1__a"},
                                 {__LINE__, "ä:\\a", "ä__a"},
                                 {__LINE__, "\\", "_"},
                                 {__LINE__, "/", "_"},
                             });
}

TEST(MakeValidFileName, cleans_each_forbidden_character_of_a_name) {
  CString name("a\\/:*?\"<>|b");
  MakeValidFileName(name);
  EXPECT_STREQ(name.GetString(), "a_________b");
  EXPECT_TRUE(IsValidFileName(name));
}

TEST(is_valid_full_normal_file, a_folder_is_none_and_a_file_is_one) {
  const ScratchFolder folder;
  std::ofstream(folder.file("a:b")) << "x";
  EXPECT_FALSE(is_valid_full_normal_file(folder.path().c_str()));
  EXPECT_FALSE(is_valid_full_normal_file((folder.path().string() + "/").c_str()));
  EXPECT_TRUE(is_valid_full_normal_file(folder.file("a:b").c_str())) << "what is there needs no good name";
}

TEST(is_valid_full_normal_file, a_place_for_a_file_is_one) {
  const ScratchFolder folder;
  const std::string root = folder.path().string();
  EXPECT_TRUE(is_valid_full_normal_file((root + "/new").c_str()));
  EXPECT_TRUE(is_valid_full_normal_file((root + "\\new file.txt").c_str()));
  EXPECT_FALSE(is_valid_full_normal_file((root + "/a*b").c_str()));
  EXPECT_FALSE(is_valid_full_normal_file((root + "/a:b").c_str()));
  EXPECT_FALSE(is_valid_full_normal_file((root + "/none/new").c_str()));
  EXPECT_FALSE(is_valid_full_normal_file((root + "/none/").c_str()));
  EXPECT_TRUE(is_valid_full_normal_file("/no file of this name in the root"));
  EXPECT_FALSE(fs::exists(root + "/new")) << "looking makes nothing";
}

TEST(is_valid_full_normal_file, a_bare_name_is_none_unless_it_is_there) {
  EXPECT_FALSE(is_valid_full_normal_file("no file of this name"));
  EXPECT_FALSE(is_valid_full_normal_file("C:no file of this name"));
  EXPECT_FALSE(is_valid_full_normal_file(""));
  EXPECT_FALSE(is_valid_full_normal_file(nullptr));
}

TEST(is_valid_full_normal_file, a_path_through_a_file_is_none) {
  const ScratchFolder folder;
  std::ofstream(folder.file("file")) << "x";
  EXPECT_FALSE(is_valid_full_normal_file(folder.file("file/new").c_str()));
}

TEST(MakeShortPath, every_text_stays) {
  const ScratchFolder folder;
  for (const std::string& path : {std::string(), folder.path().string(), folder.path().string() + "\\",
                                  folder.file("none"), std::string("a b")}) {
    CString text(path);
    MakeShortPath(text);
    EXPECT_EQ(text.view(), path);
  }
}

}  // namespace
