// Plan
//   rev reset on the servers that a script plays: SQL Server, Oracle, Access, MySQL and one of no known kind
//     it looks, for the foreign key and for whether one can be dropped, and only then begins: the exact statements
//     the key is missing; the login may not; the server cannot: refused, and nothing was sent that changes anything
//     a statement in the middle that fails: named, with those that stand
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/testkit/scripted_session.h"
#include "tools/spc/problem.h"
#include "tools/spc/rev_maintenance.h"

namespace {

using test_support::error;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

constexpr const char* add_key =
    "ALTER TABLE CSREVDAT ADD CONSTRAINT FKREVDAT1 FOREIGN KEY(REVID) REFERENCES CSOBJREV(REVID)";
constexpr const char* try_constraint = "ALTER TABLE CSREVDAT DROP CONSTRAINT SPCNOKEY";

struct Kind {
  const char* name;
  const char* probe;
  const char* catalogue;          ///< null: none is asked
  const char* try_drop;           ///< null: none is tried
  spcdb::Diagnostic no_such_key;  ///< what it says to that
  const char* drop_key;           ///< null: the key is left
};

std::ostream& operator<<(std::ostream& out, const Kind& kind) { return out << kind.name; }

std::vector<Kind> kinds() {
  return {
      {"SqlServer", "select getdate()", "INFORMATION_SCHEMA", try_constraint,
       error("42000", 3728, "'SPCNOKEY' is not a constraint."), "ALTER TABLE CSREVDAT DROP CONSTRAINT FKREVDAT1"},
      {"Oracle", "select sysdate from dual", "USER_CONSTRAINTS", try_constraint,
       error("HY000", 2443, "ORA-02443: Cannot drop constraint - nonexistent constraint"),
       "ALTER TABLE CSREVDAT DROP CONSTRAINT FKREVDAT1"},
      {"Access", "select date()", nullptr, try_constraint,
       error("HY000", -1, "CHECK constraint 'SPCNOKEY' does not exist."),
       "ALTER TABLE CSREVDAT DROP CONSTRAINT FKREVDAT1"},
      {"MySql", "select curdate()", "INFORMATION_SCHEMA", "ALTER TABLE CSREVDAT DROP FOREIGN KEY SPCNOKEY",
       error("42000", 1091, "Can't DROP FOREIGN KEY `SPCNOKEY`; check that it exists"),
       "ALTER TABLE CSREVDAT DROP FOREIGN KEY FKREVDAT1"},
  };
}

class ResetElsewhere : public testing::TestWithParam<Kind> {
 protected:
  spc::Link& link() {
    for (const char* probe : {"select getdate()", "select sysdate from dual", "select date()", "select curdate()"}) {
      if (std::string_view(probe) == GetParam().probe)
        script_->on(probe).answer({"now"}, {{"2024-01-01"}});
      else
        script_->on(probe).refuse(error("42000", 1, "no such function"));
    }
    if (GetParam().try_drop != nullptr) script_->on(GetParam().try_drop).refuse(GetParam().no_such_key);
    script_->on_regex("SELECT COUNT.*CONSTRAINTS.*").answer({"RESULT"}, {{1}});
    script_->on_regex("(TRUNCATE|DELETE|ALTER|UPDATE) .*").affect(0);
    link_.db().adopt_session(std::make_unique<test_support::ScriptedSession>(script_));
    return link_;
  }
  spc::Problem problem_of(const std::function<void()>& work) {
    try {
      work();
    } catch (const spc::Problem& problem) {
      return problem;
    }
    ADD_FAILURE() << "nothing was refused";
    return {};
  }
  void reset() {
    std::ostringstream sink;
    spc::Link& all = link();
    spc::require_reset_possible(all);
    spc::reset_revisions(all, {sink, sink});
  }
  /// Whatever could change something, in order.
  Texts changes() const {
    Texts all;
    for (const std::string& statement : script_->statements())
      if (!statement.starts_with("select ") && !statement.starts_with("SELECT ")) all.push_back(statement);
    return all;
  }

  std::shared_ptr<test_support::Script> script_ = std::make_shared<test_support::Script>();

