#include <algorithm>

#include "tools/spc/interruption.h"
#include "tools/spc/json.h"
#include "tools/spc/numbers.h"
#include "tools/spc/problem.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"

namespace spc {
namespace {

std::string number_or_none(long rows, long number) { return rows == 0 ? "-" : std::to_string(number); }

void write_state(JsonWriter& json, const NumberState& state) {
  json.key("table").value(state.number.table);
  json.key("highest_id").value(state.highest);
  json.key("counter").value(state.number.counter);
  json.key("rows").value(state.rows);
  json.key("maxno").value(state.maxno);
  json.key("difference").value(state.difference());
  json.key("faulty").value(state.faulty());
}

void write_check(std::ostream& out, const std::vector<NumberState>& states) {
  JsonWriter json(out);
  json.begin_array();
  for (const auto& state : states) {
    json.begin_object();
    write_state(json, state);
    json.end_object();
  }
  json.end_array();
}

void print_check(std::ostream& out, const std::vector<NumberState>& states) {
  Table table;
  table.add_column("table");
  table.add_column("highest id", Align::right);
  table.add_column("counter");
  table.add_column("MAXNO", Align::right);
  table.add_column("difference", Align::right);
  table.add_column("state");
  for (const auto& state : states)
    table.add_row({state.number.table, std::to_string(state.highest), state.number.counter,
                   number_or_none(state.rows, state.maxno), number_or_none(state.rows, state.difference()),
                   state.verdict()});
  table.print(out);
}

std::string faulty_tables(const std::vector<NumberState>& states) {
  std::string names;
  for (const auto& state : states)
    if (state.faulty()) names += (names.empty() ? "" : ", ") + std::string(state.number.table);
  return names;
}

/// What a repair found and what it left.
struct Repair {
  std::vector<NumberState> before;
  std::vector<NumberState> after;

  bool changed(std::size_t i) const { return before[i].rows != after[i].rows || before[i].maxno != after[i].maxno; }
  std::size_t changes() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
      count += changed(i) ? 1 : 0;
    return count;
  }
};

void write_repair(std::ostream& out, const Repair& repair) {
  JsonWriter json(out);
  json.begin_array();
  for (std::size_t i = 0; i < repair.after.size(); ++i) {
    json.begin_object();
    write_state(json, repair.after[i]);
    json.key("maxno_before").value(repair.before[i].maxno);
    json.key("rows_before").value(repair.before[i].rows);
    json.key("changed").value(repair.changed(i));
    json.end_object();
  }
  json.end_array();
}

void print_repair(std::ostream& out, const Repair& repair) {
  const std::size_t changes = repair.changes();
  out << "Looked after " << counted(repair.after.size(), "running number") << ", changed " << changes << '\n';
  if (changes == 0) return;
  Table table("  ");
  table.add_column("table");
  table.add_column("counter");
  table.add_column("MAXNO was", Align::right);
  table.add_column("is", Align::right);
  table.add_column("because");
  for (std::size_t i = 0; i < repair.after.size(); ++i)
    if (repair.changed(i))
      table.add_row({repair.after[i].number.table, repair.after[i].number.counter,
                     number_or_none(repair.before[i].rows, repair.before[i].maxno),
                     std::to_string(repair.after[i].maxno), repair.before[i].verdict()});
  table.print(out);
}

}  // namespace

int check_numbers(const Place& place, const std::string& table, const Terminal& terminal) {
  const auto numbers = numbers_of(table);
  Link link(connect_text_of(place, false), trace_of(terminal));
  const auto states = inspect_numbers(link, numbers);
  terminal.json ? write_check(terminal.out, states) : print_check(terminal.out, states);
  const std::string faulty = faulty_tables(states);
  if (faulty.empty()) return exit_done;
  throw Problem{"the check found faults", "new rows cannot get an id that is free in " + faulty,
                "spc numbers repair sets the counters to the highest ids; let nobody add rows meanwhile."};
}

int repair_numbers(const Place& place, const std::string& table, const Terminal& terminal) {
  const auto numbers = numbers_of(table);
  Link link(connect_text_of(place, false), terminal);
  Repair repair;
  repair.before = inspect_numbers(link, numbers);
  repair_numbers(link, numbers);
  const Undisturbed repaired(link.db());
  repair.after = inspect_numbers(link, numbers);
  terminal.json ? write_repair(terminal.out, repair) : print_repair(terminal.out, repair);
  const std::string faulty = faulty_tables(repair.after);
  if (faulty.empty()) return exit_done;
  throw Problem{"the repair did not last", "someone added rows meanwhile in " + faulty,
                "Let nobody add rows, then run the repair again."};
}

}  // namespace spc
