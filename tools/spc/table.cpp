#include "tools/spc/table.h"

#include <algorithm>

#include "tools/spc/utf8.h"

namespace spc {

void Table::add_column(const std::string& heading, Align align) { columns_.push_back({on_one_line(heading), align}); }

void Table::add_row(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  for (auto& cell : cells)
    cell = on_one_line(cell);
  rows_.push_back(std::move(cells));
}

std::vector<std::size_t> Table::widths() const {
  std::vector<std::size_t> widths;
  for (const auto& column : columns_)
    widths.push_back(display_width(column.heading));
  for (const auto& row : rows_)
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], display_width(row[i]));
  return widths;
}

void Table::print_row(std::ostream& out, const std::vector<std::string>& cells,
                      const std::vector<std::size_t>& widths) const {
  std::string line = indent_;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string pad(widths[i] - display_width(cells[i]), ' ');
    if (i != 0) line += "  ";
    line += columns_[i].align == Align::right ? pad + cells[i] : cells[i] + pad;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out << line << '\n';
}

void Table::print(std::ostream& out) const {
  const auto all_widths = widths();
  std::vector<std::string> headings;
  std::vector<std::string> rules;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    headings.push_back(columns_[i].heading);
    rules.emplace_back(all_widths[i], '-');
  }
  print_row(out, headings, all_widths);
  print_row(out, rules, all_widths);
  for (const auto& row : rows_)
    print_row(out, row, all_widths);
}

void print_facts(std::ostream& out, const Facts& facts) {
  std::size_t width = 0;
  for (const auto& [name, value] : facts)
    width = std::max(width, display_width(name));
  for (const auto& [name, value] : facts)
    out << name << std::string(width + 2 - display_width(name), ' ') << on_one_line(value) << '\n';
}

}  // namespace spc
