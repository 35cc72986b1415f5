/// The library's message table: its numbers and its source of texts.
///
/// Part of the database foundation, for the library's own use. messages.inc holds the table.
#pragma once

#include <memory>
#include <span>

#include "spcbase/platform/system/message_source.h"
#include "spcbase/platform/system/types.h"

/// The numbers. They are fixed: translations and hosts know them.
namespace msg {
#define SPCBASE_MESSAGE(id, name, text) inline constexpr UINT name = id;
#include "spcbase/foundation/messages.inc"
#undef SPCBASE_MESSAGE
}  // namespace msg

/// One line of the table.
struct Message {
  UINT id;
  const char* text;
};

/// The whole table, ordered by number.
std::span<const Message> all_messages() noexcept;

/// The library's own source of messages: English.
const MessageSource& own_messages() noexcept;

/// The messages as they are shown: the translations that the host installed (messages.h), and English for the others.
/// Never null. The source lives as long as the pointer, also when the host installs another one meanwhile.
std::shared_ptr<const MessageSource> current_messages();
