// Plan
//   AddNew, Edit, Update, Delete: what is sent and what is not
//   keys: named by the class, taken from the catalogue, none at all; equal rows; rows that are gone
#include "spcbase/platform/database/recordset.h"

#include <gtest/gtest.h>

#include "tests/platform/database/recordset_under_test.h"

namespace {

using namespace database_test;

class CRecordsetEditing : public RecordsetTest {};
INSTANTIATE_TEST_SUITE_P(, CRecordsetEditing, all_servers, server_name);

TEST_P(CRecordsetEditing, add_new_sends_the_fields_that_were_set_and_no_others) {
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

TEST_P(CRecordsetEditing, add_new_keeps_null_what_is_set_to_null) {
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

TEST_P(CRecordsetEditing, add_new_with_nothing_set_sends_nothing_and_returns_false) {
  Record record;
  Things rs(&db);
  rs.Open();
  rs.AddNew();
  db.set_observer(&record);
  EXPECT_FALSE(rs.Update());
  db.set_observer(nullptr);
  EXPECT_TRUE(record.lines.empty());
}

TEST_P(CRecordsetEditing, after_add_new_the_row_from_before_is_current) {
  Things rs(&db);
  rs.m_strFilter = "ID=1";
  rs.Open();
  rs.AddNew();
  rs.id = 6;
  rs.Update();
  EXPECT_EQ(rs.id, 1);
  EXPECT_EQ(rs.name, "one");
}

TEST_P(CRecordsetEditing, edit_sends_only_what_changed_and_the_row_stays_current) {
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

TEST_P(CRecordsetEditing, edit_with_nothing_changed_sends_nothing_and_returns_false) {
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

TEST_P(CRecordsetEditing, a_dirty_mark_makes_an_equal_value_count_and_takes_a_change_back) {
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

TEST_P(CRecordsetEditing, edit_of_a_null_notices_zero_and_the_empty_text) {
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

TEST_P(CRecordsetEditing, an_edit_that_is_dropped_restores_the_fields) {
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

TEST_P(CRecordsetEditing, a_row_that_is_gone_is_a_failure_and_the_fields_hold_what_was_fetched) {
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

TEST_P(CRecordsetEditing, delete_removes_the_row_and_leaves_none_current) {
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

TEST_P(CRecordsetEditing, a_duplicate_key_fails_and_the_next_insert_works) {
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

TEST_P(CRecordsetEditing, read_only_ways_of_opening_refuse_to_edit) {
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

TEST_P(CRecordsetEditing, a_class_without_a_key_takes_the_one_of_the_catalogue) {
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

TEST_P(CRecordsetEditing, of_equal_rows_without_a_key_one_is_changed) {
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

TEST_P(CRecordsetEditing, a_key_that_is_not_unique_is_a_failure) {
  db.ExecuteSQL("UPDATE THINGS SET FLAG=1");
  Things rs(&db);
  rs.set_key(1U << 4);
  rs.m_strSort = "ID";
  rs.Open();
  rs.Edit();
  rs.name = "x";
  EXPECT_EQ(caught([&] { rs.Update(); }).code, AFX_SQL_ERROR_MULTIPLE_ROWS_AFFECTED);
}

}  // namespace
