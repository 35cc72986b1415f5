/// Counts the handles that the process holds, to prove that a call leaves none open.
#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace test_support {

/// The number of open descriptors. The one that the count itself needs is in every count, so counts compare.
inline std::size_t open_handles() {
  std::size_t count = 0;
  for (auto it = std::filesystem::directory_iterator("/proc/self/fd"); it != std::filesystem::directory_iterator();
       ++it)
    ++count;
  return count;
}

}  // namespace test_support
