// A host that keeps the history of one object: drafts, an approval in place, one with a major version, a refusal.
#include <cstdio>
#include <vector>

#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/revision/manager.h"

namespace {

constexpr int object = 12;
constexpr int user = 7;

// What `spc db create` makes, as far as this sample needs it.
void make_tables(CDatabaseEx& db) {
  db.ExecuteSQL(
      "CREATE TABLE CSOBJREV (REVID INTEGER PRIMARY KEY, OBJID INTEGER, OBJTYPE INTEGER, REVISION INTEGER, MAJORVER "
      "INTEGER, MINORVER INTEGER, FLAG INTEGER, CTIME DATETIME, CUSERID INTEGER, CUSER VARCHAR(255), CREASON "
      "VARCHAR(4000), ATIME DATETIME, AUSERID INTEGER, AUSER VARCHAR(255), AREASON VARCHAR(4000), ALEVEL INTEGER, "
      "ATYPE "
      "INTEGER, UNIQUE (OBJID, OBJTYPE, REVISION))");
  db.ExecuteSQL("CREATE TABLE CSREVDAT (REVID INTEGER NOT NULL PRIMARY KEY, DATA BLOB)");
}

void keep_history(CDatabaseEx& db) {
  rev::RevisionManager manager(3);
  CLongBinary payload;
  set_blob_data(payload, CString("any bytes"));
  const int first = manager.add_new_revision(&db, 0, object, payload, user, "anna", "first draft", false);
  const int second = manager.add_new_revision(&db, 0, object, payload, user, "anna", "limits", false);
  const auto latest = manager.get_revision_info(&db, 0, object, 0);  // 0 asks for the latest
  std::printf("revisions %d and %d; the latest holds %lu bytes\n", first, second,
              static_cast<unsigned long>(latest->data.long_bin.m_dwDataLength));
}

// A manager that keeps nothing sees the rows as they are.
void approve(CDatabaseEx& db, int revision, bool major) {
  rev::RevisionManager manager(3, -1, -1);
  const auto done =
      guarded([&] { return manager.approve(&db, 0, object, revision, 1, 0, user, "bob", "checked", major); });
  if (done)
    std::printf("revision %d is approved as %d\n", revision, done.value().second);
  else
    std::printf("revision %d: %s\n", revision, done.failure().text.GetString());
}

void print_history(CDatabaseEx& db) {
  std::vector<rev::RevisionBaseInfo> revisions;
  rev::RevisionManager(3).get_all_revision(&db, object, revisions);
  for (const auto& revision : revisions)
    std::printf("%d  %d.%d  %s\n", revision.revision, revision.majorver, revision.minorver,
                revision.approval ? revision.approval->auser.GetString() : "-");
}

void run() {
  CDatabaseEx db;
  db.OpenEx("sqlite::memory:");
  make_tables(db);
  keep_history(db);
  approve(db, 1, false);
  approve(db, 2, true);
  print_history(db);
}

}  // namespace

int main() {
  const auto done = guarded(run);
  if (!done.ok()) std::printf("%s\n", done.failure().text.GetString());
  return done.ok() ? 0 : 1;
}
