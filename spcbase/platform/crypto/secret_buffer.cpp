#include "spcbase/platform/crypto/secret_buffer.h"

#include <openssl/crypto.h>

#include <cstring>

namespace platform {

void wipe(void* bytes, std::size_t size_bytes) noexcept {
  if (size_bytes != 0) OPENSSL_cleanse(bytes, size_bytes);
}

// Only the bytes that are asked for are set: clearing the whole inline array would cost more than a short secret.
SecretBuffer::SecretBuffer(std::size_t size_bytes, std::pmr::memory_resource* memory)
    : memory_(memory),
      size_(size_bytes),
      data_(size_bytes <= inline_size ? inline_bytes_.data()
                                      : static_cast<unsigned char*>(memory->allocate(size_bytes, 1))) {
  std::memset(data_, 0, size_);
}

SecretBuffer::~SecretBuffer() {
  wipe(data_, size_);
  if (size_ > inline_size) memory_->deallocate(data_, size_, 1);
}

}  // namespace platform
