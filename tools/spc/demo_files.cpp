#include "tools/spc/demo_files.h"

namespace spc {
namespace {

Named named(const plant::Known& known) { return {known.id, known.name}; }

Constant constant(std::string entry, std::string value) {
  return {std::move(entry), [value = std::move(value)](std::size_t, std::size_t) { return value; }};
}

/// A moment `minutes` after another for each sample, all within the days of one month from 06:00 on.
Constant every(std::string entry, std::size_t minutes) {
  return {std::move(entry), [minutes](std::size_t sample, std::size_t) {
            const std::size_t all = 6 * 60 + (sample - 1) * minutes;
            CString text;
            text.Format("2024-03-%02zu %02zu:%02zu:00", 4 + all / 1440, all / 60 % 24, all % 60);
            return std::string(text.view());
          }};
}

// The process ran well up to sample 25, whose limits the later ones are held against.
DemoFile piston_rings(const plant::DemoPlant& plant) {
  DemoFile file{"piston_rings.csv", named(plant.piston_rings), {}, {}};
  file.rules.names = {{"diameter_mm", "Diameter"}};
  file.rules.constants = {
      every("Taken at", 60),
      {"Phase", [](std::size_t sample, std::size_t) { return std::string(sample <= 25 ? "set-up" : "production"); }},
      {"Gauge",
       [](std::size_t, std::size_t piece) { return std::string(piece % 2 == 1 ? "bore gauge A" : "bore gauge B"); }}};
  file.shifts = {{1, {named(plant.forge), named(plant.anna)}}};
  return file;
}

// New stock from sample 15; a new operator at sample 23.
DemoFile juice_cans(const plant::DemoPlant& plant) {
  DemoFile file{"juice_cans.csv", named(plant.juice_cans), {}, {}};
  file.rules.names = {{"nonconforming", "Nonconforming"}, {"inspected", "Nonconforming.size"}};
  file.rules.constants = {every("Taken at", 30), {"Cardboard", [](std::size_t sample, std::size_t) {
                                                    return std::string(sample < 15 ? "old stock" : "new stock");
                                                  }}};
  file.shifts = {{1, {named(plant.filling_line), named(plant.bo)}},
                 {23, {named(plant.filling_line), named(plant.chloe)}},
                 {24, {named(plant.filling_line), named(plant.bo)}}};
  return file;
}

DemoFile circuit_boards(const plant::DemoPlant& plant) {
  DemoFile file{"circuit_boards.csv", named(plant.circuit_boards), {}, {}};
  file.rules.names = {{"nonconformities", "Defects.count"}, {"boards", "Boards"}};
  file.rules.constants = {constant("Defects.text", "nonconformity")};
  file.shifts = {{1, {named(plant.board_assembly), named(plant.anna)}}};
  return file;
}

}  // namespace

std::vector<DemoFile> demo_files(const plant::DemoPlant& plant) {
  return {piston_rings(plant), juice_cans(plant), circuit_boards(plant)};
}

}  // namespace spc
