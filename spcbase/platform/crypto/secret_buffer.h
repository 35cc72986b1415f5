/// Memory for keys and secrets: it is wiped before it is given back.
///
/// Part of the platform layer (cryptography).
#pragma once

#include <array>
#include <cstddef>
#include <memory_resource>
#include <span>

namespace platform {

/// Overwrites bytes with zeros, in a way that no compiler leaves out.
void wipe(void* bytes, std::size_t size_bytes) noexcept;

/// Zeroed bytes of a number that is fixed from the start, so that growing never leaves a copy behind. Few stand in the
/// object itself, which is meant for the stack; more come from `memory`. Both are wiped at the end.
/// Fails:  std::bad_alloc.
class SecretBuffer {
 public:
  /// Up to here the bytes stand in the object.
  static constexpr std::size_t inline_size = 1025;

  explicit SecretBuffer(std::size_t size_bytes, std::pmr::memory_resource* memory = std::pmr::new_delete_resource());
  ~SecretBuffer();
  SecretBuffer(const SecretBuffer&) = delete;
  SecretBuffer& operator=(const SecretBuffer&) = delete;

  unsigned char* data() noexcept { return data_; }
  const unsigned char* data() const noexcept { return data_; }
  std::size_t size() const noexcept { return size_; }
  std::span<unsigned char> bytes() noexcept { return {data_, size_}; }
  std::span<const unsigned char> bytes() const noexcept { return {data_, size_}; }

 private:
  std::pmr::memory_resource* memory_;
  std::size_t size_;
  std::array<unsigned char, inline_size> inline_bytes_;
  unsigned char* data_;
};

}  // namespace platform
