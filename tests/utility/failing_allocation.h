/// Lets one allocation fail, or do something on the side.
#pragma once

#include <functional>

namespace test_support {

/// While it lives, allocations of the library's code and of the test's are counted (malloc, calloc and new, as this
/// program is linked), and the k-th, counted from 1, fails. One at a time.
class FailingAllocation {
 public:
  explicit FailingAllocation(int k);
  /// The k-th succeeds, after `meanwhile` was called.
  FailingAllocation(int k, std::function<void()> meanwhile);
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation();

  /// Whether the k-th was reached.
  static bool reached();
};

}  // namespace test_support
