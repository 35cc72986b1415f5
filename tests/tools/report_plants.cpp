#include "tests/tools/report_plants.h"

#include <algorithm>
#include <sstream>

#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/blob.h"
#include "spcbase/revision/manager.h"
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/plant.h"
#include "spcbase/testkit/zone_guard.h"
#include "tools/spc/demo.h"
#include "tools/spc/profile_shape.h"
#include "tools/spc/schema_work.h"

namespace report_test {
namespace {

using spc::report_page::ReportFacts;

constexpr int object_type = 9;

/// The clock and the zone of the pages.
struct AtTheMoment {
  test_support::ZoneGuard zone{"UTC"};
  test_support::HeldClock clock{test_support::utc(2024, 3, 15, 10, 30)};
};

const std::string& markup() {
  static const std::string name = R"(</style><b onclick="x">'&amp;' ]]> <!-- )";
  return name;
}
const std::string& both_directions() {
  static const std::string name = "קוטר הטבעת (mm) \u202e\u0642\u0637\u0631";
  return name;
}
const std::string& many_bytes() {
  static const std::string name = "Prüfmaß 直径 🌡️ \xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x94\xAC";
  return name;
}
const std::string& endless() {
  static const std::string name = std::string(120, 'W');
  return name;
}

struct Piece {
  _variant_t value;
  std::string gauge;
};

void add_sample(spc::Link& link, const spc::ProfileShape& shape, const std::string& phase,
                const std::vector<Piece>& pieces) {
  spc::Grid grid(shape.width, static_cast<LONG>(std::max<std::size_t>(pieces.size(), 1)));
  const auto put = [&](std::size_t column, std::size_t row, const _variant_t& value) {
    grid.put(shape.columns.at(column).index, static_cast<LONG>(row), value);
  };
  if (!phase.empty()) put(1, 0, _variant_t(phase.c_str()));
  for (std::size_t row = 0; row < pieces.size(); ++row) {
    put(0, row, pieces[row].value);
    if (!pieces[row].gauge.empty()) put(2, row, _variant_t(pieces[row].gauge.c_str()));
  }
  oldde::DEHelper helper;
  long sample = 0;
  double date = 0;
  helper.set_data(link.engine(), link.db(), &sample, shape.id, 0, 0, 0, "", grid.address(), &date);
}

void add_samples(spc::Link& link, int profile, const std::string& name) {
  const spc::ProfileShape shape = spc::read_shape(link, {profile, name});
  for (int i = 0; i < 9; ++i) {
    const double value = 1e9 + 0.001 * i;
    add_sample(link, shape, i < 5 ? both_directions() : markup(), {{value, markup()}, {value + 0.0005, ""}});
  }
  add_sample(link, shape, endless(), {{1e9 - 0.25, many_bytes()}, {1e9, ""}, {1e9 + 0.25, ""}});
  add_sample(link, shape, many_bytes(), {});
}

void add_history(spc::Link& link) {
  rev::RevisionManager manager(object_type, -1);
  CLongBinary payload;
  set_blob_data(payload, CString("payload"));
  for (const std::string& reason : {markup(), endless()})
    manager.add_new_revision(&link.db(), 0, 1, payload, 1, both_directions().c_str(), reason.c_str(), false);
  manager.approve(&link.db(), 0, 1, 2, 1, 0, 1, many_bytes().c_str(), markup().c_str(), false);
}

void add_folders(plant::Builder& builder, int profile) {
  int folder = 0;
  for (const std::string& name : {markup(), both_directions(), many_bytes(), endless()})
    folder = builder.add_folder(name, folder);
  builder.put_profile(folder, profile);
  builder.put_monitor(folder, builder.add_monitor(markup(), ""));
  // Deeper than elements may stand within one another.
  for (int i = 0; i < 300; ++i)
    folder = builder.add_folder("deep", folder);
}

}  // namespace

void write_demo_page(const std::string& connect_text, const std::string& file) {
  const AtTheMoment moment;
  std::ostringstream out;
  std::ostringstream err;
  spc::run_demo({{"", connect_text}, "", file}, spc::Terminal{out, err});
}

HurtfulPlant build_hurtful_plant(spc::Link& link) {
  plant::Builder builder(link.db());
  const int value = builder.add_characteristic({both_directions(), markup(), plant::Kind::number, 0});
  const int phase = builder.add_label({many_bytes()});
  const int gauge = builder.add_label({markup(), plant::Holds::each_piece});
  const int total = builder.add_characteristic({endless(), endless(), plant::Kind::total, 0});
  const int profile =
      builder.add_profile(markup(), "", {plant::characteristic(value), plant::label(phase), plant::label(gauge)});
  const int bare = builder.add_profile(endless(), "", {plant::characteristic(total), plant::characteristic(value)});
  add_folders(builder, profile);
  add_samples(link, profile, markup());
  add_history(link);
  HurtfulPlant plant{{}, {markup(), both_directions(), many_bytes(), endless()}};
  ReportFacts& facts = plant.facts;
  facts.title = markup() + endless();
  facts.profiles = {{profile, many_bytes(), ""}, {bare, "", ""}};
  facts.object = {{object_type, 1}, endless()};
  facts.now = COleDateTime(2024, 3, 15, 10, 30, 0);
  facts.first_day_of_week = 1;
  facts.ranges = {"today",     "last_week",  "last 40 day", "no_initial_data", "fixed_range 1999-01-01 2030-12-31",
                  "this_year", "last 9 hour"};
  facts.schedules = {{"", ""}, {"0 0 30 2 *", ""}, {"0 0 * * *", "1 m 2"}};
  return plant;
}

void write_hurtful_page(const std::string& connect_text, const std::string& file) {
  const AtTheMoment moment;
  spc::Link link(connect_text, nullptr);
  spc::create_schema(link);
  write_report(link, build_hurtful_plant(link).facts, file);
}

}  // namespace report_test
