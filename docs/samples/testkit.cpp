// How a module is tested against the library: databases, a script, staged failures, a held clock, a plant, the engine
// and the log of statements. The module under test is `save_ring` and `save_with_retries`.
#include <cstdio>
#include <memory>

#include "spcbase/spcbase.h"
#include "spcbase/testkit/demo_plant.h"
#include "spcbase/testkit/fail_kth_call.h"
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/plant.h"
#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/raw_sqlite.h"
#include "spcbase/testkit/reference_engine.h"
#include "spcbase/testkit/schema_database.h"
#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/testkit/scripted_session.h"
#include "spcbase/testkit/statement_log.h"
#include "spcbase/testkit/zone_guard.h"

namespace {

using test_support::SchemaDatabase;
using test_support::ServerKind;

// Each database is the test's own, with the whole schema in it and no rows.
void try_each_server() {
  for (const auto kind : {ServerKind::sqlite, ServerKind::mariadb, ServerKind::sqlite_odbc}) {
    SchemaDatabase database(kind);
    CDatabaseEx db;
    database.open(db);
    plant::Builder(db).add_station("Forge 2");
    std::printf("%s: %s\n", test_support::name_of(kind), database.value("SELECT NAME FROM CSSTN").c_str());
  }
}

// A database with a profile in it: one number for each sample.
struct Rings {
  explicit Rings(ServerKind kind) : database(kind) {
    database.open(db);
    plant::Builder plant(db);
    const int diameter = plant.add_characteristic({"Diameter", "inside, mm", plant::Kind::number, 1});
    profile = plant.add_profile("Rings", "", {plant::characteristic(diameter)});
  }

