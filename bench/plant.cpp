#include "bench/plant.h"

#include "schema/ddl.h"

namespace bench {
namespace {

constexpr int samples_of_hundred_thousand = 800;
constexpr int samples_of_a_million = 8000;

/// Runs statements on a connection of its own.
template <class Database>
void run_all(const std::string& place, const std::vector<std::string>& statements) {
  Database db(place);
  db.begin();
  for (const auto& statement : statements)
    db.run(statement);
  db.commit();
}

std::vector<std::string> profile_statements() {
  std::vector<std::string> statements{"INSERT INTO CSPROF (PROFID, NAME) VALUES (1, 'Bench')"};
  for (int id = 1; id <= characteristics; ++id) {
    const auto number = std::to_string(id);
    statements.push_back("INSERT INTO CSCHRT (CHRTID, NAME, CTYPE, CFLG2, SGSIZE) VALUES (" + number + ", 'C" + number +
                         "', 'VARIABLE', 0, " + std::to_string(pieces) + ")");
    statements.push_back("INSERT INTO CSCINP (PROFID, CHRTID, SEQNO) VALUES (1, " + number + ", " + number + ")");
  }
  return statements;
}

/// "FROM" and a table of one column I that counts from `first` to `last`.
std::string numbers(Server server, int first, int last) {
  const auto from = std::to_string(first);
  const auto to = std::to_string(last);
  if (server == Server::mariadb) return " FROM (SELECT seq AS I FROM seq_" + from + "_to_" + to + ") N";
  return " FROM (WITH RECURSIVE N(I) AS (SELECT " + from + " UNION ALL SELECT I + 1 FROM N WHERE I < " + to +
         ") SELECT I FROM N)";
}

}  // namespace

double measured_value(int sample, int characteristic, int piece) {
  return 10 + (sample * 7 + characteristic * 3 + piece) % 1000 / 7.0;
}

const char* name_of(Server server) { return server == Server::sqlite ? "SQLite" : "MariaDB"; }

Plant::Plant(Server server) : server_(server) {}

Place Plant::make_database() {
  Place place;
  place.server = server_;
  if (server_ == Server::sqlite) {
    place.plain_text = folder_.file(std::to_string(++made_) + ".db");
    place.connect_text = "sqlite:" + place.plain_text;
  } else {
    databases_.push_back(
        std::make_unique<test_support::TestDatabase>(test_support::PrivateMariaDb::shared().create_database()));
    place.plain_text = databases_.back()->odbc_connect_text();
    place.connect_text = "ODBC;" + place.plain_text;
  }
  const bool sqlite = server_ == Server::sqlite;
  auto statements = schema::create_statements(sqlite ? schema::Server::sqlite : schema::Server::mysql);
  for (auto& statement : profile_statements())
    statements.push_back(std::move(statement));
  sqlite ? run_all<PlainSqlite>(place.plain_text, statements) : run_all<PlainOdbc>(place.plain_text, statements);
  return place;
}

void Plant::run(const Place& place, const std::string& sql) {
  server_ == Server::sqlite ? run_all<PlainSqlite>(place.plain_text, {sql})
                            : run_all<PlainOdbc>(place.plain_text, {sql});
}

void Plant::add_samples(const Place& place, int first, int last) {
  const std::string divided = server_ == Server::sqlite ? " / " : " DIV ";
  const auto piece = "1 + I % " + std::to_string(pieces);
  const auto characteristic = "1 + (I" + divided + std::to_string(pieces) + ") % " + std::to_string(characteristics);
  const auto sample = "1 + I" + divided + std::to_string(rows_per_sample);
  run(place,
      "INSERT INTO CSVDAT (SAMPID, CHRTID, PIECENO, VARVALUE) SELECT SAMPID, CHRTID, PIECENO, "
      "10 + (SAMPID * 7 + CHRTID * 3 + PIECENO) % 1000 / 7e0 FROM (SELECT " +
          sample + " AS SAMPID, " + characteristic + " AS CHRTID, " + piece + " AS PIECENO" +
          numbers(server_, (first - 1) * rows_per_sample, last * rows_per_sample - 1) + ") R");
  run(place, "INSERT INTO CSSAMP (SAMPID, PROFID, CTIME) SELECT I, 1, '2024-03-15 08:30:00.125'" +
                 numbers(server_, first, last));
}

void Plant::add_revisions(const Place& place, int object, int count) {
  run(place,
      "INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, FLAG, CTIME, CUSERID, CUSER, CREASON) "
      "SELECT " +
          std::to_string(object) + ", " + std::to_string(object_type) +
          ", I, 0, I, 0, '2024-03-15 08:30:00.125', 7, 'anna', 'limits moved'" + numbers(server_, 1, count));
}

const Place& Plant::filled() {
  if (filled_ == nullptr) {
    auto place = make_database();
    add_samples(place, 1, samples_of_hundred_thousand);
    samples_ = samples_of_hundred_thousand;
    filled_ = std::make_unique<Place>(std::move(place));
  }
  return *filled_;
}

const Place& Plant::filled_to_a_million() {
  const auto& place = filled();
  if (samples_ < samples_of_a_million) add_samples(place, samples_ + 1, samples_of_a_million);
  samples_ = samples_of_a_million;
  return place;
}

}  // namespace bench
