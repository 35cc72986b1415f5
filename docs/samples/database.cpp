// A host that opens a connection, reads and edits rows, keeps a payload, repairs a running number and reads settings.
#include <cstdio>

#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/payload.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/running_number.h"
#include "spcbase/foundation/schema/column_table.h"
#include "spcbase/foundation/settings.h"

namespace {

// What `spc db create` makes, as far as this sample needs it.
void make_tables(CDatabaseEx& db) {
  db.ExecuteSQL("CREATE TABLE CSSTN (STNID INTEGER NOT NULL PRIMARY KEY, NAME VARCHAR(255), VFLG VARCHAR(255))");
  db.ExecuteSQL("CREATE TABLE CSSTRN (MAXNO INTEGER NOT NULL)");
  db.ExecuteSQL("INSERT INTO CSSTRN (MAXNO) VALUES (0)");
  db.ExecuteSQL("CREATE TABLE CSMOPB (MONID INTEGER NOT NULL PRIMARY KEY, OPTVAL BLOB)");
  db.ExecuteSQL(
      "CREATE TABLE CSINI (QUAL VARCHAR(255), SECT VARCHAR(255), KYWORD VARCHAR(255), SEQNO INTEGER, "
      "OPTVAL VARCHAR(255))");
  db.ExecuteSQL("INSERT INTO CSINI VALUES ('SYSTEM', 'SETTINGS', 'greeting', 0, '48656C6C6F')");
}

// A recordset class of the host's own: a list of columns, as those of spcbase/foundation/schema are.
class Stations : public TableRecordset<Stations> {
 public:
  using TableRecordset::TableRecordset;

  long id = 0;
  CString name;

  static constexpr const char* source = "[CSSTN]";
  static constexpr auto columns =
      coltab::table(coltab::key("[STNID]", &Stations::id), coltab::field("[NAME]", &Stations::name, 255));
};

void add_station(CDatabaseEx& db, long id, const char* name) {
  Stations rs(&db);
  if (rs.Open(CRecordset::snapshot, nullptr, CRecordset::appendOnly) == 0) throw_can_not_open_rs_exception();
  rs.AddNew();
  rs.id = id;
  rs.name = name;
  rs.Update();
}

void rename_station(CDatabaseEx& db, const char* from, const char* to) {
  Stations rs(&db);
  CString quoted(from);
  quoted.Replace("'", "''");  // a doubled apostrophe is one apostrophe; nothing else is special
  set_rs_where_clause(rs, "[NAME] = '" + quoted + "'");
  requery_rs(rs, nullptr, true);
  if (rs.IsEOF()) return;  // a missing row is no failure
  rs.Edit();
  rs.name = to;
  rs.Update();
}

// All or nothing: without `commit`, the end of the guard takes everything back.
void add_two(CDatabaseEx& db) {
  AutoODBCTransaction transaction(db, true);
  add_station(db, 3, "Paint");
  add_station(db, 1, "Forge again");  // refused: the key is taken
  transaction.commit();
}

void print_stations(CDatabaseEx& db) {
  Stations rs(&db);
  rs.m_strSort = "[STNID]";
  requery_rs_for_read(rs, nullptr, true);
  for (; !rs.IsEOF(); rs.MoveNext())
    std::printf("%ld %s\n", rs.id, rs.name.GetString());
}

// Names of functions and casts differ between servers; the dialect is asked for once.
void print_dialect(CDatabaseEx& db) {
  const int dialect = dbcheck::find_db_type(db);
  std::printf("dialect %d, of the kind of SQL Server: %s\n", dialect,
              dbcheck::make_check_null_function(0, "NAME", "''").GetString());
}

void keep_payload(CDatabaseEx& db) {
  CLongBinary payload;
  set_blob_data(payload, CString("any bytes"));
  set_mon_data(&db, 0, 7, payload);
  CLongBinary again;
  const int size_bytes = get_mon_data(&db, 0, 7, again);
  std::printf("%d bytes of monitor 7: %s\n", size_bytes, get_blob_data(again).GetString());
}

void repair_number(CDatabaseEx& db) {
  update_running_table(&db, "CSSTN", "STNID", "CSSTRN", true);
  RSMax highest(&db, "CSSTRN", "MAXNO");
  highest.Open();
  std::printf("the next station is %ld\n", highest.result + 1);
}

void print_setting(CDatabaseEx& db) {
  SystemSettingCache settings;
  settings.refresh(&db);
  if (const auto value = settings.find("greeting"))
    std::printf("greeting: %.*s\n", value->size, reinterpret_cast<const char*>(value->data));
}

void run() {
  CDatabaseEx db;
  db.OpenEx("sqlite::memory:");
  make_tables(db);
  print_dialect(db);
  add_station(db, 1, "Forge");
  add_station(db, 2, "Joe's bench");
  rename_station(db, "Joe's bench", "Bench 2");
  const auto added = guarded([&] { add_two(db); });
  std::printf("%s: %s\n", describe(added.failure().failure_class), added.failure().advice.GetString());
  print_stations(db);
  keep_payload(db);
  repair_number(db);
  print_setting(db);
}

}  // namespace

int main() {
  const auto done = guarded(run);
  if (!done.ok()) std::printf("%s\n", done.failure().text.GetString());
  return done.ok() ? 0 : 1;
}
