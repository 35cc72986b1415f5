// Repeats: a refused one changes nothing, and the canonical form of any other means the same.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/schedule/strings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using schd::RepeatStringInfo;
  const std::string text(reinterpret_cast<const char*>(data), size);
  RepeatStringInfo repeat;
  const CString before = repeat.get_rep_str();
  try {
    RepeatStringInfo::parse_repeat_string(text.c_str(), repeat);
  } catch (const DBException&) {
    if (repeat.get_rep_str() != before) std::abort();
    return 0;
  }
  RepeatStringInfo again;
  RepeatStringInfo::parse_repeat_string(repeat.get_rep_str(), again);
  if (again.get_rep_str() != repeat.get_rep_str() || again.interval != repeat.interval || again.unit != repeat.unit ||
      again.end_mode != repeat.end_mode)
    std::abort();
  return 0;
}
