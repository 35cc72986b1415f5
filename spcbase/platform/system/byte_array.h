/// CByteArray: a block of bytes that grows.
///
/// Part of the platform layer.
/// Differs: only the operations that are used here.
/// Threads: an array belongs to one thread at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/object.h"
#include "spcbase/platform/system/types.h"

/// An index or count.
using INT_PTR = std::intptr_t;

namespace spcdb {
struct NullMark;
}

/// Bytes by index from 0.
class SPCBASE_API CByteArray : public CObject {
 public:
  CByteArray() noexcept = default;
  ~CByteArray() override;

  /// How many bytes there are, the index of the last, and whether there are none.
  INT_PTR GetSize() const noexcept { return static_cast<INT_PTR>(bytes_.size()); }
  INT_PTR GetCount() const noexcept { return GetSize(); }
  INT_PTR GetUpperBound() const noexcept { return GetSize() - 1; }
  BOOL IsEmpty() const noexcept { return bytes_.empty() ? TRUE : FALSE; }

  /// Changes the size; bytes that are added are zero. `grow_by` is kept for the sake of the signature.
  /// Fails: CInvalidArgException* for a negative size, CMemoryException* when memory runs out.
  void SetSize(INT_PTR size, INT_PTR grow_by = -1);
  /// Takes all bytes out.
  void RemoveAll() { SetSize(0); }
  /// Takes the bytes of another array.
  /// Fails: CMemoryException*.
  void Copy(const CByteArray& source);
  /// Appends a byte and gives its index.
  /// Fails: CMemoryException*.
  INT_PTR Add(BYTE byte);

  /// Fails: CInvalidArgException* for an index outside of the array; so do SetAt and the operators.
  BYTE GetAt(INT_PTR index) const { return bytes_[checked(index)]; }
  void SetAt(INT_PTR index, BYTE byte) { (*this)[index] = byte; }
  BYTE operator[](INT_PTR index) const { return GetAt(index); }
  BYTE& operator[](INT_PTR index) {
    const auto at = checked(index);
    marks_null_ = false;
    return bytes_[at];
  }

  /// The bytes as a block, valid until the size changes; null when there are none.
  const BYTE* GetData() const noexcept { return bytes_.empty() ? nullptr : bytes_.data(); }
  BYTE* GetData() noexcept {
    marks_null_ = false;
    return bytes_.empty() ? nullptr : bytes_.data();
  }

 private:
  friend struct spcdb::NullMark;

  std::size_t checked(INT_PTR index) const;

  std::vector<BYTE> bytes_;
  bool marks_null_ = false;  ///< a field exchange has put the byte that stands for a null, and nobody wrote since
};
