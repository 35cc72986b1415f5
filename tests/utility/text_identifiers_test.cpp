// Plan: the recorded ids by get_iid_string; create_uuid_str makes a new id in the bare form each time
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "spcbase/utility/text.h"
#include "tests/support/vector_file.h"

namespace {

GUID guid_of_bytes(const std::string& hex) {
  unsigned char bytes[sizeof(GUID)];
  for (std::size_t i = 0; i < sizeof bytes; ++i)
    bytes[i] = static_cast<unsigned char>(std::stoi(hex.substr(i * 2, 2), nullptr, 16));
  GUID id;
  std::memcpy(&id, bytes, sizeof id);
  return id;
}

TEST(GetIidString, recorded_ids_have_their_recorded_texts) {
  int rows = 0;
  for (const auto& row : test_support::read_vectors("guid.tsv")) {
    if (row["bytes"].empty()) continue;
    SCOPED_TRACE(row.place());
    const _bstr_t text = get_iid_string(guid_of_bytes(row["bytes"]));
    EXPECT_EQ(text.length(), 38U);
    EXPECT_STREQ(static_cast<const char*>(text), row["string_from_iid"].c_str());
    ++rows;
  }
  EXPECT_EQ(rows, 18);
}

TEST(CreateUuidStr, makes_a_new_id_in_the_bare_lower_case_form) {
  std::set<CString> texts;
  for (int i = 0; i < 100; ++i) {
    const CString text = create_uuid_str();
    EXPECT_EQ(text.GetLength(), 36);
    EXPECT_EQ(text.SpanIncluding("0123456789abcdef-"), text);
    EXPECT_EQ(text[14], '4') << "its version";
    GUID id{};
    EXPECT_TRUE(platform::guid_from_text(text, id));
    texts.insert(text);
  }
  EXPECT_EQ(texts.size(), 100U);
}

}  // namespace
