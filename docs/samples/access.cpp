// A host that keeps who may use a profile, and logs what changes.
#include <cstdio>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/schema/tree.h"
#include "spcbase/tree/access.h"

namespace {

constexpr bool is_user = false;
constexpr bool is_group = true;

class ProfileAccess : public ACLMngr {
 public:
  ProfileAccess() {
    saved = new ACLDef;
    current = new ACLDef;
  }

 private:
  int get_object_id() override { return 41; }
  void get_object_name(CString& name) override { name = "Bore"; }
  CString get_item_name(CString& name, int id, bool kind) override {
    name.Format("%s %d", kind == is_group ? "group" : "user", id);
    return name;
  }
  void log_item_added(void*, int, const CString& object, int, bool, const CString& item, bool right) override {
    std::printf("%s: %s may %s\n", object.GetString(), item.GetString(), right ? "write" : "read");
  }
  void log_item_removed(void*, int, const CString& object, int, bool, const CString& item) override {
    std::printf("%s: %s loses access\n", object.GetString(), item.GetString());
  }
  void log_item_changed(void*, int, const CString& object, int, bool, const CString& item, bool right) override {
    std::printf("%s: %s may now %s\n", object.GetString(), item.GetString(), right ? "write" : "read");
  }
};

void log_changes() {
  ProfileAccess access;
  access.saved->add(5, is_user, true);
  access.saved->add(6, is_user, true);
  access.current->add(5, is_user, false);
  access.current->add(5, is_group, true);
  access.log(nullptr);
  try {
    access.current->add(5, is_user, true);
  } catch (const DBException& failure) {
    std::printf("%s\n", failure.what().GetString());
  }
}

// The profiles of a folder that a user may see.
CString profiles_for(int user) {
  RSProfInNode1 rows(nullptr);
  rows.m_strFilter = RSProfInNode1::join;
  if (user != 0)
    set_rs_where_clause(rows, access_predicate::fill(access_predicate::profiles, "[CSPROFV].[PROFID]", user));
  return rows.m_strFilter;
}

}  // namespace

int main() {
  log_changes();
  std::printf("%s\n", profiles_for(0).GetString());
  std::printf("%s\n", profiles_for(7).GetString());
}
