/// The check of a whole CSV file against a profile, before anything is written.
///
/// Part of the command. A file has a column `sample` (lines with the same text in it, one after the other, are one
/// sample), may have a column `piece` (1, 2, 3 ... within each sample), and has one column for each part of the
/// profile's entries (layout.h).
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tools/spc/csv.h"
#include "tools/spc/layout.h"
#include "tools/spc/profile_shape.h"

namespace spc {

/// That a column of the file stands for an entry of another name.
struct ColumnName {
  std::string column;
  std::string entry;
};

/// The value of an entry for which the file has no column.
struct Constant {
  std::string entry;
  /// By the number of the sample in the file and the number of the piece, both from 1.
  std::function<std::string(std::size_t sample, std::size_t piece)> value;
};

/// How a file is to be read.
struct ImportRules {
  std::vector<ColumnName> names;
  std::vector<Constant> constants;
};

/// A sample that is ready to be written.
struct PreparedSample {
  std::string key;       ///< what stands in the column `sample`
  std::size_t line = 0;  ///< where it begins
  Grid grid;
};

/// Checks a file and makes a grid of each of its samples.
/// Fails: Problem that names file, line and column of what is wrong.
std::vector<PreparedSample> prepare_samples(const CsvFile& file, const ProfileShape& shape, const ImportRules& rules);

}  // namespace spc
