#include <bit>
#include <climits>
#include <cstring>
#include <string>

#include "spcbase/platform/database/recordset_core.h"
#include "spcbase/platform/database/sql_scan.h"

namespace spcdb {

namespace {

/// What a member that is null and was not set holds inside an edit: values that no column can hold.
constexpr long unset_long = LONG_MIN;
constexpr std::uint64_t unset_double = 0x7FF8535043554E53U;
constexpr TIMESTAMP_STRUCT unset_moment{SHRT_MIN, USHRT_MAX, USHRT_MAX, USHRT_MAX, USHRT_MAX, USHRT_MAX, UINT_MAX};

bool same_moment(const TIMESTAMP_STRUCT& a, const TIMESTAMP_STRUCT& b) {
  return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute &&
         a.second == b.second && a.fraction == b.fraction;
}

bool same_value(const Parameter& a, const Parameter& b) {
  if (a.is_null || b.is_null) return a.is_null == b.is_null;
  switch (a.kind) {
    case ValueKind::integer:
      return a.integer == b.integer;
    case ValueKind::real:
      return std::bit_cast<std::uint64_t>(a.real) == std::bit_cast<std::uint64_t>(b.real);
    case ValueKind::text:
    case ValueKind::bytes:
    case ValueKind::long_bytes:
      return a.text == b.text;
    case ValueKind::moment:
      break;
  }
  return same_moment(a.moment, b.moment);
}

/// Clears a member: 0, an empty text, a zero moment.
void clear_member(const Field& field) {
  switch (field.kind) {
    case ValueKind::integer:
      *static_cast<long*>(field.address) = 0;
      break;
    case ValueKind::real:
      *static_cast<double*>(field.address) = 0;
      break;
    case ValueKind::text:
      static_cast<CString*>(field.address)->Empty();
      break;
    case ValueKind::moment:
      *static_cast<TIMESTAMP_STRUCT*>(field.address) = {};
      break;
    case ValueKind::bytes:
      static_cast<CByteArray*>(field.address)->SetSize(0);
      break;
    case ValueKind::long_bytes:
      release_long(*static_cast<CLongBinary*>(field.address));
      break;
  }
}

/// Makes a member show a null outside of an edit.
void show_null(const Field& field) {
  if (field.kind == ValueKind::bytes) return mark_null(*static_cast<CByteArray*>(field.address));
  clear_member(field);
}

/// Puts the value that stands for "not set" into a member.
void unset_member(const Field& field) {
  switch (field.kind) {
    case ValueKind::integer:
      *static_cast<long*>(field.address) = unset_long;
      break;
    case ValueKind::real:
      *static_cast<double*>(field.address) = std::bit_cast<double>(unset_double);
      break;
    case ValueKind::text:
      CStringAssignment::clear(*static_cast<CString*>(field.address));
      break;
    case ValueKind::moment:
      *static_cast<TIMESTAMP_STRUCT*>(field.address) = unset_moment;
      break;
    case ValueKind::bytes:
    case ValueKind::long_bytes:
      show_null(field);
      break;
  }
}

void append_condition(std::string& where, std::string_view column, bool is_null) {
  if (!where.empty()) where += " AND ";
  where += column;
  where += is_null ? " IS NULL" : "=?";
}

}  // namespace

bool RecordsetCore::holds_unset(const Field& field) const {
  switch (field.kind) {
    case ValueKind::integer:
      return *static_cast<const long*>(field.address) == unset_long;
    case ValueKind::real:
      return std::bit_cast<std::uint64_t>(*static_cast<const double*>(field.address)) == unset_double;
    case ValueKind::text:
      return !CStringAssignment::test(*static_cast<const CString*>(field.address));
    case ValueKind::bytes:
      return is_null_mark(*static_cast<const CByteArray*>(field.address));
    case ValueKind::long_bytes:
      return static_cast<const CLongBinary*>(field.address)->m_dwDataLength == 0;
    case ValueKind::moment:
      break;
  }
  return same_moment(*static_cast<const TIMESTAMP_STRUCT*>(field.address), unset_moment);
}

Parameter RecordsetCore::member_value(const Field& field) const {
  return null_now(field) ? Parameter::null_of(field.kind) : value_of_member(field.kind, field.address);
}

bool RecordsetCore::changed(unsigned position) {
  const Field& field = fields_[position];
  if (field.touched) return true;
  if (field.kept) return false;
  if (mode_ == Mode::adding) return !null_now(field);
  if (field.kind == ValueKind::long_bytes) return false;
  return mode_ == Mode::editing && !same_value(member_value(field), rows_.value(position));
}

bool RecordsetCore::can_append() const {
  const auto* database = recordset_.m_pDatabase;
  return database != nullptr && database->CanUpdate() && single_table_ && !forward() &&
         (recordset_.m_dwOptions & CRecordset::readOnly) == 0;
}

bool RecordsetCore::can_update() const {
  return can_append() && (recordset_.m_dwOptions & CRecordset::appendOnly) == 0;
}

void RecordsetCore::require_single_table(bool allowed) const {
  if (!recordset_.open_) raise(AFX_SQL_ERROR_ILLEGAL_MODE, "24000", "The recordset is not open.");
  if (!allowed) raise(AFX_SQL_ERROR_RECORDSET_READONLY, "HY092", "The recordset is read-only.");
}

void RecordsetCore::require_row() const {
  if (recordset_.m_bEOF || recordset_.m_bBOF || recordset_.deleted_)
    raise(AFX_SQL_ERROR_NO_CURRENT_RECORD, "24000", "There is no current row.");
}

void RecordsetCore::begin_edit(Mode mode) {
  mode_ = mode;
  for (auto& field : fields_) {
    field.touched = false;
    field.kept = false;
    if (mode == Mode::adding) field.is_null = true;
    if (field.is_null) unset_member(field);
  }
}

void RecordsetCore::add_new() {
  require_single_table(can_append());
  begin_edit(Mode::adding);
}

void RecordsetCore::edit() {
  require_single_table(can_update());
  require_row();
  if (mode_ != Mode::reading) end_edit();
  begin_edit(Mode::editing);
}

/// The members show the current row again, or nothing where there is none.
void RecordsetCore::end_edit() {
  mode_ = Mode::reading;
  if (!recordset_.m_bEOF && !recordset_.m_bBOF && !recordset_.deleted_) return show_row_again();
  for (auto& field : fields_) {
    field.is_null = true;
    show_null(field);
  }
}

void RecordsetCore::cancel() {
  if (mode_ != Mode::reading) end_edit();
}

bool RecordsetCore::update() {
  if (mode_ == Mode::reading)
    raise(AFX_SQL_ERROR_ILLEGAL_MODE, "HY010", "Update was called without AddNew or Edit before it.");
  try {
    const bool sent = mode_ == Mode::adding ? write_insert() : write_update();
    end_edit();
    return sent;
  } catch (...) {
    end_edit();
    throw;
  }
}

std::string_view RecordsetCore::bare_name(unsigned position) const {
  const auto name = piece(names_[position]);
  std::size_t start = 0;
  for (std::size_t at = 0; at < name.size();) {
    if (name[at] == '[' || name[at] == '"' || name[at] == '`') {
      at = scan::name_end(name, at);
    } else if (name[at++] == '.') {
      start = at;
    }
  }
  return name.substr(start);
}

void RecordsetCore::add_value(unsigned position, LongParameters& blocks) {
  const Field& field = fields_[position];
  auto value = member_value(field);
  if (field.kind == ValueKind::long_bytes && !value.is_null)
    value = blocks.value(*static_cast<const CLongBinary*>(field.address), source_, columns_.back());
  connection().scratch().parameters.push_back(value);
}

bool RecordsetCore::write_insert() {
  LongParameters blocks;
  auto& scratch = connection().scratch();
  auto& text = scratch.text;
  scratch.parameters.clear();
  columns_.clear();
  text.assign("INSERT INTO ").append(source_).append(" (");
  for (unsigned i = 0; i < fields_.size(); ++i) {
    if (!changed(i)) continue;
    if (!columns_.empty()) text += ',';
    columns_.push_back(bare_name(i));
    text += columns_.back();
    add_value(i, blocks);
  }
  if (columns_.empty()) return false;
  text += ") VALUES (";
  for (std::size_t i = 0; i < columns_.size(); ++i)
    text += i == 0 ? "?" : ",?";
  text += ')';
  send(text, scratch.parameters);
  return true;
}

bool RecordsetCore::write_update() {
  LongParameters blocks;
  auto& scratch = connection().scratch();
  scratch.parameters.clear();
  columns_.clear();
  std::string set;
  for (unsigned i = 0; i < fields_.size(); ++i) {
    if (!changed(i)) continue;
    if (!columns_.empty()) set += ',';
    columns_.push_back(bare_name(i));
    set.append(columns_.back()).append("=?");
    add_value(i, blocks);
  }
  if (columns_.empty()) return false;
  const auto values = scratch.parameters.size();
  write_row("UPDATE " + source_ + " SET " + set, true);
  for (unsigned i = 0, value = 0; i < fields_.size() && value < values; ++i) {
    if (!changed(i)) continue;
    rows_.overwrite(i, member_value(fields_[i]));
    ++value;
  }
  return true;
}

void RecordsetCore::erase() {
  require_single_table(can_update());
  require_row();
  if (mode_ != Mode::reading) end_edit();
  connection().scratch().parameters.clear();
  columns_.clear();
  write_row("DELETE FROM " + source_, false);
  recordset_.deleted_ = true;
  for (auto& field : fields_) {
    field.is_null = true;
    show_null(field);
  }
}

std::uint64_t RecordsetCore::key_columns(bool& unique) {
  unique = true;
  if (recordset_.m_keyColumns != 0) return recordset_.m_keyColumns;
  const auto without_quotes = [](std::string_view name) {
    const bool quoted = name.size() >= 2 && !scan::is_word(name.front());
    return quoted ? name.substr(1, name.size() - 2) : name;
  };
  const auto same_name = [](std::string_view a, std::string_view b) {
    return CString(a).CompareNoCase(CString(b).GetString()) == 0;
  };
  std::uint64_t bits = 0;
  const auto& key = connection().key_of(without_quotes(source_));
  std::size_t found = 0;
  for (const auto& column : key.columns) {
    for (unsigned i = 0; i < fields_.size() && i < 64; ++i) {
      if (!same_name(without_quotes(bare_name(i)), column)) continue;
      bits |= std::uint64_t{1} << i;
      ++found;
    }
  }
  if (!key.columns.empty() && found == key.columns.size()) return bits;
  unique = false;
  bits = 0;
  for (unsigned i = 0; i < fields_.size() && i < 64; ++i) {
    if (fields_[i].kind == ValueKind::integer || fields_[i].kind == ValueKind::text) bits |= std::uint64_t{1} << i;
  }
  return bits;
}

std::string RecordsetCore::where_key(bool& unique) {
  const auto key = key_columns(unique);
  std::string where;
  key_values_.clear();
  for (unsigned i = 0; i < fields_.size() && i < 64; ++i) {
    if ((key >> i & 1U) == 0) continue;
    const auto value = rows_.value(i);
    append_condition(where, bare_name(i), value.is_null);
    if (value.is_null) continue;
    key_values_.push_back(value);
    columns_.push_back(bare_name(i));
  }
  if (where.empty())
    raise(AFX_SQL_ERROR_RECORDSET_READONLY, "HY092", "No column of the recordset can tell its rows apart.");
  return where;
}

void RecordsetCore::write_row(const std::string& head, bool is_update) {
  bool unique = true;
  const auto where = where_key(unique);
  auto& parameters = connection().scratch().parameters;
  parameters.insert(parameters.end(), key_values_.begin(), key_values_.end());
  const auto one_row = unique ? OneRow::none : connection().quirks().one_row;
  std::string text;
  const auto by_row_id = [&](const char* id) {
    return head + " WHERE " + id + "=(SELECT " + id + " FROM " + source_ + " WHERE " + where + " LIMIT 1)";
  };
  switch (one_row) {
    case OneRow::none:
      text = head + " WHERE " + where;
      break;
    case OneRow::limit:
      text = head + " WHERE " + where + " LIMIT 1";
      break;
    case OneRow::rowid:
      text = by_row_id("rowid");
      break;
    case OneRow::ctid:
      text = by_row_id("ctid");
      break;
    case OneRow::top:
      text = head;
      text.insert(is_update ? std::strlen("UPDATE") : std::strlen("DELETE"), " TOP (1)");
      text += " WHERE " + where;
      break;
    case OneRow::rownum:
      text = head + " WHERE " + where + " AND ROWNUM<=1";
      break;
  }
  const auto hit = send(text, parameters);
  if (hit > 1)
    raise(AFX_SQL_ERROR_MULTIPLE_ROWS_AFFECTED, "21000",
          std::to_string(hit) + " rows were changed where one was meant: the key of " + source_ + " is not unique.");
  // A server may count changed rows only: the row itself is asked for before it counts as gone.
  if (hit == 0 && (!is_update || count_rows(where, key_values_) == 0))
    raise(AFX_SQL_ERROR_NO_ROWS_AFFECTED, "02000", "The row of " + source_ + " is no longer there.");
}

std::int64_t RecordsetCore::send(std::string_view text, std::span<const Parameter> parameters) {
  return watched(*recordset_.m_pDatabase, {text, parameters, columns_}, [&] {
    auto& kept = connection().acquire({text, text, false}, Reading::all);
    try {
      kept.statement->execute(parameters);
    } catch (...) {
      connection().give_back(kept);
      throw;
    }
    const auto rows = kept.statement->rows_affected();
    connection().give_back(kept);
    return rows;
  });
}

std::int64_t RecordsetCore::count_rows(std::string_view where, std::span<const Parameter> parameters) {
  std::string text = "SELECT COUNT(*) FROM " + source_ + " WHERE " + std::string(where);
  // The row as it stands now, not as the transaction saw it at first: the statement before went by that too.
  if (connection().quirks().counts_changed_rows_only) text += " LOCK IN SHARE MODE";
  return watched(*recordset_.m_pDatabase, {text, parameters, {}}, [&] {
    auto& kept = connection().acquire({text, text, false}, Reading::all);
    std::int64_t count = 0;
    try {
      const ColumnBinding whole_number;
      kept.bound.clear();
      kept.statement->bind_columns({&whole_number, 1});
      kept.statement->execute(parameters);
      if (kept.statement->fetch()) kept.statement->integer(0, count);
    } catch (...) {
      connection().give_back(kept);
      throw;
    }
    connection().give_back(kept);
    return count;
  });
}

Field* RecordsetCore::find(const void* address) {
  for (auto& field : fields_) {
    if (field.address == address) return &field;
  }
  raise(AFX_SQL_ERROR_ILLEGAL_MODE, "HY000", "The address given is not a field of the recordset.");
}

template <class Act>
void RecordsetCore::each(const void* address, Act&& act) {
  if (address != nullptr) return act(*find(address));
  for (auto& field : fields_)
    act(field);
}

bool RecordsetCore::is_null(const void* address) {
  bool any = false;
  each(address, [&](const Field& field) { any = any || null_now(field); });
  return any;
}

bool RecordsetCore::is_dirty(const void* address) {
  bool any = false;
  each(address, [&](const Field& field) {
    any = any || (mode_ != Mode::reading && changed(static_cast<unsigned>(&field - fields_.data())));
  });
  return any;
}

void RecordsetCore::set_null(const void* address, bool null) {
  each(address, [&](Field& field) {
    const bool editing = mode_ != Mode::reading;
    if (null) {
      field.is_null = true;
      editing ? unset_member(field) : show_null(field);
    } else {
      if (editing && holds_unset(field)) clear_member(field);
      field.is_null = false;
    }
    if (editing && field.kind != ValueKind::long_bytes) {
      field.touched = true;
      field.kept = false;
    }
  });
}

void RecordsetCore::set_dirty(const void* address, bool dirty) {
  each(address, [&](Field& field) {
    field.touched = dirty;
    field.kept = !dirty;
  });
}

}  // namespace spcdb
