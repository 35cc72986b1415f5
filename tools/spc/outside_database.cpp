#include "tools/spc/outside_database.h"

#include <chrono>
#include <utility>

#include "spcbase/companion/adonet_support.h"
#include "spcbase/companion/oledb_connection.h"
#include "tools/spc/connection_text.h"
#include "tools/spc/opening.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

using Clock = std::chrono::steady_clock;

double milliseconds_since(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

void learn(OLEDBInfo& definition, CDatabase& outside) {
  OLEDBConnection connection(outside);
  definition.update_internal_data(connection);
}

void learn(ADONETDBInfo& definition, CDatabase& outside) {
  auto connection = ADONETSupport::connection_on(outside);
  definition.update_internal_data(connection);
}

/// A database that is closed, observed no more, before what observes it goes.
class Outside {
 public:
  explicit Outside(const Terminal& terminal) : trace_(terminal.err) {
    if (terminal.trace) database_.set_observer(&trace_);
  }
  ~Outside() {
    database_.set_observer(nullptr);
    static_cast<void>(guarded([&] { database_.Close(); }));
  }
  Outside(const Outside&) = delete;
  Outside& operator=(const Outside&) = delete;

  CDatabase& database() { return database_; }

 private:
  Trace trace_;
  CDatabase database_;
};

/// Whether a text names neither a driver nor a data source of ODBC.
bool for_providers(const std::string& connection) {
  return connection.find('=') != std::string::npos && spelling_of(connection) == Spelling::quotes &&
         !names_sqlite_file(connection);
}

Problem outside_problem(const std::string& what, const Failure& failure, const std::string& connection) {
  Problem problem = problem_of(what, failure);
  problem.note = "The connection string is " + shown_connection(connection);
  if (failure.kind != FailureKind::database) return problem;
  problem.advice =
      for_providers(connection)
          ? "It is one for programs that use OLE DB or ADO.NET. Here a data source is opened over ODBC alone, by "
            "Driver={...}, DSN=... or sqlite:FILE."
          : advice_for_opening(connection, failure);
  return problem;
}

}  // namespace

OutsideDatabase learn_from_outside(Definition& definition, const Terminal& terminal, const std::string& what) {
  const CString connection = base_of(definition).connection_string;
  if (connection.IsEmpty())
    throw Problem{what, "it has no connection string", "spc source edit gives it one with --connection-string."};
  Outside outside(terminal);
  OutsideDatabase found;
  const auto outcome = guarded([&] {
    auto begin = Clock::now();
    outside.database().OpenEx(connection.GetString(), CDatabase::openReadOnly);
    found.connecting_ms = milliseconds_since(begin);
    begin = Clock::now();
    std::visit([&](auto& held) { learn(held, outside.database()); }, definition);
    found.server = text_of(outside.database().describe_server());
    found.asking_ms = milliseconds_since(begin);
  });
  if (!outcome) throw outside_problem(what, outcome.failure(), text_of(connection));
  return found;
}

}  // namespace spc
