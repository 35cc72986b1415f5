// The grammar of `spc doctor`.
#include "tools/spc/request.h"

namespace spc {

void add_doctor_tasks(CLI::App& app, Request& request) {
  constexpr int most_ids = 1'000'000;
  CLI::App* doctor = app.add_subcommand("doctor", "Look for whatever is wrong in the whole database; changes nothing");
  doctor->add_option("--only", request.doctor.only, "Only these kinds of findings")->type_name("NAME")->delimiter(',');
  doctor->add_option("--skip", request.doctor.skip, "Leave these kinds out")->type_name("NAME")->delimiter(',');
  doctor->add_option("--limit", request.doctor.limit, "Name so many ids for each finding; 5 when not given")
      ->type_name("N")
      ->check(CLI::Range(0, most_ids));
  doctor->add_flag("--list", request.doctor.list, "Tell all kinds of findings instead; needs no database");
  doctor->callback([&] {
    request.task = [&](const Terminal& terminal) { return run_doctor(request.place, request.doctor, terminal); };
  });
}

}  // namespace spc
