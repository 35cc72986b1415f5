// Reading the latest revision with its payload of 64 KiB, from the database and from the manager's cache, and listing a
// history of 10,000.
#include <algorithm>

#include "bench/jobs.h"
#include "spcbase/foundation/blob.h"
#include "spcbase/revision/manager.h"

namespace bench {
namespace {

constexpr int objects = 20;
constexpr int revisions_each = 10;
constexpr std::size_t payload_size = 65536;
constexpr int long_history = 10'000;
constexpr double milliseconds_per_day = 86'400'000;

/// Objects with some revisions each.
Place make_histories(Plant& plant) {
  Place place = plant.make_database();
  CDatabaseEx db;
  db.OpenEx(place.connect_text.c_str());
  rev::RevisionManager manager(object_type, -1);
  CLongBinary payload;
  set_blob_data(payload, CString(std::string(payload_size, 'p')));
  for (int object = 1; object <= objects; ++object)
    for (int number = 1; number <= revisions_each; ++number)
      manager.add_new_revision(&db, 0, object, payload, 7, "anna", "limits moved", false);
  return place;
}

/// Goes through the objects, in an order that jumps.
class Objects {
 public:
  int next() { return 1 + (at_ = (at_ + 7) % objects); }

 private:
  int at_ = 0;
};

double worth_of(int id, int revision, int minor, double created, std::size_t texts) {
  return 3.0 * id + 5.0 * revision + 7.0 * minor + created + static_cast<double>(texts);
}

double worth_of(const rev::RevisionBaseInfo& record) {
  const auto texts = record.cuser.GetLength() + record.creason.GetLength();
  return worth_of(record.revid, record.revision, record.minorver, record.ctime.m_dt, static_cast<std::size_t>(texts));
}

/// A revision on the plain side.
struct PlainRevision {
  int id = 0;
  int revision = 0;
  int major = 0;
  int minor = 0;
  int flag = 0;
  double created = 0;
  int user_id = 0;
  std::string user;
  std::string reason;
  bool is_approved = false;
};

double worth_of(const PlainRevision& record) {
  return worth_of(record.id, record.revision, record.minor, record.created, record.user.size() + record.reason.size());
}

constexpr const char* kinds_of_columns = "iiiiiiimitTiimitT";

/// Takes the current row. Of these revisions none is approved.
template <class Statement>
void take_row(Statement& row, PlainRevision& record) {
  record.id = row.number_at(0);
  record.revision = row.number_at(3);
  record.major = row.number_at(4);
  record.minor = row.number_at(5);
  record.flag = row.number_at(6);
  const Moment created = local_of(row.moment_at(7));
  record.created = day_number(created) + created.millisecond / milliseconds_per_day;
  record.user_id = row.number_at(8);
  row.text_at(9, record.user);
  row.text_at(10, record.reason);
  record.is_approved = !row.is_null_at(13);
}

class OurLatest final : public OurWork {
 public:
  using OurWork::OurWork;
  void run() override {
    const auto record = manager_.get_revision_info(&db(), 0, objects_.next(), 0);
    sum_ += worth_of(*record) + record->data.long_bin.m_dwDataLength;
  }

 private:
  rev::RevisionManager manager_{object_type, -1};
  Objects objects_;
};

template <class Database>
class PlainLatest final : public PlainWork<Database> {
 public:
  explicit PlainLatest(const Place& place)
      : PlainWork<Database>(place),
        row_(this->db_.prepare(
            "SELECT CSOBJREV.REVID,OBJID,OBJTYPE,REVISION,MAJORVER,MINORVER,FLAG,CTIME,CUSERID,CUSER,CREASON,ALEVEL,"
            "ATYPE,ATIME,AUSERID,AUSER,AREASON,DATA FROM CSOBJREV LEFT JOIN CSREVDAT ON CSOBJREV.REVID=CSREVDAT.REVID "
            "WHERE OBJID=? AND OBJTYPE=? AND REVISION=(SELECT MAX(REVISION) FROM CSOBJREV WHERE OBJID=? AND OBJTYPE=?)",
            "iiii", kinds_of_columns)) {}

  void run() override {
    const int object = objects_.next();
    for (int position = 0; position < 4; ++position)
      row_.set_number(position, position % 2 == 0 ? object : object_type);
    if (!row_.query()) throw std::runtime_error("the object has no revision");
    // Ours gives its caller a record and a payload of their own, so this side makes new ones too.
    PlainRevision record;
    std::string payload;
    take_row(row_, record);
    row_.bytes_at(17, payload);
    row_.close();
    this->sum_ += worth_of(record) + static_cast<double>(payload.size());
  }

 private:
  typename Database::Statement& row_;
  Objects objects_;
};

class OurCached final : public OurWork {
 public:
  using OurWork::OurWork;
  void run() override { sum_ += manager_.get_revision_info(&db(), 0, objects, 0)->revision; }

 private:
  rev::RevisionManager manager_{object_type};
};

class OurListing final : public OurWork {
 public:
  using OurWork::OurWork;
  void run() override {
    std::vector<rev::RevisionBaseInfo> records;
    manager_.get_all_revision(&db(), 1, records);
    sum_ = static_cast<double>(records.size());
    for (const auto& record : records)
      sum_ += worth_of(record);
  }

 private:
  rev::RevisionManager manager_{object_type, -1};
};

template <class Database>
class PlainListing final : public PlainWork<Database> {
 public:
  explicit PlainListing(const Place& place)
      : PlainWork<Database>(place),
        rows_(
            this->db_.prepare("SELECT REVID,OBJID,OBJTYPE,REVISION,MAJORVER,MINORVER,FLAG,CTIME,CUSERID,CUSER,CREASON,"
                              "ALEVEL,ATYPE,ATIME,AUSERID,AUSER,AREASON FROM CSOBJREV WHERE OBJID=? AND OBJTYPE=?",
                              "ii", kinds_of_columns, 100)) {}

  void run() override {
    std::vector<PlainRevision> records;
    rows_.set_number(0, 1);
    rows_.set_number(1, object_type);
    for (bool has_row = rows_.query(); has_row; has_row = rows_.next())
      take_row(rows_, records.emplace_back());
    rows_.close();
    std::sort(records.begin(), records.end(), [](const auto& a, const auto& b) { return a.revision > b.revision; });
    this->sum_ = static_cast<double>(records.size());
    for (const auto& record : records)
      this->sum_ += worth_of(record);
  }

 private:
  typename Database::Statement& rows_;
};

}  // namespace

Job read_revision() {
  Job job;
  job.name = "read the latest of 64 KiB";
  job.sqlite_limit = 1.3;
  job.mariadb_limit = 1.3;
  job.pair = [](Plant& plant) {
    const Place place = make_histories(plant);
    return make_pair_of<OurLatest, PlainLatest>(place, place);
  };
  return job;
}

Job cached_revision() {
  Job job;
  job.name = "the latest from the cache";
  job.sqlite_limit = 2.0;
  job.mariadb_limit = 2.0;
  job.pair = [](Plant& plant) { return Pair{std::make_unique<OurCached>(make_histories(plant)), nullptr}; };
  return job;
}

Job list_revisions() {
  Job job;
  job.name = "list 10,000 revisions";
  job.sqlite_limit = 1.3;
  job.mariadb_limit = 1.3;
  job.pair = [](Plant& plant) {
    const Place place = plant.make_database();
    plant.add_revisions(place, 1, long_history);
    return make_pair_of<OurListing, PlainListing>(place, place);
  };
  return job;
}

}  // namespace bench
