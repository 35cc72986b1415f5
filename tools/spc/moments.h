/// Moments, weekdays and months as the command reads and writes them.
///
/// Part of the command.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "spcbase/platform/datetime/ole_datetime.h"

namespace spc {

/// How a moment is written, for those who wrote something else.
inline constexpr const char* moment_example = "2024-03-05 or 2024-03-05 08:30:00";

/// Reads YYYY-MM-DD, with HH:MM or HH:MM:SS behind it if wanted, parted by a blank or a T. A date alone is its
/// midnight. Returns nothing for another text, and for one that is no date.
std::optional<COleDateTime> read_moment(std::string_view text);

/// The moment that an option names.
/// Fails: Problem when it is none.
COleDateTime moment_of_option(const char* option, const std::string& text);

/// A moment as text, to the second; "?" for a number that is none.
std::string moment_text(double day_number);

/// Lets dates for people follow the locale of the user's environment from now on. Only for tasks that read no stored
/// dates: those must mean the same to everybody.
void use_dates_of_user();

/// "Sunday" for 0 to "Saturday" for 6.
const char* weekday_name(int day);
/// "January" for 1 to "December" for 12.
const char* month_name(int month);

}  // namespace spc
