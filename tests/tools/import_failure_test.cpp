// Plan
//   A locked database: lock time-out, what stands, nothing half written (SQLite and MariaDB)
//   A server that goes away in the middle of a sample: link lost, the samples that it said stand do, whole, and no
//     other; db check on a server that is gone
//   A schema without a column: the sample that failed leaves nothing
//   Played failures: a deadlock is tried again and the sample stands once; one that never ends is told of; a commit in
//     doubt is never tried again
#include <gtest/gtest.h>

#include <fstream>

#include "spcbase/foundation/recordset.h"
#include "spcbase/testkit/plant.h"
#include "spcbase/testkit/scripted_session.h"
#include "tests/tools/program.h"
#include "tools/spc/import_write.h"
#include "tools/spc/problem.h"

namespace {

using command_test::Answer;
using test_support::ServerKind;

int add_rings(CDatabase& db) {
  plant::Builder builder(db);
  return builder.add_profile(
      "Rings", "", {plant::characteristic(builder.add_characteristic({"Width", "", plant::Kind::number, 2}))});
}

std::string rings_of(int samples) {
  std::string text = "sample,Width\n";
  for (int i = 1; i <= samples; ++i)
    text += std::to_string(i) + ",1.5\n" + std::to_string(i) + ",2.5\n";
  return text;
}

class ImportFailure : public test_support::DatabaseTest {
 protected:
  ImportFailure() { profile_ = add_rings(db()); }

  Answer import(const std::string& options, int samples) {
    std::ofstream(folder_.file("in.csv")) << rings_of(samples);
    return command_test::run({"--connect", database().connect_text() + options, "sample", "import",
                              folder_.file("in.csv"), "--profile", "Rings"});
  }

  test_support::ScratchFolder folder_;
  int profile_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Servers, ImportFailure, test_support::main_servers(), test_support::server_name);

TEST_P(ImportFailure, tells_of_a_locked_database_and_leaves_nothing_half_written) {
  auto other = second_connection();
  other->BeginTrans();
  other->ExecuteSQL("UPDATE CSSPRN SET MAXNO = MAXNO");
  const Answer answer =
      import(kind() == ServerKind::sqlite ? ";Timeout=100" : ";INITSTMT={SET innodb_lock_wait_timeout=1}", 2);
  other->Rollback();
  EXPECT_EQ(answer.status, 1) << answer;
  EXPECT_TRUE(answer.err.starts_with("spc: cannot import " + folder_.file("in.csv") + ": ")) << answer;
  EXPECT_TRUE(answer.complains("(lock time-out, ")) << answer;
  EXPECT_TRUE(
      answer.complains("     0 of 2 samples stand; sample 1 of the file (line 2) and what follows it do not.\n"))
      << answer;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "0");
  EXPECT_EQ(import("", 2).status, 0) << "it is free again";
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSVDAT"), "4");
}

TEST_P(ImportFailure, leaves_nothing_of_a_sample_when_a_column_is_missing) {
  database().spoil();
  execute("ALTER TABLE CSVDAT DROP COLUMN VARVALUE");
  const Answer answer = import("", 2);
  EXPECT_EQ(answer.status, 1) << answer;
  EXPECT_TRUE(answer.complains("(no such object, ")) << answer;
  EXPECT_TRUE(answer.complains("0 of 2 samples stand")) << answer;
  EXPECT_TRUE(answer.complains("spc db check")) << answer;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "0");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSPAPPR"), "0");
}

/// Imports in this process on a session that plays a script before the real one.
class PlayedFailure : public ImportFailure {
 protected:
  PlayedFailure() : link_(database().connect_text(), nullptr) {
    test_support::play(link_.db(), script_);
    shape_ = spc::read_shape(link_, {profile_, "Rings"});
    samples_ = spc::prepare_samples(spc::parse_csv("in.csv", rings_of(2)), shape_, {});
  }

  std::vector<long> write() {
    return spc::write_samples(link_, "in.csv", shape_, {}, samples_, [&] { ++told_; });
  }

  spc::Problem problem_of_write() {
    try {
      write();
    } catch (const spc::Problem& problem) {
      return problem;
    }
    return {};
  }

  std::size_t commits() const { return script_->calls_of("commit").size(); }

  std::shared_ptr<test_support::Script> script_ = std::make_shared<test_support::Script>();
  spc::Link link_;
  spc::ProfileShape shape_;
  std::vector<spc::PreparedSample> samples_;
  int told_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Servers, PlayedFailure, test_support::main_servers(), test_support::server_name);

const spcdb::Diagnostic deadlock = test_support::error("40001", 1213, "Deadlock found; try restarting transaction");

