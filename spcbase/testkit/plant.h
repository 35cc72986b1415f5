/// Builds a plant in a database that has the schema: stations, users and groups of users, characteristics, labels,
/// profiles and monitors, the folders that hold them, and who may see what.
///
///     plant::Builder builder(db);
///     const int diameter = builder.add_characteristic({"Diameter", "inside, mm", plant::Kind::number, 5});
///     const int batch = builder.add_label({"Batch", plant::Holds::whole_sample, plant::Values::growing_list});
///     const int profile = builder.add_profile("Rings", "", {plant::characteristic(diameter), plant::label(batch)});
///     const int forge = builder.add_folder("Forge", 0);
///     builder.put_profile(forge, profile);
///     builder.show_profile(profile, plant::user(anna));
///
/// Every row with an id of its own gets it from its running number.
/// Fails: CDBException* from the database, DBException when a running number cannot be had.
#pragma once

#include <string>
#include <vector>

#include "spcbase/companion/engine.h"
#include "spcbase/platform/database/database.h"

namespace plant {

/// What a characteristic records.
enum class Kind : unsigned char {
  number,   ///< a measured number for each piece
  defects,  ///< a defect and its count for each piece
  total,    ///< how many failed of how many, once for each sample
};

/// A characteristic to be added.
struct Characteristic {
  std::string name;          ///< UTF-8
  std::string description;   ///< may be empty
  Kind kind = Kind::number;  ///< what it records
  int pieces = 0;            ///< in a sample; 0 is no fixed number
};

/// What a value of a label belongs to.
enum class Holds : unsigned char { whole_sample, each_piece };

/// What the values of a label are.
enum class Values : unsigned char { text, moment, growing_list };

/// A label to be added.
struct Label {
  std::string name;                   ///< UTF-8
  Holds holds = Holds::whole_sample;  ///< what a value belongs to
  Values values = Values::text;       ///< what its values are
};

/// An element of a profile.
struct Entry {
  int id = 0;              ///< of the characteristic or label
  bool is_label = false;   ///< else a characteristic
  bool automatic = false;  ///< a label whose value the system supplies
};

/// The three kinds of entries: a characteristic,
inline Entry characteristic(int id) { return {id, false, false}; }
/// a label that people fill in,
inline Entry label(int id) { return {id, true, false}; }
/// and a label that the system fills in.
inline Entry auto_label(int id) { return {id, true, true}; }

/// Who is listed to see something.
struct Viewer {
  int id = 0;             ///< of the user or group
  bool is_group = false;  ///< else a user
};

/// A user by id.
inline Viewer user(int id) { return {id, false}; }
/// A group of users by id.
inline Viewer group(int id) { return {id, true}; }

/// Adds rows. Belongs to the connection's thread.
class Builder {
 public:
  /// The connection must stay open for as long as the builder is used.
  explicit Builder(CDatabase& db);

  /// Each gives the id of what it has added.
  int add_station(const std::string& name);
  int add_user(const std::string& name, const std::string& full_name, const std::string& password = {});
  int add_characteristic(const Characteristic& characteristic);
  int add_label(const Label& label);
  /// The entries stand in the order given.
  int add_profile(const std::string& name, const std::string& description, const std::vector<Entry>& entries);

  /// A monitor in no folder yet.
  int add_monitor(const std::string& name, const std::string& description);
  /// A group without members; groups have no name here.
  int add_group();
  /// A folder in another one; 0 is the root.
  int add_folder(const std::string& name, int parent);

  /// What belongs together. An object may stand in several folders.
  void put_monitor(int folder, int monitor);
  void put_profile(int folder, int profile);
  void add_member(int group, int user);
  void show_profile(int profile, const Viewer& viewer);
  void show_data_source(int source, const Viewer& viewer);

  /// The rows added so far.
  std::size_t rows() const { return rows_; }

 private:
  int next(const char16_t* counter);
  template <class Names>
  void link(int first, int second);

  CDatabase& db_;
  SPCLib::IQsmSPCPtr engine_;
  std::size_t rows_ = 0;
};

}  // namespace plant
