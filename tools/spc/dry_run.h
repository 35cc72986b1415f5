/// A dry run: the work of a command in a transaction that is rolled back, whatever happens.
///
/// Part of the command. The Link of a dry run hands its connection to `begin` as soon as it is open, and to `end`
/// before it is closed. In between every AutoODBCTransaction is passive, so nothing else can commit. What a server
/// would commit by itself is not sent: who is about to send it calls Link::before_schema_change first.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "schema/ddl.h"
#include "spcbase/foundation/connection.h"
#include "tools/spc/problem.h"
#include "tools/spc/touched_rows.h"

namespace spc {

/// Thrown where nothing could be taken back, so that the command must not go on. No kind of failure of the library's,
/// so it passes through `doing` as a Problem does.
struct NotToBeRun {};

/// The SQLite file that opening this connect text would make; nothing when there is one, or none can be made.
std::optional<std::string> file_to_be_made(const std::string& connect_text);

/// The connect text for a dry run: a database in memory in the place of an SQLite file that would be made.
std::string connect_text_for_dry_run(const std::string& connect_text);

class DryRun : public spcdb::StatementObserver {
 public:
  DryRun() = default;
  DryRun(const DryRun&) = delete;
  DryRun& operator=(const DryRun&) = delete;

  /// Begins the transaction, and listens to the connection before whoever listens already.
  /// Null: `server` is nothing for a server of no known kind.
  /// Fails: NotToBeRun when the connection has no transactions or a table that knows none; CDBException*.
  void begin(CDatabaseEx& db, std::optional<schema::Server> server);
  /// Rolls back. Harmless when nothing was begun.
  void end(CDatabaseEx& db) noexcept;

  /// Whether the server takes back changes of the schema too; else it would commit them by itself.
  bool takes_back_schema() const { return takes_back_schema_; }
  /// Ends the run before statements that the server would commit by itself.
  /// Fails: NotToBeRun, always.
  [[noreturn]] void plan(const std::vector<std::string>& statements);

  void on_statement(const spcdb::StatementReport& report) noexcept override;

  /// Whether there was a database to work on.
  bool begun() const { return begun_; }
  bool rolled_back() const { return rolled_back_; }
  const RowCounter& rows() const { return rows_; }
  /// Why something was only planned; empty when everything was tried.
  const std::string& why_planned() const { return why_planned_; }
  const std::vector<std::string>& planned() const { return planned_; }
  /// What makes it doubtful that the counts are right, or that nothing was changed.
  const std::optional<Problem>& doubt() const { return doubt_; }

 private:
  void refuse_tables_without_transactions(CDatabaseEx& db);
  [[noreturn]] void refuse(std::string why);
  void note(const spcdb::StatementReport& report);
  void doubt(std::string why, std::string advice);

  bool begun_ = false;
  bool takes_back_schema_ = false;
  bool rolled_back_ = false;
  std::optional<AutoODBCTransaction> transaction_;
  spcdb::StatementObserver* other_ = nullptr;
  RowCounter rows_;
  std::string why_planned_;
  std::vector<std::string> planned_;
  std::optional<Problem> doubt_;
};

}  // namespace spc
