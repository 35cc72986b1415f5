/// A source of memory that looks at every block when it gets it back, and tells how much was asked for.
#pragma once

#include <cstddef>
#include <memory_resource>
#include <string>
#include <vector>

namespace test_support {

class KeptBlocks final : public std::pmr::memory_resource {
 public:
  /// What stood in each block when it was given back.
  const std::vector<std::string>& given_back() const { return given_back_; }
  /// The sizes that were asked for, in order.
  const std::vector<std::size_t>& sizes() const { return sizes_; }

  /// Whether every block that was asked for was given back, and holds nothing but zeros.
  bool all_wiped() const {
    if (given_back_.size() != sizes_.size()) return false;
    for (const std::string& block : given_back_)
      if (block.find_first_not_of('\0') != std::string::npos) return false;
    return true;
  }

 private:
  void* do_allocate(std::size_t size, std::size_t alignment) override {
    sizes_.push_back(size);
    return std::pmr::new_delete_resource()->allocate(size, alignment);
  }
  void do_deallocate(void* block, std::size_t size, std::size_t alignment) override {
    given_back_.emplace_back(static_cast<const char*>(block), size);
    std::pmr::new_delete_resource()->deallocate(block, size, alignment);
  }
  bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }

  std::vector<std::string> given_back_;
  std::vector<std::size_t> sizes_;
};

}  // namespace test_support
