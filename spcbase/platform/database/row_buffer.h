/// The rows of a snapshot, held by value.
///
/// Part of the database platform layer; hosts do not see it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/platform/database/session.h"

namespace spcdb {

/// Rows taken from a statement. Texts and bytes stand in one arena, so that a row costs no allocation of its own. Long
/// data are not taken.
class RowBuffer final : public Row {
 public:
  /// Empties the buffer and tells what the columns are.
  void reset(std::span<const ColumnBinding> columns);
  /// Appends the row that `source` stands on.
  void take(Row& source);
  /// Makes a row the current one.
  void select(std::size_t row) { current_ = row * kinds_.size(); }
  std::size_t row_count() const { return kinds_.empty() ? 0 : cells_.size() / kinds_.size(); }
  /// Replaces a value of the current row.
  void overwrite(unsigned column, const Parameter& value);
  /// The value of the current row as a parameter; a text lives until the buffer changes.
  Parameter value(unsigned column) const;

  unsigned column_count() const override { return static_cast<unsigned>(kinds_.size()); }
  bool integer(unsigned column, std::int64_t& value) override;
  bool real(unsigned column, double& value) override;
  bool text(unsigned column, std::string_view& value) override;
  bool moment(unsigned column, TIMESTAMP_STRUCT& value) override;
  bool bytes(unsigned column, std::string_view& value) override { return text(column, value); }

 private:
  struct Text {
    std::size_t offset;
    std::size_t size;
  };
  struct Cell {
    union {
      std::int64_t integer;
      double real;
      Text text;
      TIMESTAMP_STRUCT moment;
    };
    bool is_null;
  };

  const Cell& cell(unsigned column) const { return cells_[current_ + column]; }
  Text keep(std::string_view text);

  std::vector<ValueKind> kinds_;
  std::vector<Cell> cells_;
  std::string texts_;
  std::size_t current_ = 0;
};

}  // namespace spcdb
