// Plan
// - get_temp_path: a separator at its end; no folder, one whose path is too long; the host's message source
// - get_temp_file: parts of the name, defaults, separators, an empty folder, many names at once from several threads,
//   the file's access, failures, names of 259 and 260 bytes, no handle left open
// - create_uuid_tmp_file: parts of the name, separators, an empty folder
// - get_user_data_path: the folder, its "Temp", no home
//
// Edge case asked for by the subsystem
//   nothing is left on disk                      create_uuid_tmp_file
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/system/message_source.h"
#include "spcbase/platform/system/process.h"
#include "spcbase/platform/system/system_folders.h"
#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/utility/files.h"
#include "tests/support/open_handles.h"

namespace {

namespace fs = std::filesystem;
using platform::HeldFolders;
using test_support::open_handles;
using test_support::ScratchFolder;

const std::string id_pattern = "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}";

/// The pattern of the names that `get_temp_file` gives in a folder as it is written there.
std::string file_pattern(const std::string& prefix) {
  return prefix + "-" + id_pattern + "-P" + std::to_string(GetCurrentProcessId()) + "\\.tmp";
}

bool matches(const std::string& text, const std::string& pattern) {
  return std::regex_match(text, std::regex(pattern));
}

/// What stands behind a beginning that the text must have.
std::string behind(const CString& text, const std::string& beginning) {
  const std::string whole(text.view());
  EXPECT_EQ(whole.substr(0, beginning.size()), beginning);
  return whole.size() < beginning.size() ? "" : whole.substr(beginning.size());
}

/// The text of what an operation throws as a DBException, whose code must be the usual one.
template <typename Operation>
std::string text_thrown(Operation operation) {
  try {
    operation();
  } catch (const DBException& e) {
    EXPECT_EQ(e.error_code, result_code::failed);
    return std::string(e.what().view());
  }
  return "nothing thrown";
}

/// A host's table, which says something else under every number.
class HostMessages : public MessageSource {
 public:
  const char* find(UINT) const noexcept override { return "the host's text"; }
};

TEST(get_temp_path, ends_in_a_separator) {
  const HeldFolders held({"/some/folder", ""});
  EXPECT_EQ(get_temp_path(), "/some/folder/");
}

TEST(get_temp_path, is_a_folder_of_this_machine) { EXPECT_TRUE(fs::is_directory(get_temp_path().GetString())); }

TEST(get_temp_path, no_folder_is_message_1000) {
  const HeldFolders held({"", ""});
  EXPECT_EQ(text_thrown([] { get_temp_path(); }), "Cannot find temporary folder.");
}

TEST(get_temp_path, takes_up_to_260_bytes_with_the_separator) {
  const std::string longest = "/" + std::string(258, 'x');
  {
    const HeldFolders held({longest, ""});
    EXPECT_EQ(std::string(get_temp_path().view()), longest + "/");
  }
  const HeldFolders held({longest + "x", ""});
  EXPECT_EQ(text_thrown([] { get_temp_path(); }), "Cannot find temporary folder.");
}

TEST(get_temp_path, the_hosts_message_source_comes_back) {
  const HostMessages host;
  AfxSetResourceHandle(host.handle());
  const HeldFolders held({"", ""});
  EXPECT_EQ(text_thrown([] { get_temp_path(); }), "Cannot find temporary folder.");
  EXPECT_EQ(AfxGetResourceHandle(), host.handle());
  EXPECT_EQ(text_thrown([] { get_temp_file("/proc/none", nullptr); }), "Cannot create temporary file.");
  EXPECT_EQ(AfxGetResourceHandle(), host.handle());
  AfxSetResourceHandle(nullptr);
}

TEST(get_temp_file, makes_an_empty_file_named_by_prefix_identifier_and_process) {
  const ScratchFolder folder;
  const std::string root = folder.path().string();
  const CString name = get_temp_file(root.c_str(), "run 1");
  EXPECT_TRUE(matches(behind(name, root + "/"), file_pattern("run 1"))) << name.GetString();
  EXPECT_EQ(fs::file_size(name.GetString()), 0U);
}

TEST(get_temp_file, null_stands_for_the_temporary_folder_and_spc) {
  const ScratchFolder folder;
  const std::string root = folder.path().string();
  const HeldFolders held({root, ""});
  const CString name = get_temp_file(nullptr, nullptr);
  EXPECT_TRUE(matches(behind(name, root + "/"), file_pattern("spc"))) << name.GetString();
  EXPECT_TRUE(fs::exists(name.GetString()));
}

TEST(get_temp_file, adds_a_separator_only_where_there_is_none) {
  const ScratchFolder folder;
  const std::string root = folder.path().string();
  for (const char* end : {"/", "\\"}) {
    const CString name = get_temp_file((root + end).c_str(), "");
    const std::string rest = behind(name, root + end);
    EXPECT_TRUE(matches(rest, file_pattern(""))) << rest;
    EXPECT_TRUE(fs::exists(folder.file(rest)));
  }
}

TEST(get_temp_file, an_empty_folder_is_the_current_one) {
  const CString name = get_temp_file("", "spc");
  EXPECT_TRUE(matches(std::string(name.view()), file_pattern("spc"))) << name.GetString();
  EXPECT_TRUE(fs::remove(fs::current_path() / name.GetString()));
}

TEST(get_temp_file, a_prefix_is_text_and_no_format) {
  const ScratchFolder folder;
  const CString name = get_temp_file(folder.path().c_str(), "%s%n");
  EXPECT_TRUE(matches(behind(name, folder.path().string() + "/"), file_pattern("%s%n"))) << name.GetString();
}

TEST(get_temp_file, the_file_is_its_owners_alone) {
  const ScratchFolder folder;
  const CString name = get_temp_file(folder.path().c_str(), nullptr);
  EXPECT_EQ(fs::status(name.GetString()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(get_temp_file, concurrent_callers_never_get_the_same_name) {
  const ScratchFolder folder;
  const std::size_t before = open_handles();
  std::mutex guard;
  std::set<std::string> names;
  std::vector<std::thread> callers;
  for (int caller = 0; caller < 4; ++caller) {
    callers.emplace_back([&] {
      for (int i = 0; i < 50; ++i) {
        const CString name = get_temp_file(folder.path().c_str(), nullptr);
        const std::lock_guard lock(guard);
        names.emplace(name.view());
      }
    });
  }
  for (std::thread& caller : callers)
    caller.join();
  EXPECT_EQ(names.size(), 200U);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 200);
  EXPECT_EQ(open_handles(), before);
}

TEST(get_temp_file, a_file_that_cannot_be_made_is_message_1001) {
  const ScratchFolder folder;
  std::ofstream(folder.file("file")) << "x";
  const std::size_t before = open_handles();
  for (const std::string& place : {folder.file("none"), folder.file("file"), std::string("/proc")}) {
    EXPECT_EQ(text_thrown([&] { get_temp_file(place.c_str(), nullptr); }), "Cannot create temporary file.") << place;
  }
  const std::string long_prefix(256, 'x');
  EXPECT_EQ(text_thrown([&] { get_temp_file(folder.path().c_str(), long_prefix.c_str()); }),
            "Cannot create temporary file.");
  EXPECT_EQ(open_handles(), before);
}

// The name does not fit the longest path that the interface knows; what it gives instead is left open, and an empty
// text cannot be mistaken for a name.
TEST(get_temp_file, a_name_of_260_bytes_is_made_but_not_told_as_is_meant) {
  const ScratchFolder folder;
  const std::size_t tail = std::string("/spc-01234567-0123-0123-0123-0123456789ab-P.tmp").size() +
                           std::to_string(GetCurrentProcessId()).size();
  for (const std::size_t length : {259U, 260U}) {
    const std::string start = folder.path().string() + "/";
    const std::string place = start + std::string(length - tail - start.size(), 'd');
    ASSERT_TRUE(fs::create_directory(place));
    const CString name = get_temp_file(place.c_str(), nullptr);
    EXPECT_EQ(name.GetLength(), length == 259 ? 259 : 0);
    ASSERT_EQ(std::distance(fs::directory_iterator(place), fs::directory_iterator()), 1);
    EXPECT_EQ(fs::directory_iterator(place)->path().string().size(), length);
  }
}

TEST(create_uuid_tmp_file, leaves_nothing_on_disk) {
  const ScratchFolder folder;
  const std::string root = folder.path().string();
  const CString name = create_uuid_tmp_file(root.c_str(), "run");
  EXPECT_TRUE(matches(behind(name, root + "/"), "run" + id_pattern + "\\.TMP")) << name.GetString();
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(create_uuid_tmp_file, adds_a_separator_only_where_there_is_none) {
  EXPECT_TRUE(matches(behind(create_uuid_tmp_file("/a/", "p"), "/a/"), "p" + id_pattern + "\\.TMP"));
  EXPECT_TRUE(matches(behind(create_uuid_tmp_file("C:\\a\\", "p"), "C:\\a\\"), "p" + id_pattern + "\\.TMP"));
  EXPECT_TRUE(matches(behind(create_uuid_tmp_file("C:\\a", "p"), "C:\\a/"), "p" + id_pattern + "\\.TMP"));
}

TEST(create_uuid_tmp_file, an_empty_folder_gives_a_name_in_the_root_as_is_meant) {
  EXPECT_TRUE(matches(behind(create_uuid_tmp_file("", ""), "/"), id_pattern + "\\.TMP"));
  EXPECT_TRUE(matches(behind(create_uuid_tmp_file(nullptr, nullptr), "/"), id_pattern + "\\.TMP"));
}

TEST(create_uuid_tmp_file, every_call_gives_another_name) {
  EXPECT_NE(create_uuid_tmp_file("/a", "p"), create_uuid_tmp_file("/a", "p"));
}

TEST(get_user_data_path, is_made_when_it_is_missing) {
  const ScratchFolder home;
  const HeldFolders held({"/tmp", home.path().string()});
  const CString path = get_user_data_path();
  EXPECT_EQ(std::string(path.view()), home.file(".local/share"));
  EXPECT_TRUE(fs::is_directory(path.GetString()));
}

TEST(get_user_data_path, is_its_temp_where_that_is_a_folder) {
  const ScratchFolder home;
  const HeldFolders held({"/tmp", home.path().string()});
  fs::create_directories(home.path() / ".local" / "share");
  std::ofstream(home.file(".local/share/Temp")) << "a file";
  EXPECT_EQ(std::string(get_user_data_path().view()), home.file(".local/share"));
  fs::remove(home.file(".local/share/Temp"));
  fs::create_directory(home.file(".local/share/Temp"));
  EXPECT_EQ(std::string(get_user_data_path().view()), home.file(".local/share/Temp"));
}

TEST(get_user_data_path, a_user_without_a_home_gets_the_temporary_folder) {
  const ScratchFolder folder;
  std::ofstream(folder.file("file")) << "x";
  for (const std::string& home : {std::string(), folder.file("none"), folder.file("file"), std::string("/proc")}) {
    const HeldFolders held({"/tmp", home});
    EXPECT_EQ(get_user_data_path(), "/tmp/") << home;
  }
  const HeldFolders held({"", ""});
  EXPECT_EQ(text_thrown([] { get_user_data_path(); }), "Cannot find temporary folder.");
}

}  // namespace
