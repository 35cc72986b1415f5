/// What a command line asks for, and the parts of its grammar.
///
/// Part of the command.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
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
  int as_user = 0;  ///< lists show what this user may see; 0 sees everything
  ImportRequest import;
  std::string list_profile;
  std::size_t list_limit = 20;
  long shown_sample = 0;
  std::string demo_keep;
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
  std::function<int(const Terminal&)> task;
};

/// Adds --max-size.
void add_max_size(CLI::App& command, int& size);

/// Adds `spc numbers`, `spc settings` and `spc payload`. The request must outlive the application.
void add_data_tasks(CLI::App& app, Request& request);

/// Adds `spc rev`.
void add_revision_tasks(CLI::App& app, Request& request);

/// Adds `spc range` and `spc schedule`.
void add_time_tasks(CLI::App& app, Request& request);

/// Adds `spc path` and `spc tree`.
void add_tree_tasks(CLI::App& app, Request& request);

/// Adds `spc doctor`.
void add_doctor_tasks(CLI::App& app, Request& request);

/// Adds `spc source`.
void add_source_tasks(CLI::App& app, Request& request);

}  // namespace spc
