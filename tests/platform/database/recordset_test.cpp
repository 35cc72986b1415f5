// Plan
//   opening: when Open says no, types and options, filter and sort, empty results, mismatches
//   moving: forward-only and snapshot
//   values: null apart from 0 and from an empty text, widths, ranges
//   editing: AddNew, Edit, Update, Delete, what is sent and what is not, keys, equal rows
//   parameters, hostile texts in filters, what the observer is told
#include "spcbase/platform/database/recordset.h"

#include <gtest/gtest.h>

#include "tests/platform/database/database_under_test.h"

namespace {

using namespace database_test;

class CRecordsetTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    create_things();
    db.ExecuteSQL("INSERT INTO THINGS VALUES (1,'one',1.5,'2024-01-02 03:04:05.678',10)");
    db.ExecuteSQL("INSERT INTO THINGS VALUES (2,'two',NULL,NULL,NULL)");
    db.ExecuteSQL("INSERT INTO THINGS VALUES (3,NULL,3.25,'1999-12-31 23:59:59.000',30)");
  }
};

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

TEST_P(CRecordsetTest, add_new_sends_the_fields_that_were_set_and_no_others) {
  Record record;
  Things rs(&db);
  rs.m_strFilter = "ID=0";
  rs.Open();
  rs.AddNew();
  EXPECT_TRUE(rs.IsFieldNull(&rs.id));
  EXPECT_FALSE(rs.IsFieldDirty(nullptr));
  rs.id = 4;
  rs.flag = 0;
  rs.name = "";
  EXPECT_TRUE(rs.IsFieldDirty(&rs.flag));
  EXPECT_FALSE(rs.IsFieldDirty(&rs.amount));
  db.set_observer(&record);
  EXPECT_TRUE(rs.Update());
  db.set_observer(nullptr);
  ASSERT_EQ(record.lines.size(), 1U);
  EXPECT_EQ(record.lines[0].statement, "INSERT INTO [THINGS] ([ID],[NAME],[FLAG]) VALUES (?,?,?)");
  EXPECT_EQ(record.lines[0].parameters, "4, '', 0");
  Things back(&db);
  back.m_strFilter = "ID=4";
  ASSERT_TRUE(back.Open());
  ASSERT_FALSE(back.m_bEOF);
  EXPECT_FALSE(back.IsFieldNull(&back.name));
  EXPECT_EQ(back.name, "");
  EXPECT_FALSE(back.IsFieldNull(&back.flag));
  EXPECT_TRUE(back.IsFieldNull(&back.amount));
  EXPECT_TRUE(back.IsFieldNull(&back.made));
}

TEST_P(CRecordsetTest, add_new_keeps_null_what_is_set_to_null) {
  Things rs(&db);
  rs.m_strFilter = "ID=0";
  rs.Open();
  rs.AddNew();
  rs.id = 5;
  rs.flag = 7;
  rs.SetFieldNull(&rs.flag);
  rs.SetFieldNull(&rs.name, FALSE);
  ASSERT_TRUE(rs.Update());
  Things back(&db);
  back.m_strFilter = "ID=5";
  back.Open();
  EXPECT_TRUE(back.IsFieldNull(&back.flag));
  EXPECT_FALSE(back.IsFieldNull(&back.name));
}

TEST_P(CRecordsetTest, add_new_with_nothing_set_sends_nothing_and_returns_false) {
  Record record;
  Things rs(&db);
  rs.Open();
  rs.AddNew();
  db.set_observer(&record);
  EXPECT_FALSE(rs.Update());
  db.set_observer(nullptr);
  EXPECT_TRUE(record.lines.empty());
}

TEST_P(CRecordsetTest, after_add_new_the_row_from_before_is_current) {
  Things rs(&db);
  rs.m_strFilter = "ID=1";
  rs.Open();
  rs.AddNew();
  rs.id = 6;
  rs.Update();
  EXPECT_EQ(rs.id, 1);
  EXPECT_EQ(rs.name, "one");
}

