// Plan, on SQLite and on a private MariaDB server
//   settings list: keys, sizes and values; texts as texts, other bytes and controls in hexadecimal; long ones cut; JSON
//   settings get: a value in several rows; JSON
//   Bad input: no such key; hexadecimal text that is cut in the middle of a byte, lacks a row, holds a wrong character
#include <gtest/gtest.h>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;

class SettingsCommand : public command_test::OnDatabase {
 protected:
  void add(const std::string& key, int row, const std::string& text) {
    execute("INSERT INTO CSINI (QUAL, SECT, KYWORD, SEQNO, OPTVAL) VALUES ('SYSTEM', 'SETTINGS', '" + key + "', " +
            std::to_string(row) + ", '" + text + "')");
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, SettingsCommand, test_support::main_servers(), test_support::server_name);

TEST_P(SettingsCommand, list_shows_texts_as_texts_and_other_bytes_in_hexadecimal) {
  add("city", 1, "4BC3B66C6E");
  add("colour", 1, "00FF7F");
  add("escape", 1, "1B5B324A");
  add("second controls", 1, "C29B324A");
  const Answer listed = spc({"settings", "list"});
  EXPECT_EQ(listed.status, 0) << listed;
  EXPECT_EQ(listed.out,
            "key              bytes  value\n"
            "---------------  -----  --------\n"
            "city                 5  Köln\n"
            "colour               3  00FF7F\n"
            "escape               4  1B5B324A\n"
            "second controls      4  C29B324A\n");
}

TEST_P(SettingsCommand, list_cuts_a_long_value_at_a_whole_character) {
  std::string hex = "41";
  for (int i = 0; i < 100; ++i)
    hex += "C3B6";
  add("long", 1, hex.substr(0, 200));
  add("long", 2, hex.substr(200));
  const Answer listed = spc({"settings", "list"});
  std::string shown = "A";
  for (int i = 0; i < 56; ++i)
    shown += "ö";
  EXPECT_TRUE(listed.says("long    201  " + shown + "...\n")) << listed;
}

TEST_P(SettingsCommand, list_of_none) {
  EXPECT_EQ(spc({"settings", "list"}).out, "There are no settings.\n");
  EXPECT_TRUE(json_check::parse(spc({"--json", "settings", "list"}).out).items.empty());
}

TEST_P(SettingsCommand, answers_in_json) {
  add("city", 1, "4BC3B66C6E");
  add("colour", 1, "00FF7F");
  const auto settings = json_check::parse(spc({"--json", "settings", "list"}).out);
  ASSERT_EQ(settings.items.size(), 2U);
  EXPECT_EQ(settings.items[0]["text"].text, "Köln");
  EXPECT_EQ(settings.items[1]["hex"].text, "00FF7F");
  EXPECT_EQ(json_check::parse(spc({"--json", "settings", "get", "colour"}).out)["bytes"].number, 3);
}

TEST_P(SettingsCommand, get_joins_the_rows_of_a_value) {
  add("email_sender_source", 3, "6C");
  add("email_sender_source", 1, "757365207379737465");
  add("email_sender_source", 2, "6D206C657665");
  const Answer got = spc({"settings", "get", "email_sender_source"});
  EXPECT_EQ(got.status, 0) << got;
  EXPECT_EQ(got.out, "use system level\n");
  EXPECT_EQ(got.err, "");
}

TEST_P(SettingsCommand, get_tells_of_a_key_that_is_not_there) {
  add("city", 1, "41");
  const Answer got = spc({"settings", "get", "City"});
  EXPECT_EQ(got.status, 1);
  EXPECT_EQ(got.err,
            "spc: cannot get the setting City: there is none with this key\n"
            "     spc settings list tells what there is; large and small letters differ.\n");
}

TEST_P(SettingsCommand, tells_of_a_truncated_hexadecimal_text_and_shows_what_is_left) {
  add("city", 1, "4B4F4C4");
  const std::string told =
      "spc: the setting city is damaged: its text ends in the middle of a byte\n"
      "     Let the program that wrote the setting save it again, or restore its rows of CSINI.\n";
  const Answer got = spc({"settings", "get", "city"});
  EXPECT_EQ(got.status, 1);
  EXPECT_EQ(got.out, "KOL\n");
  EXPECT_EQ(got.err, told);
  const Answer listed = spc({"settings", "list"});
  EXPECT_EQ(listed.status, 1);
  EXPECT_TRUE(listed.says("city      3  KOL\n")) << listed;
  EXPECT_EQ(listed.err, told);
}

TEST_P(SettingsCommand, tells_of_a_wrong_character_and_of_a_missing_row) {
  add("digits", 1, "4Ab1");
  EXPECT_TRUE(spc({"settings", "get", "digits"}).complains("character 3 of its text is none of 0 to 9 and A to F"));
  add("rows", 1, "4A");
  add("rows", 3, "4A");
  EXPECT_TRUE(spc({"settings", "get", "rows"}).complains("row 2 is missing"));
  const auto json = json_check::parse(spc({"--json", "settings", "get", "rows"}).out);
  EXPECT_EQ(json["damage"].text, "row 2 is missing");
}

TEST_P(SettingsCommand, tells_of_two_rows_with_one_number_since_their_order_is_not_known) {
  add("twice", 1, "4A");
  add(" twice", 1, "4B");
  const Answer got = spc({"settings", "get", "twice"});
  EXPECT_EQ(got.status, 1);
  EXPECT_TRUE(got.complains("two of its rows have the number 1")) << got;
}

}  // namespace
