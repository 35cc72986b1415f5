// Plan
//   The table equals tests/data/messages.tsv, line by line and with nothing besides -> holds_*
//   load_message: the text, an empty one for an unknown number -> gives_*
//   A host's own table is neither used nor lost, also when the look-up throws -> hosts_table_*
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/message_table.h"
#include "spcbase/foundation/internal/raise.h"

namespace {

struct Expected {
  UINT id;
  std::string text;
};

std::vector<Expected> expected_messages() {
  std::ifstream file(SPCBASE_TEST_DATA "/messages.tsv");
  std::vector<Expected> all;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) continue;
    const auto tab = line.find('\t');
    std::string text = line.substr(tab + 1);
    for (auto at = text.find("\\n"); at != std::string::npos; at = text.find("\\n"))
      text.replace(at, 2, "\n");
    all.push_back({static_cast<UINT>(std::stoul(line.substr(0, tab))), text});
  }
  return all;
}

TEST(message_table, holds_every_text_to_the_letter_and_no_others) {
  const auto expected = expected_messages();
  const auto own = all_messages();
  ASSERT_EQ(expected.size(), 89U);
  ASSERT_EQ(own.size(), expected.size());
  for (std::size_t i = 0; i < own.size(); ++i) {
    EXPECT_EQ(own[i].id, expected[i].id);
    EXPECT_EQ(own[i].text, expected[i].text) << "message " << expected[i].id;
  }
}

TEST(load_message, gives_every_text_of_the_table) {
  for (const auto& [id, text] : expected_messages())
    EXPECT_EQ(load_message(id), text.c_str()) << "message " << id;
}

TEST(load_message, gives_an_empty_text_for_an_unknown_number) {
  for (const UINT id : {0U, 11U, 53U, 499U, 507U, 999U, 1041U, 0xffffffffU})
    EXPECT_TRUE(load_message(id).IsEmpty()) << "message " << id;
}

TEST(load_message, knows_messages_by_constants) {
  EXPECT_EQ(msg::unknown_error, 52U);
  EXPECT_EQ(msg::no_revisions, 500U);
  EXPECT_EQ(msg::can_not_open_recordset, 1005U);
}

// A host's own table, with numbers that are ours too.
class HostTable : public MessageSource {
 public:
  const char* find(UINT id) const noexcept override { return id == 1005 ? "the host's own text" : nullptr; }
};

class hosts_table : public testing::Test {
 protected:
  hosts_table() : previous_(AfxGetResourceHandle()) { AfxSetResourceHandle(host_.handle()); }
  ~hosts_table() override { AfxSetResourceHandle(previous_); }
  HostTable host_;

 private:
  HINSTANCE previous_;
};

TEST_F(hosts_table, is_not_asked_for_the_librarys_texts) {
  EXPECT_EQ(load_message(1005), "Can not open recordset.");
  EXPECT_EQ(rev::RevisionException(1, 2, 3, 0).what(), "No revisions.");
}

TEST_F(hosts_table, is_current_again_afterwards) {
  load_message(1005);
  load_message(4711);
  EXPECT_EQ(AfxGetResourceHandle(), host_.handle());
}

TEST_F(hosts_table, is_current_again_after_a_failure_was_thrown) {
  EXPECT_THROW(throw_can_not_open_rs_exception(), DBException);
  EXPECT_THROW(throw_xml_exception(), DBException);
  EXPECT_EQ(AfxGetResourceHandle(), host_.handle());
  CString text;
  EXPECT_TRUE(text.LoadString(1005));
  EXPECT_EQ(text, "the host's own text");
}

TEST(load_message, leaves_a_thread_without_a_table_without_one) {
  const HINSTANCE previous = AfxGetResourceHandle();
  AfxSetResourceHandle(nullptr);
  EXPECT_EQ(load_message(52), "An unknown error occurred");
  EXPECT_EQ(AfxGetResourceHandle(), nullptr);
  AfxSetResourceHandle(previous);
}

}  // namespace
