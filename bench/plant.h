/// The databases that jobs run on: fresh ones with the whole schema and one profile of 25 characteristics with 5 pieces
/// each.
#pragma once

#include <memory>
#include <string>

#include "bench/plain_odbc.h"
#include "bench/plain_sqlite.h"
#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/scratch_folder.h"

namespace bench {

/// The one profile. Its characteristics have the numbers from 1 on.
inline constexpr int profile_id = 1;
inline constexpr int characteristics = 25;
inline constexpr int pieces = 5;
inline constexpr int rows_per_sample = characteristics * pieces;
/// Of the objects that have revisions.
inline constexpr int object_type = 3;

/// The measured value that the filled tables hold for a place.
double measured_value(int sample, int characteristic, int piece);

enum class Server { sqlite, mariadb };

/// "SQLite" or "MariaDB".
const char* name_of(Server server);

/// A database, and the texts that name it.
struct Place {
  Server server = Server::sqlite;
  std::string connect_text;  ///< for `CDatabase::OpenEx`
  std::string plain_text;    ///< a file, or the connect text without its prefix
};

/// Makes and fills databases on one server. All of them are gone with the object.
class Plant {
 public:
  explicit Plant(Server server);

  Server server() const { return server_; }

  /// A fresh database with the schema, the profile and no sample.
  Place make_database();
  /// One database for all jobs that read: at first 800 samples of 125 rows, 100,000 in all.
  const Place& filled();
  /// Fills that one up to 1,000,000 rows.
  const Place& filled_to_a_million();
  /// Gives an object its revisions from 1 to `count`, without payloads.
  void add_revisions(const Place& place, int object, int count);

 private:
  void run(const Place& place, const std::string& sql);
  void add_samples(const Place& place, int first, int last);

  Server server_;
  test_support::ScratchFolder folder_;
  std::vector<std::unique_ptr<test_support::TestDatabase>> databases_;
  std::unique_ptr<Place> filled_;
  int samples_ = 0;
  int made_ = 0;
};

}  // namespace bench