TEST_P(CRecordsetTest, edit_sends_only_what_changed_and_the_row_stays_current) {
  Record record;
  Things rs(&db);
  rs.m_strFilter = "ID=1";
  rs.Open();
  rs.Edit();
  rs.name = "uno";
  rs.flag = 10;
  EXPECT_FALSE(rs.IsFieldDirty(&rs.flag));
  db.set_observer(&record);
  EXPECT_TRUE(rs.Update());
  ASSERT_EQ(record.lines.size(), 1U);
  EXPECT_EQ(record.lines[0].statement, "UPDATE [THINGS] SET [NAME]=? WHERE [ID]=?");
  EXPECT_EQ(record.lines[0].parameters, "'uno', 1");
  EXPECT_EQ(record.lines[0].rows, 1);
  EXPECT_EQ(rs.name, "uno");
  rs.Edit();
  rs.id = 11;
  EXPECT_TRUE(rs.Update());
  rs.Edit();
  rs.flag = 12;
  EXPECT_TRUE(rs.Update());
  db.set_observer(nullptr);
  EXPECT_EQ(record.lines[2].parameters, "12, 11");
}

TEST_P(CRecordsetTest, edit_with_nothing_changed_sends_nothing_and_returns_false) {
  Record record;
  Things rs(&db);
  rs.m_strFilter = "ID=2";
  rs.Open();
  rs.Edit();
  rs.name = "two";
  db.set_observer(&record);
  EXPECT_FALSE(rs.Update());
  db.set_observer(nullptr);
  EXPECT_TRUE(record.lines.empty());
  EXPECT_TRUE(rs.IsFieldNull(&rs.flag));
  EXPECT_EQ(rs.flag, 0);
}

TEST_P(CRecordsetTest, a_dirty_mark_makes_an_equal_value_count_and_takes_a_change_back) {
  Things rs(&db);
  rs.m_strFilter = "ID=1";
  rs.Open();
  rs.Edit();
  rs.SetFieldDirty(&rs.name);
  EXPECT_TRUE(rs.Update()) << "a server that counts changed rows only is asked whether the row is there";
  rs.Edit();
  rs.name = "other";
  rs.SetFieldDirty(&rs.name, FALSE);
  EXPECT_FALSE(rs.Update());
  EXPECT_EQ(rs.name, "one");
}

TEST_P(CRecordsetTest, edit_of_a_null_notices_zero_and_the_empty_text) {
  Things rs(&db);
  rs.m_strFilter = "ID=2";
  rs.Open();
  rs.Edit();
  rs.flag = 0;
  rs.amount = 0;
  EXPECT_TRUE(rs.Update());
  rs.Requery();
  EXPECT_FALSE(rs.IsFieldNull(&rs.flag));
  EXPECT_FALSE(rs.IsFieldNull(&rs.amount));
  rs.Edit();
  rs.SetFieldNull(&rs.flag);
  EXPECT_TRUE(rs.IsFieldNull(&rs.flag));
  EXPECT_TRUE(rs.Update());
  rs.Requery();
  EXPECT_TRUE(rs.IsFieldNull(&rs.flag));
}

TEST_P(CRecordsetTest, an_edit_that_is_dropped_restores_the_fields) {
  Things rs(&db);
  rs.m_strSort = "ID";
  rs.Open();
  rs.Edit();
  rs.name = "x";
  rs.CancelUpdate();
  EXPECT_EQ(rs.name, "one");
  rs.Edit();
  rs.name = "y";
  rs.MoveNext();
  EXPECT_EQ(rs.name, "two");
  EXPECT_EQ(caught([&] { rs.Update(); }).code, AFX_SQL_ERROR_ILLEGAL_MODE);
}

TEST_P(CRecordsetTest, a_row_that_is_gone_is_a_failure_and_the_fields_hold_what_was_fetched) {
  Things rs(&db);
  rs.m_strFilter = "ID=1";
  rs.Open();
  db.ExecuteSQL("DELETE FROM THINGS WHERE ID=1");
  rs.Edit();
  rs.name = "x";
  EXPECT_EQ(caught([&] { rs.Update(); }).code, AFX_SQL_ERROR_NO_ROWS_AFFECTED);
  EXPECT_EQ(rs.name, "one");
  EXPECT_EQ(caught([&] { rs.Delete(); }).code, AFX_SQL_ERROR_NO_ROWS_AFFECTED);
}

TEST_P(CRecordsetTest, delete_removes_the_row_and_leaves_none_current) {
  Things rs(&db);
  rs.m_strSort = "ID";
  rs.Open();
  rs.Delete();
  EXPECT_TRUE(rs.IsDeleted());
  EXPECT_TRUE(rs.IsFieldNull(&rs.id));
  EXPECT_EQ(caught([&] { rs.Edit(); }).code, AFX_SQL_ERROR_NO_CURRENT_RECORD);
  EXPECT_EQ(caught([&] { rs.Delete(); }).code, AFX_SQL_ERROR_NO_CURRENT_RECORD);
  rs.MoveNext();
  EXPECT_FALSE(rs.IsDeleted());
  EXPECT_EQ(rs.id, 2);
  EXPECT_EQ(Things(&db).count("ID=1"), 0);
}

