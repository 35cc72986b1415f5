/// The database of the demo: a file that goes again, one that is kept, or a database on a server.
///
/// Part of the command.
#pragma once

#include <string>

#include "tools/spc/demo.h"
#include "tools/spc/link.h"

namespace spc {

/// The place for the demo, for as long as it runs.
class DemoDatabase {
 public:
  /// Nothing is made for a dry run.
  /// Fails: Problem when the file to keep is there already, or no temporary folder can be made.
  DemoDatabase(const DemoRequest& request, bool dry_run);
  /// Removes what is temporary. The connection must be closed by then.
  ~DemoDatabase();
  DemoDatabase(const DemoDatabase&) = delete;
  DemoDatabase& operator=(const DemoDatabase&) = delete;

  /// The demo was not finished: empties the database, and removes a file that was to be kept when the object goes.
  /// Gives what stands.
  /// Fails: Problem.
  std::string give_up(Link& link);

  const std::string& connect_text() const { return connect_text_; }
  /// What to do with the database next, in a line.
  std::string farewell() const;

 private:
  std::string folder_;  ///< temporary; else empty
  std::string file_;    ///< to be kept; else empty
  bool given_up_ = false;
  std::string connect_text_;
  std::string next_;  ///< the options that name the database again; empty when it is temporary
};

/// Drops what an earlier demo has left, and nothing else.
/// Fails: Problem when the database holds the schema and is not a demo's, or has samples beside the demo's.
void make_room_for_demo(Link& link);

/// Marks a database as a demo's, by a row of CSINI.
void mark_as_demo(Link& link);

}  // namespace spc
