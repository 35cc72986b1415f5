/// The demo's chapter on revisions: how a profile came to be, save by save.
///
/// Part of the command.
#pragma once

#include <vector>

#include "spcbase/revision/record.h"
#include "spcbase/testkit/demo_plant.h"
#include "tools/spc/link.h"
#include "tools/spc/profile_shape.h"

namespace spc {

/// The type of objects as which the demo saves profiles. The library leaves such numbers to the hosts.
inline constexpr int demo_profile_type = 3;

/// Saves the profile four times, approves the second save in place and the fourth with a major version, and gives the
/// history, the latest first. Every payload is read back and compared.
/// Fails: Problem; a payload that came back different is one.
std::vector<rev::RevisionBaseInfo> make_history(Link& link, const plant::DemoPlant& plant, const ProfileShape& shape);

}  // namespace spc