TEST_P(CRecordsetTest, a_duplicate_key_fails_and_the_next_insert_works) {
  Things rs(&db);
  rs.m_strFilter = "ID=0";
  rs.Open();
  rs.AddNew();
  rs.id = 1;
  const auto failure = caught([&] { rs.Update(); });
  EXPECT_EQ(failure.statement, "INSERT INTO [THINGS] ([ID]) VALUES (?)");
  rs.AddNew();
  rs.id = 9;
  EXPECT_TRUE(rs.Update());
}

TEST_P(CRecordsetTest, read_only_ways_of_opening_refuse_to_edit) {
  Things rs(&db);
  rs.Open(CRecordset::snapshot, nullptr, CRecordset::readOnly);
  EXPECT_FALSE(rs.CanUpdate());
  EXPECT_EQ(caught([&] { rs.Edit(); }).code, AFX_SQL_ERROR_RECORDSET_READONLY);
  EXPECT_EQ(caught([&] { rs.AddNew(); }).code, AFX_SQL_ERROR_RECORDSET_READONLY);
  rs.Close();
  rs.Open(CRecordset::forwardOnly);
  EXPECT_EQ(caught([&] { rs.Delete(); }).code, AFX_SQL_ERROR_RECORDSET_READONLY);
  rs.Close();
  rs.Open(CRecordset::snapshot, nullptr, CRecordset::appendOnly);
  EXPECT_TRUE(rs.CanAppend());
  EXPECT_EQ(caught([&] { rs.Edit(); }).code, AFX_SQL_ERROR_RECORDSET_READONLY);
  rs.Close();
  EXPECT_EQ(caught([&] { rs.AddNew(); }).code, AFX_SQL_ERROR_ILLEGAL_MODE);
}

TEST_P(CRecordsetTest, a_class_without_a_key_takes_the_one_of_the_catalogue) {
  Record record;
  Things rs(&db);
  rs.set_key(0);
  rs.m_strFilter = "ID=1";
  rs.Open();
  rs.Edit();
  rs.name = "uno";
  db.set_observer(&record);
  EXPECT_TRUE(rs.Update());
  db.set_observer(nullptr);
  ASSERT_EQ(record.lines.size(), 1U);
  EXPECT_EQ(record.lines[0].statement, "UPDATE [THINGS] SET [NAME]=? WHERE [ID]=?");
}

TEST_P(CRecordsetTest, of_equal_rows_without_a_key_one_is_changed) {
  struct Numbers : CRecordset {
    long maxno = 0;
    explicit Numbers(CDatabase* database) : CRecordset(database) {
      m_nFields = 1;
      m_nDefaultType = snapshot;
    }
    CString GetDefaultSQL() override { return "RN"; }
    void DoFieldExchange(CFieldExchange* fx) override {
      fx->SetFieldType(CFieldExchange::outputColumn);
      RFX_Long(fx, "MAXNO", maxno);
    }
  };
  db.ExecuteSQL("CREATE TABLE RN (MAXNO INTEGER)");
  for (int i = 0; i < 3; ++i)
    db.ExecuteSQL("INSERT INTO RN VALUES (5)");
  Numbers rs(&db);
  rs.Open();
  rs.Edit();
  rs.maxno = 6;
  EXPECT_TRUE(rs.Update());
  rs.MoveNext();
  rs.Delete();
  rs.Close();
  rs.m_strSort = "MAXNO";
  rs.Open();
  EXPECT_EQ(rs.GetRecordCount(), 2);
  EXPECT_EQ(rs.maxno, 5);
  rs.MoveNext();
  EXPECT_EQ(rs.maxno, 6);
}

