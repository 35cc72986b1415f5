#include "bench/one_cpu.h"

#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace bench {
namespace {

[[noreturn]] void refuse(const std::string& what) {
  throw std::runtime_error(what + ": " + std::generic_category().message(errno));
}

cpu_set_t cpus_of(pid_t thread) {
  cpu_set_t cpus;
  CPU_ZERO(&cpus);
  if (::sched_getaffinity(thread, sizeof cpus, &cpus) != 0) refuse("cannot tell the CPUs of a thread");
  return cpus;
}

void bind(pid_t thread, const cpu_set_t& cpus) {
  if (::sched_setaffinity(thread, sizeof cpus, &cpus) != 0) refuse("cannot bind a thread to one CPU");
}

}  // namespace

void bind_to_one_cpu() {
  const cpu_set_t allowed = cpus_of(0);
  int last = -1;
  for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu)
    if (CPU_ISSET(cpu, &allowed)) last = cpu;
  if (last < 0) throw std::runtime_error("this process may use no CPU");
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(last, &one);
  bind(0, one);
}

void bring_server_here(const std::string& socket) {
  const auto pid_file = std::filesystem::path(socket).parent_path() / "pid";
  int process = 0;
  if (!(std::ifstream(pid_file) >> process)) throw std::runtime_error("no process number in " + pid_file.string());
  const cpu_set_t here = cpus_of(0);
  const auto threads = std::filesystem::path("/proc") / std::to_string(process) / "task";
  for (const auto& entry : std::filesystem::directory_iterator(threads)) {
    const pid_t thread = std::stoi(entry.path().filename().string());
    const cpu_set_t cpus = cpus_of(thread);
    if (!CPU_EQUAL(&cpus, &here)) bind(thread, here);
  }
}

}  // namespace bench
