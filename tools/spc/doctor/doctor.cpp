#include "tools/spc/doctor/doctor.h"

#include <algorithm>

#include "tools/spc/doctor/examination.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"

namespace spc {
namespace doctor {

std::vector<const Check*> chosen_checks(const DoctorRequest& request) {
  for (const auto* names : {&request.only, &request.skip})
    for (const auto& name : *names)
      if (find_check(name) == nullptr)
        throw Problem{"cannot read the command line", "there is no check " + name,
                      "spc doctor --list names all that there are.", exit_misuse};
  const auto has = [](const std::vector<std::string>& names, const char* name) {
    return std::ranges::find(names, name) != names.end();
  };
  std::vector<const Check*> chosen;
  for (const Check& check : all_checks())
    if ((request.only.empty() || has(request.only, check.name)) && !has(request.skip, check.name))
      chosen.push_back(&check);
  if (!chosen.empty()) return chosen;
  throw Problem{"cannot read the command line", "--skip leaves nothing to look at", "Skip fewer checks.", exit_misuse};
}

Audit examine(Link& link, const std::vector<const Check*>& checks, std::size_t limit,
              const std::function<void()>& on_step) {
  Audit audit;
  Examination examination(link, limit, audit);
  for (const Check* check : checks) {
    examination.make(*check, on_step);
    ++audit.checks;
  }
  return audit;
}

}  // namespace doctor

namespace {

/// A database without any of it is not a sick one.
void require_schema(Link& link) {
  if (link.db().check_connection(0) || !inspect_schema(link).present.empty()) return;
  throw Problem{"cannot examine " + link.shown_connect_text(), "the database does not hold the schema",
                "spc db create makes it."};
}

}  // namespace

int run_doctor(const Place& place, const DoctorRequest& request, const Terminal& terminal) {
  const auto checks = doctor::chosen_checks(request);
  if (request.list) {
    terminal.json ? doctor::write_checks(terminal.out, checks) : doctor::print_checks(terminal.out, checks);
    return exit_done;
  }
  Link link(connect_text_of(place, false), trace_of(terminal));
  require_schema(link);
  std::size_t steps = 0;
  for (const auto* check : checks)
    steps += doctor::Examination::steps_of(*check);
  doctor::Audit audit;
  {
    Progress progress(terminal, "examining", steps);
    audit = doctor::examine(link, checks, static_cast<std::size_t>(request.limit), [&] {
      stop_if_interrupted("nothing was changed, and the audit is not finished");
      progress.step();
    });
  }
  terminal.json ? doctor::write_audit(terminal.out, link.shown_connect_text(), audit)
                : doctor::print_audit(terminal.out, link.shown_connect_text(), audit);
  return audit.sound() ? exit_done : exit_failed;
}

}  // namespace spc
