/// Translations of the library's messages.
///
/// Part of the database foundation. Every text for people that the library makes itself (failures, the names of
/// periods, the sentence about a schedule) stands in its message table under a fixed number. A host may put a
/// translation in the place of any of them:
///
///     install_messages({{1019, "Heute"}, {1034, "die letzten %d %s"}});
///     ...
///     install_messages({});                                   // English again
///
/// A text that takes values has placeholders, "%d" for a number and "%s" for a text. Its translation must take the same
/// values: either the same placeholders in the same order, or, where the language wants another order, numbered ones
/// ("%2$s ... %1$d") for every value. "%%" is a percent sign there. A text without placeholders is shown as it stands.
///
/// The table is the library's one setting for the whole process. It may be replaced at any moment, from any thread: a
/// text is looked up in the table of that moment, so a sentence that is being put together meanwhile may mix two.
#pragma once

#include <map>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

/// One of the library's messages.
struct LibraryMessage {
  UINT number;          ///< fixed
  const char* english;  ///< UTF-8, with its placeholders
};

/// What becomes of a line of the list below.
#define SPCBASE_MESSAGE(id, name, text) {id, text},
/// All of them, ordered by number: what there is to translate.
inline constexpr LibraryMessage library_messages[] = {
#include "spcbase/foundation/messages.inc"
};
#undef SPCBASE_MESSAGE

/// Puts texts, UTF-8, in the place of those with the same number, and takes away what an earlier call put there.
/// Numbers that are not given keep the library's own English; an empty table brings all of them back.
/// Owns:   the texts are copied.
/// Fails:  `std::invalid_argument`, with the number in its text, for a number that the library does not have, a text
///         that is not UTF-8, and placeholders that take other values than those of the English text. The table stays
///         as it was then.
SPCBASE_API void install_messages(const std::map<UINT, CString>& texts);
