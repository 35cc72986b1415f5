#include "tests/support/helper_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace test_support {

HelperProcess::HelperProcess(const std::string& program, const std::vector<std::string>& arguments) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe for the helper program");
  std::vector<std::string> texts{program};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);

  pid_ = fork();
  if (pid_ == 0) {
    dup2(ends[1], STDOUT_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    close(ends[1]);
    execv(pointers.front(), pointers.data());
    _exit(127);
  }
  close(ends[1]);
  output_ = ends[0];
  if (pid_ < 0) throw std::runtime_error("the helper program cannot be started");
}

HelperProcess::HelperProcess(HelperProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)), output_(std::exchange(other.output_, -1)) {}

HelperProcess::~HelperProcess() {
  if (output_ >= 0) close(output_);
  if (pid_ > 0) waitpid(pid_, nullptr, 0);
}

std::string HelperProcess::finish() {
  std::string output;
  char buffer[4096];
  for (ssize_t got; (got = read(output_, buffer, sizeof buffer)) > 0;)
    output.append(buffer, static_cast<std::size_t>(got));
  int status = 0;
  waitpid(std::exchange(pid_, -1), &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error("the helper program failed: " + output);
  return output;
}

}  // namespace test_support
