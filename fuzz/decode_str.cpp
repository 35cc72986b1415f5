// decode_str takes any text and any key: it gives half as many bytes as there are letters, or none, and encode_str
// gives the letters again, but for white space that it cuts. The input is the key, a zero, and the text.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "spcbase/utility/encoders.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t end_of_key = std::min(input.find('\0'), input.size());
  const std::string key = input.substr(0, end_of_key);
  const CString text(std::string_view(input).substr(std::min(end_of_key + 1, input.size())));

  const CString clear = decode_str(text, key.c_str());
  CString letters(text);
  letters.TrimRight();
  require(clear.IsEmpty() || clear.GetLength() == letters.GetLength() / 2);

  CString cut(clear);
  cut.TrimRight();
  const CString again = encode_str(clear, key.c_str());
  require(again == letters.Left(2 * cut.GetLength()));
  require(decode_str(again, key.c_str()) == cut);
  require(decode_str(encode_str(text, key.c_str()), key.c_str()) == letters);
  return 0;
}
