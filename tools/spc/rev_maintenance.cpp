#include "tools/spc/rev_maintenance.h"

#include <algorithm>
#include <functional>
#include <initializer_list>

#include "spcbase/foundation/recordset.h"
#include "spcbase/revision/maintenance.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

const std::string cannot_rebuild = "cannot count the versions anew";
const std::string cannot_reset = "cannot reset the revisions";
constexpr const char* add_key =
    "ALTER TABLE CSREVDAT ADD CONSTRAINT FKREVDAT1 FOREIGN KEY(REVID) REFERENCES CSOBJREV(REVID)";

/// What the reset empties, clears and removes, in its order.
constexpr struct {
  const char* table;
  const char* filter;  ///< null: all rows
  const char* what;
} reset_steps[] = {
    {"CSREVDAT", nullptr, "payloads are deleted"},
    {"CSOBJREV", nullptr, "revisions are deleted, with their approvals"},
    {"CSMGSTAT", nullptr, "states of the migration are deleted"},
    {"CSPROF", "AREV IS NOT NULL OR ALEVEL IS NOT NULL", "profiles lose their approval"},
    {"CSMON", "AREV IS NOT NULL OR ALEVEL IS NOT NULL", "monitors lose their approval"},
    {"CSDOC", "AREV IS NOT NULL OR ALEVEL IS NOT NULL", "documents lose their approval"},
    {"CSPSQ", "AREV IS NOT NULL OR ALEVEL IS NOT NULL", "rows lose their approval"},
    {"CSCHRT", "REVISION IS NOT NULL OR AREV IS NOT NULL OR ALEVEL IS NOT NULL",
     "characteristics lose revision and approval"},
    {"CSLABEL", "REVISION IS NOT NULL OR AREV IS NOT NULL OR ALEVEL IS NOT NULL", "labels lose revision and approval"},
    {"CSTS", "REVISION IS NOT NULL OR AREV IS NOT NULL OR ALEVEL IS NOT NULL", "rows lose revision and approval"},
    {"CSDASH", "REVISION IS NOT NULL OR AREV IS NOT NULL OR ALEVEL IS NOT NULL",
     "dashboards lose revision and approval"},
    {"CSCINP", "CHRTREV IS NOT NULL", "links lose the revision of their characteristic"},
    {"CSLINP", "LABELREV IS NOT NULL", "links lose the revision of their label"},
    {"CSATYPE", nullptr, "types of approval are deleted"},
    {"CSINI", "KYWORD = 'qdms.migration.stage'", "settings that mark the migration are deleted"},
};

long count_rows(CDatabase& db, const char* table, const char* filter) {
  RSCount count(&db, table, nullptr);
  requery_rs_for_read(count, filter, true);
  return count.IsEOF() ? 0 : count.result;
}

/// Listens to a connection for as long as it lives, beside whoever listens already.
class StatementWatch : public spcdb::StatementObserver {
 public:
  StatementWatch(CDatabase& db, std::function<void()> on_change)
      : db_(db), other_(db.observer()), on_change_(std::move(on_change)) {
    db_.set_observer(this);
  }
  ~StatementWatch() override { db_.set_observer(other_); }
  StatementWatch(const StatementWatch&) = delete;
  StatementWatch& operator=(const StatementWatch&) = delete;

  void on_statement(const spcdb::StatementReport& report) noexcept override {
    if (other_ != nullptr) other_->on_statement(report);
    try {
      note(report);
    } catch (...) {
      // What cannot be noted is missing in an account, which must not end the work.
      return;
    }
  }

  /// The statements that changed something.
  const std::vector<std::string>& done() const { return done_; }
  /// The last statement, if it failed.
  const std::string& failed() const { return failed_; }

 private:
  void note(const spcdb::StatementReport& report) {
    failed_.clear();
    if (report.failure != nullptr) {
      failed_ = report.statement;
      return;
    }
    bool changes = false;
    for (const std::string_view word : {"UPDATE ", "DELETE ", "TRUNCATE ", "ALTER "})
      changes = changes || report.statement.starts_with(word);
    if (!changes) return;
    done_.emplace_back(report.statement);
    on_change_();
  }