TEST_P(PlayedFailure, tries_a_sample_again_after_a_deadlock_and_it_stands_once) {
  script_->on_regex("INSERT INTO .?CSVDAT.*").times(2).refuse(deadlock);
  EXPECT_EQ(write().size(), 2U);
  EXPECT_EQ(told_, 2);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "2");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSPAPPR"), "2");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSVDAT"), "4");
}

TEST_P(PlayedFailure, tries_again_when_the_engine_lost_the_deadlock) {
  script_->on_regex("UPDATE CSSPRN .*").once().refuse(deadlock);
  EXPECT_EQ(write().size(), 2U);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "2");
}

TEST_P(PlayedFailure, gives_up_on_a_deadlock_that_never_ends) {
  script_->on_regex("INSERT INTO .?CSVDAT.*").refuse(deadlock);
  const auto problem = problem_of_write();
  EXPECT_NE(problem.why.find("(deadlock, SQLSTATE 40001"), std::string::npos) << problem.why;
  EXPECT_EQ(problem.note, "0 of 2 samples stand; sample 1 of the file (line 2) and what follows it do not.");
  EXPECT_EQ(script_->calls_of("begin").size(), 5U);
  EXPECT_EQ(commits(), 0U);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "0");
}

TEST_P(PlayedFailure, never_tries_a_commit_in_doubt_again) {
  script_->lose_answer("commit", test_support::error("08007", 2013, "Lost connection during commit"));
  const auto problem = problem_of_write();
  EXPECT_NE(problem.why.find("(commit in doubt, SQLSTATE 08007"), std::string::npos) << problem.why;
  EXPECT_EQ(problem.note, "0 of 2 samples stand; whether sample 1 of the file (line 2) stands nobody knows.");
  EXPECT_EQ(commits(), 1U);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "1") << "it does, here, and it is there once";
}

TEST_P(PlayedFailure, says_how_many_samples_stand_before_one_that_fails) {
  script_->on_regex("INSERT INTO .?CSVDAT.*").times(2).pass();
  script_->on_regex("INSERT INTO .?CSVDAT.*").refuse(test_support::error("HY000", 1021, "Disk full"));
  const auto problem = problem_of_write();
  EXPECT_EQ(problem.note, "1 of 2 samples stand (number 1); sample 2 of the file (line 4) and what follows it do not.");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "1");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSVDAT"), "2");
}

/// "12 of 500 samples stand": 12.
int samples_said_to_stand(const std::string& err) {
  const auto at = err.find(" of 500 samples stand");
  if (at == std::string::npos) return -1;
  return std::stoi(err.substr(err.rfind(' ', at - 1) + 1));
}

long count(const std::string& connect_text, const char* table) {
  CDatabaseEx db;
  db.OpenEx(connect_text.c_str());
  RSCount rows(&db, table, nullptr);
  EXPECT_TRUE(rows.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly));
  return rows.result;
}

TEST(ServerGoesAway, in_the_middle_of_a_sample_leaves_whole_samples_alone) {
  test_support::PrivateMariaDb server;
  const auto database = server.create_database();
  const std::string connect = database.odbc_connect_text();
  ASSERT_EQ(command_test::run({"--connect", connect, "db", "create"}).status, 0);
  {
    CDatabaseEx db;
    db.OpenEx(connect.c_str());
    add_rings(db);
  }
  const test_support::ScratchFolder folder;
  std::ofstream(folder.file("in.csv")) << rings_of(500);
  int inserts = 0;
  const Answer answer = command_test::run(
      {"--trace", "--connect", connect, "sample", "import", folder.file("in.csv"), "--profile", "Rings"}, {},
      [&](const std::string& line) {
        if (line.find("CSVDAT") != std::string::npos && ++inserts == 15) server.kill_hard();
      });
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.complains("(link lost, ") || answer.complains("(commit in doubt, ")) << answer;
  const int stand = samples_said_to_stand(answer.err);
  EXPECT_GE(stand, 1) << answer;
  const Answer checked = command_test::run({"--connect", connect, "db", "check"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_TRUE(checked.err.starts_with("spc: cannot open the database ")) << checked;
  EXPECT_TRUE(checked.complains("(link lost, ")) << checked;

  server.restart();
  const long samples = count(connect, "CSSAMP");
  const bool in_doubt = answer.complains("commit in doubt");
  EXPECT_TRUE(samples == stand || (in_doubt && samples == stand + 1)) << samples << answer.err;
  EXPECT_EQ(count(connect, "CSVDAT"), 2 * samples);
  EXPECT_EQ(count(connect, "CSSPAPPR"), samples);
}

}  // namespace
