// A host that shows the library's texts in another language.
#include <cstdio>
#include <stdexcept>

#include "spcbase/foundation/messages.h"
#include "spcbase/time/range.h"
#include "spcbase/time/unit_words.h"

int main() {
  install_messages({{1019, "Heute"}, {1034, "die letzten %d %s"}});
  DateTimeRange range;
  range.type = DateTimeRange::today;
  std::printf("%s\n", range.get_display_string("Created").GetString());
  try {
    install_messages({{1034, "die letzten %s"}});
  } catch (const std::invalid_argument& refused) {
    std::printf("%s\n", refused.what());
  }
  install_messages({});  // English again
  std::printf("%s\n", range.get_display_string("Created").GetString());
}
