/// The connection that a run of the command works on.
///
/// Part of the command.
#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "schema/ddl.h"
#include "spcbase/companion/engine.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "tools/spc/problem.h"

namespace spc {

/// Where the database is, as the command line says it.
struct Place {
  std::string dsn;
  std::string connect;
};

/// The connect text of a place: the DSN, the text, or the file of the user's data folder. With `create` an SQLite file
/// is made when it is missing, and so is the user's data folder.
/// Fails: Problem when there is no place at all: no text, and no home folder to look in.
std::string connect_text_of(const Place& place, bool create);

/// "sqlite:" and a file of any name.
std::string sqlite_connect_text(const std::string& file);

/// Watches every statement: prints it when a trace is wanted, and remembers the last one that failed, since the engine
/// tells of a failed statement in words alone.
class Watcher : public spcdb::StatementObserver {
 public:
  explicit Watcher(std::ostream* trace) : trace_(trace) {}
  void on_statement(const spcdb::StatementReport& report) noexcept override;

  /// The failure of the last statement that failed, and forgets it.
  std::optional<Failure> take_failure();

 private:
  void print(const spcdb::StatementReport& report);

  std::ostream* trace_;
  std::optional<Failure> failure_;
};

/// An open connection with its engine.
class Link {
 public:
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

  /// Runs `work` and gives its outcome; a failure that came through the engine is told as the statement's own.
  template <class Work>
  auto attempt(Work&& work) {
    static_cast<void>(watcher_.take_failure());
    auto outcome = guarded(std::forward<Work>(work));
    if (outcome) return outcome;
    return decltype(outcome)(with_cause(outcome.failure()));
  }
  /// As `doing`, by `attempt`.
  template <class Work>
  auto doing(std::string_view what, Work&& work) -> std::remove_cvref_t<std::invoke_result_t<Work>> {
    auto outcome = attempt(std::forward<Work>(work));
    if (!outcome) throw problem_of(what, outcome.failure());
    if constexpr (!std::is_void_v<std::invoke_result_t<Work>>) return std::move(outcome).value();
  }

  /// The kind of server, by which DDL is chosen; nothing for one without DDL.
  std::optional<schema::Server> server();

 private:
  Failure with_cause(const Failure& failure);

  Watcher watcher_;
  std::string shown_;
  CDatabaseEx db_;
  SPCLib::IQsmSPCPtr engine_;
};

}  // namespace spc
