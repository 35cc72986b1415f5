/// What the columns of a profile's grids are called, and what belongs in their cells.
///
/// Part of the command. An element of the profile is an entry; an entry with two columns has two parts:
///
///     a number by piece     NAME
///     defects by piece      NAME.text    NAME.count
///     a total               NAME         NAME.size
///     a label               NAME
#pragma once

#include <string>
#include <vector>

#include "spcbase/dataentry/profile.h"
#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/variant_t.h"

namespace spc {

enum class CellKind : unsigned char { number, count, text, moment };

/// One column of a grid.
struct GridColumn {
  std::string name;  ///< "Diameter", "Scratches.count"
  CellKind kind = CellKind::text;
  bool by_piece = true;       ///< else in the first row alone
  bool numeric = false;       ///< reads better at the right
  LONG index = 0;             ///< its place in the grid
  int companion = -1;         ///< of NAME.count: where NAME.text stands in the list; else -1
  std::size_t max_chars = 0;  ///< of a text, else 0
};

/// The columns of a profile that hold something, in the order of the grid.
std::vector<GridColumn> columns_of(const oldde::CProfileInfoColl& elements);

/// How many columns the grid has, those that never hold anything included.
LONG grid_width(const oldde::CProfileInfoColl& elements);

/// A grid and its ownership.
class Grid {
 public:
  /// A grid of empty cells.
  /// Fails: std::bad_alloc.
  Grid(LONG columns, LONG rows);
  /// Takes an array over.
  explicit Grid(SAFEARRAY* array);
  ~Grid();
  Grid(Grid&& other) noexcept;
  Grid& operator=(Grid&& other) noexcept;
  Grid(const Grid&) = delete;
  Grid& operator=(const Grid&) = delete;

  LONG columns() const { return columns_; }
  LONG rows() const { return rows_; }
  void put(LONG column, LONG row, const _variant_t& value);
  /// The cell itself; lives as long as the grid.
  const VARIANT& at(LONG column, LONG row) const;
  SAFEARRAY** address() { return &array_; }
  /// The rows up to the last one with something in it.
  LONG filled_rows() const;

 private:
  SAFEARRAY* array_ = nullptr;
  LONG columns_ = 0;
  LONG rows_ = 0;
};

/// A cell as a text for people: "" when empty, numbers with all their digits, moments as 2024-03-05 08:30:00.
std::string cell_text(const VARIANT& cell);

/// Whether two cells hold the same: type and value, numbers to the last bit.
bool same_cell(const VARIANT& left, const VARIANT& right);

}  // namespace spc