  SchemaDatabase database;
  CDatabaseEx db;  // behind the database, so that it closes first
  int profile = 0;
};

// The reference engine stands in for the product's.
void save_ring(CDatabaseEx& db, int profile) {
  SAFEARRAYBOUND bounds[] = {{1, 0}, {1, 0}};
  const std::unique_ptr<SAFEARRAY, HRESULT (*)(SAFEARRAY*)> grid(SafeArrayCreate(VT_VARIANT, 2, bounds),
                                                                 SafeArrayDestroy);
  const LONG place[] = {0, 0};
  const _variant_t value(74.03);
  SafeArrayPutElement(grid.get(), place, &value);
  SAFEARRAY* cells = grid.get();
  long sample = 0;
  AutoODBCTransaction transaction(db, true);
  oldde::DEHelper().set_data(reference_engine::make(db), db, &sample, profile, 0, 0, 0, "anna", &cells, nullptr);
  transaction.commit();
}

void refuse_third_insert() {
  Rings rings(ServerKind::sqlite);
  const auto script = test_support::play(rings.db);
  script->on_prefix("INSERT").times(2).pass();
  script->on_prefix("INSERT").refuse(test_support::error("23000", 1062, "Duplicate entry '1' for key 'PRIMARY'"));

  const auto saved = guarded([&] { save_ring(rings.db, rings.profile); });
  const bool is_duplicate = !saved && saved.failure().failure_class == FailureClass::duplicate_key;
  std::printf("the third INSERT: %s\n", is_duplicate ? "duplicate key" : "something else");
}

// A deadlock alone may be tried again, from the beginning of its transaction.
int save_with_retries(CDatabaseEx& db, int profile) {
  for (int attempt = 1;; ++attempt) {
    const auto saved = guarded([&] { save_ring(db, profile); });
    if (saved) return attempt;
    if (!saved.failure().may_retry() || attempt == 5) return 0;
  }
}

void play_deadlock() {
  Rings rings(ServerKind::mariadb);
  const auto script = test_support::play(rings.db);
  script->on_regex("INSERT INTO .?CSVDAT.*")
      .times(2)
      .refuse(test_support::error("40001", 1213, "Deadlock found when trying to get lock; try restarting transaction"));

  const int attempt = save_with_retries(rings.db, rings.profile);
  std::printf("saved at attempt %d, after %zu rollbacks: %s sample\n", attempt, script->calls_of("rollback").size(),
              rings.database.value("SELECT COUNT(*) FROM CSSAMP").c_str());
}

// Whichever call into the driver fails, a sample stands whole or not at all.
void fail_each_call() {
  Rings rings(ServerKind::sqlite);
  int samples = 0;
  int halves = 0;
  for (std::size_t k = 1;; ++k) {
    CDatabaseEx db;  // a fresh one, which has no prepared statements yet
    rings.database.open(db);
    test_support::FailKthCall hook(db, k);
    if (guarded([&] { save_ring(db, rings.profile); })) ++samples;  // not every call matters
    for (const char* count : {"SELECT COUNT(*) FROM CSSAMP", "SELECT COUNT(*) FROM CSVDAT"})
      if (rings.database.value(count) != std::to_string(samples)) ++halves;
    if (!hook.fired()) break;
  }
  std::printf("half a sample after %d failures\n", halves);
}

// A server that dies in the middle is one of the test's own.
void kill_server() {
  test_support::PrivateMariaDb server;
  const auto database = server.create_database();
  CDatabaseEx db;
  db.OpenEx(database.odbc_connect_text().c_str());
  server.kill_hard();
  const auto answer = guarded([&] { db.ExecuteSQL("SELECT 1"); });
  std::printf("a killed server: %s\n", describe(answer.failure().failure_class));
}

void hold_clock() {
  const test_support::ZoneGuard zone("Europe/Berlin");
  test_support::HeldClock clock(test_support::utc(2024, 3, 31, 0, 59, 30));
  std::printf("%s\n", COleDateTime::GetCurrentTime().Format("%Y-%m-%d %H:%M:%S").GetString());
  clock.advance(std::chrono::seconds(30));  // and summer begins
  std::printf("%s\n", COleDateTime::GetCurrentTime().Format("%Y-%m-%d %H:%M:%S").GetString());
}

void use_demo_plant() {
  SchemaDatabase database(ServerKind::sqlite);
  CDatabaseEx db;
  database.open(db);
  const plant::DemoPlant demo = plant::build_demo_plant(db);
  const CString folder = get_node_path(&db, demo.line_1.id, true);
  const int monitor = get_mon_id_from_path(&db, folder + "/" + demo.ring_diameter.name.c_str());
  std::printf("%s holds %s: %s\n", folder.GetString(), demo.ring_diameter.name.c_str(),
              monitor == demo.ring_diameter.id ? "found" : "not found");
}

void ask_engine() {
  SchemaDatabase database(ServerKind::sqlite);
  CDatabaseEx db;
  database.open(db);
  const SPCLib::IQsmSPCPtr engine = reference_engine::make(db);
  for (const char* table : {"CSSTRN", "CSSTRN", "CSXXRN"}) {
    LONG number = 0;
    const HRESULT result = engine->GetNextRunningNumber(_bstr_t(table), &number);
    std::printf("%s: %s %d\n", table, result < 0 ? "refused" : "number", number);
  }
}

void log_statements() {
  Rings rings(ServerKind::sqlite);
  const test_support::StatementLog log(rings.db);
  save_ring(rings.db, rings.profile);
  std::printf("first %s, last %s, rows for CSVDAT: %d\n", log.statements.front().c_str(), log.statements.back().c_str(),
              log.count("INSERT INTO [CSVDAT]"));
}

// What really stands in a file, read without the library.
void look_beside() {
  const test_support::ScratchFolder folder;
  test_support::RawSqlite plain(folder.file("notes.db"));
  plain.execute("CREATE TABLE NOTES (TEXT VARCHAR(20))");
  plain.execute("INSERT INTO NOTES VALUES (NULL)");
  const auto rows = plain.rows("SELECT TEXT FROM NOTES");
  std::printf("%zu row, %s\n", rows.size(), rows[0][0] ? rows[0][0]->c_str() : "a null");
}

void run() {
  try_each_server();
  refuse_third_insert();
  play_deadlock();
  fail_each_call();
  kill_server();
  hold_clock();
  use_demo_plant();
  ask_engine();
  log_statements();
  look_beside();
}

}  // namespace

int main() {
  const auto done = guarded(run);
  if (!done) std::printf("%s\n", done.failure().text.GetString());
  return done ? 0 : 1;
}
