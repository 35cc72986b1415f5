#include <algorithm>
#include <array>
#include <cctype>
#include <map>

#include "tools/spc/doctor/doctor.h"
#include "tools/spc/doctor/examination.h"
#include "tools/spc/json.h"
#include "tools/spc/utf8.h"

namespace spc::doctor {
namespace {

constexpr std::array severities = {Severity::error, Severity::warning, Severity::note};

std::string heading(Severity severity) {
  std::string text = word_of(severity);
  text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
  return text + "s";
}

std::string summary(const Audit& audit) {
  std::string text;
  for (const Severity severity : severities)
    text += (text.empty() ? "" : ", ") + counted(audit.count(severity), word_of(severity));
  return text;
}

/// "SAMPID 3, 4 and 2 more rows"; the ids are different ones, and each may stand for several rows.
std::string told(const Subjects& subjects) {
  std::string text = subjects.column;
  for (const auto& id : subjects.first)
    text += (&id == &subjects.first.front() ? " " : ", ") + on_one_line(id);
  if (subjects.column.empty()) return text;
  const auto named = static_cast<long>(subjects.first.size());
  if (subjects.count == named) return text;
  return text + (named == 0 ? ": " : " (") +
         counted(static_cast<std::size_t>(subjects.count), subjects.numbers ? "row" : "thing") +
         (named == 0 ? "" : " in all)");
}

void print_finding(std::ostream& out, const Finding& finding) {
  const std::string subjects = told(finding.subjects);
  out << "  " << (finding.table.empty() ? "the server" : finding.table) << "  " << finding.check->name
      << (subjects.empty() ? "" : "  ") << subjects << '\n';
  if (!finding.subjects.detail.empty()) out << "      " << on_one_line(finding.subjects.detail) << '\n';
  out << "      " << finding.check->meaning << '\n' << "      -> " << finding.check->advice << '\n';
}

void print_severity(std::ostream& out, const Audit& audit, Severity severity) {
  std::vector<const Finding*> chosen;
  for (const Finding& finding : audit.findings)
    if (finding.check->severity == severity) chosen.push_back(&finding);
  if (chosen.empty()) return;
  std::ranges::stable_sort(chosen, {}, &Finding::table);
  out << '\n' << heading(severity) << '\n';
  for (const Finding* finding : chosen)
    print_finding(out, *finding);
}

void print_not_run(std::ostream& out, const Audit& audit) {
  std::map<std::string, std::string> not_asked;  // names by reason
  bool first = true;
  for (const NotRun& entry : audit.not_run) {
    if (!entry.failed) {
      std::string& names = not_asked[entry.why];
      names += (names.empty() ? "" : ", ") + std::string(entry.check->name);
      continue;
    }
    if (first) out << "\nCould not run\n";
    first = false;
    out << "  " << entry.check->name << (entry.table.empty() ? "" : " on ") << entry.table << ": "
        << on_one_line(entry.why) << '\n';
  }
  if (!not_asked.empty()) out << "\nNot for this server\n";
  for (const auto& [why, names] : not_asked)
    out << "  " << names << ": " << why << '\n';
}

void write_finding(JsonWriter& json, const Finding& finding) {
  json.begin_object();
  json.key("name").value(finding.check->name);
  json.key("severity").value(word_of(finding.check->severity));
  json.key("table").value(finding.table);
  json.key("column").value(finding.subjects.column);
  json.key("ids").begin_array();
  for (const auto& id : finding.subjects.first)
    finding.subjects.numbers ? json.value(std::stol(id)) : json.value(id);
  json.end_array();
  json.key("count").value(finding.subjects.count);
  json.key("detail").value(finding.subjects.detail);
  json.key("meaning").value(finding.check->meaning);
  json.key("advice").value(finding.check->advice);
  json.end_object();
}

}  // namespace

void print_audit(std::ostream& out, const std::string& database, const Audit& audit) {
  out << "Made " << counted(audit.checks, "check") << " of " << database << ": " << summary(audit) << '\n';
  for (const Severity severity : severities)
    print_severity(out, audit, severity);
  print_not_run(out, audit);
}

void write_audit(std::ostream& out, const std::string& database, const Audit& audit) {
  JsonWriter json(out);
  json.begin_object();
  json.key("database").value(database);
  json.key("checks").value(audit.checks);
  json.key("errors").value(audit.count(Severity::error));
  json.key("warnings").value(audit.count(Severity::warning));
  json.key("notes").value(audit.count(Severity::note));
  json.key("sound").value(audit.sound());
  json.key("findings").begin_array();
  for (const Finding& finding : audit.findings)
    write_finding(json, finding);
  json.end_array();
  json.key("not_run").begin_array();
  for (const NotRun& entry : audit.not_run) {
    json.begin_object();
    json.key("name").value(entry.check->name);
    json.key("table").value(entry.table);
    json.key("why").value(entry.why);
    json.key("failed").value(entry.failed);
    json.end_object();
  }
  json.end_array();
  json.end_object();
}

void print_checks(std::ostream& out, const std::vector<const Check*>& checks) {
  for (const Check* check : checks) {
    const std::string tables = check->tables();
    out << check->name << "  (" << word_of(check->severity) << (tables.empty() ? "; the server" : "; ") << tables
        << ")\n    " << check->meaning << "\n    -> " << check->advice << '\n';
  }
}

void write_checks(std::ostream& out, const std::vector<const Check*>& checks) {
  JsonWriter json(out);
  json.begin_array();
  for (const Check* check : checks) {
    json.begin_object();
    json.key("name").value(check->name);
    json.key("severity").value(word_of(check->severity));
    json.key("tables").value(check->tables());
    json.key("meaning").value(check->meaning);
    json.key("advice").value(check->advice);
    json.end_object();
  }
  json.end_array();
}

}  // namespace spc::doctor
