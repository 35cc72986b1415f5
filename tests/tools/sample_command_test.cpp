// Plan, on SQLite and on a private MariaDB server
//   import: by names and by ids, with maps and constants; JSON; what it says; the rows that stand; texts of several
//     bytes, quotes and backslashes come back; the approval has the user's name
//   show, list: grids and lists for people and in JSON; the newest first; the limit; a profile; no samples, no sample
//   Bad input: unknown profile, station and user; two profiles of one name; a file that cannot be read; a fault in the
//     last line, after which nothing stands
//   --trace: every statement on standard error, no password in it
#include <gtest/gtest.h>

#include <fstream>

#include "spcbase/testkit/plant.h"
#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;

class SampleCommand : public command_test::OnDatabase {
 protected:
  SampleCommand() {
    plant::Builder builder(db());
    builder.add_station("North");
    builder.add_user("anna", "Anna Weber", "secret7");
    const int station = builder.add_label({"STATION"});
    const int width = builder.add_characteristic({"Width", "", plant::Kind::number, 2});
    const int scratch = builder.add_characteristic({"Scratch", "", plant::Kind::defects, 2});
    const int leak = builder.add_characteristic({"Leak", "", plant::Kind::total, 0});
    const int batch = builder.add_label({"Batch", plant::Holds::whole_sample, plant::Values::growing_list});
    const int taken = builder.add_label({"Taken", plant::Holds::whole_sample, plant::Values::moment});
    const int gauge = builder.add_label({"Gauge", plant::Holds::each_piece});
    profile_ = builder.add_profile(
        "O'Brien's \\ cans", "",
        {plant::label(batch), plant::characteristic(width), plant::characteristic(scratch), plant::characteristic(leak),
         plant::label(taken), plant::label(gauge), plant::auto_label(station)});
    builder.add_profile("Rings", "", {plant::characteristic(width)});
  }

  std::string csv(const std::string& text) {
    std::ofstream(folder_.file("in.csv"), std::ios::binary) << text;
    return folder_.file("in.csv");
  }

  Answer import_rings(const std::string& text) { return spc({"sample", "import", csv(text), "--profile", "Rings"}); }

  test_support::ScratchFolder folder_;
  int profile_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Servers, SampleCommand, test_support::main_servers(), test_support::server_name);

constexpr const char* whole_file =
    "sample,piece,Batch,mm,Scratch.text,Scratch.count,Leak,Leak.size,Gauge\n"
    "a,1,Größe \\ 'x',1.5,deep,2,3,50,A\n"
    "a,2,,2.25,,,,,\"B, \"\"C\"\"\"\n"
    "b,1,日本,,light,,,,\n"
    "b,2,,0.1,,,,,\n";

TEST_P(SampleCommand, imports_and_shows_every_kind_of_column) {
  const Answer imported = spc({"sample", "import", csv(whole_file), "--profile", "O'Brien's \\ cans", "--station",
                               "North", "--user", "anna", "--map", "mm=Width", "--set", "Taken=2024-03-05 08:30"});
  EXPECT_EQ(imported.status, 0) << imported;
  EXPECT_EQ(imported.out, "Imported 2 samples (4 lines) on profile O'Brien's \\ cans: 1 to 2\n");
  EXPECT_EQ(imported.err, "");
  const Answer shown = spc({"sample", "show", "1"});
  EXPECT_EQ(shown.status, 0) << shown;
  EXPECT_TRUE(shown.out.starts_with("Sample 1 of O'Brien's \\ cans, taken ")) << shown;
  EXPECT_TRUE(shown.says(
      "  piece  Batch        Width  Scratch.text  Scratch.count  Leak  Leak.size  Taken                Gauge\n"
      "  -----  -----------  -----  ------------  -------------  ----  ---------  -------------------  ------\n"
      "      1  Größe \\ 'x'    1.5  deep                      2     3         50  2024-03-05 08:30:00  A\n"
      "      2                2.25                                                                     B, \"C\"\n"))
      << shown;
  EXPECT_TRUE(shown.says("STATION North")) << shown;
  EXPECT_EQ(value("SELECT MUSER FROM CSSPAPPR WHERE SAMPID=1"), "anna");
}

