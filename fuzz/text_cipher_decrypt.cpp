// TextCipher::decrypt takes any text: it throws a std::exception or gives a text, and that text enciphered again under
// the same row is the stored one. The first byte says how the rest is meant: a text as it stands, or the bytes of one
// behind a good header of row 0, 1 or 2, which random characters would hardly ever hit.
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>

#include "spcbase/platform/crypto/base64.h"
#include "spcbase/utility/internal/text_cipher.h"

namespace {

constexpr char key_text[] = "37";

void require(bool holds) {
  if (!holds) std::abort();
}

std::string stored_text(const std::uint8_t* data, std::size_t size) {
  const unsigned meaning = data[0] % 4U;
  std::string bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  if (meaning == 3) return bytes;
  bytes.insert(0, {'\1', '\0', static_cast<char>(meaning), '\0'});
  std::string text(platform::base64_length(bytes.size()), '\0');
  platform::encode_base64({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, text.data());
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text = stored_text(data, size);
  try {
    TextCipher reader;
    const CString clear = reader.decrypt(text.c_str(), key_text);
    if (clear.IsEmpty()) return 0;
    TextCipher writer;
    writer.provider_index = reader.provider_index;
    require(writer.encrypt_bytes(clear.view(), key_text) == text.c_str());
  } catch (const std::exception&) {
    return 0;
  }
  return 0;
}
