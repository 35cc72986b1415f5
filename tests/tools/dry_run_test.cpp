// Plan, on SQLite and on a private MariaDB server
//   Every command that changes something, walked from the table: its dry run leaves the whole database as it was,
//   answers
//     as the real run does, and counts what the real run sends, which fits what the database then holds
//   db create and demo: nothing is made; where the server commits by itself the statements are told and none is sent;
//     rev reset there tells those that the real one sends
//   JSON: the command's own inside; null where nothing was tried
//   Failing and interrupted commands leave nothing and tell nothing of what stands; each failing call into the driver
//   leaves nothing What cannot be taken back is not tried: a driver without transactions, a table without them, servers
//   by kind Statements are read for their tables; what the driver does not count is unknown
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "spcbase/platform/database/connection.h"
#include "spcbase/testkit/fail_kth_call.h"
#include "spcbase/testkit/scripted_session.h"
#include "tests/tools/dump.h"
#include "tests/tools/json_check.h"
#include "tests/tools/on_demo.h"
#include "tools/spc/command_table.h"
#include "tools/spc/dry_run.h"
#include "tools/spc/link.h"
#include "tools/spc/numbers.h"
#include "tools/spc/words.h"

namespace {

using command_test::Answer;
using command_test::Dump;
using command_test::dump_of;
using test_support::ServerKind;
using testing::HasSubstr;

constexpr const char* told = "Dry run: nothing was changed.\n";

struct Counts {
  long inserted = 0, updated = 0, deleted = 0;
  friend bool operator==(const Counts&, const Counts&) = default;
};
std::ostream& operator<<(std::ostream& out, const Counts& counts) {
  return out << '+' << counts.inserted << " ~" << counts.updated << " -" << counts.deleted;
}
using ByTable = std::map<std::string, Counts>;

/// What a real run sent, as its trace shows it.
ByTable traced(const std::string& trace) {
  static const std::regex line(
      R"(trace +[0-9.]+ ms +([0-9]+) rows?  +(INSERT INTO|UPDATE|DELETE FROM) [\[`"]?([A-Z0-9]+).*)");
  ByTable tables;
  std::istringstream lines(trace);
  std::smatch match;
  for (std::string text; std::getline(lines, text);) {
    if (!std::regex_match(text, match, line) || match[1] == "0") continue;
    const std::string verb = match[2];
    Counts& counts = tables[match[3]];
    (verb == "UPDATE"        ? counts.updated
     : verb == "DELETE FROM" ? counts.deleted
                             : counts.inserted) += std::stol(match[1]);
  }
  return tables;
}

/// The rows of a dry run's table.
ByTable counted(const std::string& answer) {
  static const std::regex row(R"(  ([A-Z0-9]+) +([0-9]+) +([0-9]+) +([0-9]+))");
  ByTable tables;
  std::istringstream lines(answer.substr(answer.find(told)));
  std::smatch match;
  for (std::string text; std::getline(lines, text);)
    if (std::regex_match(text, match, row))
      tables[match[1]] = {std::stol(match[2]), std::stol(match[3]), std::stol(match[4])};
  return tables;
}

/// Without moments, durations and the blanks and rules that follow from their widths.
std::string timeless(std::string answer) {
  answer = std::regex_replace(answer, std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)"), "MOMENT");
  answer = std::regex_replace(answer, std::regex(R"([0-9.]+ ms)"), "TIME");
  return std::regex_replace(answer, std::regex(" +|-{2,}"), " ");
}

std::string before_told(const std::string& answer) { return answer.substr(0, answer.find(told)); }

class DryRuns : public command_test::OnDemo {
 protected:
  Answer dry(std::vector<std::string> arguments) {
    arguments.emplace_back("--dry-run");
    return run(std::move(arguments));
  }
  void compare_with_real_run(const std::string& path);
  /// The same for a program; what runs it holds the answer against the schema.
  void answers_in_json(std::vector<std::string> line, const Answer& for_people);
};

