// Plan
//   What the builder adds stands in its table, under the next id of its running number -> Builder
//   The entries of a profile keep their order; what belongs together is linked
//   rows counts every row that was added, and a refused one is a failure
//   The demo's plant is what its header draws, and every row of it is counted -> build_demo_plant
#include "spcbase/testkit/plant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "schema/description.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/demo_plant.h"
#include "spcbase/tree/path.h"
#include "tests/support/row_texts.h"

namespace {

using plant::Builder;
using plant::Holds;
using plant::Kind;
using plant::Values;
using test_support::row_texts;
using testing::ElementsAre;

class BuilderTest : public test_support::DatabaseTest {
 protected:
  std::vector<std::string> rows(const std::string& statement) { return row_texts(database(), statement); }

  /// Every row of the schema but those of the running numbers.
  std::size_t all_rows() {
    std::size_t count = 0;
    for (const auto& table : schema::tables())
      count += std::stoul(value("SELECT COUNT(*) FROM " + std::string(table.name)));
    return count;
  }
};

class PlantBuilder : public BuilderTest {};
INSTANTIATE_TEST_SUITE_P(Servers, PlantBuilder, test_support::main_servers(), test_support::server_name);

TEST_P(PlantBuilder, takes_ids_from_the_running_numbers) {
  execute("UPDATE CSSTRN SET MAXNO = 40");
  Builder builder(db());
  EXPECT_EQ(builder.add_station("Forge 2"), 41);
  EXPECT_EQ(builder.add_station("Chloé's bench"), 42);
  EXPECT_THAT(rows("SELECT STNID, NAME FROM CSSTN ORDER BY STNID"), ElementsAre("41|Forge 2", "42|Chloé's bench"));
  EXPECT_EQ(value("SELECT MAXNO FROM CSSTRN"), "42");
}

TEST_P(PlantBuilder, adds_users_with_a_password_or_an_empty_one) {
  Builder builder(db());
  builder.add_user("anna", "Anna Weber");
  builder.add_user("bo", "Bo Lindqvist", "secret");
  EXPECT_THAT(rows("SELECT USERID, NAME, FULLNAME, COALESCE(PASSWORD, '') FROM CSUSER ORDER BY USERID"),
              ElementsAre("1|anna|Anna Weber|", "2|bo|Bo Lindqvist|secret"));
}

TEST_P(PlantBuilder, adds_characteristics_of_each_kind) {
  Builder builder(db());
  builder.add_characteristic({"Diameter", "inside, mm", Kind::number, 5});
  builder.add_characteristic({"Defects", "on a board", Kind::defects, 1});
  builder.add_characteristic({"Leaking", "of those inspected", Kind::total, 0});
  EXPECT_THAT(rows("SELECT CHRTID, NAME, CTYPE, CFLG2, SGSIZE FROM CSCHRT ORDER BY CHRTID"),
              ElementsAre("1|Diameter|VARIABLE|0|5", "2|Defects|ATTRIBUTE|0|1", "3|Leaking|ATTRIBUTE|1|0"));
}

TEST_P(PlantBuilder, adds_labels_of_each_kind) {
  Builder builder(db());
  builder.add_label({"Gauge", Holds::each_piece, Values::text});
  builder.add_label({"Taken at", Holds::whole_sample, Values::moment});
  builder.add_label({"Batch", Holds::whole_sample, Values::growing_list});
  EXPECT_THAT(rows("SELECT LABELID, NAME, LTYPE, COALESCE(LISTTYPE, '') FROM CSLABEL ORDER BY LABELID"),
              ElementsAre("1|Gauge|PIECE|", "2|Taken at|SAMPLE|DATETIME", "3|Batch|SAMPLE|DYNAMIC"));
}

TEST_P(PlantBuilder, keeps_the_order_of_a_profiles_entries) {
  Builder builder(db());
  const int number = builder.add_characteristic({"Diameter", "", Kind::number, 5});
  const int text = builder.add_label({"Phase", Holds::whole_sample, Values::text});
  const int station = builder.add_label({"STATION", Holds::whole_sample, Values::text});
  const int id = builder.add_profile("Rings", "forged",
                                     {plant::label(text), plant::characteristic(number), plant::auto_label(station)});
  EXPECT_THAT(rows("SELECT PROFID, NAME, DESCR FROM CSPROF"), ElementsAre(std::to_string(id) + "|Rings|forged"));
  EXPECT_THAT(rows("SELECT SEQNO, CHRTID FROM CSCINP"), ElementsAre("2|" + std::to_string(number)));
  EXPECT_THAT(rows("SELECT SEQNO, LABELID, ALFLG FROM CSLINP ORDER BY SEQNO"),
              ElementsAre("1|" + std::to_string(text) + "|NO", "3|" + std::to_string(station) + "|YES"));
}

TEST_P(PlantBuilder, puts_objects_into_folders_and_lists_who_sees_them) {
  Builder builder(db());
  const int top = builder.add_folder("Plant", 0);
  const int forge = builder.add_folder("Forge", top);
  builder.put_monitor(forge, builder.add_monitor("Force", "of press 2"));
  const int profile = builder.add_profile("Rings", "", {});
  builder.put_profile(forge, profile);
  EXPECT_STREQ(get_node_path(&db(), forge, true).GetString(), "/Plant/Forge");
  EXPECT_EQ(get_mon_id_from_path(&db(), "/Plant/Forge/Force"), 1);
  EXPECT_EQ(get_prof_id_from_path(&db(), "/Plant/Forge/Rings"), profile);

  const int anna = builder.add_user("anna", "Anna Weber");
  const int group = builder.add_group();
  builder.add_member(group, anna);
  builder.show_profile(profile, plant::user(anna));
  builder.show_profile(profile, plant::group(group));
  builder.show_data_source(9, plant::user(anna));
  builder.show_data_source(9, plant::group(group));
  EXPECT_THAT(rows("SELECT GROUPID, USERID FROM CSUSGP"), ElementsAre("1|1"));
  EXPECT_THAT(rows("SELECT PROFID, USERID FROM CSUINP"), ElementsAre("1|1"));
  EXPECT_THAT(rows("SELECT PROFID, GROUPID FROM CSGINP"), ElementsAre("1|1"));
  EXPECT_THAT(rows("SELECT EXDBID, USERID FROM CSUINEDB"), ElementsAre("9|1"));
  EXPECT_THAT(rows("SELECT EXDBID, GROUPID FROM CSGINEDB"), ElementsAre("9|1"));
  EXPECT_EQ(builder.rows(), all_rows());
}

TEST_P(PlantBuilder, fails_when_a_running_number_cannot_be_had) {
  execute("DELETE FROM CSSTRN");
  Builder builder(db());
  const auto added = guarded([&] { builder.add_station("Forge 2"); });
  ASSERT_FALSE(added);
  EXPECT_EQ(added.failure().kind, FailureKind::library);
  EXPECT_THAT(added.failure().text.GetString(), testing::HasSubstr("CSSTRN"));
  EXPECT_EQ(all_rows(), 0U);
}

TEST_P(PlantBuilder, tells_the_databases_refusal) {
  execute("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'there already')");
  Builder builder(db());
  const auto added = guarded([&] { builder.add_station("Forge 2"); });
  ASSERT_FALSE(added);
  EXPECT_EQ(added.failure().failure_class, FailureClass::duplicate_key);
}

class Demo : public BuilderTest {
 protected:
  plant::DemoPlant demo = plant::build_demo_plant(db());

