#include "spcbase/platform/automation/bstr.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/platform/text/unicode.h"

namespace {

// The length stands in the last four bytes; eight keep the text aligned for whatever a caller stores in it.
constexpr std::size_t head_bytes = 8;
constexpr std::size_t length_bytes_back = sizeof(DWORD);

char* block_of(BSTR text) { return reinterpret_cast<char*>(text) - head_bytes; }

BSTR allocate(std::size_t text_bytes) {
  if (text_bytes > std::numeric_limits<DWORD>::max()) return nullptr;
  // One byte more than the terminating zero: an odd number of bytes ends in a whole zero character, too.
  const std::size_t tail_bytes = 2 * sizeof(OLECHAR) - text_bytes % sizeof(OLECHAR);
  auto* const block = static_cast<char*>(std::malloc(head_bytes + text_bytes + tail_bytes));
  if (block == nullptr) return nullptr;
  const auto length = static_cast<DWORD>(text_bytes);
  std::memset(block, 0, head_bytes);
  std::memcpy(block + head_bytes - length_bytes_back, &length, sizeof length);
  std::memset(block + head_bytes + text_bytes, 0, tail_bytes);
  return reinterpret_cast<BSTR>(block + head_bytes);
}

BSTR allocate_copy(const void* bytes, std::size_t count) {
  BSTR const text = allocate(count);
  if (text == nullptr) return nullptr;
  if (bytes != nullptr) {
    std::memcpy(text, bytes, count);
  } else {
    std::memset(text, 0, count);
  }
  return text;
}

// Most texts are plain ASCII, and then no conversion has to find out how long the string will be.
BSTR widened(std::string_view text) {
  if (std::any_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; })) {
    const std::u16string wide = platform::to_utf16(text);
    return allocate_copy(wide.data(), wide.size() * sizeof(OLECHAR));
  }
  BSTR const result = allocate(text.size() * sizeof(OLECHAR));
  if (result != nullptr) std::copy(text.begin(), text.end(), result);
  return result;
}

}  // namespace

BSTR SysAllocString(const OLECHAR* text) noexcept {
  if (text == nullptr) return nullptr;
  return allocate_copy(text, std::char_traits<OLECHAR>::length(text) * sizeof(OLECHAR));
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length_chars) noexcept {
  return allocate_copy(text, std::size_t{length_chars} * sizeof(OLECHAR));
}

BSTR SysAllocStringByteLen(const char* bytes, UINT length_bytes) noexcept { return allocate_copy(bytes, length_bytes); }

INT SysReAllocString(BSTR* target, const OLECHAR* text) noexcept {
  if (target == nullptr) return FALSE;
  BSTR const fresh = SysAllocString(text);
  if (fresh == nullptr && text != nullptr) return FALSE;
  SysFreeString(*target);
  *target = fresh;
  return TRUE;
}

INT SysReAllocStringLen(BSTR* target, const OLECHAR* text, UINT length_chars) noexcept {
  if (target == nullptr) return FALSE;
  BSTR const fresh = SysAllocStringLen(text, length_chars);
  if (fresh == nullptr) return FALSE;
  if (text == nullptr) {
    const UINT kept = SysStringLen(*target) < length_chars ? SysStringLen(*target) : length_chars;
    if (kept != 0) std::memcpy(fresh, *target, std::size_t{kept} * sizeof(OLECHAR));
  }
  SysFreeString(*target);
  *target = fresh;
  return TRUE;
}

void SysFreeString(BSTR text) noexcept {
  if (text != nullptr) std::free(block_of(text));
}

UINT SysStringLen(BSTR text) noexcept { return SysStringByteLen(text) / static_cast<UINT>(sizeof(OLECHAR)); }

UINT SysStringByteLen(BSTR text) noexcept {
  if (text == nullptr) return 0;
  DWORD length = 0;
  std::memcpy(&length, reinterpret_cast<const char*>(text) - length_bytes_back, sizeof length);
  return length;
}

BSTR alloc_sys_string(const CString& text) {
  try {
    BSTR const result = widened(text.view());
    if (result != nullptr) return result;
  } catch (const std::bad_alloc&) {
  }
  _com_issue_error(E_OUTOFMEMORY);
}

CString to_cstring(BSTR text) {
  if (text == nullptr) return CString();
  return CString(platform::to_utf8({text, SysStringLen(text)}));
}
