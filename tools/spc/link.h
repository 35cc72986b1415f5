/// The connection that a run of the command works on.
///
/// Part of the command.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "schema/ddl.h"
#include "spcbase/companion/engine.h"
#include "spcbase/foundation/connection.h"
#include "tools/spc/terminal.h"

namespace spc {

/// Where the database is, as the command line says it.
struct Place {
  std::string dsn;
  std::string connect;
};

/// The connect text of a place: the DSN, the text, or the file of the user's data folder. With `create` an SQLite file
/// is made when it is missing, and so is the user's data folder, but not by a dry run.
/// Fails: Problem when there is no place at all: no text, and no home folder to look in.
std::string connect_text_of(const Place& place, bool create, bool dry_run = false);

/// Whether this is the file of the user's data folder, which is taken when no database is named.
bool is_default_file(const std::string& file);

/// "sqlite:" and a file of any name.
std::string sqlite_connect_text(const std::string& file);

/// Prints every statement, its rows and its time.
class Trace : public spcdb::StatementObserver {
 public:
  explicit Trace(std::ostream& out) : out_(out) {}
  void on_statement(const spcdb::StatementReport& report) noexcept override;

 private:
  void print(const spcdb::StatementReport& report);

  std::ostream& out_;
};

/// An open connection with its engine.
class Link {
 public:
  /// As the terminal wants it: traced, and a dry run that ends with the link.
  Link(std::string connect_text, const Terminal& terminal);
  /// Null: `trace` is null when nobody wants to see statements.
  /// Fails: Problem, in which passwords are masked.
  Link(std::string connect_text, std::ostream* trace);
  ~Link();
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  CDatabaseEx& db() { return db_; }
  const SPCLib::IQsmSPCPtr& engine() const { return engine_; }
  /// The connect text with its passwords masked.
  const std::string& shown_connect_text() const { return shown_; }

  /// Whether this is a dry run on a server that would commit changes of the schema by itself: they are not sent.
  bool only_plans_schema() const;
  /// To be called before such changes are sent.
  /// Fails: NotToBeRun, if they are not to be.
  void before_schema_change(const std::vector<std::string>& statements) const;

  /// The kind of server, by which DDL is chosen; nothing for one without DDL.
  std::optional<schema::Server> server();

 private:
  Link(std::string connect_text, std::ostream* trace, DryRun* dry_run);
  void open(const std::string& connect_text);

  DryRun* dry_run_;
  std::optional<Trace> trace_;
  std::string shown_;
  CDatabaseEx db_;
  SPCLib::IQsmSPCPtr engine_;
};

}  // namespace spc
