/// An object's history as a time line.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "spcbase/revision/record.h"
#include "tools/spc/link.h"
#include "tools/spc/report/markup.h"
#include "tools/spc/revisions.h"

namespace spc::report_page {

/// An object under revision control, and its name for people.
struct ReportedObject {
  VersionedObject object;
  std::string name = {};
};

struct History {
  ReportedObject of;
  std::vector<rev::RevisionBaseInfo> revisions;  ///< the first one first
};

/// Fails: Problem.
History read_history(Link& link, const ReportedObject& object);

void write_history(Markup& page, const History& history);

}  // namespace spc::report_page
