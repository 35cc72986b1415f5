/// Builds a plant in a database that has the schema: stations, users, characteristics, labels and profiles.
///
///     plant::Builder builder(db);
///     const int diameter = builder.add_characteristic({"Diameter", "inside, mm", plant::Kind::number, 5});
///     const int batch = builder.add_label({"Batch", plant::Holds::whole_sample, plant::Values::growing_list});
///     const int profile = builder.add_profile("Rings", "", {plant::characteristic(diameter), plant::label(batch)});
///
/// Every row gets its id from its running number.
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

struct Characteristic {
  std::string name;
  std::string description;
  Kind kind = Kind::number;
  int pieces = 0;  ///< in a sample; 0 is no fixed number
};

/// What a value of a label belongs to.
enum class Holds : unsigned char { whole_sample, each_piece };

/// What the values of a label are.
enum class Values : unsigned char { text, moment, growing_list };

struct Label {
  std::string name;
  Holds holds = Holds::whole_sample;
  Values values = Values::text;
};

/// An element of a profile.
struct Entry {
  int id = 0;
  bool is_label = false;
  bool automatic = false;  ///< a label whose value the system supplies
};

inline Entry characteristic(int id) { return {id, false, false}; }
inline Entry label(int id) { return {id, true, false}; }
inline Entry auto_label(int id) { return {id, true, true}; }

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

  /// The rows added so far.
  std::size_t rows() const { return rows_; }

 private:
  int next(const char16_t* counter);

  CDatabase& db_;
  SPCLib::IQsmSPCPtr engine_;
  std::size_t rows_ = 0;
};

}  // namespace plant
