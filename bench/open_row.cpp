// Opening a recordset on one row by its key, reading it, closing: the commonest act of all.
#include "bench/jobs.h"
#include "spcbase/foundation/schema/data_entry.h"

namespace bench {
namespace {

/// Goes through all places of the filled tables, in an order that jumps.
class Places {
 public:
  struct Key {
    int sample;
    int characteristic;
    int piece;
  };
  Key next() {
    at_ = (at_ + 7919) % (samples * rows_per_sample);
    return {1 + at_ / rows_per_sample, 1 + at_ / pieces % characteristics, 1 + at_ % pieces};
  }

 private:
  static constexpr int samples = 800;
  int at_ = 0;
};

double worth_of(long sample, long characteristic, long piece, double value) {
  return value * static_cast<double>(sample + 2 * characteristic + 3 * piece);
}

class OurOpen final : public OurWork {
 public:
  using OurWork::OurWork;

  void run() override {
    const auto key = places_.next();
    CRSVariable row(&db());
    row.m_strFilter.Format("SAMPID=%d AND CHRTID=%d AND PIECENO=%d", key.sample, key.characteristic, key.piece);
    if (!row.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::executeDirect))
      throw std::runtime_error("the table did not open");
    if (row.m_bEOF) throw std::runtime_error("a row is missing");
    sum_ += worth_of(row.sampid, row.chrtid, row.pieceno, row.varvalue);
    row.Close();
  }

 private:
  Places places_;
};

template <class Database>
class PlainOpen final : public PlainWork<Database> {
 public:
  explicit PlainOpen(const Place& place)
      : PlainWork<Database>(place),
        row_(this->db_.prepare(
            "SELECT SAMPID,CHRTID,PIECENO,VARVALUE FROM CSVDAT WHERE SAMPID=? AND CHRTID=? AND PIECENO=?", "iii",
            "iiid")) {}

  void run() override {
    const auto key = places_.next();
    row_.set_number(0, key.sample);
    row_.set_number(1, key.characteristic);
    row_.set_number(2, key.piece);
    if (!row_.query()) throw std::runtime_error("a row is missing");
    this->sum_ += worth_of(row_.number_at(0), row_.number_at(1), row_.number_at(2), row_.real_at(3));
    row_.close();
  }

 private:
  typename Database::Statement& row_;
  Places places_;
};

}  // namespace

Job open_row() {
  Job job;
  job.name = "one row by key";
  job.sqlite_limit = 2.0;
  job.mariadb_limit = 1.3;
  job.pair = [](Plant& plant) { return make_pair_of<OurOpen, PlainOpen>(plant.filled(), plant.filled()); };
  return job;
}

}  // namespace bench
