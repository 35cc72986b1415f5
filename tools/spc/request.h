/// What a command line asks for.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <string>

#include "tools/spc/doctor/doctor.h"
#include "tools/spc/source_request.h"
#include "tools/spc/tasks.h"

namespace spc {

/// Everything that a command line can say.
struct Request {
  Place place;
  bool json = false;
  bool trace = false;
  bool dry_run = false;
  std::string progress;  ///< the word of --progress; empty: as fits
  int as_user = 0;       ///< lists show what this user may see; 0 sees everything
  ImportRequest import;
  std::string list_profile;
  std::size_t list_limit = 20;
  long shown_sample = 0;
  std::string demo_keep;
  std::string demo_report;
  std::string numbers_table;
  std::string setting;
  PayloadRequest payload;
  RevisionRequest revision;
  bool yes = false;
  RangeRequest range;
  ScheduleRequest schedule;
  SourceRequest source;
  DoctorRequest doctor;
  PathRequest path;
  TreeRequest tree;
};

}  // namespace spc
