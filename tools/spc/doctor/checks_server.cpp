// What in the server itself will surprise.
#include <algorithm>
#include <array>
#include <cmath>

#include "spcbase/foundation/recordset.h"
#include "spcbase/platform/datetime/zone.h"
#include "tools/spc/doctor/check.h"
#include "tools/spc/doctor/examination.h"
#include "tools/spc/problem.h"
#include "tools/spc/terminal.h"

namespace spc::doctor {
namespace {

void server_finding(Examination& examination, std::string detail) {
  examination.found({}, {"", {}, false, 1, std::move(detail)});
}

void look_at_transactions(Examination& examination) {
  CDatabaseEx& db = examination.link().db();
  if (!db.CanTransact()) server_finding(examination, std::string(db.describe_server().view()));
}

void look_at_isolation(Examination& examination) {
  constexpr WORD sql_default_txn_isolation = 26;
  constexpr DWORD read_uncommitted = 1;
  DWORD level = 0;
  const RETCODE code = examination.link().db().GetInfo(sql_default_txn_isolation, level);
  if ((code == 0 || code == 1) && level == read_uncommitted)
    server_finding(examination, "transactions begin as READ UNCOMMITTED");
}

/// Which dialect is meant for the servers of a name.
struct NamedDialect {
  const char* word;
  int dialect;
};

constexpr std::array<NamedDialect, 6> named_dialects = {
    {{"SQLITE", 2}, {"MARIADB", 3}, {"MYSQL", 3}, {"SQL SERVER", 0}, {"ORACLE", 1}, {"ACCESS", 2}}};
constexpr std::array<const char*, 4> dialect_names = {"Microsoft SQL Server", "Oracle", "Microsoft Access", "MySQL"};

void look_for_unknown_dialect(Examination& examination) {
  if (examination.dialect() < 0)
    server_finding(examination, std::string(examination.link().db().describe_server().view()));
}

void look_for_another_dialect(Examination& examination) {
  const int dialect = examination.dialect();
  if (dialect < 0) return;
  CString server = examination.link().db().describe_server();
  const std::string shown(server.view());
  const std::string name(server.MakeUpper().view());
  const auto meant = std::ranges::find_if(
      named_dialects, [&](const auto& named) { return name.find(named.word) != std::string::npos; });
  if (meant != named_dialects.end() && meant->dialect == dialect) return;
  server_finding(examination, shown + " answers as " + dialect_names.at(static_cast<std::size_t>(dialect)));
}

/// Texts whose equality matters: keys of settings, and values that a list learns.
struct ComparedText {
  const char* table;
  const char* column;
};
constexpr std::array<ComparedText, 2> compared_texts = {{{"CSINI", "KYWORD"}, {"CSVALUE", "NAME"}}};

/// Whether a server takes two texts for equal as values of a column; no row of it is needed. The one row that the
/// question does need is a counter's.
void look_at_comparison(Examination& examination, const std::string& text, const std::string& other) {
  const long rows = examination.count("[CSSPRN]", "");
  if (rows == 0) throw Problem{"", "CSSPRN has no row, which the question needs", ""};
  for (const auto& compared : compared_texts) {
    const std::string table = compared.table;
    const std::string name = compared.column;
    examination.attempt(table, [&] {
      const std::string probe = "(SELECT [" + name + "] AS PROBE FROM [" + table + "] WHERE [" + name +
                                "] IS NULL UNION ALL SELECT '" + text + "' FROM [CSSPRN]) D";
      if (examination.count(probe, "D.PROBE = '" + other + "'") == 0) return;
      examination.found(table, {"column", {name}, false, 1, "'" + text + "' = '" + other + "'"});
    });
  }
}

void look_at_case(Examination& examination) { look_at_comparison(examination, "a", "A"); }
void look_at_accents(Examination& examination) { look_at_comparison(examination, "e", "\xC3\xA9"); }
void look_at_blanks(Examination& examination) { look_at_comparison(examination, "a", "a "); }

constexpr double seconds_per_day = 86400;
constexpr double quarter_seconds = 900;

/// By how many seconds the server's local time is ahead of ours; nothing where there is no server with a clock.
std::optional<double> seconds_ahead(Examination& examination) {
  const auto server = examination.link().server();
  if (!server || *server == schema::Server::sqlite || *server == schema::Server::access) {
    examination.does_not_apply({}, "there is no server with a clock of its own that can be asked");
    return std::nullopt;
  }
  RSMaxDateTime row(&examination.link().db(), "[CSSPRN]", "CURRENT_TIMESTAMP");
  requery_rs_for_read(row, nullptr, true);
  if (row.IsEOF() || row.IsFieldNull(&row.result)) throw Problem{"", "CSSPRN has no row, which the question needs", ""};
  SYSTEMTIME ours{};
  GetLocalTime(&ours);
  const SYSTEMTIME theirs{static_cast<WORD>(row.result.year),
                          row.result.month,
                          0,
                          row.result.day,
                          row.result.hour,
                          row.result.minute,
                          row.result.second,
                          0};
  return (COleDateTime(theirs).m_dt - COleDateTime(ours).m_dt) * seconds_per_day;
}

/// What of a difference is one of zones, which lie whole quarters of an hour apart.
double zone_part(double seconds) {
  constexpr double widest_seconds = 26 * 3600;
  return std::abs(seconds) > widest_seconds ? 0 : std::round(seconds / quarter_seconds) * quarter_seconds;
}

void look_at_zone(Examination& examination) {
  const auto ahead = seconds_ahead(examination);
  if (!ahead || zone_part(*ahead) == 0) return;
  constexpr double seconds_per_minute = 60;
  server_finding(examination, "its local time is " +
                                  std::to_string(std::lround(zone_part(*ahead) / seconds_per_minute)) +
                                  " minutes ahead of this machine's");
}

void look_at_clock(Examination& examination) {
  constexpr double much_seconds = 60;
  const auto ahead = seconds_ahead(examination);
  if (!ahead) return;
  const double apart = *ahead - zone_part(*ahead);
  if (std::abs(apart) <= much_seconds) return;
  server_finding(examination,
                 "its clock is " + std::to_string(std::lround(apart)) + " seconds ahead of this machine's");
}

bool is_sqlite(Examination& examination) {
  if (examination.link().server() == schema::Server::sqlite) return true;
  examination.does_not_apply({}, "it is for SQLite alone");
  return false;
}

void look_at_foreign_keys(Examination& examination) {
  if (!is_sqlite(examination)) return;
  if (examination.count("[pragma_foreign_keys]", "[foreign_keys] = 0") > 0)
    server_finding(examination, "PRAGMA foreign_keys is 0 on this connection");
}

void look_at_file(Examination& examination) {
  if (!is_sqlite(examination)) return;
  const long faults = examination.count("[pragma_quick_check]", "[quick_check] <> 'ok'");
  if (faults > 0)
    server_finding(examination, "PRAGMA quick_check tells " + counted(static_cast<std::size_t>(faults), "fault"));
}

constexpr const char* every_server = "";

}  // namespace

std::vector<Check> server_checks() {
  return {
      {"transactions-missing",
       Severity::warning,
       "The server or driver has no transactions: work that fails on its way stays half done.",
       "Use a driver with transactions; without one, run spc doctor after every failure.",
       {},
       look_at_transactions,
       every_server},
      {"dirty-reads",
       Severity::warning,
       "Transactions see what others have not committed yet: numbers and revisions are read that may never have been.",
       "Make READ COMMITTED or a stricter level the default of the server or data source.",
       {},
       look_at_isolation,
       every_server},
      {"dialect-unknown",
       Severity::warning,
       "The server answers to none of the four dialects: texts that depend on the dialect come out empty.",
       "Use one of the four servers, or let no program ask for such texts (dbcheck).",
       {},
       look_for_unknown_dialect,
       every_server},
      {"dialect-of-another-server",
       Severity::warning,
       "The server answers to the dialect of another one: texts that depend on the dialect may fail on it.",
       "Remove the function of the other server by which it was taken for it, or see each such text work (dbcheck).",
       {},
       look_for_another_dialect,
       every_server},
      {"collation-ignores-case",
       Severity::warning,
       "Large and small letters count as equal: settings or learnt values that differ in them alone are taken for one.",
       "Give the column a binary or case-sensitive collation.",
       {},
       look_at_case,
       "CSINI, CSVALUE"},
      {"collation-ignores-accents",
       Severity::warning,
       "Letters with and without accents count as equal: values that differ in them alone are taken for one.",
       "Give the column a binary or accent-sensitive collation.",
       {},
       look_at_accents,
       "CSINI, CSVALUE"},
      {"collation-ignores-blanks",
       Severity::note,
       "Blanks at the end of a text do not count when texts are compared; some servers never count them.",
       "Nothing needs to be done: keys and values are stored without such blanks.",
       {},
       look_at_blanks,
       "CSINI, CSVALUE"},
      {"server-zone",
       Severity::note,
       "The server's zone is not this machine's: what the server makes of UTC moments shows its own local time.",
       "Nothing needs to be done: this library writes all moments itself. Mind it in reports that the server makes.",
       {},
       look_at_zone,
       every_server},
      {"server-clock",
       Severity::warning,
       "The clocks of the server and of this machine differ by more than a minute: moments do not tell what was first.",
       "Set the wrong one, and let both follow a time server.",
       {},
       look_at_clock,
       every_server},
      {"foreign-keys-off",
       Severity::warning,
       "SQLite keeps no foreign keys on this connection: payloads can outlive their revisions.",
       "Open the file as sqlite:FILE, or have the driver switch foreign keys on.",
       {},
       look_at_foreign_keys,
       every_server},
      {"file-damaged",
       Severity::error,
       "SQLite's own check of the file tells of damage: torn pages, or values that the rules of their table refuse.",
       "PRAGMA quick_check tells which; restore the file from a backup, or correct the values.",
       {},
       look_at_file,
       every_server},
  };
}

}  // namespace spc::doctor
