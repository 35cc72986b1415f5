#include "tools/spc/dry_run.h"
#include "tools/spc/json.h"
#include "tools/spc/problem.h"
#include "tools/spc/rev_maintenance.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"

namespace spc {
namespace {

void print_plan(std::ostream& out, const std::string& title, const std::vector<PlannedChange>& plan) {
  out << title << '\n';
  Table table("  ");
  table.add_column("table");
  table.add_column("rows", Align::right);
  table.add_column("what");
  for (const auto& change : plan)
    table.add_row({change.table, std::to_string(change.rows), change.what});
  table.print(out);
  out.flush();
}

void write_plan(std::ostream& out, const std::vector<PlannedChange>& plan, bool done) {
  JsonWriter json(out);
  json.begin_object();
  json.key("changes").begin_array();
  for (const auto& change : plan) {
    json.begin_object();
    json.key("table").value(change.table);
    json.key("rows").value(change.rows);
    json.key("what").value(change.what);
    json.end_object();
  }
  json.end_array();
  json.key("done").value(done);
  json.end_object();
}

/// Says what is about to be changed, and does it when that was agreed to.
template <class Work>
int after_asking(const Terminal& terminal, const std::string& title, const std::vector<PlannedChange>& plan, bool yes,
                 Work work) {
  if (!terminal.json) print_plan(terminal.out, title, plan);
  try {
    if (!yes && terminal.dry_run == nullptr)
      throw Problem{"nothing was changed", "this cannot be undone, so it wants --yes",
                    "Back up the database, then give the same command with --yes.", exit_misuse};
    work();
  } catch (const Problem&) {
    if (terminal.json) write_plan(terminal.out, plan, false);
    throw;
  } catch (const NotToBeRun&) {
    if (terminal.json) write_plan(terminal.out, plan, false);
    throw;
  }
  if (terminal.json)
    write_plan(terminal.out, plan, true);
  else
    terminal.out << "Done.\n";
  return exit_done;
}

}  // namespace

int rebuild_revisions(const Place& place, bool yes, const Terminal& terminal) {
  Link link(connect_text_of(place, false), terminal);
  return after_asking(terminal, "Counting all versions anew changes:", plan_rebuild(link), yes,
                      [&] { rebuild_versions(link, terminal); });
}

int reset_revisions(const Place& place, bool yes, const Terminal& terminal) {
  Link link(connect_text_of(place, false), terminal);
  const auto plan = plan_reset(link);
  require_reset_possible(link);
  return after_asking(terminal, "Resetting throws away the history of all objects:", plan, yes,
                      [&] { reset_revisions(link, terminal); });
}

}  // namespace spc
