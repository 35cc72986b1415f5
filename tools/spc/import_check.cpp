#include "tools/spc/import_check.h"

#include <algorithm>
#include <optional>
#include <set>

#include "tools/spc/cell_reader.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

/// Where the value of a grid's column comes from.
struct Source {
  const GridColumn* column = nullptr;
  std::optional<std::size_t> field;    ///< of the file
  const Constant* constant = nullptr;  ///< else
};

/// The lines of one sample.
struct Group {
  std::string key;
  std::vector<const CsvRow*> rows;
};

class Checker {
 public:
  Checker(const CsvFile& file, const ProfileShape& shape, const ImportRules& rules)
      : file_(file), shape_(shape), rules_(rules) {}

  std::vector<PreparedSample> prepare() {
    check_names();
    find_sources();
    std::vector<PreparedSample> samples;
    for (const Group& group : groups())
      samples.push_back(sample_of(group, samples.size() + 1));
    return samples;
  }

 private:
  [[noreturn]] void refuse(std::string why, std::string advice = {}) const {
    throw Problem{"cannot import " + file_.name, std::move(why), std::move(advice)};
  }
  [[noreturn]] void refuse_line(std::size_t line, const std::string& why, std::string advice = {}) const {
    refuse("line " + std::to_string(line) + ": " + why, std::move(advice));
  }
  /// A fault in one field; `origin` says which.
  [[noreturn]] void refuse_field(std::size_t line, const std::string& origin, const std::string& why,
                                 std::string advice = {}) const {
    refuse("line " + std::to_string(line) + ", " + origin + ": " + why, std::move(advice));
  }

  std::string wanted_columns() const {
    std::string names = "sample, piece (may be left out)";
    for (const auto& column : shape_.columns)
      names += ", " + column.name;
    return "The profile \"" + shape_.name + "\" wants the columns " + names + ".";
  }

  const GridColumn* column_of(const std::string& entry) const {
    const auto found = std::find_if(shape_.columns.begin(), shape_.columns.end(),
                                    [&](const GridColumn& column) { return column.name == entry; });
    return found == shape_.columns.end() ? nullptr : &*found;
  }

  void check_names() const {
    std::set<std::string> seen;
    for (const auto& column : shape_.columns)
      if (!seen.insert(column.name).second)
        refuse("the profile \"" + shape_.name + "\" has two entries named \"" + column.name + "\"",
               "Give them different names: columns are told apart by name.");
    seen.clear();
    for (const auto& heading : file_.header.fields)
      if (!seen.insert(heading).second) refuse_line(file_.header.line, "two columns are named \"" + heading + "\"");
    for (const auto& name : rules_.names)
      if (!seen.contains(name.column))
        refuse_line(file_.header.line, "--map names the column \"" + name.column + "\", which is not there");
  }

  /// What a heading stands for.
  std::string entry_of(const std::string& heading) const {
    const auto named = std::find_if(rules_.names.begin(), rules_.names.end(),
                                    [&](const ColumnName& name) { return name.column == heading; });
    return named == rules_.names.end() ? heading : named->entry;
  }

  bool is_renamed(const std::string& heading) const {
    return std::any_of(rules_.names.begin(), rules_.names.end(),
                       [&](const ColumnName& name) { return name.column == heading; });
  }

  void find_sources() {
    for (const auto& column : shape_.columns)
      sources_.push_back({&column, std::nullopt, nullptr});
    for (std::size_t i = 0; i < file_.header.fields.size(); ++i)
      take_heading(i);
    for (const auto& constant : rules_.constants)
      take_constant(constant);
    if (!sample_field_) refuse_line(file_.header.line, "there is no column \"sample\"", wanted_columns());
    for (const auto& source : sources_)
      if (!source.field && source.constant == nullptr)
        refuse_line(file_.header.line, "there is no column \"" + source.column->name + "\"",
                    wanted_columns() + " Name another column for it with --map COLUMN=" + source.column->name +
                        ", or give one value for all with --set " + source.column->name + "=VALUE.");
  }

  Source& source_of(const GridColumn* column) {
    return sources_[static_cast<std::size_t>(column - &shape_.columns[0])];
  }

  void take_heading(std::size_t field) {
    const std::string& heading = file_.header.fields[field];
    if (!is_renamed(heading) && (heading == "sample" || heading == "piece")) {
      (heading == "sample" ? sample_field_ : piece_field_) = field;
      return;
    }
    const std::string entry = entry_of(heading);
    const GridColumn* column = column_of(entry);
    if (column == nullptr)
      refuse_line(file_.header.line,
                  "the column \"" + entry + "\"" + (entry == heading ? "" : " (--map " + heading + ")") +
                      " is not in the profile",
                  wanted_columns());
    if (source_of(column).field) refuse_line(file_.header.line, "two columns stand for \"" + entry + "\"");
    source_of(column).field = field;
  }

