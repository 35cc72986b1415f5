// Plan
//   lift_literals: numbers and texts become slots; what only looks like a value stays       -> the table of shapes
//   values of slots, doubled apostrophes, hostile texts                                      -> values_...,
//   a_doubled_... LiftFrom::where leaves the select list alone                                            ->
//   only_behind_where quote_names, double_literal_backslashes                                                  -> their
//   own suites
#include "spcbase/platform/database/literal_lift.h"

#include <gtest/gtest.h>

namespace {

using spcdb::double_literal_backslashes;
using spcdb::lift_literals;
using spcdb::LiftedLiterals;
using spcdb::LiftedSlot;
using spcdb::LiftFrom;
using spcdb::quote_names;

std::string shape_of(std::string_view given, LiftFrom from = LiftFrom::beginning) {
  std::string shape;
  LiftedLiterals literals;
  lift_literals(given, from, shape, literals);
  return shape;
}

LiftedLiterals literals_of(std::string_view given) {
  std::string shape;
  LiftedLiterals literals;
  lift_literals(given, LiftFrom::beginning, shape, literals);
  return literals;
}

struct ShapeRow {
  int line;
  const char* given;
  const char* shape;
};

constexpr ShapeRow shape_rows[] = {
    {__LINE__, "SAMPID = 17", "SAMPID = ?"},
    {__LINE__, "SAMPID=17 AND CHRTID=3 AND PIECENO=1", "SAMPID=? AND CHRTID=? AND PIECENO=?"},
    {__LINE__, "NAME='O''Hara' AND LTYPE='SAMPLE'", "NAME=? AND LTYPE=?"},
    {__LINE__, "CHRTID IN (1,2,33)", "CHRTID IN (?,?,?)"},
    {__LINE__, "A = -5", "A = -?"},
    {__LINE__, "A > 1.5 OR A < .25 OR A = 1e3 OR A = 2.E-2", "A > ? OR A < ? OR A = ? OR A = ?"},
    {__LINE__, "[COL 1]=1 AND \"C2\"=2 AND `C3`=3", "[COL 1]=? AND \"C2\"=? AND `C3`=?"},
    {__LINE__, "[A]]1]=1", "[A]]1]=?"},
    {__LINE__, "C1=C2 AND T1.C3=4", "C1=C2 AND T1.C3=?"},
    {__LINE__, "[CSVALUE].[NAME] = ? AND LABELID = 4", "[CSVALUE].[NAME] = ? AND LABELID = ?"},
    {__LINE__, "A IS NULL", "A IS NULL"},
    {__LINE__, "A=1 ORDER BY 2, 3", "A=? ORDER BY 2, 3"},
    {__LINE__, "A IN (SELECT B FROM T GROUP BY 1) AND C=7", "A IN (SELECT B FROM T GROUP BY 1) AND C=?"},
    {__LINE__, "A=CAST('x' AS VARCHAR(10)) AND B=CAST(5 AS DECIMAL(10,2))",
     "A=CAST(? AS VARCHAR(10)) AND B=CAST(? AS DECIMAL(10,2))"},
    {__LINE__, "D={ts '2024-01-02 03:04:05'} AND E=1", "D={ts '2024-01-02 03:04:05'} AND E=?"},
    {__LINE__, "D=DATE '2024-01-02' AND N=N'x' AND B=X'FF'", "D=DATE '2024-01-02' AND N=N'x' AND B=X'FF'"},
    {__LINE__, "NAME LIKE 'a\\_%' ESCAPE '\\'", "NAME LIKE ? ESCAPE '\\'"},
    {__LINE__, "A=1 -- not 'this' 2\n AND B=2", "A=? -- not 'this' 2\n AND B=?"},
    {__LINE__, "A=1 /* 'nor' 3 */ AND B=2", "A=? /* 'nor' 3 */ AND B=?"},
    {__LINE__, "A=99999999999999999999", "A=99999999999999999999"},
    {__LINE__, "A=0x1F AND B=12abc", "A=0x1F AND B=12abc"},
    {__LINE__, "A='never closed", "A='never closed"},
    {__LINE__, "A='it''s open", "A='it''s open"},
    {__LINE__, "A='", "A='"},
    {__LINE__, "A=''", "A=?"},
    {__LINE__, "NAME='Größe Ω' AND GRÖSSE1=1", "NAME=? AND GRÖSSE1=?"},
    {__LINE__, "", ""},
};

TEST(LiftLiterals, makes_one_shape_of_conditions_that_differ_in_values_alone) {
  for (const auto& row : shape_rows)
    EXPECT_EQ(shape_of(row.given), row.shape) << "row at line " << row.line;
}

TEST(LiftLiterals, only_behind_where_in_a_whole_statement) {
  EXPECT_EQ(shape_of("SELECT 'a', 1 FROM T WHERE A='b' AND B=2", LiftFrom::where),
            "SELECT 'a', 1 FROM T WHERE A=? AND B=?");
  EXPECT_EQ(shape_of("SELECT SERVERPROPERTY('edition')", LiftFrom::where), "SELECT SERVERPROPERTY('edition')");
}

TEST(LiftLiterals, values_come_in_the_order_of_their_places) {
  const std::string given = "A=17 AND B='text' AND C=? AND D=2.5 AND E='it''s'";
  const auto literals = literals_of(given);
  ASSERT_EQ(literals.slots.size(), 5U);
  EXPECT_TRUE(literals.any_lifted);
  EXPECT_EQ(literals.value_of(literals.slots[0], given).integer, 17);
  EXPECT_EQ(literals.value_of(literals.slots[1], given).text, "text");
  EXPECT_EQ(literals.slots[2].source, LiftedSlot::Source::host);
  EXPECT_EQ(literals.value_of(literals.slots[3], given).real, 2.5);
  EXPECT_EQ(literals.value_of(literals.slots[4], given).text, "it's");
}

TEST(LiftLiterals, a_doubled_apostrophe_is_one_and_nothing_else_is_special) {
  const std::string given = "A='''' AND B='a\\' AND C='x\"`[]?--/*' AND D='''a''b'''";
  const auto literals = literals_of(given);
  ASSERT_EQ(literals.slots.size(), 4U);
  EXPECT_EQ(literals.value_of(literals.slots[0], given).text, "'");
  EXPECT_EQ(literals.value_of(literals.slots[1], given).text, "a\\");
  EXPECT_EQ(literals.value_of(literals.slots[2], given).text, "x\"`[]?--/*");
  EXPECT_EQ(literals.value_of(literals.slots[3], given).text, "'a'b'");
}

TEST(LiftLiterals, keeps_integers_of_64_bits_whole) {
  const std::string given = "A=9223372036854775807 AND B=0";
  const auto literals = literals_of(given);
  ASSERT_EQ(literals.slots.size(), 2U);
  EXPECT_EQ(literals.value_of(literals.slots[0], given).integer, INT64_MAX);
  EXPECT_EQ(literals.value_of(literals.slots[1], given).integer, 0);
}

TEST(LiftLiterals, appends_to_what_the_shape_holds_already) {
  std::string shape = "SELECT A FROM T WHERE ";
  LiftedLiterals literals;
  lift_literals("B=1", LiftFrom::beginning, shape, literals);
  EXPECT_EQ(shape, "SELECT A FROM T WHERE B=?");
}

TEST(QuoteNames, replaces_brackets_outside_of_literals_names_and_comments) {
  EXPECT_EQ(quote_names("SELECT [A],[T].[B] FROM [T] WHERE C='[x]' /* [y] */", '`', '`'),
            "SELECT `A`,`T`.`B` FROM `T` WHERE C='[x]' /* [y] */");
  EXPECT_EQ(quote_names("SELECT \"[A]\" FROM T -- [z]", '`', '`'), "SELECT \"[A]\" FROM T -- [z]");
  EXPECT_EQ(quote_names("SELECT [A] FROM T", '[', ']'), "SELECT [A] FROM T");
}

TEST(DoubleLiteralBackslashes, doubles_them_in_literals_alone) {
  EXPECT_EQ(double_literal_backslashes("A LIKE ? ESCAPE '\\' AND `b\\` = 'c''\\d'"),
            "A LIKE ? ESCAPE '\\\\' AND `b\\` = 'c''\\\\d'");
}

}  // namespace
