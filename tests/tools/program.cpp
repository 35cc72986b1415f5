#include "tests/tools/program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "spcbase/foundation/connection.h"
#include "tests/tools/schema_check.h"
#include "tools/spc/grammar.h"
#include "tools/spc/pages.h"
#include "tools/spc/problem.h"

namespace command_test {
namespace {

std::string content_of(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Is told of each line of standard error, and of the process that wrote it.
using OnLine = std::function<void(const std::string&, pid_t)>;

/// Reads to the end, and hands each line on as it comes.
std::string read_lines(int from, pid_t process, const OnLine& on_line) {
  std::string all;
  std::size_t line_begin = 0;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = ::read(from, buffer.data(), buffer.size())) > 0;) {
    all.append(buffer.data(), static_cast<std::size_t>(count));
    for (auto end = all.find('\n', line_begin); end != std::string::npos; end = all.find('\n', line_begin)) {
      if (on_line) on_line(all.substr(line_begin, end - line_begin), process);
      line_begin = end + 1;
    }
  }
  return all;
}

std::vector<char*> pointers_to(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environment() {
  std::vector<std::string> made = {"PATH=/usr/bin:/bin"};
  // What the sanitizers are told must reach the command too.
  for (const char* name : {"TMPDIR", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"})
    if (const char* value = std::getenv(name)) made.push_back(std::string(name) + "=" + value);
  return made;
}

std::set<std::string> checked_commands;

/// The command whose JSON a command line asks for, or null.
const spc::Command* json_command(const std::vector<std::string>& arguments) {
  if (std::ranges::find(arguments, "--json") == arguments.end()) return nullptr;
  std::vector<const char*> argv = {"spc"};
  for (const auto& argument : arguments)
    argv.push_back(argument.c_str());
  try {
    const spc::Reading reading = spc::read_arguments(static_cast<int>(argv.size()), argv.data());
    if (reading.wish != spc::Reading::Wish::task || !reading.request.json || reading.request.source.xml) return nullptr;
    return reading.command;
  } catch (const spc::Problem&) {
    return nullptr;
  }
}

/// Whoever fails before the answer prints nothing at all.
void hold_against_schema(const std::vector<std::string>& arguments, const Answer& answer) {
  const spc::Command* command = json_command(arguments);
  if (command == nullptr || (answer.out.empty() && answer.status != 0)) return;
  const std::string name(command->path);
  ASSERT_NE(command->json, nullptr) << name << " has no shape of its JSON\n" << answer;
  try {
    const auto schema = json_check::parse(spc::schema_of(*command));
    EXPECT_EQ(schema_check::fault_in(json_check::parse(answer.out), schema), "") << name << '\n' << answer;
    checked_commands.insert(name);
  } catch (const std::runtime_error& error) {
    ADD_FAILURE() << name << ": " << error.what() << '\n' << answer;
  }
}

/// Of both kinds a pipe is as small as can be: a command that says much cannot run ahead of whoever waits for a line to
/// signal it. In the second it waits for its reader at each thing that it writes.
enum class Pipe : unsigned char { bytes, pieces };

/// An open file of ours, and the descriptor under which the command finds it.
struct Given {
  int ours;
  int its;
};

struct Start {
  std::vector<Given> files;
  std::function<void()> prepare;  ///< called in the new process, when files are not enough
  Pipe kind = Pipe::bytes;
};

/// Starts the command without a copy of this process: with sanitizers that takes longer than most commands.
pid_t spawn(const std::vector<Given>& files, const std::vector<char*>& argv, const std::vector<char*>& envp) {
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  for (const auto& file : files)
    ::posix_spawn_file_actions_adddup2(&actions, file.ours, file.its);
  // Whoever starts the tests behind a shell's back may have them ignore Ctrl-C.
  sigset_t usual;
  ::sigemptyset(&usual);
  ::sigaddset(&usual, SIGINT);
  ::sigaddset(&usual, SIGTERM);
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  ::posix_spawnattr_setsigdefault(&attributes, &usual);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  pid_t process = -1;
  const int fault = ::posix_spawn(&process, SPC_PROGRAM, &actions, &attributes, argv.data(), envp.data());
  ::posix_spawnattr_destroy(&attributes);
  ::posix_spawn_file_actions_destroy(&actions);
  return fault == 0 ? process : -1;
}

pid_t start_process(const Start& start, const std::vector<char*>& argv, const std::vector<char*>& envp) {
  if (!start.prepare) return spawn(start.files, argv, envp);
  const pid_t process = ::fork();
  if (process != 0) return process;
  for (const auto& file : start.files)
    ::dup2(file.ours, file.its);
  start.prepare();
  ::execve(SPC_PROGRAM, argv.data(), envp.data());
  ::_exit(127);
}

Answer run_with(std::vector<std::string> variables, const std::vector<std::string>& arguments,
                const OnLine& on_error_line, Start start = {}) {
  const test_support::ScratchFolder folder;
  std::vector<std::string> texts = {SPC_PROGRAM};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  const int out = ::open(folder.file("out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  int ends[2] = {-1, -1};
  if (out < 0 || ::pipe2(ends, start.kind == Pipe::pieces ? O_CLOEXEC | O_DIRECT : O_CLOEXEC) != 0)
    throw std::runtime_error("no way to read what the command says");
  ::fcntl(ends[1], F_SETPIPE_SZ, 4096);
  start.files.insert(start.files.begin(), {{out, STDOUT_FILENO}, {ends[1], STDERR_FILENO}});
  const pid_t process = start_process(start, pointers_to(texts), pointers_to(variables));
  ::close(out);
  ::close(ends[1]);
  Answer answer;
  answer.err = read_lines(ends[0], process, on_error_line);
  ::close(ends[0]);
  int status = 0;
  if (process < 0 || ::waitpid(process, &status, 0) != process) throw std::runtime_error("the command did not start");
  if (WIFEXITED(status)) answer.status = WEXITSTATUS(status);
  answer.out = content_of(folder.file("out"));
  hold_against_schema(arguments, answer);
  return answer;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
  return out << "status " << answer.status << "\n--- standard output\n"
             << answer.out << "--- standard error\n"
             << answer.err << "---";
}

const std::set<std::string>& commands_with_checked_json() { return checked_commands; }

Answer run(const std::vector<std::string>& arguments, const std::string& home,
           const std::function<void(const std::string&)>& on_error_line) {
  std::vector<std::string> variables = environment();
  if (!home.empty()) variables.push_back("HOME=" + home);
  if (!on_error_line) return run_with(std::move(variables), arguments, {});
  return run_with(std::move(variables), arguments, [&](const std::string& line, pid_t) { on_error_line(line); });
}

Answer run_in_zone(const std::string& zone, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& more) {
  std::vector<std::string> variables = environment();
  variables.push_back("TZ=" + zone);
  variables.insert(variables.end(), more.begin(), more.end());
  return run_with(std::move(variables), arguments, {});
}

Answer run_prepared(const std::vector<std::string>& arguments, const std::function<void()>& prepare) {
  return run_with(environment(), arguments, {}, {.files = {}, .prepare = prepare});
}

Answer run_with_line(const std::vector<std::string>& arguments, const std::string& line) {
  const test_support::ScratchFolder folder;
  std::ofstream(folder.file("line")) << line << '\n';
  const int nobody = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  const int with_line = ::open(folder.file("line").c_str(), O_RDONLY | O_CLOEXEC);
  Answer answer =
      run_with(environment(), arguments, {}, {.files = {{nobody, STDIN_FILENO}, {with_line, 3}}, .prepare = {}});
  ::close(nobody);
  ::close(with_line);
  return answer;
}

Answer run_and_signal(const std::vector<std::string>& arguments, const std::function<bool(const std::string&)>& is_time,
                      const std::vector<int>& numbers) {
  bool sent = false;
  const auto send = [&](const std::string& line, pid_t process) {
    if (!is_time(line) || sent) return;
    sent = true;
    for (const int number : numbers) {
      if (numbers.size() > 1) std::this_thread::sleep_for(std::chrono::milliseconds(300));
      ::kill(process, number);
    }
  };
  auto answer = run_with(environment(), arguments, send, {.files = {}, .prepare = {}, .kind = Pipe::pieces});
  EXPECT_TRUE(sent) << "the time never came\n" << answer;
  return answer;
}

Answer run_and_signal(const std::vector<std::string>& arguments, const std::string& mark,
                      const std::vector<int>& numbers) {
  return run_and_signal(
      arguments, [&](const std::string& line) { return line.find(mark) != std::string::npos; }, numbers);
}

EmptyDatabase::EmptyDatabase(test_support::ServerKind kind) {
  if (kind == test_support::ServerKind::sqlite) {
    connect_text_ = "sqlite:" + folder_.file("plant.db");
  } else {
    on_server_ = std::make_unique<test_support::TestDatabase>(test_support::PrivateMariaDb::shared().create_database());
    connect_text_ = on_server_->odbc_connect_text();
  }
}

void EmptyDatabase::execute(const std::string& statement) {
  command_test::execute(on_server_ ? connect_text_ : connect_text_ + ";Create=1", statement);
}

void execute(const std::string& connect_text, const std::string& statement) {
  const auto outcome = guarded([&] {
    CDatabaseEx db;
    db.OpenEx(connect_text.c_str());
    db.ExecuteSQL(statement.c_str());
  });
  if (!outcome) throw std::runtime_error(std::string(outcome.failure().text.view()));
}

}  // namespace command_test
