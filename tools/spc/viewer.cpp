#include "tools/spc/viewer.h"

#include "spcbase/foundation/access_predicate.h"
#include "spcbase/foundation/recordset.h"
#include "tools/spc/problem.h"
#include "tools/spc/profile_shape.h"

namespace spc {

void check_viewer(Link& link, int user) {
  if (user == 0) return;
  const std::string what = "cannot list as user " + std::to_string(user);
  const long found = doing(what, [&] {
    RSCount count(&link.db(), "[CSUSERV]", nullptr);
    CString filter;
    filter.Format("[USERID] = %d", user);
    requery_rs_for_read(count, filter, true);
    return count.m_bEOF ? 0 : count.result;
  });
  if (found == 0) throw Problem{what, "there is no user of this number", users_there_are(link)};
}

CString visible_profiles(const char* column, int user) {
  return user == 0 ? CString() : access_predicate::fill(access_predicate::profiles, column, user);
}

}  // namespace spc
