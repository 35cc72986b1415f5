#include "spcbase/platform/system/exceptions.h"

#include <algorithm>
#include <cstring>

CException::~CException() = default;

BOOL CException::GetErrorMessage(char* buffer, UINT size, UINT* help_context) const {
  return write_message(nullptr, buffer, size, help_context);
}

void CException::Delete() noexcept {
  if (auto_delete_) delete this;
}

BOOL CException::write_message(const char* text, char* buffer, UINT size, UINT* help_context) noexcept {
  if (help_context) *help_context = 0;
  if (!buffer || size == 0) return FALSE;
  const std::size_t length = text ? std::min<std::size_t>(std::strlen(text), size - 1) : 0;
  if (length > 0) std::memcpy(buffer, text, length);
  buffer[length] = '\0';
  return text && *text ? TRUE : FALSE;
}

BOOL CMemoryException::GetErrorMessage(char* buffer, UINT size, UINT* help_context) const {
  return write_message("Out of memory.", buffer, size, help_context);
}

BOOL CNotSupportedException::GetErrorMessage(char* buffer, UINT size, UINT* help_context) const {
  return write_message("An unsupported operation was attempted.", buffer, size, help_context);
}

BOOL CInvalidArgException::GetErrorMessage(char* buffer, UINT size, UINT* help_context) const {
  return write_message("Encountered an improper argument.", buffer, size, help_context);
}

void AfxThrowMemoryException() { throw new CMemoryException; }
void AfxThrowNotSupportedException() { throw new CNotSupportedException; }
void AfxThrowInvalidArgException() { throw new CInvalidArgException; }

void AtlThrow(HRESULT hr) {
  if (hr == E_OUTOFMEMORY) AfxThrowMemoryException();
  AfxThrowNotSupportedException();
}
