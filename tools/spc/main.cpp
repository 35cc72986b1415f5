#include <unistd.h>

#include <iostream>

#include "tools/spc/command.h"

int main(int argc, char** argv) { return spc::run(argc, argv, std::cout, std::cerr, ::isatty(STDERR_FILENO) == 1); }
