/// `spc doctor`: a read-only audit of a whole database.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/spc/link.h"
#include "tools/spc/terminal.h"

namespace spc {

/// What `spc doctor` is given.
struct DoctorRequest {
  std::vector<std::string> only;  ///< names of checks; empty: all
  std::vector<std::string> skip;
  int limit = 5;  ///< ids that a finding names
  bool list = false;
};

/// Exit status: 0 when neither an error nor a warning was found and nothing failed to be looked at, else 1.
int run_doctor(const Place& place, const DoctorRequest& request, const Terminal& terminal);

namespace doctor {

struct Audit;
struct Check;

/// The checks that a request wants, in their order.
/// Fails: Problem (misuse) for a name that no check has, and when none is left.
std::vector<const Check*> chosen_checks(const DoctorRequest& request);

/// Makes the checks, each to its end whatever the others meet. Sends nothing but SELECTs.
/// Fails: Problem when the connection is lost.
Audit examine(Link& link, const std::vector<const Check*>& checks, std::size_t limit,
              const std::function<void()>& on_step);

/// For people: by severity, then by table. For machines: one object.
void print_audit(std::ostream& out, const std::string& database, const Audit& audit);
void write_audit(std::ostream& out, const std::string& database, const Audit& audit);

/// What there is to find.
void print_checks(std::ostream& out, const std::vector<const Check*>& checks);
void write_checks(std::ostream& out, const std::vector<const Check*>& checks);

}  // namespace doctor
}  // namespace spc
