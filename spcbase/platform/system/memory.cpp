#include "spcbase/platform/system/memory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "spcbase/platform/system/internal/block_exchange.h"
#include "spcbase/platform/system/system_error.h"

namespace {

/// Stands before the data of every block, so that an address leads back to its block without a table of all blocks.
struct alignas(16) Header {
  HGLOBAL handle;
  std::size_t size_bytes;
};

/// What the handle of a movable block stands for. Data are null while the block is empty.
struct alignas(16) Movable {
  void* data;
  UINT locks;
};

// Data and descriptors stand at multiples of 16. A movable block's handle is its descriptor's address plus this, so the
// low bits tell it from a fixed block's handle, which is the address of the data.
constexpr std::uintptr_t movable_mark = 8;
constexpr std::uintptr_t low_bits = 15;
constexpr UINT max_locks = 0xFF;

bool is_movable(HGLOBAL block) { return (reinterpret_cast<std::uintptr_t>(block) & low_bits) == movable_mark; }
Movable* movable_of(HGLOBAL block) {
  return reinterpret_cast<Movable*>(static_cast<unsigned char*>(block) - movable_mark);
}
HGLOBAL handle_of(Movable* movable) { return reinterpret_cast<unsigned char*>(movable) + movable_mark; }
Header* header_of(const void* data) {
  return reinterpret_cast<Header*>(static_cast<unsigned char*>(const_cast<void*>(data)) - sizeof(Header));
}

void* fail(DWORD error) {
  SetLastError(error);
  return nullptr;
}

/// Makes the data of a block, or changes their size; what is new is filled with zeros when asked. Null when memory runs
/// out.
void* resize_data(void* data, std::size_t size_bytes, bool zero) {
  if (size_bytes > SIZE_MAX - sizeof(Header)) return nullptr;
  const std::size_t old_size = data ? header_of(data)->size_bytes : 0;
  void* raw = std::realloc(data ? header_of(data) : nullptr, sizeof(Header) + size_bytes);
  if (!raw) return nullptr;
  auto* header = static_cast<Header*>(raw);
  if (!data) header->handle = nullptr;
  header->size_bytes = size_bytes;
  auto* bytes = reinterpret_cast<unsigned char*>(header + 1);
  if (zero && size_bytes > old_size) std::memset(bytes + old_size, 0, size_bytes - old_size);
  return bytes;
}

HGLOBAL reallocate_fixed(HGLOBAL block, std::size_t size_bytes, UINT flags) {
  const bool zero = (flags & GMEM_ZEROINIT) != 0;
  if ((flags & GMEM_MOVEABLE) == 0) {
    if (size_bytes > header_of(block)->size_bytes) return fail(ERROR_NOT_ENOUGH_MEMORY);
    header_of(block)->size_bytes = size_bytes;
    return block;
  }
  void* data = resize_data(block, size_bytes, zero);
  if (!data) return fail(ERROR_NOT_ENOUGH_MEMORY);
  header_of(data)->handle = data;
  return data;
}

HGLOBAL reallocate_movable(HGLOBAL block, std::size_t size_bytes, UINT flags) {
  Movable* movable = movable_of(block);
  const bool may_move = movable->locks == 0 || (flags & GMEM_MOVEABLE) != 0;
  if (size_bytes == 0) {
    if (movable->locks != 0) return fail(ERROR_INVALID_PARAMETER);
    if (movable->data) std::free(header_of(movable->data));
    movable->data = nullptr;
    return block;
  }
  if (!may_move) {
    if (!movable->data || size_bytes > header_of(movable->data)->size_bytes) return fail(ERROR_NOT_ENOUGH_MEMORY);
    header_of(movable->data)->size_bytes = size_bytes;
    return block;
  }
  void* data = resize_data(movable->data, size_bytes, (flags & GMEM_ZEROINIT) != 0);
  if (!data) return fail(ERROR_NOT_ENOUGH_MEMORY);
  header_of(data)->handle = block;
  movable->data = data;
  return block;
}

}  // namespace

