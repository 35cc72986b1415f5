// Plan, for each sample that the build names (NAME is docs/samples/NAME.cpp, its page docs/NAME.md)
//   what the page shows as C++ stands in the sample, word for word
//   what the page shows below "$ sample_NAME" is what the program says; it ends with status 0
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> samples() {
  std::istringstream names(SPC_SAMPLES);
  return {std::istream_iterator<std::string>(names), {}};
}

std::string text_of(const std::string& path) {
  std::ifstream file(std::string(SPC_TREE) + '/' + path);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The blocks of a page that are fenced as a language.
std::vector<std::string> blocks(const std::string& page, const std::string& language) {
  std::vector<std::string> found;
  std::istringstream lines(page);
  bool inside = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("```")) {
      inside = line == "```" + language;
      if (inside) found.emplace_back();
    } else if (inside) {
      found.back() += line + '\n';
    }
  }
  return found;
}

/// What a program writes to both its outputs; its status is 0.
std::string said_by(const std::string& program) {
  std::FILE* const pipe = popen(("'" + program + "' 2>&1").c_str(), "r");
  if (pipe == nullptr) return "not started";
  std::string said;
  char piece[512];
  for (std::size_t count = 0; (count = std::fread(piece, 1, sizeof piece, pipe)) != 0;)
    said.append(piece, count);
  EXPECT_EQ(pclose(pipe), 0) << program << '\n' << said;
  return said;
}

class Sample : public testing::TestWithParam<std::string> {
 protected:
  std::string page() { return text_of("docs/" + GetParam() + ".md"); }
};

TEST_P(Sample, is_shown_as_it_is) {
  const std::string source = text_of("docs/samples/" + GetParam() + ".cpp");
  const auto shown = blocks(page(), "cpp");
  EXPECT_FALSE(shown.empty());
  for (const std::string& block : shown)
    EXPECT_NE(source.find(block), std::string::npos) << block;
}

TEST_P(Sample, says_what_is_shown) {
  const std::string program = "sample_" + GetParam();
  const auto shown = blocks(page(), "console");
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ("$ " + program + '\n' + said_by(std::string(SPC_SAMPLE_FOLDER) + '/' + program), shown.front());
}

INSTANTIATE_TEST_SUITE_P(Documents, Sample, testing::ValuesIn(samples()),
                         [](const auto& sample) { return sample.param; });

}  // namespace
