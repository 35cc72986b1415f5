"""The guards themselves: each lets the clean little tree below pass and catches what is planted in it.

Plan
  layers: a wrong direction, a private folder, a header from outside, an unknown header, an unknown folder, a missing one
  platform page: a name that it has, one that it has not, of each kind of declaration
  reference: what the house style becomes
  texts:  words, paths, unfinished marks, sleeping tests, long files, dialect words, raw codes, labels, the version
"""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.normpath(os.path.join(HERE, "..", ".."))


class Guard(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.root = self.folder.name
        self.plant("VERSION", "1.2.3\n")
        self.plant("CHANGELOG.md", "# Changes\n\n## 1.2.3\n")
        os.makedirs(os.path.join(self.root, "cmake"))
        shutil.copy(os.path.join(ROOT, "cmake", "layers.txt"), os.path.join(self.root, "cmake"))
        self.plant("spcbase/foundation/failure.h", "#pragma once\n#include <string>\n")
        self.plant("spcbase/foundation/internal/dialect_table.h", "#pragma once\n")
        self.plant("spcbase/time/calendar.h", '#pragma once\n#include "spcbase/foundation/failure.h"\n')

    def tearDown(self):
        self.folder.cleanup()

    def plant(self, path, text):
        whole = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(whole), exist_ok=True)
        with open(whole, "w", encoding="utf-8") as file:
            file.write(text)

    def run_guard(self, *command):
        return subprocess.run([sys.executable, *command, self.root], capture_output=True, text=True, check=False)

    def expect_clean(self, guard):
        result = self.run_guard(guard)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)

    def expect_find(self, guard, *texts):
        result = self.run_guard(guard)
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        for text in texts:
            self.assertIn(text, result.stdout)


class Layers(Guard):
    guard = os.path.join(ROOT, "cmake", "check_layers")

    def test_a_clean_tree_passes(self):
        self.expect_clean(self.guard)

    def test_an_include_against_the_direction_is_named_with_file_line_and_rule(self):
        self.plant("spcbase/foundation/failure.h", '#pragma once\n\n#include "spcbase/time/calendar.h"\n')
        self.expect_find(self.guard, "spcbase/foundation/failure.h:3: spcbase/foundation may include spcbase/platform, "
                                     "not spcbase/time")

    def test_the_platform_keeps_its_inner_order(self):
        self.plant("spcbase/platform/database/database.h", "#pragma once\n")
        self.plant("spcbase/platform/text/cstring.h", '#include "../database/database.h"\n')
        self.expect_find(self.guard, "spcbase/platform/text/cstring.h:1: ", "not spcbase/platform/database")

    def test_a_private_folder_is_not_for_the_command(self):
        self.plant("tools/spc/main.cpp", '#include "spcbase/foundation/internal/dialect_table.h"\n')
        self.expect_find(self.guard, "tools/spc/main.cpp:1: ", "is private")

    def test_a_private_folder_is_open_to_tests(self):
        self.plant("tests/foundation/a_test.cpp", '#include "spcbase/foundation/internal/dialect_table.h"\n')
        self.expect_clean(self.guard)

    def test_a_third_party_header_outside_its_folder_is_found(self):
        self.plant("spcbase/foundation/failure.h", "#include <sqlite3.h>\n")
        self.expect_find(self.guard, "spcbase/foundation/failure.h:1: spcbase/foundation may not include <sqlite3.h>")

    def test_a_system_header_outside_the_platform_is_found(self):
        self.plant("spcbase/time/calendar.cpp", "#include <sys/stat.h>\n")
        self.expect_find(self.guard, "spcbase/time/calendar.cpp:1: spcbase/time may not include <sys/stat.h>")

    def test_a_system_header_in_the_command_is_found(self):
        self.plant("tools/spc/main.cpp", "#include <unistd.h>\n")
        self.expect_find(self.guard, "tools/spc/main.cpp:1: tools may not include <unistd.h>")

    def test_one_platform_folder_does_not_use_the_library_of_another(self):
        self.plant("spcbase/platform/text/cstring.cpp", "#include <sql.h>\n")
        self.expect_find(self.guard, "spcbase/platform/text/cstring.cpp:1: ", "group odbc")

    def test_a_header_of_no_group_is_found(self):
        self.plant("spcbase/platform/text/cstring.cpp", "#include <boost/any.hpp>\n")
        self.expect_find(self.guard, "<boost/any.hpp> is neither a C++ header nor in a group")

    def test_a_folder_without_a_line_is_found(self):
        self.plant("spcbase/elsewhere/a.h", "#pragma once\n")
        self.expect_find(self.guard, "spcbase/elsewhere/a.h: stands in no folder")

    def test_an_include_of_nothing_is_found(self):
        self.plant("spcbase/time/calendar.h", '#include "spcbase/foundation/gone.h"\n')
        self.expect_find(self.guard, "spcbase/time/calendar.h:1: there is no spcbase/foundation/gone.h")


