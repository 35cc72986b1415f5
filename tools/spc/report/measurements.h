/// The measurements of a profile as they stand in the database.
///
/// Part of the command.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/spc/link.h"

namespace spc::report_page {

/// A profile, and how its samples are told apart.
struct ReportedProfile {
  int id = 0;
  std::string phases = {};  ///< the label that names a sample's phase; may be empty
  std::string base = {};    ///< limits come from the samples of this phase; empty: from all
};

/// What a characteristic records.
enum class Measure : unsigned char {
  values,   ///< a number for each piece
  totals,   ///< how many of how many
  defects,  ///< a count for each piece
};

/// One characteristic of one sample.
struct Reading {
  long sample = 0;
  std::string phase;
  std::vector<std::optional<double>> cells;  ///< by piece; of a total the first alone
  std::optional<double> size;                ///< of a total: how many were inspected

  /// What there is, without the pieces that have nothing.
  std::vector<double> present() const;
};

/// One characteristic, from the first sample to the last.
struct Series {
  Measure measure = Measure::values;
  std::string name;
  std::string description;
  std::vector<Reading> readings;

  std::size_t pieces() const;  ///< of the largest sample
};

struct Measurements {
  ReportedProfile profile;
  std::string name;
  std::size_t samples = 0;
  std::vector<Series> series;
};

/// Reads every sample of a profile, the lowest number first.
/// Fails: Problem.
Measurements read_measurements(Link& link, const ReportedProfile& profile);

}  // namespace spc::report_page
