// Plan
//   what a new definition holds; what `init` sets and what it leaves alone
//   copies of every field, with a syntax of their own; copying onto itself
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

#include "spcbase/datasource/definition.h"
#include "tests/datasource/definition_fields.h"

namespace {

using test_support::changes;
using test_support::fields_of;
using test_support::full_definition;

// The library alone calls `init`; an explicit instantiation may name what is private.
void call_init(OLEDBInfo& info, bool with_flag2);
void call_init(ADONETDBInfo& info, bool with_flag2);

template <class Info, void (Info::*init)(bool)>
struct OpenInit {
  friend void call_init(Info& info, bool with_flag2) { (info.*init)(with_flag2); }
};
template struct OpenInit<OLEDBInfo, &OLEDBInfo::init>;
template struct OpenInit<ADONETDBInfo, &ADONETDBInfo::init>;

template <class Info>
class Definition : public testing::Test {};
using Kinds = testing::Types<OLEDBInfo, ADONETDBInfo>;
TYPED_TEST_SUITE(Definition, Kinds, );

template <class Info>
void expect_defaults(const Info& info) {
  EXPECT_EQ(info.id, 0);
  EXPECT_EQ(info.flag2, 0);
  EXPECT_EQ(info.modified_time.m_dt, 0);
  EXPECT_EQ(info.modified_time.GetStatus(), COleDateTime::valid);
  EXPECT_TRUE(info.quote_catalog && info.quote_schema && info.quote_table && info.quote_column);
  EXPECT_EQ(info.version, 0);
  EXPECT_FALSE(info.syntax_info);
  for (const CString* text :
       {&info.name, &info.connection_string, &info.description, &info.type, &info.catalog_separator,
        &info.schema_separator, &info.table_separator, &info.quote_prefix, &info.quote_suffix})
    EXPECT_EQ(*text, "");
}

TEST(OLEDBInfo, starts_with_its_defaults) {
  const OLEDBInfo info;
  expect_defaults(info);
  EXPECT_EQ(info.option, 1);
  EXPECT_EQ(info.internal_option, 0);
}

TEST(ADONETDBInfo, starts_with_its_defaults) {
  const ADONETDBInfo info;
  expect_defaults(info);
  EXPECT_EQ(info.provider, "");
  EXPECT_EQ(info.default_command_timeout, -1);
}

TEST(OLEDBInfo, init_sets_flags_options_and_version_and_leaves_strings_and_syntax) {
  OLEDBInfo info = full_definition<OLEDBInfo>();
  const test_support::FieldTexts before = fields_of(info);
  call_init(info, false);
  const std::string flags = "quote_catalog=true | quote_schema=true | quote_table=true | quote_column=true";
  EXPECT_EQ(changes(before, fields_of(info)), flags + " | option=1 | version=0 | internal_option=0");
  call_init(info, true);
  EXPECT_EQ(changes(before, fields_of(info)), "flag2=0 | " + flags + " | option=1 | version=0 | internal_option=0");
}

TEST(ADONETDBInfo, init_sets_flags_provider_timeout_and_version_and_leaves_strings_and_syntax) {
  ADONETDBInfo info = full_definition<ADONETDBInfo>();
  const test_support::FieldTexts before = fields_of(info);
  call_init(info, false);
  const std::string rest =
      "provider= | quote_catalog=true | quote_schema=true | quote_table=true | quote_column=true | version=0 | "
      "default_command_timeout=-1";
  EXPECT_EQ(changes(before, fields_of(info)), rest);
  call_init(info, true);
  EXPECT_EQ(changes(before, fields_of(info)), "flag2=0 | " + rest);
}

TYPED_TEST(Definition, a_copy_has_every_field) {
  const TypeParam info = full_definition<TypeParam>();
  // Every field of the original differs from that of a new one, so a field that was left out would show.
  const test_support::FieldTexts fresh = fields_of(TypeParam());
  const test_support::FieldTexts full = fields_of(info);
  for (std::size_t i = 0; i < full.size(); ++i)
    EXPECT_NE(full.at(i), fresh.at(i)) << full.at(i).first;
  EXPECT_EQ(fields_of(TypeParam(info)), full);
  TypeParam assigned;
  assigned = info;
  EXPECT_EQ(fields_of(assigned), full);
}

TYPED_TEST(Definition, a_copy_has_a_syntax_of_its_own) {
  const TypeParam info = full_definition<TypeParam>();
  const TypeParam copy(info);
  ASSERT_TRUE(copy.syntax_info);
  EXPECT_NE(copy.syntax_info, info.syntax_info);
  copy.syntax_info->concatenation = "+";
  EXPECT_EQ(info.syntax_info->concatenation, "||");
}

TYPED_TEST(Definition, a_copy_of_one_without_syntax_releases_the_one_that_was_there) {
  TypeParam target = full_definition<TypeParam>();
  const std::weak_ptr<UserDefinedSyntaxInfo> syntax = target.syntax_info;
  target = TypeParam();
  EXPECT_FALSE(target.syntax_info);
  EXPECT_TRUE(syntax.expired());
}

TYPED_TEST(Definition, copying_onto_itself_does_nothing) {
  TypeParam info = full_definition<TypeParam>();
  const test_support::FieldTexts before = fields_of(info);
  const UserDefinedSyntaxInfo* const syntax = info.syntax_info.get();
  const TypeParam& same = info;
  info = same;
  EXPECT_EQ(fields_of(info), before);
  EXPECT_EQ(info.syntax_info.get(), syntax);
}

}  // namespace
