// Plan
// - GetTempPathA: the recorded forms; buffers around the needed size; no folder; the environment changes nothing
// - SHGetFolderPathA: the user's folder, made when asked for, for the user alone; missing; no home, a home that is not
//   there, a file in the way; a path that just fits and one that does not; another folder; the environment
// - the real folders of the system; HeldFolders nest and end
#include "spcbase/platform/system/folders.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "spcbase/platform/system/system_error.h"
#include "spcbase/platform/system/system_folders.h"
#include "spcbase/testkit/scratch_folder.h"
#include "tests/support/environment_guard.h"
#include "tests/support/vector_file.h"

namespace {

namespace fs = std::filesystem;
using platform::HeldFolders;
using test_support::EnvironmentGuard;
using test_support::ScratchFolder;

constexpr int create = CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE;

std::string temporary() {
  char buffer[MAX_PATH + 1];
  return GetTempPathA(sizeof buffer, buffer) == 0 ? "" : buffer;
}

/// What the call gives for a user with this home; `text` is what it writes.
HRESULT folder_of(const std::string& home, int folder, std::string& text) {
  const HeldFolders held({"/tmp", home});
  char buffer[MAX_PATH] = "before";
  const HRESULT result = SHGetFolderPathA(nullptr, folder, nullptr, 0, buffer);
  text = buffer;
  return result;
}

TEST(GetTempPathA, has_the_recorded_forms) {
  std::size_t played = 0;
  for (const auto& row : test_support::read_vectors("paths.tsv")) {
    if (row["class"] != "form" || row["function"].rfind("GetTempPathA", 0) != 0) continue;
    SCOPED_TRACE(row.place());
    char buffer[MAX_PATH + 1];
    const DWORD length = GetTempPathA(sizeof buffer, buffer);
    if (row["function"].find("buffer of 3") != std::string::npos) {
      EXPECT_EQ(row["result"], "1");
      EXPECT_EQ(GetTempPathA(3, buffer), length + 1);
    } else {
      // "Ends with a backslash" is met by the system's own separator; a name has only one form here.
      EXPECT_EQ(row["result"], "1,1,0");
      EXPECT_EQ(buffer[length - 1], '/');
      EXPECT_EQ(std::strlen(buffer), length);
    }
    ++played;
  }
  EXPECT_EQ(played, 2U);
}

TEST(GetTempPathA, tells_the_size_it_needs) {
  const HeldFolders held({"/tmp", ""});
  char buffer[7] = "before";
  EXPECT_EQ(GetTempPathA(5, buffer), 6U);
  EXPECT_STREQ(buffer, "before");
  EXPECT_EQ(GetTempPathA(0, nullptr), 6U);
  EXPECT_EQ(GetTempPathA(6, buffer), 5U);
  EXPECT_STREQ(buffer, "/tmp/");
}

TEST(GetTempPathA, no_folder_is_told_by_the_last_error) {
  const HeldFolders held({"", ""});
  char buffer[7] = "before";
  SetLastError(0);
  EXPECT_EQ(GetTempPathA(sizeof buffer, buffer), 0U);
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
  EXPECT_STREQ(buffer, "before");
}

TEST(GetTempPathA, does_not_ask_the_environment) {
  const std::string before = temporary();
  const EnvironmentGuard tmpdir("TMPDIR", "/elsewhere");
  const EnvironmentGuard tmp("TMP", "/elsewhere");
  const EnvironmentGuard temp("TEMP", "/elsewhere");
  EXPECT_EQ(temporary(), before);
}

TEST(SHGetFolderPathA, makes_the_folder_for_the_user_alone_when_asked_to) {
  const ScratchFolder home;
  std::string text;
  EXPECT_EQ(folder_of(home.path().string(), CSIDL_LOCAL_APPDATA, text), S_FALSE);
  EXPECT_EQ(text, "");
  EXPECT_TRUE(fs::is_empty(home.path()));
  EXPECT_EQ(folder_of(home.path().string(), create, text), S_OK);
  EXPECT_EQ(text, home.file(".local/share"));
  EXPECT_TRUE(fs::is_directory(text));
  EXPECT_EQ(fs::status(text).permissions(), fs::perms::owner_all);
  EXPECT_EQ(folder_of(home.path().string(), CSIDL_LOCAL_APPDATA, text), S_OK);
  EXPECT_EQ(folder_of(home.path().string(), create, text), S_OK);
  EXPECT_EQ(text, home.file(".local/share"));
}

TEST(SHGetFolderPathA, a_user_without_a_home_has_no_folder) {
  const ScratchFolder folder;
  std::string text;
  for (const std::string& home : {std::string(), std::string("relative"), folder.file("none")}) {
    EXPECT_EQ(folder_of(home, create, text), E_FAIL) << home;
    EXPECT_EQ(text, "");
  }
  EXPECT_TRUE(fs::is_empty(folder.path())) << "a home is never made";
}

TEST(SHGetFolderPathA, a_file_in_the_way_is_a_failure) {
  const ScratchFolder home;
  std::ofstream(home.file(".local")) << "x";
  std::string text;
  EXPECT_EQ(folder_of(home.path().string(), create, text), E_FAIL);
  EXPECT_EQ(text, "");
}

TEST(SHGetFolderPathA, a_place_where_nothing_can_be_made_is_a_failure) {
  std::string text;
  EXPECT_EQ(folder_of("/proc", create, text), E_FAIL);
  EXPECT_EQ(text, "");
}

TEST(SHGetFolderPathA, a_path_fits_up_to_its_longest) {
  const ScratchFolder root;
  const std::size_t ending = std::string("/.local/share").size();
  const std::size_t longest = MAX_PATH - 1 - ending;
  ASSERT_LT(root.path().string().size() + 2, longest - 100);
  const std::string middle = root.path().string() + "/" + std::string(100, 'm') + "/";
  for (const std::size_t length : {longest, longest + 1}) {
    const std::string home = middle + std::string(length - middle.size(), 'h');
    fs::create_directories(home);
    std::string text;
    EXPECT_EQ(folder_of(home, create, text), length == longest ? S_OK : E_FAIL);
    EXPECT_EQ(text, length == longest ? home + "/.local/share" : "");
  }
}

TEST(SHGetFolderPathA, other_folders_and_no_buffer_are_refused) {
  const ScratchFolder home;
  std::string text;
  EXPECT_EQ(folder_of(home.path().string(), 0x1A, text), E_INVALIDARG);
  EXPECT_EQ(text, "");
  EXPECT_EQ(SHGetFolderPathA(nullptr, create, nullptr, 0, nullptr), E_INVALIDARG);
}

TEST(SystemFolders, are_those_of_the_machine_whatever_the_environment_says) {
  const std::string home = platform::home_folder();
  const std::string temporary_folder = platform::temporary_folder();
  EXPECT_TRUE(fs::path(temporary_folder).is_absolute());
  EXPECT_NE(temporary_folder.back(), '/');
  const EnvironmentGuard other_home("HOME", "/elsewhere");
  const EnvironmentGuard other_data("XDG_DATA_HOME", "/elsewhere");
  EXPECT_EQ(platform::home_folder(), home);
}

TEST(HeldFolders, nest_and_belong_to_their_thread) {
  const std::string real = platform::temporary_folder();
  {
    const HeldFolders outer({"/outer", "/outer home"});
    {
      const HeldFolders inner({"/inner", "/inner home"});
      EXPECT_EQ(platform::temporary_folder(), "/inner");
      EXPECT_EQ(platform::home_folder(), "/inner home");
    }
    EXPECT_EQ(platform::temporary_folder(), "/outer");
    std::string elsewhere;
    std::thread([&] { elsewhere = platform::temporary_folder(); }).join();
    EXPECT_EQ(elsewhere, real);
  }
  EXPECT_EQ(platform::temporary_folder(), real);
}

}  // namespace
