/// `strftime` into a CString.
///
/// Part of the platform layer; not for hosts.
#pragma once

#include <ctime>
#include <string>
#include <utility>

#include "spcbase/platform/text/cstring.h"

namespace platform {

/// Writes fields by a format that is not null.
inline CString format_fields(const char* format, const std::tm& fields) {
  // A result of no bytes is no failure, so the format gets a mark that makes every result longer than that.
  const std::string marked = std::string(format) + ".";
  std::string text(128, '\0');
  std::size_t length = 0;
  while ((length = std::strftime(text.data(), text.size(), marked.c_str(), &fields)) == 0) {
    text.resize(text.size() * 2);
  }
  text.resize(length - 1);
  return CString(std::move(text));
}

}  // namespace platform
