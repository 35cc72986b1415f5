// Saving a sample of 25 characteristics with 5 pieces each, in one transaction.
#include "bench/jobs.h"
#include "bench/plain_sample.h"
#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/testkit/reference_engine.h"

namespace bench {
namespace {

constexpr int station = 1;
constexpr int user = 1;
constexpr const char* user_name = "bench";

/// What the tables hold, as one number.
constexpr const char* contents =
    "SELECT (SELECT SUM(VARVALUE * (CHRTID + 31 * PIECENO)) + COUNT(*) FROM CSVDAT) + "
    "(SELECT SUM(SAMPID * 3.0 + PROFID) + COUNT(CTIME) FROM CSSAMP) + (SELECT SUM(SAMPID * 5.0 + ASTAT + CSTAT + FLG1 "
    "+ FLG2 + LENGTH(MUSER)) + "
    "COUNT(MTIME) FROM CSSPAPPR) + (SELECT MAXNO FROM CSSPRN)";

template <class Database>
double contents_of(const Place& place) {
  Database db(place.plain_text);
  auto& statement = db.prepare(contents, "", "d");
  statement.query();
  const double value = statement.real_at(0);
  statement.close();
  return value;
}

double contents_of(const Place& place) {
  return place.server == Server::sqlite ? contents_of<PlainSqlite>(place) : contents_of<PlainOdbc>(place);
}

SAFEARRAY* make_grid() {
  SAFEARRAYBOUND bounds[2] = {{characteristics, 0}, {pieces, 0}};
  SAFEARRAY* grid = SafeArrayCreate(VT_VARIANT, 2, bounds);
  for (LONG column = 0; column < characteristics; ++column)
    for (LONG row = 0; row < pieces; ++row) {
      VARIANT value{};
      value.vt = VT_R8;
      value.dblVal = measured_value(1, column + 1, row + 1);
      const LONG index[2] = {column, row};
      SafeArrayPutElement(grid, index, &value);
    }
  return grid;
}

class OurSaving final : public OurWork {
 public:
  explicit OurSaving(const Place& place)
      : OurWork(place), place_(place), engine_(reference_engine::make(db())), grid_(make_grid()) {
    helper_.load_from_db(engine_, db(), station, user, profile_id);
  }

  void run() override {
    AutoODBCTransaction transaction(db(), true);
    long sample = 0;
    double date = 0;
    SAFEARRAY* grid = grid_.get();
    helper_.set_data(engine_, db(), &sample, profile_id, 0, station, user, user_name, &grid, &date);
    if (!transaction.commit()) throw std::runtime_error("the sample was not committed");
  }
  double result() override { return contents_of(place_); }

 private:
  Place place_;
  SPCLib::IQsmSPCPtr engine_;
  oldde::DEHelper helper_;
  safe_array_holder grid_;
};

template <class Database>
class PlainSaving final : public PlainWork<Database> {
 public:
  explicit PlainSaving(const Place& place)
      : PlainWork<Database>(place),
        place_(place),
        questions_(this->db_),
        raise_number_(this->db_.prepare("UPDATE CSSPRN SET MAXNO = MAXNO + 1")),
        read_number_(this->db_.prepare("SELECT MAXNO FROM CSSPRN", "", "i")),
        find_sample_(this->db_.prepare("SELECT SAMPID,PROFID,PROFREV,CTIME FROM CSSAMP WHERE SAMPID=?", "i", "iiim")),
        add_sample_(this->db_.prepare("INSERT INTO CSSAMP (SAMPID,PROFID,PROFREV,CTIME) VALUES (?,?,?,?)", "iiim")),
        find_approval_(this->db_.prepare("SELECT SAMPID,ASTAT,CSTAT,FLG1,FLG2,MUSER,MTIME FROM CSSPAPPR WHERE SAMPID=?",
                                         "i", "iiiiitm")),
        add_approval_(this->db_.prepare(
            "INSERT INTO CSSPAPPR (SAMPID,ASTAT,CSTAT,FLG1,FLG2,MUSER,MTIME) VALUES (?,?,?,?,?,?,?)", "iiiiitm")),
        find_value_(this->db_.prepare(
            "SELECT SAMPID,CHRTID,PIECENO,VARVALUE FROM CSVDAT WHERE SAMPID=? AND CHRTID=? AND PIECENO=?", "iii",
            "iiid")),
        add_value_(this->db_.prepare("INSERT INTO CSVDAT (SAMPID,CHRTID,PIECENO,VARVALUE) VALUES (?,?,?,?)", "iiid")),
        grid_(characteristics, pieces) {
    for (int column = 0; column < characteristics; ++column)
      for (int row = 0; row < pieces; ++row)
        grid_.at(column, row) = {Cell::Type::real, measured_value(1, column + 1, row + 1)};
  }

