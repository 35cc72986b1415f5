/// Streams of bytes, and the one that lives in a block of global memory.
///
/// Part of the platform layer (automation).
///
/// Differs: only `CreateStreamOnHGlobal` makes streams. Nothing is transacted: Commit does nothing, Revert does
/// nothing, regions cannot be locked.
#pragma once

#include <cstdint>

#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/system/memory.h"

/// A signed distance in bytes.
union LARGE_INTEGER {
  LONGLONG QuadPart;  ///< all 64 bits
};
/// A position or size in bytes.
union ULARGE_INTEGER {
  ULONGLONG QuadPart;  ///< all 64 bits
};

/// The origins of a seek, the kind and flags of `Stat`, and the codes that streams refuse with.
inline constexpr DWORD STREAM_SEEK_SET = 0;
inline constexpr DWORD STREAM_SEEK_CUR = 1;
inline constexpr DWORD STREAM_SEEK_END = 2;
inline constexpr DWORD STGTY_STREAM = 2;
inline constexpr DWORD STATFLAG_DEFAULT = 0;
inline constexpr DWORD STATFLAG_NONAME = 1;
inline constexpr HRESULT STG_E_INVALIDPOINTER = make_hresult(0x80030009U);
inline constexpr HRESULT STG_E_MEDIUMFULL = make_hresult(0x80030070U);

/// What is known of a stream: its kind and its size in bytes; it has no name.
struct STATSTG {
  LPOLESTR pwcsName;      ///< null: no stream has a name
  DWORD type;             ///< STGTY_STREAM
  ULARGE_INTEGER cbSize;  ///< in bytes
  DWORD grfMode;          ///< 0
  DWORD grfLocksSupported;
};

/// Bytes read and written one after the other.
struct ISequentialStream : IUnknown {
  /// Reads up to `size_bytes`; less, or nothing, at the end is no failure. `read_bytes` may be null.
  virtual HRESULT Read(void* buffer, ULONG size_bytes, ULONG* read_bytes) = 0;
  /// Writes at the position; the stream grows as needed, a gap is zero. `written_bytes` may be null.
  /// Fails: STG_E_INVALIDPOINTER, STG_E_MEDIUMFULL; nothing is written.
  virtual HRESULT Write(const void* buffer, ULONG size_bytes, ULONG* written_bytes) = 0;

 protected:
  ~ISequentialStream() = default;
};

/// A stream with a position.
struct IStream : ISequentialStream {
  /// Moves the position, beyond the end too.
  /// Fails: STG_E_INVALIDFUNCTION before the start and for an unknown origin; the position stays.
  virtual HRESULT Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* position) = 0;
  /// Cuts the stream or lets it grow by zeros; the position stays.
  /// Fails: STG_E_MEDIUMFULL.
  virtual HRESULT SetSize(ULARGE_INTEGER size) = 0;
  /// Copies from here, up to the present end, to another stream at its position.
  /// Fails: as its Write.
  virtual HRESULT CopyTo(IStream* target, ULARGE_INTEGER size, ULARGE_INTEGER* read_bytes,
                         ULARGE_INTEGER* written_bytes) = 0;
  /// Does nothing: a stream is not transacted.
  virtual HRESULT Commit(DWORD flags) = 0;
  virtual HRESULT Revert() = 0;
  /// Always STG_E_INVALIDFUNCTION.
  virtual HRESULT LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) = 0;
  virtual HRESULT UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) = 0;
  /// Tells the size.
  /// Fails: STG_E_INVALIDPOINTER for null.
  virtual HRESULT Stat(STATSTG* statistics, DWORD flags) = 0;
  /// A second stream on the same bytes with a position of its own, which starts at this one's.
  virtual HRESULT Clone(IStream** clone) = 0;

 protected:
  ~IStream() = default;
};

template <>
struct interface_id<ISequentialStream> {
  static constexpr IID value{0x0C733A30, 0x2A1C, 0x11CE, {0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D}};
};
template <>
struct interface_id<IStream> {
  static constexpr IID value{0x0000000C, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
};
/// The identifiers of the interfaces.
inline constexpr IID IID_ISequentialStream = interface_id<ISequentialStream>::value;
inline constexpr IID IID_IStream = interface_id<IStream>::value;

/// A stream on a block of global memory, positioned at its start; its size is the block's.
/// Null:  without a block, a new empty one is made.
/// Fails: E_INVALIDARG when `stream` is null, E_OUTOFMEMORY.
/// Owns:  the caller holds one reference. The block goes with the last stream on it when `delete_on_release` is true.
SPCBASE_API HRESULT CreateStreamOnHGlobal(HGLOBAL block, BOOL delete_on_release, IStream** stream) noexcept;

/// The block under such a stream, still the stream's.
/// Fails: E_INVALIDARG for null or another kind of stream.
SPCBASE_API HRESULT GetHGlobalFromStream(IStream* stream, HGLOBAL* block) noexcept;
