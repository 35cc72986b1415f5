// A payload of 16 MiB, streamed into a blob column and out of it.
#include "spcbase/foundation/payload.h"
#include "bench/jobs.h"
#include "spcbase/foundation/blob.h"

namespace bench {
namespace {

constexpr LongColumn stored{"CSPOPB", "OPTVAL"};
constexpr const char* remove_statement = "DELETE FROM CSPOPB";

std::string make_payload() {
  constexpr std::size_t size = 16UL * 1024 * 1024;
  std::string bytes(size, '\0');
  unsigned state = 1;
  for (char& byte : bytes)
    byte = static_cast<char>((state = state * 1664525U + 1013904223U) >> 24);
  return bytes;
}

/// A number that depends on every byte and its place.
double worth_of(std::string_view bytes) {
  double sum = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at)
    sum += static_cast<unsigned char>(bytes[at]) * static_cast<double>(1 + at % 1009);
  return sum;
}

double worth_of(const CLongBinary& payload) { return worth_of(get_blob_data(payload).view()); }

class OurPayload : public OurWork {
 public:
  using OurWork::OurWork;
  double result() override {
    get_prof_data(&db(), 0, profile_id, payload_);
    return worth_of(payload_);
  }

 protected:
  CLongBinary payload_;
};

class OurPayloadWriting final : public OurPayload {
 public:
  explicit OurPayloadWriting(const Place& place) : OurPayload(place) {
    set_blob_data(payload_, CString(make_payload()));
  }
  void run() override {
    db().ExecuteSQL(remove_statement);
    set_prof_data(&db(), 0, profile_id, payload_);
  }
};

class OurPayloadReading final : public OurPayload {
 public:
  using OurPayload::OurPayload;
  void run() override { get_prof_data(&db(), 0, profile_id, payload_); }
};

template <class Database>
class PlainPayload : public PlainWork<Database> {
 public:
  explicit PlainPayload(const Place& place)
      : PlainWork<Database>(place),
        row_(this->db_.prepare_long("SELECT PROFID,OPTVAL FROM CSPOPB WHERE PROFID=?", stored, "i", "i")) {}
  double result() override {
    read();
    return worth_of(payload_);
  }

 protected:
  bool find() {
    row_.set_number(0, profile_id);
    return row_.query();
  }
  void read() {
    if (!find()) throw std::runtime_error("the payload is missing");
    this->db_.read_long(row_, 1, stored, payload_);
    row_.close();
  }

  typename Database::Statement& row_;
  std::string payload_;
};

template <class Database>
class PlainPayloadWriting final : public PlainPayload<Database> {
 public:
  explicit PlainPayloadWriting(const Place& place)
      : PlainPayload<Database>(place),
        remove_(this->db_.prepare(remove_statement)),
        insert_(this->db_.prepare("INSERT INTO CSPOPB (PROFID,OPTVAL) VALUES (?,?)", "ib")) {
    this->payload_ = make_payload();
  }
  void run() override {
    remove_.write();
    const bool found = this->find();
    this->row_.close();
    if (found) throw std::runtime_error("the payload is there already");
    insert_.set_number(0, profile_id);
    this->db_.insert_long(insert_, 1, stored, this->payload_);
  }

 private:
  typename Database::Statement& remove_;
  typename Database::Statement& insert_;
};

template <class Database>
class PlainPayloadReading final : public PlainPayload<Database> {
 public:
  using PlainPayload<Database>::PlainPayload;
  void run() override { this->read(); }
};

}  // namespace

Job write_payload() {
  Job job;
  job.name = "stream 16 MiB in";
  job.sqlite_limit = 1.2;
  job.mariadb_limit = 1.2;
  job.pair = [](Plant& plant) {
    return make_pair_of<OurPayloadWriting, PlainPayloadWriting>(plant.make_database(), plant.make_database());
  };
  return job;
}

Job read_payload() {
  Job job;
  job.name = "stream 16 MiB out";
  job.sqlite_limit = 1.2;
  job.mariadb_limit = 1.2;
  job.pair = [](Plant& plant) {
    const Place place = plant.make_database();
    OurPayloadWriting(place).run();
    return make_pair_of<OurPayloadReading, PlainPayloadReading>(place, place);
  };
  return job;
}

}  // namespace bench
