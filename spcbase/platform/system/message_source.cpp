#include "spcbase/platform/system/message_source.h"

#include <algorithm>
#include <cstring>

#include "spcbase/platform/system/system_error.h"

namespace {

thread_local HINSTANCE current_source = nullptr;

/// The largest length up to `limit` that does not split a UTF-8 character of the text.
std::size_t whole_characters(const char* text, std::size_t limit) {
  std::size_t length = std::min(std::strlen(text), limit);
  while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
    --length;
  }
  return length;
}

}  // namespace

MessageSource::~MessageSource() = default;

HINSTANCE AfxGetResourceHandle() noexcept { return current_source; }

void AfxSetResourceHandle(HINSTANCE source) noexcept { current_source = source; }

const char* find_message(HINSTANCE source, UINT id) noexcept {
  return source ? static_cast<const MessageSource*>(source)->find(id) : nullptr;
}

int LoadStringA(HINSTANCE source, UINT id, char* buffer, int size) noexcept {
  if (!buffer || size < 1) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  buffer[0] = '\0';
  const char* text = find_message(source, id);
  if (!text) {
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return 0;
  }
  const std::size_t length = whole_characters(text, static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text, length);
  buffer[length] = '\0';
  return static_cast<int>(length);
}
