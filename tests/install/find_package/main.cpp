// A module's test against the installed library: the third INSERT of a sample is refused, and the module is told why.
#include <cstdio>

#include "spcbase/spcbase.h"
#include "spcbase/testkit/plant.h"
#include "spcbase/testkit/reference_engine.h"
#include "spcbase/testkit/schema_database.h"
#include "spcbase/testkit/scripted_session.h"

int main() {
  test_support::SchemaDatabase database(test_support::ServerKind::sqlite);
  CDatabaseEx db;
  db.OpenEx(database.connect_text().c_str());
  plant::Builder plant(db);
  const int diameter = plant.add_characteristic({"Diameter", "inside, mm", plant::Kind::number, 1});
  const int profile = plant.add_profile("Rings", "", {plant::characteristic(diameter)});

  const auto script = test_support::play(db);
  script->on_prefix("INSERT").times(2).pass();
  script->on_prefix("INSERT").refuse(test_support::error("23000", 1062, "Duplicate entry '1' for key 'PRIMARY'"));

  SAFEARRAYBOUND bounds[2] = {{1, 0}, {1, 0}};
  SAFEARRAY* grid = SafeArrayCreate(VT_VARIANT, 2, bounds);
  const LONG first[2] = {0, 0};
  const _variant_t value(74.03);
  SafeArrayPutElement(grid, first, &value);
  const auto saved = guarded([&] {
    long sample = 0;
    double date = 0;
    oldde::DEHelper().set_data(reference_engine::make(db), db, &sample, profile, 0, 0, 0, "anna", &grid, &date);
  });
  SafeArrayDestroy(grid);

  std::printf("%s\n", saved ? "the sample was saved" : saved.failure().text.GetString());
  return !saved && saved.failure().failure_class == FailureClass::duplicate_key ? 0 : 1;
}