INSTANTIATE_TEST_SUITE_P(Servers, DryRuns, test_support::main_servers(), test_support::server_name);

/// What the database holds more, less and otherwise fits what was counted.
void expect_fitting(const Dump& before, const Dump& after, const ByTable& counts, const std::string& path) {
  for (const auto& [table, rows] : after.tables) {
    if (table == "sqlite_sequence") continue;  // SQLite's own, which no statement names
    const auto old = before.tables.at(table);
    const auto found = counts.find(table);
    const Counts touched = found == counts.end() ? Counts() : found->second;
    EXPECT_EQ(static_cast<long>(rows.size()) - static_cast<long>(old.size()), touched.inserted - touched.deleted)
        << path << ' ' << table;
    std::vector<std::string> gone;
    std::ranges::set_difference(old, rows, std::back_inserter(gone));
    EXPECT_LE(static_cast<long>(gone.size()), touched.updated + touched.deleted) << path << ' ' << table;
  }
}

void DryRuns::answers_in_json(std::vector<std::string> line, const Answer& for_people) {
  line.emplace_back("--json");
  const Answer tried = dry(line);
  EXPECT_EQ(tried.status, for_people.status) << tried;
  const auto answer = json_check::parse(tried.out);
  EXPECT_TRUE(answer["rolled_back"].truth) << tried;
  ByTable tables;
  for (const auto& touched : answer["tables"].items)
    tables[touched["table"].text] = {static_cast<long>(touched["inserted"].number),
                                     static_cast<long>(touched["updated"].number),
                                     static_cast<long>(touched["deleted"].number)};
  EXPECT_EQ(tables, counted(for_people.out)) << tried;
}

void DryRuns::compare_with_real_run(const std::string& path) {
  auto line = line_for(path);
  ASSERT_FALSE(line.empty()) << path << " wants a case here";
  const Dump before = dump();
  const Answer tried = dry(line);
  EXPECT_EQ(tried.status, 0) << path << '\n' << tried;
  EXPECT_EQ(tried.err, "") << path;
  EXPECT_EQ(dump(), before) << path;
  answers_in_json(line, tried);
  EXPECT_EQ(dump(), before) << path;
  line.emplace_back("--trace");
  const Answer real = run(line);
  EXPECT_EQ(real.status, tried.status) << path << '\n' << real;
  EXPECT_EQ(timeless(before_told(tried.out)), timeless(real.out)) << path;
  const ByTable counts = counted(tried.out);
  EXPECT_FALSE(counts.empty()) << path << tried;
  EXPECT_EQ(counts, traced(real.err)) << path << '\n' << real;
  const Dump after = dump();
  EXPECT_NE(after, before) << path << " changed nothing: its case is no case";
  expect_fitting(before, after, counts, path);
}

TEST_P(DryRuns, leave_everything_as_it_was_and_tell_what_the_real_run_does) {
  const std::set<std::string_view> elsewhere = {"db create", "demo", "rev reset"};  // tests of their own below
  std::size_t seen = 0;
  for (const spc::Command& command : spc::commands()) {
    if (!command.changes || elsewhere.contains(command.path)) continue;
    compare_with_real_run(std::string(command.path));
    ++seen;
  }
  EXPECT_EQ(seen, 13U);
}

TEST_P(DryRuns, wrap_the_commands_own_json) {
  const Dump before = dump();
  const Answer tried = dry({"rev", "rebuild", "--json"});
  EXPECT_EQ(tried.status, 0) << "a dry run needs no --yes\n" << tried;
  EXPECT_EQ(dump(), before);
  const auto answer = json_check::parse(tried.out);
  EXPECT_TRUE(answer["dry_run"].truth);
  EXPECT_TRUE(answer["rolled_back"].truth);
  EXPECT_FALSE(answer["planned_only"].truth);
  ASSERT_EQ(answer["tables"].items.size(), 1U);
  EXPECT_EQ(answer["tables"].items[0]["table"].text, "CSOBJREV");
  EXPECT_TRUE(answer["answer"]["done"].truth);
}

