#include <iostream>

#include "spcbase/platform/system/terminal.h"
#include "tools/spc/command.h"

int main(int argc, char** argv) {
  constexpr int standard_error = 2;
  return spc::run(argc, argv, std::cout, std::cerr, platform::is_terminal(standard_error));
}
