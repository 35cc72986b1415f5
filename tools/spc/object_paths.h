/// Folders, monitors and profiles by their paths, and their paths by their numbers.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/folders.h"

namespace spc {

enum class ObjectKind : unsigned char { folder, monitor, profile };

/// "folder", "monitor" or "profile".
const char* word_of(ObjectKind kind);

/// Where an object stands.
struct Location {
  std::string path;  ///< empty when the chain is broken
  Chain chain;       ///< of the folder that holds it, or of the folder itself
};

struct FoundObject {
  ObjectKind kind = ObjectKind::folder;
  int id = 0;
  std::string name;
  std::vector<Location> locations;  ///< none for an object that no folder holds
};

/// What is looked for, and by whom.
struct PathQuestion {
  std::string path;               ///< or a number
  std::vector<ObjectKind> kinds;  ///< which of them count
  int as_user = 0;                ///< profiles that this user may not see do not exist; 0 sees all
};

struct PathAnswer {
  std::vector<FoundObject> found;
  std::optional<int> revision;  ///< that the path asks for, as the library has it; nothing for a number
  std::string note;             ///< what the path says that may not be meant; may be empty
};

/// The revision that a path asks for, in words: "latest", "latest approved" or its number.
std::string asked_revision_text(int revision);

/// Finds what a path names, or what has a number.
/// Fails: Problem, also when there is nothing; it tells the name on the way that is not there.
PathAnswer find_objects(Link& link, const PathQuestion& question);

}  // namespace spc
