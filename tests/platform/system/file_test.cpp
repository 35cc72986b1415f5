// Plan
// - CreateFileA: each disposition on a file that is there and on one that is not; the access it makes files with; both
//   separators; every kind of refusal with its number, none of which leaves a handle open
// - CloseHandle: what is no handle is error 6
// - DeleteFileA: a file, a missing one, a folder, a path through a file
// - CFile: reading to the end, in pieces and of a device; writing, emptying, leaving as it is; no room; a file that is
//   taken away while open; using a closed file; closing by itself
// - CFileException: cause by error number, sentences, thrown by pointer
#include "spcbase/platform/system/file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "spcbase/platform/system/system_error.h"
#include "spcbase/testkit/scratch_folder.h"
#include "tests/support/open_handles.h"

namespace {

namespace fs = std::filesystem;
using test_support::open_handles;
using test_support::ScratchFolder;

void put(const std::string& name, const std::string& bytes) { std::ofstream(name, std::ios::binary) << bytes; }

std::string bytes_of(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

HANDLE open_for_writing(const std::string& name, DWORD disposition, DWORD share = 0) {
  return CreateFileA(name.c_str(), GENERIC_WRITE, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// Opens, closes again, and gives the last error of a refusal, 0 when there was none.
DWORD error_of_opening(const char* name, DWORD access, DWORD disposition) {
  const std::size_t before = open_handles();
  SetLastError(0);
  const HANDLE file = CreateFileA(name, access, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  const DWORD error = file == INVALID_HANDLE_VALUE ? GetLastError() : 0;
  if (file != INVALID_HANDLE_VALUE) {
    EXPECT_TRUE(CloseHandle(file));
  }
  EXPECT_EQ(open_handles(), before) << "a handle stays open";
  return error;
}

DWORD error_of_opening(const std::string& name, DWORD access, DWORD disposition) {
  return error_of_opening(name.c_str(), access, disposition);
}

/// What an operation throws, as its cause; the exception is released. -1 when nothing is thrown.
template <typename Operation>
int cause_thrown(Operation operation) {
  try {
    operation();
  } catch (CFileException* e) {
    const int cause = e->m_cause;
    e->Delete();
    return cause;
  }
  return -1;
}

TEST(CreateFileA, makes_a_new_file_and_refuses_when_there_is_one) {
  const ScratchFolder folder;
  const std::string name = folder.file("new");
  EXPECT_EQ(error_of_opening(name, GENERIC_WRITE, CREATE_NEW), 0U);
  EXPECT_TRUE(fs::exists(name));
  put(name, "kept");
  EXPECT_EQ(error_of_opening(name, GENERIC_WRITE, CREATE_NEW), ERROR_FILE_EXISTS);
  EXPECT_EQ(bytes_of(name), "kept");
}

TEST(CreateFileA, does_not_follow_a_link_when_the_file_must_be_new) {
  const ScratchFolder folder;
  fs::create_symlink(folder.file("target"), folder.file("link"));
  EXPECT_EQ(error_of_opening(folder.file("link"), GENERIC_WRITE, CREATE_NEW), ERROR_FILE_EXISTS);
  EXPECT_FALSE(fs::exists(folder.file("target")));
}

TEST(CreateFileA, create_always_makes_the_file_or_empties_it) {
  const ScratchFolder folder;
  const std::string name = folder.file("a");
  EXPECT_EQ(error_of_opening(name, GENERIC_WRITE, CREATE_ALWAYS), 0U);
  put(name, "old");
  EXPECT_EQ(error_of_opening(name, GENERIC_WRITE, CREATE_ALWAYS), 0U);
  EXPECT_EQ(bytes_of(name), "");
}

TEST(CreateFileA, open_existing_and_open_always_leave_the_bytes_alone) {
  const ScratchFolder folder;
  const std::string name = folder.file("a");
  EXPECT_EQ(error_of_opening(name, GENERIC_READ, OPEN_EXISTING), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(error_of_opening(name, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS), 0U);
  put(name, "kept");
  EXPECT_EQ(error_of_opening(name, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS), 0U);
  EXPECT_EQ(error_of_opening(name, GENERIC_READ, OPEN_EXISTING), 0U);
  EXPECT_EQ(bytes_of(name), "kept");
}

TEST(CreateFileA, truncate_existing_empties_and_asks_for_writing) {
  const ScratchFolder folder;
  const std::string name = folder.file("a");
  EXPECT_EQ(error_of_opening(name, GENERIC_WRITE, TRUNCATE_EXISTING), ERROR_FILE_NOT_FOUND);
  put(name, "old");
  EXPECT_EQ(error_of_opening(name, GENERIC_READ, TRUNCATE_EXISTING), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(bytes_of(name), "old");
  EXPECT_EQ(error_of_opening(name, GENERIC_WRITE, TRUNCATE_EXISTING), 0U);
  EXPECT_EQ(bytes_of(name), "");
}

TEST(CreateFileA, a_disposition_that_means_nothing_is_refused) {
  const ScratchFolder folder;
  for (const DWORD disposition : {0U, 6U}) {
    EXPECT_EQ(error_of_opening(folder.file("a"), GENERIC_WRITE, disposition), ERROR_INVALID_PARAMETER);
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(CreateFileA, a_new_file_shared_with_nobody_is_its_owners_alone) {
  const ScratchFolder folder;
  const mode_t before = ::umask(0);
  const HANDLE own = open_for_writing(folder.file("own"), CREATE_NEW);
  const HANDLE shared = open_for_writing(folder.file("shared"), CREATE_NEW, FILE_SHARE_READ);
  ::umask(before);
  EXPECT_TRUE(CloseHandle(own));
  EXPECT_TRUE(CloseHandle(shared));
  EXPECT_EQ(fs::status(folder.file("own")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(fs::status(folder.file("shared")).permissions(), fs::perms(0666));
}

TEST(CreateFileA, both_separators_part_a_name) {
  const ScratchFolder folder;
  fs::create_directory(folder.path() / "sub");
  EXPECT_EQ(error_of_opening(folder.path().string() + "\\sub\\a.txt", GENERIC_WRITE, CREATE_NEW), 0U);
  EXPECT_TRUE(fs::exists(folder.path() / "sub" / "a.txt"));
  EXPECT_EQ(error_of_opening(folder.path().string() + "/sub\\a.txt", GENERIC_READ, OPEN_EXISTING), 0U);
}

TEST(CreateFileA, a_folder_is_refused) {
  const ScratchFolder folder;
  EXPECT_EQ(error_of_opening(folder.path().string(), GENERIC_READ, OPEN_EXISTING), ERROR_ACCESS_DENIED);
  EXPECT_EQ(error_of_opening(folder.path().string(), GENERIC_WRITE, CREATE_ALWAYS), ERROR_ACCESS_DENIED);
}

TEST(CreateFileA, a_missing_folder_is_told_from_a_missing_file) {
  const ScratchFolder folder;
  put(folder.file("file"), "");
  EXPECT_EQ(error_of_opening(folder.file("none"), GENERIC_READ, OPEN_EXISTING), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(error_of_opening(folder.file("none/a"), GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(error_of_opening(folder.file("file/a"), GENERIC_WRITE, CREATE_ALWAYS), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(error_of_opening("no file of this name", GENERIC_READ, OPEN_EXISTING), ERROR_FILE_NOT_FOUND);
}

TEST(CreateFileA, no_name_is_no_path) {
  EXPECT_EQ(error_of_opening(static_cast<const char*>(nullptr), GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(error_of_opening("", GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
}

TEST(CreateFileA, a_name_that_is_too_long_is_refused) {
  const ScratchFolder folder;
  EXPECT_EQ(error_of_opening(folder.file(std::string(256, 'x')), GENERIC_WRITE, CREATE_NEW),
            ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(error_of_opening(std::string(100000, 'x'), GENERIC_WRITE, CREATE_NEW), ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(error_of_opening(std::string(PATH_MAX, '/'), GENERIC_READ, OPEN_EXISTING), ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(error_of_opening(std::string(PATH_MAX - 1, '/'), GENERIC_READ, OPEN_EXISTING), ERROR_ACCESS_DENIED);
}

TEST(CreateFileA, links_in_a_circle_are_no_path) {
  const ScratchFolder folder;
  fs::create_symlink(folder.file("b"), folder.file("a"));
  fs::create_symlink(folder.file("a"), folder.file("b"));
  EXPECT_EQ(error_of_opening(folder.file("a"), GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
}

TEST(CreateFileA, a_handle_does_not_pass_to_a_program_that_is_started) {
  const ScratchFolder folder;
  const int before = ::open("/dev/null", O_RDONLY);
  ::close(before);
  const HANDLE file = open_for_writing(folder.file("a"), CREATE_NEW);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  // The lowest free descriptor is the one that the call got.
  EXPECT_EQ(::fcntl(before, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  EXPECT_TRUE(CloseHandle(file));
}

TEST(CloseHandle, what_is_no_handle_is_refused) {
  const ScratchFolder folder;
  const HANDLE file = open_for_writing(folder.file("a"), CREATE_NEW);
  EXPECT_TRUE(CloseHandle(file));
  for (const HANDLE bad : {file, INVALID_HANDLE_VALUE, static_cast<HANDLE>(nullptr)}) {
    SetLastError(0);
    EXPECT_FALSE(CloseHandle(bad));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  }
}

TEST(DeleteFileA, takes_a_file_away_by_either_separator) {
  const ScratchFolder folder;
  put(folder.file("a"), "");
  put(folder.file("b"), "");
  EXPECT_TRUE(DeleteFileA(folder.file("a").c_str()));
  EXPECT_TRUE(DeleteFileA((folder.path().string() + "\\b").c_str()));
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(DeleteFileA, what_cannot_be_taken_away_is_told_by_the_last_error) {
  const ScratchFolder folder;
  put(folder.file("file"), "");
  fs::create_directory(folder.path() / "sub");
  const auto error_of = [](const char* name) {
    SetLastError(0);
    EXPECT_FALSE(DeleteFileA(name));
    return GetLastError();
  };
  EXPECT_EQ(error_of(folder.file("none").c_str()), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(error_of(folder.file("none/a").c_str()), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(error_of(folder.file("file/a").c_str()), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(error_of(folder.file("sub").c_str()), ERROR_ACCESS_DENIED);
  EXPECT_EQ(error_of(nullptr), ERROR_PATH_NOT_FOUND);
  EXPECT_TRUE(fs::exists(folder.file("sub")));
}

TEST(CFile, reads_to_the_end_in_pieces) {
  const ScratchFolder folder;
  put(folder.file("a"), std::string("ab\0cd", 5));
  CFile file(folder.file("a").c_str(), CFile::modeRead);
  char buffer[8] = "zzzzzzz";
  EXPECT_EQ(file.GetLength(), 5U);
  EXPECT_EQ(file.Read(buffer, 3), 3U);
  EXPECT_EQ(file.Read(buffer + 3, 5), 2U);
  EXPECT_EQ(std::string(buffer, 6), std::string("ab\0cdz", 6));
  EXPECT_EQ(file.Read(buffer, 8), 0U);
  EXPECT_EQ(file.Read(nullptr, 0), 0U);
}

TEST(CFile, reads_what_has_no_length) {
  CFile file("/proc/self/status", CFile::modeRead);
  char buffer[5];
  EXPECT_EQ(file.GetLength(), 0U);
  EXPECT_EQ(file.Read(buffer, 5), 5U);
  EXPECT_EQ(std::string(buffer, 5), "Name:");
}

TEST(CFile, makes_empties_or_keeps_by_its_flags) {
  const ScratchFolder folder;
  const std::string name = folder.file("a");
  EXPECT_EQ(cause_thrown([&] { CFile(name.c_str(), CFile::modeWrite); }), CFileException::fileNotFound);
  CFile(name.c_str(), CFile::modeCreate | CFile::modeWrite).Write("first", 5);
  EXPECT_EQ(bytes_of(name), "first");
  CFile(name.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite).Write("F", 1);
  EXPECT_EQ(bytes_of(name), "First");
  CFile(name.c_str(), CFile::modeCreate | CFile::modeWrite).Write("2", 1);
  EXPECT_EQ(bytes_of(name), "2");
}

TEST(CFile, reading_needs_a_file_opened_for_it) {
  const ScratchFolder folder;
  CFile file(folder.file("a").c_str(), CFile::modeCreate | CFile::modeWrite);
  char c;
  EXPECT_EQ(cause_thrown([&] { file.Read(&c, 1); }), CFileException::invalidFile);
}

TEST(CFile, no_room_for_the_bytes_is_told) {
  CFile file("/dev/full", CFile::modeWrite);
  EXPECT_EQ(cause_thrown([&] { file.Write("a", 1); }), CFileException::diskFull);
}

TEST(CFile, a_file_taken_away_while_open_stays_readable) {
  const ScratchFolder folder;
  put(folder.file("a"), "here");
  CFile file(folder.file("a").c_str(), CFile::modeRead);
  EXPECT_TRUE(DeleteFileA(folder.file("a").c_str()));
  char buffer[4];
  EXPECT_EQ(file.Read(buffer, 4), 4U);
}

TEST(CFile, a_file_cut_while_open_ends_early) {
  const ScratchFolder folder;
  put(folder.file("a"), "here");
  CFile file(folder.file("a").c_str(), CFile::modeRead);
  EXPECT_EQ(file.GetLength(), 4U);
  fs::resize_file(folder.file("a"), 1);
  char buffer[4];
  EXPECT_EQ(file.Read(buffer, 4), 1U);
}

TEST(CFile, open_tells_the_reason_and_throws_nothing) {
  const ScratchFolder folder;
  CFile file;
  CFileException reason;
  EXPECT_FALSE(file.Open(folder.file("none/a").c_str(), CFile::modeRead, &reason));
  EXPECT_EQ(reason.m_cause, CFileException::badPath);
  EXPECT_EQ(reason.m_lOsError, static_cast<LONG>(ERROR_PATH_NOT_FOUND));
  EXPECT_EQ(reason.m_strFileName, folder.file("none/a"));
  EXPECT_FALSE(file.Open(folder.file("none").c_str(), CFile::modeRead));
  EXPECT_EQ(file.m_hFile, CFile::hFileNull);
}

TEST(CFile, opening_again_closes_what_was_open) {
  const ScratchFolder folder;
  const std::size_t before = open_handles();
  {
    CFile file(folder.file("a").c_str(), CFile::modeCreate | CFile::modeWrite);
    EXPECT_TRUE(file.Open(folder.file("b").c_str(), CFile::modeCreate | CFile::modeWrite));
    EXPECT_EQ(open_handles(), before + 1);
    file.Write("b", 1);
  }
  EXPECT_EQ(bytes_of(folder.file("b")), "b");
  EXPECT_EQ(open_handles(), before);
}

TEST(CFile, a_closed_file_refuses_everything_but_closing) {
  const ScratchFolder folder;
  CFile file(folder.file("a").c_str(), CFile::modeCreate | CFile::modeReadWrite);
  file.Close();
  char c = 'a';
  EXPECT_EQ(cause_thrown([&] { file.Read(&c, 1); }), CFileException::invalidFile);
  EXPECT_EQ(cause_thrown([&] { file.Write(&c, 1); }), CFileException::invalidFile);
  EXPECT_EQ(cause_thrown([&] { file.GetLength(); }), CFileException::invalidFile);
  EXPECT_EQ(cause_thrown([&] { file.Close(); }), -1);
}

TEST(CFile, a_handle_that_somebody_else_closed_is_told_at_the_close) {
  const ScratchFolder folder;
  CFile file(folder.file("a").c_str(), CFile::modeCreate | CFile::modeWrite);
  EXPECT_TRUE(CloseHandle(file.m_hFile));
  EXPECT_EQ(cause_thrown([&] { file.Close(); }), CFileException::invalidFile);
  EXPECT_EQ(file.m_hFile, CFile::hFileNull);
}

TEST(CFile, a_failed_construction_leaves_nothing_open) {
  const ScratchFolder folder;
  const std::size_t before = open_handles();
  EXPECT_EQ(cause_thrown([&] { CFile(folder.path().c_str(), CFile::modeRead); }), CFileException::accessDenied);
  EXPECT_EQ(cause_thrown([] { CFile(nullptr, CFile::modeRead); }), CFileException::badPath);
  EXPECT_EQ(open_handles(), before);
}

TEST(CFileException, every_error_number_has_its_cause) {
  const struct {
    DWORD error;
    int cause;
  } rows[] = {
      {ERROR_SUCCESS, CFileException::none},
      {ERROR_FILE_NOT_FOUND, CFileException::fileNotFound},
      {ERROR_PATH_NOT_FOUND, CFileException::badPath},
      {ERROR_TOO_MANY_OPEN_FILES, CFileException::tooManyOpenFiles},
      {ERROR_ACCESS_DENIED, CFileException::accessDenied},
      {ERROR_INVALID_HANDLE, CFileException::invalidFile},
      {ERROR_WRITE_PROTECT, CFileException::accessDenied},
      {ERROR_SHARING_VIOLATION, CFileException::sharingViolation},
      {ERROR_FILE_EXISTS, CFileException::accessDenied},
      {ERROR_DISK_FULL, CFileException::diskFull},
      {ERROR_FILENAME_EXCED_RANGE, CFileException::badPath},
      {ERROR_IO_DEVICE, CFileException::hardIO},
      {ERROR_GEN_FAILURE, CFileException::genericException},
      {12345, CFileException::genericException},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(CFileException::OsErrorToException(static_cast<LONG>(row.error)), row.cause) << row.error;
  }
}

TEST(CFileException, the_sentence_names_the_file) {
  const auto sentence = [](int cause, const char* name) {
    char buffer[100];
    EXPECT_TRUE(CFileException(cause, -1, name).GetErrorMessage(buffer, sizeof buffer));
    return std::string(buffer);
  };
  EXPECT_EQ(sentence(CFileException::fileNotFound, "a.txt"), "a.txt was not found.");
  EXPECT_EQ(sentence(CFileException::accessDenied, "a.txt"), "Access to a.txt was denied.");
  EXPECT_EQ(sentence(CFileException::diskFull, nullptr), "Disk full while accessing an unnamed file.");
  EXPECT_EQ(sentence(CFileException::endOfFile, "a"), "Attempted to access a past its end.");
  EXPECT_EQ(sentence(99, "a"), "An unknown error occurred while accessing a.");
  EXPECT_EQ(sentence(-1, "a"), "An unknown error occurred while accessing a.");
}

TEST(CFileException, is_caught_as_the_base_with_number_and_name) {
  try {
    CFileException::ThrowOsError(static_cast<LONG>(ERROR_DISK_FULL), "a.txt");
  } catch (CException* e) {
    const auto* file_exception = dynamic_cast<CFileException*>(e);
    ASSERT_NE(file_exception, nullptr);
    EXPECT_EQ(file_exception->m_cause, CFileException::diskFull);
    EXPECT_EQ(file_exception->m_lOsError, 112);
    EXPECT_EQ(file_exception->m_strFileName, "a.txt");
    e->Delete();
  }
}

}  // namespace
