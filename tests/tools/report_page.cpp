// Writes the pages that are opened in a browser: report_page FOLDER
#include <iostream>

#include "spcbase/testkit/scratch_folder.h"
#include "tests/tools/report_plants.h"
#include "tools/spc/problem.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "report_page FOLDER\n";
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  try {
    spc::doing("cannot write the pages", [&] {
      const test_support::ScratchFolder scratch;
      report_test::write_demo_page("sqlite:{" + scratch.file("demo.db") + "};Create=1", folder + "report.html");
      report_test::write_hurtful_page("sqlite:{" + scratch.file("hurtful.db") + "};Create=1", folder + "hurtful.html");
    });
    return 0;
  } catch (const spc::Problem& problem) {
    spc::report(std::cerr, problem);
  }
  return 1;
}
