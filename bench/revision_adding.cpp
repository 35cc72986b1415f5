// Adding a revision with its payload, in one transaction; and how that grows with the history of the object.
#include "bench/jobs.h"
#include "spcbase/foundation/blob.h"
#include "spcbase/revision/manager.h"

namespace bench {
namespace {

constexpr int object = 5;
constexpr int user = 7;
constexpr const char* user_name = "anna";
constexpr const char* reason = "limits moved";
constexpr std::size_t payload_size = 65536;
/// After so many revisions the payloads go, lest the files fill the disk.
constexpr long kept_payloads = 256;
constexpr const char* drop_payloads = "DELETE FROM CSREVDAT";

class OurAdding : public OurWork {
 public:
  OurAdding(const Place& place, std::size_t size) : OurWork(place) {
    set_blob_data(payload_, CString(std::string(size, 'p')));
  }
  explicit OurAdding(const Place& place) : OurAdding(place, payload_size) {}

  void run() override {
    {
      AutoODBCTransaction transaction(db(), true);
      sum_ += add();
      if (!transaction.commit()) throw std::runtime_error("the revision was not committed");
    }
    if (++added_ % kept_payloads == 0) db().ExecuteSQL(drop_payloads);
  }

 protected:
  int add() { return manager_.add_new_revision(&db(), 0, object, payload_, user, user_name, reason, false); }

 private:
  rev::RevisionManager manager_{object_type, -1};
  CLongBinary payload_;
  long added_ = 0;
};

template <class Database>
class PlainAdding final : public PlainWork<Database> {
 public:
  explicit PlainAdding(const Place& place)
      : PlainWork<Database>(place),
        latest_(this->db_.prepare("SELECT OBJID,OBJTYPE,REVISION,MAJORVER,MINORVER FROM CSOBJREV WHERE OBJID=? AND "
                                  "OBJTYPE=? AND REVISION=(SELECT MAX(REVISION) FROM CSOBJREV WHERE OBJID=? AND "
                                  "OBJTYPE=?)",
                                  "iiii", "iiiii")),
        empty_(this->db_.prepare("SELECT OBJID,OBJTYPE,REVISION,MAJORVER,MINORVER,FLAG,CTIME,CUSERID,CUSER,CREASON "
                                 "FROM CSOBJREV WHERE OBJID=? AND OBJTYPE=? AND REVISION=0",
                                 "ii", "iiiiiimitT")),
        add_row_(this->db_.prepare("INSERT INTO CSOBJREV (OBJID,OBJTYPE,REVISION,MAJORVER,MINORVER,FLAG,CTIME,CUSERID,"
                                   "CUSER,CREASON) VALUES (?,?,?,?,?,?,?,?,?,?)",
                                   "iiiiiimitT")),
        find_id_(this->db_.prepare(
            "SELECT REVID,OBJID,OBJTYPE,REVISION FROM CSOBJREV WHERE OBJID=? AND OBJTYPE=? AND REVISION=?", "iii",
            "iiii")),
        find_payload_(this->db_.prepare("SELECT REVID,DATA FROM CSREVDAT WHERE REVID=?", "i", "i")),
        add_payload_(this->db_.prepare("INSERT INTO CSREVDAT (REVID,DATA) VALUES (?,?)", "ib")) {}

  void run() override {
    this->db_.begin();
    const auto [number, minor] = next_number();
    this->sum_ += number;
    add_row(number, minor);
    add_payload(id_of(number));
    this->db_.commit();
    if (++added_ % kept_payloads == 0) this->db_.run(drop_payloads);
  }

 private:
  using Statement = typename Database::Statement;

  static void must_be_free(Statement& statement) {
    const bool found = statement.query();
    statement.close();
    if (found) throw std::runtime_error("the row is there already");
  }

  std::pair<int, int> next_number() {
    for (int position = 0; position < 4; ++position)
      latest_.set_number(position, position % 2 == 0 ? object : object_type);
    std::pair next{1, 1};
    if (latest_.query()) next = {latest_.number_at(2) + 1, latest_.number_at(4) + 1};
    latest_.close();
    return next;
  }

  void add_row(int number, int minor) {
    empty_.set_number(0, object);
    empty_.set_number(1, object_type);
    must_be_free(empty_);
    const int numbers[] = {object, object_type, number, 0, minor, 0};
    for (int position = 0; position < 6; ++position)
      add_row_.set_number(position, numbers[position]);
    add_row_.set_moment(6, utc_now());
    add_row_.set_number(7, user);
    add_row_.set_text(8, user_name_);
    add_row_.set_text(9, reason_);
    add_row_.write();
  }

  int id_of(int number) {
    find_id_.set_number(0, object);
    find_id_.set_number(1, object_type);
    find_id_.set_number(2, number);
    if (!find_id_.query()) throw std::runtime_error("the new row is missing");
    const int id = find_id_.number_at(0);
    find_id_.close();
    return id;
  }

  void add_payload(int id) {
    find_payload_.set_number(0, id);
    must_be_free(find_payload_);
    add_payload_.set_number(0, id);
    add_payload_.set_bytes(1, payload_);
    add_payload_.write();
  }

  Statement& latest_;
  Statement& empty_;
  Statement& add_row_;
  Statement& find_id_;
  Statement& find_payload_;
  Statement& add_payload_;
  std::string payload_ = std::string(payload_size, 'p');
  std::string user_name_ = user_name;
  std::string reason_ = reason;
  long added_ = 0;
};

/// Adds a small revision behind a history that stays as long as it is.
class OurAddingAfter final : public OurAdding {
 public:
  OurAddingAfter(const Place& place, int history) : OurAdding(place, 1024), history_(history) {}
  void run() override {
    if (!db().BeginTrans()) throw std::runtime_error("no transaction began");
    sum_ += add() - history_;
    db().Rollback();
  }

 private:
  int history_;
};

/// Two points of the curve: this long a history, and in place of the plain side one of 10 revisions.
template <int history>
Job add_after(const char* name) {
  Job job;
  job.name = name;
  job.sqlite_limit = 1.3;
  job.mariadb_limit = 1.3;
  job.pair = [](Plant& plant) {
    const auto side = [&](int count) {
      const Place place = plant.make_database();
      plant.add_revisions(place, object, count);
      return std::make_unique<OurAddingAfter>(place, count);
    };
    return Pair{side(history), side(10)};
  };
  return job;
}

}  // namespace

Job add_revision() {
  Job job;
  job.name = "add a revision of 64 KiB";
  job.sqlite_limit = 1.3;
  job.mariadb_limit = 1.3;
  job.pair = [](Plant& plant) {
    return make_pair_of<OurAdding, PlainAdding>(plant.make_database(), plant.make_database());
  };
  return job;
}

Job add_after_100() { return add_after<100>("add the 101st; plain: 11th"); }
Job add_after_1000() { return add_after<1000>("add the 1,001st; plain: 11th"); }
Job add_after_10000() { return add_after<10000>("add the 10,001st; plain: 11th"); }

}  // namespace bench
