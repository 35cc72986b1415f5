#include "tools/spc/cell_reader.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/text/unicode.h"
#include "tools/spc/moments.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

ReadCell wrong(std::string why, std::string advice = {}) { return {_variant_t(), std::move(why), std::move(advice)}; }

/// The whole text as a number of the wanted kind.
template <class Number>
std::optional<Number> number_of(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

ReadCell read_number(std::string_view text) {
  const auto number = number_of<double>(text);
  if (number && std::isfinite(*number)) return {_variant_t(*number), {}, {}};
  const bool comma = text.find(',') != std::string_view::npos;
  return wrong(quoted(text) + " is not a number", comma ? "A point parts the decimals: 74.03." : "");
}

ReadCell read_count(std::string_view text) {
  const auto number = number_of<std::int64_t>(text);
  if (!number) return wrong(quoted(text) + " is not a whole number");
  if (*number < 0) return wrong(quoted(text) + " is below 0, and this counts something");
  if (*number > std::numeric_limits<LONG>::max()) return wrong(quoted(text) + " is too large for a count");
  return {_variant_t(static_cast<int>(*number)), {}, {}};
}

ReadCell read_text(std::string_view text, std::size_t max_chars) {
  const std::size_t length = platform::utf8_length_chars(text);
  if (length > max_chars)
    return wrong("a text of " + std::to_string(length) + " characters, and " + std::to_string(max_chars) + " fit");
  return {_variant_t(std::string(text).c_str()), {}, {}};
}

ReadCell read_moment_cell(std::string_view text) {
  if (const auto moment = read_moment(text)) return {_variant_t(moment->m_dt, VT_DATE), {}, {}};
  return wrong(quoted(text) + " is not a date", std::string("Dates are written ") + moment_example + ".");
}

}  // namespace

ReadCell read_cell(std::string_view field, const GridColumn& column) {
  const std::string_view text = trimmed(field);
  if (text.empty()) return {};
  switch (column.kind) {
    case CellKind::number:
      return read_number(text);
    case CellKind::count:
      return read_count(text);
    case CellKind::moment:
      return read_moment_cell(text);
    case CellKind::text:
      break;
  }
  // A label keeps its blanks; the text of a defect is stored without them in any case.
  return read_text(field, column.max_chars);
}

}  // namespace spc