TEST_P(DryRuns, of_a_reset_tell_the_statements_that_the_server_would_commit) {
  const Dump before = dump();
  const Answer tried = dry({"rev", "reset"});
  EXPECT_EQ(dump(), before);
  if (GetParam() == ServerKind::sqlite) {
    EXPECT_EQ(tried.status, 1) << "as the real one\n" << tried;
    EXPECT_TRUE(tried.complains("SQLite can neither drop nor add a foreign key")) << tried;
    return;
  }
  EXPECT_EQ(tried.status, 0) << tried;
  EXPECT_TRUE(tried.says("Nothing was tried: the server commits changes of the schema by itself")) << tried;
  const Answer real = run({"rev", "reset", "--yes", "--trace"});
  EXPECT_EQ(real.status, 0) << real;
  std::string sent;
  std::istringstream lines(real.err);
  for (std::string text; std::getline(lines, text);)
    for (const char* verb : {"TRUNCATE ", "ALTER "})
      if (const auto at = text.find(verb); at != std::string::npos && text.find("SPCNOKEY") == std::string::npos)
        sent += "  " + text.substr(at) + "\n";
  EXPECT_TRUE(tried.out.ends_with("These statements would be sent:\n" + sent)) << tried << sent;
}

TEST_P(DryRuns, of_a_new_demo_keep_the_old_one) {
  const Dump before = dump();
  const Answer tried = dry({"demo"});
  EXPECT_EQ(dump(), before);
  EXPECT_EQ(tried.status, 0) << tried;
  if (GetParam() == ServerKind::mariadb)
    EXPECT_TRUE(tried.says("These statements would be sent:\n  DROP VIEW") && tried.says("\n  CREATE TABLE ")) << tried;
  else
    EXPECT_EQ(counted(tried.out).at("CSSAMP"), (Counts{140, 0, 0})) << tried;
}

TEST_P(DryRuns, that_fail_leave_nothing_and_speak_of_nothing_that_stands) {
  database_.execute("UPDATE CSEXDB SET DATA = X'3C62726F6B656E' WHERE EXDBID = 1");
  database_.execute("DROP TABLE CSVDAT");
  const Dump before = dump();
  const Answer import = dry(line_for("sample import"));
  EXPECT_EQ(import.status, 1) << import;
  EXPECT_TRUE(import.says("Touched before it failed, and taken back:\n")) << import;
  EXPECT_TRUE(import.complains("It was a dry run: nothing was changed.")) << import;
  EXPECT_FALSE(import.complains("stand")) << import;
  const Answer rewrite = dry({"source", "rewrite"});
  EXPECT_EQ(rewrite.status, 1) << rewrite;
  EXPECT_EQ(dry({"payload", "put", "profile", "99", file("rings.csv")}).status, 1);
  EXPECT_EQ(dry({"db", "create"}).status, 1);
  EXPECT_EQ(dump(), before);
  const Answer real = run({"source", "rewrite"});
  EXPECT_EQ(real.status, 1);
  EXPECT_EQ(before_told(rewrite.out), real.out);
}

TEST_P(DryRuns, leave_nothing_when_they_are_interrupted) {
  std::ofstream rings(file("many.csv"));
  rings << "sample,piece,Diameter\n";
  for (int sample = 1; sample <= 1000; ++sample)
    for (int piece = 1; piece <= 5; ++piece)
      rings << sample << ',' << piece << ",74.0\n";
  rings.close();
  auto line = line_for("sample import");
  std::ranges::replace(line, file("rings.csv"), file("many.csv"));
  line.insert(line.end(), {"--dry-run", "--progress", "line", "--trace"});
  const Dump before = dump();
  const Answer answer = command_test::run_and_signal(on_database(line), ": 100 of 1000", {SIGINT});
  EXPECT_EQ(answer.status, 130) << answer;
  EXPECT_TRUE(answer.out.starts_with(told)) << answer;
  EXPECT_GE(counted(answer.out)["CSSAMP"].inserted, 100) << answer;
  EXPECT_TRUE(answer.complains("spc: interrupted: nothing was changed\n")) << answer;
  EXPECT_FALSE(answer.complains("stand")) << answer;
  EXPECT_EQ(dump(), before);
}

