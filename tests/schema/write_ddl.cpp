// Writes one file for each server into the folder that is named: write_ddl FOLDER
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/schema/ddl_text.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "write_ddl: name one folder\n";
    return 2;
  }
  for (const schema::Server server : schema::all_servers) {
    const std::filesystem::path file = std::filesystem::path(argv[1]) / (std::string(schema::name_of(server)) + ".sql");
    std::ofstream out(file);
    out << whole_ddl(server);
    if (!out.flush()) {
      std::cerr << "write_ddl: cannot write " << file << "\n";
      return EXIT_FAILURE;
    }
  }
  return EXIT_SUCCESS;
}
