/// A connection in plain ODBC, for what tests do beside the code under test: create databases, look at what really
/// stands in a table, hand out a raw handle.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace test_support {

/// What the driver says of the last call on a handle: "HY000 4711 [vendor] text". The kind is ODBC's SQL_HANDLE_...
std::string odbc_diagnostic(short kind, void* handle);

/// One connection; it closes when the object goes.
class RawOdbc {
 public:
  /// The values of a row as texts; nothing for a null.
  using Row = std::vector<std::optional<std::string>>;

  /// Connects.
  /// Fails: std::runtime_error with the driver's text, and the package to install when a driver of the kit is missing;
  ///        so do all operations, with the driver's text.
  explicit RawOdbc(const std::string& connect_text);
  ~RawOdbc();
  RawOdbc(const RawOdbc&) = delete;
  RawOdbc& operator=(const RawOdbc&) = delete;

  /// The connection handle, an `SQLHDBC`. It stays this object's.
  void* handle() const { return connection_; }

  /// Runs one statement that gives no rows.
  void execute(const std::string& statement);

  /// Runs one statement and gives its rows as texts, null apart from empty.
  std::vector<Row> rows(const std::string& statement);

  /// The first column of the first row; empty text when there is none or it is null.
  std::string value(const std::string& statement);

 private:
  void* environment_ = nullptr;
  void* connection_ = nullptr;
};

}  // namespace test_support
