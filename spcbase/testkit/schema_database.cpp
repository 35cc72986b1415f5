#include "spcbase/testkit/schema_database.h"

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "schema/ddl.h"
#include "schema/description.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/raw_odbc.h"
#include "spcbase/testkit/raw_sqlite.h"
#include "spcbase/testkit/scratch_folder.h"

namespace test_support {

const char* name_of(ServerKind kind) {
  switch (kind) {
    case ServerKind::sqlite:
      return "sqlite";
    case ServerKind::mariadb:
      return "mariadb";
    case ServerKind::sqlite_odbc:
      return "sqlite_odbc";
  }
  return "unknown";
}

class SchemaDatabase::Place {
 public:
  Place() = default;
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  virtual ~Place() = default;

  virtual ServerKind kind() const = 0;
  virtual std::string connect_text() const = 0;
  virtual std::string raw_odbc_text() const = 0;
  virtual std::vector<Row> rows(const std::string& statement) = 0;
  virtual void spoil() = 0;
};

namespace {

using Row = SchemaDatabase::Row;

// The file that every SQLite database of this program is a copy of.
const std::string& sqlite_template() {
  static const ScratchFolder folder;
  static const std::string made = [] {
    std::string file = folder.file("template.db");
    RawSqlite database(file);
    database.execute("BEGIN");
    for (const auto& statement : schema::create_statements(schema::Server::sqlite))
      database.execute(statement);
    database.execute("COMMIT");
    return file;
  }();
  return made;
}

class SqlitePlace : public SchemaDatabase::Place {
 public:
  explicit SqlitePlace(bool odbc) : odbc_(odbc) {
    std::filesystem::copy_file(sqlite_template(), file_);
    // Once: it names the package when the driver is missing.
    if (odbc_) static_cast<void>(driver_is_there());
  }

  ServerKind kind() const override { return odbc_ ? ServerKind::sqlite_odbc : ServerKind::sqlite; }
  std::string connect_text() const override { return odbc_ ? raw_odbc_text() : "sqlite:" + file_; }
  std::string raw_odbc_text() const override { return raw_odbc_text_of(file_); }
  std::vector<Row> rows(const std::string& statement) override {
    if (plain_ == nullptr) plain_ = std::make_unique<RawSqlite>(file_);
    return plain_->rows(statement);
  }
  void spoil() override {}

 private:
  static bool driver_is_there() {
    static const bool there = (RawOdbc(raw_odbc_text_of(":memory:")), true);
    return there;
  }
  static std::string raw_odbc_text_of(const std::string& file) {
    return "Driver=SQLite3;Database=" + file + ";FKSupport=1;Timeout=2000";
  }

  bool odbc_;
  ScratchFolder folder_;
  std::string file_ = folder_.file("plant.db");
  std::unique_ptr<RawSqlite> plain_;
};

// A database of the private server, kept for the next test.
class MariaDbDatabase {
 public:
  MariaDbDatabase() : database_(PrivateMariaDb::shared().create_database()), plain_(database_.odbc_connect_text()) {
    for (const auto& statement : schema::create_statements(schema::Server::mysql))
      plain_.execute(statement);
    for (const auto& table : schema::tables())
      ask(std::string(table.name), "table", "EXISTS (SELECT 1 FROM " + std::string(table.name) + ")");
    for (const auto& number : schema::running_numbers()) {
      const std::string counter(number.counter);
      ask(counter, "counter", "NOT ((SELECT COUNT(*) * 1000 + SUM(MAXNO) FROM " + counter + ") <=> 1000)");
    }
  }

  void empty() {
    // One question finds what there is to do: most tests touch few tables.
    const auto used = plain_.rows(question_);
    if (used.empty()) return;
    plain_.execute("SET FOREIGN_KEY_CHECKS = 0");
    for (const auto& row : used) {
      plain_.execute("DELETE FROM " + row.at(0).value());
      if (row.at(1).value() == "counter") plain_.execute("INSERT INTO " + row.at(0).value() + " VALUES (0)");
    }
    plain_.execute("SET FOREIGN_KEY_CHECKS = 1");
  }

  std::string odbc_connect_text() const { return database_.odbc_connect_text(); }
  RawOdbc& plain() { return plain_; }

 private:
  void ask(const std::string& name, const std::string& kind, const std::string& is_used) {
    if (!question_.empty()) question_ += " UNION ALL ";
    question_ += "SELECT '" + name + "', '" + kind + "' FROM DUAL WHERE " + is_used;
  }

  TestDatabase database_;
  RawOdbc plain_;
  std::string question_;  ///< gives the tables that are not as a fresh database has them
};

std::unique_ptr<MariaDbDatabase>& kept_mariadb() {
  PrivateMariaDb::shared();  // made before, so that it ends after the database
  static std::unique_ptr<MariaDbDatabase> kept;
  return kept;
}

class MariaDbPlace : public SchemaDatabase::Place {
 public:
  MariaDbPlace() : database_(std::move(kept_mariadb())) {
    if (database_ == nullptr)
      database_ = std::make_unique<MariaDbDatabase>();
    else
      database_->empty();
  }
  ~MariaDbPlace() override {
    if (!spoiled_ && kept_mariadb() == nullptr) kept_mariadb() = std::move(database_);
  }

  ServerKind kind() const override { return ServerKind::mariadb; }
  std::string connect_text() const override { return raw_odbc_text(); }
  std::string raw_odbc_text() const override { return database_->odbc_connect_text(); }
  std::vector<Row> rows(const std::string& statement) override {
    // Another connection's commit must be seen: no snapshot of this connection may stand in the way.
    return database_->plain().rows(statement);
  }
  void spoil() override { spoiled_ = true; }

 private:
  std::unique_ptr<MariaDbDatabase> database_;
  bool spoiled_ = false;
};

}  // namespace

SchemaDatabase::SchemaDatabase(ServerKind kind) {
  if (kind == ServerKind::mariadb)
    place_ = std::make_unique<MariaDbPlace>();
  else
    place_ = std::make_unique<SqlitePlace>(kind == ServerKind::sqlite_odbc);
}

SchemaDatabase::~SchemaDatabase() = default;

ServerKind SchemaDatabase::kind() const { return place_->kind(); }
std::string SchemaDatabase::connect_text() const { return place_->connect_text(); }
std::string SchemaDatabase::raw_odbc_text() const { return place_->raw_odbc_text(); }
void SchemaDatabase::execute(const std::string& statement) { place_->rows(statement); }
std::vector<SchemaDatabase::Row> SchemaDatabase::rows(const std::string& statement) { return place_->rows(statement); }
void SchemaDatabase::spoil() { place_->spoil(); }

void SchemaDatabase::open(CDatabase& connection) const {
  const auto opened = guarded([&] { connection.OpenEx(connect_text().c_str()); });
  if (!opened) throw std::runtime_error(opened.failure().text.GetString());
}

std::string SchemaDatabase::value(const std::string& statement) {
  const auto found = rows(statement);
  if (found.empty() || found.front().empty()) return "no row";
  return found.front().front().value_or("NULL");
}

}  // namespace test_support
