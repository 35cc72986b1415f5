/// The user's locale for dates.
///
/// Part of the platform layer; not for hosts, and not exported. Dates go by what the process chose with `setlocale` for
/// the category LC_TIME (or the calling thread with `uselocale`), as numbers go by its LC_NUMERIC. It is only asked,
/// never set, and no environment is read: a program that chose none has the locale "C", which stands for US English.
#pragma once

#include <string>
#include <string_view>

#include "spcbase/platform/system/types.h"

namespace platform {

/// The name by which the locale data know a locale of the C library: "de_DE" for "de_DE.UTF-8" or "de_DE@euro".
/// "en_US" for "C", "POSIX", and a language that the locale data do not have.
std::string locale_of_c_name(std::string_view c_name);

/// The name for a locale id as `locale_name` (locale.h) gives it; the neutral and default ids (0, 0x400, 0x800) are the
/// user's locale. The text is kept by the thread until it asks for another locale.
const std::string& date_locale(LCID locale);

/// Holds the calling thread's user locale, by the name of the C library, for as long as the object lives. For tests.
/// Objects nest; each must end on its thread, the latest first.
class HeldUserLocale {
 public:
  explicit HeldUserLocale(std::string c_name);
  ~HeldUserLocale();
  HeldUserLocale(const HeldUserLocale&) = delete;
  HeldUserLocale& operator=(const HeldUserLocale&) = delete;

  const std::string& name() const noexcept { return name_; }

 private:
  std::string name_;
  const HeldUserLocale* outer_;
};

}  // namespace platform
