// Plan
//   OLE DB     each bit of internal_option by what sets it, the five texts, the version, nothing else changes
//   ADO.NET    the order of the calls, what is learnt, each call failing, no object, the version, answers of null
//   live       both kinds on SQLite, its ODBC driver and MariaDB, and what their builder is then
//   played     SQL Server before and after its new types, Oracle, Access
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "spcbase/datasource/definition.h"
#include "spcbase/datasource/internal/learning.h"
#include "spcbase/datasource/sql_builder.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/testkit/database_fixture.h"
#include "tests/datasource/definition_fields.h"
#include "tests/support/scripted_servers.h"

namespace {

using ADONETSupport::_DbConnection;
using ADONETSupport::_DbSyntaxInfo;
using test_support::changes;
using test_support::fields_of;

int bits_of(DWORD sql_support, bool jet = false, bool new_types = false) {
  OLEDBConnection connection;
  connection.sql_support = sql_support;
  connection.msjet = jet;
  connection.new_datetime_type = new_types;
  OLEDBInfo source;
  source.internal_option = -1;
  source.update_internal_data(connection);
  return source.internal_option;
}

TEST(OLEDBInfoUpdateInternalData, sets_each_bit_by_what_it_stands_for) {
  EXPECT_EQ(bits_of(0), 0);
  EXPECT_EQ(bits_of(0x100), 1);
  EXPECT_EQ(bits_of(0x10), 2);
  EXPECT_EQ(bits_of(0x40), 2);
  EXPECT_EQ(bits_of(0x80), 2);
  EXPECT_EQ(bits_of(0xD0), 2);
  EXPECT_EQ(bits_of(0, true), 4);
  EXPECT_EQ(bits_of(0, false, true), 8);
  EXPECT_EQ(bits_of(0x1D0, true, true), 15);
  EXPECT_EQ(bits_of(~DWORD{0x1D0}), 0) << "no other capability counts";
}

TEST(OLEDBInfoUpdateInternalData, takes_the_five_texts_and_leaves_all_else) {
  OLEDBConnection connection;
  connection.sql_support = 0x100;
  connection.catalog_separator = "c";
  connection.schema_separator = "s";
  connection.table_separator = "t";
  connection.quote_prefix = "[";
  connection.quote_suffix = "]";
  OLEDBInfo source;
  const auto before = fields_of(source);
  source.update_internal_data(connection);
  EXPECT_EQ(changes(before, fields_of(source)),
            "version=4 | internal_option=1 | catalog_separator=c | schema_separator=s | table_separator=t | "
            "quote_prefix=[ | quote_suffix=]");
  OLEDBConnection nothing;
  source.update_internal_data(nothing);
  EXPECT_EQ(changes(before, fields_of(source)), "version=4") << "empty texts are taken too";
}

TEST(OLEDBInfoUpdateInternalData, makes_the_version_4_whatever_it_was) {
  for (const int version : {-1, 0, 1, 2, 3, 4, 5, 99}) {
    OLEDBInfo source;
    source.version = version;
    OLEDBConnection connection;
    source.update_internal_data(connection);
    EXPECT_EQ(source.version, 4);
    EXPECT_TRUE(source.can_ask_for_sql_server_new_datetime_info());
  }
}

TEST(CanAskForSqlServerNewDatetimeInfo, is_false_at_version_1_and_true_at_2) {
  OLEDBInfo source;
  for (const auto& [version, can] : {std::pair{-1, false}, {0, false}, {1, false}, {2, true}, {3, true}, {4, true}}) {
    source.version = version;
    EXPECT_EQ(source.can_ask_for_sql_server_new_datetime_info(), can) << version;
  }
}

/// A syntax object that keeps what it was asked, and fails at a call if it is told to.
class RecordingSyntax final : public _DbSyntaxInfo {
 public:
  explicit RecordingSyntax(int failing_call = 0) : failing_call_(failing_call) {}
  RecordingSyntax(const RecordingSyntax&) = delete;
  RecordingSyntax& operator=(const RecordingSyntax&) = delete;
  ~RecordingSyntax() { EXPECT_EQ(references_, 0U) << "somebody still holds the object"; }

  std::vector<std::string> calls;
  bool answers_null = false;
  _DbConnection* connection = nullptr;

