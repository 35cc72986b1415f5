/// Chooses a locale with other number marks for a scope.
#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include "spcbase/testkit/scratch_folder.h"
#include "tests/support/helper_process.h"

namespace test_support {

/// A machine may have no locale but "C", so one is made here: `localedef` belongs to the C library's own programs and
/// compiles a locale of number marks alone, which needs no file of the system. All else is as in "C.UTF-8".
/// The marks are written as `localedef` wants them, "<U002C>" for a comma; an empty group mark means none.
class NumberLocale {
 public:
  [[nodiscard]] NumberLocale(const std::string& decimal, const std::string& group)
      : before_(std::setlocale(LC_ALL, nullptr)) {
    compile(decimal, group);
    if (std::setlocale(LC_ALL, "C.UTF-8") == nullptr) throw std::runtime_error("there is no locale C.UTF-8");
    if (const char* path = std::getenv("LOCPATH")) path_before_ = path;
    setenv("LOCPATH", folder_.path().c_str(), 1);
    if (std::setlocale(LC_NUMERIC, "numbers") == nullptr) {
      restore();
      throw std::runtime_error("the locale of the test cannot be chosen");
    }
  }
  ~NumberLocale() { restore(); }
  NumberLocale(const NumberLocale&) = delete;
  NumberLocale& operator=(const NumberLocale&) = delete;

 private:
  void compile(const std::string& decimal, const std::string& group) const {
    std::ofstream(folder_.file("source"))
        << "comment_char %\nescape_char /\nLC_NUMERIC\ndecimal_point \"" << decimal << "\"\nthousands_sep \"" << group
        << "\"\ngrouping " << (group.empty() ? "-1" : "3;3") << "\nEND LC_NUMERIC\n";
    std::ofstream(folder_.file("characters"))
        << "<code_set_name> UTF-8\n<mb_cur_min> 1\n<mb_cur_max> 6\n<comment_char> %\n<escape_char> /\nCHARMAP\n"
           "<U0000>..<U007F> /x00\n<U00A0> /xc2/xa0\n<U066B> /xd9/xab\n<U066C> /xd9/xac\n<U2019> /xe2/x80/x99\n"
           "<U202F> /xe2/x80/xaf\nEND CHARMAP\n";
    HelperProcess localedef("/usr/bin/localedef", {"-c", "-i", folder_.file("source"), "-f", folder_.file("characters"),
                                                   folder_.file("numbers")});
    try {
      localedef.finish();
    } catch (const std::runtime_error&) {
      // It ends with 1 for every locale that lacks a category, and has made it nevertheless.
      if (!std::filesystem::exists(folder_.path() / "numbers" / "LC_NUMERIC")) throw;
    }
  }

  void restore() const {
    if (path_before_) {
      setenv("LOCPATH", path_before_->c_str(), 1);
    } else {
      unsetenv("LOCPATH");
    }
    std::setlocale(LC_ALL, before_.c_str());
  }

  ScratchFolder folder_;
  std::string before_;
  std::optional<std::string> path_before_;
};

/// Numbers as in German: 1.234,5.
struct DecimalComma : NumberLocale {
  [[nodiscard]] DecimalComma() : NumberLocale("<U002C>", "<U002E>") {}
};

/// Numbers with marks of several bytes, as in Persian.
struct ArabicMarks : NumberLocale {
  [[nodiscard]] ArabicMarks() : NumberLocale("<U066B>", "<U066C>") {}
};

}  // namespace test_support
