// Plan
// - PathFindExtensionA, PathFindFileNameA: every recorded row; rows in which `/` does not separate are held to the rule
//   that it does, as data; null; a text in exactly sized memory
// - PathIsDirectoryA, PathFileExistsA: every recorded row, those that name a drive of the recording machine held to
// what
//   there is here; folder, file, link, both separators, a path through a file
// - GetShortPathNameA: the path itself, in place too; buffers around the needed size; what is not there
#include "spcbase/platform/system/path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "spcbase/platform/system/file.h"
#include "spcbase/platform/system/system_error.h"
#include "spcbase/testkit/scratch_folder.h"
#include "tests/support/vector_file.h"

namespace {

namespace fs = std::filesystem;
using test_support::ScratchFolder;
using test_support::VectorRow;

using Finder = char* (*)(const char*);
/// Where a part begins, in characters, and what stands there: the recorded columns `result` and `output`.
using Part = std::pair<std::string, std::string>;

/// Calls with the text in memory of exactly its size, so that a sanitizer sees a read beyond it.
Part part_of(Finder find, const std::string& path) {
  const auto exact = std::make_unique<char[]>(path.size() + 1);
  std::copy_n(path.c_str(), path.size() + 1, exact.get());
  const char* found = find(exact.get());
  // Recorded offsets count characters of one byte; here a character may have several.
  const auto characters = std::count_if(static_cast<const char*>(exact.get()), found,
                                        [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; });
  return {std::to_string(characters), found};
}

/// Plays all rows of a function. What `here` has for a row's input stands instead of what was recorded.
void play(const std::string& function, Finder find, const std::map<std::string, Part>& here) {
  std::size_t played = 0;
  std::size_t given_way = 0;
  for (const VectorRow& row : test_support::read_vectors("paths.tsv")) {
    if (row["function"] != function) continue;
    SCOPED_TRACE(row.place());
    const Part recorded{row["result"], row["output"]};
    const auto other = here.find(row["input"]);
    if (other != here.end()) {
      EXPECT_NE(other->second, recorded) << "the row need not give way";
      EXPECT_NE(row["input"].find('/'), std::string::npos);
      ++given_way;
    }
    EXPECT_EQ(part_of(find, row["input"]), other == here.end() ? recorded : other->second);
    ++played;
  }
  EXPECT_GT(played, 40U);
  EXPECT_EQ(given_way, here.size());
}

TEST(PathFindExtensionA, finds_what_was_recorded_unless_a_slash_separates) {
  play("PathFindExtensionA", PathFindExtensionA, {{"dir.x/", {"6", ""}}, {"a.b/c", {"5", ""}}});
}

// The one suspect row is "::". The documents say that the name begins behind a separator, and nothing of a colon behind
// a colon; the recorded answer, the second colon, is what the rule for one colon gives, so it stands.
TEST(PathFindFileNameA, finds_what_was_recorded) { play("PathFindFileNameA", PathFindFileNameA, {}); }

TEST(PathFindFileNameA, finds_the_documented_names) {
  EXPECT_STREQ(PathFindFileNameA("c:\\path\\file"), "file");
  EXPECT_STREQ(PathFindFileNameA("c:\\path"), "path");
  EXPECT_STREQ(PathFindFileNameA("c:\\path\\"), "path\\");
  EXPECT_STREQ(PathFindFileNameA("c:\\"), "c:\\");
  EXPECT_STREQ(PathFindFileNameA("c:"), "c:");
}

TEST(PathFind, null_gives_null) {
  EXPECT_EQ(PathFindExtensionA(nullptr), nullptr);
  EXPECT_EQ(PathFindFileNameA(nullptr), nullptr);
}

TEST(PathFind, both_separators_part_alike) {
  for (const char* path : {"/data/line.4/run.csv", "\\data\\line.4\\run.csv", "/data\\line.4/run.csv"}) {
    EXPECT_STREQ(PathFindExtensionA(path), ".csv");
    EXPECT_STREQ(PathFindFileNameA(path), "run.csv");
  }
  EXPECT_STREQ(PathFindExtensionA("/data/line.4/run"), "");
}

TEST(PathIsDirectoryA, tells_folders_from_files_by_either_separator) {
  const ScratchFolder folder;
  fs::create_directory(folder.path() / "sub");
  std::ofstream(folder.file("file")) << "x";
  const std::string root = folder.path().string();
  EXPECT_EQ(PathIsDirectoryA(root.c_str()), static_cast<BOOL>(FILE_ATTRIBUTE_DIRECTORY));
  EXPECT_TRUE(PathIsDirectoryA((root + "\\sub").c_str()));
  EXPECT_TRUE(PathIsDirectoryA((root + "\\sub\\").c_str()));
  EXPECT_TRUE(PathIsDirectoryA((root + "/sub/").c_str()));
  EXPECT_FALSE(PathIsDirectoryA(folder.file("file").c_str()));
  EXPECT_FALSE(PathIsDirectoryA(folder.file("none").c_str()));
  EXPECT_FALSE(PathIsDirectoryA(nullptr));
}

TEST(PathFileExistsA, sees_files_folders_and_where_links_lead) {
  const ScratchFolder folder;
  std::ofstream(folder.file("file")) << "x";
  fs::create_symlink(folder.file("file"), folder.file("link"));
  fs::create_symlink(folder.file("none"), folder.file("dangling"));
  EXPECT_TRUE(PathFileExistsA(folder.path().c_str()));
  EXPECT_TRUE(PathFileExistsA((folder.path().string() + "\\file").c_str()));
  EXPECT_TRUE(PathFileExistsA(folder.file("link").c_str()));
  EXPECT_FALSE(PathFileExistsA(folder.file("dangling").c_str()));
  EXPECT_FALSE(PathFileExistsA(folder.file("file/x").c_str()));
  EXPECT_FALSE(PathFileExistsA(folder.file(std::string(300, 'x')).c_str()));
  EXPECT_FALSE(PathFileExistsA(std::string(10000, 'x').c_str()));
  EXPECT_FALSE(PathFileExistsA(nullptr));
}

TEST(PathFileExistsA, answers_as_was_recorded_but_for_drives) {
  // These name a drive and a folder of the recording machine. There are no drives here.
  const std::map<std::string, std::string> here = {{"c:\\", "0,0"}, {"c:\\windows\\system.ini", "0,0"}, {"c:", "0,0"}};
  std::size_t played = 0;
  for (const VectorRow& row : test_support::read_vectors("paths.tsv")) {
    if (row["class"] != "exists") continue;
    SCOPED_TRACE(row.place());
    const char* path = row["input"].c_str();
    const std::string answer =
        std::to_string(PathFileExistsA(path) != FALSE) + "," + std::to_string(PathIsDirectoryA(path) != FALSE);
    const auto other = here.find(row["input"]);
    EXPECT_EQ(answer, other == here.end() ? row["result"] : other->second);
    ++played;
  }
  EXPECT_EQ(played, 7U);
}

TEST(GetShortPathNameA, gives_the_path_itself_when_the_buffer_has_room) {
  const ScratchFolder folder;
  const std::string path = folder.path().string();
  std::string buffer(path.size() + 1, 'z');
  const auto length = static_cast<DWORD>(path.size());
  EXPECT_EQ(GetShortPathNameA(path.c_str(), buffer.data(), length), length + 1);
  EXPECT_EQ(buffer[0], 'z') << "a buffer that is too small is not written";
  EXPECT_EQ(GetShortPathNameA(path.c_str(), nullptr, 0), length + 1);
  EXPECT_EQ(GetShortPathNameA(path.c_str(), buffer.data(), length + 1), length);
  EXPECT_STREQ(buffer.c_str(), path.c_str());
  EXPECT_EQ(GetShortPathNameA(buffer.data(), buffer.data(), length + 1), length);
  EXPECT_STREQ(buffer.c_str(), path.c_str());
}

TEST(GetShortPathNameA, what_is_not_there_has_no_short_form) {
  const ScratchFolder folder;
  char buffer[10] = "before";
  const auto error_of = [&](const char* path) {
    SetLastError(0);
    EXPECT_EQ(GetShortPathNameA(path, buffer, sizeof buffer), 0U);
    return GetLastError();
  };
  EXPECT_EQ(error_of(folder.file("none").c_str()), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(error_of(folder.file("none/a").c_str()), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(error_of(""), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(error_of(nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_STREQ(buffer, "before");
}

}  // namespace
