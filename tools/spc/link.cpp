#include "tools/spc/link.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <system_error>

#include "spcbase/platform/database/connect_text.h"
#include "spcbase/testkit/reference_engine.h"
#include "tools/spc/dry_run.h"
#include "tools/spc/interruption.h"
#include "tools/spc/opening.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view sqlite_scheme = "sqlite:";
constexpr std::string_view create_option = ";Create=1";

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

void make_folder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error)
    throw Problem{"cannot make the folder " + folder.string(), error.message(),
                  "Name the database with --connect or --dsn, or another place in XDG_DATA_HOME."};
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
  if (!file.starts_with('{') && file.find(';') == std::string::npos) return std::string(sqlite_scheme) + file;
  std::string braced;
  for (const char c : file)
    braced += c == '}' ? "}}" : std::string(1, c);
  return std::string(sqlite_scheme) + "{" + braced + "}";
}

bool is_default_file(const std::string& file) {
  try {
    return file == (data_folder() / "spc.db").string();
  } catch (const Problem&) {
    return false;
  }
}

std::string connect_text_of(const Place& place, bool create, bool dry_run) {
  if (!place.dsn.empty()) return "DSN=" + place.dsn;
  std::string text = place.connect;
  if (text.empty()) {
    const fs::path folder = data_folder();
    if (create && !dry_run) make_folder(folder);
    text = sqlite_connect_text((folder / "spc.db").string());
  }
  const bool says_so = lower(text).find(";create=") != std::string::npos;
  if (create && begins_with_scheme(text) && !says_so) text += create_option;
  return text;
}

void Trace::on_statement(const spcdb::StatementReport& report) noexcept {
  try {
    print(report);
  } catch (...) {
    // A trace that cannot be written must not end the work.
    out_.clear();
  }
}

void Trace::print(const spcdb::StatementReport& report) {
  const double milliseconds = std::chrono::duration<double, std::milli>(report.time).count();
  out_ << "trace " << std::fixed << std::setprecision(3) << std::setw(9) << milliseconds << " ms ";
  if (report.failure != nullptr)
    out_ << "  failed";
  else if (report.rows < 0)
    out_ << "        ";
  else
    out_ << std::setw(4) << report.rows << " row" << (report.rows == 1 ? " " : "s");
  out_ << "  " << report.statement;
  if (!report.parameters.empty()) out_ << "   [" << report.parameters << "]";
  out_ << '\n';
}

Link::Link(std::string connect_text, std::ostream* trace) : Link(std::move(connect_text), trace, nullptr) {}

Link::Link(std::string connect_text, const Terminal& terminal)
    : Link(std::move(connect_text), trace_of(terminal), terminal.dry_run) {}

Link::Link(std::string connect_text, std::ostream* trace, DryRun* dry_run)
    : dry_run_(dry_run), shown_(spcdb::mask_password_in_connect_text(connect_text)) {
  if (shown_.ends_with(create_option)) shown_.erase(shown_.size() - create_option.size());
  if (dry_run_ != nullptr) connect_text = connect_text_for_dry_run(connect_text);
  open(connect_text);
  if (trace != nullptr) db_.set_observer(&trace_.emplace(*trace));
  stop_when_interrupted(db_);
  engine_ = reference_engine::make(db_);
  // The last step: whoever began is sure to end, in the destructor.
  if (dry_run_ != nullptr) doing("cannot begin the dry run", [&] { dry_run_->begin(db_, server()); });
}

void Link::open(const std::string& connect_text) {
  const auto outcome = guarded([&] { db_.OpenEx(connect_text.c_str()); });
  if (outcome) return;
  Problem problem = problem_of("cannot open the database " + shown_, outcome.failure());
  problem.advice = advice_for_opening(connect_text, outcome.failure());
  throw problem;
}

Link::~Link() {
  engine_ = nullptr;
  if (dry_run_ != nullptr) dry_run_->end(db_);
  db_.set_observer(nullptr);
  // A server that is gone cannot be told goodbye; whatever failed has been told by now.
  static_cast<void>(guarded([&] { db_.Close(); }));
}

bool Link::only_plans_schema() const { return dry_run_ != nullptr && !dry_run_->takes_back_schema(); }

void Link::before_schema_change(const std::vector<std::string>& statements) const {
  if (only_plans_schema()) dry_run_->plan(statements);
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
