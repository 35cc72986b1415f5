// The servers on which the recordset layer is tested: the same cases on each.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/database/recordset.h"
#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/scratch_folder.h"

namespace database_test {

enum class Server { sqlite, sqlite_odbc, mariadb };

inline void PrintTo(Server server, std::ostream* out) {
  *out << (server == Server::sqlite ? "sqlite" : server == Server::sqlite_odbc ? "sqlite_odbc" : "mariadb");
}

inline std::string server_name(const testing::TestParamInfo<Server>& info) {
  return testing::PrintToString(info.param);
}

inline const auto all_servers = testing::Values(Server::sqlite, Server::sqlite_odbc, Server::mariadb);

/// An empty database of the server that the case runs on.
class ServerTest : public testing::TestWithParam<Server> {
 protected:
  void SetUp() override {
    if (GetParam() == Server::mariadb)
      own_ = std::make_unique<test_support::TestDatabase>(test_support::PrivateMariaDb::shared().create_database());
  }
  void TearDown() override { own_.reset(); }

  std::string connect_text() const {
    switch (GetParam()) {
      case Server::sqlite:
        return "sqlite:" + folder_.file("test.db") + ";Create=1;Timeout=200";
      case Server::sqlite_odbc:
        return "Driver=SQLite3;Database=" + folder_.file("test.db") + ";Timeout=200";
      case Server::mariadb:
        break;
    }
    return own_->odbc_connect_text();
  }
  bool on_mariadb() const { return GetParam() == Server::mariadb; }

 private:
  test_support::ScratchFolder folder_;
  std::unique_ptr<test_support::TestDatabase> own_;
};

/// The same, connected; a second connection to it on request.
class DatabaseTest : public ServerTest {
 protected:
  void SetUp() override {
    ServerTest::SetUp();
    db.OpenEx(connect_text().c_str());
  }
  void TearDown() override {
    if (db.IsOpen()) db.Close();
    ServerTest::TearDown();
  }

  /// A table with one column of each kind.
  void create_things() {
    db.ExecuteSQL(on_mariadb()
                      ? "CREATE TABLE THINGS (ID INTEGER NOT NULL PRIMARY KEY, NAME VARCHAR(20), AMOUNT DOUBLE, "
                        "MADE DATETIME(3), FLAG INTEGER) COLLATE utf8mb4_nopad_bin"
                      : "CREATE TABLE THINGS (ID INTEGER NOT NULL PRIMARY KEY, NAME VARCHAR(20), AMOUNT DOUBLE, "
                        "MADE TIMESTAMP, FLAG INTEGER)");
  }

  CDatabase db;
};

/// The rows of THINGS.
struct Things : CRecordset {
  long id = 0;
  CString name;
  double amount = 0;
  TIMESTAMP_STRUCT made{};
  long flag = 0;

  explicit Things(CDatabase* database) : CRecordset(database) {
    m_nFields = 5;
    m_nDefaultType = snapshot;
    m_keyColumns = 1;
  }
  CString GetDefaultSQL() override { return "[THINGS]"; }
  void DoFieldExchange(CFieldExchange* fx) override {
    fx->SetFieldType(CFieldExchange::outputColumn);
    RFX_Long(fx, "[ID]", id);
    RFX_Text(fx, "[NAME]", name, 20);
    RFX_Double(fx, "[AMOUNT]", amount);
    RFX_Date(fx, "[MADE]", made);
    RFX_Long(fx, "[FLAG]", flag);
  }

  void set_key(std::uint64_t bits) { m_keyColumns = bits; }

  /// Opens with a filter and tells how many rows there are.
  long count(const char* filter) {
    m_strFilter = filter;
    Open();
    const long rows = GetRecordCount();
    Close();
    return rows;
  }
};

/// What an onlooker was told.
struct Record : spcdb::StatementObserver {
  struct Line {
    std::string statement;
    std::string parameters;
    std::int64_t rows;
    bool failed;
  };
  std::vector<Line> lines;

  void on_statement(const spcdb::StatementReport& report) noexcept override {
    lines.push_back(
        {std::string(report.statement), std::string(report.parameters), report.rows, report.failure != nullptr});
  }
};

/// What a call threw; the exception is released.
struct Caught {
  RETCODE code = 0;
  std::string state;
  std::string text;
  std::string statement;
};

/// Runs `act` and gives what it threw; a call that throws nothing is a failure of the test.
template <class Act>
Caught caught(Act&& act) {
  try {
    act();
  } catch (CDBException* e) {
    Caught c{e->m_nRetCode, std::string(e->m_strStateNativeOrigin.view()), std::string(e->m_strError.view()),
             std::string(e->m_strStatement.view())};
    e->Delete();
    return c;
  }
  ADD_FAILURE() << "nothing was thrown";
  return {};
}

}  // namespace database_test
