/// The tasks behind the subcommands.
///
/// Part of the command. Each gives the exit status.
/// Fails: Problem.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/spc/link.h"
#include "tools/spc/terminal.h"

namespace spc {

/// What `spc sample import` is given.
struct ImportRequest {
  std::string file;
  std::string profile;
  std::string station;              ///< may be empty
  std::string user;                 ///< may be empty
  std::vector<std::string> maps;    ///< COLUMN=ENTRY
  std::vector<std::string> values;  ///< ENTRY=VALUE
};

/// What `spc payload` is given.
struct PayloadRequest {
  std::string kind;
  int id = 0;
  std::string file;  ///< to put, or to write; empty: standard output
  int max_size = 0;
};

/// What `spc rev` is given.
struct RevisionRequest {
  int type = 0;
  int id = 0;
  int revision = 0;  ///< 0: the latest
  std::string file;  ///< to save, or to write; empty: standard output
  std::string user = "spc";
  int user_id = 0;
  std::string reason;
  bool major = false;
  int level = 0;
  int approval_type = 0;
  int max_size = 0;
};

/// What `spc path` is given.
struct PathRequest {
  std::string path;  ///< or a number
  std::string kind;  ///< empty: all
};

/// What `spc tree` is given.
struct TreeRequest {
  std::string path;  ///< or a number; empty: the root
  int depth = 0;     ///< 0: all levels
  bool all = false;  ///< with what is hidden
};

/// What `spc range` is given.
struct RangeRequest {
  std::string line;
  std::string at;  ///< empty: the present
  std::string week_start = "Sunday";
  bool utc = false;
  bool xml = false;
};

/// What `spc schedule` is given.
struct ScheduleRequest {
  std::string text;
  std::string repeat;  ///< empty: none
  std::string start;   ///< empty: no date
  std::string end;     ///< empty: no date
  std::string after;   ///< empty: the present
  int count = 10;
};

int create_database(const Place& place, const Terminal& terminal);
int check_database(const Place& place, const Terminal& terminal);
int import_samples(const Place& place, const ImportRequest& request, const Terminal& terminal);
/// `profile` may be empty.
/// `as_user` sees samples of the profiles open to that user; 0 sees all.
int list_samples(const Place& place, const std::string& profile, std::size_t limit, int as_user,
                 const Terminal& terminal);
int show_sample(const Place& place, long sample, const Terminal& terminal);
/// `table` may be empty, for all.
int check_numbers(const Place& place, const std::string& table, const Terminal& terminal);
int repair_numbers(const Place& place, const std::string& table, const Terminal& terminal);
int list_settings(const Place& place, const Terminal& terminal);
int get_setting(const Place& place, const std::string& key, const Terminal& terminal);
int get_payload(const Place& place, const PayloadRequest& request, const Terminal& terminal);
int put_payload(const Place& place, const PayloadRequest& request, const Terminal& terminal);
int delete_payload(const Place& place, const PayloadRequest& request, const Terminal& terminal);
int add_revision(const Place& place, const RevisionRequest& request, const Terminal& terminal);
int list_revisions(const Place& place, const RevisionRequest& request, const Terminal& terminal);
int show_revision(const Place& place, const RevisionRequest& request, const Terminal& terminal);
int get_revision(const Place& place, const RevisionRequest& request, const Terminal& terminal);
int approve_revision(const Place& place, const RevisionRequest& request, const Terminal& terminal);
/// Without `yes` they say what they would change, and fail.
int rebuild_revisions(const Place& place, bool yes, const Terminal& terminal);
int reset_revisions(const Place& place, bool yes, const Terminal& terminal);
/// `as_user` as above.
int show_path(const Place& place, const PathRequest& request, int as_user, const Terminal& terminal);
int show_tree(const Place& place, const TreeRequest& request, int as_user, const Terminal& terminal);
/// They need no database.
int show_range(const RangeRequest& request, const Terminal& terminal);
int show_schedule(const ScheduleRequest& request, const Terminal& terminal);

}  // namespace spc
