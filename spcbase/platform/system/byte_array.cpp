#include "spcbase/platform/system/byte_array.h"

#include <new>

#include "spcbase/platform/system/exceptions.h"

CObject::~CObject() = default;
CByteArray::~CByteArray() = default;

void CByteArray::SetSize(INT_PTR size, INT_PTR grow_by) {
  static_cast<void>(grow_by);
  if (size < 0) AfxThrowInvalidArgException();
  marks_null_ = false;
  try {
    bytes_.resize(static_cast<std::size_t>(size));
  } catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
  }
}

void CByteArray::Copy(const CByteArray& source) {
  if (this == &source) return;
  SetSize(source.GetSize());
  bytes_ = source.bytes_;
}

INT_PTR CByteArray::Add(BYTE byte) {
  const INT_PTR index = GetSize();
  SetSize(index + 1);
  (*this)[index] = byte;
  return index;
}

std::size_t CByteArray::checked(INT_PTR index) const {
  if (index < 0 || index >= GetSize()) AfxThrowInvalidArgException();
  return static_cast<std::size_t>(index);
}