 private:
  test_support::ScratchFolder folder_;
  spc::Link link_{"sqlite:" + folder_.file("unused.db") + ";Create=1", nullptr};
};

std::string kind_name(const testing::TestParamInfo<Kind>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Servers, ResetElsewhere, testing::ValuesIn(kinds()), kind_name);

TEST_P(ResetElsewhere, looks_first_and_then_sends_the_statements_of_its_dialect) {
  reset();
  const Texts all = changes();
  ASSERT_EQ(all.size(), 18U);
  EXPECT_EQ(Texts(all.begin(), all.begin() + 6),
            (Texts{GetParam().try_drop, "TRUNCATE TABLE CSREVDAT", GetParam().drop_key, "TRUNCATE TABLE CSOBJREV",
                   add_key, "TRUNCATE TABLE CSMGSTAT"}));
  int questions = 0;
  for (const std::string& statement : script_->statements())
    questions += GetParam().catalogue != nullptr && statement.find(GetParam().catalogue) != std::string::npos;
  EXPECT_EQ(questions, GetParam().catalogue == nullptr ? 0 : 1);
}

TEST_P(ResetElsewhere, is_refused_before_anything_is_sent_when_the_key_is_missing) {
  script_->on_regex("SELECT COUNT.*CONSTRAINTS.*").answer({"RESULT"}, {{0}});
  // Where nobody may ask for keys, the server's answer to a key that is not there is all that is known.
  if (GetParam().catalogue == nullptr) {
    reset();
    EXPECT_EQ(changes().size(), 18U);
    return;
  }
  const spc::Problem problem = problem_of([&] { reset(); });
  EXPECT_EQ(problem.why, "the foreign key FKREVDAT1 of CSREVDAT is missing, which the reset drops and adds again");
  EXPECT_EQ(problem.note, "Nothing was changed.");
  EXPECT_EQ(problem.advice, "Add it: " + std::string(add_key));
  EXPECT_EQ(changes(), Texts{});
}

TEST_P(ResetElsewhere, is_refused_to_a_login_that_may_not_and_on_a_server_that_cannot) {
  for (const auto& [why, words] :
       {std::pair(error("42501", 1031, "insufficient privileges"), "insufficient privileges (permission, "),
        std::pair(error("42S02", 4902, "Cannot find the object or you do not have permissions."), "Cannot find the"),
        std::pair(error("42000", 170, "Syntax error in ALTER TABLE statement."), "Syntax error"),
        std::pair(error("08S01", 17, "gone"), "gone (link lost, ")}) {
    script_->on(GetParam().try_drop).once().refuse(why);
    const spc::Problem problem = problem_of([&] { reset(); });
    EXPECT_EQ(problem.what, "cannot reset the revisions");
    EXPECT_THAT(problem.why, HasSubstr(words));
    EXPECT_THAT(problem.why, HasSubstr(" in " + std::string(GetParam().try_drop)));
    EXPECT_EQ(problem.note, "Nothing was changed.");
    EXPECT_EQ(changes(), Texts{GetParam().try_drop});
    script_ = std::make_shared<test_support::Script>();
  }
}

TEST_P(ResetElsewhere, names_the_statement_that_failed_and_says_when_the_key_is_away) {
  script_->on("TRUNCATE TABLE CSOBJREV").refuse(error("HY000", 4711, "not now"));
  const spc::Problem problem = problem_of([&] { reset(); });
  EXPECT_THAT(problem.why, testing::EndsWith(" in TRUNCATE TABLE CSOBJREV"));
  EXPECT_EQ(problem.note,
            std::string("These statements stand:\n       TRUNCATE TABLE CSREVDAT\n       ") + GetParam().drop_key);
  EXPECT_THAT(problem.advice, HasSubstr("Then add the foreign key again (" + std::string(add_key) + ")"));
}

/// None of the four.
class ResetNowhere : public ResetElsewhere {};
INSTANTIATE_TEST_SUITE_P(Servers, ResetNowhere, testing::Values(Kind{"Unknown", "", nullptr, nullptr, {}, nullptr}),
                         kind_name);

TEST_P(ResetNowhere, is_refused_while_a_key_is_there_that_nobody_knows_how_to_drop) {
  const spc::Problem problem = problem_of([&] { reset(); });
  EXPECT_THAT(problem.why, testing::StartsWith("the server is of no known kind, so the reset cannot drop"));
  EXPECT_EQ(problem.note, "Nothing was changed.");
  EXPECT_EQ(changes(), Texts{});
}

TEST_P(ResetNowhere, keeps_every_constraint_where_no_key_is_in_the_way) {
  script_->on_regex("SELECT COUNT.*CONSTRAINTS.*").answer({"RESULT"}, {{0}});
  reset();
  const Texts all = changes();
  ASSERT_EQ(all.size(), 15U);
  EXPECT_EQ(Texts(all.begin(), all.begin() + 3),
            (Texts{"TRUNCATE TABLE CSREVDAT", "TRUNCATE TABLE CSOBJREV", "TRUNCATE TABLE CSMGSTAT"}));
}

TEST_P(ResetNowhere, goes_on_where_the_server_has_no_list_of_keys) {
  script_->on_regex("SELECT COUNT.*CONSTRAINTS.*").refuse_at_prepare(error("42S02", 1, "no such table"));
  reset();
  EXPECT_EQ(changes().size(), 15U);
}

}  // namespace
