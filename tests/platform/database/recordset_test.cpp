// Plan
//   opening: when Open says no, types and options, filter and sort, empty results, mismatches
//   moving: forward-only and snapshot
//   values: null apart from 0 and from an empty text, widths, ranges
//   editing and reading in pages have files of their own
//   parameters, hostile texts in filters, what the observer is told
#include "spcbase/platform/database/recordset.h"

#include <gtest/gtest.h>

#include "tests/platform/database/recordset_under_test.h"

namespace {

using namespace database_test;

class CRecordsetTest : public RecordsetTest {};
INSTANTIATE_TEST_SUITE_P(, CRecordsetTest, all_servers, server_name);

TEST(CRecordset, open_returns_false_without_a_connection_that_is_open) {
  Things nowhere(nullptr);
  EXPECT_FALSE(nowhere.Open());
  CDatabase closed;
  Things rs(&closed);
  EXPECT_FALSE(rs.Open());
  EXPECT_FALSE(rs.IsOpen());
}

TEST_P(CRecordsetTest, open_moves_to_the_first_row_and_close_can_be_opened_again) {
  Things rs(&db);
  rs.m_strSort = "ID";
  ASSERT_TRUE(rs.Open());
  EXPECT_TRUE(rs.IsOpen());
  EXPECT_FALSE(rs.m_bEOF);
  EXPECT_EQ(rs.id, 1);
  EXPECT_EQ(rs.name, "one");
  EXPECT_EQ(rs.amount, 1.5);
  EXPECT_EQ(rs.made.year, 2024);
  EXPECT_EQ(rs.made.fraction, 678000000U);
  EXPECT_EQ(rs.flag, 10);
  rs.Close();
  EXPECT_FALSE(rs.IsOpen());
  EXPECT_TRUE(rs.m_bEOF);
  EXPECT_TRUE(rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::executeDirect));
  EXPECT_EQ(rs.id, 1);
}

TEST_P(CRecordsetTest, an_empty_result_stands_at_both_ends) {
  Things rs(&db);
  rs.m_strFilter = "ID=99";
  ASSERT_TRUE(rs.Open());
  EXPECT_TRUE(rs.m_bEOF);
  EXPECT_TRUE(rs.m_bBOF);
}

TEST_P(CRecordsetTest, opening_what_is_open_is_refused) {
  Things rs(&db);
  rs.Open();
  EXPECT_EQ(caught([&] { rs.Open(); }).code, AFX_SQL_ERROR_ILLEGAL_MODE);
  EXPECT_TRUE(rs.IsOpen());
}

TEST_P(CRecordsetTest, a_missing_table_or_column_fails_with_the_statement_as_it_was_given) {
  Things rs(&db);
  const auto no_table = caught([&] { rs.Open(CRecordset::snapshot, "[NOSUCH]"); });
  EXPECT_EQ(no_table.statement, "SELECT [ID],[NAME],[AMOUNT],[MADE],[FLAG] FROM [NOSUCH]");
  rs.m_strFilter = "[NOSUCH]=5";
  const auto no_column = caught([&] { rs.Open(); });
  EXPECT_EQ(no_column.statement, "SELECT [ID],[NAME],[AMOUNT],[MADE],[FLAG] FROM [THINGS] WHERE [NOSUCH]=5");
  EXPECT_FALSE(rs.IsOpen());
  rs.m_strFilter = "";
  EXPECT_TRUE(rs.Open());
}

TEST_P(CRecordsetTest, a_class_whose_column_count_is_wrong_is_refused) {
  Things rs(&db);
  rs.m_nFields = 4;
  EXPECT_EQ(caught([&] { rs.Open(); }).code, AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH);
  CRecordset nothing(&db);
  EXPECT_EQ(caught([&] { nothing.Open(CRecordset::snapshot, "THINGS"); }).code, AFX_SQL_ERROR_EMPTY_COLUMN_LIST);
}

TEST_P(CRecordsetTest, opens_with_a_whole_statement) {
  Things rs(&db);
  ASSERT_TRUE(rs.Open(CRecordset::snapshot, "SELECT ID,NAME,AMOUNT,MADE,FLAG FROM THINGS WHERE ID=3"));
  EXPECT_EQ(rs.id, 3);
  EXPECT_TRUE(rs.IsFieldNull(&rs.name));
  EXPECT_FALSE(rs.CanUpdate());
}

TEST_P(CRecordsetTest, requery_takes_the_present_filter_and_sort) {
  Things rs(&db);
  rs.Open();
  EXPECT_EQ(rs.GetRecordCount(), 3);
  rs.m_strFilter = "ID>1";
  rs.m_strSort = "ID DESC";
  ASSERT_TRUE(rs.Requery());
  EXPECT_EQ(rs.GetRecordCount(), 2);
  EXPECT_EQ(rs.id, 3);
}

