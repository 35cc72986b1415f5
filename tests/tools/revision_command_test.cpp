// Plan, on SQLite and on a private MariaDB server
//   rev add: numbers and versions, major too; every byte; JSON; in the race of several writers each gets its number
//   rev list, show, get: for people and in JSON; the latest and others; through a file and standard output
//   rev approve: in place, with a major version
//   Bad input: no such revision, object without revisions, approval of what is not the latest, is approved already, is
//     broken; negative sizes; missing, empty file; missing options; a database without the schema
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <thread>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;

class RevisionCommand : public command_test::OnDatabase {
 protected:
  /// On object 5 of type 3.
  Answer rev(const std::string& task, const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = {"rev", task, "--type", "3", "--id", "5"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return spc(arguments);
  }
  json_check::Value rev_json(const std::string& task, std::vector<std::string> more = {}) {
    more.emplace_back("--json");
    return json_check::parse(rev(task, more).out);
  }
  Answer add(const std::string& bytes, const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = {"--file", file(bytes)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return rev("add", arguments);
  }
  std::string file(const std::string& bytes) {
    std::ofstream(folder_.file("in"), std::ios::binary) << bytes;
    return folder_.file("in");
  }

  test_support::ScratchFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Servers, RevisionCommand, test_support::main_servers(), test_support::server_name);

std::string without_times(const std::string& text) {
  return std::regex_replace(text, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}"), "TIME");
}

TEST_P(RevisionCommand, add_counts_revisions_and_versions) {
  const Answer first = add("one", {"--user", "anna", "--user-id", "7", "--reason", "first draft", "--major"});
  EXPECT_EQ(first.status, 0) << first;
  EXPECT_EQ(first.out, "Saved revision 1 of object 5 of type 3: version 0.1, 3 bytes\n");
  EXPECT_EQ(add("two").out, "Saved revision 2 of object 5 of type 3: version 0.2, 3 bytes\n");
  EXPECT_EQ(add("three", {"--major"}).out, "Saved revision 3 of object 5 of type 3: version 1.0, 5 bytes\n");
  const Answer other = spc({"rev", "add", "--type", "3", "--id", "6", "--file", file("x")});
  EXPECT_EQ(other.out, "Saved revision 1 of object 6 of type 3: version 0.1, 1 byte\n");
}

TEST_P(RevisionCommand, list_shows_the_latest_first) {
  EXPECT_EQ(rev("list").out, "There are no revisions of object 5 of type 3.\n");
  add("one", {"--user", "anna", "--user-id", "7", "--reason", "first draft"});
  add("two");
  rev("approve", {"--revision", "2", "--level", "4", "--user", "bo", "--reason", "looks good"});
  const Answer listed = rev("list");
  EXPECT_EQ(listed.status, 0) << listed;
  EXPECT_TRUE(without_times(listed.out)
                  .ends_with("       2      0.2  TIME  spc                TIME  bo      4  looks good\n"
                             "       1      0.1  TIME  anna  first draft\n"))
      << listed;
  const auto json = rev_json("list");
  ASSERT_EQ(json.items.size(), 2U);
  EXPECT_EQ(json.items[0]["revision"].number, 2);
  EXPECT_EQ(json.items[0]["approval"]["level"].number, 4);
  EXPECT_EQ(json.items[1]["user_id"].number, 7);
  EXPECT_EQ(json.items[1]["approval"].kind, json_check::Value::Kind::null);
}

TEST_P(RevisionCommand, show_tells_all_of_a_revision) {
  add("one", {"--user", "anna", "--user-id", "7", "--reason", "first\ndraft"});
  add("two");
  EXPECT_EQ(without_times(rev("show", {"--revision", "1"}).out),
            "Revision 1 of object 5 of type 3\n"
            "  version   0.1\n"
            "  saved     TIME by anna (7)\n"
            "  reason    first draft\n"
            "  payload   3 bytes\n"
            "  approved  no\n");
  rev("approve", {"--revision", "2", "--level", "1", "--approval-type", "2", "--user", "bo", "--user-id", "8",
                  "--reason", "fits"});
  const Answer latest = rev("show");
  EXPECT_TRUE(latest.out.starts_with("Revision 2 of object 5 of type 3\n")) << latest;
  EXPECT_TRUE(without_times(latest.out).ends_with("  approved  TIME by bo (8), level 1, type 2\n            fits\n"))
      << latest;
  EXPECT_EQ(rev_json("show")["bytes"].number, 3);
}

TEST_P(RevisionCommand, get_gives_every_byte_back) {
  std::string bytes;
  for (int i = 0; i < 256; ++i)
    bytes += static_cast<char>(i);
  add("one");
  add(bytes, {"--max-size", "1000"});
  EXPECT_EQ(rev("get").out, bytes);
  EXPECT_EQ(rev("get", {"--revision", "1"}).out, "one");
  EXPECT_EQ(rev_json("get", {"--revision", "1"})["text"].text, "one");
  const std::string copy = folder_.file("copy");
  EXPECT_EQ(rev("get", {"--file", copy}).out, "Wrote revision 2 of object 5 of type 3: version 0.2, 256 bytes\n");
  std::ifstream stream(copy, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), bytes);
  EXPECT_TRUE(rev("get", {"--file", copy}).complains("the file is there already"));
}

TEST_P(RevisionCommand, approve_in_place_keeps_the_revision) {
  add("one");
  const Answer approved = rev("approve", {"--revision", "1", "--level", "0"});
  EXPECT_EQ(approved.status, 0) << approved;
  EXPECT_EQ(approved.out, "Approved revision 1 of object 5 of type 3: version 0.1, 3 bytes\n");
  EXPECT_EQ(value("SELECT ALEVEL FROM CSOBJREV"), "0");
  EXPECT_EQ(value("SELECT ATYPE FROM CSOBJREV"), "NULL");
}

TEST_P(RevisionCommand, approve_with_a_major_version_approves_a_copy) {
  add("one");
  add("two");
  const Answer approved =
      rev("approve", {"--revision", "2", "--level", "1", "--user", "bo", "--reason", "released", "--major"});
  EXPECT_EQ(approved.out, "Approved revision 3 of object 5 of type 3: version 1.0, 3 bytes\n") << approved;
  const auto copy = rev_json("show");
  EXPECT_EQ(copy["reason"].text, "Duplicate of version 0.2 (major version on approval)");
  EXPECT_EQ(copy["approval"]["reason"].text, "released");
  EXPECT_EQ(rev("get").out, "two");
  EXPECT_EQ(rev_json("show", {"--revision", "2"})["approval"].kind, json_check::Value::Kind::null);
}

TEST_P(RevisionCommand, approve_refuses_what_is_not_the_latest) {
  add("one");
  add("two");
  for (const char* number : {"1", "3"}) {
    const Answer refused = rev("approve", {"--revision", number, "--level", "1"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "spc: cannot approve revision " + std::string(number) +
                               " of object 5 of type 3: Not the latest revision.\n     Only the latest revision can be "
                               "approved: spc rev list shows which that is.\n");
  }
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV WHERE ALEVEL IS NOT NULL"), "0");
}

TEST_P(RevisionCommand, approve_refuses_what_is_approved_already) {
  add("one");
  EXPECT_EQ(rev("approve", {"--revision", "1", "--level", "0"}).status, 0);
  const Answer again = rev("approve", {"--revision", "1", "--level", "1"});
  EXPECT_EQ(again.status, 1);
  EXPECT_TRUE(again.complains(": The revision was already approved.\n     An approval is for good: ")) << again;
  EXPECT_EQ(value("SELECT ALEVEL FROM CSOBJREV"), "0");
}

TEST_P(RevisionCommand, tells_of_a_broken_revision) {
  add("one");
  execute("DELETE FROM CSREVDAT");
  EXPECT_TRUE(rev("show").says("  payload   missing: the revision is broken\n"));
  EXPECT_EQ(rev_json("show")["bytes"].kind, json_check::Value::Kind::null);
  EXPECT_TRUE(rev("get").complains("cannot get the payload: revision 1 is broken: it has no payload\n"));
  const Answer refused = rev("approve", {"--revision", "1", "--level", "1"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(refused.complains(": Approving a broken revision is not allowed.\n     Its payload is missing: save"))
      << refused;
}

TEST_P(RevisionCommand, tells_of_objects_and_revisions_that_are_not_there) {
  const Answer none = rev("get");
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.err,
            "spc: cannot get the payload: object 5 of type 3 has no revisions\n"
            "     See that type and number are right; spc rev add saves a first revision.\n");
  EXPECT_TRUE(rev("approve", {"--revision", "1", "--level", "1"}).complains(": Not the latest revision.\n"));
  add("one");
  const Answer wrong = rev("show", {"--revision", "5"});
  EXPECT_EQ(wrong.status, 1);
  EXPECT_EQ(wrong.err,
            "spc: cannot show the revision: object 5 of type 3 has no revision 5\n"
            "     spc rev list shows the revisions that there are.\n");
}

TEST_P(RevisionCommand, refuses_a_command_line_that_cannot_be_meant) {
  for (const auto& [task, more] :
       std::vector<std::pair<std::string, std::vector<std::string>>>{{"add", {"--file", file("x"), "--max-size=-1"}},
                                                                     {"add", {"--file", file("x"), "--user-id", "-7"}},
                                                                     {"add", {}},
                                                                     {"approve", {"--revision", "1"}},
                                                                     {"approve", {"--level", "1"}},
                                                                     {"approve", {"--level", "-1", "--revision", "1"}},
                                                                     {"show", {"--revision", "0"}},
                                                                     {"get", {"--revision", "-300"}}}) {
    const Answer answer = rev(task, more);
    EXPECT_EQ(answer.status, 2) << answer;
    EXPECT_TRUE(answer.err.starts_with("spc: cannot read the command line: ")) << answer;
  }
  EXPECT_EQ(spc({"rev", "list", "--type", "3", "--id", "-5"}).status, 2);
  EXPECT_EQ(spc({"rev", "list", "--type", "3"}).status, 2);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV"), "0");
}

TEST_P(RevisionCommand, refuses_a_file_that_is_missing_or_empty) {
  EXPECT_TRUE(rev("add", {"--file", folder_.file("none")}).complains("No such file or directory"));
  const Answer empty = add("");
  EXPECT_EQ(empty.status, 1);
  EXPECT_TRUE(empty.complains("the file is empty\n     A payload has at least one byte")) << empty;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV"), "0");
}

TEST_P(RevisionCommand, add_leaves_nothing_when_the_payload_is_refused) {
  database().spoil();
  execute("DROP TABLE CSREVDAT");
  const Answer refused = add("one");
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(refused.err.starts_with("spc: cannot save a revision of object 5 of type 3: ")) << refused;
  EXPECT_TRUE(refused.complains("spc db check")) << refused;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV"), "0");
}

TEST_P(RevisionCommand, writers_at_the_same_time_get_numbers_of_their_own) {
  const std::string payload = file("shared");
  std::vector<std::thread> writers;
  std::vector<Answer> answers(3);
  for (auto& answer : answers)
    writers.emplace_back([&] {
      answer = command_test::run(
          {"--connect",
           database().connect_text() + (kind() == test_support::ServerKind::sqlite ? ";Timeout=20000" : ""), "rev",
           "add", "--type", "3", "--id", "5", "--file", payload});
    });
  for (auto& writer : writers)
    writer.join();
  std::set<std::string> said;
  for (const auto& answer : answers) {
    EXPECT_EQ(answer.status, 0) << answer;
    said.insert(answer.out);
  }
  EXPECT_EQ(said.size(), 3U);
  EXPECT_EQ(value("SELECT MAX(REVISION) FROM CSOBJREV"), "3");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT"), "3");
}

}  // namespace
