#include "tests/utility/failing_allocation.h"

#include <cstddef>
#include <new>
#include <utility>

namespace {

int left = 0;  // 0: nothing is counted, or the one has been reached
std::function<void()> instead;

/// Whether this is the one that fails.
bool fails() {
  if (left == 0 || --left != 0) return false;
  if (!instead) return true;
  std::exchange(instead, nullptr)();
  return false;
}

}  // namespace

// The linker's --wrap option sends the objects' calls here, and makes the names.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);

void* __wrap_malloc(std::size_t size) { return fails() ? nullptr : __real_malloc(size); }
void* __wrap_calloc(std::size_t count, std::size_t size) { return fails() ? nullptr : __real_calloc(count, size); }
void* __wrap__Znwm(std::size_t size) {
  if (fails()) throw std::bad_alloc();
  return __real__Znwm(size);
}
void* __wrap__Znam(std::size_t size) {
  if (fails()) throw std::bad_alloc();
  return __real__Znam(size);
}
}
// NOLINTEND(readability-identifier-naming)

namespace test_support {

FailingAllocation::FailingAllocation(int k) { left = k; }

FailingAllocation::FailingAllocation(int k, std::function<void()> meanwhile) {
  instead = std::move(meanwhile);
  left = k;
}

FailingAllocation::~FailingAllocation() {
  left = 0;
  instead = nullptr;
}

bool FailingAllocation::reached() { return left == 0; }

}  // namespace test_support
