/// The narrow interface between the recordset layer and whatever speaks to a server.
///
/// Part of the database platform layer. Three sessions stand under it: ODBC, SQLite directly, and the scripted one of
/// the tests, which wraps either. Nothing above this line knows a driver; nothing below it knows a recordset.
///
/// Failures: every function that is not noexcept throws `CDBException*` with the diagnostics of the call that failed.
/// Threads: a session, its statements and their rows belong to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/platform/database/call_gate.h"
#include "spcbase/platform/database/quirks.h"
#include "spcbase/platform/datetime/timestamp.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

namespace spcdb {

/// How a value travels between a recordset and a server.
enum class ValueKind : unsigned char {
  integer,
  real,
  text,
  moment,
  bytes,       ///< through a buffer of a size that is told beforehand
  long_bytes,  ///< in pieces: nobody but the recordset's holder ever has the whole of it in memory where that can be
};

/// Long data travel in pieces of this size.
inline constexpr std::size_t long_piece_bytes = 64UL * 1024;

/// One value on its way to a `?` of a statement. Text and bytes are not owned: they must live until the statement was
/// executed.
struct Parameter {
  ValueKind kind = ValueKind::integer;  ///< which of the members below has the value
  bool is_null = false;                 ///< then the kind alone counts
  std::int64_t integer = 0;             ///< of `integer`
  double real = 0;                      ///< of `real`
  std::string_view text;                ///< UTF-8, or the bytes of either kind
  TIMESTAMP_STRUCT moment{};            ///< fraction in nanoseconds; milliseconds are kept
  std::string_view table;  ///< of long bytes: the table and column that they go to, quoted or not; empty when unknown
  std::string_view column;

  /// One of each kind. Without a value:
  static Parameter null_of(ValueKind kind) {
    Parameter p;
    p.kind = kind;
    p.is_null = true;
    return p;
  }
  /// A whole number.
  static Parameter of_integer(std::int64_t value) {
    Parameter p;
    p.integer = value;
    return p;
  }
  /// A number.
  static Parameter of_real(double value) {
    Parameter p;
    p.kind = ValueKind::real;
    p.real = value;
    return p;
  }
  /// A text in UTF-8.
  static Parameter of_text(std::string_view value) {
    Parameter p;
    p.kind = ValueKind::text;
    p.text = value;
    return p;
  }
  /// Bytes that are bound at once.
  static Parameter of_bytes(std::string_view value) {
    Parameter p;
    p.kind = ValueKind::bytes;
    p.text = value;
    return p;
  }
  /// Bytes that travel in pieces, and where they go to.
  static Parameter of_long_bytes(std::string_view value, std::string_view table = {}, std::string_view column = {}) {
    Parameter p;
    p.kind = ValueKind::long_bytes;
    p.text = value;
    p.table = table;
    p.column = column;
    return p;
  }
  /// A moment.
  static Parameter of_moment(const TIMESTAMP_STRUCT& value) {
    Parameter p;
    p.kind = ValueKind::moment;
    p.moment = value;
    return p;
  }
};

/// What a recordset expects of one result column. Equal lists mean that a kept statement need not be bound anew.
struct ColumnBinding {
  ValueKind kind = ValueKind::integer;  ///< how its values are read
  int width_chars = 0;  ///< for texts: a longer value is a truncation failure (return code 1021), never cut
  int size_bytes = 0;   ///< of bytes: the buffer; a longer value is a truncation failure (1021) that tells its length

