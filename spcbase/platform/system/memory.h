/// Memory blocks addressed by handle (the GlobalAlloc family), and the task allocator.
///
/// Part of the platform layer. A movable block has a handle, which is not its address: `GlobalLock` gives the address
/// and counts a lock, `GlobalUnlock` takes the lock back. A fixed block's handle is its address and needs no lock.
///
/// Differs: unlocked movable blocks move only when they are reallocated or a function of the library fills them;
/// nothing is discarded but by size 0. A handle that was freed is not recognised: using one is undefined.
/// Threads: a block belongs to one thread at a time.
#pragma once

#include <cstddef>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// A block of memory.
using HGLOBAL = void*;

/// How a block is made: fixed or movable, zeroed; GMEM_MODIFY changes only that.
inline constexpr UINT GMEM_FIXED = 0x0000;
inline constexpr UINT GMEM_MOVEABLE = 0x0002;
inline constexpr UINT GMEM_ZEROINIT = 0x0040;
inline constexpr UINT GMEM_MODIFY = 0x0080;
inline constexpr UINT GHND = GMEM_MOVEABLE | GMEM_ZEROINIT;
inline constexpr UINT GPTR = GMEM_FIXED | GMEM_ZEROINIT;

/// Allocates a block. A movable block of size 0 is a handle marked as discarded.
/// Owns:   the caller releases it with `GlobalFree`.
/// Returns the handle, or null with last error 8 when memory runs out.
SPCBASE_API HGLOBAL GlobalAlloc(UINT flags, std::size_t size_bytes) noexcept;

/// The address of a block; adds a lock to a movable one. Two locks give the same address.
/// Null:   a null handle gives null and leaves the last error alone.
/// Returns null with last error 157 for a discarded (empty) block.
SPCBASE_API void* GlobalLock(HGLOBAL block) noexcept;

/// Takes one lock back.
/// Returns TRUE while locks remain. FALSE with last error 0 when the last one was taken back, FALSE with last error 158
/// when there was none. TRUE for a fixed block; FALSE with last error 6 for null.
SPCBASE_API BOOL GlobalUnlock(HGLOBAL block) noexcept;

/// The size of a block in bytes; 0 for an empty one, 0 with last error 6 for null.
SPCBASE_API std::size_t GlobalSize(HGLOBAL block) noexcept;

/// Changes the size (or, with GMEM_MODIFY, nothing but the attributes, which here has no effect).
/// A fixed or locked block moves only when GMEM_MOVEABLE is given; without it growing fails with last error 8 and
/// shrinking works in place. GMEM_ZEROINIT fills what was added. Size 0 empties an unlocked movable block. Returns the
/// handle (a fixed block's may be another), or null with the block as it was.
SPCBASE_API HGLOBAL GlobalReAlloc(HGLOBAL block, std::size_t size_bytes, UINT flags) noexcept;

/// Releases a block, locked or not. Null on success, as for a null handle.
SPCBASE_API HGLOBAL GlobalFree(HGLOBAL block) noexcept;

/// The handle of the block that starts at an address which `GlobalLock` gave; null with last error 6 for null.
SPCBASE_API HGLOBAL GlobalHandle(const void* address) noexcept;

/// The lock count in the low byte and, for a discarded block, the mark 0x4000; 0x8000 with last error 6 for null.
SPCBASE_API UINT GlobalFlags(HGLOBAL block) noexcept;

/// A block of the task allocator, or null.
/// Owns: the caller releases it with `CoTaskMemFree`.
SPCBASE_API void* CoTaskMemAlloc(std::size_t size_bytes) noexcept;
/// Changes the size of a block of the task allocator; null with the block as it was when memory runs out.
SPCBASE_API void* CoTaskMemRealloc(void* block, std::size_t size_bytes) noexcept;
/// Releases a block of the task allocator; null does nothing.
SPCBASE_API void CoTaskMemFree(void* block) noexcept;
