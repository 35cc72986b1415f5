/// The statement of ODBC, for its own sources.
///
/// Part of the database platform layer.
#pragma once

#include "spcbase/platform/database/odbc_connection.h"

namespace spcdb {

/// The value of one `?`, in a place that the driver knows. Bound once; anew only when the kind changes or a text
/// outgrows its place; for bytes each time.
struct OdbcParameter {
  ValueKind kind = ValueKind::integer;
  bool bound = false;
  SQLLEN indicator = 0;
  std::int64_t integer = 0;
  double real = 0;
  SQL_TIMESTAMP_STRUCT moment{};
  std::vector<char> text;
};

/// The values of one result column for a block of rows.
struct OdbcColumn {
  ValueKind wanted = ValueKind::integer;
  ValueKind held = ValueKind::integer;  ///< what the driver is asked for: its conversions are not to be trusted
  int width_chars = 0;
  int size_bytes = 0;
  std::size_t stride = 0;  ///< bytes of one value
  std::unique_ptr<std::byte[]> bytes;
  std::unique_ptr<SQLLEN[]> indicators;
  std::string number_text;  ///< a number that is read as text

  template <class Value>
  const Value& value(std::size_t row) const {
    return *reinterpret_cast<const Value*>(bytes.get() + row * stride);
  }
};

/// A prepared statement. Its rows come in blocks into arrays that stay bound between executions.
class OdbcStatement final : public Statement {
 public:
  OdbcStatement(OdbcSession& session, std::string_view sql);
  ~OdbcStatement() override;
  OdbcStatement(const OdbcStatement&) = delete;
  OdbcStatement& operator=(const OdbcStatement&) = delete;

  unsigned column_count() const override { return columns_in_result_; }
  bool integer(unsigned column, std::int64_t& value) override;
  bool real(unsigned column, double& value) override;
  bool text(unsigned column, std::string_view& value) override;
  bool moment(unsigned column, TIMESTAMP_STRUCT& value) override;
  bool bytes(unsigned column, std::string_view& value) override;
  bool long_length(unsigned column, std::int64_t& length) override;
  std::size_t read_long(unsigned column, std::span<std::byte> piece) override;

  void bind_columns(std::span<const ColumnBinding> columns) override;
  void execute(std::span<const Parameter> parameters) override;
  std::int64_t rows_affected() const override { return rows_affected_; }
  bool fetch() override;
  void close() noexcept override;
  ColumnInfo describe(unsigned column) override;

 private:
  template <class Call>
  SQLRETURN checked(const char* function, Call&& call) {
    return session_.checked(function, SQL_HANDLE_STMT, handle_, std::forward<Call>(call));
  }

  void prepare(std::string_view sql);
  void give(SQLUSMALLINT position, OdbcParameter& place, const Parameter& value);
  static void give_text(OdbcParameter& place, std::string_view text);
  void bind_parameter(SQLUSMALLINT position, OdbcParameter& place);
  void give_bytes(SQLUSMALLINT position, OdbcParameter& place, const Parameter& value);
  SQLRETURN send_pieces();
  bool changes_form(std::span<const Parameter> parameters) const;
  void prepare_anew();
  OdbcColumn& long_column(unsigned column);
  SQLRETURN get_data(unsigned column, std::span<std::byte> piece, SQLLEN& left);
  void apply_timeout();
  ColumnInfo ask_column(unsigned column);
  ValueKind kind_of_column(unsigned column);
  void bind_as_described();
  void bind_arrays();
  bool fetch_block();
  void check_rows();
  /// The place of a value of the current row, and its length; null when the value is null.
  OdbcColumn* find(unsigned column, SQLLEN& length);
  [[noreturn]] void refuse_column(unsigned column) const;
  std::string_view held_text(unsigned column, OdbcColumn& place, SQLLEN length);
  const std::string& name_of(unsigned column) const { return infos_[column].name; }

  OdbcSession& session_;
  SQLHSTMT handle_ = SQL_NULL_HSTMT;
  unsigned columns_in_result_ = 0;
  std::vector<ColumnInfo> infos_;
  std::vector<ValueKind> kinds_;  ///< in which the driver gives each column without loss
  std::vector<OdbcParameter> parameters_;
  std::vector<OdbcColumn> columns_;
  std::vector<SQLUSMALLINT> row_status_;
  SQLULEN rows_per_block_ = 1;
  SQLULEN rows_in_block_ = 0;
  SQLULEN row_ = 0;
  std::int64_t rows_affected_ = -1;
  unsigned applied_timeout_s_ = 0;
  std::string sql_;  ///< of a statement that takes values
  bool pieces_left_ = false;
  bool cursor_open_ = false;
  bool has_row_ = false;
};

}  // namespace spcdb
