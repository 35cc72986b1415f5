/// A plant for data-entry tests: stations, users, characteristics, labels and profiles, put into a database by rows.
///
///     test_support::Plant plant(database());
///     plant.variable(10, "Diameter", 5);                 // id, name, pieces
///     plant.label(20, "Shift", "SAMPLE");
///     plant.profile(1, {{'c', 10}, {'l', 20}});          // characteristic 10, then label 20
#pragma once

#include <string>
#include <vector>

#include "spcbase/testkit/database_fixture.h"

namespace test_support {

/// Builds the plant beside the connection under test; every row is there at once.
class Plant {
 public:
  explicit Plant(SchemaDatabase& database) : database_(database) {}

  /// An element of a profile. Without a `seqno` (0) it gets its place in the list times ten.
  struct Element {
    char kind;  ///< 'c' a characteristic, 'l' a label, 'a' a label whose value the system supplies
    int id;
    int seqno = 0;
  };

  void station(int id, const std::string& name);
  void user(int id, const std::string& name, const std::string& full_name);
  /// A characteristic of any type; `total` not 0 makes it a total, `size` 0 is no fixed size.
  void characteristic(int id, const std::string& name, const std::string& type, int size, int total = 0);
  void variable(int id, const std::string& name, int size) { characteristic(id, name, "VARIABLE", size); }
  void defects(int id, const std::string& name, int size) { characteristic(id, name, "ATTRIBUTE", size); }
  void total(int id, const std::string& name) { characteristic(id, name, "ATTRIBUTE", 0, 1); }
  void label(int id, const std::string& name, const std::string& type, const std::string& list_type = "");
  void profile(int id, const std::vector<Element>& elements);

  /// The plant that most tests use: stations 1 "North" and 2 "South", users 1 "anna" and 2 "ben", and
  ///
  /// - profile 1: characteristic 10 "VARIABLE" of 5 pieces
  /// - profile 2: everything there is, in this order: 10, piece label 21, defects 11 (5 pieces), total 12, sample label
  ///   20, date label 22, dynamic label 23, auto label 24 (not a column), "STATION" 30 as a column, "OPERATOR" 31 as an
  ///   auto label
  /// - profile 3: labels of the sample only: 20, 22
  /// - profile 4: characteristic 13 "VARIABLE" without a fixed size, sample labels 20 and 22
  void standard();

 private:
  SchemaDatabase& database_;
};

/// A text as an SQL literal.
std::string quoted(const std::string& text);

}  // namespace test_support
