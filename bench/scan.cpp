// A forward-only scan of the 100,000 rows of CSVDAT.
#include "bench/jobs.h"
#include "spcbase/foundation/schema/data_entry.h"

namespace bench {
namespace {

/// The sum that every row adds to.
double worth_of(long sample, long characteristic, long piece, double value) {
  return value * static_cast<double>(sample + 2 * characteristic + 3 * piece);
}

class OurScan final : public OurWork {
 public:
  using OurWork::OurWork;

  void run() override {
    CRSVariable rows(&db());
    if (!rows.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::executeDirect))
      throw std::runtime_error("the table did not open");
    sum_ = 0;
    for (; !rows.m_bEOF; rows.MoveNext())
      sum_ += worth_of(rows.sampid, rows.chrtid, rows.pieceno, rows.varvalue);
    rows.Close();
  }
};

template <class Database>
class PlainScan final : public PlainWork<Database> {
 public:
  explicit PlainScan(const Place& place)
      : PlainWork<Database>(place),
        rows_(this->db_.prepare("SELECT SAMPID,CHRTID,PIECENO,VARVALUE FROM CSVDAT", "", "iiid", block_rows)) {}

  void run() override {
    this->sum_ = 0;
    for (bool has_row = rows_.query(); has_row; has_row = rows_.next())
      this->sum_ += worth_of(rows_.number_at(0), rows_.number_at(1), rows_.number_at(2), rows_.real_at(3));
    rows_.close();
  }

 private:
  /// More gains nothing.
  static constexpr int block_rows = 100;

  typename Database::Statement& rows_;
};

}  // namespace

Job scan() {
  Job job;
  job.name = "scan of 100,000 rows";
  job.sqlite_limit = 1.5;
  job.mariadb_limit = 1.2;
  job.pair = [](Plant& plant) { return make_pair_of<OurScan, PlainScan>(plant.filled(), plant.filled()); };
  return job;
}

}  // namespace bench