TEST_P(DryRuns, leave_nothing_when_any_call_into_the_driver_fails) {
  database_.execute("UPDATE CSSPRN SET MAXNO = 3");
  const auto counter = [&] { return dump().tables.at("CSSPRN"); };
  const auto before = counter();
  std::size_t k = 1;
  for (bool fired = true; fired; ++k) {
    std::ostringstream sink;
    spc::DryRun dry_run;
    test_support::FailKthCall hook(k);
    try {
      spc::Link link(database_.connect_text(), spc::Terminal{sink, sink, false, false, {}, &dry_run});
      link.db().connection()->session().gate().set_hook(&hook);
      spc::repair_numbers(link, spc::numbers_of("CSSAMP"));
    } catch (const spc::Problem&) {
      EXPECT_TRUE(hook.fired());
    }
    fired = hook.fired();
    EXPECT_EQ(dry_run.rolled_back(), !dry_run.doubt()) << k;
    ASSERT_EQ(counter(), before) << "call " << k << ' ' << hook.failed_function();
  }
  EXPECT_GT(k, 5U);
}

TEST_P(DryRuns, are_not_tried_on_tables_without_transactions) {
  if (GetParam() == ServerKind::mariadb) database_.execute("ALTER TABLE CSATYPE ENGINE = MyISAM");
  const Dump before = dump();
  const Answer tried = dry({"numbers", "repair", "--json"});
  EXPECT_EQ(tried.status, 0) << tried;
  EXPECT_EQ(dump(), before);
  const auto answer = json_check::parse(tried.out);
  EXPECT_EQ(answer["planned_only"].truth, GetParam() == ServerKind::mariadb) << "SQLite has no such tables";
  EXPECT_EQ(answer["tables"].items.empty(), GetParam() == ServerKind::mariadb);
  EXPECT_EQ(answer["answer"].kind == json_check::Value::Kind::null, GetParam() == ServerKind::mariadb);
}

class DryRunsOnNothing : public testing::TestWithParam<ServerKind> {
 protected:
  Answer dry(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--connect", database_.connect_text()});
    arguments.emplace_back("--dry-run");
    return command_test::run(arguments);
  }
  bool is_empty() {
    if (GetParam() == ServerKind::sqlite)
      return !std::filesystem::exists(database_.connect_text().substr(std::string("sqlite:").size()));
    return dump_of(GetParam(), database_.connect_text()).tables.empty();
  }
  command_test::EmptyDatabase database_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Servers, DryRunsOnNothing, test_support::main_servers(), test_support::server_name);

TEST_P(DryRunsOnNothing, make_no_schema) {
  const Answer tried = dry({"db", "create"});
  EXPECT_EQ(tried.status, 0) << tried;
  EXPECT_TRUE(is_empty());
  if (GetParam() == ServerKind::mariadb) {
    EXPECT_TRUE(tried.out.starts_with(std::string(told) + "Nothing was tried: ")) << tried;
    for (const auto& statement : schema::create_statements(schema::Server::mysql))
      EXPECT_TRUE(tried.says("  " + statement.substr(0, statement.find('\n')))) << statement;
    return;
  }
  const Answer real = command_test::run({"--connect", database_.connect_text(), "db", "create", "--trace"});
  EXPECT_EQ(before_told(tried.out), real.out);
  EXPECT_EQ(counted(tried.out), traced(real.err));
}

