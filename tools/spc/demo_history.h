/// The demo's chapter on revisions: how a profile came to be, save by save.
///
/// Part of the command.
#pragma once

#include <vector>

#include "spcbase/revision/record.h"
#include "tools/plant/demo_plant.h"
#include "tools/spc/link.h"
#include "tools/spc/profile_shape.h"

namespace spc {

/// Saves the profile four times, approves the second save in place and the fourth with a major version, and gives the
/// history, the latest first. Every payload is read back and compared.
/// Fails: Problem; a payload that came back different is one.
std::vector<rev::RevisionBaseInfo> make_history(Link& link, const plant::DemoPlant& plant, const ProfileShape& shape);

}  // namespace spc