  HRESULT QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override { return --references_; }
  HRESULT get_connection(_DbConnection**) override { return answer("get_connection", nullptr, ""); }
  HRESULT get_catalog_separator(BSTR* text) override { return answer("get_catalog_separator", text, "c"); }
  HRESULT get_schema_separator(BSTR* text) override { return answer("get_schema_separator", text, "s"); }
  HRESULT get_table_separator(BSTR* text) override { return answer("get_table_separator", text, "t"); }
  HRESULT get_quote_prefix(BSTR* text) override { return answer("get_quote_prefix", text, "«"); }
  HRESULT get_quote_suffix(BSTR* text) override { return answer("get_quote_suffix", text, "»"); }
  HRESULT set_connection(_DbConnection* set) override {
    connection = set;
    return answer("set_connection", nullptr, "");
  }

 private:
  /// A failing call leaves a text behind too, which nobody may lose.
  HRESULT answer(const char* call, BSTR* text, const char* says) {
    calls.emplace_back(call);
    if (text != nullptr) *text = answers_null ? nullptr : alloc_sys_string(says);
    return static_cast<int>(calls.size()) == failing_call_ ? E_NOTIMPL : S_OK;
  }

  int failing_call_;
  ULONG references_ = 0;
};

ADONETDBInfo source_with_old_facts() {
  ADONETDBInfo source;
  source.version = 3;
  for (auto* field : {&source.catalog_separator, &source.schema_separator, &source.table_separator,
                      &source.quote_prefix, &source.quote_suffix})
    *field = "old";
  return source;
}

/// Learns from an object; gives the code of the failure, S_OK when there is none.
HRESULT learn(const _com_ptr_t<_DbSyntaxInfo>& syntax, _DbConnection* connection, ADONETDBInfo& source) {
  try {
    learn_names(syntax, connection, source);
  } catch (const _com_error& failure) {
    return failure.Error();
  }
  return S_OK;
}

TEST(ADONETDBInfoUpdateInternalData, asks_in_a_fixed_order_and_leaves_all_else) {
  CDatabase database;
  const auto connection = ADONETSupport::connection_on(database);
  RecordingSyntax syntax;
  ADONETDBInfo source = source_with_old_facts();
  const auto before = fields_of(source);
  EXPECT_EQ(learn(&syntax, connection, source), S_OK);
  EXPECT_EQ(syntax.connection, connection.GetInterfacePtr());
  EXPECT_THAT(syntax.calls, testing::ElementsAre("set_connection", "get_catalog_separator", "get_schema_separator",
                                                 "get_table_separator", "get_quote_prefix", "get_quote_suffix"));
  EXPECT_EQ(changes(before, fields_of(source)),
            "version=0 | catalog_separator=c | schema_separator=s | table_separator=t | quote_prefix=« | "
            "quote_suffix=»");
}

TEST(ADONETDBInfoUpdateInternalData, stops_at_the_first_failing_call_and_keeps_what_it_learnt_before) {
  const char* learnt[] = {"",
                          "",
                          "catalog_separator=c",
                          "catalog_separator=c | schema_separator=s",
                          "catalog_separator=c | schema_separator=s | table_separator=t",
                          "catalog_separator=c | schema_separator=s | table_separator=t | quote_prefix=«"};
  for (int k = 1; k <= 6; ++k) {
    RecordingSyntax syntax(k);
    ADONETDBInfo source = source_with_old_facts();
    const auto before = fields_of(source);
    EXPECT_EQ(learn(&syntax, nullptr, source), E_NOTIMPL) << k;
    EXPECT_EQ(syntax.calls.size(), static_cast<std::size_t>(k));
    EXPECT_EQ(changes(before, fields_of(source)), learnt[k - 1]) << "and the version stays: " << k;
  }
}

TEST(ADONETDBInfoUpdateInternalData, fails_with_0x80004003_without_an_object) {
  ADONETDBInfo source = source_with_old_facts();
  const auto before = fields_of(source);
  EXPECT_EQ(learn(nullptr, nullptr, source), static_cast<HRESULT>(0x80004003U));
  EXPECT_EQ(changes(before, fields_of(source)), "");
}

TEST(ADONETDBInfoUpdateInternalData, takes_null_for_an_empty_text) {
  RecordingSyntax syntax;
  syntax.answers_null = true;
  ADONETDBInfo source = source_with_old_facts();
  EXPECT_EQ(learn(&syntax, nullptr, source), S_OK);
  EXPECT_EQ(source.catalog_separator, "");
  EXPECT_EQ(source.quote_suffix, "");
}

TEST(ADONETDBInfoUpdateInternalData, of_no_connection_fails) {
  _com_ptr_t<_DbConnection> none;
  ADONETDBInfo source = source_with_old_facts();
  try {
    source.update_internal_data(none);
    ADD_FAILURE() << "no failure";
  } catch (const _com_error& failure) {
    EXPECT_EQ(failure.Error(), E_POINTER);
  }
  EXPECT_EQ(source.version, 3);
}

TEST(ADONETDBInfoUpdateInternalData, makes_the_version_0_whatever_it_was) {
  for (const int version : {-1, 0, 1, 4, 99}) {
    RecordingSyntax syntax;
    ADONETDBInfo source;
    source.version = version;
    EXPECT_EQ(learn(&syntax, nullptr, source), S_OK);
    EXPECT_EQ(source.version, 0);
  }
}

/// What both kinds learn from a connection, the bits of the first in front: "3 .||.|`|`".
std::string learnt_from(CDatabase& database) {
  OLEDBConnection facts(database);
  OLEDBInfo ole_db;
  ole_db.update_internal_data(facts);
  auto connection = ADONETSupport::connection_on(database);
  ADONETDBInfo adonet;
  adonet.version = 7;
  adonet.update_internal_data(connection);
  EXPECT_EQ(adonet.version, 0);
  const auto names = [](const auto& source) {
    return source.catalog_separator + "|" + source.schema_separator + "|" + source.table_separator + "|" +
           source.quote_prefix + "|" + source.quote_suffix;
  };
  EXPECT_EQ(names(ole_db), names(adonet));
  EXPECT_EQ(get_sql_builder(ole_db)->syntax_kind, 0) << "who speaks ODBC takes its escape clauses";
  return std::to_string(ole_db.internal_option) + " " + names(ole_db).GetString();
}

class Learning : public test_support::DatabaseTest {};

TEST_P(Learning, finds_the_facts_of_a_live_connection) {
  using test_support::ServerKind;
  switch (GetParam()) {
    case ServerKind::sqlite:
      EXPECT_EQ(learnt_from(db()), "3 |.|.|`|`");
      break;
    case ServerKind::sqlite_odbc:
      EXPECT_EQ(learnt_from(db()), "3 ||.|\"|\"");
      break;
    case ServerKind::mariadb:
      EXPECT_EQ(learnt_from(db()), "3 .||.|`|`");
      break;
  }
}

TEST_P(Learning, fails_when_the_connection_is_closed_in_between) {
  auto connection = ADONETSupport::connection_on(db());
  db().Close();
  ADONETDBInfo source = source_with_old_facts();
  const auto before = fields_of(source);
  try {
    source.update_internal_data(connection);
    ADD_FAILURE() << "no failure";
  } catch (const _com_error& failure) {
    EXPECT_EQ(failure.Error(), E_UNEXPECTED);
  }
  EXPECT_EQ(changes(before, fields_of(source)), "");
}

INSTANTIATE_TEST_SUITE_P(Servers, Learning, test_support::all_servers(), test_support::server_name);

TEST(LearningOfPlayedServers, finds_the_facts_of_each) {
  const auto learnt = [](const test_support::ServerFacts& server) {
    CDatabase database;
    test_support::open_scripted(database, server);
    return learnt_from(database);
  };
  EXPECT_EQ(learnt(test_support::sql_server("09.00.5000")), "3 .|.|.|\"|\"");
  EXPECT_EQ(learnt(test_support::sql_server("10.50.6000")), "11 .|.|.|\"|\"");
  EXPECT_EQ(learnt(test_support::sql_server("15.00.4153")), "11 .|.|.|\"|\"");
  EXPECT_EQ(learnt(test_support::oracle()), "3 |.|.|\"|\"");
  EXPECT_EQ(learnt(test_support::access()), "5 .||.|`|`");
}

}  // namespace
