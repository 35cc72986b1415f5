// A host with an ODBC connection of its own lends it to the library.
#define ULONG odbc_ulong  // theirs follows the machine's long, the library's has 32 bits
#include <sql.h>
#include <sqlext.h>
#undef ULONG

#include <cstdio>
#include <string>

#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"

namespace {

SQLCHAR* text(std::string& of) { return reinterpret_cast<SQLCHAR*>(of.data()); }

// Ends the link when the host is done with it: the library leaves an attached one open.
void end(SQLHENV environment, SQLHDBC link) {
  SQLDisconnect(link);
  SQLFreeHandle(SQL_HANDLE_DBC, link);
  SQLFreeHandle(SQL_HANDLE_ENV, environment);
}

void use(SQLHDBC link, const char* connect) {
  CDatabaseEx db;
  db.attach(link, true, connect);
  db.ExecuteSQL("CREATE TABLE T (A INTEGER)");
  std::printf("transactions: %s\n", db.CanTransact() != 0 ? "yes" : "no");
}

}  // namespace

int main() {
  SQLHENV environment = nullptr;
  SQLHDBC link = nullptr;
  SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &environment);
  SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  SQLAllocHandle(SQL_HANDLE_DBC, environment, &link);
  std::string connect = "Driver={SQLite3};Database=:memory:";
  SQLDriverConnect(link, nullptr, text(connect), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);

  const auto done = guarded([&] { use(link, connect.c_str()); });
  if (!done) std::printf("%s\n", done.failure().text.GetString());
  SQLUINTEGER dead = SQL_CD_TRUE;
  SQLGetConnectAttr(link, SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr);
  std::printf("the link is %s\n", dead == SQL_CD_FALSE ? "open" : "dead");
  end(environment, link);
  return done ? 0 : 1;
}
