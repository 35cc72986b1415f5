// Writes the pages of the command: spc_pages FOLDER, or only docs/commands.md: spc_pages --document FILE.
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tools/spc/pages.h"

namespace {

namespace fs = std::filesystem;

bool write(const fs::path& file, const std::string& content) {
  std::error_code error;
  fs::create_directories(file.parent_path(), error);
  std::ofstream stream(file, std::ios::binary);
  stream << content << std::flush;
  if (!stream) std::cerr << "spc_pages: cannot write " << file.string() << '\n';
  return static_cast<bool>(stream);
}

bool write_all(const fs::path& folder) {
  for (const auto& page : spc::all_pages())
    if (!write(folder / page.file, page.content)) return false;
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2) return write_all(argv[1]) ? 0 : 1;
  if (argc == 3 && std::string_view(argv[1]) == "--document") return write(argv[2], spc::commands_document()) ? 0 : 1;
  std::cerr << "spc_pages FOLDER | --document FILE\n";
  return 2;
}
