/// What a recordset does: building its statement, reading rows, finding out what changed, writing it.
///
/// Part of the database platform layer; hosts do not see it. CRecordset and the RFX_ functions are thin faces of this.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/platform/database/connection.h"
#include "spcbase/platform/database/long_binary.h"
#include "spcbase/platform/database/recordset.h"
#include "spcbase/platform/database/row_buffer.h"
#include "spcbase/platform/database/watch.h"
#include "spcbase/platform/system/byte_array.h"

namespace spcdb {

/// One data member that is exchanged with a column.
struct Field {
  void* address = nullptr;
  ValueKind kind = ValueKind::integer;
  bool is_null = false;
  bool touched = false;  ///< counts as changed whatever its value
  bool kept = false;     ///< counts as unchanged whatever its value
};

/// A data member's value on its way to the server. A text is not copied.
Parameter value_of_member(ValueKind kind, const void* member);

/// Frees a holder's block.
void release_long(CLongBinary& value) noexcept;
/// Makes an array show a null, and tells whether it still does.
void mark_null(CByteArray& value);
bool is_null_mark(const CByteArray& value);

/// The blocks of long data that are on their way to the server, locked for that time.
class LongParameters {
 public:
  LongParameters() = default;
  ~LongParameters();
  LongParameters(const LongParameters&) = delete;
  LongParameters& operator=(const LongParameters&) = delete;

  Parameter value(const CLongBinary& holder, std::string_view table, std::string_view column);

 private:
  std::vector<HGLOBAL> locked_;
};

class RecordsetCore {
 public:
  explicit RecordsetCore(CRecordset& recordset) : recordset_(recordset) {}
  RecordsetCore(const RecordsetCore&) = delete;
  RecordsetCore& operator=(const RecordsetCore&) = delete;

  bool open(UINT type, const char* sql, DWORD options);
  void close() noexcept;
  void requery();
  void move(long rows, WORD fetch_type);

  bool can_append() const;
  bool can_update() const;
  long record_count() const { return record_count_; }
  const CString& statement() const { return statement_; }

  void add_new();
  void edit();
  bool update();
  void erase();
  void cancel();

  bool is_null(const void* address);
  bool is_dirty(const void* address);
  void set_null(const void* address, bool null);
  void set_dirty(const void* address, bool dirty);

  unsigned result_columns();
  ColumnInfo describe(unsigned column);

  // The side of the RFX_ functions.
  void name_column(CFieldExchange& exchange, std::string_view name, ValueKind kind);
  void bind_column(void* address, ValueKind kind, int width_chars, int size_bytes = 0);
  void bind_bytes(CByteArray& value, int maximum_size);
  bool fetch_long(unsigned position, CLongBinary& value);
  void bind_parameter(std::string_view name, const Parameter& value);
  Row& row() { return *row_; }
  Field& field(unsigned position) { return fields_[position]; }
  bool has_field(unsigned position) const { return position < fields_.size(); }
  static unsigned next(CFieldExchange& exchange) { return exchange.next_field_++; }

 private:
  enum class Mode : unsigned char { reading, adding, editing };
  /// A part of the statement.
  struct Piece {
    std::size_t offset = 0;
    std::size_t size = 0;
  };
  struct Name : Piece {
    bool is_real = false;
  };
  struct PageKey {
    Parameter value;
    std::string text;  ///< of a text
  };
  /// Where a forward read in pages stands.
  struct Page {
    bool planned = false;
    long rows = 0;             ///< fetched of this page; of the whole result when it is read at once
    std::vector<PageKey> key;  ///< of the last row of the page before
    std::vector<std::string> names;
  };

  Connection& connection() const { return *recordset_.m_pDatabase->connection(); }
  bool forward() const { return type_ == CRecordset::forwardOnly; }
  std::string_view piece(const Piece& of) const { return statement_.view().substr(of.offset, of.size); }

  // recordset_open.cpp
  void build_statement(const char* sql);
  void write_select(std::string_view source);
  void append_conditions();
  void append_clauses(std::string_view filter, std::string_view sort);
  void run();
  StatementText shape_statement();
  void append_select(std::string& shape, std::size_t end) const;
  void acquire(const StatementText& text);
  void bind_columns();
  void gather_parameters();
  void read_rows(StatementWatch& watch);
  void exchange(UINT operation);
  void fix_up();
  void show_row_again();
  void set_position(bool has_row);
  void to_row(std::size_t row);
  void move_forward(long rows, WORD fetch_type);
  GivenStatement given() const;
  void release() noexcept;

  // recordset_pages.cpp
  void plan_pages();
  std::string page_condition() const;
  std::string page_order();
  void add_page_parameters();
  void remember_page_end();
  bool fetch_forward();
  void next_page();

  // recordset_long.cpp
  bool fetch_long_by_key(unsigned position, CLongBinary& value);
  void take_row_with_long_data();

  // recordset_edit.cpp
  Field* find(const void* address);
  template <class Act>
  void each(const void* address, Act&& act);
  void begin_edit(Mode mode);
  void end_edit();
  bool changed(unsigned position);
  bool holds_unset(const Field& field) const;
  bool null_now(const Field& field) const { return field.is_null && (mode_ == Mode::reading || holds_unset(field)); }
  Parameter member_value(const Field& field) const;
  void add_value(unsigned position, LongParameters& blocks);
  std::string_view bare_name(unsigned position) const;
  bool write_insert();
  bool write_update();
  std::uint64_t key_columns(bool& unique);
  std::string where_key(bool& unique);
  void require_row() const;
  void require_single_table(bool allowed) const;
  void write_row(const std::string& head, bool counts_key);
  std::int64_t send(std::string_view text, std::span<const Parameter> parameters);
  std::int64_t count_rows(std::string_view where, std::span<const Parameter> parameters);

  CRecordset& recordset_;
  UINT type_ = CRecordset::snapshot;
  Mode mode_ = Mode::reading;

  CString statement_;             ///< in its given form
  std::string source_;            ///< the table, as given
  bool single_table_ = false;     ///< rows can be written
  bool whole_statement_ = false;  ///< the source was a SELECT
  std::size_t select_size_ = 0;   ///< the statement without its conditions
  Page page_;
  Piece filter_;             ///< where the filter stands in the statement
  std::vector<Name> names_;  ///< the select list, where it was written column by column
  std::vector<Field> fields_;
  std::vector<Parameter> host_parameters_;
  std::vector<std::string_view> host_names_;
  std::vector<Parameter> key_values_;
  std::vector<std::string_view> columns_;

  KeptStatement* kept_ = nullptr;  ///< while reading forward, or opening
  RowBuffer rows_;
  Row* row_ = nullptr;
  bool has_long_data_ = false;
  bool fetches_long_ = true;  ///< a row that becomes current brings its long data; one that is shown again does not
  std::size_t position_ = 0;
  long record_count_ = 0;
};

}  // namespace spcdb
