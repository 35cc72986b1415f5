// A host that opens a connection, reads and edits rows, keeps payloads, repairs a running number and reads settings.
#include <cstdio>

#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/connection.h"
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
  db.ExecuteSQL("CREATE TABLE MYPHOTO (STNID INTEGER NOT NULL PRIMARY KEY, DATA BLOB)");
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

// Opening reads every row that the filter lets through, and AddNew wants an open recordset: so look for the new key
// alone.
void add_station(CDatabaseEx& db, long id, const char* name) {
  Stations rs(&db);
  CString key;
  key.Format("[STNID] = %ld", id);
  requery_rs(rs, key, true);
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

// A deadlock has taken everything back: the same work again from its beginning, a few times at most.
template <class Work>
auto in_transaction(CDatabaseEx& db, Work work) {
  for (int attempt = 1;; ++attempt) {
    auto done = guarded([&] {
      AutoODBCTransaction transaction(db, true);
      work();
      transaction.commit();
    });
    if (done || !done.failure().may_retry() || attempt == 5) return done;
  }
}

// Names of functions and casts differ between servers; the dialect is asked for once.
void print_dialect(CDatabaseEx& db) {
  const int dialect = dbcheck::find_db_type(db);
  std::printf("dialect %d, of the kind of SQL Server: %s\n", dialect,
              dbcheck::make_check_null_function(0, "NAME", "''").GetString());
}

// A class of the host's own with a blob, which is the last column; what holds its bytes comes with the base.
class Photos : public SingleBlobColumnRecordset<Photos> {
 public:
  using SingleBlobColumnRecordset::SingleBlobColumnRecordset;

  long station = 0;

  static constexpr const char* source = "[MYPHOTO]";
  static constexpr auto columns = coltab::table(coltab::key("[STNID]", &Photos::station), coltab::blob("[DATA]"));
};

void keep_photo(CDatabaseEx& db, long station, const CString& bytes) {
  Photos rs(&db, 0);  // 0: in pieces; else the size of a buffer in bytes, for a driver that cannot
  CString key;
  key.Format("[STNID] = %ld", station);
  requery_rs(rs, key, true);
  if (rs.IsEOF()) {
    rs.AddNew();
    rs.station = station;
  } else {
    rs.Edit();
  }
  rs.set_blob_data(rs, bytes);
  rs.Update();
  requery_rs_for_read(rs, nullptr, true);
  std::printf("photo of station %ld: %d bytes\n", rs.station, rs.get_blob_str(rs).GetLength());
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
  const auto added = in_transaction(db, [&] { add_two(db); });
  std::printf("%s: %s\n", describe(added.failure().failure_class), added.failure().advice.GetString());
  print_stations(db);
  keep_photo(db, 2, CString("\0\xff", 2));
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
