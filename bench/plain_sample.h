/// What the plain sides of saving and reading a sample share: the grid, the questions about a sample.
#pragma once

#include <memory>
#include <stdexcept>

#include "bench/plant.h"

namespace bench {

/// A cell of the plain grid: a value with its type.
struct Cell {
  enum class Type { empty, real } type = Type::empty;
  double real = 0;
};

/// A grid of cells, the column running fastest.
class PlainGrid {
 public:
  PlainGrid(int columns, int rows)
      : columns_(columns), rows_(rows), cells_(std::make_unique<Cell[]>(static_cast<std::size_t>(columns * rows))) {}

  int rows() const { return rows_; }
  Cell& at(int column, int row) { return cells_[static_cast<std::size_t>(row * columns_ + column)]; }

 private:
  int columns_;
  int rows_;
  std::unique_ptr<Cell[]> cells_;
};

/// The column of a characteristic; -1 when the profile does not hold it.
inline int column_of(int characteristic) {
  return characteristic >= 1 && characteristic <= characteristics ? characteristic - 1 : -1;
}

/// The questions that go before reading and writing the cells of a sample.
template <class Database>
class PlainSampleQuestions {
 public:
  explicit PlainSampleQuestions(Database& db)
      : date_(
            db.prepare("SELECT SAMPID,PROFID,PROFREV,CTIME FROM CSSAMP WHERE (SAMPID=?) AND (PROFID=?)", "ii", "iiim")),
        highest_measured_(db.prepare("SELECT MAX(PIECENO) FROM CSVDAT WHERE SAMPID=?", "i", "i")),
        highest_labelled_(
            db.prepare("SELECT MAX(PIECENO) FROM CSLDAT WHERE SAMPID=? AND LABELID IS NOT NULL AND PIECENO IS NOT NULL",
                       "i", "i")),
        sample_labels_(db.prepare(
            "SELECT COUNT(*) FROM CSLDAT WHERE SAMPID=? AND LABELID IS NOT NULL AND PIECENO IS NULL", "i", "i")) {}

  /// The day number of the sample's time.
  double date_of(int sample) {
    date_.set_number(0, sample);
    date_.set_number(1, profile_id);
    if (!date_.query()) throw std::runtime_error("the sample is missing");
    if (date_.number_at(0) != sample || date_.number_at(1) != profile_id || !date_.is_null_at(2))
      throw std::runtime_error("the sample is another");
    const double date = day_number(date_.moment_at(3));
    date_.close();
    return date;
  }

  /// The number of rows of the sample's grid.
  int rows_of(int sample) {
    const int measured = number(highest_measured_, sample);
    const int labelled = number(highest_labelled_, sample);
    int rows = measured > labelled ? measured : labelled;
    if (rows == 0) rows = number(sample_labels_, sample);
    return rows > pieces ? rows : pieces;
  }

 private:
  using Statement = typename Database::Statement;

  static int number(Statement& statement, int sample) {
    statement.set_number(0, sample);
    const bool has_value = statement.query() && !statement.is_null_at(0);
    const int value = has_value ? statement.number_at(0) : 0;
    statement.close();
    return value;
  }

  Statement& date_;
  Statement& highest_measured_;
  Statement& highest_labelled_;
  Statement& sample_labels_;
};

}  // namespace bench
