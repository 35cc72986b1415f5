#include <cstring>

#include "spcbase/platform/system/file.h"
#include "spcbase/platform/text/character.h"
#include "spcbase/utility/files.h"
#include "spcbase/utility/text.h"

namespace {

bool ends_bare_parameter(char c) { return c == '\0' || platform::is_space_byte(c); }

/// The name of the reason file that a command line gives; empty when it gives none.
CString reason_file(const char* command_line) {
  CString parameter;
  const char* at = command_line;
  while (*at != '\0') {
    at = GetNextParm(at, parameter);
    if (parameter != "/n" && parameter != "/N") continue;
    at = GetNextParm(at, parameter);
    if (!parameter.IsEmpty()) return parameter;
  }
  return {};
}

}  // namespace

const char* GetNextParm(const char* command_line, CString& parameter) {
  parameter.Empty();
  if (command_line == nullptr) return nullptr;
  const char* at = command_line;
  while (platform::is_space_byte(*at))
    ++at;
  const char quote = *at;
  if (quote == '"' || quote == '\'') {
    const char* const first = at + 1;
    const char* const closing = std::strchr(first, quote);
    const char* const last = closing != nullptr ? closing : first + std::strlen(first);
    parameter = std::string_view(first, static_cast<std::size_t>(last - first));
    return closing != nullptr ? closing + 1 : last;
  }
  const char* const first = at;
  while (!ends_bare_parameter(*at))
    ++at;
  parameter = std::string_view(first, static_cast<std::size_t>(at - first));
  return at;
}

CString get_reason_param(const char* command_line) {
  if (command_line == nullptr) return {};
  const CString name = reason_file(command_line);
  if (name.IsEmpty()) return {};
  CString reason;
  FileToText(reason, name);
  DeleteFileA(name);
  return reason;
}
