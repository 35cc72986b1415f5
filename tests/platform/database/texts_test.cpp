// The texts that the sessions share: connect texts, moments, numbers, escapes, diagnostics, facts.
#include <gtest/gtest.h>

#include <limits>

#include "spcbase/platform/database/connect_text.h"
#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/moment_text.h"
#include "spcbase/platform/database/quirks.h"
#include "spcbase/platform/database/sql_text.h"
#include "spcbase/platform/database/value_text.h"

namespace {

std::string moment_text(const TIMESTAMP_STRUCT& moment) {
  const auto text = spcdb::format_moment(moment);
  return {text.data(), text.size()};
}

/// SQLSTATE and text of what a call threw.
template <class Act>
std::string failure_of(Act&& act) {
  try {
    act();
  } catch (CDBException* e) {
    const std::string failure(e->m_strStateNativeOrigin.view());
    e->Delete();
    return failure;
  }
  return {};
}

TEST(parse_connect_text, pairs_braces_blanks_and_doubled_braces_are_read) {
  const auto items = spcdb::parse_connect_text(" Driver = {a;b}}c} ; UID=u;;lonely;PWD=");
  ASSERT_EQ(items.size(), 4U);
  EXPECT_EQ(items[0].key, "Driver");
  EXPECT_EQ(items[0].value, "a;b}c");
  EXPECT_EQ(items[1].value, "u");
  EXPECT_EQ(items[2].key, "");
  EXPECT_EQ(items[2].value, "lonely");
  EXPECT_EQ(items[3].key, "PWD");
  EXPECT_EQ(items[3].value, "");
  EXPECT_EQ(spcdb::find_item(items, "uid"), &items[1]);
  EXPECT_EQ(spcdb::find_item(items, "NOSUCH"), nullptr);
}

TEST(parse_connect_text, a_brace_that_is_never_closed_is_told) {
  const auto items = spcdb::parse_connect_text("A={b;C=d");
  ASSERT_EQ(items.size(), 1U);
  EXPECT_FALSE(items[0].closed);
}

TEST(format_moment, three_digits_always_and_the_rest_is_cut) {
  EXPECT_EQ(moment_text({2024, 2, 3, 4, 5, 6, 0}), "2024-02-03 04:05:06.000");
  EXPECT_EQ(moment_text({1, 1, 1, 0, 0, 0, 999999999}), "0001-01-01 00:00:00.999");
}

TEST(is_moment, days_follow_the_calendar) {
  EXPECT_TRUE(spcdb::is_moment({2000, 2, 29, 0, 0, 0, 0}));
  EXPECT_FALSE(spcdb::is_moment({1900, 2, 29, 0, 0, 0, 0}));
  EXPECT_FALSE(spcdb::is_moment({2023, 4, 31, 0, 0, 0, 0}));
  EXPECT_FALSE(spcdb::is_moment({2023, 0, 1, 0, 0, 0, 0}));
  EXPECT_FALSE(spcdb::is_moment({2023, 1, 1, 0, 60, 0, 0}));
  EXPECT_FALSE(spcdb::is_moment({2023, 1, 1, 0, 0, 0, 1000000000}));
  EXPECT_FALSE(spcdb::is_moment({}));
}

TEST(parse_moment, a_text_that_is_none_leaves_the_target_alone) {
  TIMESTAMP_STRUCT moment{2024, 1, 1, 0, 0, 0, 0};
  EXPECT_FALSE(spcdb::parse_moment("2024-02-03 04:05:06.1234567890", moment)) << "more than nine digits";
  EXPECT_EQ(moment.month, 1);
  EXPECT_TRUE(spcdb::parse_moment("2024-02-03T04:05:06.000000001", moment));
  EXPECT_EQ(moment.fraction, 1U);
}

TEST(translate_odbc_escapes, moments_take_the_stored_form_and_quoted_braces_stay) {
  EXPECT_EQ(spcdb::translate_odbc_escapes("A={ts '2024-02-03 04:05:06'} AND B={ D'2024-02-03' }"),
            "A='2024-02-03 04:05:06.000' AND B='2024-02-03 00:00:00.000'");
  EXPECT_EQ(spcdb::translate_odbc_escapes("A={t '04:05:06'}"), "A='04:05:06'");
  for (const char* text : {"'{ts ''x''}'", "[{d '2024-01-01'}]", "-- {d '2024-01-01'}\n", "{fn NOW()}", "{ts ?}", "{"})
    EXPECT_EQ(spcdb::translate_odbc_escapes(text), text);
}

TEST(translate_odbc_escapes, an_escape_that_holds_no_moment_is_refused) {
  EXPECT_TRUE(failure_of([] { spcdb::translate_odbc_escapes("{ts 'soon'}"); }).starts_with("State:22007,"));
}

TEST(holds_two_statements, only_a_statement_behind_a_semicolon_counts) {
  for (const char* text : {"SELECT 1", "SELECT 1;", "SELECT 1 ; -- x\n ;;", "SELECT ';', 1", "SELECT `;`, [;], \";\"",
                           "CREATE TRIGGER T BEGIN A; B; END", "-- a;b\nSELECT 1", ""})
    EXPECT_FALSE(spcdb::holds_two_statements(text, false)) << text;
  EXPECT_TRUE(spcdb::holds_two_statements("SELECT 1; SELECT 2", false));
  EXPECT_TRUE(spcdb::holds_two_statements("SELECT '\\'; SELECT '2'", false));
  EXPECT_FALSE(spcdb::holds_two_statements("SELECT '\\'; SELECT 2'", true));
}

TEST(read_whole, a_number_too_large_is_told_from_what_is_none) {
  std::int64_t value = 5;
  EXPECT_EQ(spcdb::read_whole("9223372036854775807", value), spcdb::Whole::yes);
  EXPECT_EQ(spcdb::read_whole("9223372036854775808", value), spcdb::Whole::too_large);
  EXPECT_EQ(spcdb::read_whole("12x", value), spcdb::Whole::no_whole_number);
  EXPECT_EQ(spcdb::read_whole(9223372036854775808.0, value), spcdb::Whole::too_large);
  EXPECT_EQ(spcdb::read_whole(std::numeric_limits<double>::quiet_NaN(), value), spcdb::Whole::no_whole_number);
  EXPECT_EQ(value, std::numeric_limits<std::int64_t>::max());
}

TEST(CDBException, every_record_of_the_driver_stands_on_a_line_of_its_own) {
  spcdb::Diagnostic diagnostic;
  diagnostic.sqlstate = "23000";
  diagnostic.native = 1062;
  diagnostic.text = "Duplicate entry";
  diagnostic.origin = "[ma-3.1.15]";
  diagnostic.further.push_back(diagnostic);
  diagnostic.further.back().sqlstate = "01000";
  diagnostic.further.back().text = "second";
  const CDBException exception(diagnostic);
  EXPECT_EQ(exception.m_nRetCode, -1);
  EXPECT_STREQ(exception.m_strStateNativeOrigin.GetString(),
               "State:23000,Native:1062,Origin:[ma-3.1.15]\nState:01000,Native:1062,Origin:[ma-3.1.15]");
  EXPECT_STREQ(exception.m_strError.GetString(), "Duplicate entry\nsecond");
  char text[8];
  EXPECT_TRUE(exception.GetErrorMessage(text, sizeof text));
  EXPECT_STREQ(text, "Duplica");
}

TEST(AfxThrowDBException, each_code_of_the_layer_has_its_own_text) {
  std::string last;
  for (RETCODE code = AFX_SQL_ERROR; code <= AFX_SQL_ERROR_DATA_TRUNCATED; ++code) {
    try {
      AfxThrowDBException(code);
    } catch (CDBException* e) {
      EXPECT_EQ(e->m_nRetCode, code);
      EXPECT_FALSE(e->m_strError.IsEmpty());
      e->Delete();
    }
  }
  try {
    AfxThrowDBException(AFX_SQL_ERROR_ILLEGAL_MODE, "own text");
  } catch (CDBException* e) {
    EXPECT_STREQ(e->m_strError.GetString(), "own text");
    e->Delete();
  }
}

TEST(quirks_of, known_servers_have_their_facts_and_others_keep_to_the_standard) {
  EXPECT_EQ(spcdb::quirks_of("MariaDB", "libmaodbc.so").one_row, spcdb::OneRow::limit);
  EXPECT_EQ(spcdb::quirks_of("SQLite", "sqlite3odbc.so").quote_open, '`');
  EXPECT_EQ(spcdb::quirks_of("PostgreSQL", "psqlodbcw.so").one_row, spcdb::OneRow::ctid);
  EXPECT_EQ(spcdb::quirks_of("Microsoft SQL Server", "libtdsodbc.so").one_row, spcdb::OneRow::top);
  EXPECT_EQ(spcdb::quirks_of("Oracle", "libsqora.so").one_row, spcdb::OneRow::rownum);
  const auto other = spcdb::quirks_of("Something", "else.so");
  EXPECT_EQ(other.quote_open, '"');
  EXPECT_TRUE(other.double_expression.empty());
  EXPECT_FALSE(other.backslash_escapes);
  EXPECT_EQ(other.one_row, spcdb::OneRow::none);
}

}  // namespace
