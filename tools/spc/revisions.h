/// Revisions as people and machines read them.
///
/// Part of the command.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "spcbase/revision/record.h"
#include "tools/spc/json.h"

namespace spc {

/// An object under revision control. The numbers of the types belong to the programs that save objects.
struct VersionedObject {
  int type = 0;
  int id = 0;
};

/// "object 5 of type 3".
std::string described(const VersionedObject& object);

/// "1.0".
std::string version_text(const rev::RevisionBaseInfo& revision);

/// A table with a line for each revision, in the order given.
void print_history(std::ostream& out, const std::vector<rev::RevisionBaseInfo>& revisions, const std::string& indent);

/// One revision with its payload.
void print_revision(std::ostream& out, const VersionedObject& object, const rev::RevisionInfo& revision);

/// The members of one revision, for an object that is open.
void write_revision(JsonWriter& json, const rev::RevisionBaseInfo& revision);

/// A list of objects.
void write_history(JsonWriter& json, const std::vector<rev::RevisionBaseInfo>& revisions);

}  // namespace spc
