#include "spcbase/platform/database/row_buffer.h"

namespace spcdb {

void RowBuffer::reset(std::span<const ColumnBinding> columns) {
  kinds_.clear();
  for (const auto& column : columns)
    kinds_.push_back(column.kind);
  cells_.clear();
  texts_.clear();
  current_ = 0;
}

void RowBuffer::take(Row& source) {
  const auto first = cells_.size();
  cells_.resize(first + kinds_.size());
  Cell* cell = cells_.data() + first;
  for (unsigned column = 0; column < kinds_.size(); ++column, ++cell) {
    switch (kinds_[column]) {
      case ValueKind::integer:
        cell->is_null = !source.integer(column, cell->integer);
        break;
      case ValueKind::real:
        cell->is_null = !source.real(column, cell->real);
        break;
      case ValueKind::text: {
        std::string_view value;
        cell->is_null = !source.text(column, value);
        cell->text = keep(value);
        break;
      }
      case ValueKind::moment:
        cell->is_null = !source.moment(column, cell->moment);
        break;
      case ValueKind::bytes: {
        std::string_view value;
        cell->is_null = !source.bytes(column, value);
        cell->text = keep(value);
        break;
      }
      case ValueKind::long_bytes:
        cell->is_null = true;
        break;
    }
  }
}

RowBuffer::Text RowBuffer::keep(std::string_view text) {
  const Text kept{texts_.size(), text.size()};
  texts_.append(text);
  return kept;
}

void RowBuffer::overwrite(unsigned column, const Parameter& value) {
  Cell& target = cells_[current_ + column];
  target.is_null = value.is_null;
  if (value.is_null) return;
  switch (kinds_[column]) {
    case ValueKind::integer:
      target.integer = value.integer;
      break;
    case ValueKind::real:
      target.real = value.real;
      break;
    case ValueKind::text:
    case ValueKind::bytes:
      target.text = keep(value.text);
      break;
    case ValueKind::moment:
      target.moment = value.moment;
      break;
    case ValueKind::long_bytes:
      target.is_null = true;
      break;
  }
}

Parameter RowBuffer::value(unsigned column) const {
  const Cell& from = cell(column);
  const auto kind = kinds_[column];
  if (from.is_null) return Parameter::null_of(kind);
  switch (kind) {
    case ValueKind::integer:
      return Parameter::of_integer(from.integer);
    case ValueKind::real:
      return Parameter::of_real(from.real);
    case ValueKind::text:
      return Parameter::of_text(std::string_view(texts_).substr(from.text.offset, from.text.size));
    case ValueKind::bytes:
      return Parameter::of_bytes(std::string_view(texts_).substr(from.text.offset, from.text.size));
    case ValueKind::long_bytes:
      return Parameter::null_of(kind);
    case ValueKind::moment:
      break;
  }
  return Parameter::of_moment(from.moment);
}

bool RowBuffer::integer(unsigned column, std::int64_t& value) {
  if (cell(column).is_null) return false;
  value = cell(column).integer;
  return true;
}

bool RowBuffer::real(unsigned column, double& value) {
  if (cell(column).is_null) return false;
  value = cell(column).real;
  return true;
}

bool RowBuffer::text(unsigned column, std::string_view& value) {
  const Cell& from = cell(column);
  if (from.is_null) return false;
  value = std::string_view(texts_).substr(from.text.offset, from.text.size);
  return true;
}

bool RowBuffer::moment(unsigned column, TIMESTAMP_STRUCT& value) {
  if (cell(column).is_null) return false;
  value = cell(column).moment;
  return true;
}

}  // namespace spcdb
