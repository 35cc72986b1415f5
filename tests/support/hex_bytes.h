/// Bytes of a recorded buffer, which stands in hexadecimal.
#pragma once

#include <string>
#include <string_view>

namespace test_support {

inline std::string bytes_of_hex(std::string_view hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes.push_back(static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
  return bytes;
}

inline std::string hex_of(std::string_view bytes) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string hex;
  for (const char c : bytes) {
    hex.push_back(digits[static_cast<unsigned char>(c) >> 4U]);
    hex.push_back(digits[static_cast<unsigned char>(c) & 0x0FU]);
  }
  return hex;
}

}  // namespace test_support
