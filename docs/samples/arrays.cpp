// A host that hands arrays to the library and takes them back: numbers, texts, bytes.
#include <cstdio>

#include "spcbase/foundation/outcome.h"
#include "spcbase/utility/arrays.h"

namespace {

// What a host would pass on to a script or over the wire: a VARIANT that owns its array.
VARIANT pack_limits() {
  COleSafeArray limits;
  to_safe_array(limits, std::vector<int>{74, 76}, VT_I4);
  return limits.Detach();
}

void print_limits(const VARIANT& limits) {
  std::vector<int> numbers;
  const int count = to_vector(numbers, limits.parray);
  std::printf("%d limits, from %d to %d\n", count, numbers.front(), numbers.back());
}

void print_names() {
  COleSafeArray array;
  to_safe_array(array, std::vector<CString>{"Länge", "Breite"});
  std::vector<CString> names;
  to_vector(names, array.parray);
  for (const CString& name : names)
    std::printf("%s\n", name.GetString());
}

// The stream stands at its end: whoever reads it goes to the start first.
void print_bytes() {
  unsigned char bytes[] = {'s', 'p', 'c'};
  ATL::CComPtr<IStream> stream;
  stream.Attach(create_mem_stream(bytes, sizeof bytes));
  stream->Seek({0}, STREAM_SEEK_SET, nullptr);
  char text[8] = {};
  ULONG count = 0;
  stream->Read(text, sizeof text, &count);
  std::printf("%u bytes: %s\n", count, text);
}

void show_a_refusal() {
  COleSafeArray array;
  to_safe_array(array, std::vector<int>{1, 2}, VT_I4);
  std::vector<double> numbers;
  const auto done = guarded([&] { to_vector(numbers, array.parray); });
  if (!done) std::printf("0x%08X\n", static_cast<unsigned>(done.failure().code));
}

}  // namespace

int main() {
  VARIANT limits = pack_limits();
  print_limits(limits);
  VariantClear(&limits);
  print_names();
  print_bytes();
  show_a_refusal();
}
