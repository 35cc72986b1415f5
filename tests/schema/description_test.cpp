// Plan
//   The catalogue is complete: every table, view and column that the library names -> names_every_column
//   The running numbers are the 27 triples, in order, each counting a key of its table -> running_numbers_*
//   Names lead somewhere: keys, indexes and foreign keys name columns that exist -> keys_name_existing_columns
//   Statements over two tables name columns without a prefix: no column may stand in both -> joined_tables_*
//   Views hide the deletion mark -> views_show_every_column_but_the_deletion_mark
//   A table stands after those it refers to -> a_table_stands_after_those_it_refers_to
#include "schema/description.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace {

using schema::Table;

std::map<std::string, std::set<std::string>> described_columns() {
  std::map<std::string, std::set<std::string>> all;
  for (const schema::RequiredObject& object : schema::required_objects()) {
    for (const std::string_view column : object.columns)
      all[std::string(object.name)].emplace(column);
  }
  return all;
}

const schema::View& view_of(std::string_view name) {
  return *std::ranges::find(schema::views(), name, &schema::View::name);
}

std::vector<std::string_view> shared_columns(std::vector<std::string_view> first,
                                             std::vector<std::string_view> second) {
  std::ranges::sort(first);
  std::ranges::sort(second);
  std::vector<std::string_view> both;
  std::ranges::set_intersection(first, second, std::back_inserter(both));
  return both;
}

std::vector<std::string_view> columns_of_table(std::string_view name) {
  std::vector<std::string_view> columns;
  for (const schema::Column& column : schema::find_table(name)->columns)
    columns.push_back(column.name);
  return columns;
}

TEST(Schema, names_every_column) {
  const auto described = described_columns();
  std::ifstream file(SPCBASE_TEST_DATA "/ddl/named_columns.tsv");
  ASSERT_TRUE(file) << "the list of named columns is missing";
  std::string line;
  int lines = 0;
  while (std::getline(file, line)) {
    std::istringstream words(line);
    std::string object;
    words >> object;
    ASSERT_TRUE(described.contains(object)) << object;
    for (std::string column; words >> column;)
      EXPECT_TRUE(described.at(object).contains(column)) << line;
    ++lines;
  }
  EXPECT_EQ(lines, 60);
}

TEST(Schema, names_no_object_twice) {
  std::set<std::string_view> names;
  for (const schema::RequiredObject& object : schema::required_objects()) {
    EXPECT_TRUE(names.insert(object.name).second) << object.name;
    const std::set<std::string_view> columns(object.columns.begin(), object.columns.end());
    EXPECT_EQ(columns.size(), object.columns.size()) << object.name;
  }
}

TEST(Schema, running_numbers_are_27_and_each_counts_the_key_of_its_table) {
  ASSERT_EQ(schema::running_numbers().size(), 27U);
  std::set<std::string_view> counters;
  for (const schema::RunningNumber& number : schema::running_numbers()) {
    const Table* table = schema::find_table(number.table);
    ASSERT_NE(table, nullptr) << number.table;
    EXPECT_EQ(table->primary_key, std::vector<std::string_view>{number.id_column}) << number.table;
    EXPECT_TRUE(counters.insert(number.counter).second) << number.counter;
    EXPECT_EQ(schema::find_table(number.counter), nullptr) << number.counter;
  }
}

TEST(Schema, running_numbers_stand_in_the_order_of_repair) {
  EXPECT_EQ(schema::running_numbers().front().counter, "CSCHRN");
  EXPECT_EQ(schema::running_numbers().at(9).counter, "CSSPRN");
  EXPECT_EQ(schema::running_numbers().at(25).counter, "CSSERN");
  EXPECT_EQ(schema::running_numbers().back().counter, "CSLOGRN");
}

TEST(Schema, keys_name_existing_columns) {
  for (const Table& table : schema::tables()) {
    for (const std::string_view column : table.primary_key) {
      ASSERT_NE(table.find(column), nullptr) << table.name << "." << column;
      EXPECT_FALSE(table.find(column)->nullable) << table.name << "." << column;
    }
    for (const auto* group : {&table.unique_keys, &table.indexes}) {
      for (const schema::Index& index : *group) {
        for (const std::string_view column : index.columns) {
          EXPECT_NE(table.find(column), nullptr) << index.name << "." << column;
        }
      }
    }
  }
}

TEST(Schema, every_table_has_a_key) {
  for (const Table& table : schema::tables()) {
    EXPECT_FALSE(table.primary_key.empty() && table.unique_keys.empty()) << table.name;
  }
}

TEST(Schema, joined_tables_share_only_the_column_that_joins_them) {
  using Names = std::vector<std::string_view>;
  EXPECT_EQ(shared_columns(columns_of_table("CSCINP"), columns_of(view_of("CSCHRTV"))), Names{"CHRTID"});
  EXPECT_EQ(shared_columns(columns_of_table("CSLINP"), columns_of(view_of("CSLABELV"))), Names{"LABELID"});
  EXPECT_EQ(shared_columns(columns_of_table("CSOBJREV"), columns_of_table("CSREVDAT")), Names{"REVID"});
  EXPECT_EQ(shared_columns(columns_of(view_of("CSMINNV")), columns_of(view_of("CSMONV"))), Names{"MONID"});
  EXPECT_EQ(shared_columns(columns_of(view_of("CSPINNV")), columns_of(view_of("CSPROFV"))), Names{"PROFID"});
}

TEST(Schema, views_show_every_column_but_the_deletion_mark) {
  EXPECT_EQ(schema::views().size(), 12U);
  for (const schema::View& view : schema::views()) {
    ASSERT_NE(schema::find_table(view.table), nullptr) << view.name;
    ASSERT_NE(schema::find_table(view.table)->find("VFLG"), nullptr) << view.name;
    const auto shown = columns_of(view);
    EXPECT_EQ(shown.size() + 1, schema::find_table(view.table)->columns.size()) << view.name;
    EXPECT_EQ(std::ranges::count(shown, "VFLG"), 0) << view.name;
  }
}

TEST(Schema, a_table_stands_after_those_it_refers_to) {
  std::set<std::string_view> before;
  int references = 0;
  for (const Table& table : schema::tables()) {
    for (const schema::ForeignKey& key : table.foreign_keys) {
      EXPECT_TRUE(before.contains(key.target_table)) << key.name;
      ++references;
    }
    before.insert(table.name);
  }
  EXPECT_GE(references, 1);
}

}  // namespace
