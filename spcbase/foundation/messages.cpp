#include "spcbase/foundation/messages.h"

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "spcbase/foundation/internal/message_table.h"
#include "spcbase/foundation/internal/placeholders.h"
#include "spcbase/platform/text/utf8_walk.h"

namespace {

class Translations final : public MessageSource {
 public:
  explicit Translations(const std::map<UINT, CString>& texts) : texts_(texts) {}

  const char* find(UINT id) const noexcept override {
    const auto found = texts_.find(id);
    return found != texts_.end() ? found->second.GetString() : own_messages().find(id);
  }

 private:
  std::map<UINT, CString> texts_;
};

/// What is installed, null for nothing: the library's one piece of state that a host sets for the whole process. A
/// reader takes a share of the table under the lock and reads it without one.
struct Installed {
  std::mutex lock;
  std::shared_ptr<const MessageSource> table;
};

/// Never destroyed: the destructors of a host's own static objects may still fail with a text.
Installed& installed() {
  static Installed* const state = new Installed;
  return *state;
}

bool is_utf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const platform::Utf8Step step = platform::utf8_step(text, at);
    if (!step.valid) return false;
    at += step.length_bytes;
  }
  return true;
}

[[noreturn]] void refuse(UINT id, const std::string& why) {
  throw std::invalid_argument("message " + std::to_string(id) + ": " + why);
}

void check(UINT id, const char* text) {
  const char* english = own_messages().find(id);
  if (english == nullptr) refuse(id, "the library has no message of this number");
  if (!is_utf8(text)) refuse(id, "the text is not UTF-8");
  const std::string problem = placeholder_problem(english, text);
  if (!problem.empty()) refuse(id, problem);
}

}  // namespace

std::shared_ptr<const MessageSource> current_messages() {
  {
    Installed& state = installed();
    const std::lock_guard lock(state.lock);
    if (state.table) return state.table;
  }
  // Not owned: the library's own messages are always there.
  return {std::shared_ptr<const MessageSource>(), &own_messages()};
}

void install_messages(const std::map<UINT, CString>& texts) {
  for (const auto& [id, text] : texts)
    check(id, text.GetString());
  std::shared_ptr<const MessageSource> table;
  if (!texts.empty()) table = std::make_shared<const Translations>(texts);
  Installed& state = installed();
  const std::lock_guard lock(state.lock);
  state.table.swap(table);
}
