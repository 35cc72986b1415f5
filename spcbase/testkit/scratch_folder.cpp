#include "spcbase/testkit/scratch_folder.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace test_support {

ScratchFolder::ScratchFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "spc.XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::filesystem::filesystem_error("no temporary folder", name,
                                            std::error_code(errno, std::generic_category()));
  }
  path_ = name;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace test_support
