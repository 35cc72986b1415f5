/// A profile as samples are entered on it, and who enters them: found by name or by id.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/layout.h"
#include "tools/spc/link.h"

namespace spc {

/// What samples on a profile look like.
struct ProfileShape {
  std::string name;
  int id = 0;
  std::vector<GridColumn> columns;
  LONG width = 0;          ///< columns of a grid
  std::size_t pieces = 0;  ///< rows that a sample must have; 0 for any number
};

/// Something with a name and an id.
struct Named {
  int id = 0;
  std::string name;
};

/// Finds by name, and when there is none of that name and the text is a number, by id.
/// Fails: Problem that says what there is when it is not found, or when two have the name.
/// Of the profiles those that the user `as_user` may see; 0 sees all.
Named find_profile(Link& link, const std::string& name_or_id, int as_user = 0);
Named find_station(Link& link, const std::string& name_or_id);
Named find_user(Link& link, const std::string& name_or_id);

/// A sentence that names the users with their ids.
std::string users_there_are(Link& link);

/// The name of a profile; "?" when it is gone.
std::string profile_name(Link& link, int id);

/// Reads a profile.
/// Fails: Problem when samples cannot be entered on it.
ProfileShape read_shape(Link& link, const Named& profile);

/// The shape of a profile that is loaded.
ProfileShape shape_of(const oldde::CProfileCache& cache, const Named& profile);

}  // namespace spc
