#include "spcbase/platform/automation/stream.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "spcbase/platform/automation/counted.h"

namespace {

// The documented limit of streams in global memory.
constexpr ULONGLONG max_size_bytes = std::numeric_limits<DWORD>::max();

// A block and its clones' common view of it.
class memory_block {
 public:
  explicit memory_block(HGLOBAL handle) noexcept : handle_(handle), size_(GlobalSize(handle)) {}
  memory_block(const memory_block&) = delete;
  memory_block& operator=(const memory_block&) = delete;
  ~memory_block() {
    if (owned_) GlobalFree(handle_);
  }

  // Whether the block goes with this object; at first it does not.
  void set_owned(bool owned) noexcept { owned_ = owned; }
  HGLOBAL handle() const noexcept { return handle_; }
  ULONGLONG size() const noexcept { return size_; }

  bool resize(ULONGLONG size) noexcept {
    if (size == size_) return true;
    if (size > max_size_bytes) return false;
    HGLOBAL const moved = GlobalReAlloc(handle_, size, GMEM_MOVEABLE | GMEM_ZEROINIT);
    if (moved == nullptr) return false;
    handle_ = moved;
    size_ = size;
    return true;
  }

  void read(ULONGLONG offset, void* target, std::size_t count) const noexcept {
    if (count == 0) return;
    std::memcpy(target, static_cast<const char*>(GlobalLock(handle_)) + offset, count);
    GlobalUnlock(handle_);
  }

  void write(ULONGLONG offset, const void* source, std::size_t count) noexcept {
    if (count == 0) return;
    std::memcpy(static_cast<char*>(GlobalLock(handle_)) + offset, source, count);
    GlobalUnlock(handle_);
  }

 private:
  HGLOBAL handle_;
  ULONGLONG size_;
  bool owned_ = false;
};

class memory_stream final : public counted<IStream> {
 public:
  memory_stream(std::shared_ptr<memory_block> block, ULONGLONG position) noexcept
      : block_(std::move(block)), position_(position) {}

  HGLOBAL handle() const noexcept { return block_->handle(); }

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = iid == IID_IStream || iid == IID_ISequentialStream || iid == IID_IUnknown;
    *object = known ? static_cast<IStream*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  HRESULT Read(void* buffer, ULONG size_bytes, ULONG* read_bytes) override {
    if (read_bytes != nullptr) *read_bytes = 0;
    if (buffer == nullptr && size_bytes != 0) return STG_E_INVALIDPOINTER;
    const auto count = static_cast<ULONG>(std::min<ULONGLONG>(bytes_left(), size_bytes));
    block_->read(position_, buffer, count);
    position_ += count;
    if (read_bytes != nullptr) *read_bytes = count;
    return S_OK;
  }

  HRESULT Write(const void* buffer, ULONG size_bytes, ULONG* written_bytes) override {
    if (written_bytes != nullptr) *written_bytes = 0;
    if (size_bytes == 0) return S_OK;
    if (buffer == nullptr) return STG_E_INVALIDPOINTER;
    if (position_ > max_size_bytes - size_bytes) return STG_E_MEDIUMFULL;
    if (!block_->resize(std::max(block_->size(), position_ + size_bytes))) return STG_E_MEDIUMFULL;
    block_->write(position_, buffer, size_bytes);
    position_ += size_bytes;
    if (written_bytes != nullptr) *written_bytes = size_bytes;
    return S_OK;
  }

  HRESULT Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* position) override {
    if (origin > STREAM_SEEK_END) return STG_E_INVALIDFUNCTION;
    const ULONGLONG starts[] = {0, position_, block_->size()};
    LONGLONG target = 0;
    // The documents of IStream::Seek name this code for a place before the start; the seek error (0x80030019) that was
    // recorded elsewhere is not among the codes they name.
    if (__builtin_add_overflow(static_cast<LONGLONG>(starts[origin]), distance.QuadPart, &target) || target < 0) {
      return STG_E_INVALIDFUNCTION;
    }
    position_ = static_cast<ULONGLONG>(target);
    if (position != nullptr) position->QuadPart = position_;
    return S_OK;
  }

  HRESULT SetSize(ULARGE_INTEGER size) override { return block_->resize(size.QuadPart) ? S_OK : STG_E_MEDIUMFULL; }

  HRESULT CopyTo(IStream* target, ULARGE_INTEGER size, ULARGE_INTEGER* read_bytes,
                 ULARGE_INTEGER* written_bytes) override {
    if (target == nullptr) return STG_E_INVALIDPOINTER;
    ULARGE_INTEGER read{};
    ULARGE_INTEGER written{};
    HRESULT result = S_OK;
    // What a target on the same block appends is not copied again.
    size.QuadPart = std::min(size.QuadPart, bytes_left());
    while (SUCCEEDED(result) && read.QuadPart < size.QuadPart) {
      char piece[4096];
      ULONG count = 0;
      ULONG put = 0;
      Read(piece, static_cast<ULONG>(std::min<ULONGLONG>(sizeof piece, size.QuadPart - read.QuadPart)), &count);
      if (count == 0) break;
      result = target->Write(piece, count, &put);
      read.QuadPart += count;
      written.QuadPart += put;
    }
    if (read_bytes != nullptr) *read_bytes = read;
    if (written_bytes != nullptr) *written_bytes = written;
    return result;
  }

  HRESULT Commit(DWORD) override { return S_OK; }
  HRESULT Revert() override { return S_OK; }
  HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }
  HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }

  HRESULT Stat(STATSTG* statistics, DWORD) override {
    if (statistics == nullptr) return STG_E_INVALIDPOINTER;
    *statistics = STATSTG{nullptr, STGTY_STREAM, {block_->size()}, 0, 0};
    return S_OK;
  }

  HRESULT Clone(IStream** clone) override {
    if (clone == nullptr) return STG_E_INVALIDPOINTER;
    *clone = new (std::nothrow) memory_stream(block_, position_);
    return *clone == nullptr ? E_OUTOFMEMORY : S_OK;
  }

 private:
  ~memory_stream() override = default;
  ULONGLONG bytes_left() const noexcept { return block_->size() > position_ ? block_->size() - position_ : 0; }

  std::shared_ptr<memory_block> block_;
  ULONGLONG position_;
};

}  // namespace

HRESULT CreateStreamOnHGlobal(HGLOBAL block, BOOL delete_on_release, IStream** stream) noexcept {
  if (stream == nullptr) return E_INVALIDARG;
  *stream = nullptr;
  HGLOBAL const handle = block != nullptr ? block : GlobalAlloc(GMEM_MOVEABLE, 0);
  if (handle == nullptr) return E_OUTOFMEMORY;
  try {
    auto shared = std::make_shared<memory_block>(handle);
    *stream = new memory_stream(shared, 0);
    shared->set_owned(delete_on_release != FALSE);
    return S_OK;
  } catch (const std::bad_alloc&) {
    if (block == nullptr) GlobalFree(handle);
    return E_OUTOFMEMORY;
  }
}

HRESULT GetHGlobalFromStream(IStream* stream, HGLOBAL* block) noexcept {
  if (block == nullptr) return E_INVALIDARG;
  const auto* const own = dynamic_cast<const memory_stream*>(stream);
  *block = own == nullptr ? nullptr : own->handle();
  return own == nullptr ? E_INVALIDARG : S_OK;
}