  void expect_named(const char* table, const char* id_column, const plant::Known& known) {
    const std::string id = std::to_string(known.id);
    EXPECT_EQ(value(std::string("SELECT NAME FROM ") + table + " WHERE " + id_column + " = " + id), known.name);
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, Demo, test_support::main_servers(), test_support::server_name);

TEST_P(Demo, plant_has_what_it_names) {
  for (const auto& station : {demo.forge, demo.filling_line, demo.board_assembly})
    expect_named("CSSTN", "STNID", station);
  for (const auto& user : {demo.anna, demo.bo, demo.chloe})
    expect_named("CSUSER", "USERID", user);
  for (const auto& profile : {demo.piston_rings, demo.juice_cans, demo.circuit_boards})
    expect_named("CSPROF", "PROFID", profile);
  for (const auto& folder : {demo.line_1, demo.filling_folder, demo.electronics})
    expect_named("CSNODE", "NODEID", folder);
  for (const auto& monitor : {demo.ring_diameter, demo.press_force, demo.leaking_cans, demo.board_defects})
    expect_named("CSMON", "MONID", monitor);
}

TEST_P(Demo, plant_has_the_folders_that_its_header_draws) {
  const auto monitor = [&](const char* path) { return get_mon_id_from_path(&db(), path); };
  const auto profile = [&](const char* path) { return get_prof_id_from_path(&db(), path); };
  EXPECT_EQ(monitor("/Plant/Forge/Line 1/Ring diameter"), demo.ring_diameter.id);
  EXPECT_EQ(monitor("/Plant/Forge/Line 2/Press force"), demo.press_force.id);
  EXPECT_EQ(monitor("/Plant/Electronics/Board defects"), demo.board_defects.id);
  EXPECT_EQ(monitor("/Plant/Filling // packing/Leaking cans"), demo.leaking_cans.id);
  EXPECT_EQ(profile("/Plant/Forge/Line 1/Piston rings"), demo.piston_rings.id);
  EXPECT_EQ(profile("/Plant/Filling // packing/Juice cans"), demo.juice_cans.id);
  EXPECT_EQ(profile("/Plant/Electronics/Circuit boards"), demo.circuit_boards.id);
}

TEST_P(Demo, plant_shows_each_profile_to_those_whom_its_header_names) {
  const auto viewers = [&](const plant::Known& profile) {
    const std::string is_it = " = " + std::to_string(profile.id);
    return rows("SELECT NAME FROM CSUSER WHERE USERID IN (SELECT USERID FROM CSUINP WHERE PROFID" + is_it +
                ") OR USERID IN (SELECT M.USERID FROM CSUSGP M, CSGINP G WHERE G.GROUPID = M.GROUPID AND G.PROFID" +
                is_it + ") ORDER BY USERID");
  };
  EXPECT_THAT(viewers(demo.piston_rings), ElementsAre("anna"));
  EXPECT_THAT(viewers(demo.juice_cans), ElementsAre("bo", "chloé"));
  EXPECT_THAT(viewers(demo.circuit_boards), ElementsAre("anna", "bo", "chloé"));
}

TEST_P(Demo, plant_counts_its_rows) { EXPECT_EQ(demo.rows, all_rows()); }

}  // namespace
