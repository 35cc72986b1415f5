/// A locale that the machine need not have.
#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "spcbase/testkit/scratch_folder.h"
#include "tests/support/helper_process.h"

namespace test_support {

/// Makes a locale of a name in a folder of its own. The C library's own `localedef` makes it of nothing: its name is
/// all that counts for dates. The variable LOCPATH must name the folder for whoever is to find it.
class MadeLocale {
 public:
  /// Fails: std::runtime_error.
  [[nodiscard]] explicit MadeLocale(const std::string& name) {
    std::ofstream(folder_.file("source")) << "comment_char %\nescape_char /\n";
    std::ofstream(folder_.file("characters"))
        << "<code_set_name> UTF-8\n<comment_char> %\n<escape_char> /\nCHARMAP\n<U0000>..<U007F> /x00\nEND CHARMAP\n";
    HelperProcess localedef("/usr/bin/localedef",
                            {"-c", "-i", folder_.file("source"), "-f", folder_.file("characters"), folder_.file(name)});
    try {
      localedef.finish();
    } catch (const std::runtime_error&) {
      // It ends with 1 for every locale that lacks a category, and has made it nevertheless.
      if (!std::filesystem::exists(folder_.path() / name / "LC_TIME")) throw;
    }
  }

  std::string folder() const { return folder_.path().string(); }

 private:
  ScratchFolder folder_;
};

}  // namespace test_support