TEST_P(SampleCommand, imports_by_ids_and_answers_in_json) {
  const Answer imported = spc({"--json", "sample", "import", csv(whole_file), "--profile", std::to_string(profile_),
                               "--station", "1", "--user", "1", "--map", "mm=Width", "--set", "Taken=2024-03-05"});
  ASSERT_EQ(imported.status, 0) << imported;
  const auto told = json_check::parse(imported.out);
  EXPECT_EQ(told["profile"].number, profile_);
  EXPECT_EQ(told["rows"].number, 4);
  ASSERT_EQ(told["samples"].items.size(), 2U);
  EXPECT_EQ(told["samples"].items[1].number, 2);
  const auto shown = json_check::parse(spc({"sample", "show", "2", "--json"}).out);
  EXPECT_EQ(shown["profile_name"].text, "O'Brien's \\ cans");
  EXPECT_EQ(shown["auto_labels"]["STATION"].text, "North");
  ASSERT_EQ(shown["columns"].items.size(), 8U);
  ASSERT_EQ(shown["rows"].items.size(), 2U);
  const auto& first = shown["rows"].items[0].items;
  EXPECT_EQ(first[0].text, "日本");
  EXPECT_EQ(first[1].kind, json_check::Value::Kind::null);
  EXPECT_EQ(first[3].number, 0);
  EXPECT_EQ(first[6].text, "2024-03-05 00:00:00");
  EXPECT_EQ(shown["rows"].items[1].items[1].number, 0.1);
}

TEST_P(SampleCommand, lists_the_newest_samples_first) {
  EXPECT_EQ(spc({"sample", "list"}).out, "There are no samples.\n");
  EXPECT_EQ(json_check::parse(spc({"sample", "list", "--json"}).out).items.size(), 0U);
  EXPECT_EQ(import_rings("sample,Width\n1,5\n1,6\n2,7\n2,8\n3,9\n3,9\n").status, 0);
  const Answer listed = spc({"sample", "list", "--limit", "2"});
  EXPECT_EQ(listed.status, 0) << listed;
  EXPECT_TRUE(
      listed.out.starts_with("sample  profile  taken\n"
                             "------  -------  -------------------\n"
                             "     3  Rings    2"))
      << listed;
  const auto lines = json_check::parse(spc({"--json", "sample", "list", "--profile", "Rings"}).out);
  ASSERT_EQ(lines.items.size(), 3U);
  EXPECT_EQ(lines.items[0]["sample"].number, 3);
  EXPECT_EQ(lines.items[0]["profile_name"].text, "Rings");
  EXPECT_EQ(json_check::parse(spc({"--json", "sample", "list", "--profile", "1"}).out).items.size(), 0U);
}

TEST_P(SampleCommand, says_that_there_is_no_such_sample) {
  const Answer shown = spc({"sample", "show", "77"});
  EXPECT_EQ(shown.status, 1);
  EXPECT_EQ(shown.err, "spc: cannot show sample 77: there is no such sample\n     See spc sample list.\n");
}

TEST_P(SampleCommand, says_which_profiles_stations_and_users_there_are) {
  const Answer profile = spc({"sample", "import", csv("sample\n1\n"), "--profile", "Cups"});
  EXPECT_EQ(profile.status, 1);
  EXPECT_EQ(profile.err,
            "spc: cannot find the profile \"Cups\": there is none of that name or number\n"
            "     There are O'Brien's \\ cans (1), Rings (2).\n");
  const Answer number = spc({"sample", "list", "--profile", "9"});
  EXPECT_EQ(number.status, 1);
  EXPECT_TRUE(number.complains("cannot find the profile \"9\"")) << number;
  const Answer station =
      spc({"sample", "import", csv("sample,Width\n1,1\n1,1\n"), "--profile", "2", "--station", "Moon"});
  EXPECT_EQ(station.status, 1);
  EXPECT_EQ(station.err,
            "spc: cannot find the station \"Moon\": there is none of that name or number\n     There is North (1).\n");
  const Answer user = spc({"sample", "import", csv("sample,Width\n1,1\n1,1\n"), "--profile", "2", "--user", "bob"});
  EXPECT_EQ(user.status, 1);
  EXPECT_TRUE(user.complains("cannot find the user \"bob\"")) << user;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "0");
}

