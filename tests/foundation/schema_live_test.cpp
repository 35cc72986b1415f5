// Plan, on SQLite, MariaDB and SQLite's ODBC driver
//   Every class opens on a fresh schema in both ways, and the server's columns have the names of ours, in order
//   A value with quotes and backslashes is found as a parameter -> CRSSearchLabelValue_live.*
//   Texts of 255, 513 and 4000 characters of several bytes come back, one more is refused -> widths_live.*
//   A null in a whole number, a text, a double and a moment -> nulls_live.*
//   Rows of several classes are added, edited and deleted by their keys -> editing_live.*
#include <gtest/gtest.h>

#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/testkit/database_fixture.h"

namespace {

using test_support::ServerKind;

class schema_live : public test_support::DatabaseTest {
 protected:
  template <class Recordset>
  void check_names(Recordset& rs) {
    ASSERT_EQ(rs.GetODBCFieldCount(), static_cast<short>(rs.m_nFields));
    short position = 0;
    std::apply(
        [&](const auto&... column) {
          const auto check = [&](std::string name, coltab::Kind kind) {
            CODBCFieldInfo info;
            rs.GetODBCFieldInfo(position++, info);
            // That driver loses digits of doubles, which are fetched through an expression.
            if (kind == coltab::Kind::real && GetParam() == ServerKind::sqlite_odbc) return;
            name = name.substr(name.rfind('.') + 1);
            std::erase_if(name, [](char c) { return c == '[' || c == ']'; });
            EXPECT_EQ(info.m_strName, name.c_str());
          };
          (check(column.name, column.kind), ...);
        },
        Recordset::columns);
  }

  template <class Recordset, class... More>
  Recordset connected(More... more) {
    if constexpr (std::is_base_of_v<BlobRSHelper, Recordset>)
      return Recordset(&db(), 0);
    else
      return Recordset(&db(), more...);
  }

  template <class Recordset, class... More>
  void check(const char* filter, More... more) {
    SCOPED_TRACE(Recordset::source);
    auto rs = connected<Recordset>(more...);
    if (filter != nullptr) set_rs_where_clause(rs, filter);
    ASSERT_TRUE(open_for_read(rs));
    EXPECT_TRUE(rs.m_bEOF);
    check_names(rs);
    rs.Close();
    ASSERT_TRUE(open_for_update(rs));
    EXPECT_TRUE(rs.m_bEOF);
    check_names(rs);
  }

  template <class... Recordsets>
  void check_all() {
    (check<Recordsets>(nullptr), ...);
  }

  template <class Recordset>
  void check_list() {
    SCOPED_TRACE(Recordset::statement);
    Recordset rs(&db());
    CString sql;
    sql.Format(Recordset::statement, 1L);
    ASSERT_TRUE(open_read_only(rs, sql));
    EXPECT_TRUE(rs.m_bEOF);
    check_names(rs);
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, schema_live, test_support::all_servers(), test_support::server_name);

TEST_P(schema_live, every_class_opens_on_a_fresh_schema_with_its_columns_in_order) {
  check_all<RSNode1, RSNode2, RSExtDB, RSExtDBForDelete, RSExtDBWithOnlyID, RSMOPB, RSPOPB, RSMEXT, RSOBJREV,
            RSOBJREVForAdd, RSOBJREVForApprove, RSOBJREVWithVersion, RSOBJREV_Minimum, RSOBJDAT, RSFullRevisionInfo,
            CRSCharInProfile, CRSLabelInProfile, CRSLabel, CRSStations, CRSUsers, CRSSample, CRSSampleRev, CRSVariable,
            CRSDefectData, CRSDEFTOT, CRSLabelData, CRSValue, CRSValueInLabel, CRSSampleApprove>();
  check<RSMonInNode1>(RSMonInNode1::join);
  check<RSProfInNode1>(RSProfInNode1::join);
  check<RSINI>(nullptr, true);
  check_list<profile_lists::CRSCharInProfile2>();
  check_list<profile_lists::CRSLabelInProfile2>();
  CString filter;
  filter.Format(CRSSearchLabelValue::filter, 1);
  check<CRSSearchLabelValue>(filter.GetString());
}

class CRSSearchLabelValue_live : public test_support::DatabaseTest {
 protected:
  // Whether label 4 is found to have this value, after it was written with CRSValue and CRSValueInLabel.
  bool finds(const char* text) {
    CRSValue value(&db());
    set_rs_where_clause(value, "VALUEID=0");
    EXPECT_TRUE(open_for_update(value));
    value.AddNew();
    value.valueid = 21;
    value.name = text;
    EXPECT_TRUE(value.Update());
    CRSValueInLabel link(&db());
    set_rs_where_clause(link, "LABELID=0 AND VALUEID=0");
    EXPECT_TRUE(open_for_update(link));
    link.AddNew();
    link.labelid = 4;
    link.valueid = 21;
    EXPECT_TRUE(link.Update());
    return search(text) == 21;
  }

