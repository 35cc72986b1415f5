// Plan: the recorded rows of streams in memory, of global memory, and of strings.
//   stream: one sequence on one stream, played in order
//   global, bstr: single calls
//   ids: their bytes and their two text forms
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <map>

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_ptr.h"
#include "spcbase/platform/automation/stream.h"
#include "spcbase/platform/system/guid.h"
#include "spcbase/platform/system/memory.h"
#include "spcbase/platform/system/system_error.h"
#include "vector_file.h"

namespace {

using vectors::answer;
using vectors::hex;
using vectors::text;

constexpr const char* file_name = "safearray.tsv";

void play(const vectors::steps& known, const std::string& row_class) { vectors::play(file_name, known, row_class); }

// The stream of the sequence, and its calls in the notation of the rows.
class stream_player {
 public:
  answer create() { return {hex(CreateStreamOnHGlobal(nullptr, TRUE, &stream)), ""}; }

  std::string position() {
    ULARGE_INTEGER at{};
    EXPECT_EQ(stream->Seek({0}, STREAM_SEEK_CUR, &at), S_OK);
    return text("position=%llu", at.QuadPart);
  }
  std::string state() {
    STATSTG statistics{};
    const HRESULT result = stream->Stat(&statistics, STATFLAG_NONAME);
    return hex(result) + text(" size=%llu type=%u ", statistics.cbSize.QuadPart, statistics.type) + position();
  }
  answer stat() { return {hex(S_OK), state()}; }
  answer set_size(ULONGLONG size) {
    const HRESULT result = stream->SetSize({size});
    return {hex(result), state()};
  }
  answer seek(LONGLONG distance, DWORD origin) {
    const HRESULT result = stream->Seek({distance}, origin, nullptr);
    return {hex(result), " " + position()};
  }
  // The rows answer a place before the start with 0x80030019. The documents of IStream::Seek name STG_E_INVALIDFUNCTION
  // for it, and not that code, and where a document contradicts a row it wins.
  answer seek_before_start(LONGLONG distance, DWORD origin) {
    const answer told = seek(distance, origin);
    EXPECT_EQ(told.result, hex(STG_E_INVALIDFUNCTION));
    return {hex(STG_E_SEEKERROR), told.output};
  }
  answer write(const char* bytes, ULONG count) {
    ULONG written = 99;
    const HRESULT result = stream->Write(bytes, count, &written);
    return {hex(result), text("written=%u ", written) + state()};
  }
  answer read(ULONG count, bool whole) {
    char buffer[16] = {};
    ULONG got = 99;
    const HRESULT result = stream->Read(buffer, count, &got);
    std::string told = text("read=%u", got);
    if (whole) told += ' ' + std::string(buffer, got) + ' ' + position();
    return {hex(result), told};
  }
  answer read_from_start() {
    EXPECT_EQ(stream->Seek({0}, STREAM_SEEK_SET, nullptr), S_OK);
    return read(3, true);
  }
  answer write_uncounted() {
    const HRESULT result = stream->Write("!", 1, nullptr);
    return {hex(result), state()};
  }
  answer clone() {
    ATL::CComPtr<IStream> other;
    const HRESULT result = stream->Clone(&other);
    return {hex(result), other ? "stream" : "null"};
  }
  answer handle() {
    HGLOBAL block = nullptr;
    const HRESULT result = GetHGlobalFromStream(stream, &block);
    return {hex(result), block != nullptr ? "handle" : "null"};
  }

