/// The address of a memory block for a scope.
///
/// Part of the database foundation, for the library's own use.
#pragma once

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/system/memory.h"

/// Locks a block and unlocks it at the end of the scope.
/// Fails: as `throw_global_lock_error_exception` when there is no address, as that of a block of size 0.
class LockedBlock {
 public:
  explicit LockedBlock(HGLOBAL block) : block_(block), bytes_(static_cast<unsigned char*>(GlobalLock(block))) {
    if (bytes_ == nullptr) throw_global_lock_error_exception();
  }
  ~LockedBlock() { GlobalUnlock(block_); }
  LockedBlock(const LockedBlock&) = delete;
  LockedBlock& operator=(const LockedBlock&) = delete;
  unsigned char* bytes() const { return bytes_; }

 private:
  HGLOBAL block_;
  unsigned char* bytes_;
};
