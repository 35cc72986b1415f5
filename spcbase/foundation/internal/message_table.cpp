#include "spcbase/foundation/internal/message_table.h"

#include <algorithm>
#include <array>

namespace {

constexpr auto messages = std::to_array<Message>({
#define SPCBASE_MESSAGE(id, name, text) {id, text},
#include "spcbase/foundation/messages.inc"
#undef SPCBASE_MESSAGE
});

static_assert(std::ranges::adjacent_find(messages, std::ranges::greater_equal{}, &Message::id) == messages.end(),
              "messages.inc is ordered by number, and each number stands once");

class OwnMessages final : public MessageSource {
 public:
  const char* find(UINT id) const noexcept override {
    const auto found = std::ranges::lower_bound(messages, id, {}, &Message::id);
    return found != messages.end() && found->id == id ? found->text : nullptr;
  }
};

}  // namespace

std::span<const Message> all_messages() noexcept { return messages; }

const MessageSource& own_messages() noexcept {
  static const OwnMessages source;
  return source;
}
