#include "tools/spc/dry_run.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <utility>

#include "spcbase/foundation/recordset.h"
#include "tools/spc/link.h"

namespace spc {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view scheme = "sqlite:";

/// Which servers take back a change of the schema when the transaction around it is rolled back. The others commit it
/// by itself, with all that was done before.
constexpr struct {
  schema::Server server;
  bool takes_back_schema;
} facts[] = {{schema::Server::sqlite, true},
             {schema::Server::sql_server, true},
             {schema::Server::mysql, false},
             {schema::Server::oracle, false},
             {schema::Server::access, false}};

/// A server of no known kind is asked by its driver.
bool finds_schema_taken_back(CDatabaseEx& db, std::optional<schema::Server> server) {
  for (const auto& fact : facts)
    if (server == fact.server) return fact.takes_back_schema;
  constexpr WORD transaction_capable = 46;
  constexpr DWORD schema_too = 2;
  DWORD capable = 0;
  const RETCODE code = db.GetInfo(transaction_capable, capable);
  return (code == 0 || code == 1) && capable == schema_too;
}

/// The file's name behind the scheme, braced or not, and the options behind it.
std::pair<std::string, std::string> parted(std::string_view text) {
  if (!text.starts_with('{')) {
    const auto end = std::min(text.find(';'), text.size());
    return {std::string(text.substr(0, end)), std::string(text.substr(end))};
  }
  std::string file;
  std::size_t i = 1;
  for (; i < text.size(); ++i) {
    if (text[i] == '}' && !text.substr(i + 1).starts_with('}')) break;
    if (text[i] == '}') ++i;
    file += text[i];
  }
  return {file, std::string(text.substr(std::min(i, text.size())))};
}

std::string lower(std::string_view text) {
  std::string low(text);
  std::ranges::transform(low, low.begin(),
                         [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return low;
}

/// Whether the options behind an SQLite file have it made when it is missing: Create with any number but 0.
bool says_create(const std::string& options) {
  std::string plain = lower(options);
  std::erase_if(plain, [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
  constexpr std::string_view key = ";create=";
  const auto at = plain.find(key);
  if (at == std::string::npos) return false;
  const std::string value = plain.substr(at + key.size(), plain.find(';', at + 1) - at - key.size());
  return value.find_first_not_of('0') != std::string::npos;
}

/// Whether an SQLite file that is missing could be made. The command makes the folder of its own database.
bool can_be_made(const fs::path& file) {
  std::error_code ignored;
  if (is_default_file(file.string())) return true;
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
  return fs::is_directory(folder, ignored);
}

}  // namespace

std::optional<std::string> file_to_be_made(const std::string& connect_text) {
  if (!lower(connect_text).starts_with(scheme)) return std::nullopt;
  auto [file, options] = parted(std::string_view(connect_text).substr(scheme.size()));
  std::ranges::replace(file, '\\', '/');
  std::error_code ignored;
  if (!says_create(options) || fs::exists(file, ignored) || !can_be_made(file)) return std::nullopt;
  return file;
}

std::string connect_text_for_dry_run(const std::string& connect_text) {
  // Where it cannot be made, opening it fails as in the real run.
  return file_to_be_made(connect_text) ? "sqlite::memory:" : connect_text;
}

void DryRun::begin(CDatabaseEx& db, std::optional<schema::Server> server) {
  begun_ = true;
  takes_back_schema_ = finds_schema_taken_back(db, server);
  if (!db.CanTransact()) refuse("the driver has no transactions, so nothing could be taken back");
  if (server == schema::Server::mysql) refuse_tables_without_transactions(db);
  other_ = db.observer();
  db.set_observer(this);
  transaction_.emplace(db, true);
}

void DryRun::end(CDatabaseEx& db) noexcept {
  if (!transaction_) return;
  const auto outcome = guarded([&] { return transaction_->rollback(); });
  rolled_back_ = outcome && outcome.value();
  if (!rolled_back_)
    doubt(outcome ? "there was no transaction to roll back any more" : std::string(outcome.failure().text.view()),
          "Closing the connection makes a server take back what was not committed: see that it is so.");
  transaction_.reset();
  db.set_observer(other_);
}

void DryRun::plan(const std::vector<std::string>& statements) {
  planned_ = statements;
  refuse("the server commits changes of the schema by itself, so they could not be taken back");
}

void DryRun::on_statement(const spcdb::StatementReport& report) noexcept {
  if (other_ != nullptr) other_->on_statement(report);
  // What fails here has nobody to tell; then the counts are wrong, which must be said.
  if (!guarded([&] { note(report); })) doubt("its statements could not be counted", "Try it again.");
}

void DryRun::note(const spcdb::StatementReport& report) {
  rows_.count(report);
  if (report.failure != nullptr) {
    if (report.failure->m_strStateNativeOrigin.view().find("State:40001") != std::string_view::npos)
      doubt("the server rolled its transaction back in the middle of the work", "Nothing was changed: try it again.");
  } else if (report.statement == "COMMIT") {
    doubt("something was committed", "Look at what the command changes: the database may hold it.");
  } else if (!takes_back_schema_ && changes_schema(report.statement)) {
    doubt("the server has committed " + std::string(report.statement), "Look at what the command changes.");
  }
}

void DryRun::doubt(std::string why, std::string advice) {
  if (!doubt_) doubt_ = Problem{"the dry run went wrong", std::move(why), std::move(advice)};
}

void DryRun::refuse(std::string why) {
  why_planned_ = std::move(why);
  throw NotToBeRun();
}

void DryRun::refuse_tables_without_transactions(CDatabaseEx& db) {
  RSCount count(&db, "INFORMATION_SCHEMA.TABLES", nullptr);
  requery_rs_for_read(count,
                      "TABLE_SCHEMA = DATABASE() AND TABLE_TYPE = 'BASE TABLE' AND ENGINE NOT IN (SELECT ENGINE FROM "
                      "INFORMATION_SCHEMA.ENGINES WHERE TRANSACTIONS = 'YES')",
                      true);
  if (!count.IsEOF() && count.result > 0)
    refuse(
        "tables of this database know no transactions (see ENGINE in INFORMATION_SCHEMA.TABLES), so nothing could "
        "be taken back");
}

}  // namespace spc