HGLOBAL GlobalAlloc(UINT flags, std::size_t size_bytes) noexcept {
  const bool zero = (flags & GMEM_ZEROINIT) != 0;
  const bool movable_wanted = (flags & GMEM_MOVEABLE) != 0;
  void* data = nullptr;
  if (!movable_wanted || size_bytes > 0) {
    data = resize_data(nullptr, size_bytes, zero);
    if (!data) return fail(ERROR_NOT_ENOUGH_MEMORY);
    header_of(data)->handle = data;
  }
  if (!movable_wanted) return data;
  auto* movable = static_cast<Movable*>(std::malloc(sizeof(Movable)));
  if (!movable) {
    if (data) std::free(header_of(data));
    return fail(ERROR_NOT_ENOUGH_MEMORY);
  }
  *movable = {data, 0};
  if (data) header_of(data)->handle = handle_of(movable);
  return handle_of(movable);
}

void* GlobalLock(HGLOBAL block) noexcept {
  if (!block) return nullptr;
  if (!is_movable(block)) return block;
  Movable* movable = movable_of(block);
  if (!movable->data) return fail(ERROR_DISCARDED);
  if (movable->locks < max_locks) ++movable->locks;
  return movable->data;
}

BOOL GlobalUnlock(HGLOBAL block) noexcept {
  if (!block) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  if (!is_movable(block)) return TRUE;
  Movable* movable = movable_of(block);
  if (movable->locks == 0) {
    SetLastError(ERROR_NOT_LOCKED);
    return FALSE;
  }
  if (--movable->locks > 0) return TRUE;
  SetLastError(ERROR_SUCCESS);
  return FALSE;
}

std::size_t GlobalSize(HGLOBAL block) noexcept {
  if (!block) {
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  const void* data = is_movable(block) ? movable_of(block)->data : block;
  return data ? header_of(data)->size_bytes : 0;
}

HGLOBAL GlobalReAlloc(HGLOBAL block, std::size_t size_bytes, UINT flags) noexcept {
  if (!block) return fail(ERROR_INVALID_HANDLE);
  if ((flags & GMEM_MODIFY) != 0) return block;
  return is_movable(block) ? reallocate_movable(block, size_bytes, flags) : reallocate_fixed(block, size_bytes, flags);
}

HGLOBAL GlobalFree(HGLOBAL block) noexcept {
  if (!block) return nullptr;
  const bool movable = is_movable(block);
  void* data = movable ? movable_of(block)->data : block;
  if (data) std::free(header_of(data));
  if (movable) std::free(movable_of(block));
  return nullptr;
}

HGLOBAL GlobalHandle(const void* address) noexcept {
  return address ? header_of(address)->handle : fail(ERROR_INVALID_HANDLE);
}

UINT GlobalFlags(HGLOBAL block) noexcept {
  constexpr UINT discarded = 0x4000;
  constexpr UINT invalid_handle = 0x8000;
  if (!block) {
    SetLastError(ERROR_INVALID_HANDLE);
    return invalid_handle;
  }
  if (!is_movable(block)) return 0;
  const Movable* movable = movable_of(block);
  return movable->data ? movable->locks : discarded;
}

bool platform::exchange_bytes(HGLOBAL one, HGLOBAL other) noexcept {
  if (!one || !other || !is_movable(one) || !is_movable(other)) return false;
  Movable* first = movable_of(one);
  Movable* second = movable_of(other);
  if (first->locks != 0 || second->locks != 0 || GlobalSize(one) != GlobalSize(other)) return false;
  if (!first->data || !second->data) return false;
  std::swap(first->data, second->data);
  header_of(first->data)->handle = one;
  header_of(second->data)->handle = other;
  return true;
}

void* CoTaskMemAlloc(std::size_t size_bytes) noexcept { return std::malloc(size_bytes ? size_bytes : 1); }

void* CoTaskMemRealloc(void* block, std::size_t size_bytes) noexcept {
  if (block && size_bytes == 0) {
    std::free(block);
    return nullptr;
  }
  return std::realloc(block, size_bytes ? size_bytes : 1);
}

void CoTaskMemFree(void* block) noexcept { std::free(block); }
