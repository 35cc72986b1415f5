/// One run of the checks on a database, and what it finds.
///
/// Part of the command. However many rows there are, no more of them are held than a finding names.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/spc/doctor/check.h"
#include "tools/spc/link.h"
#include "tools/spc/numbers.h"
#include "tools/spc/schema_work.h"
#include "tools/spc/settings.h"

namespace spc::doctor {

/// What a finding is about: the first few of many.
struct Subjects {
  std::string column;              ///< what the ids are: "SAMPID"; empty when it names none
  std::vector<std::string> first;  ///< in order, each once
  bool numbers = true;             ///< the ids are numbers, else texts
  long count = 0;                  ///< rows that are faults
  std::string detail = {};         ///< what is to be known of this one; may be empty
};

/// One fault, or many of one kind in one table.
struct Finding {
  const Check* check = nullptr;
  std::string table;  ///< empty when it is about the server
  Subjects subjects;
};

/// What was not looked at.
struct NotRun {
  const Check* check = nullptr;
  std::string table;
  std::string why;
  bool failed = false;  ///< else there is nothing to look at on this kind of server
};

struct Audit {
  std::vector<Finding> findings;
  std::vector<NotRun> not_run;
  std::size_t checks = 0;

  std::size_t count(Severity severity) const;
  /// Neither error nor warning, and nothing that failed to run.
  bool sound() const;
};

class Examination {
 public:
  /// A finding names so many ids.
  Examination(Link& link, std::size_t limit, Audit& audit) : link_(link), limit_(limit), audit_(audit) {}

  /// Makes one check; `on_step` is called `steps_of(check)` times.
  /// Fails: Problem when the connection is lost, and for nothing else.
  void make(const Check& check, const std::function<void()>& on_step);
  static std::size_t steps_of(const Check& check);

  Link& link() { return link_; }
  std::size_t limit() const { return limit_; }

  /// Looks at a table. A failure ends this look alone, and is told.
  void attempt(const std::string& table, const std::function<void()>& work);
  /// The rows of a table, or of a SELECT in brackets, that meet a condition.
  long count(const std::string& source, const std::string& condition);
  /// Nothing is found when the count is 0.
  void found(const std::string& table, Subjects subjects);
  void does_not_apply(const std::string& table, const std::string& why);

  /// Read once.
  /// Fails: Problem.
  const SchemaState& schema();
  const std::vector<SettingView>& settings();
  const NumberState& number(const running_number& number);
  /// The dialect that the library finds; -1 for none.
  int dialect();

 private:
  void ask(const Query& query);
  std::optional<long> least(const std::string& source, const std::string& id, const std::string& condition);

  Link& link_;
  std::size_t limit_;
  Audit& audit_;
  const Check* check_ = nullptr;
  bool lost_ = false;  ///< the connection
  std::optional<SchemaState> schema_;
  std::optional<std::vector<SettingView>> settings_;
  std::map<std::string, NumberState> numbers_;  ///< by counter
  std::optional<int> dialect_;
};

/// Adds one that is a fault; `first` keeps the first `limit` of them.
void add(Subjects& subjects, std::string id, std::size_t limit);

}  // namespace spc::doctor
