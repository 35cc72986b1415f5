// Plan
//   OLE DB: the bits in their order, each edge case; ADO.NET: the providers in any case; the syntaxes are shared and
//   live on
#include "spcbase/datasource/sql_builder.h"

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "spcbase/datasource/definition.h"

namespace {

int kind_for(int internal_option) {
  OLEDBInfo source;
  source.internal_option = internal_option;
  return get_sql_builder(source)->syntax_kind;
}

std::tuple<int, int> choice_for(const char* provider) {
  ADONETDBInfo source;
  source.provider = provider;
  const auto builder = get_sql_builder(source);
  return {builder->syntax_kind, builder->is_oracle};
}

TEST(GetSqlBuilder, of_a_new_definition_before_its_facts_are_learnt_is_of_kind_0) {
  EXPECT_EQ(get_sql_builder(OLEDBInfo())->syntax_kind, 0);
  EXPECT_EQ(get_sql_builder(OLEDBInfo())->is_oracle, 0);
}

TEST(GetSqlBuilder, takes_the_first_bit_that_decides) {
  EXPECT_EQ(kind_for(3), 0) << "escape clauses win over ANSI SQL";
  EXPECT_EQ(kind_for(2), 1);
  EXPECT_EQ(kind_for(6), 1);
  EXPECT_EQ(kind_for(4), 3);
  EXPECT_EQ(kind_for(8), 0) << "the new types of dates play no part";
  EXPECT_EQ(kind_for(5), 0);
  EXPECT_EQ(kind_for(12), 3);
}

TEST(GetSqlBuilder, never_gives_kind_2) {
  for (int bits = 0; bits < 16; ++bits)
    EXPECT_NE(kind_for(bits), 2) << bits;
}

TEST(GetSqlBuilder, knows_the_providers_in_any_case_of_letters) {
  EXPECT_EQ(choice_for("System.Data.Odbc"), std::tuple(0, 0));
  EXPECT_EQ(choice_for("system.data.odbc"), std::tuple(0, 0));
  EXPECT_EQ(choice_for("Oracle.ManagedDataAccess.Client"), std::tuple(1, 1));
  EXPECT_EQ(choice_for("ORACLE.MANAGEDDATAACCESS.CLIENT"), std::tuple(1, 1));
  EXPECT_EQ(choice_for("Oracle.DataAccess.Client"), std::tuple(1, 1));
}

TEST(GetSqlBuilder, of_any_other_provider_is_of_kind_1_and_not_oracle) {
  EXPECT_EQ(choice_for(""), std::tuple(1, 0));
  EXPECT_EQ(choice_for("System.Data.SqlClient"), std::tuple(1, 0));
  EXPECT_EQ(choice_for("Oracle.DataAccess.Client "), std::tuple(1, 0)) << "the whole name counts";
}

template <class Definition>
class BuilderOf : public testing::Test {};
using Kinds = testing::Types<OLEDBInfo, ADONETDBInfo>;
TYPED_TEST_SUITE(BuilderOf, Kinds);

TYPED_TEST(BuilderOf, keeps_the_syntax_alive_when_the_definition_is_gone) {
  auto source = std::make_unique<TypeParam>();
  source->syntax_info = std::make_shared<UserDefinedSyntaxInfo>();
  source->syntax_info->concatenation = "&";
  const std::weak_ptr<UserDefinedSyntaxInfo> syntax = source->syntax_info;
  const auto builder = get_sql_builder(*source);
  source.reset();
  ASSERT_FALSE(syntax.expired());
  EXPECT_EQ(builder->user_syntax, syntax.lock()) << "shared, not copied";
  EXPECT_EQ(builder->user_syntax->concatenation, "&");
}

TYPED_TEST(BuilderOf, has_a_new_default_syntax_each_time_and_none_of_the_users_unless_there_is_one) {
  const TypeParam source;
  const auto first = get_sql_builder(source);
  const auto second = get_sql_builder(source);
  EXPECT_EQ(first->user_syntax, nullptr);
  ASSERT_NE(first->default_syntax, nullptr);
  EXPECT_NE(first->default_syntax, second->default_syntax);
  EXPECT_EQ(*first->default_syntax, *get_default_user_defined_syntax_info());
}

}  // namespace
