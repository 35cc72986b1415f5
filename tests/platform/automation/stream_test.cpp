// Plan, beside the recorded rows
//   a stream on the caller's block; who frees it; growth is seen by clones; gaps are zero; limits; copying; interfaces
#include "spcbase/platform/automation/stream.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

#include "spcbase/platform/automation/com_ptr.h"

namespace {

using stream_pointer = ATL::CComPtr<IStream>;

stream_pointer new_stream() {
  stream_pointer stream;
  EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
  return stream;
}

void write(const stream_pointer& stream, const std::string& bytes) {
  ULONG written = 0;
  ASSERT_EQ(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written), S_OK);
  ASSERT_EQ(written, bytes.size());
}

std::string read_from(const stream_pointer& stream, LONGLONG position) {
  EXPECT_EQ(stream->Seek({position}, STREAM_SEEK_SET, nullptr), S_OK);
  std::string bytes(100, '?');
  ULONG got = 0;
  EXPECT_EQ(stream->Read(bytes.data(), 100, &got), S_OK);
  return bytes.substr(0, got);
}

TEST(Stream, reads_the_block_it_is_given_and_leaves_it_to_its_owner) {
  HGLOBAL const block = GlobalAlloc(GMEM_MOVEABLE, 3);
  std::memcpy(GlobalLock(block), "abc", 3);
  GlobalUnlock(block);
  {
    stream_pointer stream;
    ASSERT_EQ(CreateStreamOnHGlobal(block, FALSE, &stream), S_OK);
    EXPECT_EQ(read_from(stream, 0), "abc");
    HGLOBAL under = nullptr;
    EXPECT_EQ(GetHGlobalFromStream(stream, &under), S_OK);
    EXPECT_EQ(under, block);
  }
  EXPECT_EQ(GlobalSize(block), 3U);
  GlobalFree(block);
}

TEST(Stream, clones_share_the_bytes_and_have_positions_of_their_own) {
  stream_pointer first = new_stream();
  write(first, "hello");
  stream_pointer second;
  ASSERT_EQ(first->Clone(&second), S_OK);
  write(second, " world");
  EXPECT_EQ(read_from(first, 0), "hello world");
  first.Release();
  EXPECT_EQ(read_from(second, 6), "world");
}

TEST(Stream, a_gap_is_zero) {
  const stream_pointer stream = new_stream();
  write(stream, "a");
  ASSERT_EQ(stream->Seek({3}, STREAM_SEEK_SET, nullptr), S_OK);
  write(stream, "b");
  EXPECT_EQ(read_from(stream, 0), std::string("a\0\0b", 4));
  ASSERT_EQ(stream->SetSize({1}), S_OK);
  ASSERT_EQ(stream->SetSize({3}), S_OK);
  EXPECT_EQ(read_from(stream, 0), std::string("a\0\0", 3));
}

