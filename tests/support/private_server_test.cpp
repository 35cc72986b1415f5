// Plan
//   A fresh database is empty, has a name of its own and is dropped with its object -> TestDatabase
//   A private server can be killed and comes back with its data on the same socket -> PrivateMariaDb
//   Its folder is gone with the object, and after a crash of the program that started it -> PrivateMariaDb
//   What keeps it from starting is told: a program that is missing by its package -> PrivateMariaDb
#include "spcbase/testkit/private_server.h"

#include <gmock/gmock.h>
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
#include "tests/support/environment_guard.h"

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

TEST(PrivateMariaDb, that_does_not_come_back_says_so_and_so_does_every_later_call) {
  PrivateMariaDb server;
  server.kill_hard();
  std::filesystem::remove_all(std::filesystem::path(server.socket()).parent_path() / "data");
  try {
    server.restart();
    FAIL() << "a server without data";
  } catch (const std::runtime_error& failure) {
    EXPECT_THAT(failure.what(), testing::HasSubstr("the server did not start"));
  }
  EXPECT_THROW(server.kill_hard(), std::runtime_error);
  EXPECT_THROW(server.restart(), std::runtime_error);
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

TEST(PrivateMariaDb, names_the_package_of_a_program_that_is_missing) {
  const ScratchFolder bare;
  const test_support::EnvironmentGuard path("PATH", bare.path().string());
  try {
    const PrivateMariaDb server;
    FAIL() << "a server without its programs";
  } catch (const std::runtime_error& failure) {
    EXPECT_THAT(failure.what(), testing::HasSubstr("the program mariadb-install-db is missing; the package "
                                                   "mariadb-server-core has it"));
  }
}

TEST(PrivateMariaDb, tells_why_it_does_not_start) {
  const ScratchFolder bare;
  const test_support::EnvironmentGuard missing("SPC_TEST_MARIADB_TEMPLATE", bare.file("missing"));
  try {
    const PrivateMariaDb server;
    FAIL() << "a server without data";
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(),
                 "the private MariaDB server does not run: the data folder could not be copied (its log stands on "
                 "standard error)");
  }
}

}  // namespace