class Texts(Guard):
    guard = os.path.join(HERE, "check_texts")

    def test_a_clean_tree_passes(self):
        self.expect_clean(self.guard)

    def test_a_place_in_a_document_is_found(self):
        self.plant("docs/a.md", "one\nsee P" + "art 1.2\n")
        self.expect_find(self.guard, "docs/a.md:2: ")

    def test_a_path_of_one_machine_is_found(self):
        self.plant("docs/a.md", "look into /wo" + "rk/main\n")
        self.expect_find(self.guard, "docs/a.md:1: ", "no path of one machine")

    def test_a_relative_path_of_that_name_is_none(self):
        self.plant("docs/a.md", "see docs/wo" + "rk/a and ./ro" + "ot/b\n")
        self.expect_clean(self.guard)

    def test_a_driver_s_own_words_pass(self):
        self.plant("tests/a_test.cpp", '"Optional feature not impl' + 'emented"\n')
        self.expect_clean(self.guard)

    def test_an_unfinished_mark_is_found(self):
        self.plant("spcbase/time/a.cpp", "int a;  // TO" + "DO later\n")
        self.expect_find(self.guard, "spcbase/time/a.cpp:1: ", "finish it")

    def test_recorded_answers_are_kept_word_for_word(self):
        self.plant("tests/data/vectors/a.tsv", "not impl" + "emented\n")
        self.expect_clean(self.guard)

    def test_a_sleeping_test_is_found(self):
        self.plant("tests/time/a_test.cpp", "TEST(A, DIS" + "ABLED_b) {}\n")
        self.expect_find(self.guard, "tests/time/a_test.cpp:1: ", "proves nothing")

    def test_a_file_of_601_lines_is_found_and_one_of_600_is_not(self):
        self.plant("spcbase/time/a.cpp", "int a;\n" * 600)
        self.expect_clean(self.guard)
        self.plant("spcbase/time/a.cpp", "int a;\n" * 601)
        self.expect_find(self.guard, "spcbase/time/a.cpp: 601 lines")

    def test_a_header_that_cannot_be_included_twice_is_found(self):
        self.plant("spcbase/time/a.h", "int a();\n")
        self.expect_find(self.guard, "spcbase/time/a.h: no #pragma once")

    def test_a_dialect_word_away_from_home_is_found(self):
        self.plant("spcbase/time/a.cpp", 'auto a = "NV' + 'L(%s,0)";\n')
        self.expect_find(self.guard, "spcbase/time/a.cpp:1: ", "dialect table")

    def test_a_dialect_word_at_home_or_in_a_comment_is_fine(self):
        self.plant("spcbase/foundation/internal/dialect_table.h", '#pragma once\nauto a = "NV' + 'L(%s,0)";\n')
        self.plant("spcbase/time/a.cpp", "int a;  // as NV" + "L does\n")
        self.expect_clean(self.guard)

    def test_a_raw_result_code_away_from_home_is_found(self):
        self.plant("tools/spc/a.cpp", "long a = 0x8004150" + "8;\n")
        self.expect_find(self.guard, "tools/spc/a.cpp:1: ", "named constant")

    def test_a_raw_result_code_at_home_is_fine(self):
        self.plant("spcbase/foundation/a.cpp", "long a = 0x8004150" + "8;\n")
        self.expect_clean(self.guard)

    def test_a_label_in_the_middle_of_a_line_is_found(self):
        for line in ("/// Copies it. Fails: never.", "///< its name. Differs: no text", "/// Copies it. Kept:"):
            self.plant("spcbase/time/a.h", f"int a;\n  {line}\n")
            self.expect_find(self.guard, "spcbase/time/a.h:2: ", "a line of its own")

    def test_a_label_at_the_start_of_a_line_and_the_word_elsewhere_are_fine(self):
        self.plant("spcbase/time/a.h", "#pragma once\n/// Fails: never\n  // Kept:   as it was\n/// It fails: seldom.\n")
        self.plant("tests/time/a_test.cpp", "// the plan. Fails: all\n")
        self.expect_clean(self.guard)

    def test_a_change_log_that_another_version_heads_is_found(self):
        for heading in ("1.2.30", "1.2", "11.2.3", "Other"):
            self.plant("CHANGELOG.md", f"## {heading}\n\n## 1.2.3\n")
            self.expect_find(self.guard, "CHANGELOG.md: the first version heading")

    def test_a_change_log_may_begin_with_what_is_not_released(self):
        self.plant("CHANGELOG.md", "## Unreleased\n\n## 1.2.3, 1 May\n")
        self.expect_clean(self.guard)

    def test_a_missing_change_log_is_found(self):
        os.remove(os.path.join(self.root, "CHANGELOG.md"))
        self.expect_find(self.guard, "there is no change log")