TEST(Stream, sizes_beyond_32_bits_are_refused_and_change_nothing) {
  const stream_pointer stream = new_stream();
  write(stream, "abc");
  EXPECT_EQ(stream->SetSize({0x100000000ULL}), STG_E_MEDIUMFULL);
  ASSERT_EQ(stream->Seek({std::numeric_limits<LONGLONG>::max()}, STREAM_SEEK_SET, nullptr), S_OK);
  EXPECT_EQ(stream->Seek({1}, STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
  ULONG written = 99;
  EXPECT_EQ(stream->Write("x", 1, &written), STG_E_MEDIUMFULL);
  EXPECT_EQ(written, 0U);
  EXPECT_EQ(read_from(stream, 0), "abc");
}

TEST(Stream, a_place_before_the_start_is_an_invalid_function_and_the_position_stays) {
  const stream_pointer stream = new_stream();
  write(stream, "abc");
  EXPECT_EQ(stream->Seek({-1}, STREAM_SEEK_SET, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(stream->Seek({-4}, STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(stream->Seek({-4}, STREAM_SEEK_END, nullptr), STG_E_INVALIDFUNCTION);
  ULARGE_INTEGER position{};
  EXPECT_EQ(stream->Seek({0}, STREAM_SEEK_CUR, &position), S_OK);
  EXPECT_EQ(position.QuadPart, 3U);
}

TEST(Stream, reports_a_block_that_cannot_grow) {
  HGLOBAL const block = GlobalAlloc(GMEM_MOVEABLE, 3);
  {
    stream_pointer stream;
    ASSERT_EQ(CreateStreamOnHGlobal(block, FALSE, &stream), S_OK);
    EXPECT_EQ(stream->SetSize({0xFFFFFFFFFFULL}), STG_E_MEDIUMFULL);
    STATSTG statistics{};
    ASSERT_EQ(stream->Stat(&statistics, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(statistics.cbSize.QuadPart, 3U);
  }
  GlobalFree(block);
}

TEST(Stream, bad_arguments_are_refused) {
  const stream_pointer stream = new_stream();
  ULONG count = 0;
  EXPECT_EQ(stream->Read(nullptr, 1, &count), STG_E_INVALIDPOINTER);
  EXPECT_EQ(stream->Write(nullptr, 1, &count), STG_E_INVALIDPOINTER);
  EXPECT_EQ(stream->Seek({0}, 7, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(stream->Stat(nullptr, 0), STG_E_INVALIDPOINTER);
  EXPECT_EQ(stream->Clone(nullptr), STG_E_INVALIDPOINTER);
  EXPECT_EQ(stream->CopyTo(nullptr, {1}, nullptr, nullptr), STG_E_INVALIDPOINTER);
  EXPECT_EQ(stream->LockRegion({0}, {1}, 0), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(stream->UnlockRegion({0}, {1}, 0), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(GetHGlobalFromStream(stream, nullptr), E_INVALIDARG);
  HGLOBAL block = nullptr;
  EXPECT_EQ(GetHGlobalFromStream(nullptr, &block), E_INVALIDARG);
}

TEST(Stream, copies_what_is_left_to_another_stream) {
  const stream_pointer source = new_stream();
  const stream_pointer target = new_stream();
  const std::string bytes(10000, 'x');
  write(source, bytes);
  ASSERT_EQ(source->Seek({1}, STREAM_SEEK_SET, nullptr), S_OK);
  ULARGE_INTEGER read{};
  ULARGE_INTEGER written{};
  ASSERT_EQ(source->CopyTo(target, {std::numeric_limits<ULONGLONG>::max()}, &read, &written), S_OK);
  EXPECT_EQ(read.QuadPart, 9999U);
  EXPECT_EQ(written.QuadPart, 9999U);
  STATSTG statistics{};
  ASSERT_EQ(target->Stat(&statistics, STATFLAG_DEFAULT), S_OK);
  EXPECT_EQ(statistics.cbSize.QuadPart, 9999U);
}

TEST(Stream, copying_onto_itself_ends) {
  const stream_pointer stream = new_stream();
  write(stream, "abcdef");
  stream_pointer clone;
  ASSERT_EQ(stream->Clone(&clone), S_OK);
  ASSERT_EQ(stream->Seek({0}, STREAM_SEEK_SET, nullptr), S_OK);
  ASSERT_EQ(stream->CopyTo(clone, {1000}, nullptr, nullptr), S_OK);
  EXPECT_EQ(read_from(stream, 0), "abcdefabcdef");
}

TEST(Stream, answers_to_its_interfaces) {
  const stream_pointer stream = new_stream();
  ATL::CComPtr<ISequentialStream> bytes;
  EXPECT_EQ(stream.QueryInterface(&bytes), S_OK);
  ATL::CComPtr<IUnknown> root;
  EXPECT_EQ(stream.QueryInterface(&root), S_OK);
  ATL::CComPtr<IDispatch> stranger;
  EXPECT_EQ(stream.QueryInterface(&stranger), E_NOINTERFACE);
  EXPECT_EQ(stream->QueryInterface(IID_IStream, nullptr), E_POINTER);
}

}  // namespace