  CDatabase& db_;
  spcdb::StatementObserver* other_;
  std::function<void()> on_change_;
  std::vector<std::string> done_;
  std::string failed_;
};

bool foreign_key_is_away(const std::vector<std::string>& done) {
  bool away = false;
  for (const auto& statement : done)
    if (statement.starts_with("ALTER ")) away = statement.find(" DROP ") != std::string::npos;
  return away;
}

Problem reset_problem(const Failure& failure, const StatementWatch& watch) {
  Problem problem = problem_of(cannot_reset, failure);
  if (!watch.failed().empty()) problem.why += " in " + watch.failed();
  problem.note = watch.done().empty() ? "Nothing was changed." : "These statements stand:";
  for (const auto& statement : watch.done())
    problem.note += "\n       " + statement;
  if (foreign_key_is_away(watch.done()))
    problem.advice += "\n     Then add the foreign key again (" + std::string(add_key) + ") and repeat the reset.";
  else if (!watch.done().empty())
    problem.advice += "\n     Then repeat the reset.";
  return problem;
}

/// What is to be known of a kind of server before its foreign key is dropped.
struct KeyFacts {
  const char* catalogue;  ///< where constraints are listed; null where nobody may ask
  const char* here;       ///< what parts this database's constraints from others'
  const char* drop;       ///< drops a key that there is not
  long no_such_key;       ///< the server's number for that answer, or 0 where it has none of its own
  long no_such_key_as_well = 0;
};

constexpr const char* standard_catalogue = "INFORMATION_SCHEMA.TABLE_CONSTRAINTS";
constexpr const char* drop_no_constraint = "ALTER TABLE CSREVDAT DROP CONSTRAINT SPCNOKEY";

KeyFacts facts_of(schema::Server server) {
  switch (server) {
    case schema::Server::sql_server:
      return {standard_catalogue, "", drop_no_constraint, 3728, 3727};
    case schema::Server::oracle:
      return {"USER_CONSTRAINTS", "", drop_no_constraint, 2443};
    case schema::Server::mysql:
      return {standard_catalogue, " AND TABLE_SCHEMA = DATABASE()", "ALTER TABLE CSREVDAT DROP FOREIGN KEY SPCNOKEY",
              1091};
    default:
      return {nullptr, "", drop_no_constraint, 0};
  }
}

long count_keys(Link& link, const char* catalogue, const char* here) {
  const auto filter = std::string("UPPER(CONSTRAINT_NAME) = 'FKREVDAT1' AND UPPER(TABLE_NAME) = 'CSREVDAT'") + here;
  return count_rows(link.db(), catalogue, filter.c_str());
}

void require_key(Link& link, const KeyFacts& facts) {
  if (facts.catalogue == nullptr) return;
  if (doing(cannot_reset, [&] { return count_keys(link, facts.catalogue, facts.here); }) > 0) return;
  throw Problem{cannot_reset, "the foreign key FKREVDAT1 of CSREVDAT is missing, which the reset drops and adds again",
                "Add it: " + std::string(add_key), exit_failed, "Nothing was changed."};
}

/// Dropping a key that is not there changes nothing, and whoever cannot or may not drop one is told so first.
void require_right(Link& link, const KeyFacts& facts) {
  const auto outcome = guarded([&] { link.db().ExecuteSQL(facts.drop); });
  if (outcome) return;
  const Failure& failure = outcome.failure();
  const auto is_one_of = [&](std::initializer_list<FailureClass> classes) {
    return std::ranges::find(classes, failure.failure_class) != classes.end();
  };
  const bool only_the_key_is_missing =
      facts.no_such_key == 0
          ? !is_one_of({FailureClass::permission, FailureClass::link_lost, FailureClass::lock_timeout,
                        FailureClass::syntax, FailureClass::no_such_object})
          : failure.native == facts.no_such_key || failure.native == facts.no_such_key_as_well;
  if (only_the_key_is_missing) return;
  Problem problem = problem_of(cannot_reset, failure);
  problem.why += " in " + std::string(facts.drop) + ", which tries whether a foreign key can be dropped";
  problem.note = "Nothing was changed.";
  throw problem;
}

