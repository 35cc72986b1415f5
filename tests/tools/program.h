/// Runs the real command, and databases for it to work on.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/scratch_folder.h"

namespace command_test {

/// How a run of the command ended.
struct Answer {
  int status = -1;  ///< -1 when it was ended by a signal
  std::string out;
  std::string err;

  bool says(const std::string& text) const { return out.find(text) != std::string::npos; }
  bool complains(const std::string& text) const { return err.find(text) != std::string::npos; }
};

/// Everything, for the message of a failed expectation.
std::ostream& operator<<(std::ostream& out, const Answer& answer);

/// Runs `spc` in a process of its own. What it answers to --json is held against the schema of the command: a test
/// fails that gets something else. Its environment holds nothing but PATH, and `home` as HOME when it is not empty.
/// `on_error_line` sees each line of standard error as it comes, while the command goes on.
/// Fails: std::runtime_error when it cannot be started.
Answer run(const std::vector<std::string>& arguments, const std::string& home = {},
           const std::function<void(const std::string&)>& on_error_line = {});

/// The commands whose JSON was held against their schemas in this process.
const std::set<std::string>& commands_with_checked_json();

/// Runs `spc` in a time zone; `more` are further variables of its environment, "LC_TIME=de_DE".
Answer run_in_zone(const std::string& zone, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& more = {});

/// As `run`; `prepare` is called in the new process before the command begins there: it may open files for it.
Answer run_prepared(const std::vector<std::string>& arguments, const std::function<void()>& prepare);

/// As `run`, without anybody at standard input; `line` and a line end stand on the file descriptor 3.
Answer run_with_line(const std::vector<std::string>& arguments, const std::string& line);

/// As `run`; when a line of standard error holds `mark`, the command is sent this signal, or several after pauses.
Answer run_and_signal(const std::vector<std::string>& arguments, const std::string& mark,
                      const std::vector<int>& numbers);
/// The same at the first line for which `is_time` is true. It sees every line.
Answer run_and_signal(const std::vector<std::string>& arguments, const std::function<bool(const std::string&)>& is_time,
                      const std::vector<int>& numbers);

/// A test that runs the command on a database with the schema.
class OnDatabase : public test_support::DatabaseTest {
 protected:
  Answer spc(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--connect", database().connect_text()});
    return run(arguments);
  }
};

/// A database without anything in it.
class EmptyDatabase {
 public:
  explicit EmptyDatabase(test_support::ServerKind kind);
  const std::string& connect_text() const { return connect_text_; }
  /// Runs a statement beside the command. An SQLite file is made by it.
  void execute(const std::string& statement);

 private:
  test_support::ScratchFolder folder_;
  std::unique_ptr<test_support::TestDatabase> on_server_;
  std::string connect_text_;
};

/// Runs a statement on a connection of its own.
void execute(const std::string& connect_text, const std::string& statement);

}  // namespace command_test