TEST_P(CRecordsetTest, requery_is_refused_after_execute_direct_and_when_closed) {
  Things rs(&db);
  rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::executeDirect);
  EXPECT_EQ(caught([&] { rs.Requery(); }).code, AFX_SQL_ERROR_ILLEGAL_MODE);
  rs.Close();
  EXPECT_EQ(caught([&] { rs.Requery(); }).code, AFX_SQL_ERROR_ILLEGAL_MODE);
}

TEST_P(CRecordsetTest, closing_the_database_closes_its_recordsets) {
  Things rs(&db);
  Things other(&db);
  rs.Open(CRecordset::forwardOnly);
  other.Open();
  db.Close();
  EXPECT_FALSE(rs.IsOpen());
  EXPECT_FALSE(other.IsOpen());
}

TEST_P(CRecordsetTest, several_recordsets_of_one_shape_read_side_by_side) {
  Things a(&db);
  Things b(&db);
  a.m_strSort = b.m_strSort = "ID";
  a.Open(CRecordset::forwardOnly);
  b.Open(CRecordset::forwardOnly);
  a.MoveNext();
  EXPECT_EQ(a.id, 2);
  EXPECT_EQ(b.id, 1);
  b.MoveNext();
  a.MoveNext();
  EXPECT_EQ(a.id, 3);
  EXPECT_EQ(b.id, 2);
}

TEST_P(CRecordsetTest, a_forward_only_recordset_only_moves_on) {
  Things rs(&db);
  rs.m_strSort = "ID";
  rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly);
  rs.Move(1, 1);
  EXPECT_EQ(rs.id, 2);
  EXPECT_EQ(caught([&] { rs.MovePrev(); }).code, AFX_SQL_ERROR_RECORDSET_FORWARD_ONLY);
  rs.MoveNext();
  rs.MoveNext();
  EXPECT_TRUE(rs.m_bEOF);
  EXPECT_EQ(rs.GetRecordCount(), 3);
  EXPECT_EQ(caught([&] { rs.MoveNext(); }).code, AFX_SQL_ERROR_NO_CURRENT_RECORD);
}

TEST_P(CRecordsetTest, a_snapshot_moves_both_ways) {
  Things rs(&db);
  rs.m_strSort = "ID";
  rs.Open();
  rs.MoveLast();
  EXPECT_EQ(rs.id, 3);
  rs.MovePrev();
  EXPECT_EQ(rs.id, 2);
  rs.Move(-1);
  EXPECT_EQ(rs.id, 1);
  rs.MovePrev();
  EXPECT_TRUE(rs.m_bBOF);
  EXPECT_FALSE(rs.m_bEOF);
  rs.MoveNext();
  EXPECT_EQ(rs.id, 1);
  rs.Move(5);
  EXPECT_TRUE(rs.m_bEOF);
  EXPECT_EQ(caught([&] { rs.MoveNext(); }).code, AFX_SQL_ERROR_NO_CURRENT_RECORD);
  rs.MoveFirst();
  EXPECT_EQ(rs.id, 1);
}

TEST_P(CRecordsetTest, writing_does_not_disturb_an_open_snapshot) {
  Things rs(&db);
  rs.m_strSort = "ID";
  rs.Open();
  db.ExecuteSQL("DELETE FROM THINGS WHERE ID=2");
  db.ExecuteSQL("UPDATE THINGS SET NAME='changed' WHERE ID=3");
  rs.MoveNext();
  EXPECT_EQ(rs.id, 2);
  rs.MoveNext();
  EXPECT_TRUE(rs.IsFieldNull(&rs.name));
}

TEST_P(CRecordsetTest, null_is_a_state_apart_from_the_value) {
  Things rs(&db);
  rs.m_strFilter = "ID=2";
  rs.Open();
  EXPECT_FALSE(rs.IsFieldNull(&rs.id));
  EXPECT_TRUE(rs.IsFieldNull(&rs.amount));
  EXPECT_TRUE(rs.IsFieldNull(&rs.made));
  EXPECT_TRUE(rs.IsFieldNull(&rs.flag));
  EXPECT_TRUE(rs.IsFieldNull(nullptr));
  EXPECT_EQ(rs.amount, 0);
  EXPECT_EQ(rs.flag, 0);
  EXPECT_EQ(rs.made.year, 0);
}

TEST_P(CRecordsetTest, a_text_longer_than_its_width_is_a_truncation_failure_and_characters_count) {
  struct Narrow : CRecordset {
    CString name;
    int width;
    Narrow(CDatabase* database, int chars) : CRecordset(database), width(chars) { m_nFields = 1; }
    CString GetDefaultSQL() override { return "THINGS"; }
    void DoFieldExchange(CFieldExchange* fx) override {
      fx->SetFieldType(CFieldExchange::outputColumn);
      RFX_Text(fx, "NAME", name, width);
    }
  };
  db.ExecuteSQL("UPDATE THINGS SET NAME='\xC3\x84\xC3\x96\xF0\x9F\x98\x80' WHERE ID=1");
  Narrow fits(&db, 3);
  fits.m_strFilter = "ID=1";
  ASSERT_TRUE(fits.Open());
  EXPECT_EQ(fits.name, "\xC3\x84\xC3\x96\xF0\x9F\x98\x80");
  Narrow narrow(&db, 2);
  narrow.m_strFilter = "ID=1";
  EXPECT_EQ(caught([&] { narrow.Open(); }).code, AFX_SQL_ERROR_DATA_TRUNCATED);
  EXPECT_FALSE(narrow.IsOpen());
}

