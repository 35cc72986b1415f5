// Plan, on SQLite and on a private MariaDB server
//   Nothing is found in a new database, nor in a sound plant
//   Each fault alone: it is found by its name, in its table, with its ids in order, and nothing else is found
//   All faults in one database: each is found all the same
//   Every kind is planted here, but for those that need another schema or server, which have their own tests
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/tools/doctor_faults.h"

namespace {

using doctor_test::Fault;
using doctor_test::faults_in_rows;
using doctor_test::Found;
using test_support::ServerKind;

class SoundDatabase : public testing::TestWithParam<ServerKind> {};
INSTANTIATE_TEST_SUITE_P(Servers, SoundDatabase, test_support::main_servers(), test_support::server_name);

TEST_P(SoundDatabase, that_is_new_has_no_findings) {
  test_support::SchemaDatabase database(GetParam());
  EXPECT_EQ(doctor_test::findings_of(database.connect_text()), std::vector<Found>());
}

TEST_P(SoundDatabase, with_a_plant_in_it_has_no_findings) {
  test_support::SchemaDatabase database(GetParam());
  doctor_test::build_sound_plant(database);
  EXPECT_EQ(doctor_test::findings_of(database.connect_text()), std::vector<Found>());
}

TEST_P(SoundDatabase, with_all_faults_at_once_names_each) {
  test_support::SchemaDatabase database(GetParam());
  doctor_test::build_sound_plant(database);
  for (const Fault& fault : faults_in_rows())
    doctor_test::plant(database, fault);
  const auto findings = doctor_test::findings_of(database.connect_text());
  for (const Fault& fault : faults_in_rows()) {
    const auto found = std::ranges::find_if(findings, [&](const Found& finding) {
      return finding.name == fault.found.name && finding.table == fault.found.table;
    });
    ASSERT_NE(found, findings.end()) << fault;
    for (const auto& id : fault.found.ids)
      EXPECT_TRUE(std::ranges::find(found->ids, id) != found->ids.end()) << fault << "\nfound " << *found;
  }
}

TEST_P(SoundDatabase, with_one_fault_names_it_and_nothing_else) {
  test_support::SchemaDatabase database(GetParam());
  doctor_test::build_sound_plant(database);
  for (const Fault& fault : faults_in_rows()) {
    auto findings = doctor_test::findings_with(database, fault);
    // The values of the characteristic could not be in the profile without an entry that leads nowhere either.
    if (fault.found.name == "value-without-characteristic")
      std::erase(findings, Found{"element-missing", "CSCINP", fault.found.ids});
    EXPECT_EQ(findings, std::vector{fault.found});
  }
  EXPECT_EQ(doctor_test::findings_of(database.connect_text()), std::vector<Found>()) << "the faults have stayed";
}

TEST(PlantedFaults, are_of_every_kind_but_those_of_the_schema_and_the_server) {
  std::set<std::string> kinds;
  for (const Fault& fault : faults_in_rows()) {
    kinds.insert(fault.found.name);
    EXPECT_NE(spc::doctor::find_check(fault.found.name), nullptr) << fault;
  }
  EXPECT_GT(kinds.size(), 40U);
  // The rest is planted where schemas are altered, and where a script plays the server.
  std::set<std::string> elsewhere = {"auto-flag-missing", "definition-of-later-version", "revision-doubled"};
  for (const auto& theme : {spc::doctor::schema_checks(), spc::doctor::server_checks()})
    for (const auto& check : theme)
      elsewhere.insert(check.name);
  for (const auto& check : spc::doctor::all_checks())
    EXPECT_NE(kinds.contains(check.name), elsewhere.contains(check.name)) << check.name;
}

}  // namespace
