#include "tools/spc/layout.h"

#include <bit>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <utility>

#include "tools/spc/json.h"
#include "tools/spc/moments.h"

namespace spc {
namespace {

/// The width of a label's value and of a defect's text in the tables of samples.
constexpr std::size_t value_chars = 513;

bool is(const CString& word, const char* wanted) { return word.CompareNoCase(wanted) == 0; }

GridColumn column(std::string name, CellKind kind, LONG index, bool by_piece) {
  GridColumn made;
  made.name = std::move(name);
  made.kind = kind;
  made.index = index;
  made.by_piece = by_piece;
  made.numeric = kind == CellKind::number || kind == CellKind::count;
  made.max_chars = kind == CellKind::text ? value_chars : 0;
  return made;
}

LONG width_of(const oldde::CProfileInfo& element) { return element.kind == 1 || element.type == "VARIABLE" ? 1 : 2; }

void add_columns(std::vector<GridColumn>& columns, const oldde::CProfileInfo& element, LONG index) {
  const std::string name(element.name.view());
  if (element.kind == 1) {
    const CellKind kind = is(element.detail, "DATETIME") ? CellKind::moment : CellKind::text;
    columns.push_back(column(name, kind, index, !is(element.type, "SAMPLE")));
  } else if (element.type == "VARIABLE") {
    columns.push_back(column(name, CellKind::number, index, true));
  } else if (element.type == "ATTRIBUTE" && element.is_total) {
    columns.push_back(column(name, CellKind::count, index, false));
    columns.push_back(column(name + ".size", CellKind::number, index + 1, false));
  } else if (element.type == "ATTRIBUTE") {
    columns.push_back(column(name + ".text", CellKind::text, index, true));
    columns.push_back(column(name + ".count", CellKind::count, index + 1, true));
    columns.back().companion = static_cast<int>(columns.size()) - 2;
  }
}

LONG extent(SAFEARRAY* array, UINT dimension) {
  LONG upper = -1;
  if (SafeArrayGetUBound(array, dimension, &upper) < 0) throw std::logic_error("a grid has two dimensions");
  return upper + 1;
}

}  // namespace

std::vector<GridColumn> columns_of(const oldde::CProfileInfoColl& elements) {
  std::vector<GridColumn> columns;
  LONG index = 0;
  for (const auto& element : elements) {
    add_columns(columns, element, index);
    index += width_of(element);
  }
  return columns;
}

LONG grid_width(const oldde::CProfileInfoColl& elements) {
  LONG width = 0;
  for (const auto& element : elements)
    width += width_of(element);
  return width;
}

Grid::Grid(LONG columns, LONG rows) : columns_(columns), rows_(rows) {
  SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(columns), 0}, {static_cast<ULONG>(rows), 0}};
  array_ = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (array_ == nullptr) throw std::bad_alloc();
}

Grid::Grid(SAFEARRAY* array) : array_(array), columns_(extent(array, 1)), rows_(extent(array, 2)) {}

Grid::~Grid() { SafeArrayDestroy(array_); }

Grid::Grid(Grid&& other) noexcept
    : array_(std::exchange(other.array_, nullptr)), columns_(other.columns_), rows_(other.rows_) {}

Grid& Grid::operator=(Grid&& other) noexcept {
  std::swap(array_, other.array_);
  std::swap(columns_, other.columns_);
  std::swap(rows_, other.rows_);
  return *this;
}

void Grid::put(LONG column, LONG row, const _variant_t& value) {
  const LONG place[2] = {column, row};
  if (SafeArrayPutElement(array_, place, &value) < 0) throw std::out_of_range("a cell outside the grid");
}

const VARIANT& Grid::at(LONG column, LONG row) const {
  const LONG place[2] = {column, row};
  void* cell = nullptr;
  if (SafeArrayPtrOfIndex(array_, place, &cell) < 0) throw std::out_of_range("a cell outside the grid");
  return *static_cast<const VARIANT*>(cell);
}

LONG Grid::filled_rows() const {
  for (LONG row = rows_; row > 0; --row)
    for (LONG column = 0; column < columns_; ++column)
      if (at(column, row - 1).vt != VT_EMPTY) return row;
  return 0;
}

std::string cell_text(const VARIANT& cell) {
  switch (cell.vt) {
    case VT_EMPTY:
      return "";
    case VT_R8:
      return number_text(cell.dblVal);
    case VT_I4:
      return std::to_string(cell.lVal);
    case VT_DATE:
      return moment_text(cell.date);
    case VT_BSTR:
      return std::string(to_cstring(cell.bstrVal).view());
    default:
      return "type " + std::to_string(cell.vt);
  }
}

bool same_cell(const VARIANT& left, const VARIANT& right) {
  if (left.vt != right.vt) return false;
  switch (left.vt) {
    case VT_EMPTY:
      return true;
    case VT_R8:
      return std::bit_cast<std::uint64_t>(left.dblVal) == std::bit_cast<std::uint64_t>(right.dblVal);
    case VT_DATE:
      return moment_text(left.date) == moment_text(right.date);
    default:
      return cell_text(left) == cell_text(right);
  }
}

}  // namespace spc
