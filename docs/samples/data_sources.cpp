// A host that stores a definition of an outside database, lists those that a user may see, and keeps them up to date.
#include <cstdio>
#include <memory>
#include <vector>

#include "spcbase/companion/connect_string.h"
#include "spcbase/companion/oledb_connection.h"
#include "spcbase/datasource/definition.h"
#include "spcbase/datasource/stored.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"

namespace {

// What `spc db create` makes, as far as this sample needs it.
void make_tables(CDatabaseEx& db) {
  db.ExecuteSQL(
      "CREATE TABLE CSEXDB (EXDBID INTEGER PRIMARY KEY, NAME VARCHAR(255), DESCR VARCHAR(255), TYPE VARCHAR(255), "
      "FLG1 INTEGER, FLG2 INTEGER, MTIME DATETIME, VFLG VARCHAR(255), DATA BLOB)");
  db.ExecuteSQL("CREATE VIEW CSEXDBV AS SELECT EXDBID, FLG1 FROM CSEXDB WHERE VFLG IS NULL");
  db.ExecuteSQL("CREATE TABLE CSUINEDB (EXDBID INTEGER, USERID INTEGER)");
  db.ExecuteSQL("CREATE TABLE CSGINEDB (EXDBID INTEGER, GROUPID INTEGER)");
  db.ExecuteSQL("CREATE TABLE CSUSGP (GROUPID INTEGER, USERID INTEGER)");
}

OLEDBInfo store(CDatabaseEx& db, int id, CDatabase& outside) {
  OLEDBInfo source;
  source.id = id;  // first of all: the connection string is enciphered under it
  source.name = "Warehouse";
  source.connection_string = "DSN=warehouse;UID=spc;PWD=Pass word 1";
  OLEDBConnection connection(outside);
  source.update_internal_data(connection);  // separators, quotes, what its SQL can do
  COleDateTime written;
  OLEDBInfo::create(&db, 0, source, written);
  return source;
}

void admit(CDatabaseEx& db, int id, int user) {
  CString statement;
  statement.Format("INSERT INTO CSUINEDB (EXDBID, USERID) VALUES (%d, %d)", id, user);
  db.ExecuteSQL(statement.GetString());
}

void show_list(CDatabaseEx& db, int user) {
  std::vector<std::shared_ptr<OLEDBInfo>> sources;
  COleDateTime newest;  // in UTC; its status is null when there are none
  const int count = get_all_ole_db(&db, 0, user, sources, newest);
  std::printf("user %d sees %d\n", user, count);
  for (const auto& source : sources) {
    ConnectStringUtil shown(source->connection_string);
    shown.HidePassword();
    std::printf("  %d %s: %s\n", source->id, source->name.GetString(), shown.text.GetString());
  }
}

void change_and_refresh(CDatabaseEx& db, int id) {
  const std::unique_ptr<OLEDBInfo> mine(OLEDBInfo::retrieve(&db, 0, id));
  const std::unique_ptr<OLEDBInfo> theirs(OLEDBInfo::retrieve(&db, 0, id));
  theirs->name = "Warehouse, north";
  theirs->save(&db, 0);
  db.ExecuteSQL("UPDATE CSEXDB SET MTIME = '2024-07-01 12:00:00'");  // no second passes between the two here
  const int first = mine->refresh(&db, 0);
  const int second = mine->refresh(&db, 0);
  std::printf("refresh: %d, then %d, now %s\n", first, second, mine->name.GetString());
}

void copy(CDatabaseEx& db, int id) {
  ExtDataSourceInfo holder;
  holder.info = OLEDBInfo::retrieve(&db, 0, id);
  holder.kind = OLEDBInfo::kind;
  holder.owned = true;
  ExtDataSourceInfo another = holder;  // owns a definition of its own
  another.info->name = "a copy";
  std::printf("%s and %s\n", holder.info->name.GetString(), another.info->name.GetString());
}

void rewrite_all(CDatabaseEx& db) {
  db.ExecuteSQL("INSERT INTO CSEXDB (EXDBID, NAME, FLG1, DATA) VALUES (2, 'damaged', 0, '<external')");
  int found = 0;
  int saved = 0;
  read_and_save_all_ole_db(&db, 0, found, saved);
  std::printf("rewritten: %d of %d\n", saved, found);
}

// Which ones failed, and why. A damaged definition fails every list that it belongs to, so it has to go.
void find_damaged(CDatabaseEx& db) {
  std::vector<int> ids;
  get_all_ole_db_id(&db, ids);
  for (const int id : ids) {
    const auto readable = guarded([&] { delete OLEDBInfo::retrieve(&db, 0, id); });
    if (readable.ok()) continue;
    std::printf("%d: %s\n", id, readable.failure().text.SpanExcluding("\n").GetString());
    OLEDBInfo damaged;
    damaged.id = id;
    damaged.remove(&db);
  }
}

void remove(CDatabaseEx& db, OLEDBInfo& source) {
  source.remove(&db);
  const std::unique_ptr<OLEDBInfo> removed(OLEDBInfo::retrieve(&db, 0, source.id));
  std::printf("removed, and still read by its id: %s\n", removed->name.GetString());
}

void run() {
  CDatabaseEx db;
  db.OpenEx("sqlite::memory:");
  make_tables(db);
  CDatabase outside;
  outside.OpenEx("sqlite::memory:");
  OLEDBInfo source = store(db, 1, outside);
  admit(db, source.id, 7);
  show_list(db, 7);
  show_list(db, 8);
  change_and_refresh(db, source.id);
  copy(db, source.id);
  rewrite_all(db);
  find_damaged(db);
  remove(db, source);
  show_list(db, 0);
}

}  // namespace

int main() {
  const auto done = guarded(run);
  if (!done.ok()) std::printf("%s\n", done.failure().text.GetString());
  return done.ok() ? 0 : 1;
}
