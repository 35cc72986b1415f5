// Random grids on random profiles: what is saved comes back by the rules, over a sample that held another grid before.
//
// Plan
//   the rules            each cell is kept, dropped or changed as the model below says
//   the seed             fixed, and named in the failure
#include <random>

#include "tests/dataentry/data_entry_fixture.h"

namespace {

using test_support::DataEntryTest;
using test_support::TestGrid;

enum class Kind { variable, defects, total, sample_label, piece_label, date_label };

int width_of(Kind kind) { return kind == Kind::defects || kind == Kind::total ? 2 : 1; }

/// A random profile, a random grid on it, and what reading must give.
class Model {
 public:
  explicit Model(unsigned seed) : random_(seed) {
    const int elements = 1 + below(6);
    for (int i = 0; i < elements; ++i)
      kinds_.push_back(static_cast<Kind>(below(6)));
    size_ = below(3) == 0 ? 0 : 1 + below(4);
  }

  void build(test_support::Plant& plant, int profile) const {
    std::vector<test_support::Plant::Element> elements;
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
      const int id = 1000 + static_cast<int>(i);
      const std::string name = "E" + std::to_string(id);
      const bool label = kinds_[i] >= Kind::sample_label;
      if (kinds_[i] == Kind::variable) plant.variable(id, name, size_);
      if (kinds_[i] == Kind::defects) plant.defects(id, name, size_);
      if (kinds_[i] == Kind::total) plant.total(id, name);
      if (label)
        plant.label(id, name, kinds_[i] == Kind::piece_label ? "PIECE" : "SAMPLE",
                    kinds_[i] == Kind::date_label ? "DATETIME" : "");
      elements.push_back({label ? 'l' : 'c', id});
    }
    plant.profile(profile, elements);
  }

  /// Fills a new grid and remembers, cell by cell, what is to be read.
  TestGrid make_grid() {
    columns_ = 0;
    for (const Kind kind : kinds_)
      columns_ += width_of(kind);
    const int rows = below(7);
    expected_.assign(static_cast<std::size_t>(rows), std::vector<std::string>(static_cast<std::size_t>(columns_), "."));
    pieces_ = 0;
    sample_labels_ = 0;
    TestGrid grid(columns_, rows);
    for (LONG row = 0; row < rows; ++row)
      for (LONG column = 0, i = 0; i < static_cast<LONG>(kinds_.size()); ++i) {
        fill(grid, kinds_[static_cast<std::size_t>(i)], column, row);
        column += width_of(kinds_[static_cast<std::size_t>(i)]);
      }
    return grid;
  }

  std::vector<std::string> expected() const {
    std::vector<std::string> lines(static_cast<std::size_t>(rows_to_read()));
    for (std::size_t row = 0; row < lines.size(); ++row)
      for (long column = 0; column < columns_; ++column)
        lines[row] += (column == 0 ? "" : " | ") +
                      (row < expected_.size() ? expected_[row][static_cast<std::size_t>(column)] : ".");
    return lines;
  }

 private:
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  bool has(Kind kind) const { return std::find(kinds_.begin(), kinds_.end(), kind) != kinds_.end(); }

  long rows_to_read() const {
    const bool measured = has(Kind::variable) || has(Kind::defects);
    if (!measured && !has(Kind::total)) {
      if (!has(Kind::piece_label)) return 1;
      return pieces_ != 0 ? pieces_ : (has(Kind::sample_label) || has(Kind::date_label) ? 1 : 0);
    }
    const long rows = pieces_ != 0 ? pieces_ : sample_labels_;
    const bool dynamic = measured && size_ == 0;
    const long fixed = measured && size_ != 0 ? size_ : (has(Kind::total) ? 1 : 0);
    return dynamic ? rows : std::max(rows, fixed);
  }

  void fill(TestGrid& grid, Kind kind, LONG column, LONG row) {
    if (below(4) == 0) return;
    const bool first = row == 0;
    switch (kind) {
      case Kind::variable:
        return put_piece(grid, column, row, _variant_t(std::ldexp(below(1 << 30) - (1 << 29), below(60) - 30)));
      case Kind::piece_label:
        return put_piece(grid, column, row, random_text());
      case Kind::sample_label:
        return put(grid, column, row, random_text(), first ? &sample_labels_ : nullptr, first);
      case Kind::date_label:
        return put(
            grid, column, row,
            _variant_t(
                COleDateTime(1990 + below(60), 1 + below(12), 1 + below(28), below(24), below(60), below(60)).m_dt,
                VT_DATE),
            first ? &sample_labels_ : nullptr, first);
      case Kind::defects:
        put(grid, column, row, random_text(), nullptr, true);
        return put(grid, column + 1, row, _variant_t(below(100)), nullptr, true);
      case Kind::total:
        put(grid, column, row, _variant_t(1 + below(100)), nullptr, first);
        if (below(2) == 0) put(grid, column + 1, row, _variant_t(below(1000) / 8.0), nullptr, first);
    }
  }

  void put_piece(TestGrid& grid, LONG column, LONG row, const _variant_t& cell) {
    put(grid, column, row, cell, nullptr, true);
    pieces_ = std::max<long>(pieces_, row + 1);
  }

  void put(TestGrid& grid, LONG column, LONG row, const _variant_t& cell, long* counter, bool kept) {
    grid.put(column, row, cell);
    if (counter != nullptr) ++*counter;
    if (kept)
      expected_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = test_support::text_of_cell(cell);
  }

  /// A text that trimming leaves alone, with all that is awkward in a statement.
  _variant_t random_text() {
    static constexpr const char* pieces[] = {"a", "Z", "0", "'", "\"", "\\", "?", "%", "ä", "€", "𝄞", " ", ";", "["};
    std::string text = "x";
    for (int i = below(20); i > 0; --i)
      text += pieces[below(std::size(pieces))];
    return {(text + "x").c_str()};
  }

  std::mt19937 random_;
  std::vector<Kind> kinds_;
  int size_ = 0;
  long columns_ = 0;
  long pieces_ = 0;
  long sample_labels_ = 0;
  std::vector<std::vector<std::string>> expected_;
};

class RoundTrip : public DataEntryTest {};

TEST_P(RoundTrip, random_grids_on_random_profiles_come_back_by_the_rules) {
  execute("UPDATE CSLABEL SET NAME = 'none' WHERE LABELID IN (30, 31)");
  for (unsigned seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    execute("DELETE FROM CSCHRT WHERE CHRTID >= 1000");
    execute("DELETE FROM CSLABEL WHERE LABELID >= 1000");
    Model model(seed);
    const int profile = 100 + static_cast<int>(seed);
    model.build(plant, profile);
    long sample = 0;
    for (int turn = 0; turn < 3; ++turn) {
      TestGrid grid = model.make_grid();
      sample = save(profile, grid, sample);
      ASSERT_EQ(read(profile, sample), model.expected()) << "turn " << turn;
      oldde::DEHelper fresh;
      const safe_array_holder again(
          fresh.get_data(engine.pointer(), db(), static_cast<int>(sample), profile, 0, 1, 1, nullptr));
      ASSERT_EQ(test_support::texts_of(again.get()), model.expected()) << "a fresh helper, turn " << turn;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Servers, RoundTrip, test_support::all_servers(), test_support::server_name);

}  // namespace