  long search(const char* text) {
    CRSSearchLabelValue rs(&db());
    rs.m_strFilter.Format(CRSSearchLabelValue::filter, 4);
    rs.name = text;
    EXPECT_TRUE(open_for_read(rs));
    return rs.m_bEOF ? 0 : rs.valueid;
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, CRSSearchLabelValue_live, test_support::all_servers(), test_support::server_name);

TEST_P(CRSSearchLabelValue_live, finds_a_value_that_holds_a_single_quote) {
  EXPECT_TRUE(finds("operator's \"mark\""));
  EXPECT_EQ(search("operators mark"), 0);
}

TEST_P(CRSSearchLabelValue_live, finds_a_value_that_holds_a_backslash_and_marks_of_its_own) {
  EXPECT_TRUE(finds("a\\b ? %s \xc3\xa4\xe2\x82\xac"));
}

// n characters of two bytes each.
CString wide_text(int n) {
  CString text;
  for (int i = 0; i < n; ++i)
    text += "\xc3\xa4";
  return text;
}

class widths_live : public test_support::DatabaseTest {
 protected:
  Failure refused_label(int length) {
    CRSLabelData rs(&db());
    EXPECT_TRUE(open_for_update(rs));
    rs.AddNew();
    rs.sampid = 2;
    rs.labelid = 1;
    rs.labvalue = wide_text(length);
    const auto outcome = guarded([&] { return rs.Update(); });
    EXPECT_FALSE(outcome.ok());
    return outcome.failure();
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, widths_live, test_support::all_servers(), test_support::server_name);

TEST_P(widths_live, a_text_of_513_takes_513_characters_and_no_more) {
  CRSLabelData rs(&db());
  ASSERT_TRUE(open_for_update(rs));
  rs.AddNew();
  rs.sampid = 1;
  rs.labelid = 1;
  rs.labvalue = wide_text(513);
  EXPECT_TRUE(rs.Update());
  EXPECT_TRUE(requery_rs_for_read(rs, nullptr, true));
  EXPECT_EQ(rs.labvalue, wide_text(513));
  EXPECT_EQ(refused_label(514).failure_class, FailureClass::value_too_long);
}

TEST_P(widths_live, a_text_of_255_takes_255_characters_and_no_more) {
  RSNode1 rs(&db());
  ASSERT_TRUE(open_for_update(rs));
  rs.AddNew();
  rs.nodeid = 1;
  rs.name = wide_text(255);
  EXPECT_TRUE(rs.Update());
  rs.AddNew();
  rs.nodeid = 2;
  rs.name = wide_text(256);
  EXPECT_EQ(guarded([&] { return rs.Update(); }).failure().failure_class, FailureClass::value_too_long);
  EXPECT_TRUE(requery_rs_for_read(rs, "", true));
  EXPECT_EQ(rs.name, wide_text(255));
}

TEST_P(widths_live, a_text_of_4000_takes_4000_characters_and_no_more) {
  RSOBJREVForAdd rs(&db());
  ASSERT_TRUE(open_for_update(rs));
  for (const int length : {4000, 4001}) {
    rs.AddNew();
    rs.objid = length;
    rs.objtype = 1;
    rs.revision = 1;
    rs.creason = wide_text(length);
    const auto outcome = guarded([&] { return rs.Update(); });
    EXPECT_EQ(outcome.ok(), length == 4000);
    if (!outcome.ok()) {
      EXPECT_EQ(outcome.failure().failure_class, FailureClass::value_too_long);
    }
  }
  RSOBJREV back(&db());
  ASSERT_TRUE(open_for_read(back));
  EXPECT_EQ(back.creason, wide_text(4000));
}

TEST_P(widths_live, a_longer_text_that_is_read_is_a_failure_and_never_cut) {
  RSNode1 rs(&db());
  const CString wide = "SELECT 1 AS NODEID, '" + CString('x', 256) + "' AS NAME";
  const auto outcome = guarded([&] { return open_read_only(rs, wide); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().code, AFX_SQL_ERROR_DATA_TRUNCATED);
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::value_too_long);
  const CString fits = "SELECT 1 AS NODEID, '" + CString('x', 255) + "' AS NAME";
  EXPECT_TRUE(open_read_only(rs, fits));
}

class nulls_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, nulls_live, test_support::all_servers(), test_support::server_name);

TEST_P(nulls_live, are_no_failure_and_are_told_apart_from_values) {
  execute("INSERT INTO CSSAMP (SAMPID, PROFID, PROFREV, CTIME) VALUES (1, 0, NULL, NULL)");
  execute("INSERT INTO CSDEFTOT (SAMPID, CHRTID, NFAIL, SSIZE) VALUES (1, 1, NULL, NULL)");
  execute("INSERT INTO CSLDAT (SAMPID, CHRTID, LABELID, PIECENO, LABVALUE) VALUES (1, NULL, 1, NULL, '')");
  CRSSample sample(&db());
  ASSERT_TRUE(open_for_read(sample));
  EXPECT_FALSE(sample.IsFieldNull(&sample.profid));
  EXPECT_TRUE(sample.IsFieldNull(&sample.profrev));
  EXPECT_TRUE(sample.IsFieldNull(&sample.ctime));
  EXPECT_EQ(sample.ctime.year, 0);
  sample.Close();
  CRSDEFTOT total(&db());
  ASSERT_TRUE(open_for_read(total));
  EXPECT_FALSE(total.IsFieldNull(&total.chrtid));
  EXPECT_TRUE(total.IsFieldNull(&total.nfail));
  EXPECT_TRUE(total.IsFieldNull(&total.ssize));
  EXPECT_EQ(total.ssize, 0.0);
  total.Close();
  CRSLabelData label(&db());
  ASSERT_TRUE(open_for_read(label));
  EXPECT_TRUE(label.IsFieldNull(&label.pieceno));
  EXPECT_FALSE(label.IsFieldNull(&label.labvalue));
}

class editing_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, editing_live, test_support::all_servers(), test_support::server_name);

TEST_P(editing_live, a_row_is_found_again_by_its_key_with_nulls_in_it) {
  execute("INSERT INTO CSLDAT (SAMPID, CHRTID, LABELID, PIECENO, LABVALUE) VALUES (1, NULL, 1, NULL, 'a')");
  execute("INSERT INTO CSLDAT (SAMPID, CHRTID, LABELID, PIECENO, LABVALUE) VALUES (1, NULL, 1, 1, 'b')");
  execute("INSERT INTO CSLDAT (SAMPID, CHRTID, LABELID, PIECENO, LABVALUE) VALUES (1, NULL, 2, NULL, 'c')");
  CRSLabelData rs(&db());
  set_rs_where_clause(rs, "LABELID = 1 AND PIECENO IS NULL");
  ASSERT_TRUE(open_for_update(rs));
  rs.Edit();
  rs.labvalue = "changed";
  EXPECT_TRUE(rs.Update());
  EXPECT_EQ(value("SELECT LABVALUE FROM CSLDAT WHERE LABELID = 1 AND PIECENO IS NULL"), "changed");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSLDAT WHERE LABVALUE = 'changed'"), "1");
  rs.Delete();
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSLDAT"), "2");
}

TEST_P(editing_live, a_measured_value_comes_back_to_the_last_bit) {
  CRSVariable rs(&db());
  ASSERT_TRUE(open_for_update(rs));
  int piece = 0;
  const double values[] = {1.0 / 3.0, 0.1 + 0.2, 1.7976931348623157e308, 5e-324, -12.345};
  for (const double one : values) {
    rs.AddNew();
    rs.sampid = 1;
    rs.chrtid = 1;
    rs.pieceno = ++piece;
    rs.varvalue = one;
    EXPECT_TRUE(rs.Update());
  }
  CRSVariable back(&db());
  back.m_strSort = "[PIECENO]";
  ASSERT_TRUE(open_for_read(back));
  for (const double one : values) {
    ASSERT_FALSE(back.m_bEOF);
    EXPECT_EQ(back.varvalue, one);
    back.MoveNext();
  }
  EXPECT_TRUE(back.m_bEOF);
}

TEST_P(editing_live, the_database_assigns_the_id_of_a_revision) {
  RSOBJREVForAdd add(&db());
  ASSERT_TRUE(open_for_update(add));
  add.AddNew();
  add.objid = 5;
  add.objtype = 2;
  add.revision = 1;
  add.cuser = "ann";
  EXPECT_TRUE(add.Update());
  RSOBJREV_Minimum back(&db());
  ASSERT_TRUE(open_for_read(back));
  EXPECT_FALSE(back.IsFieldNull(&back.revid));
  EXPECT_GT(back.revid, 0);
  back.Close();
  RSOBJREVForApprove approve(&db());
  ASSERT_TRUE(open_for_update(approve));
  approve.Edit();
  approve.alevel = 3;
  approve.auser = "bob";
  EXPECT_TRUE(approve.Update());
  EXPECT_EQ(value("SELECT AUSER FROM CSOBJREV WHERE ALEVEL = 3 AND OBJID = 5"), "bob");
}

}  // namespace
