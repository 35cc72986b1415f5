#include "spcbase/testkit/demo_plant.h"

#include "spcbase/testkit/plant.h"

namespace plant {
namespace {

/// The two labels that the system fills, and one that two profiles share.
struct SharedLabels {
  int station;
  int operator_name;
  int taken_at;
};

Known add_piston_rings(Builder& builder, const SharedLabels& shared) {
  const int diameter = builder.add_characteristic({"Diameter", "inside diameter in millimetres", Kind::number, 5});
  const int gauge = builder.add_label({"Gauge", Holds::each_piece, Values::text});
  const int phase = builder.add_label({"Phase", Holds::whole_sample, Values::text});
  const std::string name = "Piston rings";
  return {builder.add_profile(name, "forged piston rings, 5 of each hour",
                              {label(phase), label(shared.taken_at), characteristic(diameter), label(gauge),
                               auto_label(shared.station), auto_label(shared.operator_name)}),
          name};
}

Known add_juice_cans(Builder& builder, const SharedLabels& shared) {
  const int leaking =
      builder.add_characteristic({"Nonconforming", "cans that leak, of those inspected", Kind::total, 0});
  const int stock = builder.add_label({"Cardboard", Holds::whole_sample, Values::growing_list});
  const std::string name = "Juice cans";
  return {builder.add_profile(name, "cardboard cans of frozen juice, every half hour",
                              {label(shared.taken_at), label(stock), characteristic(leaking),
                               auto_label(shared.station), auto_label(shared.operator_name)}),
          name};
}

Known add_circuit_boards(Builder& builder, const SharedLabels& shared) {
  const int defects = builder.add_characteristic({"Defects", "on a unit of printed circuit boards", Kind::defects, 1});
  const int boards = builder.add_label({"Boards", Holds::whole_sample, Values::text});
  const std::string name = "Circuit boards";
  return {builder.add_profile(
              name, "inspection units of printed circuit boards",
              {characteristic(defects), label(boards), auto_label(shared.station), auto_label(shared.operator_name)}),
          name};
}

Known add_station(Builder& builder, const std::string& name) { return {builder.add_station(name), name}; }

Known add_user(Builder& builder, const std::string& name, const std::string& full_name) {
  return {builder.add_user(name, full_name), name};
}

Known add_folder(Builder& builder, const std::string& name, int parent) {
  return {builder.add_folder(name, parent), name};
}

Known add_monitor(Builder& builder, const std::string& name, const std::string& description, int folder) {
  Known monitor = {builder.add_monitor(name, description), name};
  builder.put_monitor(folder, monitor.id);
  return monitor;
}

void add_tree(Builder& builder, DemoPlant& plant) {
  const int top = builder.add_folder("Plant", 0);
  const int forge = builder.add_folder("Forge", top);
  plant.line_1 = add_folder(builder, "Line 1", forge);
  const int line_2 = builder.add_folder("Line 2", forge);
  // The separator within a name, as people write it.
  plant.filling_folder = add_folder(builder, "Filling / packing", top);
  plant.electronics = add_folder(builder, "Electronics", top);
  plant.ring_diameter = add_monitor(builder, "Ring diameter", "diameter of piston rings", plant.line_1.id);
  plant.press_force = add_monitor(builder, "Press force", "force of press 2", line_2);
  plant.leaking_cans = add_monitor(builder, "Leaking cans", "juice cans that leak", plant.filling_folder.id);
  plant.board_defects = add_monitor(builder, "Board defects", "defects of circuit boards", plant.electronics.id);
  builder.put_profile(plant.line_1.id, plant.piston_rings.id);
  builder.put_profile(plant.filling_folder.id, plant.juice_cans.id);
  builder.put_profile(plant.electronics.id, plant.circuit_boards.id);
}

void add_viewers(Builder& builder, DemoPlant& plant) {
  plant.filling_group = builder.add_group();
  builder.add_member(plant.filling_group, plant.bo.id);
  builder.add_member(plant.filling_group, plant.chloe.id);
  builder.show_profile(plant.piston_rings.id, user(plant.anna.id));
  builder.show_profile(plant.juice_cans.id, group(plant.filling_group));
  builder.show_profile(plant.circuit_boards.id, user(plant.anna.id));
  builder.show_profile(plant.circuit_boards.id, group(plant.filling_group));
}

}  // namespace

DemoPlant build_demo_plant(CDatabase& db) {
  Builder builder(db);
  DemoPlant plant;
  plant.forge = add_station(builder, "Forge 2");
  plant.filling_line = add_station(builder, "Filling line");
  plant.board_assembly = add_station(builder, "Board assembly");
  plant.anna = add_user(builder, "anna", "Anna Weber");
  plant.bo = add_user(builder, "bo", "Bo Lindqvist");
  plant.chloe = add_user(builder, "chloé", "Chloé Martin");
  const SharedLabels shared = {builder.add_label({"STATION", Holds::whole_sample, Values::text}),
                               builder.add_label({"OPERATOR", Holds::whole_sample, Values::text}),
                               builder.add_label({"Taken at", Holds::whole_sample, Values::moment})};
  plant.piston_rings = add_piston_rings(builder, shared);
  plant.juice_cans = add_juice_cans(builder, shared);
  plant.circuit_boards = add_circuit_boards(builder, shared);
  add_tree(builder, plant);
  add_viewers(builder, plant);
  plant.rows = builder.rows();
  return plant;
}

}  // namespace plant
