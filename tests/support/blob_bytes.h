/// Bytes in and out of the holders of blobs.
#pragma once

#include <cstring>
#include <string>

#include "spcbase/platform/database/long_binary.h"
#include "spcbase/platform/system/byte_array.h"

namespace test_support {

/// Bytes of every value; two sizes have not the same.
inline std::string payload(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i)
    bytes[i] = static_cast<char>((i + i / 256 * 7 + size) & 0xFFU);
  return bytes;
}

inline std::string bytes_of(const CLongBinary& value) {
  if (value.m_hData == nullptr) return {};
  std::string bytes(static_cast<const char*>(GlobalLock(value.m_hData)), value.m_dwDataLength);
  GlobalUnlock(value.m_hData);
  return bytes;
}
inline std::string bytes_of(const CByteArray& value) {
  return {reinterpret_cast<const char*>(value.GetData()), static_cast<std::size_t>(value.GetSize())};
}

/// Gives a holder a new block with these bytes; without bytes it has none.
inline void put(CLongBinary& value, const std::string& bytes) {
  GlobalFree(value.m_hData);
  value.m_hData = bytes.empty() ? nullptr : GlobalAlloc(GMEM_MOVEABLE, bytes.size());
  value.m_dwDataLength = static_cast<DWORD>(bytes.size());
  if (bytes.empty()) return;
  std::memcpy(GlobalLock(value.m_hData), bytes.data(), bytes.size());
  GlobalUnlock(value.m_hData);
}

inline void put(CByteArray& value, const std::string& bytes) {
  value.SetSize(static_cast<INT_PTR>(bytes.size()));
  if (!bytes.empty()) std::memcpy(value.GetData(), bytes.data(), bytes.size());
}

}  // namespace test_support