  void run() override {
    this->db_.begin();
    const int sample = next_number();
    add_sample(sample);
    add_approval(sample);
    date_ = questions_.date_of(sample);
    if (questions_.rows_of(sample) != grid_.rows()) throw std::runtime_error("the grid has another size");
    for (int column = 0; column < characteristics; ++column)
      for (int row = 0; row < grid_.rows(); ++row)
        add_value(sample, column + 1, row + 1, grid_.at(column, row));
    this->db_.commit();
  }
  double result() override { return contents_of(place_); }

 private:
  using Statement = typename Database::Statement;

  int next_number() {
    raise_number_.write();
    if (!read_number_.query()) throw std::runtime_error("no running number");
    const int number = read_number_.number_at(0);
    read_number_.close();
    return number;
  }

  static void must_be_free(Statement& statement) {
    const bool found = statement.query();
    statement.close();
    if (found) throw std::runtime_error("the row is there already");
  }

  void add_sample(int sample) {
    find_sample_.set_number(0, 0);
    must_be_free(find_sample_);
    add_sample_.set_number(0, sample);
    add_sample_.set_number(1, profile_id);
    add_sample_.set_null(2);
    add_sample_.set_moment(3, local_now());
    add_sample_.write();
  }

  void add_approval(int sample) {
    find_approval_.set_number(0, sample);
    must_be_free(find_approval_);
    add_approval_.set_number(0, sample);
    for (int flag = 1; flag <= 4; ++flag)
      add_approval_.set_number(flag, 0);
    add_approval_.set_text(5, user_name_);
    add_approval_.set_moment(6, utc_now());
    add_approval_.write();
  }

  void add_value(int sample, int characteristic, int piece, const Cell& cell) {
    find_value_.set_number(0, sample);
    find_value_.set_number(1, characteristic);
    find_value_.set_number(2, piece);
    must_be_free(find_value_);
    if (cell.type == Cell::Type::empty) return;
    add_value_.set_number(0, sample);
    add_value_.set_number(1, characteristic);
    add_value_.set_number(2, piece);
    add_value_.set_real(3, cell.real);
    add_value_.write();
  }

  Place place_;
  PlainSampleQuestions<Database> questions_;
  Statement& raise_number_;
  Statement& read_number_;
  Statement& find_sample_;
  Statement& add_sample_;
  Statement& find_approval_;
  Statement& add_approval_;
  Statement& find_value_;
  Statement& add_value_;
  PlainGrid grid_;
  std::string user_name_ = user_name;
  double date_ = 0;
};

}  // namespace

Job save_sample() {
  Job job;
  job.name = "save a sample of 25 x 5";
  job.sqlite_limit = 2.0;
  job.mariadb_limit = 1.25;
  // Each side fills a database of its own, so that neither works on the larger tables.
  job.pair = [](Plant& plant) {
    return make_pair_of<OurSaving, PlainSaving>(plant.make_database(), plant.make_database());
  };
  return job;
}

}  // namespace bench
