// Plan, on SQLite, MariaDB and SQLite's ODBC driver
//   requery_rs: closed, opened for reading, open and requeried, a failing Requery, null and empty filters, failures of
//     the server, statements -> requery_rs_live.*
//   RSCount, RSMax, RSMaxDateTime: empty tables, rows, filters, expressions, again after requery -> aggregates_live.*
//   Questions to a server's catalogue: types of columns, edition, index -> questions_live.*
//   The hint of the settings: where it stands, and only when wanted -> RSINI_live.*
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/statement_log.h"

namespace {

using Statements = std::vector<std::string>;
using test_support::ServerKind;

constexpr DWORD for_read = 0x2004;

class requery_rs_live : public test_support::DatabaseTest {
 protected:
  requery_rs_live() {
    execute("INSERT INTO CSNODE (NODEID, NAME) VALUES (1, 'one')");
    execute("INSERT INTO CSNODE (NODEID, NAME) VALUES (2, 'two')");
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, requery_rs_live, test_support::all_servers(), test_support::server_name);

TEST_P(requery_rs_live, a_closed_recordset_is_opened_for_updating) {
  RSNode1 rs(&db());
  EXPECT_TRUE(requery_rs(rs, "[NODEID] = 2", true));
  EXPECT_TRUE(rs.IsOpen());
  EXPECT_EQ(rs.m_dwOptions, 0U);
  EXPECT_EQ(rs.name, "two");
  rs.Edit();
  rs.name = "zwei";
  EXPECT_TRUE(rs.Update());
  EXPECT_EQ(value("SELECT NAME FROM CSNODE WHERE NODEID = 2"), "zwei");
}

TEST_P(requery_rs_live, a_closed_recordset_is_opened_for_reading_by_the_twin) {
  RSNode1 rs(&db());
  EXPECT_TRUE(requery_rs_for_read(rs, "[NODEID] = 2", true));
  EXPECT_EQ(rs.m_dwOptions, for_read);
  EXPECT_FALSE(rs.CanUpdate());
  EXPECT_EQ(rs.name, "two");
}

TEST_P(requery_rs_live, one_that_was_opened_for_reading_is_reopened_for_updating) {
  RSNode1 rs(&db());
  ASSERT_TRUE(open_for_read(rs));
  EXPECT_EQ(rs.m_dwOptions, for_read);
  EXPECT_TRUE(requery_rs(rs, "[NODEID] = 1", true));
  EXPECT_EQ(rs.m_dwOptions, 0U);
  EXPECT_TRUE(rs.CanUpdate());
  rs.Edit();
  rs.name = "eins";
  EXPECT_TRUE(rs.Update());
}

TEST_P(requery_rs_live, one_that_was_opened_for_reading_is_reopened_for_reading_by_the_twin) {
  RSNode1 rs(&db());
  ASSERT_TRUE(open_for_read(rs));
  EXPECT_TRUE(requery_rs_for_read(rs, "[NODEID] = 2", true));
  EXPECT_EQ(rs.m_dwOptions, for_read);
  EXPECT_EQ(rs.nodeid, 2);
}

TEST_P(requery_rs_live, a_null_filter_keeps_the_one_in_place) {
  RSNode1 rs(&db());
  rs.m_strFilter = "[NODEID] = 2";
  ASSERT_TRUE(open_for_update(rs));
  EXPECT_TRUE(requery_rs(rs, nullptr, true));
  EXPECT_EQ(rs.m_strFilter, "[NODEID] = 2");
  EXPECT_EQ(rs.nodeid, 2);
  rs.Close();
  EXPECT_TRUE(requery_rs_for_read(rs, nullptr, true));
  EXPECT_EQ(rs.nodeid, 2);
  EXPECT_TRUE(requery_rs_for_read(rs, nullptr, true));
  EXPECT_EQ(rs.nodeid, 2);
}

TEST_P(requery_rs_live, an_empty_filter_takes_the_filter_away) {
  RSNode1 rs(&db());
  rs.m_strFilter = "[NODEID] = 2";
  rs.m_strSort = "[NODEID]";
  ASSERT_TRUE(open_for_update(rs));
  EXPECT_TRUE(requery_rs(rs, "", true));
  EXPECT_TRUE(rs.m_strFilter.IsEmpty());
  EXPECT_EQ(rs.nodeid, 1);
}

TEST_P(requery_rs_live, an_open_one_is_requeried_and_sees_what_others_wrote) {
  RSNode1 rs(&db());
  rs.m_strFilter = "[NODEID] = 3";
  ASSERT_TRUE(open_for_update(rs));
  EXPECT_TRUE(rs.m_bEOF);
  execute("INSERT INTO CSNODE (NODEID, NAME) VALUES (3, 'three')");
  EXPECT_TRUE(requery_rs(rs, nullptr, true));
  EXPECT_FALSE(rs.m_bEOF);
  EXPECT_EQ(rs.name, "three");
}

// Its Requery gives up without a failure.
class Stubborn : public RSNode1 {
 public:
  using RSNode1::RSNode1;
  BOOL Requery() override { return FALSE; }
};

TEST_P(requery_rs_live, when_the_requery_gives_up_it_is_closed_and_opened) {
  Stubborn rs(&db());
  ASSERT_TRUE(open_for_update(rs));
  EXPECT_TRUE(requery_rs(rs, "[NODEID] = 2", true));
  EXPECT_EQ(rs.nodeid, 2);
  EXPECT_TRUE(requery_rs_for_read(rs, "[NODEID] = 1", true));
  EXPECT_EQ(rs.m_dwOptions, for_read);
  EXPECT_EQ(rs.nodeid, 1);
}

TEST_P(requery_rs_live, a_failure_of_the_server_passes_whatever_the_flag_says) {
  for (const bool throwing : {false, true}) {
    RSNode1 rs(&db());
    ASSERT_TRUE(open_for_update(rs));
    try {
      requery_rs(rs, "[NOSUCH] = 1", throwing);
      ADD_FAILURE() << "nothing was thrown";
    } catch (CDBException* e) {
      EXPECT_FALSE(e->m_strError.IsEmpty());
      e->Delete();
    }
    EXPECT_FALSE(rs.IsOpen());
    EXPECT_EQ(rs.m_strFilter, "[NOSUCH] = 1");
    EXPECT_TRUE(requery_rs(rs, "[NODEID] = 1", throwing));
    EXPECT_EQ(rs.nodeid, 1);
  }
}

TEST_P(requery_rs_live, a_lookup_is_one_statement) {
  test_support::StatementLog recorder(db());
  RSNode1 rs(&db());
  EXPECT_TRUE(requery_rs_for_read(rs, "[NODEID] = 2", true));
  rs.Close();
  EXPECT_EQ(recorder.statements, Statements{"SELECT [NODEID],[NAME] FROM [CSNODE] WHERE [NODEID] = 2"});
}

class aggregates_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, aggregates_live, test_support::all_servers(), test_support::server_name);

TEST_P(aggregates_live, an_empty_table_has_0_rows) {
  RSCount count(&db(), "CSSAMP", nullptr);
  EXPECT_TRUE(requery_rs_for_read(count, nullptr, true));
  EXPECT_FALSE(count.m_bEOF);
  EXPECT_EQ(count.result, 0);
}

TEST_P(aggregates_live, the_maximum_of_an_empty_table_is_one_row_with_a_null) {
  RSMax max(&db(), "CSSAMP", "SAMPID");
  EXPECT_TRUE(requery_rs_for_read(max, nullptr, true));
  EXPECT_FALSE(max.m_bEOF);
  EXPECT_TRUE(max.IsFieldNull(&max.result));
  RSMaxDateTime moment(&db(), "CSSAMP", "CTIME");
  EXPECT_TRUE(requery_rs_for_read(moment, nullptr, true));
  EXPECT_FALSE(moment.m_bEOF);
  EXPECT_TRUE(moment.IsFieldNull(&moment.result));
}

TEST_P(aggregates_live, count_and_find_the_highest_of_the_rows_of_a_filter) {
  execute("INSERT INTO CSSAMP (SAMPID, PROFID, CTIME) VALUES (7, 1, '2024-02-03 04:05:06.123')");
  execute("INSERT INTO CSSAMP (SAMPID, PROFID, CTIME) VALUES (9, 1, '2024-02-03 04:05:06.122')");
  execute("INSERT INTO CSSAMP (SAMPID, PROFID, CTIME) VALUES (12, 2, '2025-01-01 00:00:00.000')");
  RSCount count(&db(), "CSSAMP", nullptr);
  set_rs_where_clause(count, "PROFID = 1");
  EXPECT_TRUE(requery_rs_for_read(count, nullptr, true));
  EXPECT_EQ(count.result, 2);
  EXPECT_TRUE(requery_rs_for_read(count, "", true));
  EXPECT_EQ(count.result, 3);
  EXPECT_FALSE(count.column_name.IsEmpty());

  RSMax max(&db(), "CSSAMP", "SAMPID");
  set_rs_where_clause(max, "PROFID = 1");
  EXPECT_TRUE(requery_rs_for_read(max, nullptr, true));
  EXPECT_EQ(max.result, 9);

  RSMaxDateTime moment(&db(), "CSSAMP", "CTIME");
  set_rs_where_clause(moment, "PROFID = 1");
  EXPECT_TRUE(requery_rs_for_read(moment, nullptr, true));
  EXPECT_EQ(moment.result.year, 2024);
  EXPECT_EQ(moment.result.second, 6);
  EXPECT_EQ(moment.result.fraction, 123000000U);
}

TEST_P(aggregates_live, count_over_a_list_of_tables_by_another_expression) {
  execute("INSERT INTO CSNODE (NODEID, NAME) VALUES (1, 'one')");
  execute("INSERT INTO CSNODE (NODEID, NAME) VALUES (2, 'two')");
  RSCount pairs(&db(), "CSNODE A, CSNODE B", "SUM(A.NODEID * B.NODEID)");
  EXPECT_TRUE(requery_rs_for_read(pairs, nullptr, true));
  EXPECT_EQ(pairs.result, 9);
}

TEST_P(aggregates_live, work_as_a_snapshot_that_is_requeried) {
  RSCount count(&db(), "CSNODE", nullptr);
  EXPECT_TRUE(requery_rs(count, nullptr, true));
  EXPECT_EQ(count.result, 0);
  execute("INSERT INTO CSNODE (NODEID, NAME) VALUES (1, 'one')");
  EXPECT_TRUE(requery_rs(count, nullptr, true));
  EXPECT_EQ(count.result, 1);
}

TEST_P(aggregates_live, send_these_statements) {
  test_support::StatementLog recorder(db());
  RSCount count(&db(), "CSSAMP", nullptr);
  requery_rs_for_read(count, nullptr, true);
  count.Close();
  RSMax max(&db(), "CSSAMP", "SAMPID");
  requery_rs_for_read(max, "PROFID = 1", true);
  max.Close();
  EXPECT_EQ(recorder.statements,
            (Statements{"SELECT COUNT(*) FROM CSSAMP", "SELECT MAX(SAMPID) FROM CSSAMP WHERE PROFID = 1"}));
}

class questions_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, questions_live, test_support::all_servers(), test_support::server_name);

