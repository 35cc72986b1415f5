// Reading a sample of 25 characteristics with 5 pieces each as a grid.
#include "bench/jobs.h"
#include "bench/plain_sample.h"
#include "spcbase/dataentry/sample.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/testkit/reference_engine.h"

namespace bench {
namespace {

constexpr int station = 1;
constexpr int user = 1;

/// Goes through the filled samples, in an order that jumps.
class Samples {
 public:
  int next() { return 1 + (at_ = (at_ + 337) % samples); }

 private:
  static constexpr int samples = 800;
  int at_ = 0;
};

double worth_of(int column, int row, double value) { return value * (column + 2 * row + 1); }

class OurReading final : public OurWork {
 public:
  explicit OurReading(const Place& place) : OurWork(place), engine_(reference_engine::make(db())) {
    // The profile stays in memory from one sample to the next.
    helper_.load_from_db(engine_, db(), station, user, profile_id);
  }

  void run() override {
    const int sample = samples_.next();
    double date = 0;
    const safe_array_holder grid(helper_.get_data(engine_, db(), sample, profile_id, 0, station, user, &date));
    const safe_array_access access(grid.get());
    const auto* cells = access.as<VARIANT>();
    for (int row = 0; row < pieces; ++row)
      for (int column = 0; column < characteristics; ++column) {
        const VARIANT& cell = cells[row * characteristics + column];
        if (cell.vt == VT_R8) sum_ += worth_of(column, row, cell.dblVal);
      }
    sum_ += date;
  }

 private:
  SPCLib::IQsmSPCPtr engine_;
  oldde::DEHelper helper_;
  Samples samples_;
};

/// "SELECT ... CHRTID IN (?,?,...)".
std::string select_of_cells() {
  std::string sql = "SELECT SAMPID,CHRTID,PIECENO,VARVALUE FROM CSVDAT WHERE SAMPID=? AND CHRTID IN (";
  for (int i = 0; i < characteristics; ++i)
    sql += i == 0 ? "?" : ",?";
  return sql + ")";
}

template <class Database>
class PlainReading final : public PlainWork<Database> {
 public:
  explicit PlainReading(const Place& place)
      : PlainWork<Database>(place),
        questions_(this->db_),
        cells_(this->db_.prepare(select_of_cells(), std::string(1 + characteristics, 'i').c_str(), "iiid",
                                 rows_per_sample)) {}

  void run() override {
    const int sample = samples_.next();
    const int rows = questions_.rows_of(sample);
    PlainGrid grid(characteristics, rows);
    const double date = questions_.date_of(sample);
    fill(sample, grid);
    for (int row = 0; row < pieces; ++row)
      for (int column = 0; column < characteristics; ++column) {
        const Cell& cell = grid.at(column, row);
        if (cell.type == Cell::Type::real) this->sum_ += worth_of(column, row, cell.real);
      }
    this->sum_ += date;
  }

 private:
  void fill(int sample, PlainGrid& grid) {
    cells_.set_number(0, sample);
    for (int i = 0; i < characteristics; ++i)
      cells_.set_number(1 + i, 1 + i);
    for (bool has_row = cells_.query(); has_row; has_row = cells_.next()) {
      if (cells_.number_at(0) != sample) throw std::runtime_error("a row of another sample");
      const int column = column_of(cells_.number_at(1));
      const int row = cells_.number_at(2) - 1;
      if (column >= 0 && row >= 0 && row < grid.rows()) grid.at(column, row) = {Cell::Type::real, cells_.real_at(3)};
    }
    cells_.close();
  }

  PlainSampleQuestions<Database> questions_;
  typename Database::Statement& cells_;
  Samples samples_;
};

}  // namespace

Job read_sample() {
  Job job;
  job.name = "read a sample of 25 x 5";
  job.sqlite_limit = 1.5;
  job.mariadb_limit = 1.25;
  job.pair = [](Plant& plant) { return make_pair_of<OurReading, PlainReading>(plant.filled(), plant.filled()); };
  return job;
}

}  // namespace bench
