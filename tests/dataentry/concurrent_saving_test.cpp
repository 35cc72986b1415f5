// Several processes that save samples into one database through one set of running numbers.
//
// Plan
//   numbers              none lost, none double, the counter stands at the last
//   samples              each whole: its row, its approval, its five pieces, its labels
#include <set>
#include <sstream>

#include "tests/dataentry/data_entry_fixture.h"
#include "tests/dataentry/data_entry_process.h"

namespace {

using test_support::DataEntryProcess;

class ConcurrentSaving : public test_support::DatabaseTest {
 protected:
  /// Lets the processes run side by side and gives the numbers of their samples.
  std::vector<int> save(int processes, int samples_each) {
    std::vector<DataEntryProcess> running;
    for (int seed = 1; seed <= processes; ++seed)
      running.emplace_back(std::vector<std::string>{"save", database().connect_text(), "9",
                                                    std::to_string(samples_each), std::to_string(seed)});
    std::vector<int> samples;
    for (DataEntryProcess& process : running) {
      std::istringstream output(process.finish());
      for (int sample = 0; output >> sample;)
        samples.push_back(sample);
    }
    return samples;
  }

  void expect_whole_samples(int count) {
    const std::string all = std::to_string(count);
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP WHERE PROFID = 9"), all);
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSSPAPPR"), all);
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSVDAT"), std::to_string(count * 5));
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSLDAT WHERE LABELID = 23"), all);
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSLDAT WHERE LABELID = 30 AND LABVALUE = 'North'"), all);
    // The numbers of a sample begin with a whole number that no other sample has.
    EXPECT_EQ(value("SELECT COUNT(*) FROM (SELECT SAMPID FROM CSVDAT GROUP BY SAMPID HAVING COUNT(*) = 5 AND "
                    "MAX(VARVALUE) - MIN(VARVALUE) < 0.5) WHOLE_SAMPLES"),
              all);
    EXPECT_EQ(value("SELECT COUNT(DISTINCT VARVALUE) FROM CSVDAT WHERE PIECENO = 1"), all);
    EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), all);
    EXPECT_EQ(value("SELECT COUNT(DISTINCT NAME) FROM CSVALUE"), "7");
  }

  void prepare() {
    test_support::Plant plant(database());
    plant.standard();
    plant.profile(9, {{'c', 10}, {'l', 23}});
  }
};

TEST_P(ConcurrentSaving, four_processes_save_fifty_samples_each_and_none_is_lost_or_double) {
  prepare();
  const std::vector<int> samples = save(4, 50);
  EXPECT_EQ(samples.size(), 200U);
  const std::set<int> distinct(samples.begin(), samples.end());
  EXPECT_EQ(distinct.size(), 200U);
  EXPECT_EQ(*distinct.begin(), 1);
  EXPECT_EQ(*distinct.rbegin(), 200);
  expect_whole_samples(200);
}

INSTANTIATE_TEST_SUITE_P(Servers, ConcurrentSaving, test_support::main_servers(), test_support::server_name);

}  // namespace
