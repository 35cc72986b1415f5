/// Conditions of SQL for what a user may see: an object that lists the user, or a group of the user's.
///
/// Part of the database foundation. A user of 0 sees everything: the host adds no condition then. Filled with 0, it
/// admits nobody.
///
///     set_rs_where_clause(rs, access_predicate::fill(access_predicate::profiles, "[PROFID]", user));
#pragma once

#include "spcbase/platform/text/cstring.h"

namespace access_predicate {

/// Of data sources. To be filled by `CString::Format` with the id's column, the user, the column and the user again;
/// both bring their own brackets.
inline constexpr const char* data_sources =
    "((%s IN (SELECT EXDBID FROM CSUINEDB WHERE USERID = %d)) OR (%s IN (SELECT EXDBID FROM CSGINEDB WHERE GROUPID IN "
    "(SELECT GROUPID FROM CSUSGP WHERE USERID = %d))))";

/// Of profiles.
inline constexpr const char* profiles =
    "((%s IN (SELECT PROFID FROM CSUINP WHERE USERID = %d)) OR (%s IN (SELECT PROFID FROM CSGINP WHERE GROUPID IN "
    "(SELECT GROUPID FROM CSUSGP WHERE USERID = %d))))";

/// One of them for the column of the objects' ids, as it stands in the statement, and a user.
inline CString fill(const char* predicate, const char* column, int user) {
  CString filter;
  filter.Format(predicate, column, user, column, user);
  return filter;
}

}  // namespace access_predicate
