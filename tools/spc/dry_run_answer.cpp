#include "tools/spc/dry_run_answer.h"

#include "tools/spc/json.h"
#include "tools/spc/table.h"
#include "tools/spc/terminal.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

std::string rows_text(std::optional<long> rows) { return rows ? std::to_string(*rows) : "unknown"; }

void print_rows(std::ostream& out, const RowCounter& rows) {
  if (rows.tables().empty()) {
    out << "  no rows of any table\n";
    return;
  }
  Table table("  ");
  table.add_column("table");
  for (const char* heading : {"inserted", "updated", "deleted"})
    table.add_column(heading, Align::right);
  for (const auto& [name, touched] : rows.tables())
    table.add_row({name, rows_text(touched.inserted), rows_text(touched.updated), rows_text(touched.deleted)});
  table.print(out);
}

void write_rows(JsonWriter& json, std::string_view key, std::optional<long> rows) {
  json.key(key);
  rows ? json.value(*rows) : json.null();
}

/// What is told of a failure must not speak of work that stands: nothing does.
Problem without_what_stands(Problem problem) {
  constexpr int signal_base = 128;
  if (problem.status > signal_base) problem.why = "nothing was changed";
  problem.note = "It was a dry run: nothing was changed.";
  return problem;
}

}  // namespace

int DryRunAnswer::of(const std::function<int()>& task) {
  if (!wanted_) return task();
  int status = exit_done;
  std::optional<Problem> failed;
  try {
    status = task();
  } catch (const NotToBeRun&) {
    status = exit_done;
  } catch (const Problem& problem) {
    failed = problem;
  }
  if (dry_run_.doubt()) throw *dry_run_.doubt();
  if (dry_run_.begun()) json_ ? write(failed.has_value()) : print(failed.has_value());
  if (failed) throw without_what_stands(*std::move(failed));
  return status;
}

void DryRunAnswer::print(bool failed) {
  out_ << "Dry run: nothing was changed.\n";
  if (!dry_run_.why_planned().empty()) {
    out_ << "Nothing was tried: " << dry_run_.why_planned() << ".\nNobody can count the rows.\n";
    if (!dry_run_.planned().empty()) out_ << "These statements would be sent:\n";
    for (const auto& statement : dry_run_.planned())
      out_ << "  " << on_one_line(statement) << '\n';
    return;
  }
  if (failed) out_ << "Touched before it failed, and taken back:\n";
  print_rows(out_, dry_run_.rows());
  if (const auto statements = dry_run_.rows().schema_statements(); statements != 0)
    out_ << "  and " << counted(statements, "statement") << " on the schema\n";
}

void DryRunAnswer::write(bool failed) {
  JsonWriter json(out_);
  json.begin_object();
  json.key("dry_run").value(true);
  json.key("failed").value(failed);
  json.key("rolled_back").value(dry_run_.rolled_back());
  json.key("planned_only").value(!dry_run_.why_planned().empty());
  json.key("why_planned").value(dry_run_.why_planned());
  json.key("statements").begin_array();
  for (const auto& statement : dry_run_.planned())
    json.value(statement);
  json.end_array();
  json.key("schema_statements").value(dry_run_.rows().schema_statements());
  json.key("tables").begin_array();
  for (const auto& [name, touched] : dry_run_.rows().tables()) {
    json.begin_object();
    json.key("table").value(name);
    write_rows(json, "inserted", touched.inserted);
    write_rows(json, "updated", touched.updated);
    write_rows(json, "deleted", touched.deleted);
    json.end_object();
  }
  json.end_array();
  json.key("answer");
  const std::string answer = held_.str();
  answer.empty() ? json.null() : json.whole(answer);
  json.end_object();
}

Shape dry_run_shape(Shape answer) {
  using namespace shapes;
  const Shape rows = nullable(integer());
  return object(
      {{"dry_run", boolean()},
       {"failed", boolean()},
       {"rolled_back", boolean()},
       {"planned_only", boolean()},
       {"why_planned", text()},
       {"statements", array(text())},
       {"schema_statements", integer()},
       {"tables", array(object({{"table", text()}, {"inserted", rows}, {"updated", rows}, {"deleted", rows}}))},
       {"answer", nullable(std::move(answer))}});
}

}  // namespace spc
