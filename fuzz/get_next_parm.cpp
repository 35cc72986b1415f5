// A command line of any bytes, walked from end to end.
// Holds: every step but the last goes on; a step stays within the line; a parameter stands in the line as it comes out;
// a bare one has no white space and a quoted one not its quote; at the end the output is empty.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "spcbase/platform/text/character.h"
#include "spcbase/utility/text.h"

namespace {

void expect(bool holds) {
  if (!holds) std::abort();
}

const char* skip_space(const char* at) {
  while (platform::is_space_byte(*at))
    ++at;
  return at;
}

/// Takes one parameter at a place that has one, and checks it.
const char* checked_step(const char* at, const char* end) {
  CString parameter("before");
  const char* const next = GetNextParm(at, parameter);
  const char* const first = skip_space(at);
  expect(next >= first && next <= end);
  const auto length = static_cast<std::size_t>(parameter.GetLength());
  if (*first == '"' || *first == '\'') {
    expect(parameter.Find(*first) == -1);
    expect(std::memcmp(first + 1, parameter.GetString(), length) == 0);
    const bool closed = first[1 + length] == *first;
    expect(next == first + 1 + length + (closed ? 1 : 0));
    expect(closed || next == end);
  } else {
    expect(parameter.FindOneOf(" \t\n\v\f\r") == -1);
    expect(std::memcmp(first, parameter.GetString(), length) == 0);
    expect(next == first + length && (next == end || platform::is_space_byte(*next)));
    expect(length > 0 || next == end);
  }
  return next;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string line(reinterpret_cast<const char*>(data), size);
  const char* at = line.c_str();
  const char* const end = at + std::strlen(at);
  while (*skip_space(at) != '\0') {
    const char* const next = checked_step(at, end);
    expect(next > at);
    at = next;
  }
  CString parameter("before");
  expect(GetNextParm(at, parameter) == end && parameter.IsEmpty());
  return 0;
}
