// The helper program of the revision tests: what a process of its own does.
//
//   add CONNECT OBJECT COUNT NAME       adds revisions, each until it succeeds, and prints number and payload of each
//   approve CONNECT COUNT NAME MAJOR    approves revision 1 of the objects 1 to COUNT, and prints for each "won" or the
//                                       failure's text
#include <cstdlib>
#include <iostream>
#include <string>

#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/revision/manager.h"

namespace {

void add(CDatabaseEx& db, int object, int count, const char* name) {
  rev::RevisionManager manager(3, -1);
  for (int i = 0; i < count; ++i) {
    const std::string bytes = std::string(name) + "-" + std::to_string(i);
    CLongBinary payload;
    set_blob_data(payload, CString(bytes));
    // Five attempts may not be enough among many writers.
    for (int attempt = 1;; ++attempt) {
      const auto added =
          guarded([&] { return manager.add_new_revision(&db, 0, object, payload, 1, name, bytes.c_str(), false); });
      if (added.ok()) {
        std::cout << added.value() << ' ' << bytes << '\n';
        break;
      }
      if (attempt < 200 && added.failure().kind == FailureKind::database) continue;
      std::cerr << added.failure().text.GetString() << '\n';
      std::exit(1);
    }
  }
}

void approve(CDatabaseEx& db, int count, const char* name, bool major) {
  rev::RevisionManager manager(3, -1);
  for (int object = 1; object <= count; ++object) {
    const auto approved =
        guarded([&] { return manager.approve(&db, 0, object, 1, 2, 4, 1, name, "race", major).first; });
    std::cout << object << ' '
              << (!approved.ok()     ? approved.failure().text.GetString()
                  : approved.value() ? "won"
                                     : "gone")
              << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) return 2;
  const std::string mode = argv[1];
  CDatabaseEx db;
  db.OpenEx(argv[2]);
  if (mode == "add") {
    add(db, std::atoi(argv[3]), std::atoi(argv[4]), argv[5]);
    return 0;
  }
  if (mode == "approve") {
    approve(db, std::atoi(argv[3]), argv[4], std::string(argv[5]) == "major");
    return 0;
  }
  std::cerr << "unknown job\n";
  return 2;
}
