// Several processes on one database.
//
// Plan
//   adding               8 processes add 100 revisions each to one object: no number is lost or double, each payload is
//                        the one that its writer was told; on MariaDB, and a smaller round on SQLite
//   approving            two processes approve the same revisions: one wins each, the other gets its failure
#include <map>
#include <sstream>

#include "tests/revision/revision_fixture.h"
#include "tests/support/helper_process.h"

namespace {

using test_support::HelperProcess;
using test_support::ServerKind;

class Concurrency : public test_support::RevisionTest {
 protected:
  std::vector<std::string> run(const std::vector<std::vector<std::string>>& jobs) {
    std::vector<HelperProcess> running;
    for (const auto& job : jobs)
      running.emplace_back(SPCBASE_REVISION_PROCESS, job);
    std::vector<std::string> outputs;
    for (HelperProcess& process : running)
      outputs.push_back(process.finish());
    return outputs;
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, Concurrency, test_support::main_servers(), test_support::server_name);

TEST_P(Concurrency, revisions_of_8_writers_stand_without_a_gap_and_each_payload_is_its_writers) {
  const bool mariadb = kind() == ServerKind::mariadb;
  const int each = mariadb ? 100 : 10;
  std::vector<std::vector<std::string>> jobs;
  for (int writer = 1; writer <= 8; ++writer)
    jobs.push_back({"add", database().connect_text() + (mariadb ? "" : ";Timeout=60000"), "5", std::to_string(each),
                    "w" + std::to_string(writer)});
  std::map<int, std::string> told;
  for (const std::string& output : run(jobs)) {
    std::istringstream lines(output);
    std::string bytes;
    for (int number = 0; lines >> number >> bytes;)
      EXPECT_TRUE(told.emplace(number, bytes).second) << number << " was given twice";
  }
  const int all = 8 * each;
  EXPECT_EQ(told.size(), static_cast<std::size_t>(all));
  EXPECT_EQ(
      rows("SELECT COUNT(*), MIN(REVISION), MAX(REVISION), COUNT(DISTINCT REVISION), MIN(MAJORVER), MAX(MAJORVER), "
           "MAX(MINORVER) FROM CSOBJREV"),
      std::vector<std::string>{std::to_string(all) + "|1|" + std::to_string(all) + "|" + std::to_string(all) + "|0|0|" +
                               std::to_string(all)});
  rev::RevisionManager reader(object_type, -1);
  for (int number = 1; number <= all; ++number) {
    const auto record = reader.get_revision_info(&db(), 0, 5, number);
    ASSERT_NE(record, nullptr) << number;
    ASSERT_EQ(test_support::bytes_of(*record), told[number]) << number;
    ASSERT_EQ(record->creason, told[number].c_str()) << number;
  }
}

TEST_P(Concurrency, of_two_approvers_one_wins_each_revision_and_the_other_gets_its_failure) {
  constexpr int objects = 30;
  for (int object = 1; object <= 2 * objects; ++object)
    add("payload", false, object);
  for (const char* way : {"place", "major"}) {
    const bool major = way == std::string("major");
    if (major) execute("UPDATE CSOBJREV SET ALEVEL = NULL, AUSER = NULL");
    const std::string text = database().connect_text();
    const std::string count = std::to_string(objects);
    const auto outputs = run({{"approve", text, count, "anna", way}, {"approve", text, count, "bob", way}});
    std::map<int, std::string> winners;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
      std::istringstream lines(outputs[i]);
      std::string answer;
      for (int object = 0; lines >> object && std::getline(lines, answer);) {
        if (answer == " won")
          EXPECT_TRUE(winners.emplace(object, i == 0 ? "anna" : "bob").second) << object << " was won twice";
        else
          EXPECT_NE(answer, " gone");
      }
    }
    EXPECT_EQ(winners.size(), static_cast<std::size_t>(objects));
    for (const auto& [object, name] : winners)
      EXPECT_EQ(
          rows("SELECT REVISION, AUSER FROM CSOBJREV WHERE ALEVEL IS NOT NULL AND OBJID = " + std::to_string(object)),
          std::vector<std::string>{(major ? "2|" : "1|") + name});
  }
}

}  // namespace
