// Plan, on SQLite and on a private MariaDB server
//   Ctrl-C in an import: whole samples stand, as many as it says; SIGTERM has a status of its own
//   In a rebuild of all versions: all or nothing
//   In a rewrite of data sources: those that it says are saved
//   In db create and in the demo: nothing stays, no file either
//   In a reset, which no server undoes: it goes on to its end
//   Waiting for a lock it says after a second that it was heard; a second signal ends the command at once
//   --progress: lines without a terminal, objects, nothing
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include "spcbase/testkit/plant.h"
#include "tests/tools/json_check.h"
#include "tests/tools/program.h"
#include "tools/spc/words.h"

namespace {

using command_test::Answer;
using command_test::run_and_signal;
using test_support::ServerKind;

class Interrupted : public command_test::OnDatabase {
 protected:
  /// With a trace, which the command cannot write faster than it is read: so the signal always comes in time.
  std::vector<std::string> on_database(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--connect", database().connect_text(), "--progress", "line", "--trace"});
    return arguments;
  }
  std::string count(const std::string& table) { return value("SELECT COUNT(*) FROM " + table); }

  /// A profile, and a file with so many samples of two pieces for it.
  std::vector<std::string> import_of(int samples) {
    plant::Builder builder(db());
    builder.add_profile("Rings", "",
                        {plant::characteristic(builder.add_characteristic({"Width", "", plant::Kind::number, 2}))});
    std::ofstream file(folder_.file("in.csv"));
    file << "sample,Width\n";
    for (int i = 1; i <= samples; ++i)
      file << i << ",1.5\n" << i << ",2.5\n";
    return on_database({"sample", "import", folder_.file("in.csv"), "--profile", "Rings"});
  }
  /// The numbers 0 to 999 as a table n.
  static std::string thousand() {
    const std::string digits =
        "(SELECT 0 d UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4 UNION ALL SELECT 5 "
        "UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9)";
    return "(SELECT a.d + 10 * b.d + 100 * c.d AS i FROM " + digits + " a, " + digits + " b, " + digits + " c) n";
  }
  void add_revisions() {
    execute(
        "INSERT INTO CSOBJREV (REVID, OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, FLAG, CUSERID, CUSER, CREASON) "
        "SELECT i + 1, 5, 3, i + 1, 7, 7, 0, 7, 'anna', 'because' FROM " +
        thousand());
    for (int more = 1000; more < revisions; more += 1000)
      execute(
          "INSERT INTO CSOBJREV (REVID, OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, FLAG, CUSERID, CUSER, CREASON) "
          "SELECT REVID + " +
          std::to_string(more) + ", 5, 3, REVISION + " + std::to_string(more) +
          ", 7, 7, 0, 7, 'anna', 'because' FROM CSOBJREV WHERE REVID <= 1000");
  }