TEST_P(questions_live, the_type_of_a_column_comes_in_the_servers_own_words) {
  if (kind() == ServerKind::mariadb) {
    EXPECT_EQ(get_column_data_type(&db(), "CSMON", "NAME"), "varchar");
    EXPECT_EQ(get_column_data_type(&db(), "CSMON", "MONID"), "int");
    EXPECT_TRUE(get_column_data_type(&db(), "CSMON", "NOSUCH").IsEmpty());
  } else {
    try {
      get_column_data_type(&db(), "CSMON", "NAME");
      ADD_FAILURE() << "nothing was thrown";
    } catch (CDBException* e) {
      e->Delete();
    }
  }
}

TEST_P(questions_live, a_server_that_is_no_sql_server_has_no_edition_and_does_not_throw) {
  EXPECT_TRUE(get_sql_server_edition(&db()).IsEmpty());
}

TEST_P(questions_live, an_index_is_only_known_to_a_sql_server) {
  try {
    check_sql_server_index(&db(), "CSMON", "PKMON", true);
    ADD_FAILURE() << "nothing was thrown";
  } catch (CDBException* e) {
    e->Delete();
  }
}

class RSINI_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, RSINI_live, test_support::all_servers(), test_support::server_name);

TEST_P(RSINI_live, a_wanted_hint_stands_between_the_keyword_and_the_columns) {
  execute("INSERT INTO CSINI (QUAL, SECT, KYWORD, SEQNO, OPTVAL) VALUES ('q', 's', 'k', 1, 'v')");
  test_support::StatementLog recorder(db());
  RSINI hinted(&db(), true);
  EXPECT_TRUE(requery_rs_for_read(hinted, nullptr, true));
  EXPECT_EQ(hinted.optval, "v");
  hinted.Close();
  RSINI plain(&db(), false);
  EXPECT_TRUE(requery_rs_for_read(plain, nullptr, true));
  EXPECT_EQ(plain.optval, "v");
  plain.Close();
  ASSERT_EQ(recorder.statements.size(), 2U);
  EXPECT_EQ(recorder.statements[0], "SELECT  /*+ result_cache */ [QUAL],[SECT],[KYWORD],[SEQNO],[OPTVAL] FROM [CSINI]");
  EXPECT_EQ(recorder.statements[1], "SELECT [QUAL],[SECT],[KYWORD],[SEQNO],[OPTVAL] FROM [CSINI]");
}

}  // namespace
