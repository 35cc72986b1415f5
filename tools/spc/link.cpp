#include "tools/spc/link.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <iomanip>

#include "spcbase/platform/database/connect_text.h"
#include "tools/engine/reference_engine.h"

namespace spc {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view sqlite_scheme = "sqlite:";

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

fs::path data_folder() {
  // A relative path in the variable is to be passed over, say the rules of the variable.
  if (const fs::path given = environment("XDG_DATA_HOME"); given.is_absolute()) return given / "spc";
  if (const fs::path home = environment("HOME"); home.is_absolute()) return home / ".local" / "share" / "spc";
  throw Problem{"cannot choose a database", "neither XDG_DATA_HOME nor HOME names a folder",
                "Name the database with --connect or --dsn.", exit_failed};
}

bool begins_with_scheme(std::string_view text) {
  return text.size() >= sqlite_scheme.size() &&
         std::equal(sqlite_scheme.begin(), sqlite_scheme.end(), text.begin(),
                    [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

std::string lower(std::string_view text) {
  std::string low(text);
  std::transform(low.begin(), low.end(), low.begin(),
                 [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return low;
}

}  // namespace

std::string sqlite_connect_text(const std::string& file) {
  std::string braced;
  for (const char c : file)
    braced += c == '}' ? "}}" : std::string(1, c);
  return std::string(sqlite_scheme) + "{" + braced + "}";
}

std::string connect_text_of(const Place& place, bool create) {
  if (!place.dsn.empty()) return "DSN=" + place.dsn;
  std::string text = place.connect;
  if (text.empty()) {
    const fs::path folder = data_folder();
    if (create) doing("cannot make " + folder.string(), [&] { fs::create_directories(folder); });
    text = sqlite_connect_text((folder / "spc.db").string());
  }
  const bool says_so = lower(text).find(";create=") != std::string::npos;
  if (create && begins_with_scheme(text) && !says_so) text += ";Create=1";
  return text;
}

void Watcher::on_statement(const spcdb::StatementReport& report) noexcept {
  try {
    if (report.failure != nullptr) failure_ = describe_failure(*report.failure);
    if (trace_ != nullptr) print(report);
  } catch (...) {
    // No memory for a line of the trace: the work itself goes on.
    failure_.reset();
  }
}

std::optional<Failure> Watcher::take_failure() { return std::exchange(failure_, std::nullopt); }

void Watcher::print(const spcdb::StatementReport& report) {
  const double milliseconds = std::chrono::duration<double, std::milli>(report.time).count();
  *trace_ << "trace " << std::fixed << std::setprecision(3) << std::setw(9) << milliseconds << " ms ";
  if (report.failure != nullptr)
    *trace_ << "  failed";
  else if (report.rows < 0)
    *trace_ << "        ";
  else
    *trace_ << std::setw(4) << report.rows << " row" << (report.rows == 1 ? " " : "s");
  *trace_ << "  " << report.statement;
  if (!report.parameters.empty()) *trace_ << "   [" << report.parameters << "]";
  *trace_ << '\n';
}

Link::Link(std::string connect_text, std::ostream* trace)
    : watcher_(trace), shown_(spcdb::mask_password_in_connect_text(connect_text)) {
  spc::doing("cannot open the database " + shown_, [&] { db_.OpenEx(connect_text.c_str()); });
  db_.set_observer(&watcher_);
  engine_ = reference_engine::make(db_);
}

Link::~Link() {
  engine_ = nullptr;
  db_.set_observer(nullptr);
  // A server that is gone cannot be told goodbye; whatever failed has been told by now.
  static_cast<void>(guarded([&] { db_.Close(); }));
}

Failure Link::with_cause(const Failure& failure) {
  const auto cause = watcher_.take_failure();
  return cause && failure.kind == FailureKind::automation ? *cause : failure;
}

std::optional<schema::Server> Link::server() {
  const std::string words = lower(db_.describe_server().view());
  if (words.find("sqlite") != std::string::npos) return schema::Server::sqlite;
  switch (dbcheck::find_db_type(db_)) {
    case 0:
      return schema::Server::sql_server;
    case 1:
      return schema::Server::oracle;
    case 2:
      return schema::Server::access;
    case 3:
      return schema::Server::mysql;
    default:
      return std::nullopt;
  }
}

}  // namespace spc
