// Plan
//   A million rows are audited in memory that does not grow with them: revisions with payloads, and measured values;
//     each of them sound, and each of them a fault
//   The one look that reads rows and does not have them counted holds no more of them behind a driver than in SQLite
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "spcbase/testkit/raw_sqlite.h"
#include "tests/support/memory_meter.h"
#include "tests/tools/doctor_faults.h"
#include "tools/spc/doctor/doctor.h"

namespace {

using test_support::ServerKind;

#if defined(__SANITIZE_ADDRESS__)
constexpr int many_rows = 50'000;
constexpr int server_rows = many_rows;
constexpr long most_page_kib = 32 * 1024;
#else
constexpr int many_rows = 1'000'000;
// A server needs longer to make them; a driver that held so many would be seen all the same.
constexpr int server_rows = many_rows / 5;
constexpr long most_page_kib = 16 * 1024;
#endif
constexpr int few_rows = 5'000;

/// What the cache of pages and the sorter of SQLite hold at most, whatever the rows.
constexpr long most_growth_kib = 8 * 1024;

/// A table N with the numbers from 1 on in its column I.
std::string numbers_to(const test_support::SchemaDatabase& database, int rows) {
  const std::string last = std::to_string(rows);
  if (database.kind() == ServerKind::mariadb) return "WITH N AS (SELECT seq AS I FROM seq_1_to_" + last + ") ";
  return "WITH RECURSIVE N (I) AS (VALUES (1) UNION ALL SELECT I + 1 FROM N WHERE I < " + last + ") ";
}

/// "1 for the first so many, then 2, and so on", in words that both servers reckon with whole numbers.
std::string group_of(int size) {
  const std::string rest = "(I - 1) % " + std::to_string(size);
  return "1 + (I - 1 - " + rest + ") / " + std::to_string(size);
}

void fill_with_revisions(test_support::SchemaDatabase& database, int rows) {
  database.execute("BEGIN");
  // Twenty revisions of each object.
  database.execute("INSERT INTO CSOBJREV (REVID, OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, CTIME) " +
                   numbers_to(database, rows) + "SELECT I, " + group_of(20) +
                   ", 1, 1 + (I - 1) % 20, 0, 1 + (I - 1) % 20, "
                   "'2024-03-05 08:00:00.000' FROM N");
  database.execute("INSERT INTO CSREVDAT " + numbers_to(database, rows) + "SELECT I, X'01' FROM N");
  database.execute("COMMIT");
}

void fill_with_values(test_support::SchemaDatabase& database, int rows) {
  database.execute("BEGIN");
  database.execute("INSERT INTO CSVDAT " + numbers_to(database, rows) + "SELECT " + group_of(50) +
                   ", 1, 1 + (I - 1) % 50, I / 7.0 FROM N");
  database.execute("INSERT INTO CSSAMP (SAMPID, PROFID, CTIME) " + numbers_to(database, rows / 50) +
                   "SELECT I, 1, '2024-03-05 08:00:00.000' FROM N");
  database.execute("INSERT INTO CSSPAPPR " + numbers_to(database, rows / 50) +
                   "SELECT I, 0, 0, 0, 0, 'anna', '2024-03-05 08:00:00.000' FROM N");
  database.execute("INSERT INTO CSPROF (PROFID, NAME) VALUES (1, 'Rings')");
  database.execute("INSERT INTO CSCHRT (CHRTID, NAME, CTYPE) VALUES (1, 'Width', 'VARIABLE')");
  database.execute("INSERT INTO CSCINP (PROFID, CHRTID, SEQNO) VALUES (1, 1, 1)");
  for (const char* counter : {"CSSPRN", "CSPFRN", "CSCHRN"})
    database.execute("UPDATE " + std::string(counter) + " SET MAXNO = 1000000");
  database.execute("COMMIT");
}

/// What an audit found, and by how much memory grew meanwhile.
struct Measured {
  std::vector<std::string> found;
  long growth_kib = 0;
  double seconds = 0;
};

Measured measure(test_support::SchemaDatabase& database) {
  spc::Link link(database.connect_text(), nullptr);
  // The machine's own zone is no part of the test.
  const auto checks = spc::doctor::chosen_checks({{}, {"server-zone"}, 5, false});
  Measured measured;
  const auto begin = std::chrono::steady_clock::now();
  test_support::MemoryMeter memory;
  const auto audit = spc::doctor::examine(link, checks, 5, [&] { memory.sample(); });
  measured.growth_kib = memory.growth_kib();
  measured.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  for (const auto& finding : audit.findings)
    measured.found.push_back(std::string(finding.check->name) + " " + std::to_string(finding.subjects.count));
  return measured;
}

using Fill = void (*)(test_support::SchemaDatabase&, int);

Measured measure_filled(ServerKind kind, Fill fill, int rows, const char* fault = nullptr) {
  test_support::SchemaDatabase database(kind);
  fill(database, rows);
  if (fault != nullptr) database.execute(fault);
  return measure(database);
}

class DoctorMemory : public testing::Test {
 protected:
  void SetUp() override {
    // What the first use of each part takes once is no part of the growth.
    measure_filled(ServerKind::sqlite, fill_with_revisions, few_rows);
    measure_filled(ServerKind::sqlite, fill_with_values, few_rows);
  }
  void tell(const Measured& measured) {
    RecordProperty("growth_kib", std::to_string(measured.growth_kib));
    RecordProperty("seconds", std::to_string(measured.seconds));
    std::printf("%d rows: %ld KiB, %.2f s\n", many_rows, measured.growth_kib, measured.seconds);
  }
};

TEST_F(DoctorMemory, does_not_grow_with_revisions) {
  const Measured many = measure_filled(ServerKind::sqlite, fill_with_revisions, many_rows);
  tell(many);
  EXPECT_EQ(many.found, std::vector<std::string>());
  EXPECT_LT(many.growth_kib, most_growth_kib);
}

TEST_F(DoctorMemory, does_not_grow_with_revisions_that_are_all_faults) {
  const Measured many = measure_filled(ServerKind::sqlite, fill_with_revisions, many_rows, "DELETE FROM CSREVDAT");
  tell(many);
  EXPECT_EQ(many.found, std::vector<std::string>{"revision-without-payload " + std::to_string(many_rows)});
  EXPECT_LT(many.growth_kib, most_growth_kib);
}

TEST_F(DoctorMemory, does_not_grow_with_versions_that_are_all_out_of_order) {
  const Measured many =
      measure_filled(ServerKind::sqlite, fill_with_revisions, many_rows, "UPDATE CSOBJREV SET MINORVER = 1");
  tell(many);
  EXPECT_EQ(many.found, std::vector<std::string>{"version-out-of-order " + std::to_string(many_rows / 20 * 19)});
  EXPECT_LT(many.growth_kib, most_growth_kib);
}

TEST_F(DoctorMemory, does_not_grow_with_values) {
  const Measured many = measure_filled(ServerKind::sqlite, fill_with_values, many_rows);
  tell(many);
  EXPECT_EQ(many.found, std::vector<std::string>());
  EXPECT_LT(many.growth_kib, most_growth_kib);
}

TEST_F(DoctorMemory, does_not_grow_with_values_that_are_all_faults) {
  const Measured many = measure_filled(ServerKind::sqlite, fill_with_values, many_rows, "DELETE FROM CSCHRT");
  tell(many);
  EXPECT_EQ(many.found, (std::vector<std::string>{"element-missing 1",
                                                  "value-without-characteristic " + std::to_string(many_rows)}));
  EXPECT_LT(many.growth_kib, most_growth_kib);
}

TEST(DoctorMemoryBehindADriver, does_not_grow_with_revisions) {
  measure_filled(ServerKind::mariadb, fill_with_revisions, few_rows);
  const Measured many = measure_filled(ServerKind::mariadb, fill_with_revisions, server_rows);
  std::printf("%d rows: %ld KiB, %.2f s\n", server_rows, many.growth_kib, many.seconds);
  EXPECT_EQ(many.found, std::vector<std::string>());
  EXPECT_LT(many.growth_kib, most_page_kib);  // a page of rows, as the driver holds it
}

}  // namespace
