#include <algorithm>
#include <string>

#include "spcbase/platform/database/recordset_core.h"
#include "spcbase/platform/database/sql_scan.h"

namespace spcdb {

namespace {

bool is_whole_statement(std::string_view source) {
  std::size_t at = 0;
  while (at < source.size() && scan::is_space(source[at]))
    ++at;
  if (at < source.size() && source[at] == '{') return true;
  const auto word = source.substr(at, scan::word_end(source, at) - at);
  return scan::same_word(word, "SELECT") || scan::same_word(word, "WITH") || scan::same_word(word, "CALL");
}

/// One table and nothing else: no list, no join, no alias.
bool names_one_table(std::string_view source) {
  for (std::size_t at = 0; at < source.size();) {
    const char c = source[at];
    if (c == '[' || c == '"' || c == '`') {
      at = scan::name_end(source, at);
    } else if (scan::is_word(c) || c == '.') {
      ++at;
    } else {
      return false;
    }
  }
  return !source.empty();
}

}  // namespace

bool RecordsetCore::open(UINT type, const char* sql, DWORD options) {
  auto* database = recordset_.m_pDatabase;
  if (database == nullptr || !database->IsOpen() || database->connection() == nullptr) return false;
  if (recordset_.open_) raise(AFX_SQL_ERROR_ILLEGAL_MODE, "24000", "The recordset is open already.");
  type_ = type == AFX_DB_USE_DEFAULT_TYPE ? recordset_.m_nDefaultType : type;
  recordset_.m_dwOptions = options;
  build_statement(sql);
  run();
  return true;
}

void RecordsetCore::build_statement(const char* sql) {
  if (sql != nullptr) {
    source_.assign(sql);
  } else {
    const CString source = recordset_.GetDefaultSQL();
    source_.assign(source.view());
  }
  whole_statement_ = is_whole_statement(source_);
  single_table_ = !whole_statement_ && names_one_table(source_);
  names_.clear();
  if (whole_statement_) {
    statement_ = std::string_view(source_);
  } else {
    write_select(source_);
  }
  plan_pages();
  select_size_ = statement_.view().size();
  append_conditions();
}

void RecordsetCore::write_select(std::string_view source) {
  constexpr std::size_t usual_name = 16;
  names_.reserve(recordset_.m_nFields);
  statement_.Preallocate(static_cast<int>(usual_name * (recordset_.m_nFields + 4) + source.size() +
                                          recordset_.m_strFilter.view().size() + recordset_.m_strSort.view().size()));
  statement_ = std::string_view("SELECT ");
  CFieldExchange naming(CFieldExchange::Name, &recordset_);
  naming.m_pstr = &statement_;
  recordset_.DoFieldExchange(&naming);
  if (names_.empty())
    raise(AFX_SQL_ERROR_EMPTY_COLUMN_LIST, "HY000", "The recordset names no columns, so there is nothing to select.");
  statement_ += std::string_view(" FROM ");
  statement_ += source;
}

void RecordsetCore::append_conditions() {
  filter_ = {};
  if (page_.planned) {
    const auto order = page_order();
    append_clauses(page_condition(), order);
  } else {
    append_clauses(recordset_.m_strFilter.view(), recordset_.m_strSort.view());
  }
}

void RecordsetCore::append_clauses(std::string_view filter, std::string_view sort) {
  if (!filter.empty()) {
    statement_ += std::string_view(" WHERE ");
    filter_.offset = statement_.view().size();
    filter_.size = filter.size();
    statement_ += filter;
  }
  if (!sort.empty()) {
    statement_ += std::string_view(" ORDER BY ");
    statement_ += sort;
  }
}

GivenStatement RecordsetCore::given() const { return {statement_.view(), host_parameters_, host_names_}; }

void RecordsetCore::run() {
  StatementWatch watch(*recordset_.m_pDatabase);
  try {
    refuse_when_stopping(*recordset_.m_pDatabase, given());
    acquire(shape_statement());
    bind_columns();
    gather_parameters();
    kept_->statement->execute(connection().scratch().parameters);
    recordset_.open_ = true;
    connection().enter(recordset_);
    read_rows(watch);
  } catch (CDBException* failure) {
    watch.failed(given(), *failure);
    close();
    throw;
  } catch (...) {
    close();
    throw;
  }
}

StatementText RecordsetCore::shape_statement() {
  auto& scratch = connection().scratch();
  scratch.shape.clear();
  scratch.literals.clear();
  const auto text = statement_.view();
  // The given text would lose the digits that the expression keeps, so it is no stand-in for the shape then.
  const bool shape_keeps_names =
      connection().quirks().double_expression.empty() ||
      std::none_of(names_.begin(), names_.end(), [](const Name& name) { return name.is_real; });
  if (whole_statement_) {
    lift_literals(text, LiftFrom::where, scratch.shape, scratch.literals);
  } else {
    append_select(scratch.shape, filter_.size == 0 ? text.size() : filter_.offset);
    if (filter_.size != 0) {
      lift_literals(piece(filter_), LiftFrom::beginning, scratch.shape, scratch.literals);
      scratch.shape.append(text, filter_.offset + filter_.size);
    }
  }
  return {scratch.shape, text, scratch.literals.any_lifted && shape_keeps_names};
}

/// The statement up to `end`; doubles are asked for through the server's expression where it would lose digits.
void RecordsetCore::append_select(std::string& shape, std::size_t end) const {
  const auto text = statement_.view();
  const std::string_view expression = connection().quirks().double_expression;
  constexpr std::string_view placeholder = "%s";
  std::size_t copied = 0;
  for (const auto& real : names_) {
    if (expression.empty()) break;
    if (!real.is_real) continue;
    shape.append(text, copied, real.offset - copied);
    std::size_t at = 0;
    for (auto next = expression.find(placeholder); next != expression.npos; next = expression.find(placeholder, at)) {
      shape.append(expression, at, next - at).append(piece(real));
      at = next + placeholder.size();
    }
    shape.append(expression, at);
    copied = real.offset + real.size;
  }
  shape.append(text, copied, end - copied);
}

void RecordsetCore::acquire(const StatementText& text) {
  kept_ = &connection().acquire(text, forward() ? Reading::forward : Reading::all);
  // The exchange may ask what the columns are called while it binds them.
  row_ = kept_->statement.get();
}

void RecordsetCore::bind_columns() {
  auto& columns = connection().scratch().columns;
  columns.clear();
  fields_.clear();
  fields_.reserve(recordset_.m_nFields);
  exchange(CFieldExchange::BindFieldToColumn);
  if (fields_.size() != recordset_.m_nFields || fields_.size() > kept_->statement->column_count()) {
    raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "HY000",
          "The recordset exchanges " + std::to_string(fields_.size()) + " columns, m_nFields is " +
              std::to_string(recordset_.m_nFields) + " and the result has " +
              std::to_string(kept_->statement->column_count()) + ".");
  }
  has_long_data_ = std::any_of(columns.begin(), columns.end(),
                               [](const ColumnBinding& column) { return column.kind == ValueKind::long_bytes; });
  if (kept_->bound == columns && !columns.empty()) return;
  kept_->bound.clear();
  kept_->statement->bind_columns(columns);
  kept_->bound = columns;
}