/// A statement that drops a foreign key of the payloads.
std::string dropping(const std::string& key, schema::Server server) {
  const std::string kind = server == schema::Server::mysql ? "FOREIGN KEY " : "CONSTRAINT ";
  return "ALTER TABLE CSREVDAT DROP " + kind + key;
}

/// Of what the reset sends, what changes the schema or empties a table in the way of such statements.
std::vector<std::string> committing_statements(Link& link) {
  const auto server = link.server();
  std::vector<std::string> all = {"TRUNCATE TABLE CSREVDAT"};
  if (server) all.push_back(dropping("FKREVDAT1", *server));
  all.emplace_back("TRUNCATE TABLE CSOBJREV");
  if (server) all.emplace_back(add_key);
  all.emplace_back("TRUNCATE TABLE CSMGSTAT");
  return all;
}

/// A server of no known kind keeps its foreign key, which stands in the way where there is one.
void require_no_key(Link& link) {
  const auto keys = guarded([&] { return count_keys(link, standard_catalogue, ""); });
  if (!keys || keys.value() == 0) return;
  throw Problem{cannot_reset,
                "the server is of no known kind, so the reset cannot drop the foreign key FKREVDAT1 of CSREVDAT, "
                "without which CSOBJREV cannot be emptied",
                "Drop the key, repeat the reset, and add the key again: " + std::string(add_key), exit_failed,
                "Nothing was changed."};
}

}  // namespace

std::vector<PlannedChange> plan_rebuild(Link& link) {
  return doing(cannot_rebuild, [&] {
    std::vector<PlannedChange> plan;
    plan.push_back({"CSOBJREV", count_rows(link.db(), "CSOBJREV", nullptr),
                    "revisions get the versions 0.1, 0.2, 0.3 and so on within their object"});
    plan.push_back({"CSOBJREV", count_rows(link.db(), "CSOBJREV", "MAJORVER <> 0"),
                    "of them lose their major version, approved ones too"});
    return plan;
  });
}

std::vector<PlannedChange> plan_reset(Link& link) {
  return doing(cannot_reset, [&] {
    std::vector<PlannedChange> plan;
    for (const auto& step : reset_steps)
      plan.push_back({step.table, count_rows(link.db(), step.table, step.filter), step.what});
    return plan;
  });
}

void rebuild_versions(Link& link, const Terminal& terminal) {
  const long rows = doing(cannot_rebuild, [&] { return count_rows(link.db(), "CSOBJREV", nullptr); });
  Progress progress(terminal, "counting versions", static_cast<std::size_t>(rows));
  const StatementWatch watch(link.db(), [&] { progress.step(); });
  doing(cannot_rebuild, [&] {
    AutoODBCTransaction transaction(link.db(), true);
    rev::rebuild_version(&link.db());
    transaction.commit();
  });
}

void require_reset_possible(Link& link) {
  const auto server = link.server();
  if (!server) return require_no_key(link);
  if (*server == schema::Server::sqlite)
    throw Problem{cannot_reset, "SQLite can neither drop nor add a foreign key, which the reset has to do",
                  "Make a new database (spc db create), and enter there what is to stay.", exit_failed,
                  "Nothing was changed."};
  const KeyFacts facts = facts_of(*server);
  require_key(link, facts);
  // Trying it is one of the statements that a server may commit by itself.
  if (!link.only_plans_schema()) require_right(link, facts);
}

void reset_revisions(Link& link, const Terminal& terminal) {
  if (link.only_plans_schema()) link.before_schema_change(committing_statements(link));
  constexpr std::size_t alterations = 2;
  Progress progress(terminal, "resetting", std::size(reset_steps) + alterations);
  const StatementWatch watch(link.db(), [&] { progress.step(); });
  // No server undoes all of it: once begun it goes on to its end.
  const Undisturbed work(link.db());
  const auto outcome = guarded([&] { rev::reset_migration(link.db()); });
  if (!outcome) throw reset_problem(outcome.failure(), watch);
}

}  // namespace spc
