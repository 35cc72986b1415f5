// Plan
// - both text forms of the recorded ids, and reading them back
// - new ids are of version 4, variant 2, and differ
// - comparison; null pointers and small buffers; texts that are no ids
#include "spcbase/platform/system/guid.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "spcbase/platform/system/memory.h"
#include "tests/support/vector_file.h"

namespace {

/// An id of its bytes in memory order, in hexadecimal.
GUID guid_of_bytes(const std::string& hex) {
  unsigned char bytes[sizeof(GUID)];
  for (std::size_t i = 0; i < sizeof bytes; ++i) {
    bytes[i] = static_cast<unsigned char>(std::stoi(hex.substr(i * 2, 2), nullptr, 16));
  }
  GUID id;
  std::memcpy(&id, bytes, sizeof id);
  return id;
}

std::string narrow(const OLECHAR* text) {
  std::string result;
  for (; *text; ++text) {
    result.push_back(static_cast<char>(*text));
  }
  return result;
}

TEST(Guid, recorded_ids_have_their_recorded_texts) {
  int rows = 0;
  for (const auto& row : test_support::read_vectors("guid.tsv")) {
    if (row["bytes"].empty()) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const GUID id = guid_of_bytes(row["bytes"]);
    OLECHAR* braced = nullptr;
    ASSERT_EQ(StringFromIID(id, &braced), S_OK);
    EXPECT_EQ(narrow(braced), row["string_from_iid"]);
    CoTaskMemFree(braced);
    unsigned char* bare = nullptr;
    ASSERT_EQ(UuidToStringA(&id, &bare), 0);
    EXPECT_EQ(reinterpret_cast<char*>(bare), row["uuid_to_string"]);
    EXPECT_EQ(RpcStringFreeA(&bare), 0);
    EXPECT_EQ(bare, nullptr);
    GUID back{};
    EXPECT_TRUE(platform::guid_from_text(row["string_from_iid"].c_str(), back));
    EXPECT_EQ(back, id);
    EXPECT_TRUE(platform::guid_from_text(row["uuid_to_string"].c_str(), back));
    EXPECT_EQ(back, id);
  }
  EXPECT_EQ(rows, 18);
}

TEST(CoCreateGuid, makes_random_ids_of_version_4) {
  std::set<std::string> texts;
  for (int i = 0; i < 100; ++i) {
    GUID id{};
    ASSERT_EQ(CoCreateGuid(&id), S_OK);
    EXPECT_EQ(id.Data3 >> 12, 4);
    EXPECT_EQ(id.Data4[0] >> 6, 2);
    texts.insert(platform::guid_text(id));
  }
  EXPECT_EQ(texts.size(), 100U);
}

TEST(CoCreateGuid, a_null_pointer_is_refused) { EXPECT_EQ(CoCreateGuid(nullptr), E_POINTER); }

TEST(Guid, equality_looks_at_every_byte) {
  GUID a{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  GUID b = a;
  EXPECT_TRUE(IsEqualGUID(a, b));
  b.Data4[7] = 12;
  EXPECT_FALSE(IsEqualIID(a, b));
  EXPECT_NE(a, b);
  EXPECT_NE(a, GUID_NULL);
}

TEST(StringFromGUID2, needs_room_for_39_units) {
  OLECHAR buffer[39] = {u'x'};
  EXPECT_EQ(StringFromGUID2(GUID_NULL, buffer, 38), 0);
  EXPECT_EQ(buffer[0], u'x');
  EXPECT_EQ(StringFromGUID2(GUID_NULL, nullptr, 39), 0);
  EXPECT_EQ(StringFromGUID2(GUID_NULL, buffer, 39), 39);
  EXPECT_EQ(narrow(buffer), "{00000000-0000-0000-0000-000000000000}");
}

TEST(Guid, null_pointers_are_refused) {
  EXPECT_EQ(StringFromIID(GUID_NULL, nullptr), E_POINTER);
  unsigned char* text = nullptr;
  EXPECT_EQ(UuidToStringA(nullptr, &text), 87);
  EXPECT_EQ(UuidToStringA(&GUID_NULL, nullptr), 87);
  EXPECT_EQ(RpcStringFreeA(nullptr), 0);
}

TEST(GuidFromText, what_is_no_id_leaves_the_target_untouched) {
  const GUID before{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  for (const char* text : {"", "{}", "00020400-0000-0000-C000-00000000004", "00020400-0000-0000-C000-0000000000466",
                           "{00020400-0000-0000-C000-000000000046", "00020400000000000C000000000000000046",
                           "0002040g-0000-0000-c000-000000000046"}) {
    GUID id = before;
    EXPECT_FALSE(platform::guid_from_text(text, id)) << text;
    EXPECT_EQ(id, before);
  }
  GUID id = before;
  EXPECT_FALSE(platform::guid_from_text(nullptr, id));
}

}  // namespace
