// Plan
//   Every builder for every dialect, to the character -> make_*
//   An unknown dialect gives an empty text, but for the bitwise AND -> *_unknown_*
//   Arguments are put in as they are: percent signs, digits behind them, empty and null texts -> takes_*
#include <gtest/gtest.h>

#include <climits>

#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/internal/dialect_table.h"

namespace {

constexpr int unknown_dialects[] = {-1, 4, -2, 100, INT_MAX, INT_MIN};

TEST(make_check_null_function, writes_each_dialect) {
  using dbcheck::make_check_null_function;
  EXPECT_EQ(make_check_null_function(0, "A.B", "0"), "ISNULL(A.B,0)");
  EXPECT_EQ(make_check_null_function(1, "A.B", "0"), "NVL(A.B,0)");
  EXPECT_EQ(make_check_null_function(2, "A.B", "0"), "IIF(ISNULL(A.B), 0, A.B)");
  EXPECT_EQ(make_check_null_function(3, "A.B", "0"), "IFNULL(A.B,0)");
}

TEST(make_to_local_time, writes_each_dialect) {
  using dbcheck::make_to_local_time;
  EXPECT_EQ(make_to_local_time(0, "CTIME"),
            "DATEADD(Hour, DATEDIFF(Hour, GETUTCDATE(), GETDATE()), CAST(CTIME AS DATETIME))");
  EXPECT_EQ(make_to_local_time(1, "CTIME"),
            "CAST(FROM_TZ(CAST(TO_DATE(CTIME, _T('YYYY:MM:DD HH24:MI:SS')) AS TIMESTAMP), _T('GMT')) AT TIME ZONE "
            "SESSIONTIMEZONE AS DATE)");
  EXPECT_EQ(make_to_local_time(2, "CTIME"), "CTIME");
  EXPECT_EQ(make_to_local_time(3, "CTIME"), "CTIME");
}

TEST(make_bitwise_and_expr, writes_each_dialect) {
  using dbcheck::make_bitwise_and_expr;
  EXPECT_EQ(make_bitwise_and_expr(0, "FLAG", "4"), "FLAG & 4");
  EXPECT_EQ(make_bitwise_and_expr(1, "FLAG", "4"), "BITAND(FLAG, 4)");
  EXPECT_EQ(make_bitwise_and_expr(2, "FLAG", "4"), "FLAG BAND 4");
  EXPECT_EQ(make_bitwise_and_expr(3, "FLAG", "4"), "FLAG & 4");
}

TEST(make_bitwise_and_expr, answers_for_an_unknown_dialect_too) {
  for (const int dialect : unknown_dialects)
    EXPECT_EQ(dbcheck::make_bitwise_and_expr(dialect, "FLAG", "4"), "FLAG & 4") << dialect;
}

TEST(make_cast_to_dt_expr, ignores_format_and_function_for_all_but_oracle) {
  using dbcheck::make_cast_to_dt_expr;
  for (const char* format : {static_cast<const char*>(nullptr), "use cast", "use de_to_date", "YYYY"}) {
    for (const bool exists : {false, true}) {
      EXPECT_EQ(make_cast_to_dt_expr(0, exists, "V", format), "CAST(V AS DATETIME)");
      EXPECT_EQ(make_cast_to_dt_expr(2, exists, "V", format), "CDate(V)");
      EXPECT_EQ(make_cast_to_dt_expr(3, exists, "V", format), "CAST(V AS DATETIME)");
    }
  }
}

TEST(make_cast_to_dt_expr, a_format_overrides_the_function_on_oracle) {
  using dbcheck::make_cast_to_dt_expr;
  for (const bool exists : {false, true}) {
    EXPECT_EQ(make_cast_to_dt_expr(1, exists, "V", "use cast"), "CAST(V AS DATE)");
    EXPECT_EQ(make_cast_to_dt_expr(1, exists, "V", "USE Cast"), "CAST(V AS DATE)");
    EXPECT_EQ(make_cast_to_dt_expr(1, exists, "V", "use de_to_date"), "DE_TO_DATE(V)");
    EXPECT_EQ(make_cast_to_dt_expr(1, exists, "V", "Use DE_TO_DATE"), "DE_TO_DATE(V)");
    EXPECT_EQ(make_cast_to_dt_expr(1, exists, "V", "DD.MM.YYYY"), "TO_DATE(V, 'DD.MM.YYYY')");
    EXPECT_EQ(make_cast_to_dt_expr(1, exists, "V", ""), "TO_DATE(V, '')");
    EXPECT_EQ(make_cast_to_dt_expr(1, exists, "V", "use cast "), "TO_DATE(V, 'use cast ')");
  }
}

TEST(make_cast_to_dt_expr, without_a_format_the_function_decides_on_oracle) {
  EXPECT_EQ(dbcheck::make_cast_to_dt_expr(1, true, "V", nullptr), "DE_TO_DATE(V)");
  EXPECT_EQ(dbcheck::make_cast_to_dt_expr(1, false, "V", nullptr), "TO_DATE(V, 'YYYY-MM-DD HH24:MI:SS')");
}

TEST(dbcheck, builders_given_an_unknown_dialect_give_an_empty_text) {
  for (const int dialect : unknown_dialects) {
    EXPECT_TRUE(dbcheck::make_check_null_function(dialect, "A", "B").IsEmpty()) << dialect;
    EXPECT_TRUE(dbcheck::make_to_local_time(dialect, "A").IsEmpty()) << dialect;
    EXPECT_TRUE(dbcheck::make_cast_to_dt_expr(dialect, true, "A", nullptr).IsEmpty()) << dialect;
    EXPECT_TRUE(dbcheck::make_cast_to_dt_expr(dialect, false, "A", "use cast").IsEmpty()) << dialect;
  }
}

TEST(dbcheck, takes_arguments_as_they_are) {
  EXPECT_EQ(dbcheck::make_check_null_function(2, "A % 1 %2 %s", "%1"), "IIF(ISNULL(A % 1 %2 %s), %1, A % 1 %2 %s)");
  EXPECT_EQ(dbcheck::make_cast_to_dt_expr(1, false, "%2", "%1"), "TO_DATE(%2, '%1')");
  EXPECT_EQ(dbcheck::make_check_null_function(0, "", ""), "ISNULL(,)");
  EXPECT_EQ(dbcheck::make_bitwise_and_expr(1, nullptr, nullptr), "BITAND(, )");
}

TEST(dialect_table, has_one_row_for_each_identifier) {
  EXPECT_EQ(dialect::rows.size(), 4U);
  EXPECT_STREQ(dialect::find(0)->probe, "select getdate()");
  EXPECT_STREQ(dialect::find(1)->probe, "select sysdate from dual");
  EXPECT_STREQ(dialect::find(2)->probe, "select date()");
  EXPECT_STREQ(dialect::find(3)->probe, "select curdate()");
  for (const int dialect : unknown_dialects)
    EXPECT_EQ(dialect::find(dialect), nullptr) << dialect;
}

}  // namespace
