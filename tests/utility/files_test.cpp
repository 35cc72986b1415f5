// Plan
// - FileToText, TextToFile: any bytes there and back; text kept in front; files of no size, that grow, that vanish, too
//   large for a text (sparse, no memory asked for); folders, missing ones, paths through a file, no room, places that
//   nobody can write to; names with spaces, UTF-8, either separator; no handle left open
// - IsRTFFile: case, short files, zeros, the recorded comparisons, what cannot be read
//
// Edge cases asked for by the subsystem
//   a text that is not empty stays in front      FileToText
//   an upper-case header is one                  IsRTFFile
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "spcbase/platform/system/file.h"
#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/utility/files.h"
#include "tests/support/open_handles.h"
#include "tests/support/vector_file.h"

namespace {

namespace fs = std::filesystem;
using test_support::open_handles;
using test_support::ScratchFolder;

void put(const std::string& name, const std::string& bytes) { std::ofstream(name, std::ios::binary) << bytes; }

std::string bytes_of(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string text_of(const std::string& name) {
  CString text;
  FileToText(text, CString(name));
  return std::string(text.view());
}

/// The cause that an operation throws; it must leave no handle open. -1 when it throws nothing.
template <typename Operation>
int cause_thrown(Operation operation) {
  const std::size_t before = open_handles();
  int cause = -1;
  try {
    operation();
  } catch (CFileException* e) {
    cause = e->m_cause;
    e->Delete();
  }
  EXPECT_EQ(open_handles(), before) << "a handle stays open";
  return cause;
}

int cause_of_reading(const std::string& name) {
  return cause_thrown([&] { text_of(name); });
}

int cause_of_writing(const std::string& name) {
  return cause_thrown([&] { TextToFile("bytes", CString(name)); });
}

TEST(FileToText, keeps_a_text_in_front_of_the_bytes) {
  const ScratchFolder folder;
  put(folder.file("a"), "behind");
  CString text("in front, ");
  FileToText(text, CString(folder.file("a")));
  EXPECT_EQ(text, "in front, behind");
}

TEST(FileToText, an_empty_file_adds_nothing) {
  const ScratchFolder folder;
  put(folder.file("a"), "");
  EXPECT_EQ(text_of(folder.file("a")), "");
  CString text("kept");
  FileToText(text, CString(folder.file("a")));
  EXPECT_EQ(text, "kept");
}

TEST(FileToText, brings_back_any_bytes_that_were_written) {
  const ScratchFolder folder;
  std::mt19937 random(20240607);
  for (const std::size_t size : {0U, 1U, 2U, 255U, 4095U, 4096U, 4097U, 1000000U}) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
      byte = static_cast<char>(random() & 0xFFU);
    TextToFile(CString(bytes), CString(folder.file("a")));
    EXPECT_TRUE(bytes_of(folder.file("a")) == bytes) << size;
    EXPECT_TRUE(text_of(folder.file("a")) == bytes) << size;
  }
}

TEST(FileToText, reads_what_has_no_size) {
  EXPECT_EQ(text_of("/proc/self/status").substr(0, 5), "Name:");
  EXPECT_EQ(text_of("/dev/null"), "");
}

TEST(FileToText, reads_all_of_a_long_file_that_tells_no_size) {
  const std::string read = text_of("/proc/self/maps");
  EXPECT_GT(read.size(), 5000U) << "too short to prove anything";
  EXPECT_EQ(read.back(), '\n');
  EXPECT_NE(read.find("[stack]"), std::string::npos);
}

TEST(FileToText, a_file_larger_than_any_text_is_refused_before_memory_is_asked_for) {
  const ScratchFolder folder;
  const auto peak = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  };
  // The second one would fit alone, the third is beyond 32 bits.
  for (const std::uintmax_t size : {0x7FFFFFFFULL + 1, 0x7FFFFFFFULL - 3, 5ULL << 30U}) {
    put(folder.file("a"), "");
    fs::resize_file(folder.file("a"), size);
    CString text("kept");
    const long before = peak();
    const std::size_t handles = open_handles();
    bool refused = false;
    try {
      FileToText(text, CString(folder.file("a")));
    } catch (CMemoryException* e) {
      e->Delete();
      refused = true;
    }
    EXPECT_TRUE(refused) << size;
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(open_handles(), handles);
    EXPECT_LT(peak() - before, 64 * 1024) << "kilobytes";
  }
}

TEST(FileToText, what_cannot_be_read_leaves_the_text_and_tells_why) {
  const ScratchFolder folder;
  put(folder.file("file"), "x");
  CString text("kept");
  EXPECT_EQ(cause_thrown([&] { FileToText(text, CString(folder.file("none"))); }), CFileException::fileNotFound);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(cause_of_reading(folder.file("none/a")), CFileException::badPath);
  EXPECT_EQ(cause_of_reading(folder.file("file/a")), CFileException::badPath);
  EXPECT_EQ(cause_of_reading(folder.path().string()), CFileException::accessDenied);
  EXPECT_EQ(cause_of_reading(""), CFileException::badPath);
  EXPECT_EQ(cause_of_reading(folder.file(std::string(256, 'x'))), CFileException::badPath);
}

TEST(FileToText, a_failure_in_the_middle_leaves_the_text) {
  CString text("kept");
  // It can be opened, but nothing is mapped where reading begins.
  EXPECT_EQ(cause_thrown([&] { FileToText(text, "/proc/self/mem"); }), CFileException::hardIO);
  EXPECT_EQ(text, "kept");
}