TEST_P(CRecordsetTest, a_key_that_is_not_unique_is_a_failure) {
  db.ExecuteSQL("UPDATE THINGS SET FLAG=1");
  Things rs(&db);
  rs.set_key(1U << 4);
  rs.m_strSort = "ID";
  rs.Open();
  rs.Edit();
  rs.name = "x";
  EXPECT_EQ(caught([&] { rs.Update(); }).code, AFX_SQL_ERROR_MULTIPLE_ROWS_AFFECTED);
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

/// More than two pages of rows, with gaps in the key.
void fill_pages(CDatabase& db, long rows) {
  db.BeginTrans();
  Things rs(&db);
  rs.m_strFilter = "ID=0";
  rs.Open();
  for (long i = 0; i < rows; ++i) {
    rs.AddNew();
    rs.id = 1000 + 2 * i;
    rs.flag = i % 2;
    rs.Update();
  }
  db.CommitTrans();
}

TEST_P(CRecordsetTest, a_read_in_pages_gives_every_row_once) {
  constexpr long rows = 20001;
  fill_pages(db, rows);
  Record record;
  db.set_observer(&record);
  Things rs(&db);
  rs.m_strFilter = "ID>=1000";
  rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::inPages);
  long seen = 0;
  for (; !rs.m_bEOF; rs.MoveNext(), ++seen)
    ASSERT_EQ(rs.id, 1000 + 2 * seen);
  EXPECT_EQ(seen, rows);
  EXPECT_EQ(rs.GetRecordCount(), rows);
  rs.Close();
  db.set_observer(nullptr);
  if (GetParam() == Server::sqlite) {
    EXPECT_EQ(record.lines.size(), 1U) << "a session that streams reads at once";
    return;
  }
  ASSERT_EQ(record.lines.size(), 3U);
  EXPECT_EQ(record.lines[0].statement,
            "SELECT [ID],[NAME],[AMOUNT],[MADE],[FLAG] FROM [THINGS] WHERE ID>=1000 ORDER BY [ID] LIMIT 10000");
  EXPECT_EQ(
      record.lines[1].statement,
      "SELECT [ID],[NAME],[AMOUNT],[MADE],[FLAG] FROM [THINGS] WHERE (ID>=1000) AND (([ID]>?)) ORDER BY [ID] LIMIT "
      "10000");
  EXPECT_EQ(record.lines[1].parameters, "20998");
  EXPECT_EQ(record.lines[0].rows, 10000);
  EXPECT_EQ(record.lines[2].rows, 1);
}

TEST_P(CRecordsetTest, a_read_in_pages_goes_on_behind_a_key_of_several_columns) {
  constexpr long rows = 20000;
  fill_pages(db, rows);
  Things rs(&db);
  rs.set_key(1U | 1U << 4);
  rs.m_strFilter = "ID>=1000";
  rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::inPages);
  long seen = 0;
  for (; !rs.m_bEOF; rs.MoveNext(), ++seen)
    ASSERT_EQ(rs.id, 1000 + 2 * seen);
  EXPECT_EQ(seen, rows);
}

TEST_P(CRecordsetTest, a_read_in_pages_without_a_key_or_with_a_sort_is_refused_where_it_needs_them) {
  if (GetParam() == Server::sqlite) {
    Things rs(&db);
    rs.m_strSort = "ID";
    EXPECT_TRUE(rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::inPages)) << "nothing is paged here";
    return;
  }
  Things sorted(&db);
  sorted.m_strSort = "ID";
  EXPECT_EQ(caught([&] { sorted.Open(CRecordset::forwardOnly, nullptr, CRecordset::inPages); }).code,
            AFX_SQL_ERROR_ILLEGAL_MODE);
  Things keyless(&db);
  keyless.set_key(0);
  EXPECT_EQ(caught([&] { keyless.Open(CRecordset::forwardOnly, nullptr, CRecordset::inPages); }).code,
            AFX_SQL_ERROR_ILLEGAL_MODE);
}

TEST_P(CRecordsetTest, a_parameter_keeps_its_place_in_every_page) {
  fill_pages(db, 20000);
  db.ExecuteSQL("UPDATE THINGS SET NAME='same' WHERE ID>=1000");
  struct Named : Things {
    CString wanted = "same";
    explicit Named(CDatabase* database) : Things(database) {
      m_nParams = 1;
      m_strFilter = "NAME=? AND ID>=1000";
    }
    void DoFieldExchange(CFieldExchange* fx) override {
      Things::DoFieldExchange(fx);
      fx->SetFieldType(CFieldExchange::param);
      RFX_Text(fx, "[NAME]", wanted, 20);
    }
  } rs(&db);
  rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::inPages);
  long seen = 0;
  for (; !rs.m_bEOF; rs.MoveNext())
    ++seen;
  EXPECT_EQ(seen, 20000);
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