TEST_P(CRecordsetTest, a_number_beyond_32_bits_is_no_long) {
  db.ExecuteSQL(on_mariadb() ? "ALTER TABLE THINGS MODIFY FLAG BIGINT" : "UPDATE THINGS SET FLAG=0");
  db.ExecuteSQL("UPDATE THINGS SET FLAG=2147483647 WHERE ID=1");
  db.ExecuteSQL("UPDATE THINGS SET FLAG=2147483648 WHERE ID=2");
  Things rs(&db);
  rs.m_strFilter = "ID=1";
  rs.Open();
  EXPECT_EQ(rs.flag, 2147483647);
  rs.Close();
  rs.m_strFilter = "ID=2";
  EXPECT_NE(caught([&] { rs.Open(); }).state.find("22003"), std::string::npos);
}

struct ByName : Things {
  CString wanted;
  explicit ByName(CDatabase* database) : Things(database) {
    m_nParams = 1;
    m_strFilter = "[NAME] = ? AND ID > 0";
  }
  void DoFieldExchange(CFieldExchange* fx) override {
    Things::DoFieldExchange(fx);
    fx->SetFieldType(CFieldExchange::param);
    RFX_Text(fx, "[NAME]", wanted, 20);
  }
};

TEST_P(CRecordsetTest, a_parameter_stands_between_lifted_literals) {
  ByName rs(&db);
  rs.wanted = "two";
  ASSERT_TRUE(rs.Open());
  EXPECT_EQ(rs.id, 2);
  rs.wanted = "one";
  rs.Requery();
  EXPECT_EQ(rs.id, 1);
}

TEST_P(CRecordsetTest, a_parameter_too_many_or_too_few_is_a_failure) {
  ByName rs(&db);
  rs.m_strFilter = "ID > 0";
  EXPECT_EQ(caught([&] { rs.Open(); }).code, AFX_SQL_ERROR_PARAMETER_COUNT);
  rs.m_strFilter = "NAME=? OR NAME=?";
  EXPECT_EQ(caught([&] { rs.Open(); }).code, AFX_SQL_ERROR_PARAMETER_COUNT);
}

TEST_P(CRecordsetTest, no_name_in_a_filter_can_change_the_statement) {
  for (const char* name : {"it's", "a\\", "\\' OR 1=1 -- ", "\"x\"", "[y]", "50%", "?", "\xE2\x82\xAC"}) {
    Things rs(&db);
    rs.m_strFilter = "ID=0";
    rs.Open();
    rs.AddNew();
    rs.id = 100;
    rs.name = name;
    rs.Update();
    rs.Close();
    CString doubled = name;
    doubled.Replace("'", "''");
    rs.m_strFilter.Format("NAME='%s'", doubled.GetString());
    ASSERT_TRUE(rs.Open()) << name;
    EXPECT_EQ(rs.GetRecordCount(), 1) << name;
    EXPECT_EQ(rs.name, name);
    rs.Delete();
  }
}

TEST_P(CRecordsetTest, the_observer_sees_the_text_as_it_was_given) {
  Record record;
  db.set_observer(&record);
  Things rs(&db);
  rs.m_strFilter = "ID=1 AND NAME='one'";
  rs.Open();
  rs.Close();
  rs.Open(CRecordset::forwardOnly);
  rs.Close();
  db.set_observer(nullptr);
  ASSERT_EQ(record.lines.size(), 2U);
  for (const auto& line : record.lines) {
    EXPECT_EQ(line.statement, "SELECT [ID],[NAME],[AMOUNT],[MADE],[FLAG] FROM [THINGS] WHERE ID=1 AND NAME='one'");
    EXPECT_EQ(line.rows, 1);
    EXPECT_FALSE(line.failed);
  }
}

TEST_P(CRecordsetTest, tells_what_the_server_says_of_a_column) {
  Things rs(&db);
  rs.Open();
  CODBCFieldInfo info;
  rs.GetODBCFieldInfo(1, info);
  EXPECT_EQ(info.m_strName, "NAME");
  EXPECT_EQ(info.m_nSQLType, 12);
  rs.GetODBCFieldInfo("flag", info);
  EXPECT_EQ(info.m_strName, "FLAG");
  EXPECT_EQ(rs.GetODBCFieldCount(), 5);
  EXPECT_EQ(caught([&] { rs.GetODBCFieldInfo(5, info); }).code, AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH);
}

}  // namespace