  static constexpr int revisions = 20'000;
  test_support::ScratchFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Servers, Interrupted, test_support::main_servers(), test_support::server_name);

TEST_P(Interrupted, an_import_leaves_whole_samples_as_many_as_it_says) {
  const Answer answer = run_and_signal(import_of(1000), ": 100 of 1000", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  EXPECT_EQ(answer.out, "");
  const std::string samples = count("CSSAMP");
  EXPECT_GE(std::stoi(samples), 100);
  EXPECT_LT(std::stoi(samples), 1000) << "the file was too short for a signal";
  EXPECT_TRUE(answer.complains("spc: interrupted: " + samples + " of 1000 samples stand (numbers 1 to " + samples +
                               "); sample " + std::to_string(std::stoi(samples) + 1) + " of the file (line "))
      << answer;
  EXPECT_TRUE(answer.complains(") and what follows it do not.\n")) << answer;
  EXPECT_EQ(count("CSVDAT"), std::to_string(2 * std::stoi(samples)));
}

TEST_P(Interrupted, a_wish_to_end_has_a_status_of_its_own) {
  const Answer answer = run_and_signal(import_of(1000), ": 100 of 1000", {SIGTERM});
  EXPECT_EQ(answer.status, 143) << answer;
  EXPECT_TRUE(answer.complains("spc: interrupted: ")) << answer;
}

TEST_P(Interrupted, a_rebuild_changes_nothing) {
  add_revisions();
  const Answer answer =
      run_and_signal(on_database({"rev", "rebuild", "--yes"}), "counting versions: 2000 of 20000", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  EXPECT_TRUE(answer.err.ends_with("spc: interrupted: nothing was changed\n")) << answer;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV WHERE MAJORVER = 7 AND MINORVER = 7"), std::to_string(revisions));
}

TEST_P(Interrupted, a_rebuild_in_json_says_that_it_was_not_done) {
  add_revisions();
  const Answer answer =
      run_and_signal(on_database({"rev", "rebuild", "--yes", "--json"}), "counting versions: 2000 of 20000", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  EXPECT_FALSE(json_check::parse(answer.out)["done"].truth);
}

TEST_P(Interrupted, a_rewrite_says_how_many_are_saved) {
  ASSERT_EQ(spc({"source", "add", "first"}).status, 0);
  execute(
      "INSERT INTO CSEXDB (EXDBID, NAME, FLG1, FLG2, DATA) SELECT i + 1000, 'copy', FLG1, FLG2, DATA FROM CSEXDB, " +
      thousand());
  execute("UPDATE CSEXDB SET MTIME = NULL");
  const Answer answer = run_and_signal(on_database({"source", "rewrite"}), "rewriting: 101 of 1001", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  const std::string saved = value("SELECT COUNT(*) FROM CSEXDB WHERE MTIME IS NOT NULL");
  EXPECT_GE(std::stoi(saved), 101);
  EXPECT_LT(std::stoi(saved), 1001);
  EXPECT_TRUE(answer.err.ends_with("spc: interrupted: " + saved +
                                   " of 1001 data sources are saved, the others stand as they were\n"))
      << answer;
}

TEST_P(Interrupted, an_audit_says_that_it_is_not_finished) {
  const Answer answer = run_and_signal(on_database({"doctor"}), "examining: ", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  EXPECT_TRUE(answer.err.ends_with("spc: interrupted: nothing was changed, and the audit is not finished\n")) << answer;
  EXPECT_EQ(answer.out, "");
}

class InterruptedWaiting : public Interrupted {
 protected:
  void SetUp() override {
    Interrupted::SetUp();
    // Without a trace: nothing that it writes holds it up before the lock.
    arguments_ = import_of(1);
    std::erase(arguments_, "--trace");
    if (kind() == ServerKind::sqlite) arguments_[1] += ";Timeout=60000";
    other_ = second_connection();
    other_->BeginTrans();
    other_->ExecuteSQL("UPDATE CSSPRN SET MAXNO = MAXNO");
  }
  /// Whether it is about to wait; leaves it the time to get there.
  static bool is_waiting(const std::string& line) {
    if (line.find(" 0 of 1") == std::string::npos) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    return true;
  }

  std::vector<std::string> arguments_;
  std::unique_ptr<CDatabaseEx> other_;
};

INSTANTIATE_TEST_SUITE_P(Servers, InterruptedWaiting, test_support::main_servers(), test_support::server_name);

TEST_P(InterruptedWaiting, for_a_lock_it_says_that_it_was_heard_and_stops_behind_the_lock) {
  bool told = false;
  const auto is_time = [&](const std::string& line) {
    if (line == "Stopping at the next safe point; a second signal stops at once.") {
      told = true;
      other_->Rollback();
    }
    return is_waiting(line);
  };
  const Answer answer = run_and_signal(arguments_, is_time, {SIGINT});
  EXPECT_TRUE(told) << answer;
  EXPECT_EQ(answer.status, 130) << answer;
  EXPECT_TRUE(answer.complains("spc: interrupted: ")) << answer;
  EXPECT_EQ(count("CSSAMP"), "0");
}

TEST_P(InterruptedWaiting, a_second_signal_ends_the_command_at_once) {
  const auto begin = std::chrono::steady_clock::now();
  const Answer answer = run_and_signal(arguments_, is_waiting, {SIGINT, SIGINT});
  other_->Rollback();
  EXPECT_EQ(answer.status, -1) << "by the signal " << answer;
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
  EXPECT_EQ(count("CSSAMP"), "0");
}

class InterruptedAnew : public testing::TestWithParam<ServerKind> {
 protected:
  command_test::EmptyDatabase database_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Servers, InterruptedAnew, test_support::main_servers(), test_support::server_name);

TEST_P(InterruptedAnew, making_the_schema_leaves_an_empty_database) {
  const Answer answer = run_and_signal({"--connect", database_.connect_text(), "--trace", "db", "create"},
                                       "CREATE TABLE CSSAMP", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  const std::string place = database_.connect_text();
  const std::string stands = GetParam() == ServerKind::sqlite
                                 ? place.substr(place.find(':') + 1) + " was made, and is empty."
                                 : std::string("nothing was changed");
  EXPECT_TRUE(answer.err.ends_with("spc: interrupted: " + stands + "\n")) << answer;
  EXPECT_EQ(command_test::run({"--connect", database_.connect_text(), "db", "create"}).status, 0)
      << "nothing stood in the way";
}

TEST_P(InterruptedAnew, the_demo_leaves_an_empty_database) {
  const Answer answer = run_and_signal({"--connect", database_.connect_text(), "--progress", "line", "--trace", "demo"},
                                       "juice_cans.csv: ", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  EXPECT_TRUE(answer.err.ends_with("spc: interrupted: the demo was not finished, and its database is empty again\n"))
      << answer;
  EXPECT_EQ(answer.out, "");
  EXPECT_EQ(command_test::run({"--connect", database_.connect_text(), "db", "create"}).status, 0);
}

TEST(InterruptedDemo, removes_the_file_that_was_to_be_kept) {
  const test_support::ScratchFolder folder;
  const Answer answer = run_and_signal({"--progress", "json", "--trace", "demo", "--keep", folder.file("plant.db")},
                                       "juice_cans.csv", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  EXPECT_TRUE(answer.complains("spc: interrupted: " + folder.file("plant.db") + " was not finished and is removed\n"))
      << answer;
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(InterruptedReset, goes_on_to_its_end) {
  test_support::SchemaDatabase database(ServerKind::mariadb);
  database.execute(
      "INSERT INTO CSOBJREV (REVID, OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, FLAG, CUSERID, CUSER, CREASON) "
      "VALUES (1, 5, 3, 1, 0, 1, 0, 7, 'anna', 'because')");
  const Answer answer = run_and_signal({"--connect", database.connect_text(), "--trace", "rev", "reset", "--yes"},
                                       "DROP FOREIGN KEY FKREVDAT1", {SIGINT});
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_TRUE(answer.says("Done.\n"));
  EXPECT_EQ(database.value("SELECT COUNT(*) FROM CSOBJREV"), "0");
}

TEST(ProgressOption, tells_in_the_wanted_form) {
  const auto err_of = [](const char* style) {
    const Answer answer = command_test::run({"--progress", style, "demo"});
    EXPECT_EQ(answer.status, 0) << answer;
    return answer.err;
  };
  EXPECT_NE(err_of("line").find("read back and compare: 70 of 140\n"), std::string::npos);
  EXPECT_NE(err_of("bar").find("read back and compare: 70 of 140\n"), std::string::npos) << "no terminal";
  EXPECT_EQ(err_of("none"), "");
  const auto lines = spc::words_of(err_of("json"), "\n");
  EXPECT_GT(lines.size(), 200U);
  for (const auto& line : lines)
    EXPECT_LE(json_check::parse(line)["done"].number, json_check::parse(line)["total"].number) << line;
  EXPECT_EQ(command_test::run({"--progress", "loud", "demo"}).status, 2);
}

}  // namespace