void RecordsetCore::gather_parameters() {
  auto& scratch = connection().scratch();
  host_parameters_.clear();
  host_names_.clear();
  if (recordset_.m_nParams > 0) exchange(CFieldExchange::BindParam);
  add_page_parameters();
  scratch.parameters.clear();
  const auto lifted_from = whole_statement_ ? statement_.view() : piece(filter_);
  std::size_t host = 0;
  for (const auto& slot : scratch.literals.slots) {
    if (slot.source != LiftedSlot::Source::host) {
      if (!kept_->literal) scratch.parameters.push_back(scratch.literals.value_of(slot, lifted_from));
    } else if (host < host_parameters_.size()) {
      scratch.parameters.push_back(host_parameters_[host++]);
    } else {
      ++host;
    }
  }
  if (host != host_parameters_.size()) {
    raise(AFX_SQL_ERROR_PARAMETER_COUNT, "07001",
          "The statement has " + std::to_string(host) + " parameters and the recordset gives " +
              std::to_string(host_parameters_.size()) + ".");
  }
}

void RecordsetCore::read_rows(StatementWatch& watch) {
  record_count_ = 0;
  position_ = 0;
  auto& statement = *kept_->statement;
  if (forward()) {
    const bool has_row = fetch_forward();
    watch.stop();
    set_position(has_row);
    if (has_row) fix_up();
    return;
  }
  rows_.reset(kept_->bound);
  if (has_long_data_) take_row_with_long_data();
  while (statement.fetch())
    rows_.take(statement);
  record_count_ = static_cast<long>(rows_.row_count());
  watch.done(given(), record_count_);
  release();
  row_ = &rows_;
  set_position(rows_.row_count() > 0);
  if (recordset_.m_bEOF) return;
  rows_.select(0);
  if (!has_long_data_) fix_up();
}

void RecordsetCore::set_position(bool has_row) {
  recordset_.m_bEOF = has_row ? FALSE : TRUE;
  recordset_.m_bBOF = has_row ? FALSE : TRUE;
  recordset_.deleted_ = false;
  if (has_row && forward()) ++record_count_;
}

void RecordsetCore::to_row(std::size_t row) {
  position_ = row;
  rows_.select(row);
  recordset_.m_bEOF = FALSE;
  recordset_.m_bBOF = FALSE;
  recordset_.deleted_ = false;
  fix_up();
}

