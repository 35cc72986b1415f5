#include "spcbase/platform/datetime/user_locale.h"

#include <langinfo.h>
#include <unicode/locid.h>

#include <algorithm>
#include <clocale>
#include <cstring>
#include <optional>
#include <utility>

#include "spcbase/platform/text/locale.h"

namespace platform {

namespace {

constexpr std::string_view us_english = "en_US";

thread_local const HeldUserLocale* held = nullptr;

std::string_view c_name_of_dates() {
  if (held) return held->name();
  const char* name = nl_langinfo(NL_LOCALE_NAME(LC_TIME));
  return name ? name : "C";
}

/// For a language without data, the data of ICU's own default locale would serve, which is the environment's.
bool has_data(const icu::Locale& locale) {
  std::int32_t count = 0;
  const icu::Locale* known = icu::Locale::getAvailableLocales(count);
  return std::any_of(known, known + count, [&](const icu::Locale& candidate) {
    return std::strcmp(candidate.getLanguage(), locale.getLanguage()) == 0;
  });
}

bool is_users(LCID locale) {
  const LCID language = locale & 0xFFFFU;
  return language == 0 || language == 0x400 || language == 0x800;
}

/// A locale as it was asked for, and its name.
template <typename Asked>
struct Kept {
  Asked asked;
  std::string name;
};

}  // namespace

std::string locale_of_c_name(std::string_view c_name) {
  const std::string name(c_name.substr(0, c_name.find_first_of(".@")));
  if (name.empty() || name == "C" || name == "POSIX") return std::string(us_english);
  const icu::Locale locale(name.c_str());
  return locale.isBogus() || !has_data(locale) ? std::string(us_english) : std::string(locale.getName());
}

const std::string& date_locale(LCID locale) {
  thread_local std::optional<Kept<std::string>> users;
  thread_local std::optional<Kept<LCID>> given;
  if (!is_users(locale)) {
    if (!given || given->asked != locale) given = {locale, locale_name(locale)};
    return given->name;
  }
  const std::string_view c_name = c_name_of_dates();
  if (!users || users->asked != c_name) users = {std::string(c_name), locale_of_c_name(c_name)};
  return users->name;
}

HeldUserLocale::HeldUserLocale(std::string c_name) : name_(std::move(c_name)), outer_(held) { held = this; }

HeldUserLocale::~HeldUserLocale() { held = outer_; }

}  // namespace platform
