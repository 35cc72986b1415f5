// Plan
//   A fresh database is empty, has a name of its own and is dropped with its object -> TestDatabase
//   A private server can be killed and comes back with its data on the same socket -> PrivateMariaDb
//   Its folder is gone with the object, and after a crash of the program that started it -> PrivateMariaDb
//   Null and empty stay apart, long texts come whole, a refused statement throws -> RawOdbc
//   A scratch folder is empty, and gone with its object -> ScratchFolder
#include "spcbase/testkit/private_server.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "spcbase/testkit/raw_odbc.h"
#include "spcbase/testkit/scratch_folder.h"

namespace {

using test_support::PrivateMariaDb;
using test_support::RawOdbc;
using test_support::ScratchFolder;

TEST(TestDatabase, is_empty_and_has_a_name_of_its_own) {
  const auto first = PrivateMariaDb::shared().create_database();
  const auto second = PrivateMariaDb::shared().create_database();
  EXPECT_NE(first.name(), second.name());
  EXPECT_TRUE(RawOdbc(first.odbc_connect_text()).rows("SHOW TABLES").empty());
}

TEST(TestDatabase, is_dropped_with_its_object) {
  std::string name;
  {
    const auto database = PrivateMariaDb::shared().create_database();
    name = database.name();
    RawOdbc(database.odbc_connect_text()).execute("CREATE TABLE t (a INT)");
  }
  EXPECT_THROW(RawOdbc(PrivateMariaDb::shared().odbc_connect_text(name)), std::runtime_error);
}

TEST(PrivateMariaDb, a_killed_server_comes_back_with_its_data_on_the_same_socket) {
  PrivateMariaDb server;
  const std::string socket = server.socket();
  const auto database = server.create_database();
  RawOdbc before(database.odbc_connect_text());
  before.execute("CREATE TABLE t (a INT) ENGINE=InnoDB");
  before.execute("INSERT INTO t VALUES (7)");
  server.kill_hard();
  EXPECT_THROW(before.execute("INSERT INTO t VALUES (8)"), std::runtime_error);
  EXPECT_THROW(RawOdbc{database.odbc_connect_text()}, std::runtime_error);
  server.restart();
  EXPECT_EQ(server.socket(), socket);
  EXPECT_EQ(RawOdbc(database.odbc_connect_text()).value("SELECT SUM(a) FROM t"), "7");
}

TEST(PrivateMariaDb, its_folder_is_gone_with_the_object) {
  std::string socket;
  {
    const PrivateMariaDb server;
    socket = server.socket();
    EXPECT_TRUE(std::filesystem::exists(socket));
  }
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(socket).parent_path()));
}

TEST(PrivateMariaDb, its_folder_is_gone_after_a_crash_of_its_program) {
  const ScratchFolder scratch;
  const std::string note = scratch.file("socket");
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const PrivateMariaDb server;
    std::ofstream(note) << server.socket() << std::flush;
    ::kill(::getpid(), SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  std::string socket;
  std::ifstream(note) >> socket;
  ASSERT_FALSE(socket.empty());
  const std::filesystem::path folder = std::filesystem::path(socket).parent_path();
  for (int i = 0; i < 1200 && std::filesystem::exists(folder); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(RawOdbc, keeps_null_apart_from_empty_and_reads_long_texts_whole) {
  RawOdbc connection(PrivateMariaDb::shared().odbc_connect_text({}));
  const auto rows = connection.rows("SELECT NULL, '', REPEAT('x', 10000)");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0][0], std::nullopt);
  EXPECT_EQ(rows[0][1], "");
  EXPECT_EQ(rows[0][2], std::string(10000, 'x'));
}

TEST(RawOdbc, a_refused_statement_throws_with_state_and_native_code) {
  RawOdbc connection(PrivateMariaDb::shared().odbc_connect_text({}));
  try {
    connection.execute("SELECT nothing FROM nowhere.nothing");
    FAIL() << "the statement was not refused";
  } catch (const std::runtime_error& failure) {
    EXPECT_TRUE(std::string(failure.what()).starts_with("42S02 ")) << failure.what();
  }
}

TEST(ScratchFolder, is_empty_and_gone_with_its_object) {
  std::filesystem::path path;
  {
    const ScratchFolder folder;
    path = folder.path();
    EXPECT_TRUE(std::filesystem::is_empty(path));
    std::ofstream(folder.file("x")) << "x";
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
