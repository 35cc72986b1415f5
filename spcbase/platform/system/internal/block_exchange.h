/// Trading the bytes of two memory blocks.
///
/// Part of the platform layer, for the library's own use.
#pragma once

#include "spcbase/platform/system/memory.h"

namespace platform {

/// Gives each of two movable, unlocked blocks of one size the other's bytes without copying them: handles and sizes
/// stay, the addresses change places. False, with nothing done, for blocks of any other kind.
bool exchange_bytes(HGLOBAL one, HGLOBAL other) noexcept;

}  // namespace platform