TEST_P(SampleCommand, wants_a_number_where_two_profiles_have_one_name) {
  plant::Builder(db()).add_profile("Rings", "", {});
  const Answer answer = spc({"sample", "list", "--profile", "Rings"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_EQ(answer.err,
            "spc: cannot find the profile \"Rings\": there are several: Rings (2), Rings (3)\n"
            "     Give the number in brackets instead of the name.\n");
}

TEST_P(SampleCommand, says_that_samples_cannot_be_entered_on_an_empty_profile) {
  plant::Builder(db()).add_profile("Nothing", "", {});
  const Answer answer = spc({"sample", "import", csv("sample\n1\n"), "--profile", "Nothing"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.complains("cannot use the profile \"Nothing\"")) << answer;
}

struct BadFile {
  const char* name;
  std::string text;
  std::string why;  ///< behind the file
};

std::vector<BadFile> bad_files() {
  return {{"missing column", "sample,piece\n1,1\n", "line 1: there is no column \"Width\""},
          {"extra column", "sample,Width,Depth\n1,2,3\n", "line 1: the column \"Depth\" is not in the profile"},
          {"no number", "sample,Width\n1,5\n1,6\n2,7\n2,wide\n", "line 5, column Width: \"wide\" is not a number"},
          {"wrong shape", "sample,Width\n1,5\n1,6\n2,7\n",
           "line 4: sample 2 has 1 piece, and the profile \"Rings\" wants 2"},
          {"fields", "sample,Width\n1,5\n1\n", "line 3: 1 fields, but the header has 2"},
          {"empty", "", "the file is empty"},
          {"no UTF-8", "sample,Width\n1,\xFF\n", "line 2: bytes that are not UTF-8"}};
}

TEST_P(SampleCommand, refuses_a_bad_file_before_it_writes_anything) {
  for (const auto& file : bad_files()) {
    const Answer answer = import_rings(file.text);
    EXPECT_EQ(answer.status, 1) << file.name << answer;
    EXPECT_TRUE(answer.complains(folder_.file("in.csv") + ": " + file.why + "\n")) << file.name << answer;
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "0") << file.name;
    EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "0") << file.name;
  }
}

TEST_P(SampleCommand, refuses_a_value_that_is_too_long_for_its_column) {
  const std::string text =
      "sample,Batch,Width,Scratch.text,Scratch.count,Leak,Leak.size,Taken,Gauge\n1,ok,,,,,,,\n1,,,,,,,," +
      std::string(514, 'x') + "\n";
  const Answer answer = spc({"sample", "import", csv(text), "--profile", "1"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.complains("line 3, column Gauge: a text of 514 characters, and 513 fit\n")) << answer;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "0");
}

TEST_P(SampleCommand, says_why_a_file_cannot_be_read) {
  const Answer answer = spc({"sample", "import", folder_.file("none.csv"), "--profile", "Rings"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.complains("spc: cannot read " + folder_.file("none.csv") + ": No such file or directory\n"))
      << answer;
}

TEST_P(SampleCommand, traces_statements_without_passwords) {
  const Answer answer = spc({"--trace", "sample", "import", csv("sample,Width\n1,1\n1,1\n"), "--profile", "Rings",
                             "--station", "North", "--user", "anna"});
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_TRUE(answer.complains("trace ")) << answer;
  EXPECT_TRUE(answer.complains("UPDATE CSSPRN SET MAXNO = MAXNO + 1")) << answer;
  EXPECT_TRUE(answer.complains("COMMIT")) << answer;
  EXPECT_FALSE(answer.complains("secret7")) << answer;
}

}  // namespace
