#include "spcbase/tree/internal/alike_name.h"

#include <algorithm>

#include "spcbase/utility/text.h"

namespace {

constexpr bool is_plain(char c) { return c >= ' ' && c <= '~'; }
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Of a text that holds no white space but blanks.
std::string_view without_blanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  return text;
}

}  // namespace

AlikeName::AlikeName(const CString& name) : wanted_(name) {
  wanted_.Trim();
  plain_ = std::ranges::all_of(wanted_.view(), is_plain);
}

bool AlikeName::matches(const CString& stored) const {
  // Most names hold nothing but what ASCII prints. The rules then come down to this, without a copy.
  const std::string_view text = stored.view();
  if (plain_ && std::ranges::all_of(text, is_plain))
    return std::ranges::equal(without_blanks(text), wanted_.view(), {}, lower, lower);
  CString name = fix_spc_name(stored, false);
  return name.Trim().CompareNoCase(wanted_) == 0;
}
