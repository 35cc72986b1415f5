#include "tools/spc/numbers.h"

#include "spcbase/foundation/recordset.h"
#include "tools/spc/problem.h"
#include "tools/spc/terminal.h"

namespace spc {
namespace {

template <class Aggregate>
long result_of(Aggregate&& rows) {
  requery_rs_for_read(rows, nullptr, true);
  return rows.IsEOF() || rows.IsFieldNull(&rows.result) ? 0 : rows.result;
}

NumberState inspect(CDatabase& db, const running_number& number) {
  NumberState state{number};
  state.highest = result_of(RSMax(&db, number.table, number.id_column));
  state.rows = result_of(RSCount(&db, number.counter, nullptr));
  state.maxno = result_of(RSMax(&db, number.counter, "MAXNO"));
  return state;
}

}  // namespace

std::string NumberState::verdict() const {
  if (rows == 0) return "no row";
  if (rows > 1) return std::to_string(rows) + " rows";
  if (difference() == 0) return {};
  return difference() < 0 ? "behind" : "ahead";
}

std::vector<running_number> numbers_of(const std::string& table) {
  if (table.empty()) return {running_numbers.begin(), running_numbers.end()};
  std::string known;
  for (const auto& number : running_numbers) {
    if (CString(table.c_str()).CompareNoCase(number.table) == 0) return {number};
    known += (known.empty() ? "" : ", ") + std::string(number.table);
  }
  throw Problem{"cannot find the running number of " + table, "no table of this name has one",
                "Name one of " + known + ".", exit_misuse};
}

std::vector<NumberState> inspect_numbers(Link& link, const std::vector<running_number>& numbers) {
  std::vector<NumberState> states;
  for (const auto& number : numbers)
    states.push_back(doing("cannot look at the running number of " + std::string(number.table),
                           [&] { return inspect(link.db(), number); }));
  return states;
}

void repair_numbers(Link& link, const std::vector<running_number>& numbers) {
  const bool all = numbers.size() == running_numbers.size();
  doing("cannot repair " + (all ? "the running numbers" : "the running number of " + std::string(numbers[0].table)),
        [&] {
          // The repair's own guard keeps silent about a commit that is refused.
          AutoODBCTransaction transaction(link.db(), true);
          if (all) {
            update_running_table(&link.db());
          } else {
            for (const auto& number : numbers)
              update_running_table(&link.db(), number.table, number.id_column, number.counter, true);
          }
          transaction.commit();
        });
}

}  // namespace spc
