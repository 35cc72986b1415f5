#include "tools/spc/doctor/examination.h"

#include <algorithm>

#include "spcbase/foundation/recordset.h"
#include "tools/spc/problem.h"

namespace spc::doctor {
namespace {

std::string both(const std::string& condition, const std::string& other) {
  return condition.empty() ? other : "(" + condition + ") AND " + other;
}

}  // namespace

std::size_t Audit::count(Severity severity) const {
  return static_cast<std::size_t>(
      std::ranges::count_if(findings, [=](const Finding& finding) { return finding.check->severity == severity; }));
}

bool Audit::sound() const {
  return count(Severity::error) == 0 && count(Severity::warning) == 0 && std::ranges::none_of(not_run, &NotRun::failed);
}

std::size_t Examination::steps_of(const Check& check) { return check.queries.size() + (check.look != nullptr ? 1 : 0); }

void Examination::make(const Check& check, const std::function<void()>& on_step) {
  check_ = &check;
  for (const Query& query : check.queries) {
    attempt(query.table, [&] { ask(query); });
    on_step();
  }
  if (check.look == nullptr) return;
  attempt(check.looked_at, [&] { check.look(*this); });
  on_step();
}

void Examination::attempt(const std::string& table, const std::function<void()>& work) {
  std::optional<Problem> problem;
  try {
    const auto outcome = guarded(work);
    if (!outcome) {
      problem = problem_of("cannot go on with the audit", outcome.failure());
      lost_ = lost_ || outcome.failure().failure_class == FailureClass::link_lost;
    }
  } catch (const Problem& caught) {
    problem = caught;
  }
  // Also through the look that this one is a part of.
  if (problem && lost_) throw Problem(*problem);
  if (problem) audit_.not_run.push_back({check_, table, problem->why, true});
}

long Examination::count(const std::string& source, const std::string& condition) {
  RSCount rows(&link_.db(), source.c_str(), nullptr);
  requery_rs_for_read(rows, condition.c_str(), true);
  return rows.IsEOF() ? 0 : rows.result;
}

std::optional<long> Examination::least(const std::string& source, const std::string& id, const std::string& condition) {
  RSCount rows(&link_.db(), source.c_str(), ("MIN([" + id + "])").c_str());
  requery_rs_for_read(rows, condition.c_str(), true);
  if (rows.IsEOF() || rows.IsFieldNull(&rows.result)) return std::nullopt;
  return rows.result;
}

// The first ids come one by one, each as the least behind the one before: no server needs to be told how to end a list
// early, and no driver holds more of it than is shown.
void Examination::ask(const Query& query) {
  const std::string source = query.source.empty() ? "[" + query.table + "]" : query.source;
  Subjects subjects{query.id, {}, true, count(source, query.condition)};
  std::string condition = query.condition;
  while (subjects.count > 0 && subjects.first.size() < limit_) {
    const auto next = least(source, query.id, condition);
    if (!next) break;
    subjects.first.push_back(std::to_string(*next));
    condition = both(query.condition, "[" + query.id + "] > " + subjects.first.back());
  }
  found(query.table, std::move(subjects));
}

void Examination::found(const std::string& table, Subjects subjects) {
  if (subjects.count > 0) audit_.findings.push_back({check_, table, std::move(subjects)});
}

void Examination::does_not_apply(const std::string& table, const std::string& why) {
  audit_.not_run.push_back({check_, table, why, false});
}

const SchemaState& Examination::schema() {
  if (!schema_) schema_ = inspect_schema(link_);
  return *schema_;
}

const std::vector<SettingView>& Examination::settings() {
  if (!settings_) settings_ = read_settings(link_);
  return *settings_;
}

const NumberState& Examination::number(const running_number& number) {
  const auto known = numbers_.find(number.counter);
  if (known != numbers_.end()) return known->second;
  return numbers_.emplace(number.counter, inspect_numbers(link_, {number}).front()).first->second;
}

int Examination::dialect() {
  if (!dialect_) dialect_ = dbcheck::find_db_type(link_.db());
  return *dialect_;
}

void add(Subjects& subjects, std::string id, std::size_t limit) {
  ++subjects.count;
  if (subjects.first.size() < limit) subjects.first.push_back(std::move(id));
}

}  // namespace spc::doctor
