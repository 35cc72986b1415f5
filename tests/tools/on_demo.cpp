#include "tests/tools/on_demo.h"

#include <fstream>
#include <map>

#include "tools/spc/words.h"

namespace command_test {

void OnDemo::SetUp() {
  outside_database_.execute("CREATE TABLE T (A INTEGER)");
  ASSERT_EQ(run({"demo"}).status, 0);
  std::ofstream rings(file("rings.csv"));
  rings << "sample,piece,Diameter\n";
  for (const char* sample : {"1", "2"})
    for (int piece = 1; piece <= 5; ++piece)
      rings << sample << ',' << piece << ",74.0" << piece << '\n';
  rings.close();
  ASSERT_EQ(run({"source", "add", "Outside", "--connection-string", outside_database_.connect_text()}).status, 0);
  ASSERT_EQ(run({"source", "export", "Outside", file("outside.xml")}).status, 0);
  database_.execute("UPDATE CSMNRN SET MAXNO = 77");
  // Else what is saved anew within this second would be as it was.
  database_.execute("UPDATE CSEXDB SET MTIME = '2024-03-01 00:00:00'");
}

std::vector<std::string> OnDemo::on_database(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), {"--connect", database_.connect_text()});
  return arguments;
}

std::vector<std::string> OnDemo::line_for(const std::string& path) {
  const std::map<std::string, std::vector<std::string>> lines = {
      {"sample import",
       {file("rings.csv"), "--profile", "Piston rings", "--set", "Phase=production", "--set", "Taken at=2024-03-05",
        "--set", "Gauge=bore gauge A"}},
      {"numbers repair", {}},
      {"payload put", {"profile", "1", file("rings.csv")}},
      {"payload delete", {"profile", "1"}},
      {"rev add", {"--type", "3", "--id", "1", "--file", file("rings.csv")}},
      {"rev approve", {"--type", "3", "--id", "1", "--revision", "6", "--level", "2", "--major"}},
      {"rev rebuild", {"--yes"}},
      {"source add", {"Itself", "--connection-string", "DSN=x;UID=y", "--no-password"}},
      {"source edit", {"Itself", "--description", "changed"}},
      {"source test", {"Outside", "--save"}},
      {"source import", {file("outside.xml"), "--name", "Again"}},
      {"source rewrite", {}},
      {"source remove", {"Itself"}},
  };
  auto words = spc::words_of(path, " ");
  const auto found = lines.find(path);
  if (found == lines.end()) return {};
  words.insert(words.end(), found->second.begin(), found->second.end());
  return words;
}

}  // namespace command_test
