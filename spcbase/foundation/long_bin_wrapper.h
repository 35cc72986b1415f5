/// An owner of a block of bytes.
///
/// Part of the database foundation: what carries a payload to and from hosts.
#pragma once

#include "spcbase/platform/database/long_binary.h"
#include "spcbase/platform/system/export.h"

/// Owns one CLongBinary. The block goes with it.
class SPCBASE_API LongBinWrapper {
 public:
  LongBinWrapper() = default;
  LongBinWrapper(const LongBinWrapper&) = delete;
  LongBinWrapper& operator=(const LongBinWrapper&) = delete;
  /// Releases the block, and leaves handle and length 0 behind it.
  virtual ~LongBinWrapper();

  /// Whether there is no block at all: a payload that is missing.
  bool is_null() const noexcept { return long_bin.m_hData == nullptr; }

  /// The block.
  CLongBinary long_bin;
};
