/// Tables for people: columns aligned by what characters take on a terminal.
///
/// Part of the command.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace spc {

enum class Align : unsigned char { left, right };

/// A table that is gathered and then printed.
class Table {
 public:
  explicit Table(std::string indent = {}) : indent_(std::move(indent)) {}

  void add_column(const std::string& heading, Align align = Align::left);
  /// Cells beyond the columns are left out, missing ones are empty.
  void add_row(std::vector<std::string> cells);
  std::size_t rows() const { return rows_.size(); }

  /// Prints headings, a rule and the rows; no line ends in blanks.
  void print(std::ostream& out) const;

 private:
  struct Column {
    std::string heading;
    Align align;
  };

  std::vector<std::size_t> widths() const;
  void print_row(std::ostream& out, const std::vector<std::string>& cells,
                 const std::vector<std::size_t>& widths) const;

  std::string indent_;
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

/// Names and their values.
using Facts = std::vector<std::pair<std::string, std::string>>;

/// Prints a line for each fact, the values below each other.
void print_facts(std::ostream& out, const Facts& facts);

}  // namespace spc
