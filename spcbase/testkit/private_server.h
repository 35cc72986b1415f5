/// Real MariaDB servers for tests: unprivileged, on a socket in a temporary folder, gone when the test is.
///
/// Most tests want a fresh database and nothing else:
///
///     test_support::TestDatabase database = test_support::PrivateMariaDb::shared().create_database();
///     open(database.odbc_connect_text());
///
/// A test that kills its server makes one of its own: `test_support::PrivateMariaDb server;`. A server that does not
/// start is a failure of the test, with the server's log on standard error; it is never a reason to pass over the test.
/// The server's programs come from the packages mariadb-server-core and mariadb-client-core, its driver from
/// odbc-mariadb; what is missing is named by the failure.
/// A child that a test forks leaves through `_exit`: else it would drop its parent's databases.
#pragma once

#include <memory>
#include <string>

namespace test_support {

class PrivateMariaDb;

/// The script that keeps a server, for bash.
extern const char* const private_mariadb_script;

/// A database with a name of its own on a private server; dropped when the object goes.
class TestDatabase {
 public:
  TestDatabase(TestDatabase&& other) noexcept;
  TestDatabase& operator=(TestDatabase&&) = delete;
  TestDatabase(const TestDatabase&) = delete;
  TestDatabase& operator=(const TestDatabase&) = delete;
  ~TestDatabase();

  /// Its name on the server.
  const std::string& name() const { return name_; }

  /// The connect text of an ODBC connection to it, without the leading "ODBC;".
  std::string odbc_connect_text() const;

 private:
  friend class PrivateMariaDb;
  TestDatabase(PrivateMariaDb& server, std::string name);

  PrivateMariaDb* server_;
  std::string name_;
};

/// A private MariaDB server. One object belongs to one thread at a time.
class PrivateMariaDb {
 public:
  /// The server of the whole run when the variable SPC_TEST_MARIADB_SOCKET names its socket (user spc, password spc,
  /// every right), else one for this program, started at the first call and stopped at the program's end. Never to be
  /// killed by a test.
  /// Fails: std::runtime_error when it does not start.
  static PrivateMariaDb& shared();

  /// Starts a server of its own. It dies with this object, and with this process however that ends.
  /// Fails: std::runtime_error when it does not start.
  [[nodiscard]] PrivateMariaDb();
  ~PrivateMariaDb();
  PrivateMariaDb(const PrivateMariaDb&) = delete;
  PrivateMariaDb& operator=(const PrivateMariaDb&) = delete;

  /// The file of the server's socket.
  const std::string& socket() const { return socket_; }

  /// The connect text of an ODBC connection, as a user with every right; no database is chosen when it is empty.
  std::string odbc_connect_text(const std::string& database) const;

  /// A fresh, empty database.
  /// Fails: std::runtime_error when the driver is missing or refuses.
  TestDatabase create_database();

  /// Kills the server with SIGKILL and waits until it is gone.
  /// Fails: std::logic_error on the server of the whole run, which is not one's own; so does `restart`.
  void kill_hard();

  /// Starts a killed server again on the same data and the same socket.
  void restart();

 private:
  class Keeper;
  [[nodiscard]] explicit PrivateMariaDb(std::string running_socket);

  std::unique_ptr<Keeper> keeper_;  // null when attached to the server of the run
  std::string socket_;
};

}  // namespace test_support
