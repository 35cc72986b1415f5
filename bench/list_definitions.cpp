// Listing 10,000 stored definitions, their connection strings enciphered. The plain side reads the same columns and
// blobs in plain C and hands the texts to the same parser, so what is compared is all but the parsing.
#include <algorithm>

#include "bench/jobs.h"
#include "spcbase/datasource/stored.h"
#include "spcbase/utility/text.h"

namespace bench {
namespace {

constexpr int definitions_stored = 10'000;
constexpr double milliseconds_per_day = 86'400'000;

OLEDBInfo make_definition(int id) {
  OLEDBInfo definition;
  definition.id = id;
  definition.name.Format("Warehouse %d", id);
  definition.description = "what is in store, by the hour";
  definition.type = "stock";
  definition.flag2 = id % 7;
  definition.connection_string.Format(
      "Driver={MariaDB Unicode};Server=db%d.example.org;Database=stock;UID=spc;PWD=secret %d", id % 10, id);
  definition.version = OLEDBInfo::present_version;
  definition.internal_option = 3;
  definition.catalog_separator = ".";
  definition.schema_separator = ".";
  definition.table_separator = ".";
  definition.quote_prefix = "`";
  definition.quote_suffix = "`";
  return definition;
}

Place make_definitions(Plant& plant) {
  Place place = plant.make_database();
  CDatabaseEx db;
  db.OpenEx(place.connect_text.c_str());
  AutoODBCTransaction transaction(db, true);
  for (int id = 1; id <= definitions_stored; ++id) {
    OLEDBInfo definition = make_definition(id);
    COleDateTime modified;
    OLEDBInfo::create(&db, 0, definition, modified);
  }
  transaction.commit();
  return place;
}

using Definitions = std::vector<std::shared_ptr<OLEDBInfo>>;

double worth_of(const CString& text) {
  return text.GetLength() + 3.0 * (text.IsEmpty() ? 0 : text[text.GetLength() - 1]);
}

double worth_of(const Definitions& definitions, const COleDateTime& newest) {
  double sum = newest.m_dt;
  for (const auto& each : definitions) {
    sum += 3.0 * each->id + 5.0 * each->flag2 + 7.0 * each->internal_option + each->modified_time.m_dt;
    for (const CString* text : {&each->name, &each->description, &each->type, &each->connection_string,
                                &each->catalog_separator, &each->quote_suffix})
      sum += worth_of(*text);
  }
  return sum;
}

class OurDefinitions final : public OurWork {
 public:
  using OurWork::OurWork;
  void run() override {
    Definitions definitions;
    COleDateTime newest;
    get_all_ole_db(&db(), 0, 0, definitions, newest);
    sum_ = worth_of(definitions, newest);
  }
};

template <class Database>
class PlainDefinitions final : public PlainWork<Database> {
 public:
  explicit PlainDefinitions(const Place& place)
      : PlainWork<Database>(place),
        row_(this->db_.prepare("SELECT EXDBID,NAME,DESCR,TYPE,FLG1,FLG2,MTIME,VFLG,DATA FROM CSEXDB WHERE VFLG IS NULL "
                               "AND FLG1 = ?",
                               "i", "itttiimt")) {}

  void run() override {
    Definitions definitions;
    double newest = 0;
    row_.set_number(0, OLEDBInfo::kind);
    for (bool has_row = row_.query(); has_row; has_row = row_.next()) {
      definitions.push_back(std::make_shared<OLEDBInfo>());
      take_row(*definitions.back());
      newest = std::max(newest, day_number(row_.moment_at(6)));
    }
    row_.close();
    this->sum_ = worth_of(definitions, COleDateTime(newest));
  }

 private:
  CString text_at(int column) {
    row_.text_at(column, text_);
    return CString(text_);
  }
  void take_row(OLEDBInfo& definition) {
    definition.id = row_.number_at(0);
    definition.name = fix_spc_name(fix_spc_name(text_at(1), false), false);
    definition.description = fix_spc_name(text_at(2), true);
    definition.type = text_at(3);
    definition.flag2 = row_.number_at(5);
    const Moment modified = local_of(row_.moment_at(6));
    definition.modified_time.m_dt = day_number(modified) + modified.millisecond / milliseconds_per_day;
    if (row_.number_at(4) != OLEDBInfo::kind || !row_.is_null_at(7)) throw std::runtime_error("the row is another");
    row_.bytes_at(8, text_);
    definition.set_xml(CString(text_));
  }

  typename Database::Statement& row_;
  std::string text_;
};

}  // namespace

Job list_definitions() {
  Job job;
  job.name = "list 10,000 definitions";
  job.sqlite_limit = 1.3;
  job.mariadb_limit = 1.3;
  job.pair = [](Plant& plant) {
    const Place place = make_definitions(plant);
    return make_pair_of<OurDefinitions, PlainDefinitions>(place, place);
  };
  return job;
}

}  // namespace bench
