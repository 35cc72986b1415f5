// Hexadecimal text of the library's alphabet, from any bytes.
// Holds: half as many bytes as characters come out, by the rule of the alphabet; bytes become a text of the alphabet
// that comes back as the same bytes; a text of the alphabet comes back as it was.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "spcbase/utility/text.h"

namespace {

void expect(bool holds) {
  if (!holds) std::abort();
}

std::unique_ptr<BYTE[]> decoded(const char* text, std::size_t length) {
  return std::unique_ptr<BYTE[]>(hex_text_to_byte(text, static_cast<int>(length)));
}

bool of_the_alphabet(char c) { return (c >= '0' && c <= '9') || (c >= 'K' && c <= 'P'); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // A copy without a terminating zero, so that a step too far is seen.
  const auto text = std::make_unique<char[]>(size);
  if (size > 0) std::memcpy(text.get(), data, size);
  const std::size_t count = size / 2;
  const auto bytes = decoded(text.get(), size);
  const CString back = byte_to_hex_text(bytes.get(), static_cast<int>(count));
  expect(back.GetLength() == static_cast<int>(count) * 2);
  for (std::size_t i = 0; i < count * 2; ++i) {
    const char c = back[static_cast<int>(i)];
    expect(of_the_alphabet(c));
    if (of_the_alphabet(text[i - i % 2]) && of_the_alphabet(text[i - i % 2 + 1])) expect(c == text[i]);
  }
  const CString written = byte_to_hex_text(data, static_cast<int>(size));
  const auto same = decoded(written, static_cast<std::size_t>(written.GetLength()));
  expect(size == 0 || std::memcmp(same.get(), data, size) == 0);
  return 0;
}
