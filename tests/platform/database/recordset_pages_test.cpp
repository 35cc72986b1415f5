// Plan
//   a read in pages: every row once, behind keys of one and of several columns, with parameters; what it refuses
#include "spcbase/platform/database/recordset.h"

#include <gtest/gtest.h>

#include "tests/platform/database/recordset_under_test.h"

namespace {

using namespace database_test;

class CRecordsetPages : public RecordsetTest {};
INSTANTIATE_TEST_SUITE_P(, CRecordsetPages, all_servers, server_name);

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

TEST_P(CRecordsetPages, a_read_in_pages_gives_every_row_once) {
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

TEST_P(CRecordsetPages, a_read_in_pages_goes_on_behind_a_key_of_several_columns) {
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

TEST_P(CRecordsetPages, a_read_in_pages_without_a_key_or_with_a_sort_is_refused_where_it_needs_them) {
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

TEST_P(CRecordsetPages, a_parameter_keeps_its_place_in_every_page) {
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

}  // namespace