TEST_P(DryRunsOnNothing, build_no_demo) {
  const Answer tried = dry({"demo"});
  EXPECT_EQ(tried.status, 0) << tried;
  EXPECT_TRUE(is_empty());
  if (GetParam() == ServerKind::mariadb) {
    EXPECT_TRUE(tried.says("These statements would be sent:\n  CREATE TABLE")) << tried;
    return;
  }
  const Answer real = command_test::run({"--connect", database_.connect_text(), "demo", "--trace"});
  EXPECT_EQ(timeless(before_told(tried.out)), timeless(real.out));
  EXPECT_EQ(counted(tried.out), traced(real.err));
}

TEST(DryRunsOfFiles, make_none) {
  const test_support::ScratchFolder folder;
  const auto run = [&](std::vector<std::string> arguments) {
    arguments.emplace_back("--dry-run");
    Answer answer = command_test::run(arguments, folder.path().string());
    EXPECT_EQ(answer.status, 0) << answer;
    EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << answer;
    return answer;
  };
  EXPECT_TRUE(run({"db", "create"}).says("in sqlite:" + folder.file(".local/share/spc/spc.db") + "\n"));
  run({"demo"});
  run({"demo", "--keep", folder.file("kept.db"), "--report", folder.file("report.html")});
  const std::string braced = "sqlite:{" + folder.file("a;b.db") + "};Create=1";
  EXPECT_TRUE(run({"--connect", braced, "db", "create"}).says("Created "));
  for (const char* option : {";Create=2", ";Timeout=9; create = 1", ";Create={1};Timeout=9"})
    EXPECT_TRUE(run({"--connect", "sqlite:" + folder.file("new.db") + option, "db", "create"}).says("Created "));
  EXPECT_EQ(command_test::run({"--connect", "sqlite:" + folder.file("no/new.db"), "db", "create", "--dry-run"}).status,
            1)
      << "as the real one, since there is no folder";
}

/// A connection to a server that a script plays.
class DryRunsElsewhere : public testing::Test {
 protected:
  CDatabaseEx& db() {
    db_.adopt_session(std::make_unique<test_support::ScriptedSession>(script_));
    return db_;
  }
  std::shared_ptr<test_support::Script> script_ = std::make_shared<test_support::Script>();
  spc::DryRun dry_run_;

 private:
  CDatabaseEx db_;
};

TEST_F(DryRunsElsewhere, are_not_tried_by_a_driver_without_transactions) {
  script_->transactions(false);
  EXPECT_THROW(dry_run_.begin(db(), schema::Server::sql_server), spc::NotToBeRun);
  EXPECT_THAT(dry_run_.why_planned(), HasSubstr("the driver has no transactions"));
  EXPECT_TRUE(script_->statements().empty());
}

TEST_F(DryRunsElsewhere, know_which_servers_take_back_changes_of_the_schema) {
  const auto takes_back = [&](std::optional<schema::Server> server) {
    script_->transactions(true);
    script_->on_prefix("SELECT COUNT").answer({"RESULT"}, {{0}});
    CDatabaseEx& connection = db();
    spc::DryRun dry_run;
    dry_run.begin(connection, server);
    const bool answer = dry_run.takes_back_schema();
    dry_run.end(connection);
    EXPECT_TRUE(dry_run.rolled_back());
    return answer;
  };
  EXPECT_TRUE(takes_back(schema::Server::sql_server));
  EXPECT_TRUE(takes_back(schema::Server::sqlite));
  for (const auto server : {schema::Server::mysql, schema::Server::oracle, schema::Server::access})
    EXPECT_FALSE(takes_back(server)) << schema::name_of(server);
  constexpr unsigned short transaction_capable = 46;
  script_->information(transaction_capable, 0, 2);
  EXPECT_TRUE(takes_back(std::nullopt)) << "the driver says so";
  script_->information(transaction_capable, 0, 3);
  EXPECT_FALSE(takes_back(std::nullopt)) << "the driver says that it commits";
  script_->information(transaction_capable, -1);
  EXPECT_FALSE(takes_back(std::nullopt)) << "nobody knows";
}