void RecordsetCore::exchange(UINT operation) {
  CFieldExchange pass(operation, &recordset_);
  recordset_.DoFieldExchange(&pass);
}

void RecordsetCore::fix_up() { exchange(CFieldExchange::Fixup); }

void RecordsetCore::show_row_again() {
  fetches_long_ = false;
  try {
    fix_up();
  } catch (...) {
    fetches_long_ = true;
    throw;
  }
  fetches_long_ = true;
}

void RecordsetCore::release() noexcept {
  if (kept_ == nullptr) return;
  connection().give_back(*kept_);
  kept_ = nullptr;
}

void RecordsetCore::close() noexcept {
  if (recordset_.open_ && kept_ != nullptr && recordset_.m_pDatabase->observer() != nullptr)
    StatementWatch(*recordset_.m_pDatabase).done(given(), page_.rows);
  release();
  if (recordset_.open_) connection().leave(recordset_);
  recordset_.open_ = false;
  recordset_.deleted_ = false;
  recordset_.m_bEOF = TRUE;
  recordset_.m_bBOF = TRUE;
  mode_ = Mode::reading;
  row_ = nullptr;
}

void RecordsetCore::requery() {
  if (!recordset_.open_) raise(AFX_SQL_ERROR_ILLEGAL_MODE, "24000", "The recordset is not open.");
  if ((recordset_.m_dwOptions & CRecordset::executeDirect) != 0)
    raise(AFX_SQL_ERROR_ILLEGAL_MODE, "24000", "A recordset that was opened with executeDirect cannot be requeried.");
  const auto options = recordset_.m_dwOptions;
  const std::string source = source_;
  close();
  recordset_.m_dwOptions = options;
  build_statement(source.c_str());
  run();
}

void RecordsetCore::move(long rows, WORD fetch_type) {
  if (!recordset_.open_) raise(AFX_SQL_ERROR_ILLEGAL_MODE, "24000", "The recordset is not open.");
  mode_ = Mode::reading;
  if (forward()) return move_forward(rows, fetch_type);
  const auto count = static_cast<long>(rows_.row_count());
  const auto here = recordset_.m_bEOF ? count : recordset_.m_bBOF ? -1L : static_cast<long>(position_);
  long target = here;
  switch (fetch_type) {
    case CRecordset::fetchNext:
      target = here + 1;
      break;
    case CRecordset::fetchPrior:
      target = here - 1;
      break;
    case CRecordset::fetchFirst:
      target = 0;
      break;
    case CRecordset::fetchLast:
      target = count - 1;
      break;
    default:
      target = here + rows;
  }
  if ((recordset_.m_bEOF && target > here) || (recordset_.m_bBOF && target < here && count > 0))
    raise(AFX_SQL_ERROR_NO_CURRENT_RECORD, "24000", "The recordset stands behind its last row already.");
  if (target >= 0 && target < count) return to_row(static_cast<std::size_t>(target));
  recordset_.deleted_ = false;
  recordset_.m_bEOF = target >= count || count == 0 ? TRUE : FALSE;
  recordset_.m_bBOF = target < 0 || count == 0 ? TRUE : FALSE;
}

void RecordsetCore::move_forward(long rows, WORD fetch_type) {
  const bool next = fetch_type == CRecordset::fetchNext || (fetch_type == CRecordset::fetchRelative && rows == 1);
  if (!next)
    raise(AFX_SQL_ERROR_RECORDSET_FORWARD_ONLY, "HY106", "A forward-only recordset only moves to the next row.");
  if (recordset_.m_bEOF)
    raise(AFX_SQL_ERROR_NO_CURRENT_RECORD, "24000", "The recordset stands behind its last row already.");
  try {
    if (fetch_forward()) [[likely]] {
      ++record_count_;
      fix_up();
    } else {
      recordset_.m_bEOF = TRUE;
    }
  } catch (CDBException* failure) {
    StatementWatch(*recordset_.m_pDatabase).failed(given(), *failure);
    throw;
  }
}

unsigned RecordsetCore::result_columns() { return row_ == nullptr ? 0 : row_->column_count(); }

ColumnInfo RecordsetCore::describe(unsigned column) {
  if (kept_ != nullptr) return kept_->statement->describe(column);
  if (!recordset_.open_) raise(AFX_SQL_ERROR_ILLEGAL_MODE, "24000", "The recordset is not open.");
  // A snapshot has given its statement back; one of the same shape tells the same.
  const auto text = shape_statement();
  auto& kept = connection().acquire(text, Reading::all);
  try {
    auto info = kept.statement->describe(column);
    connection().give_back(kept);
    return info;
  } catch (...) {
    connection().give_back(kept);
    throw;
  }
}

}  // namespace spcdb
