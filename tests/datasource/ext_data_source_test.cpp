// Plan
//   letting go: whom it deletes
//   copying: each row of its table, shared and deep, of another holder and of itself
//   holders that share what another one owns
// The definitions here count themselves, so a test sees which of them live.
#include <gtest/gtest.h>

#include "spcbase/datasource/definition.h"
#include "tests/datasource/definition_fields.h"

namespace {

using test_support::full_definition;

// How many of the counted definitions live.
int& living() {
  static int count = 0;
  return count;
}

template <class Info>
class Counted : public Info {
 public:
  Counted() : Info(full_definition<Info>()) { ++living(); }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() override { --living(); }
};

void share(ExtDataSourceInfo& holder, DataSourceInfoBase* info, int kind) {
  holder.info = info;
  holder.kind = kind;
  holder.owned = false;
}

template <class Info>
void own(ExtDataSourceInfo& holder) {
  share(holder, new Counted<Info>, Info::kind);
  holder.owned = true;
}

void expect_empty(const ExtDataSourceInfo& holder) {
  EXPECT_EQ(holder.info, nullptr);
  EXPECT_EQ(holder.kind, -1);
  EXPECT_FALSE(holder.owned);
}

// Whether a holder owns a full copy of a definition that is another object.
template <class Info>
void expect_copy(const ExtDataSourceInfo& holder, const DataSourceInfoBase* original) {
  EXPECT_TRUE(holder.owned);
  EXPECT_EQ(holder.kind, Info::kind);
  EXPECT_NE(holder.info, original);
  const auto* const copy = dynamic_cast<const Info*>(holder.info);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(test_support::fields_of(*copy), test_support::fields_of(full_definition<Info>()));
}

template <class Info>
class ExtDataSource : public testing::Test {
 protected:
  ~ExtDataSource() override { EXPECT_EQ(living(), 0) << "a definition was not deleted, or twice"; }
};
using Kinds = testing::Types<OLEDBInfo, ADONETDBInfo>;
TYPED_TEST_SUITE(ExtDataSource, Kinds, );

TYPED_TEST(ExtDataSource, starts_empty) { expect_empty(ExtDataSourceInfo()); }

TYPED_TEST(ExtDataSource, lets_go_of_what_it_owns_by_deleting_it) {
  ExtDataSourceInfo holder;
  own<TypeParam>(holder);
  EXPECT_EQ(living(), 1);
  holder.release();
  EXPECT_EQ(living(), 0);
  expect_empty(holder);
  holder.release();
  expect_empty(holder);
}

TYPED_TEST(ExtDataSource, deletes_what_it_owns_at_its_own_end) {
  {
    ExtDataSourceInfo holder;
    own<TypeParam>(holder);
  }
  EXPECT_EQ(living(), 0);
}

TYPED_TEST(ExtDataSource, lets_go_of_what_it_shares_and_of_an_unknown_kind_without_deleting) {
  Counted<TypeParam> info;
  ExtDataSourceInfo holder;
  share(holder, &info, TypeParam::kind);
  holder.release();
  expect_empty(holder);
  for (const int kind : {-1, 2}) {
    share(holder, &info, kind);
    holder.owned = true;
    holder.release();
    expect_empty(holder);
  }
  EXPECT_EQ(living(), 1);
}

TYPED_TEST(ExtDataSource, plain_copy_onto_itself_does_nothing) {
  ExtDataSourceInfo holder;
  own<TypeParam>(holder);
  const DataSourceInfoBase* const info = holder.info;
  const ExtDataSourceInfo& same = holder;
  holder = same;
  EXPECT_EQ(holder.info, info);
  EXPECT_TRUE(holder.owned);
  Counted<TypeParam> shared;
  ExtDataSourceInfo sharing;
  share(sharing, &shared, TypeParam::kind);
  const ExtDataSourceInfo& same_sharing = sharing;
  sharing = same_sharing;
  EXPECT_EQ(sharing.info, &shared);
  EXPECT_FALSE(sharing.owned);
}

TYPED_TEST(ExtDataSource, plain_copy_of_a_sharing_one_shares_and_neither_deletes) {
  Counted<TypeParam> info;
  {
    ExtDataSourceInfo source;
    share(source, &info, TypeParam::kind);
    ExtDataSourceInfo target;
    own<TypeParam>(target);
    target = source;
    EXPECT_EQ(living(), 1);
    EXPECT_EQ(target.info, &info);
    EXPECT_EQ(target.kind, TypeParam::kind);
    EXPECT_FALSE(target.owned);
    EXPECT_EQ(source.info, &info);
    const ExtDataSourceInfo third(source);
    EXPECT_EQ(third.info, &info);
    EXPECT_FALSE(third.owned);
  }
  EXPECT_EQ(living(), 1);
}

TYPED_TEST(ExtDataSource, plain_copy_of_an_empty_one_that_does_not_own_takes_over_its_kind) {
  ExtDataSourceInfo source;
  share(source, nullptr, TypeParam::kind);
  ExtDataSourceInfo target;
  own<TypeParam>(target);
  target = source;
  EXPECT_EQ(target.info, nullptr);
  EXPECT_EQ(target.kind, TypeParam::kind);
  EXPECT_FALSE(target.owned);
}

TYPED_TEST(ExtDataSource, plain_copy_of_an_owner_of_nothing_is_empty) {
  ExtDataSourceInfo source;
  source.owned = true;
  source.kind = TypeParam::kind;
  ExtDataSourceInfo target;
  own<TypeParam>(target);
  target = source;
  expect_empty(target);
}

TYPED_TEST(ExtDataSource, plain_copy_of_an_owner_owns_a_copy) {
  ExtDataSourceInfo source;
  own<TypeParam>(source);
  ExtDataSourceInfo target;
  own<TypeParam>(target);
  target = source;
  EXPECT_EQ(living(), 1);
  expect_copy<TypeParam>(target, source.info);
  expect_copy<TypeParam>(ExtDataSourceInfo(source), source.info);
  EXPECT_TRUE(source.owned);
}

TYPED_TEST(ExtDataSource, deep_copy_onto_itself_of_an_owner_does_nothing) {
  ExtDataSourceInfo holder;
  own<TypeParam>(holder);
  const DataSourceInfoBase* const info = holder.info;
  holder.clone(holder);
  EXPECT_EQ(holder.info, info);
  EXPECT_TRUE(holder.owned);
  EXPECT_EQ(living(), 1);
}

TYPED_TEST(ExtDataSource, deep_copy_onto_itself_of_an_empty_one_gets_kind_1_on_purpose) {
  ExtDataSourceInfo holder;
  holder.clone(holder);
  EXPECT_EQ(holder.kind, 1);
  EXPECT_EQ(holder.info, nullptr);
  EXPECT_FALSE(holder.owned);
  holder.kind = 0;
  holder.clone(holder);
  EXPECT_EQ(holder.kind, 1);
}

TYPED_TEST(ExtDataSource, deep_copy_onto_itself_makes_its_own_what_was_shared) {
  Counted<TypeParam> info;
  {
    ExtDataSourceInfo holder;
    share(holder, &info, TypeParam::kind);
    holder.clone(holder);
    expect_copy<TypeParam>(holder, &info);
  }
  EXPECT_EQ(living(), 1);
}

TYPED_TEST(ExtDataSource, deep_copy_of_another_owns_a_copy_whoever_owned_the_original) {
  Counted<TypeParam> info;
  ExtDataSourceInfo sharing;
  share(sharing, &info, TypeParam::kind);
  ExtDataSourceInfo target;
  own<TypeParam>(target);
  target.clone(sharing);
  EXPECT_EQ(living(), 1);
  expect_copy<TypeParam>(target, &info);
  EXPECT_FALSE(sharing.owned);
  ExtDataSourceInfo second;
  second.clone(target);
  expect_copy<TypeParam>(second, target.info);
}

TYPED_TEST(ExtDataSource, deep_copy_of_another_that_holds_nothing_is_empty) {
  ExtDataSourceInfo source;
  source.kind = TypeParam::kind;
  ExtDataSourceInfo target;
  own<TypeParam>(target);
  target.clone(source);
  EXPECT_EQ(living(), 0);
  expect_empty(target);
}

TYPED_TEST(ExtDataSource, an_owner_stays_one_when_it_is_given_what_another_shares_with_it) {
  ExtDataSourceInfo owner;
  own<TypeParam>(owner);
  DataSourceInfoBase* const info = owner.info;
  ExtDataSourceInfo sharing;
  share(sharing, info, TypeParam::kind);
  owner = sharing;
  EXPECT_EQ(owner.info, info);
  EXPECT_TRUE(owner.owned);
  EXPECT_EQ(living(), 1);
}

TYPED_TEST(ExtDataSource, an_owner_may_clone_what_another_shares_with_it) {
  ExtDataSourceInfo owner;
  own<TypeParam>(owner);
  const DataSourceInfoBase* const original = owner.info;
  ExtDataSourceInfo sharing;
  share(sharing, owner.info, TypeParam::kind);
  owner.clone(sharing);
  EXPECT_EQ(living(), 0);
  EXPECT_TRUE(owner.owned);
  EXPECT_EQ(dynamic_cast<const TypeParam*>(owner.info) != nullptr, true);
  EXPECT_EQ(sharing.info, original);
}

TYPED_TEST(ExtDataSource, a_change_of_a_copy_does_not_show_in_the_original) {
  ExtDataSourceInfo source;
  own<TypeParam>(source);
  const ExtDataSourceInfo copy(source);
  copy.info->name = "other";
  EXPECT_EQ(source.info->name, "Warehouse");
}

}  // namespace
