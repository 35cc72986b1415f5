/// The documents of the tree, taken apart: links, headings and blocks.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace documents {

/// A piece of a document that is no prose.
struct Block {
  std::string language;  ///< what stands behind its fence; "moved in" for one that is moved in by four blanks
  std::string text;      ///< its lines, each with its end
  std::size_t line = 0;  ///< of the fence, from 1

  std::string first_line() const { return text.substr(0, text.find('\n')); }
};

/// A link of a document into the tree: "FILE", "FILE#HEADING" or "#HEADING".
struct Link {
  std::string target;
  std::size_t line = 0;
};

/// A command of a document and what it shows below it.
struct Example {
  std::string command;
  std::string output;
};

/// Every document of the tree, relative to it. What is built or kept by programs is none.
std::vector<std::filesystem::path> all(const std::filesystem::path& tree);

std::vector<Block> blocks_of(const std::filesystem::path& document);
std::vector<Link> links_of(const std::filesystem::path& document);

/// The names by which links reach the headings of a document.
std::set<std::string> headings_of(const std::filesystem::path& document);

/// The commands of a block: a line that begins with "$ ", and those that it is continued on by a backslash.
std::vector<Example> examples_of(const Block& block);

std::string text_of(const std::filesystem::path& file);

}  // namespace documents
