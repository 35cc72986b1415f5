/// The jobs that are measured. To add one: write a file with a function that returns a `Job`, name it in `all_jobs`.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/plant.h"
#include "bench/tally.h"
#include "spcbase/foundation/connection.h"

namespace bench {

/// One side of a job.
class Work {
 public:
  virtual ~Work() = default;
  /// Does the work once. This is what the clock sees.
  virtual void run() = 0;
  /// Does it once and tells which statements were sent for it.
  virtual Tally statements_of_one() = 0;
  /// A number that both sides must agree on when each has done the work equally often; it depends on every value that
  /// was read or written.
  virtual double result() { return sum_; }

 protected:
  double sum_ = 0;
};

/// Both sides.
struct Pair {
  std::unique_ptr<Work> ours;
  std::unique_ptr<Work> plain;  ///< null when plain C has no counterpart; then ours may send no statement
};

/// What one line of memory says: how far the peak grew while the work was done.
struct Growth {
  double ours_mib = 0;
  double plain_mib = 0;
};

/// One line of the table for each server, or one line alone. Either `pair` is set, and times are measured, or `growth`,
/// or `pair_alone`.
struct Job {
  std::string name;
  double sqlite_limit = 0;  ///< times plain; without a plain side microseconds; of a growth MiB for ours
  double mariadb_limit = 0;
  Pair (*pair)(Plant&) = nullptr;
  Growth (*growth)(Plant&) = nullptr;
  Pair (*pair_alone)() = nullptr;  ///< two sides that need no database: measured once, not for each server
  double alone_limit = 0;          ///< of `pair_alone`; as the other limits

  bool needs_server() const { return pair_alone == nullptr; }

  double limit(Server server) const { return server == Server::sqlite ? sqlite_limit : mariadb_limit; }
};

Job save_sample();
Job read_sample();
Job scan();
Job open_row();
Job write_payload();
Job read_payload();
Job add_revision();
Job add_after_100();
Job add_after_1000();
Job add_after_10000();
Job read_revision();
Job cached_revision();
Job list_revisions();
Job list_definitions();
Job resolve_path();
Job slow_name();
Job scan_memory();
Job integers_to_array();
Job integers_to_vector();
Job bytes_to_array();
Job bytes_to_vector();
Job texts_to_array();
Job texts_to_vector();
Job read_xml();
Job encipher_secret();
Job decipher_secret();
Job parse_schedule();
Job parse_schedule_by_regex();
Job parse_schedule_by_hand();
Job parse_range();
Job parse_fixed_range();
Job parse_range_by_regex();
Job parse_range_by_hand();

/// Every job, in the order of the table.
std::vector<Job> all_jobs();

/// A side that needs no database.
class WorkAlone : public Work {
 public:
  Tally statements_of_one() override {
    run();
    return {};
  }
};

/// Our side on a connection of its own.
class OurWork : public Work {
 public:
  explicit OurWork(const Place& place) { db_.OpenEx(place.connect_text.c_str()); }
  Tally statements_of_one() override;

 protected:
  CDatabaseEx& db() { return db_; }

 private:
  CDatabaseEx db_;
};

/// The plain side on a connection of its own.
template <class Database>
class PlainWork : public Work {
 public:
  explicit PlainWork(const Place& place) : db_(place.plain_text) {}
  Tally statements_of_one() override {
    const Tally before = db_.tally();
    run();
    Tally sent = db_.tally();
    for (const auto& [shape, count] : before)
      if ((sent[shape] -= count) == 0) sent.erase(shape);
    return sent;
  }

 protected:
  Database db_;
};

/// The plain side for the server of a place; `Side` is a template over the connection. Static, because g++ 12 takes
/// templates of one name in two files' unnamed namespaces for the same argument.
template <template <class> class Side>
static std::unique_ptr<Work> make_plain(const Place& place) {
  if (place.server == Server::sqlite) return std::make_unique<Side<PlainSqlite>>(place);
  return std::make_unique<Side<PlainOdbc>>(place);
}

/// Both sides on the databases of these places, which may be one.
template <class Ours, template <class> class Plain>
static Pair make_pair_of(const Place& ours, const Place& plain) {
  return {std::make_unique<Ours>(ours), make_plain<Plain>(plain)};
}

}  // namespace bench
