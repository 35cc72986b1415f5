// Range lines: a refused one changes nothing, and the line of any other is read as an equal range.
#include <cstdint>
#include <cstdlib>

#include "spcbase/time/range.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const CString line(reinterpret_cast<const char*>(data), static_cast<int>(size));
  const DateTimeRange before;
  DateTimeRange range;
  if (!range.parse(line)) {
    if (!(range == before) || range.count != before.count || range.from != before.from) std::abort();
    return 0;
  }
  DateTimeRange again;
  if (!again.parse(range.to_string()) || !(again == range)) std::abort();
  if (range.get_log_str().IsEmpty() || range.get_display_string("").IsEmpty()) std::abort();
  return 0;
}
