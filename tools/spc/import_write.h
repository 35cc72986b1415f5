/// Writing samples that have been checked: one sample is one transaction.
///
/// Part of the command.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "tools/spc/import_check.h"
#include "tools/spc/link.h"
#include "tools/spc/profile_shape.h"

namespace spc {

/// Where and by whom samples are entered; id 0 leaves the auto label out.
struct Entrant {
  Named station;
  Named user;
};

/// Writes samples in order and gives their numbers. A sample that lost a deadlock is tried again a few times; one whose
/// commit is in doubt never is. `after_each` is called for each that stands.
/// Fails: Problem at the first sample that cannot be written; its note says how many stand, which they do.
std::vector<long> write_samples(Link& link, const std::string& file, const ProfileShape& shape, const Entrant& entrant,
                                std::span<PreparedSample> samples, const std::function<void()>& after_each);

}  // namespace spc
