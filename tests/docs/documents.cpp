#include "tests/docs/documents.h"

#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>

namespace documents {
namespace {

namespace fs = std::filesystem;

const std::string fence = "```";

std::string without_blanks_in_front(const std::string& line) {
  const auto at = line.find_first_not_of(' ');
  return at == std::string::npos ? std::string() : line.substr(at);
}

std::vector<std::string> lines_of(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

/// The lines of a document outside of its fenced blocks; those inside are empty here.
std::vector<std::string> prose_of(const fs::path& document) {
  auto lines = lines_of(text_of(document));
  bool inside = false;
  for (auto& line : lines) {
    const bool is_fence = without_blanks_in_front(line).starts_with(fence);
    if (inside || is_fence) line.clear();
    if (is_fence) inside = !inside;
  }
  return lines;
}

/// The name of a heading as the usual renderers make it: small letters, blanks as hyphens, no other signs.
std::string anchor_of(const std::string& heading) {
  std::string name;
  for (const char c : heading) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || byte >= 0x80 || c == '_' || c == '-')
      name += static_cast<char>(std::tolower(byte));
    else if (c == ' ')
      name += '-';
  }
  return name;
}

}  // namespace

std::string text_of(const fs::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<fs::path> all(const fs::path& tree) {
  std::vector<fs::path> found;
  for (auto entry = fs::recursive_directory_iterator(tree); entry != fs::recursive_directory_iterator(); ++entry) {
    const fs::path path = fs::relative(entry->path(), tree);
    const std::string top = path.begin()->string();
    if (entry->is_directory() && (top == "build" || top.starts_with(".")))
      entry.disable_recursion_pending();
    else if (path.extension() == ".md")
      found.push_back(path);
  }
  return found;
}

std::vector<Block> blocks_of(const fs::path& document) {
  const auto lines = lines_of(text_of(document));
  std::vector<Block> blocks;
  bool inside = false;
  bool moved_in = false;
  for (std::size_t index = 0; index < lines.size(); ++index) {
    const std::string& line = lines[index];
    if (without_blanks_in_front(line).starts_with(fence)) {
      inside = !inside;
      if (inside) blocks.push_back({without_blanks_in_front(line).substr(fence.size()), {}, index + 1});
    } else if (inside) {
      blocks.back().text += line + '\n';
    } else if (line.starts_with("    ") && (moved_in || index == 0 || lines[index - 1].empty())) {
      if (!moved_in) blocks.push_back({"moved in", {}, index + 1});
      blocks.back().text += line + '\n';
      moved_in = true;
      continue;
    }
    moved_in = false;
  }
  return blocks;
}

std::vector<Link> links_of(const fs::path& document) {
  static const std::regex link(R"(\]\(([^)\s]+)\))");
  const auto lines = prose_of(document);
  std::vector<Link> links;
  for (std::size_t index = 0; index < lines.size(); ++index)
    for (auto at = std::sregex_iterator(lines[index].begin(), lines[index].end(), link); at != std::sregex_iterator();
         ++at)
      if ((*at)[1].str().find("://") == std::string::npos) links.push_back({(*at)[1], index + 1});
  return links;
}

std::set<std::string> headings_of(const fs::path& document) {
  std::map<std::string, int> seen;
  std::set<std::string> names;
  for (const auto& line : prose_of(document)) {
    const auto marks = line.find_first_not_of('#');
    if (marks == 0 || marks == std::string::npos || line[marks] != ' ') continue;
    const std::string name = anchor_of(line.substr(marks + 1));
    const int before = seen[name]++;
    names.insert(before == 0 ? name : name + '-' + std::to_string(before));
  }
  return names;
}

std::vector<Example> examples_of(const Block& block) {
  std::vector<Example> examples;
  bool goes_on = false;
  for (const auto& line : lines_of(block.text)) {
    if (goes_on)
      examples.back().command += '\n' + line;
    else if (line.starts_with("$ "))
      examples.push_back({line.substr(2), {}});
    else if (!examples.empty())
      examples.back().output += line + '\n';
    else
      examples.push_back({"echo '" + block.first_line() + "' stands below no command; false", {}});
    goes_on = (goes_on || line.starts_with("$ ")) && line.ends_with('\\');
  }
  return examples;
}

}  // namespace documents