  friend bool operator==(const ColumnBinding&, const ColumnBinding&) = default;
};

/// What the server says about one result column.
struct ColumnInfo {
  std::string name;    ///< as the server spells it; UTF-8
  short sql_type = 0;  ///< ODBC's numbers, e.g. 12 for SQL_VARCHAR
  unsigned long precision = 0;
  short scale = 0;
  short nullability = 2;  ///< 0 no nulls, 1 nullable, 2 unknown
};

/// The values of the current row, by position from 0. Each getter returns false for a null and leaves its target alone.
class Row {
 public:
  virtual ~Row() = default;
  /// The number of result columns.
  virtual unsigned column_count() const = 0;
  /// A number that is not whole, or text that is no number, fails (22018); beyond 64 bits fails (22003).
  virtual bool integer(unsigned column, std::int64_t& value) = 0;
  virtual bool real(unsigned column, double& value) = 0;
  /// UTF-8, valid until the next row is fetched or the statement is closed.
  virtual bool text(unsigned column, std::string_view& value) = 0;
  /// Accepts a date without a time. Text that is no moment fails (22007).
  virtual bool moment(unsigned column, TIMESTAMP_STRUCT& value) = 0;
  /// Of a column bound as bytes; valid as a text is.
  virtual bool bytes(unsigned column, std::string_view& value) = 0;
};

/// A prepared statement. At most one result is open at a time; executing again closes it first.
class Statement : public Row {
 public:
  /// Tells which columns the rows are read as. Before `execute`; kept until told otherwise.
  virtual void bind_columns(std::span<const ColumnBinding> columns) = 0;
  /// Binds the values to the `?` in order and runs the statement. Their number must fit.
  virtual void execute(std::span<const Parameter> parameters) = 0;
  /// Rows inserted, changed or deleted by the last `execute`; -1 when the driver does not say.
  virtual std::int64_t rows_affected() const = 0;
  /// Steps to the next row; false at the end, again and again.
  virtual bool fetch() = 0;
  /// The length of the current row's value in a column bound as long bytes, -1 when the driver does not know it; false
  /// for a null. Reading begins with its first byte. One column at a time.
  virtual bool long_length(unsigned column, std::int64_t& length) = 0;
  /// Fills `piece` with the bytes that come next; fewer than it takes are the last ones. Behind `long_length`.
  virtual std::size_t read_long(unsigned column, std::span<std::byte> piece) = 0;
  /// Ends the result and frees what it holds on the server; the statement stays prepared.
  virtual void close() noexcept = 0;
  /// Describes a result column. After prepare on every session.
  virtual ColumnInfo describe(unsigned column) = 0;
};

/// How a statement will be read.
enum class Reading : unsigned char {
  all,      ///< the rows are taken at once; the driver may buffer
  forward,  ///< one pass over what may be many rows: constant memory where the driver can
};

/// What is wanted of the table behind an `Edit` when a recordset's class names no key.
struct TableKey {
  std::vector<std::string> columns;  ///< the primary key, else a unique index without nulls, in any order; empty: none
};

/// One connection.
class Session {
 public:
  virtual ~Session() = default;

  /// The named facts about this connection, found once after connecting.
  virtual const Quirks& quirks() const = 0;
  /// The door of this session.
  virtual CallGate& gate() = 0;
  /// The raw handle: the ODBC connection or the sqlite3*.
  virtual void* native_handle() const = 0;

  /// Prepares a statement: it may be executed again and again, as long as the session is open.
  virtual std::unique_ptr<Statement> prepare(std::string_view sql, Reading reading) = 0;
  /// Runs a text as it is, without parameters, and drops a result if there is one. Rows affected, -1 when unknown.
  /// Exactly one statement: a second one in the text is refused.
  virtual std::int64_t run(std::string_view sql) = 0;

  /// Whether the driver reports transactions (SQL_TXN_CAPABLE not 0).
  virtual bool transactions_supported() const = 0;
  virtual void begin() = 0;
  virtual void commit() = 0;
  virtual void rollback() = 0;
  /// Whether a transaction is open as far as the driver or server can tell.
  virtual bool in_transaction() const = 0;

  /// SQLGetInfo of a 4-byte value: the driver's return code (0 and 1 are success). Never throws for a refusal.
  virtual short information(unsigned short type, std::uint32_t& value) = 0;
  /// The same of a text, empty when it is refused.
  virtual short information_text(unsigned short type, std::string& text) = 0;
  /// Asks the driver whether the link is known to be dead. A driver that does not know says false.
  virtual bool link_is_dead() = 0;
  /// Name and version of server and driver, for people: "MariaDB 10.11.19 through libmaodbc.so 03.01.0015".
  virtual std::string describe_server() = 0;

  /// Seconds after which a statement fails; 0 is no limit. Never an error, even where the driver has no such thing.
  virtual void set_query_timeout(unsigned seconds) = 0;

  /// Asks the catalogue for a table's key; the name without quotes.
  virtual TableKey find_key(std::string_view table) = 0;

  /// Rolls back what is open and ends the connection, unless the handle was handed in by the host. Statements of the
  /// session must be gone.
  virtual void close() noexcept = 0;
};

/// Opens a session by a connect text, as `CDatabase::OpenEx` takes it. No failure repeats its password.
SPCBASE_API std::unique_ptr<Session> open_session(std::string_view connect, bool read_only);

}  // namespace spcdb
