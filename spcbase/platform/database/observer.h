/// What an onlooker is told of each statement that leaves a connection.
///
/// Part of the database platform layer.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "spcbase/platform/system/export.h"

class CDBException;

namespace spcdb {

/// One statement, after it ended. Views are valid during the call only.
struct StatementReport {
  std::string_view statement;  ///< as it was given, literals in place; parameters of the host stand as "?"
  /// The values of the `?`, written as literals and parted by ", "; those of password columns are masked.
  std::string_view parameters;
  /// Rows fetched by a query, or inserted, changed or deleted; -1 when the driver does not say.
  std::int64_t rows = -1;
  std::chrono::nanoseconds time{};        ///< from the call to the end of the result
  const CDBException* failure = nullptr;  ///< null when it succeeded
};

/// Is told of every statement, of BEGIN, COMMIT and ROLLBACK too, in order. Must not throw.
class SPCBASE_API StatementObserver {
 public:
  virtual ~StatementObserver() = default;
  /// One statement has ended; the report lives until the call returns.
  virtual void on_statement(const StatementReport& report) noexcept = 0;
};

/// Whether a column, quoted or not and in any case, holds passwords: its name holds PASSWORD or is PWD. For
/// the layer's own use: not exported.
bool names_a_password(std::string_view column) noexcept;

/// Replaces the text literals that stand for a password column's value in a statement (compared with, assigned to or
/// inserted into such a column, or behind IDENTIFIED BY) by '***'. Where it is not certain how a server ends a literal
/// that holds a backslash, more rather than less is hidden. An INSERT without a list of columns cannot be judged.
SPCBASE_API std::string mask_password_literals(std::string_view statement);

}  // namespace spcdb
