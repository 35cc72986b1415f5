/// CLongBinary: the bytes of a long column, held in a memory block by handle.
///
/// Part of the database platform layer. The block may be larger than the data: who fills it anew may keep it.
/// Threads: a holder belongs to one thread at a time.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/memory.h"
#include "spcbase/platform/system/object.h"
#include "spcbase/platform/system/types.h"

/// Owns its block.
class SPCBASE_API CLongBinary : public CObject {
 public:
  CLongBinary() noexcept = default;
  /// Releases the block.
  ~CLongBinary() override;

  HGLOBAL m_hData = nullptr;  ///< of GlobalAlloc; null: no data
  DWORD m_dwDataLength = 0;   ///< in bytes, at most the block's size
};
