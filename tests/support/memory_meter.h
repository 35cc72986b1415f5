/// How much memory a piece of work holds at most.
#pragma once

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <stdexcept>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
// g++ comes without the header that declares it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace test_support {

/// A line of the process's status in KiB ("VmRSS:", "VmHWM:"); -1 when there is none.
inline long process_kib(const std::string& line) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;)
    if (word == line) {
      long kib = -1;
      status >> kib;
      return kib;
    }
  return -1;
}

/// The most memory that was held since the meter was made, beyond what was held then; one meter at a time. The
/// process's peak tells it, which begins anew with the meter: an older peak, or blocks released but kept, would hide a
/// growth. Under the address sanitizer, which keeps what was released, the blocks in use are counted at each `sample`
/// instead.
class MemoryMeter {
 public:
  [[nodiscard]] MemoryMeter() {
    forget_peak();
    start_ = held();
  }

  void sample() { peak_ = std::max(peak_, held()); }
  long growth_kib() {
    sample();
    return peak_ - start_;
  }

 private:
  static void forget_peak() {
#if !defined(__SANITIZE_ADDRESS__)
    ::malloc_trim(0);
    if (!(std::ofstream("/proc/self/clear_refs") << '5' << std::flush))
      throw std::runtime_error("the system does not forget how much memory this process held");
#endif
  }
  static long held() {
#if defined(__SANITIZE_ADDRESS__)
    return static_cast<long>(__sanitizer_get_current_allocated_bytes() / 1024);
#else
    const long kib = process_kib("VmHWM:");
    if (kib < 0) throw std::runtime_error("the system does not tell how much memory this process held");
    return kib;
#endif
  }

  long start_ = 0;
  long peak_ = 0;
};

}  // namespace test_support
