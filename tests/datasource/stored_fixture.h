/// Stored definitions of both kinds on each kind of server: a test is written once and runs four times.
///
///     TYPED_TEST(Removing, marks_the_row) {
///       this->create(7);
///       this->read(7)->remove(&this->db());
///       EXPECT_EQ(this->value("SELECT VFLG FROM CSEXDB"), "D");
///     }
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "spcbase/datasource/definition.h"
#include "spcbase/datasource/stored.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/scripted_session.h"
#include "tests/support/hex_bytes.h"
#include "tests/support/row_texts.h"

namespace test_support {

/// What has another name for each kind.
template <class Definition>
struct OfKind;

template <>
struct OfKind<OLEDBInfo> {
  using Other = ADONETDBInfo;
  static constexpr auto list = &get_all_ole_db;
  static constexpr auto list_ids = &get_all_ole_db_id;
  static constexpr auto rewrite_all = &read_and_save_all_ole_db;
  static constexpr const char* name = "ole_db";
};

template <>
struct OfKind<ADONETDBInfo> {
  using Other = OLEDBInfo;
  static constexpr auto list = &get_all_adonet_db;
  static constexpr auto list_ids = &get_all_adonet_db_id;
  static constexpr auto rewrite_all = &read_and_save_all_adonet_db;
  static constexpr const char* name = "adonet";
};

template <class Info, ServerKind server_kind>
struct StoredCase {
  using Definition = Info;
  static constexpr ServerKind server = server_kind;
};

using StoredCases =
    testing::Types<StoredCase<OLEDBInfo, ServerKind::sqlite>, StoredCase<OLEDBInfo, ServerKind::mariadb>,
                   StoredCase<ADONETDBInfo, ServerKind::sqlite>, StoredCase<ADONETDBInfo, ServerKind::mariadb>>;

struct StoredCaseNames {
  template <class Case>
  static std::string GetName(int) {
    return std::string(OfKind<typename Case::Definition>::name) + "_on_" + name_of(Case::server);
  }
};

/// Everything that a definition holds in one text, its time apart.
template <class Definition>
std::string text_of(const Definition& definition) {
  return std::string(definition.get_xml(true, false).view());
}

/// "2024-03-15 08:30:00"; "null" for no time.
inline std::string text_of(const COleDateTime& moment) {
  return moment.GetStatus() == COleDateTime::null ? "null" : moment.Format("%Y-%m-%d %H:%M:%S").GetString();
}

/// A definition that holds something of its own in every field.
template <class Definition>
Definition sample_definition(int id) {
  Definition definition;
  definition.id = id;
  definition.name = "Warehouse";
  definition.connection_string = "DSN=warehouse;UID=spc;PWD=Geheim 1";
  definition.description = "what is there\r\nand what is not";
  definition.type = "stock";
  definition.flag2 = -5;
  definition.quote_schema = false;
  definition.quote_column = false;
  definition.version = 3;
  definition.catalog_separator = ".";
  definition.schema_separator = "!";
  definition.table_separator = ":";
  definition.quote_prefix = "[";
  definition.quote_suffix = "]";
  definition.syntax_info = std::make_shared<UserDefinedSyntaxInfo>();
  definition.syntax_info->concatenation = "&";
  if constexpr (requires { definition.provider; }) {
    definition.provider = "System.Data.Odbc";
    definition.default_command_timeout = 30;
  } else {
    definition.option = 9;
    definition.internal_option = 6;
  }
  return definition;
}

template <class Case>
class StoredTest : public testing::Test {
 protected:
  using Definition = typename Case::Definition;
  using Kind = OfKind<Definition>;
  using Other = typename Kind::Other;
  using Definitions = std::vector<std::shared_ptr<Definition>>;
  static constexpr ServerKind server = Case::server;

  StoredTest() { db_.OpenEx(database_.connect_text().c_str()); }

  CDatabaseEx& db() { return db_; }
  SchemaDatabase& database() { return database_; }
  void execute(const std::string& statement) { database_.execute(statement); }
  std::string value(const std::string& statement) { return database_.value(statement); }
  std::vector<std::string> rows(const std::string& statement) { return row_texts(database_, statement); }
  /// Every row and column that the functions could touch, one line each.
  std::vector<std::string> all_rows() {
    auto all = rows("SELECT EXDBID, NAME, DESCR, TYPE, FLG1, FLG2, MTIME, VFLG, DATA FROM CSEXDB ORDER BY EXDBID");
    for (const char* other : {"SELECT EXDBID, USERID FROM CSUINEDB ORDER BY EXDBID, USERID",
                              "SELECT EXDBID, GROUPID FROM CSGINEDB ORDER BY EXDBID, GROUPID",
                              "SELECT GROUPID, USERID FROM CSUSGP ORDER BY GROUPID, USERID",
                              "SELECT NODEID, NAME FROM CSNODE ORDER BY NODEID"})
      for (std::string& row : rows(other))
        all.push_back(std::move(row));
    return all;
  }

  std::unique_ptr<CDatabaseEx> second_connection() {
    auto other = std::make_unique<CDatabaseEx>();
    other->OpenEx(database_.connect_text().c_str());
    return other;
  }

  static Definition sample(int id) { return sample_definition<Definition>(id); }
  /// Stores a definition, a sample unless another is given, through the function under test.
  template <class Info>
  COleDateTime create(Info definition) {
    COleDateTime modified;
    Info::create(&db(), 0, definition, modified);
    return modified;
  }
  COleDateTime create(int id) { return create(sample(id)); }
  /// Puts a row in its place as another program would.
  void insert_row(int id, const std::string& data, const std::string& flag = "NULL", int kind = Definition::kind,
                  const std::string& time = "'2024-07-01 12:00:00'") {
    execute("INSERT INTO CSEXDB (EXDBID, NAME, FLG1, MTIME, VFLG, DATA) VALUES (" + std::to_string(id) + ", 'row', " +
            std::to_string(kind) + ", " + time + ", " + flag + ", " + blob_literal(data) + ")");
  }
  static std::string blob_literal(const std::string& bytes) { return "X'" + hex_of(bytes) + "'"; }

  std::unique_ptr<Definition> read(int id, int maximum_blob_size = 0) {
    return std::unique_ptr<Definition>(Definition::retrieve(&db(), maximum_blob_size, id));
  }
  /// The ids that a user is shown.
  std::vector<int> ids_for(int user) {
    Definitions all;
    COleDateTime newest;
    const int count = Kind::list(&db(), 0, user, all, newest);
    EXPECT_EQ(static_cast<std::size_t>(count), all.size());
    std::vector<int> ids;
    for (const auto& definition : all)
      ids.push_back(definition->id);
    return ids;
  }

 private:
  SchemaDatabase database_{Case::server};
  CDatabaseEx db_;
};

/// The text of what `work` throws; empty when it throws nothing.
template <class Work>
std::string failure_of(Work&& work) {
  const auto outcome = guarded(std::forward<Work>(work));
  return outcome.ok() ? "" : outcome.failure().text.GetString();
}

inline constexpr const char* not_there = "Can not find the specified database connection.";
inline constexpr const char* does_not_open = "Can not open recordset.";

}  // namespace test_support
