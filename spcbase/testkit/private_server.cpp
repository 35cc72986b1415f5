#include "spcbase/testkit/private_server.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "spcbase/testkit/raw_odbc.h"

namespace test_support {
namespace {

struct Pipe {
  int read_end = -1;
  int write_end = -1;
};

// Closed in every other child, so that the end of this process is the end of the keeper's input.
Pipe make_pipe() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the private server");
  return {ends[0], ends[1]};
}

}  // namespace

/// The script that keeps the server, spoken to through its standard input and output.
class PrivateMariaDb::Keeper {
 public:
  Keeper() {
    const Pipe commands = make_pipe();
    const Pipe answers = make_pipe();
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(commands.read_end, STDIN_FILENO);
      ::dup2(answers.write_end, STDOUT_FILENO);
      ::execl("/bin/bash", "bash", "-c", private_mariadb_script, "private_mariadb", nullptr);
      constexpr std::string_view no_bash = "failed the program /bin/bash is missing; the package bash has it\n";
      const auto told = ::write(STDOUT_FILENO, no_bash.data(), no_bash.size());
      ::_exit(told > 0 ? 127 : 126);
    }
    ::close(commands.read_end);
    ::close(answers.write_end);
    commands_ = commands.write_end;
    answers_ = answers.read_end;
  }

  Keeper(const Keeper&) = delete;
  Keeper& operator=(const Keeper&) = delete;

  ~Keeper() {
    ::close(commands_);
    ::close(answers_);
    if (process_ > 0) ::waitpid(process_, nullptr, 0);
  }

  void send(const std::string& command) {
    const std::string line = command + "\n";
    // Asked first: to write to one that has ended would end this process too.
    if (process_ > 0 && ::waitpid(process_, nullptr, WNOHANG) == process_) process_ = -1;
    if (process_ < 0 || ::write(commands_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
      throw std::runtime_error("the private server's keeper is gone");
    }
  }

  /// The words of the next answer. Fails when it is not the one expected; the reason stands on standard error.
  std::istringstream expect(const std::string& word) {
    std::string line;
    char next = 0;
    while (::read(answers_, &next, 1) == 1 && next != '\n')
      line += next;
    std::istringstream words(line);
    std::string first;
    words >> first;
    if (first == word) return words;
    if (first != "failed") throw std::runtime_error("the keeper of the private MariaDB server ended without an answer");
    const std::string why = line.substr(std::min(line.size(), first.size() + 1));
    throw std::runtime_error("the private MariaDB server does not run: " + why + " (its log stands on standard error)");
  }

 private:
  pid_t process_ = -1;
  int commands_ = -1;
  int answers_ = -1;
};

PrivateMariaDb& PrivateMariaDb::shared() {
  static const std::unique_ptr<PrivateMariaDb> server = [] {
    const char* running = std::getenv("SPC_TEST_MARIADB_SOCKET");
    if (running == nullptr || *running == 0) return std::make_unique<PrivateMariaDb>();
    return std::unique_ptr<PrivateMariaDb>(new PrivateMariaDb(running));
  }();
  return *server;
}

PrivateMariaDb::PrivateMariaDb() : keeper_(std::make_unique<Keeper>()) { keeper_->expect("ready") >> socket_; }

PrivateMariaDb::PrivateMariaDb(std::string running_socket) : socket_(std::move(running_socket)) {}

PrivateMariaDb::~PrivateMariaDb() = default;

std::string PrivateMariaDb::odbc_connect_text(const std::string& database) const {
  std::string text = "Driver={MariaDB Unicode};SOCKET=" + socket_ + ";UID=spc;PWD=spc;OPTION=2";
  if (!database.empty()) text += ";DB=" + database;
  return text;
}

TestDatabase PrivateMariaDb::create_database() {
  static std::atomic<int> count{0};
  const std::string name = "t" + std::to_string(::getpid()) + "_" + std::to_string(++count);
  RawOdbc(odbc_connect_text({})).execute("CREATE DATABASE " + name);
  return TestDatabase(*this, name);
}

void PrivateMariaDb::kill_hard() {
  if (keeper_ == nullptr) throw std::logic_error("the server of the whole run is not to be killed");
  keeper_->send("kill");
  keeper_->expect("killed");
}

void PrivateMariaDb::restart() {
  if (keeper_ == nullptr) throw std::logic_error("the server of the whole run is not to be started again");
  keeper_->send("start");
  keeper_->expect("ready");
}

TestDatabase::TestDatabase(PrivateMariaDb& server, std::string name) : server_(&server), name_(std::move(name)) {}

TestDatabase::TestDatabase(TestDatabase&& other) noexcept
    : server_(std::exchange(other.server_, nullptr)), name_(std::move(other.name_)) {}

TestDatabase::~TestDatabase() {
  if (server_ == nullptr) return;
  try {
    RawOdbc connection(server_->odbc_connect_text({}));
    // A connection that the test left open must not hold the drop up; the server goes with the run anyway.
    connection.execute("SET SESSION lock_wait_timeout = 5");
    connection.execute("DROP DATABASE " + name_);
  } catch (const std::runtime_error&) {  // NOLINT(bugprone-empty-catch): the server may have been killed by the test
  }
}

std::string TestDatabase::odbc_connect_text() const { return server_->odbc_connect_text(name_); }

}  // namespace test_support