  void take_constant(const Constant& constant) {
    const GridColumn* column = column_of(constant.entry);
    if (column == nullptr)
      refuse("--set names \"" + constant.entry + "\", which is not in the profile", wanted_columns());
    Source& source = source_of(column);
    if (source.field || source.constant != nullptr)
      refuse("\"" + constant.entry + "\" is given twice",
             source.field ? "Leave out --set, or take the column out of the file." : "Give --set once for each entry.");
    source.constant = &constant;
  }

  std::vector<Group> groups() const {
    std::vector<Group> groups;
    std::set<std::string> seen;
    for (const auto& row : file_.rows) {
      const std::string key(trimmed(row.fields[*sample_field_]));
      if (key.empty()) refuse_field(row.line, "column sample", "there is no sample");
      if (groups.empty() || groups.back().key != key) {
        if (!seen.insert(key).second)
          refuse_line(row.line, "sample " + key + " comes again: its lines must stand together");
        groups.push_back({key, {}});
      }
      groups.back().rows.push_back(&row);
    }
    return groups;
  }

  void check_pieces(const Group& group) const {
    const std::size_t count = group.rows.size();
    for (std::size_t i = 0; piece_field_ && i < count; ++i) {
      const std::string_view piece = trimmed(group.rows[i]->fields[*piece_field_]);
      if (piece != std::to_string(i + 1))
        refuse_field(
            group.rows[i]->line, "column piece",
            "\"" + std::string(piece) + "\" where " + std::to_string(i + 1) + " is next in sample " + group.key,
            "The pieces of a sample are 1, 2, 3 and so on, in this order.");
    }
    if (shape_.pieces != 0 && count != shape_.pieces)
      refuse_line(group.rows.front()->line,
                  "sample " + group.key + " has " + std::to_string(count) + (count == 1 ? " piece" : " pieces") +
                      ", and the profile \"" + shape_.name + "\" wants " + std::to_string(shape_.pieces),
                  count < shape_.pieces ? "Give a piece that was not measured a line with empty fields." : "");
  }

  PreparedSample sample_of(const Group& group, std::size_t number) const {
    check_pieces(group);
    PreparedSample sample{group.key, group.rows.front()->line,
                          Grid(shape_.width, static_cast<LONG>(group.rows.size()))};
    for (const auto& source : sources_)
      for (std::size_t row = 0; row < group.rows.size(); ++row)
        fill(sample.grid, source, group, row, number);
    check_defects(sample.grid, group);
    return sample;
  }

  /// Where a value stands, for messages.
  static std::string origin(const Source& source, const CsvFile& file) {
    return source.field ? "column " + file.header.fields[*source.field] : "--set " + source.column->name;
  }

  std::string field_of(const Source& source, const Group& group, std::size_t row, std::size_t number) const {
    return source.field ? group.rows[row]->fields[*source.field] : source.constant->value(number, row + 1);
  }

  void fill(Grid& grid, const Source& source, const Group& group, std::size_t row, std::size_t number) const {
    const std::string field = field_of(source, group, row, number);
    const GridColumn& column = *source.column;
    if (!column.by_piece && row > 0) {
      const bool says_other = !trimmed(field).empty() && field != field_of(source, group, 0, number);
      if (says_other)
        refuse_field(group.rows[row]->line, origin(source, file_),
                     "sample " + group.key + " has another value in line " + std::to_string(group.rows[0]->line) +
                         ", and it takes one for all its pieces");
      return;
    }
    ReadCell cell = read_cell(field, column);
    if (!cell.wrong.empty()) refuse_field(group.rows[row]->line, origin(source, file_), cell.wrong, cell.advice);
    grid.put(column.index, static_cast<LONG>(row), cell.value);
  }

  /// A count without a text would be dropped without a word.
  void check_defects(const Grid& grid, const Group& group) const {
    for (const auto& column : shape_.columns) {
      if (column.companion < 0) continue;
      const GridColumn& text = shape_.columns[static_cast<std::size_t>(column.companion)];
      for (LONG row = 0; row < grid.rows(); ++row)
        if (grid.at(column.index, row).vt != VT_EMPTY && grid.at(text.index, row).vt == VT_EMPTY)
          refuse_field(group.rows[static_cast<std::size_t>(row)]->line, "column " + column.name,
                       "a count without a " + text.name);
    }
  }

  const CsvFile& file_;
  const ProfileShape& shape_;
  const ImportRules& rules_;
  std::vector<Source> sources_;
  std::optional<std::size_t> sample_field_;
  std::optional<std::size_t> piece_field_;
};

}  // namespace

std::vector<PreparedSample> prepare_samples(const CsvFile& file, const ProfileShape& shape, const ImportRules& rules) {
  return Checker(file, shape, rules).prepare();
}

}  // namespace spc
