// Plan
//   syntax object    what it answers on each server; before a connection is set; null arguments; failures; its life
//   connection       texts, numbers, what the source does not tell, closed; null arguments; its life
#include "spcbase/companion/adonet_support.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "spcbase/platform/automation/bstr_t.h"
#include "tests/platform/database/database_under_test.h"
#include "tests/support/scripted_servers.h"

namespace {

using namespace ADONETSupport;
using database_test::Server;
using Getter = HRESULT (_DbSyntaxInfo::*)(BSTR*);

const std::vector<Getter> getters{&_DbSyntaxInfo::get_catalog_separator, &_DbSyntaxInfo::get_schema_separator,
                                  &_DbSyntaxInfo::get_table_separator, &_DbSyntaxInfo::get_quote_prefix,
                                  &_DbSyntaxInfo::get_quote_suffix};

/// The five answers in their order.
std::string names_of(_DbSyntaxInfo& syntax) {
  std::string names;
  for (const auto getter : getters) {
    _bstr_t text;
    EXPECT_EQ((syntax.*getter)(text.GetAddress()), S_OK);
    EXPECT_FALSE(!text) << "an empty text, not null";
    if (!names.empty()) names += '|';
    names += "<" + std::string(to_cstring(text.GetBSTR()).view()) + ">";
  }
  return names;
}

_com_ptr_t<_DbSyntaxInfo> syntax_on(CDatabase& database) {
  auto syntax = create_syntax_info();
  EXPECT_EQ(syntax->set_connection(connection_on(database)), S_OK);
  return syntax;
}

std::string fact(CDatabase& database, unsigned short type, HRESULT expected = S_OK) {
  _bstr_t text;
  EXPECT_EQ(connection_on(database)->get_information(type, text.GetAddress()), expected);
  return std::string(to_cstring(text.GetBSTR()).view());
}

/// A connection that fails with a code or throws.
class BrokenConnection final : public _DbConnection {
 public:
  enum class How { code, bad_alloc, com_error, exception, database_failure, number };

  explicit BrokenConnection(How how) : how_(how) {}

  HRESULT QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }
  HRESULT get_information(unsigned short, BSTR*) override {
    switch (how_) {
      case How::code:
        return E_NOTIMPL;
      case How::bad_alloc:
        throw std::bad_alloc();
      case How::com_error:
        _com_issue_error(E_INVALIDARG);
      case How::exception:
        throw std::runtime_error("broken");
      case How::database_failure:
        AfxThrowDBException(AFX_SQL_ERROR);
      case How::number:
        break;
    }
    throw 7;
  }

  ULONG references = 0;

 private:
  How how_;
};

class AdonetSupportOn : public database_test::DatabaseTest {};

TEST_P(AdonetSupportOn, answers_with_what_the_server_has) {
  const auto names = names_of(*syntax_on(db));
  switch (GetParam()) {
    case Server::sqlite:
      EXPECT_EQ(names, "<>|<.>|<.>|<`>|<`>");
      break;
    case Server::sqlite_odbc:
      EXPECT_EQ(names, "<>|<>|<.>|<\">|<\">");
      break;
    case Server::mariadb:
      EXPECT_EQ(names, "<.>|<>|<.>|<`>|<`>");
      break;
  }
}

TEST_P(AdonetSupportOn, gives_facts_as_texts_and_numbers_as_decimal_texts) {
  EXPECT_EQ(fact(db, 17), on_mariadb() ? "MariaDB" : "SQLite");
  EXPECT_EQ(fact(db, 46), on_mariadb() ? "3" : "2");
  EXPECT_EQ(fact(db, 64999, S_FALSE), "") << "unknown to every driver";
}

TEST_P(AdonetSupportOn, says_that_a_connection_is_not_open) {
  const auto syntax = syntax_on(db);
  const auto connection = connection_on(db);
  db.Close();
  _bstr_t text;
  EXPECT_EQ(connection->get_information(17, text.GetAddress()), E_UNEXPECTED);
  EXPECT_EQ(syntax->get_quote_prefix(text.GetAddress()), E_UNEXPECTED);
  EXPECT_TRUE(!text);
}

INSTANTIATE_TEST_SUITE_P(Servers, AdonetSupportOn, database_test::all_servers, database_test::server_name);

TEST(CreateSyntaxInfo, answers_for_servers_that_are_played) {
  const auto names = [](const test_support::ServerFacts& server) {
    CDatabase database;
    test_support::open_scripted(database, server);
    return names_of(*syntax_on(database));
  };
  EXPECT_EQ(names(test_support::sql_server("15.00.4153")), "<.>|<.>|<.>|<\">|<\">");
  EXPECT_EQ(names(test_support::oracle()), "<>|<.>|<.>|<\">|<\">");
  EXPECT_EQ(names(test_support::access()), "<.>|<>|<.>|<`>|<`>");
}

