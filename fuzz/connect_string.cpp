// ConnectStringUtil::HidePassword takes any text. The second time changes nothing and tells the same. In a text that is
// made of pairs, each written by the rules of one spelling, no password is left and every other pair stands as it was.
// The first byte says how the rest is meant: a text as it stands, or the values of pairs, parted by zeros, of ODBC or
// in either quotes of OLE DB and ADO.NET, alone or in the extended properties of another text.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "spcbase/companion/connect_string.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

std::string hidden(const std::string& text) {
  ConnectStringUtil once{CString(std::string_view(text))};
  const bool found = once.HidePassword();
  require(found || once.text.view() == text);
  ConnectStringUtil twice(once.text);
  require(twice.HidePassword() == found);
  require(twice.text == once.text);
  return std::string(once.text.view());
}

std::string enclosed(char opener, std::string_view value) {
  const char closer = opener == '{' ? '}' : opener;
  std::string text(1, opener);
  for (const char c : value)
    text.append(c == closer ? 2 : 1, c);
  return text + closer;
}

/// The values in turn as those of a name, which holds no pairs, and of a password.
void check_pairs(char opener, bool nested, std::string_view values) {
  std::string given, wanted;
  for (bool is_password = false; !values.empty(); is_password = !is_password) {
    const auto end = values.find('\0');
    const auto value = values.substr(0, end);
    values.remove_prefix(end == values.npos ? values.size() : end + 1);
    const std::string key = is_password ? "Password=" : "UID=";
    // A value with an equals sign may be a list itself, and is looked through.
    if (!is_password && value.find('=') != value.npos) continue;
    given += key + enclosed(opener, value) + ";";
    wanted += key + (is_password ? "***" : enclosed(opener, value)) + ";";
  }
  if (nested) {
    given = "Extended Properties=" + enclosed(opener, given);
    wanted = "Extended Properties=" + enclosed(opener, wanted);
  }
  require(hidden(given) == wanted);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
  const unsigned meaning = data[0] % 8U;
  constexpr char openers[] = {'{', '"', '\''};
  if (meaning < 6)
    check_pairs(openers[meaning % 3U], meaning >= 3, rest);
  else
    hidden(std::string(rest));
  return 0;
}
