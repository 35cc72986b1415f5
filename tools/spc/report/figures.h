/// Numbers as a report shows them, and the round ones beside an axis. No locale has a say.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

namespace spc::report_page {

/// A number with so many decimals.
std::string fixed_text(double number, int decimals);

/// A place in a drawing: at most two decimals, none that say nothing.
std::string place_text(double number);

/// How many decimals a number is written with, at most 6.
int decimals_of(double number);

/// A fraction as "12.5 %".
std::string percent_text(double fraction, int decimals);

/// Round numbers at equal distances, the first not below and the last not above the ends.
struct Ticks {
  std::vector<double> at;
  int decimals = 0;  ///< that tell each from the next
};

/// About so many; the ends must be finite, and the low one below the high one.
Ticks round_ticks(double low, double high, int about);

}  // namespace spc::report_page
