// The sessions under test: SQLite directly, SQLite through its ODBC driver, MariaDB through ODBC. One suite runs on all
// of them; where they differ the difference is a named fact below.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "spcbase/platform/database/odbc_session.h"
#include "spcbase/platform/database/session.h"
#include "spcbase/platform/database/sqlite_session.h"
#include "tests/platform/database/database_under_test.h"

namespace database_test {

/// What a driver is known to do, by name.
struct DriverFacts {
  bool tells_sqlstates;  ///< a failure's SQLSTATE says what it was
  bool limits_widths;    ///< a text beyond VARCHAR(n) is refused
  bool reads_past_zero;  ///< a text with a zero byte is read whole
  bool takes_infinity;   ///< infinity is stored
  bool folds_case;       ///< 'A' = 'a' in the default collation
  const char* duplicate_state;
  long duplicate_native;
  const char* origin;  ///< how the origin of its diagnostics begins
};

inline DriverFacts facts_of(Server server) {
  switch (server) {
    case Server::sqlite:
      return {true, false, true, true, false, "23000", 1555, "[SQLite]"};
    case Server::sqlite_odbc:
      return {false, false, false, true, false, "HY000", 19, "[SQLite]"};
    case Server::mariadb:
      break;
  }
  return {true, true, true, false, true, "23000", 1062, "[ma-"};
}

/// A session on a fresh database of each kind.
class SessionTest : public ServerTest {
 protected:
  using Kind = spcdb::ValueKind;
  using P = spcdb::Parameter;

  void SetUp() override {
    ServerTest::SetUp();
    session = connect();
  }
  void TearDown() override {
    session.reset();
    ServerTest::TearDown();
  }

  std::unique_ptr<spcdb::Session> connect(spcdb::CallHook* hook = nullptr) const {
    return GetParam() == Server::sqlite ? spcdb::open_sqlite(connect_text(), false, hook)
                                        : spcdb::open_odbc(connect_text(), false, hook);
  }
  bool on_sqlite() const { return GetParam() == Server::sqlite; }
  DriverFacts facts() const { return facts_of(GetParam()); }

  /// A column of doubles in the form in which it is to be selected.
  std::string double_column(const std::string& name) const {
    std::string text = session->quirks().double_expression;
    if (text.empty()) return name;
    for (auto at = text.find("%s"); at != std::string::npos; at = text.find("%s", at + name.size()))
      text.replace(at, 2, name);
    return text;
  }

  /// A table with one column of each kind.
  void create_table() {
    session->run(on_mariadb() ? "CREATE TABLE T (ID INTEGER NOT NULL PRIMARY KEY, N VARCHAR(20), D DOUBLE, "
                                "M DATETIME(3), I BIGINT)"
                              : "CREATE TABLE T (ID INTEGER NOT NULL PRIMARY KEY, N VARCHAR(20), D DOUBLE, "
                                "M TIMESTAMP, I BIGINT)");
  }

  std::int64_t insert(std::int64_t id, const P& text, const P& real, const P& moment, const P& integer) {
    const auto statement = session->prepare("INSERT INTO T VALUES (?,?,?,?,?)", spcdb::Reading::all);
    const P values[] = {P::of_integer(id), text, real, moment, integer};
    statement->execute(values);
    return statement->rows_affected();
  }
  std::int64_t insert(std::int64_t id, std::string_view text = "x") {
    return insert(id, P::of_text(text), P::null_of(Kind::real), P::null_of(Kind::moment), P::null_of(Kind::integer));
  }

  /// A query that has been executed, with all its columns bound to one kind.
  std::unique_ptr<spcdb::Statement> query(const std::string& sql, Kind kind, int width = 255,
                                          const std::vector<P>& parameters = {},
                                          spcdb::Reading reading = spcdb::Reading::all) {
    auto statement = session->prepare(sql, reading);
    const std::vector<spcdb::ColumnBinding> bindings(statement->column_count(), {kind, kind == Kind::text ? width : 0});
    statement->bind_columns(bindings);
    statement->execute(parameters);
    return statement;
  }
  /// The first value of a query; a query without a row, or with a null, is a failure of the test.
  std::int64_t integer_of(const std::string& sql, const std::vector<P>& parameters = {}) {
    const auto statement = query(sql, Kind::integer, 0, parameters);
    std::int64_t value = 0;
    EXPECT_TRUE(statement->fetch()) << sql;
    EXPECT_TRUE(statement->integer(0, value)) << sql;
    return value;
  }
  std::string text_of(const std::string& sql, const std::vector<P>& parameters = {}) {
    const auto statement = query(sql, Kind::text, 4000, parameters);
    std::string_view value;
    EXPECT_TRUE(statement->fetch()) << sql;
    EXPECT_TRUE(statement->text(0, value)) << sql;
    return std::string(value);
  }

  std::unique_ptr<spcdb::Session> session;
};

/// Whether a failure is of this SQLSTATE. "State:23000,Native:..." is how the diagnostics begin.
inline bool has_state(const Caught& failure, const std::string& state) {
  return failure.state.starts_with("State:" + state + ",");
}
inline bool has_native(const Caught& failure, long native) {
  return failure.state.find(",Native:" + std::to_string(native) + ",") != std::string::npos;
}

}  // namespace database_test
