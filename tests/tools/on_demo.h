/// A database that the demo has filled, and a line for each command that changes it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/dump.h"
#include "tests/tools/program.h"

namespace command_test {

/// A test on such a database. Files that the lines name stand beside it.
class OnDemo : public testing::TestWithParam<test_support::ServerKind> {
 protected:
  void SetUp() override;

  std::string file(const char* name) { return folder_.file(name); }
  std::vector<std::string> on_database(std::vector<std::string> arguments) const;
  Answer run(std::vector<std::string> arguments) const { return command_test::run(on_database(std::move(arguments))); }
  Dump dump() const { return dump_of(GetParam(), database_.connect_text()); }

  /// The command with what makes it change something; nothing for those that make or throw away everything: db create,
  /// demo and rev reset.
  std::vector<std::string> line_for(const std::string& path);

  EmptyDatabase database_{GetParam()};

 private:
  test_support::ScratchFolder folder_;
  EmptyDatabase outside_database_{test_support::ServerKind::sqlite};
};

}  // namespace command_test