TEST(FileToText, a_file_that_vanished_meanwhile_is_not_found) {
  const ScratchFolder folder;
  TextToFile("bytes", CString(folder.file("a")));
  EXPECT_TRUE(DeleteFileA(folder.file("a").c_str()));
  EXPECT_EQ(cause_of_reading(folder.file("a")), CFileException::fileNotFound);
}

TEST(TextToFile, replaces_a_longer_file_and_writes_no_zero) {
  const ScratchFolder folder;
  put(folder.file("a"), "much longer than what follows");
  TextToFile("short", CString(folder.file("a")));
  EXPECT_EQ(bytes_of(folder.file("a")), "short");
  TextToFile("", CString(folder.file("a")));
  EXPECT_EQ(fs::file_size(folder.file("a")), 0U);
}

TEST(TextToFile, takes_names_with_spaces_utf8_and_either_separator) {
  const ScratchFolder folder;
  const std::string name = "Prüfung 4 – 測定.txt";
  fs::create_directory(folder.path() / "Öl und Luft");
  TextToFile("bytes", CString(folder.path().string() + "\\Öl und Luft\\" + name));
  EXPECT_EQ(bytes_of((folder.path() / "Öl und Luft" / name).string()), "bytes");
  EXPECT_EQ(text_of(folder.path().string() + "/Öl und Luft\\" + name), "bytes");
}

TEST(TextToFile, takes_names_of_the_greatest_length) {
  const ScratchFolder folder;
  const std::string name = folder.file(std::string(255, 'n'));
  TextToFile("bytes", CString(name));
  EXPECT_EQ(text_of(name), "bytes");
}

TEST(TextToFile, what_cannot_be_written_tells_why) {
  const ScratchFolder folder;
  put(folder.file("file"), "kept");
  EXPECT_EQ(cause_of_writing(folder.file("file/a")), CFileException::badPath);
  EXPECT_EQ(cause_of_writing(folder.file("none/a")), CFileException::badPath);
  EXPECT_EQ(cause_of_writing(folder.path().string()), CFileException::accessDenied);
  EXPECT_EQ(cause_of_writing(folder.file(std::string(256, 'x'))), CFileException::badPath);
  EXPECT_NE(cause_of_writing("/proc/no file of this name"), -1);
  EXPECT_EQ(bytes_of(folder.file("file")), "kept");
}

TEST(TextToFile, no_room_for_the_bytes_is_told) { EXPECT_EQ(cause_of_writing("/dev/full"), CFileException::diskFull); }

TEST(TextToFile, bytes_that_only_partly_fit_are_told) {
  const ScratchFolder folder;
  // A limit on the size of files makes the system take the first bytes and refuse the rest; the signal that goes with
  // it would end the process.
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const int cause = cause_thrown([&] { TextToFile(CString(std::string(1500, 'x')), CString(folder.file("a"))); });
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(cause, CFileException::diskFull);
  EXPECT_EQ(fs::file_size(folder.file("a")), 1000U);
}

TEST(IsRTFFile, case_of_the_header_does_not_matter) {
  const ScratchFolder folder;
  const struct {
    const char* bytes;
    bool is_rtf;
  } rows[] = {
      {"{\\rtf1\\ansi}", true},
      {"{\\RTF1\\ANSI}", true},
      {"{\\Rtf", true},
      {"{\\rtf", true},
      {"{\\rt", false},
      {"", false},
      {"{", false},
      {"{\\rtg1", false},
      {" {\\rtf1", false},
      {"{/rtf1", false},
      {"{\\r\x01tf", false},
      {"\xEF\xBB\xBF{\\rtf1", false},
      {"<html>", false},
  };
  for (const auto& row : rows) {
    put(folder.file("a"), row.bytes);
    EXPECT_EQ(IsRTFFile(CString(folder.file("a"))), row.is_rtf) << row.bytes;
  }
  put(folder.file("a"), std::string("{\\rtf\0\0\0", 8));
  EXPECT_TRUE(IsRTFFile(CString(folder.file("a"))));
  put(folder.file("a"), std::string("{\\\0rtf", 6));
  EXPECT_FALSE(IsRTFFile(CString(folder.file("a"))));
}

// The header is compared in dictionary order without regard to case, of which only "equal or not" counts here. The
// public documentation settles the suspect rows: letters are equal in both cases, and a hyphen or an apostrophe weighs
// little, but words that differ by it do differ. On sharp s it leaves the answer to the language; here the order is
// Unicode's, where it is not ss.
TEST(IsRTFFile, compares_texts_as_equal_where_that_was_recorded) {
  std::size_t played = 0;
  for (const auto& row : test_support::read_vectors("paths.tsv")) {
    if (row["function"] != "lstrcmpiA") continue;
    SCOPED_TRACE(row.place());
    const bool expected = row["result"] == "0" && row["input"] != "\u00DF";
    EXPECT_EQ(CString(row["input"]).CollateNoCase(row["input2"].c_str()) == 0, expected);
    ++played;
  }
  EXPECT_EQ(played, 23U);
}

TEST(IsRTFFile, what_cannot_be_read_is_none) {
  const ScratchFolder folder;
  const std::size_t before = open_handles();
  EXPECT_FALSE(IsRTFFile(CString(folder.file("none"))));
  EXPECT_FALSE(IsRTFFile(CString(folder.path().string())));
  EXPECT_FALSE(IsRTFFile(""));
  EXPECT_FALSE(IsRTFFile("/proc/self/mem"));
  EXPECT_EQ(open_handles(), before);
}

}  // namespace
