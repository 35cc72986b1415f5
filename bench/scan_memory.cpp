// A forward-only scan of 1,000,000 rows: the memory that the library takes for it must not depend on their number.
//
// MariaDB's ODBC driver (3.1.15) takes every result whole when the statement is executed, whatever cursor or option it
// is told (FORWARDONLY and NO_CACHE included), about 47 bytes for each of these rows: that is what the plain side pays.
// Ours reads in pages there, so its memory does not depend on the number of rows.
#include "bench/scan_memory.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>

#include "bench/jobs.h"
#include "spcbase/foundation/schema/data_entry.h"

namespace bench {
namespace {

/// Enough that every cache is full.
constexpr const char* some_samples = "SAMPID <= 1600";
constexpr long some_rows = 200'000;
constexpr long all_rows = 1'000'000;

/// The peak of this process's memory so far, in KiB.
long peak_kib() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word != "VmHWM:") continue;
    long kib = 0;
    status >> kib;
    return kib;
  }
  throw std::runtime_error("the system does not tell the peak of the memory");
}

void require(long rows, long expected) {
  if (rows != expected) throw std::runtime_error("the scan gave " + std::to_string(rows) + " rows");
}

long scan_ours(CDatabase& db, const char* filter) {
  CRSVariable rows(&db);
  rows.m_strFilter = filter;
  rows.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::executeDirect | CRecordset::inPages);
  long count = 0;
  for (; !rows.m_bEOF; rows.MoveNext())
    ++count;
  return count;
}

template <class Database>
long scan_plain(Database& db, const std::string& sql) {
  constexpr int block_rows = 100;
  auto& rows = db.prepare(sql, "", "iiid", block_rows);
  long count = 0;
  for (bool has_row = rows.query(); has_row; has_row = rows.next())
    ++count;
  rows.close();
  return count;
}

long growth_of_ours(const Place& place) {
  CDatabase db;
  db.OpenEx(place.connect_text.c_str());
  require(scan_ours(db, some_samples), some_rows);
  const long before = peak_kib();
  require(scan_ours(db, ""), all_rows);
  return std::max(0L, peak_kib() - before);
}

template <class Database>
long growth_of_plain(const Place& place) {
  const std::string sql = "SELECT SAMPID,CHRTID,PIECENO,VARVALUE FROM CSVDAT";
  Database db(place.plain_text);
  require(scan_plain(db, sql + " WHERE " + some_samples), some_rows);
  const long before = peak_kib();
  require(scan_plain(db, sql), all_rows);
  return std::max(0L, peak_kib() - before);
}

/// Runs this program again for one side, so that nothing that earlier jobs took and gave back hides the growth.
double growth_mib(const char* side, const Place& place) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe for the memory job");
  const bool ours = std::string(side) == "ours";
  const std::string& text = ours ? place.connect_text : place.plain_text;
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    ::execl("/proc/self/exe", "spcbase_bench", scan_memory_word, side, name_of(place.server), text.c_str(), nullptr);
    ::_exit(127);
  }
  ::close(ends[1]);
  std::array<char, 64> answer{};
  const auto length = ::read(ends[0], answer.data(), answer.size() - 1);
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (status != 0 || length <= 0) throw std::runtime_error(std::string("the scan failed: ") + side);
  return static_cast<double>(std::stol(answer.data())) / 1024;
}

}  // namespace

int scan_and_print_growth(const std::string& side, const std::string& server, const std::string& text) {
  Place place;
  place.server = server == name_of(Server::sqlite) ? Server::sqlite : Server::mariadb;
  place.connect_text = place.plain_text = text;
  const bool sqlite = place.server == Server::sqlite;
  const long growth = side == "ours" ? growth_of_ours(place)
                      : sqlite       ? growth_of_plain<PlainSqlite>(place)
                                     : growth_of_plain<PlainOdbc>(place);
  std::printf("%ld\n", growth);
  return 0;
}

Job scan_memory() {
  Job job;
  job.name = "memory, scan of 1,000,000 rows";
  job.sqlite_limit = 4.0;
  job.mariadb_limit = 4.0;
  job.growth = [](Plant& plant) {
    const Place& place = plant.filled_to_a_million();
    return Growth{growth_mib("ours", place), growth_mib("plain", place)};
  };
  return job;
}

}  // namespace bench