class PlatformPage(Guard):
    guard = os.path.join(HERE, "check_platform_page")

    def setUp(self):
        super().setUp()
        shutil.copy(os.path.join(ROOT, "cmake", "public_headers"), os.path.join(self.root, "cmake"))
        self.plant("spcbase/spcbase.h", '#include "spcbase/platform/text/a.h"\n')
        self.known = [f"Known{number}" for number in range(100)]
        self.declare("")
        self.plant("docs/platform.md", " ".join(f"`{name}`" for name in self.known))

    def declare(self, more):
        self.plant("spcbase/platform/text/a.h", "".join(f"struct {name} {{ int b(); }};\n" for name in self.known) + more)

    def test_a_page_with_every_name_passes(self):
        self.expect_clean(self.guard)

    def test_each_kind_of_name_that_the_page_has_not_is_found(self):
        for more in ("class SPCBASE_API New : public Old {};", "using New = int;", "SPCBASE_API int New(int a) noexcept;",
                     "inline int New(int a) { return Inner(a); }"):
            self.declare(more + "\n")
            self.expect_find(self.guard, "spcbase/platform/text/a.h: New does not stand in docs/platform.md")

    def test_what_stands_inside_of_brackets_or_comments_is_no_name(self):
        self.declare("struct Known1 { void inner(); };\n// int said(int a);\n")
        self.expect_clean(self.guard)


class HouseStyle(Guard):
    filter = os.path.join(ROOT, "docs", "reference", "house_style")

    def filtered(self, text):
        self.plant("a.h", text)
        done = subprocess.run([sys.executable, self.filter, os.path.join(self.root, "a.h")], capture_output=True,
                              text=True, check=True)
        self.assertEqual(done.stdout.count("\n"), text.count("\n"))
        return done.stdout

    def test_the_first_block_describes_the_file(self):
        self.assertTrue(self.filtered("/// Texts.\n#pragma once\n").startswith("/// \\file_comment  Texts.\n"))

    def test_a_label_becomes_a_heading(self):
        self.assertIn("\n/// \\label{Fails} never.\n", self.filtered("/// A file.\n\n/// Does it.\n/// Fails:  never.\nint a();\n"))

    def test_each_declaration_of_a_run_gets_its_comment(self):
        said = self.filtered("/// A file.\n\n/// Both.\nint a();\nint b();\n\nint c();\n")
        self.assertIn("/*! Both. */ int b();", said)
        self.assertIn("\n\nint c();", said)

    def test_what_is_deleted_says_so_itself(self):
        said = self.filtered("/// A file.\n\n/// A.\nstruct A {\n  /// Makes it.\n  A();\n  A(const A&) = delete;\n};\n")
        self.assertIn("/*! Not offered. */   A(const A&) = delete;", said)

    def test_a_comment_behind_a_member_serves_those_below_it(self):
        said = self.filtered("/// A file.\n\n/// A.\nstruct A {\n  int a;  ///< numbers\n  int b;\n\n  int c;\n};\n")
        self.assertIn("/*! numbers */   int b;", said)
        self.assertIn("\n\n  int c;", said)

    def test_signs_that_the_reference_obeys_are_text_outside_of_code(self):
        said = self.filtered("/// A file.\n\n/// From <a> to `<b>`, 5 % #1.\nint a();\n")
        self.assertIn("From \\<a\\> to `<b>`, 5 \\% \\#1.", said)


class ExportedSymbols(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.library = os.path.join(self.folder.name, "libx.so")
        self.list = os.path.join(self.folder.name, "list.txt")
        source = 'extern "C" int shown() { return 1; }\n__attribute__((visibility("hidden"))) int hidden() { return 2; }'
        subprocess.run(["g++", "-shared", "-fPIC", "-x", "c++", "-", "-o", self.library], input=source, text=True,
                       check=True)

    def tearDown(self):
        self.folder.cleanup()

    def compare(self, listed):
        with open(self.list, "w", encoding="utf-8") as file:
            file.write(listed)
        return subprocess.run([os.path.join(HERE, "exported_symbols"), self.library, self.list], capture_output=True,
                              text=True, check=False)

    def test_the_listed_symbols_pass(self):
        self.assertEqual(self.compare("shown\n").returncode, 0)

    def test_a_symbol_that_is_not_listed_is_found(self):
        result = self.compare("")
        self.assertEqual(result.returncode, 1)
        self.assertIn("+shown", result.stdout)

    def test_a_symbol_that_is_gone_is_found(self):
        result = self.compare("gone\nshown\n")
        self.assertEqual(result.returncode, 1)
        self.assertIn("-gone", result.stdout)


if __name__ == "__main__":
    unittest.main()
