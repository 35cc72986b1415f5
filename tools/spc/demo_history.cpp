#include "tools/spc/demo_history.h"

#include <array>
#include <sstream>

#include "spcbase/foundation/blob.h"
#include "spcbase/revision/manager.h"
#include "tools/spc/json.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

// Numbers of the demo's own: the library leaves them to the hosts.
constexpr int level_checked = 1;
constexpr int level_released = 2;

/// How far the profile has come.
enum class Stage : unsigned char { entries, tolerance, limits, pieces };

/// The profile as a host might save it.
std::string payload_of(const ProfileShape& shape, Stage stage) {
  std::ostringstream out;
  JsonWriter json(out);
  json.begin_object();
  json.key("profile").value(shape.name);
  json.key("entries").begin_array();
  for (const auto& column : shape.columns)
    json.value(column.name);
  json.end_array();
  if (stage >= Stage::tolerance) json.key("tolerance_mm").begin_array().value(73.95).value(74.05).end_array();
  if (stage >= Stage::limits) json.key("control_limits_mm").begin_array().value(73.988).value(74.014).end_array();
  if (stage >= Stage::pieces) json.key("pieces").value(5);
  json.end_object();
  return out.str();
}

class History {
 public:
  History(Link& link, const ProfileShape& shape) : link_(link), shape_(shape) {}

  void save(Stage stage, const plant::Known& user, const char* reason) {
    const std::string bytes = payload_of(shape_, stage);
    CLongBinary payload;
    set_blob_data(payload, CString(bytes));
    AutoODBCTransaction transaction(link_.db(), true);
    manager_.add_new_revision(&link_.db(), 0, shape_.id, payload, user.id, user.name.c_str(), reason, false);
    transaction.commit();
    saved_.push_back(bytes);
  }

  void approve(int level, const plant::Known& user, const char* reason, bool major) {
    AutoODBCTransaction transaction(link_.db(), true);
    const int latest = static_cast<int>(saved_.size());
    const auto [approved, revision] =
        manager_.approve(&link_.db(), 0, shape_.id, latest, level, 0, user.id, user.name.c_str(), reason, major);
    transaction.commit();
    if (!approved) differ(latest, "it was gone before it could be approved");
    if (revision != latest) saved_.push_back(saved_.back());
  }

  std::vector<rev::RevisionBaseInfo> read_back() {
    std::vector<rev::RevisionBaseInfo> revisions;
    manager_.get_all_revision(&link_.db(), shape_.id, revisions);
    for (int number = 1; number <= static_cast<int>(saved_.size()); ++number) {
      const auto record = manager_.get_revision_info(&link_.db(), 0, shape_.id, number);
      if (!record) differ(number, "it is gone");
      if (get_blob_data(record->data.long_bin).view() != saved_[static_cast<std::size_t>(number - 1)])
        differ(number, "its payload is another");
    }
    return revisions;
  }

 private:
  [[noreturn]] void differ(int revision, const std::string& how) const {
    throw Problem{"the demo failed", "revision " + std::to_string(revision) + " of " + shape_.name + ": " + how,
                  "The database did not keep what was saved: please report this with the server's name and version."};
  }

  Link& link_;
  const ProfileShape& shape_;
  // Nothing is kept, so that all that is shown comes from the database.
  rev::RevisionManager manager_{demo_profile_type, -1};
  std::vector<std::string> saved_;  ///< the payloads, by number of their revision
};

}  // namespace

std::vector<rev::RevisionBaseInfo> make_history(Link& link, const plant::DemoPlant& plant, const ProfileShape& shape) {
  return doing("cannot save the history of " + shape.name, [&] {
    History history(link, shape);
    history.save(Stage::entries, plant.anna, "First draft");
    history.save(Stage::tolerance, plant.anna, "Tolerance of the drawing");
    history.approve(level_checked, plant.bo, "Compared with the drawing", false);
    history.save(Stage::limits, plant.chloe, "Control limits of the set-up phase");
    history.save(Stage::pieces, plant.anna, "Five pieces in each sample");
    history.approve(level_released, plant.bo, "Released for production", true);
    return history.read_back();
  });
}

}  // namespace spc
