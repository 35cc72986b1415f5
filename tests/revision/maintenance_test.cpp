// Plan
//   rebuild_version on SQLite and MariaDB: the versions of several objects, an empty table, what stays, an object id of
//     0, a failure on the way -> rebuild_version.*
//   reset_migration whole on MariaDB: every table, the foreign key afterwards -> reset_migration_live.*
//   reset_migration on SQLite, which cannot drop a constraint -> reset_migration_live.*
//   exact statements for four dialects and none, a server that refuses truncation, the query timeout, failures on the
//     way -> reset_migration.*
#include "spcbase/revision/maintenance.h"
#include "spcbase/platform/database/connection.h"
#include "tests/revision/revision_fixture.h"

namespace {

using test_support::error;
using test_support::Script;
using test_support::ScriptedSession;
using test_support::ServerKind;
using Texts = std::vector<std::string>;

class rebuild_version : public test_support::RevisionTest {};
INSTANTIATE_TEST_SUITE_P(Servers, rebuild_version, test_support::main_servers(), test_support::server_name);

TEST_P(rebuild_version, reads_0_1_0_2_0_3_0_4_where_0_1_0_2_1_0_1_1_stood) {
  add("a");
  add("b");
  add("c", true);
  add("d");
  EXPECT_EQ(versions(), (Texts{"1|0|1", "2|0|2", "3|1|0", "4|1|1"}));
  rev::rebuild_version(&db());
  EXPECT_EQ(versions(), (Texts{"1|0|1", "2|0|2", "3|0|3", "4|0|4"}));
}

TEST_P(rebuild_version, begins_anew_for_every_object_and_type_whatever_the_order_of_the_rows) {
  rev::RevisionManager others(4);
  add("a", false, 6);
  add("b", false, 5);
  add_by(others, "c", false, 6);
  add("d", true, 5);
  add_by(others, "e", true, 6);
  add("f", true, 6);
  rev::rebuild_version(&db());
  EXPECT_EQ(rows("SELECT OBJTYPE, OBJID, REVISION, MAJORVER, MINORVER FROM CSOBJREV ORDER BY OBJTYPE, OBJID, REVISION"),
            (Texts{"3|5|1|0|1", "3|5|2|0|2", "3|6|1|0|1", "3|6|2|0|2", "4|6|1|0|1", "4|6|2|0|2"}));
}

TEST_P(rebuild_version, of_an_empty_table_does_nothing) {
  const test_support::StatementLog log(db());
  rev::rebuild_version(&db());
  ASSERT_EQ(log.statements.size(), 1U);
  EXPECT_THAT(log.statements[0], testing::EndsWith("ORDER BY [OBJTYPE], [OBJID], [REVISION] ASC"));
  EXPECT_TRUE(db().connection()->open_recordsets().empty());
}

TEST_P(rebuild_version, keeps_numbers_approvals_and_payloads) {
  add("a");
  approve(1, true);
  const std::string rest =
      "SELECT REVID, REVISION, CUSER, CREASON, CTIME, ALEVEL, ATIME, AREASON FROM CSOBJREV ORDER BY REVID";
  const Texts before = rows(rest);
  const Texts payloads = rows("SELECT REVID, DATA FROM CSREVDAT ORDER BY REVID");
  rev::rebuild_version(&db());
  EXPECT_EQ(versions(), (Texts{"1|0|1", "2|0|2"}));
  EXPECT_EQ(rows(rest), before);
  EXPECT_EQ(rows("SELECT REVID, DATA FROM CSREVDAT ORDER BY REVID"), payloads);
}

TEST_P(rebuild_version, an_object_id_of_0_does_not_end_so_the_next_object_goes_on_counting_as_is_meant) {
  insert_row(0, 1);
  insert_row(0, 2);
  insert_row(1, 1);
  insert_row(1, 2);
  insert_row(2, 1);
  rev::rebuild_version(&db());
  EXPECT_EQ(rows("SELECT OBJID, REVISION, MAJORVER, MINORVER FROM CSOBJREV ORDER BY OBJID, REVISION"),
            (Texts{"0|1|0|1", "0|2|0|2", "1|1|0|3", "1|2|0|4", "2|1|0|1"}));
}

TEST_P(rebuild_version, a_negative_object_id_is_an_object_like_any_other) {
  insert_row(-4, 1);
  insert_row(-3, 1);
  rev::rebuild_version(&db());
  EXPECT_EQ(rows("SELECT OBJID, MINORVER FROM CSOBJREV ORDER BY OBJID"), (Texts{"-4|1", "-3|1"}));
}

TEST_P(rebuild_version, a_failure_leaves_the_rows_before_it_changed_but_in_a_transaction) {
  for (int revision = 1; revision <= 3; ++revision)
    insert_row(5, revision);
  const auto script = test_support::play(db());
  const auto fail_at_the_third = [&] {
    script->on_regex("UPDATE .*").times(2).pass();
    script->on_regex("UPDATE .*").once().refuse(error("HY000", 4711, "not now"));
  };
  fail_at_the_third();
  const auto in_transaction = guarded([&] {
    const AutoODBCTransaction transaction(db(), true);
    rev::rebuild_version(&db());
  });
  ASSERT_FALSE(in_transaction.ok());
  EXPECT_EQ(versions(), (Texts{"1|2|3", "2|2|3", "3|2|3"}));
  fail_at_the_third();
  const auto bare = guarded([&] { rev::rebuild_version(&db()); });
  ASSERT_FALSE(bare.ok());
  EXPECT_EQ(bare.failure().native, 4711);
  EXPECT_EQ(versions(), (Texts{"1|0|1", "2|0|2", "3|2|3"}));
}

TEST(rebuild_version_closed, on_a_connection_that_is_not_open_cannot_open) {
  CDatabaseEx closed;
  const auto outcome = guarded([&] { rev::rebuild_version(&closed); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().text, "Can not open recordset.");
}

class reset_migration_live : public test_support::RevisionTest {
 protected:
  void fill() {
    add("a");
    approve(1, true);
    rev::RevisionManager others(4);
    add_by(others, "b", false, 6);
    execute("INSERT INTO CSMGSTAT (MGSTATID) VALUES (1)");
    execute("INSERT INTO CSATYPE (ATYPE, NAME) VALUES (1, 'released')");
    execute(
        "INSERT INTO CSINI (QUAL, SECT, KYWORD, SEQNO, OPTVAL) VALUES ('SYSTEM', 'M', 'qdms.migration.stage', 1, "
        "'2'), ('SYSTEM', 'SETTINGS', 'other', 1, '41')");
    for (const char* table : {"CSPROF (PROFID", "CSMON (MONID", "CSDOC (DOCID", "CSPSQ (PSQID"})
      execute("INSERT INTO " + std::string(table) + ", AREV, ALEVEL) VALUES (9, 1, 2)");
    for (const char* table : {"CSCHRT (CHRTID", "CSLABEL (LABELID", "CSTS (TSID", "CSDASH (DASHID"})
      execute("INSERT INTO " + std::string(table) + ", REVISION, AREV, ALEVEL) VALUES (9, 1, 1, 2)");
    execute("INSERT INTO CSCINP (PROFID, CHRTID, SEQNO, CHRTREV) VALUES (9, 9, 1, 1)");
    execute("INSERT INTO CSLINP (PROFID, LABELID, SEQNO, LABELREV) VALUES (9, 9, 2, 1)");
    execute("INSERT INTO CSSAMP (SAMPID, PROFID, PROFREV) VALUES (1, 9, 1)");
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, reset_migration_live, test_support::main_servers(), test_support::server_name);

TEST_P(reset_migration_live, throws_away_what_belongs_to_revisions_and_nothing_else) {
  fill();
  if (kind() == ServerKind::sqlite) {
    // This server has neither truncation nor constraints that can be dropped: the payloads are gone by then.
    db().SetQueryTimeout(60);
    const auto outcome = guarded([&] { rev::reset_migration(db()); });
    ASSERT_FALSE(outcome.ok());
    EXPECT_EQ(outcome.failure().kind, FailureKind::database);
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT"), "0");
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV"), "3");
    EXPECT_EQ(db().GetQueryTimeout(), 300U) << "kept: it stays raised";
    return;
  }
  rev::reset_migration(db());
  for (const char* table : {"CSREVDAT", "CSOBJREV", "CSMGSTAT", "CSATYPE"})
    EXPECT_EQ(value("SELECT COUNT(*) FROM " + std::string(table)), "0") << table;
  for (const char* table : {"CSPROF", "CSMON", "CSDOC", "CSPSQ", "CSCHRT", "CSLABEL", "CSTS", "CSDASH"})
    EXPECT_EQ(rows("SELECT AREV, ALEVEL FROM " + std::string(table)), Texts{"NULL|NULL"}) << table;
  for (const char* table : {"CSCHRT", "CSLABEL", "CSTS", "CSDASH"})
    EXPECT_EQ(value("SELECT REVISION FROM " + std::string(table)), "NULL") << table;
  EXPECT_EQ(rows("SELECT SEQNO, CHRTREV FROM CSCINP"), Texts{"1|NULL"});
  EXPECT_EQ(rows("SELECT SEQNO, LABELREV FROM CSLINP"), Texts{"2|NULL"});
  EXPECT_EQ(rows("SELECT KYWORD FROM CSINI"), Texts{"other"});
  EXPECT_EQ(value("SELECT PROFREV FROM CSSAMP"), "1") << "a sample keeps the number";
  EXPECT_EQ(db().GetQueryTimeout(), 0U);

  // The constraint is back: a payload needs its revision.
  EXPECT_THROW(execute("INSERT INTO CSREVDAT (REVID, DATA) VALUES (1, 'x')"), std::runtime_error);
  rev::RevisionManager fresh(object_type);
  EXPECT_EQ(add_by(fresh, "a"), 1);
  EXPECT_EQ(fresh.get_revision_info(&db(), -1, 5, 0)->revision, 1);
}

TEST_P(reset_migration_live, a_manager_that_is_alive_meanwhile_holds_stale_records_as_is_meant) {
  add("a");
  static_cast<void>(guarded([&] { rev::reset_migration(db()); }));
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT"), "0");
  ASSERT_NE(get(0), nullptr);
  EXPECT_EQ(test_support::bytes_of(*get(0)), "a");
}

/// A server of one dialect that a script plays.
class Played {
 public:
  explicit Played(int dialect) {
    const char* const probes[] = {"select getdate()", "select sysdate from dual", "select date()", "select curdate()"};
    for (int i = 0; i < 4; ++i) {
      if (i == dialect)
        script->on(probes[i]).answer({"now"}, {{"2024-01-01"}});
      else
        script->on(probes[i]).refuse(error("42000", 1, "no such function"));
    }
  }
  CDatabaseEx& open() {
    script->on_regex("(TRUNCATE|DELETE|ALTER|UPDATE) .*").affect(0);
    db.adopt_session(std::make_unique<ScriptedSession>(script));
    script->forget_calls();
    return db;
  }
  /// Without the probes.
  Texts statements() const {
    Texts all;
    for (const std::string& statement : script->statements())
      if (!statement.starts_with("select ")) all.push_back(statement);
    return all;
  }
  Texts timeouts() const {
    Texts all;
    for (const test_support::SeenCall& call : script->calls_of("set_query_timeout"))
      all.push_back(call.parameters);
    return all;
  }

  std::shared_ptr<Script> script = std::make_shared<Script>();
  CDatabaseEx db;
};

const Texts forgetting{"UPDATE CSPROF SET AREV = NULL, ALEVEL = NULL",
                       "UPDATE CSMON SET AREV = NULL, ALEVEL = NULL",
                       "UPDATE CSDOC SET AREV = NULL, ALEVEL = NULL",
                       "UPDATE CSPSQ SET AREV = NULL, ALEVEL = NULL",
                       "UPDATE CSCHRT SET REVISION = NULL, AREV = NULL, ALEVEL = NULL",
                       "UPDATE CSLABEL SET REVISION = NULL, AREV = NULL, ALEVEL = NULL",
                       "UPDATE CSTS SET REVISION = NULL, AREV = NULL, ALEVEL = NULL",
                       "UPDATE CSDASH SET REVISION = NULL, AREV = NULL, ALEVEL = NULL",
                       "UPDATE CSCINP SET CHRTREV = NULL",
                       "UPDATE CSLINP SET LABELREV = NULL",
                       "DELETE FROM CSATYPE",
                       "DELETE FROM CSINI WHERE KYWORD = 'qdms.migration.stage'"};

constexpr const char* drop_constraint = "ALTER TABLE CSREVDAT DROP CONSTRAINT FKREVDAT1";
constexpr const char* drop_foreign_key = "ALTER TABLE CSREVDAT DROP FOREIGN KEY FKREVDAT1";
constexpr const char* add_constraint =
    "ALTER TABLE CSREVDAT ADD CONSTRAINT FKREVDAT1 FOREIGN KEY(REVID) REFERENCES CSOBJREV(REVID)";

Texts followed_by_forgetting(Texts beginning) {
  beginning.insert(beginning.end(), forgetting.begin(), forgetting.end());
  return beginning;
}

TEST(reset_migration, sends_these_statements_to_each_dialect) {
  for (int dialect = 0; dialect < 4; ++dialect) {
    Played server(dialect);
    rev::reset_migration(server.open());
    EXPECT_EQ(server.statements(),
              followed_by_forgetting({"TRUNCATE TABLE CSREVDAT", dialect == 3 ? drop_foreign_key : drop_constraint,
                                      "TRUNCATE TABLE CSOBJREV", add_constraint, "TRUNCATE TABLE CSMGSTAT"}))
        << dialect;
  }
}

TEST(reset_migration, a_server_of_no_known_dialect_keeps_its_constraint) {
  Played server(-1);
  rev::reset_migration(server.open());
  EXPECT_EQ(server.statements(),
            followed_by_forgetting({"TRUNCATE TABLE CSREVDAT", "TRUNCATE TABLE CSOBJREV", "TRUNCATE TABLE CSMGSTAT"}));
}

TEST(reset_migration, where_truncation_of_the_payloads_is_refused_three_tables_are_emptied_by_delete) {
  for (int dialect = -1; dialect < 4; ++dialect) {
    Played server(dialect);
    // The others could be truncated, but are not asked for it.
    server.script->on("TRUNCATE TABLE CSREVDAT").refuse(error("42000", 2266, "unique/primary keys referenced"));
    rev::reset_migration(server.open());
    Texts emptying{"TRUNCATE TABLE CSREVDAT", "DELETE FROM CSREVDAT", "DELETE FROM CSOBJREV", "DELETE FROM CSMGSTAT"};
    if (dialect >= 0) {
      emptying.insert(emptying.begin() + 3, add_constraint);
      emptying.insert(emptying.begin() + 2, dialect == 3 ? drop_foreign_key : drop_constraint);
    }
    EXPECT_EQ(server.statements(), followed_by_forgetting(emptying)) << dialect;
  }
}

TEST(reset_migration, when_the_payloads_can_be_deleted_in_no_way_the_failure_passes_and_nothing_else_is_sent) {
  Played server(0);
  server.script->on_regex(".*CSREVDAT").refuse(error("42501", 229, "permission was denied"));
  const auto outcome = guarded([&] { rev::reset_migration(server.open()); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::permission);
  EXPECT_EQ(server.statements(), (Texts{"TRUNCATE TABLE CSREVDAT", "DELETE FROM CSREVDAT"}));
}

TEST(reset_migration, the_dialect_is_asked_for_when_the_payloads_are_gone) {
  Played server(0);
  rev::reset_migration(server.open());
  const Texts all = server.script->statements();
  EXPECT_EQ(all[0], "TRUNCATE TABLE CSREVDAT");
  EXPECT_EQ(all[1], "select getdate()");
}

TEST(reset_migration, a_query_timeout_of_60_is_300_meanwhile_and_60_afterwards) {
  Played server(3);
  server.open().SetQueryTimeout(60);
  server.script->forget_calls();
  rev::reset_migration(server.db);
  EXPECT_EQ(server.timeouts(), (Texts{"300", "60"}));
  EXPECT_EQ(server.script->calls().front().function, "set_query_timeout");
  EXPECT_EQ(server.script->calls().back().function, "set_query_timeout");
  EXPECT_EQ(server.db.GetQueryTimeout(), 60U);
}

TEST(reset_migration, a_query_timeout_of_600_stays_600) {
  Played server(3);
  server.open().SetQueryTimeout(600);
  server.script->forget_calls();
  rev::reset_migration(server.db);
  for (const std::string& timeout : server.timeouts())
    EXPECT_EQ(timeout, "600");
  EXPECT_EQ(server.db.GetQueryTimeout(), 600U);
}

TEST(reset_migration, no_limit_counts_as_below_300_as_is_meant) {
  Played server(3);
  rev::reset_migration(server.open());
  EXPECT_EQ(server.timeouts(), (Texts{"300", "0"}));
}

TEST(reset_migration, a_later_failure_passes_what_was_done_stands_and_the_timeout_stays_raised) {
  const Texts all = followed_by_forgetting({"TRUNCATE TABLE CSREVDAT", drop_foreign_key, "TRUNCATE TABLE CSOBJREV",
                                            add_constraint, "TRUNCATE TABLE CSMGSTAT"});
  for (std::size_t failing = 1; failing < all.size(); ++failing) {
    Played server(3);
    server.script->on(all[failing]).refuse(error("HY000", 4711, "not now"));
    server.open().SetQueryTimeout(60);
    const auto outcome = guarded([&] { rev::reset_migration(server.db); });
    ASSERT_FALSE(outcome.ok()) << all[failing];
    EXPECT_EQ(outcome.failure().native, 4711);
    EXPECT_EQ(server.statements(), Texts(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(failing) + 1));
    EXPECT_EQ(server.db.GetQueryTimeout(), 300U);
  }
}

}  // namespace
