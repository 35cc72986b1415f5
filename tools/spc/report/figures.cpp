#include "tools/spc/report/figures.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "tools/spc/json.h"

namespace spc::report_page {

std::string fixed_text(double number, int decimals) {
  constexpr double beyond_digits = 1e15;
  if (!std::isfinite(number)) return "?";
  if (std::fabs(number) >= beyond_digits) return number_text(number);
  std::array<char, 64> buffer{};
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed, decimals).ptr;
  std::string text(buffer.data(), end);
  return text.find_first_not_of("-0.") == std::string::npos && text.front() == '-' ? text.substr(1) : text;
}

std::string place_text(double number) {
  std::string text = fixed_text(number, 2);
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

int decimals_of(double number) {
  constexpr int most = 6;
  const std::string text = number_text(number);
  if (text.find('e') != std::string::npos) return std::fabs(number) < 1 ? most : 0;
  const auto point = text.find('.');
  return point == std::string::npos ? 0 : std::min(static_cast<int>(text.size() - point - 1), most);
}

std::string percent_text(double fraction, int decimals) { return fixed_text(100 * fraction, decimals) + " %"; }

Ticks round_ticks(double low, double high, int about) {
  const double rough = (high - low) / about;
  const double power = std::pow(10, std::floor(std::log10(rough)));
  double step = 10 * power;
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power < rough * (1 - 1e-9)) continue;
    step = factor * power;
    break;
  }
  Ticks ticks;
  ticks.decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
  // From whole multiples, so that no fault adds up from tick to tick.
  constexpr double slack = 1e-9;
  const double first = std::ceil(low / step - slack);
  for (int i = 0; i <= 2 * about && first + i <= high / step + slack; ++i)
    ticks.at.push_back((first + i) * step);
  return ticks;
}

}  // namespace spc::report_page