TEST(CreateSyntaxInfo, gives_an_object_that_fails_until_it_has_a_connection) {
  const auto syntax = create_syntax_info();
  ASSERT_NE(syntax.GetInterfacePtr(), nullptr);
  for (const auto getter : getters) {
    _bstr_t text("before");
    EXPECT_EQ((*syntax.*getter)(text.GetAddress()), E_UNEXPECTED);
    EXPECT_TRUE(!text);
  }
  _com_ptr_t<_DbConnection> connection;
  EXPECT_EQ(syntax->get_connection(&connection), E_UNEXPECTED);
  EXPECT_TRUE(!connection);
}

TEST(CreateSyntaxInfo, gives_an_object_that_refuses_null_arguments) {
  CDatabase database;
  test_support::open_scripted(database, test_support::oracle());
  const auto syntax = syntax_on(database);
  for (const auto getter : getters)
    EXPECT_EQ((*syntax.*getter)(nullptr), E_POINTER);
  EXPECT_EQ(syntax->get_connection(nullptr), E_POINTER);
  EXPECT_EQ(syntax->QueryInterface(IID_IUnknown, static_cast<void**>(nullptr)), E_POINTER);
  EXPECT_EQ(syntax->set_connection(nullptr), E_POINTER);
  EXPECT_EQ(names_of(*syntax), "<>|<.>|<.>|<\">|<\">") << "the connection that was set stays";
}

TEST(CreateSyntaxInfo, gives_an_object_that_holds_its_connection_and_gives_it_back) {
  BrokenConnection first(BrokenConnection::How::code), second(BrokenConnection::How::code);
  {
    const auto syntax = create_syntax_info();
    ASSERT_EQ(syntax->set_connection(&first), S_OK);
    EXPECT_EQ(first.references, 1U);
    _com_ptr_t<_DbConnection> set;
    EXPECT_EQ(syntax->get_connection(&set), S_OK);
    EXPECT_EQ(set.GetInterfacePtr(), &first);
    EXPECT_EQ(first.references, 2U);
    set = nullptr;
    ASSERT_EQ(syntax->set_connection(&second), S_OK);
    EXPECT_EQ(first.references, 0U);
    EXPECT_EQ(second.references, 1U);
  }
  EXPECT_EQ(second.references, 0U);
}

TEST(CreateSyntaxInfo, gives_an_object_that_lets_no_exception_out) {
  using How = BrokenConnection::How;
  for (const auto& [how, code] : {std::pair{How::code, E_NOTIMPL},
                                  {How::bad_alloc, E_OUTOFMEMORY},
                                  {How::com_error, E_INVALIDARG},
                                  {How::exception, E_FAIL},
                                  {How::database_failure, E_FAIL},
                                  {How::number, E_FAIL}}) {
    BrokenConnection broken(how);
    const auto syntax = create_syntax_info();
    ASSERT_EQ(syntax->set_connection(&broken), S_OK);
    for (const auto getter : getters) {
      _bstr_t text;
      const bool asks = getter != &_DbSyntaxInfo::get_table_separator;
      EXPECT_EQ((*syntax.*getter)(text.GetAddress()), asks ? code : S_OK);
      EXPECT_EQ(!text, asks);
    }
  }
}

TEST(CreateSyntaxInfo, gives_an_object_that_fails_where_nobody_tells_how_names_are_quoted) {
  auto script = test_support::script_of(test_support::oracle());
  script->information_text(29, -1);
  CDatabase database;
  test_support::open_scripted(database, script);
  _bstr_t text;
  EXPECT_EQ(syntax_on(database)->get_quote_prefix(text.GetAddress()), E_FAIL);
}

TEST(CreateSyntaxInfo, gives_a_new_object_each_time_that_knows_its_interface) {
  const auto syntax = create_syntax_info();
  EXPECT_NE(syntax.GetInterfacePtr(), create_syntax_info().GetInterfacePtr());
  const _com_ptr_t<IUnknown> unknown(syntax);
  const _com_ptr_t<_DbSyntaxInfo> again(unknown);
  EXPECT_EQ(again.GetInterfacePtr(), syntax.GetInterfacePtr());
  EXPECT_TRUE(!_com_ptr_t<_DbConnection>(unknown)) << "it is no connection";
}

TEST(ConnectionOn, refuses_null_arguments_and_knows_its_interface) {
  CDatabase database;
  const auto connection = connection_on(database);
  EXPECT_EQ(connection->get_information(17, nullptr), E_POINTER);
  EXPECT_EQ(connection->QueryInterface(IID_IUnknown, static_cast<void**>(nullptr)), E_POINTER);
  const _com_ptr_t<IUnknown> unknown(connection);
  EXPECT_EQ(_com_ptr_t<_DbConnection>(unknown).GetInterfacePtr(), connection.GetInterfacePtr());
  EXPECT_TRUE(!_com_ptr_t<_DbSyntaxInfo>(unknown));
}

TEST(ConnectionOn, serves_a_database_that_is_opened_later) {
  CDatabase database;
  const auto connection = connection_on(database);
  _bstr_t text;
  EXPECT_EQ(connection->get_information(17, text.GetAddress()), E_UNEXPECTED);
  test_support::open_scripted(database, test_support::oracle());
  EXPECT_EQ(connection->get_information(17, text.GetAddress()), S_OK);
  EXPECT_EQ(to_cstring(text.GetBSTR()), "Oracle");
}

}  // namespace