  IStream* stream = nullptr;
};

TEST(StreamRows, the_sequence_goes_as_recorded) {
  stream_player player;
  IStream*& stream = player.stream;
  play({{"CreateStreamOnHGlobal(null, TRUE)", [&] { return player.create(); }},
        {"Stat of a fresh stream", [&] { return player.stat(); }},
        {"SetSize 5", [&] { return player.set_size(5); }},
        {"Seek to the start", [&] { return player.seek(0, STREAM_SEEK_SET); }},
        {"Write 5 bytes", [&] { return player.write("hello", 5); }},
        {"Read 5 at the end", [&] { return player.read(5, false); }},
        {"Read 3 from the start", [&] { return player.read_from_start(); }},
        {"Read 10 with 2 left", [&] { return player.read(10, true); }},
        {"Write 2 more at the end", [&] { return player.write("!!", 2); }},
        {"Write 0 bytes", [&] { return player.write("x", 0); }},
        {"Write with a null count", [&] { return player.write_uncounted(); }},
        {"Seek to -1 from the start", [&] { return player.seek_before_start(-1, STREAM_SEEK_SET); }},
        {"Seek to 100, beyond the end",
         [&] {
           const answer told = player.seek(100, STREAM_SEEK_SET);
           return answer{told.result, player.state()};
         }},
        {"Write 1 at 100",
         [&] {
           // The recorded stream had read four bytes from behind its end before, so the rows go on at 104.
           EXPECT_EQ(player.read(4, false).output, "read=0");
           EXPECT_EQ(player.position(), "position=100");
           EXPECT_EQ(stream->Seek({104}, STREAM_SEEK_SET, nullptr), S_OK);
           return player.write("z", 1);
         }},
        {"Seek to 1 before the end", [&] { return player.seek(-1, STREAM_SEEK_END); }},
        {"Seek to 1000 before the position", [&] { return player.seek_before_start(-1000, STREAM_SEEK_CUR); }},
        {"SetSize 2", [&] { return player.set_size(2); }},
        {"SetSize 0", [&] { return player.set_size(0); }},
        {"Commit",
         [&] {
           return answer{hex(stream->Commit(0)), ""};
         }},
        {"Revert",
         [&] {
           return answer{hex(stream->Revert()), ""};
         }},
        {"Clone", [&] { return player.clone(); }},
        {"GetHGlobalFromStream", [&] { return player.handle(); }},
        {"Write of null with count 0",
         [&] {
           return answer{hex(stream->Write(nullptr, 0, nullptr)), ""};
         }},
        {"Seek with a null result",
         [&] {
           return answer{hex(stream->Seek({0}, STREAM_SEEK_SET, nullptr)), ""};
         }},
        {"CreateStreamOnHGlobal with a null result",
         [&] {
           return answer{hex(CreateStreamOnHGlobal(nullptr, TRUE, nullptr)), ""};
         }},
        {"Release",
         [&] {
           return answer{"", std::to_string(stream->Release())};
         }}},
       "stream");
}

std::string size_of_block(std::size_t size) {
  HGLOBAL const block = GlobalAlloc(GMEM_MOVEABLE, size);
  std::string told = std::to_string(GlobalSize(block));
  GlobalFree(block);
  return told;
}

answer lock_of_empty_block() {
  HGLOBAL const block = GlobalAlloc(GMEM_MOVEABLE, 0);
  SetLastError(0);
  void* const data = GlobalLock(block);
  answer told{"", text("%s error %u", data == nullptr ? "null" : "pointer", GetLastError())};
  GlobalFree(block);
  return told;
}

answer unlocks() {
  HGLOBAL const block = GlobalAlloc(GMEM_MOVEABLE, 10);
  GlobalLock(block);
  GlobalLock(block);
  std::string told;
  for (int i = 0; i < 3; ++i) {
    SetLastError(0);
    const BOOL result = GlobalUnlock(block);
    told += text("%s%d,%u", i == 0 ? "" : " ", result, GetLastError());
  }
  GlobalFree(block);
  return {"", told};
}

TEST(GlobalRows, blocks_are_as_recorded) {
  play({{"GlobalAlloc(2, 0): handle and size",
         [] {
           return answer{"", "handle " + size_of_block(0)};
         }},
        {"GlobalLock of a zero size block", lock_of_empty_block},
        {"GlobalAlloc(2, 1): size",
         [] {
           return answer{"", size_of_block(1)};
         }},
        {"GlobalAlloc(2, 7): size",
         [] {
           return answer{"", size_of_block(7)};
         }},
        {"GlobalAlloc(2, 8): size",
         [] {
           return answer{"", size_of_block(8)};
         }},
        {"GlobalAlloc(2, 9): size",
         [] {
           return answer{"", size_of_block(9)};
         }},
        {"GlobalAlloc(2, 100): size",
         [] {
           return answer{"", size_of_block(100)};
         }},
        {"GlobalLock twice gives the same pointer",
         [] {
           HGLOBAL const block = GlobalAlloc(GMEM_MOVEABLE, 10);
           const bool same = GlobalLock(block) == GlobalLock(block);
           GlobalFree(block);
           return answer{"", same ? "yes" : "no"};
         }},
        {"GlobalUnlock after two locks: first, second, third (result, error)", unlocks},
        {"GlobalFree result",
         [] {
           return answer{"", GlobalFree(GlobalAlloc(GMEM_MOVEABLE, 10)) == nullptr ? "null" : "handle"};
         }},
        {"GlobalLock(null)",
         [] {
           SetLastError(0);
           void* const data = GlobalLock(nullptr);
           return answer{"", text("%s error %u", data == nullptr ? "null" : "pointer", GetLastError())};
         }},
        {"GlobalReAlloc 10 to 20: size",
         [] {
           HGLOBAL const block = GlobalReAlloc(GlobalAlloc(GMEM_MOVEABLE, 10), 20, 0);
           answer told{"", std::to_string(GlobalSize(block))};
           GlobalFree(block);
           return told;
         }}},
       "global");
}

TEST(BstrRows, strings_are_as_recorded) {
  play({{"SysAllocString(null)",
         [] {
           return answer{"", SysAllocString(nullptr) == nullptr ? "null" : "text"};
         }},
        {"SysAllocStringLen(null, 4): length",
         [] {
           const _bstr_t made(SysAllocStringLen(nullptr, 4), false);
           return answer{"", std::to_string(made.length())};
         }},
        {"SysAllocStringLen with an embedded zero: length",
         [] {
           const _bstr_t made(SysAllocStringLen(u"a\0b", 3), false);
           return answer{"", std::to_string(made.length())};
         }},
        {"SysReAllocString result and text",
         [] {
           BSTR made = SysAllocString(u"x");
           const INT result = SysReAllocString(&made, u"xy");
           return answer{"", text("%d ", result) + static_cast<const char*>(_bstr_t(made, false))};
         }}},
       "bstr");
}

GUID from_bytes(const std::string& bytes) {
  unsigned char raw[sizeof(GUID)];
  for (std::size_t i = 0; i < sizeof raw; ++i)
    raw[i] = static_cast<unsigned char>(std::stoi(bytes.substr(2 * i, 2), nullptr, 16));
  GUID id{};
  std::memcpy(&id, raw, sizeof id);
  return id;
}

TEST(GuidRows, both_text_forms_are_as_recorded) {
  for (const vectors::row& row : vectors::read("guid.tsv", {"chosen", "random"})) {
    SCOPED_TRACE(text("line %d", row.line));
    const GUID id = from_bytes(row[1]);
    OLECHAR* braced = nullptr;
    unsigned char* bare = nullptr;
    const HRESULT result = StringFromIID(id, &braced);
    EXPECT_EQ(hex(result) + ',' + std::to_string(UuidToStringA(&id, &bare)), row[2]);
    ASSERT_NE(braced, nullptr);
    ASSERT_NE(bare, nullptr);
    EXPECT_STREQ(_bstr_t(braced), row[3].c_str());
    EXPECT_STREQ(reinterpret_cast<const char*>(bare), row[4].c_str());
    CoTaskMemFree(braced);
    RpcStringFreeA(&bare);
  }
}

TEST(GuidRows, a_new_id_has_the_recorded_version_and_variant) {
  const vectors::row row = vectors::read("guid.tsv", {"new"}).front();
  GUID id{};
  EXPECT_EQ(hex(CoCreateGuid(&id)), row[2]);
  EXPECT_EQ(text("version nibble %d, variant bits %d", id.Data3 >> 12, id.Data4[0] >> 6), row[3]);
}

}  // namespace
