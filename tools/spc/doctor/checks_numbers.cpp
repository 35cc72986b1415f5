// What is wrong with ids and with the counters that they are taken from.
#include "schema/description.h"
#include "tools/spc/doctor/check.h"
#include "tools/spc/doctor/examination.h"
#include "tools/spc/numbers.h"

namespace spc::doctor {
namespace {

std::string told(const NumberState& state) {
  std::string highest = "the highest id of " + std::string(state.number.table) + " is " + std::to_string(state.highest);
  if (state.rows == 0) return highest;
  return "MAXNO is " + std::to_string(state.maxno) + (state.rows > 1 ? " at most, in " + state.verdict() : "") + "; " +
         highest;
}

/// Asks about every counter; one that cannot be asked is told of, and the others go on.
template <class IsFault>
void look_at_counters(Examination& examination, IsFault is_fault) {
  for (const auto& number : numbers_of({})) {
    examination.attempt(number.counter, [&] {
      const NumberState& state = examination.number(number);
      if (!is_fault(state)) return;
      Subjects subjects{"MAXNO", {}, true, 1, told(state)};
      if (state.rows > 0) subjects.first.push_back(std::to_string(state.maxno));
      examination.found(number.counter, std::move(subjects));
    });
  }
}

void look_for_counters_behind(Examination& examination) {
  look_at_counters(examination, [](const NumberState& state) { return state.rows > 0 && state.difference() < 0; });
}
void look_for_counters_without_row(Examination& examination) {
  look_at_counters(examination, [](const NumberState& state) { return state.rows == 0; });
}
void look_for_counters_of_many_rows(Examination& examination) {
  look_at_counters(examination, [](const NumberState& state) { return state.rows > 1; });
}

constexpr const char* every_counter = "all running-number tables";

std::vector<Query> ids_below_one() {
  std::vector<Query> queries;
  for (const auto& number : schema::running_numbers())
    queries.push_back(
        {std::string(number.table), std::string(number.id_column), "[" + std::string(number.id_column) + "] < 1"});
  queries.push_back({"CSOBJREV", "OBJID", "[OBJID] < 1"});
  return queries;
}

}  // namespace

std::vector<Check> number_checks() {
  return {
      {"number-behind",
       Severity::error,
       "The counter is behind its table: the next new row gets an id that is taken, and is refused.",
       "spc numbers repair sets the counters to the highest ids; let nobody add rows meanwhile.",
       {},
       look_for_counters_behind,
       every_counter},
      {"number-without-row",
       Severity::error,
       "The counter has no row: no new row of its table can get an id.",
       "spc numbers repair adds the row.",
       {},
       look_for_counters_without_row,
       every_counter},
      {"number-doubled",
       Severity::error,
       "The counter has several rows, and must have one: which of them is read next is chance.",
       "spc numbers repair leaves one row, with the highest id.",
       {},
       look_for_counters_of_many_rows,
       every_counter},
      {"id-not-positive", Severity::error,
       "An id is 0 or below. 0 stands for none, for the root and for the user who sees everything: it names no row.",
       "Give the row the next free id, in every table that refers to it too.", ids_below_one()},
  };
}

}  // namespace spc::doctor
