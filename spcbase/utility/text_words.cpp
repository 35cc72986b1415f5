#include <string>

#include "spcbase/platform/text/character.h"
#include "spcbase/utility/text.h"

namespace {

unsigned int character_at(const char* text) { return _mbsnextc(reinterpret_cast<const unsigned char*>(text)); }

const char* skip_space(const char* text) {
  while (_ismbcspace(character_at(text)) != 0)
    text = CharNextA(text);
  return text;
}

const char* skip_word(const char* text) {
  while (*text != '\0' && _ismbcspace(character_at(text)) == 0)
    text = CharNextA(text);
  return text;
}

}  // namespace

CString GetFirstWord(const CString& text) {
  const char* const word = skip_space(text.GetString());
  return CString(std::string_view(word, static_cast<std::size_t>(skip_word(word) - word)));
}

void RemoveFirstWord(CString& text) { text = skip_space(skip_word(skip_space(text.GetString()))); }

void RemoveWhiteSpace(CString& text) {
  std::string blanked(text.view());
  for (char& c : blanked) {
    if (platform::is_space_byte(c)) c = ' ';
  }
  text = CString(std::move(blanked));
}

CString fix_spc_name(const CString& name, bool keep_line_ends) {
  std::string kept;
  kept.reserve(name.view().size());
  for (const char* at = name.GetString(); *at != '\0';) {
    const char* const next = CharNextA(at);
    const bool line_end = *at == '\r' || *at == '\n';
    if (_ismbcprint(character_at(at)) != 0 || (keep_line_ends && line_end)) kept.append(at, next);
    at = next;
  }
  return CString(std::move(kept));
}
