// A host that finds a profile by a path with a revision word, and tells the path of its folder.
#include <cstdio>

#include "spcbase/foundation/connection.h"
#include "spcbase/tree/path.h"

namespace {

// What the walk needs of the schema, in a database that lives as long as its connection.
void make_tree(CDatabaseEx& db) {
  db.OpenEx("sqlite::memory:");
  db.ExecuteSQL("CREATE TABLE CSNODE (NODEID INTEGER, NAME TEXT, PNODE INTEGER, VFLG TEXT)");
  db.ExecuteSQL("CREATE TABLE CSPROFV (PROFID INTEGER, NAME TEXT)");
  db.ExecuteSQL("CREATE TABLE CSPINNV (NODEID INTEGER, PROFID INTEGER)");
  db.ExecuteSQL("INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (1, 'Plant', 0), (2, 'Cut/weld', 1)");
  db.ExecuteSQL("INSERT INTO CSPROFV VALUES (41, 'Bore')");
  db.ExecuteSQL("INSERT INTO CSPINNV VALUES (2, 41)");
}

// The profile that a path names, and the revision that it asks for.
void find_profile(CDatabaseEx& db, const char* path) {
  CString folder;
  CString name;
  int revision = 0;
  if (!analyse_path(path, folder, name, false, false, true, &revision)) {
    std::printf("%s is no path\n", path);
    return;
  }
  const int profile = get_prof_id_from_path(&db, folder + "/" + name);
  std::printf("%s: profile %d, revision %d\n", path, profile, revision);
}

void print_names(const char* path) {
  std::vector<CString> names;
  std::printf("%d names:", split_path(path, names));
  for (const CString& name : names)
    std::printf(" [%s]", name.GetString());
  std::printf("\n");
}

}  // namespace

int main() {
  CDatabaseEx db;
  make_tree(db);
  find_profile(db, "enterprise:/Plant/Cut//weld/Bore|approved");
  find_profile(db, "/plant/cut//weld/ BORE|7");
  find_profile(db, "/Plant/Cut//weld/Bore|newest");
  find_profile(db, "Bore");
  print_names("/Plant/Cut//weld/Bore");
  std::printf("%s\n", get_node_path(&db, 2, true).GetString());
}
