// Plan, without a server
//   set_rs_where_clause: first condition bare, later ones in brackets, null and empty -> set_rs_where_clause.*
//   Every recordset without a connection: false, or the usual failure by the flag -> requery_*, questions.*
//   The aggregates as objects: defaults, sources, counts -> aggregates.*
//   The exchange of a computed column: the name in each pass -> computed_column.*
#include <gtest/gtest.h>

#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/schema/settings.h"
#include "spcbase/foundation/schema/tree.h"

namespace {

TEST(set_rs_where_clause, without_a_condition_returns_false_and_leaves_the_filter) {
  RSNode1 rs(nullptr);
  EXPECT_FALSE(set_rs_where_clause(rs, ""));
  EXPECT_FALSE(set_rs_where_clause(rs, nullptr));
  EXPECT_TRUE(rs.m_strFilter.IsEmpty());
  rs.m_strFilter = "a";
  EXPECT_FALSE(set_rs_where_clause(rs, ""));
  EXPECT_FALSE(set_rs_where_clause(rs, nullptr));
  EXPECT_EQ(rs.m_strFilter, "a");
}

TEST(set_rs_where_clause, the_first_condition_stands_bare_and_the_next_in_brackets) {
  RSNode1 rs(nullptr);
  EXPECT_TRUE(set_rs_where_clause(rs, "a = 1 OR b = 2"));
  EXPECT_EQ(rs.m_strFilter, "a = 1 OR b = 2");
  EXPECT_TRUE(set_rs_where_clause(rs, "c = 3"));
  EXPECT_EQ(rs.m_strFilter, "a = 1 OR b = 2 AND (c = 3)");
  EXPECT_TRUE(set_rs_where_clause(rs, "d LIKE '%s'"));
  EXPECT_EQ(rs.m_strFilter, "a = 1 OR b = 2 AND (c = 3) AND (d LIKE '%s')");
}

TEST(requery_rs, without_a_connection_is_false_or_the_usual_failure) {
  RSNode1 rs(nullptr);
  EXPECT_FALSE(requery_rs(rs, "NODEID = 1", false));
  EXPECT_FALSE(requery_rs_for_read(rs, nullptr, false));
  EXPECT_EQ(rs.m_strFilter, "NODEID = 1");
  for (auto* requery : {requery_rs, requery_rs_for_read}) {
    try {
      requery(rs, "NODEID = 2", true);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const DBException& e) {
      EXPECT_EQ(e.what(), "Can not open recordset.");
    }
  }
  EXPECT_EQ(rs.m_strFilter, "NODEID = 2");
}

TEST(questions, to_a_connection_that_is_not_open_are_the_usual_failure) {
  CDatabase closed;
  EXPECT_THROW(get_column_data_type(&closed, "CSMON", "NAME"), DBException);
  EXPECT_THROW(get_sql_server_edition(&closed), DBException);
  EXPECT_THROW(check_sql_server_index(&closed, "CSMON", "PKMON", true), DBException);
}

TEST(aggregates, start_as_they_are_told) {
  RSCount count(nullptr, "CSMON", nullptr);
  EXPECT_EQ(count.result, 0);
  EXPECT_EQ(count.table, "CSMON");
  EXPECT_EQ(count.expression, "COUNT(*)");
  EXPECT_TRUE(count.column_name.IsEmpty());
  EXPECT_EQ(count.GetDefaultSQL(), "CSMON");
  EXPECT_EQ(RSCount(nullptr, "CSMON", "SUM(MONID)").expression, "SUM(MONID)");

  RSMax max(nullptr, "CSMON", "MONID");
  EXPECT_EQ(max.result, 0);
  EXPECT_EQ(max.GetDefaultSQL(), "CSMON");

  RSMaxDateTime moment(nullptr, "CSSAMP", "CTIME");
  EXPECT_EQ(moment.result.year, 0);
  EXPECT_EQ(moment.result.fraction, 0U);
  EXPECT_EQ(moment.GetDefaultSQL(), "CSSAMP");

  RSSQLServerProperty property(nullptr, "edition");
  EXPECT_EQ(property.GetDefaultSQL(), "SELECT SERVERPROPERTY('edition')");

  for (CRecordset* rs : {static_cast<CRecordset*>(&count), static_cast<CRecordset*>(&max),
                         static_cast<CRecordset*>(&moment), static_cast<CRecordset*>(&property)}) {
    EXPECT_EQ(rs->m_nFields, 1U);
    EXPECT_EQ(rs->m_nParams, 0U);
    EXPECT_EQ(rs->m_nDefaultType, CRecordset::snapshot);
    EXPECT_TRUE(rs->GetDefaultConnect().IsEmpty());
    EXPECT_EQ(dynamic_cast<CRecordsetFix*>(rs), nullptr);
  }
}

TEST(RSWithHint, keeps_whether_a_hint_is_wanted) {
  EXPECT_TRUE(RSINI(nullptr, true).use_hint);
  EXPECT_FALSE(RSINI(nullptr, false).use_hint);
  const RSINI settings(nullptr, true);
  EXPECT_EQ(settings.m_nFields, 5U);
  EXPECT_NE(dynamic_cast<const RSWithHint*>(&settings), nullptr);
}

}  // namespace
