/// Texts found by number: the resources of a module, and the calling thread's current source of them.
///
/// Part of the platform layer. Each module keeps a table of its own and makes it current for as long as it loads:
///
///     HINSTANCE previous = AfxGetResourceHandle();
///     AfxSetResourceHandle(own_table.handle());
///     ...
///     AfxSetResourceHandle(previous);
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// A table of texts. An `HINSTANCE` is the address of one.
class SPCBASE_API MessageSource {
 public:
  virtual ~MessageSource();

  /// The text with this number, UTF-8, or null. The text lives as long as the source.
  virtual const char* find(UINT id) const noexcept = 0;

  /// This source as a handle. The only right way to make one: the handle must be the address of this base.
  HINSTANCE handle() const noexcept { return const_cast<MessageSource*>(this); }
};

/// The calling thread's current source, or null when none was set.
SPCBASE_API HINSTANCE AfxGetResourceHandle() noexcept;

/// Makes a source current for the calling thread; null takes it away. The source is not owned.
SPCBASE_API void AfxSetResourceHandle(HINSTANCE source) noexcept;

/// The text with this number in a source, or null when the source is null or lacks it.
SPCBASE_API const char* find_message(HINSTANCE source, UINT id) noexcept;

/// Copies a text into a buffer.
/// Shape:  at most `size - 1` bytes and a terminating zero; a cut never splits a character.
/// Returns the number of bytes written without the zero; 0 with last error 1814 when there is no such text, 0 with last
/// error 87 for a null buffer or a size below 1.
SPCBASE_API int LoadStringA(HINSTANCE source, UINT id, char* buffer, int size) noexcept;
