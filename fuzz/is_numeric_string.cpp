// A text of any bytes as a number, and a double of any bits as a text.
// Holds: the value changes only when the text is a number, and is then finite; digits alone are a number; a number that
// a text gives is one as a neutral text too, the same where 20 places can hold it.
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "spcbase/utility/text.h"

namespace {

void expect(bool holds) {
  if (!holds) std::abort();
}

void check_neutral(double value) {
  const CString neutral = double_to_eng(value);
  double read = 0;
  expect(IsNumericString(neutral, read) == std::isfinite(value));
  if (!std::isfinite(value)) return;
  expect(neutral.Find('.') > 0);
  expect(std::bit_cast<std::uint64_t>(eng_to_double(neutral)) == std::bit_cast<std::uint64_t>(read));
  constexpr double least_that_20_places_hold = 0x1p-14;
  if (std::fabs(value) >= least_that_20_places_hold) expect(read == value);
}

void check_text(const char* text) {
  constexpr double before = 0.125;
  double value = before;
  const bool numeric = IsNumericString(text, value);
  if (numeric) {
    expect(std::isfinite(value));
    check_neutral(value);
  } else {
    expect(value == before);
  }
  int whole = 7;
  if (is_int_str(text, &whole)) {
    expect(whole >= 0 && (numeric || std::strlen(text) > 300));
  } else {
    expect(whole == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  check_text(text.c_str());
  double any = 0;
  std::memcpy(&any, data, size < sizeof any ? size : sizeof any);
  check_neutral(any);
  return 0;
}