TEST_F(DryRunsElsewhere, say_what_went_wrong) {
  script_->transactions(true);
  script_->on_prefix("DELETE").refuse(test_support::error("40001", 1213, "Deadlock found"));
  script_->on_prefix("ALTER").affect(0);
  for (const auto& [statement, why] : {std::pair{"DELETE FROM CSMON", "rolled its transaction back"},
                                       std::pair{"ALTER TABLE CSMON", "the server has committed ALTER TABLE CSMON"}}) {
    CDatabaseEx& connection = db();
    spc::DryRun dry_run;
    script_->information(46, 0, 3);
    dry_run.begin(connection, std::nullopt);
    static_cast<void>(guarded([&, text = statement] { connection.ExecuteSQL(text); }));
    dry_run.end(connection);
    ASSERT_TRUE(dry_run.doubt()) << statement;
    EXPECT_THAT(dry_run.doubt()->why, HasSubstr(why));
  }
  CDatabaseEx& connection = db();
  script_->refuse_call("rollback", test_support::error("08S01", 2006, "Server has gone away"));
  dry_run_.begin(connection, std::nullopt);
  dry_run_.end(connection);
  EXPECT_FALSE(dry_run_.rolled_back());
  ASSERT_TRUE(dry_run_.doubt());
  EXPECT_THAT(dry_run_.doubt()->why, HasSubstr("Server has gone away"));
}

TEST(TouchedRows, are_read_from_statements) {
  const auto table = [](const char* statement) {
    const auto change = spc::row_change_of(statement);
    return change ? change->table : std::string("none");
  };
  EXPECT_EQ(table("INSERT INTO CSMON(MONID) VALUES (1)"), "CSMON");
  EXPECT_EQ(table("insert into [CSMON] ([A]) values (1)"), "CSMON");
  EXPECT_EQ(table("UPDATE `csmon` SET A = 1"), "CSMON");
  EXPECT_EQ(table("UPDATE TOP (1) \"CSMON\" SET A = 1"), "CSMON");
  EXPECT_EQ(table("UPDATE plant.CSMON SET A = 1"), "CSMON");
  EXPECT_EQ(table("DELETE FROM CSMON"), "CSMON");
  EXPECT_EQ(table(" DELETE\nTOP (1) FROM CSMON WHERE A = 'FROM X'"), "CSMON");
  EXPECT_EQ(table("TRUNCATE TABLE CSREVDAT"), "CSREVDAT");
  EXPECT_EQ(table("SELECT A FROM CSMON"), "none");
  EXPECT_EQ(table("BEGIN"), "none");
  EXPECT_EQ(table(""), "none");
  EXPECT_EQ(table("UPDATE ["), "");
}

TEST(TouchedRows, that_the_driver_does_not_count_are_unknown) {
  spc::RowCounter counter;
  counter.count({"DELETE FROM CSMON", {}, 2, {}, nullptr});
  counter.count({"DELETE FROM CSMON", {}, -1, {}, nullptr});
  counter.count({"DELETE FROM CSMON", {}, 3, {}, nullptr});
  counter.count({"UPDATE CSMON SET A = 1", {}, 4, {}, nullptr});
  counter.count({"UPDATE CSPROF SET A = 1", {}, 0, {}, nullptr});
  ASSERT_EQ(counter.tables().size(), 1U) << "what was not touched is not told of";
  EXPECT_EQ(counter.tables().at("CSMON").deleted, std::nullopt);
  EXPECT_EQ(counter.tables().at("CSMON").updated, 4);
  EXPECT_EQ(counter.tables().at("CSMON").inserted, 0);
}

}  // namespace
