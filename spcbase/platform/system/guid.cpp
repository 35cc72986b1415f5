#include "spcbase/platform/system/guid.h"

#include <uuid/uuid.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "spcbase/platform/system/memory.h"
#include "spcbase/platform/system/system_error.h"

namespace {

constexpr std::size_t bare_length = 36;

/// Whether a text has its dashes, and nothing but hexadecimal digits, where an id has them.
bool is_bare_guid(const char* text, std::size_t length) {
  if (length != bare_length) return false;
  for (std::size_t i = 0; i < length; ++i) {
    const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
    if (dash ? text[i] != '-' : std::strchr("0123456789abcdefABCDEF", text[i]) == nullptr) return false;
  }
  return true;
}

/// The field order of a structure differs from the byte order of libuuid, which is that of the text.
GUID from_text_order(const uuid_t bytes) {
  GUID id{};
  id.Data1 = static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
             static_cast<std::uint32_t>(bytes[2]) << 8 | static_cast<std::uint32_t>(bytes[3]);
  id.Data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
  id.Data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
  std::memcpy(id.Data4, bytes + 8, sizeof id.Data4);
  return id;
}

}  // namespace

namespace platform {

std::string uuid_text(REFGUID id) {
  char text[bare_length + 1];
  std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", id.Data1, id.Data2, id.Data3,
                id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7]);
  return text;
}

std::string guid_text(REFGUID id) {
  std::string text = "{" + uuid_text(id) + "}";
  for (char& c : text) {
    if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

bool guid_from_text(const char* text, GUID& id) noexcept {
  if (!text) return false;
  std::size_t length = std::strlen(text);
  if (length == bare_length + 2 && text[0] == '{' && text[length - 1] == '}') {
    ++text;
    length -= 2;
  }
  if (!is_bare_guid(text, length)) return false;
  char bare[bare_length + 1];
  std::memcpy(bare, text, bare_length);
  bare[bare_length] = '\0';
  uuid_t bytes;
  if (uuid_parse(bare, bytes) != 0) return false;
  id = from_text_order(bytes);
  return true;
}

}  // namespace platform

HRESULT CoCreateGuid(GUID* id) noexcept {
  if (!id) return E_POINTER;
  uuid_t bytes;
  uuid_generate_random(bytes);
  *id = from_text_order(bytes);
  return S_OK;
}

int StringFromGUID2(REFGUID id, OLECHAR* buffer, int size_chars) noexcept {
  constexpr int needed = static_cast<int>(bare_length) + 3;
  if (!buffer || size_chars < needed) return 0;
  const std::string text = platform::guid_text(id);
  for (std::size_t i = 0; i <= text.size(); ++i) {
    buffer[i] = static_cast<OLECHAR>(text.c_str()[i]);
  }
  return needed;
}

HRESULT StringFromIID(REFIID id, OLECHAR** text) noexcept {
  if (!text) return E_POINTER;
  constexpr int size_chars = static_cast<int>(bare_length) + 3;
  *text = static_cast<OLECHAR*>(CoTaskMemAlloc(size_chars * sizeof(OLECHAR)));
  if (!*text) return E_OUTOFMEMORY;
  StringFromGUID2(id, *text, size_chars);
  return S_OK;
}

LONG UuidToStringA(const UUID* id, unsigned char** text) noexcept {
  if (!id || !text) return static_cast<LONG>(ERROR_INVALID_PARAMETER);
  *text = static_cast<unsigned char*>(std::malloc(bare_length + 1));
  if (!*text) return static_cast<LONG>(ERROR_OUTOFMEMORY);
  std::memcpy(*text, platform::uuid_text(*id).c_str(), bare_length + 1);
  return 0;
}

LONG RpcStringFreeA(unsigned char** text) noexcept {
  if (text) {
    std::free(*text);
    *text = nullptr;
  }
  return 0;
}
