#include "tools/spc/rev_maintenance.h"

#include <functional>

#include "spcbase/foundation/recordset.h"
#include "spcbase/revision/maintenance.h"
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

/// A question that counts the foreign key of the payloads; empty where the server has no catalogue to ask.
std::string key_question(schema::Server server) {
  std::string named = "CONSTRAINT_NAME = 'FKREVDAT1' AND TABLE_NAME = 'CSREVDAT'";
  switch (server) {
    case schema::Server::mysql:
      return named + " AND TABLE_SCHEMA = DATABASE()";
    case schema::Server::sql_server:
    case schema::Server::oracle:
      return named;
    default:
      return {};
  }
}

void require_key(Link& link, schema::Server server) {
  const std::string question = key_question(server);
  if (question.empty()) return;
  const char* catalogue =
      server == schema::Server::oracle ? "USER_CONSTRAINTS" : "INFORMATION_SCHEMA.TABLE_CONSTRAINTS";
  if (doing(cannot_reset, [&] { return count_rows(link.db(), catalogue, question.c_str()); }) > 0) return;
  throw Problem{cannot_reset, "the foreign key FKREVDAT1 of CSREVDAT is missing, which the reset drops and adds again",
                "Add it: " + std::string(add_key), exit_failed, "Nothing was changed."};
}

/// Dropping a key that is not there changes nothing, and whoever may not drop one is told so first.
void require_right(Link& link, schema::Server server) {
  const std::string kind = server == schema::Server::mysql ? "FOREIGN KEY" : "CONSTRAINT";
  const std::string statement = "ALTER TABLE CSREVDAT DROP " + kind + " SPCNOKEY";
  const auto outcome = guarded([&] { link.db().ExecuteSQL(statement.c_str()); });
  if (outcome) return;
  const FailureClass why = outcome.failure().failure_class;
  const bool hopeless =
      why == FailureClass::permission || why == FailureClass::link_lost || why == FailureClass::lock_timeout;
  if (!hopeless) return;
  Problem problem = problem_of(cannot_reset, outcome.failure());
  problem.note = "Nothing was changed.";
  throw problem;
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
  // A server of no known kind keeps the foreign key as it is, and deletes in an order that suits it.
  if (!server) return;
  if (*server == schema::Server::sqlite)
    throw Problem{cannot_reset, "SQLite can neither drop nor add a foreign key, which the reset has to do",
                  "Make a new database (spc db create), and enter there what is to stay.", exit_failed,
                  "Nothing was changed."};
  require_key(link, *server);
  require_right(link, *server);
}

void reset_revisions(Link& link, const Terminal& terminal) {
  constexpr std::size_t alterations = 2;
  Progress progress(terminal, "resetting", std::size(reset_steps) + alterations);
  const StatementWatch watch(link.db(), [&] { progress.step(); });
  const auto outcome = guarded([&] { rev::reset_migration(link.db()); });
  if (!outcome) throw reset_problem(outcome.failure(), watch);
}

}  // namespace spc
