#include "tests/support/vector_file.h"

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace test_support {

namespace {

std::vector<std::string> split_at_tabs(const std::string& line) {
  std::vector<std::string> cells;
  std::size_t from = 0;
  for (std::size_t at = line.find('\t'); at != std::string::npos; at = line.find('\t', from)) {
    cells.push_back(line.substr(from, at - from));
    from = at + 1;
  }
  cells.push_back(line.substr(from));
  return cells;
}

std::string without_escapes(const std::string& cell) {
  std::string result;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell[i] != '\\' || i + 1 == cell.size()) {
      result.push_back(cell[i]);
      continue;
    }
    const char code = cell[++i];
    switch (code) {
      case 't':
        result.push_back('\t');
        break;
      case 'n':
        result.push_back('\n');
        break;
      case 'r':
        result.push_back('\r');
        break;
      case 'x':
        result.push_back(static_cast<char>(std::stoi(cell.substr(i + 1, 2), nullptr, 16)));
        i += 2;
        break;
      case '\\':
        result.push_back(code);
        break;
      default:  // no escape: some rows have the paths of a drive as they are
        result.push_back('\\');
        result.push_back(code);
    }
  }
  return result;
}

}  // namespace

std::vector<VectorRow> read_vectors(const std::string& file_name) {
  std::ifstream file(std::string(SPCBASE_TEST_DATA "/vectors/") + file_name);
  std::string line;
  if (!std::getline(file, line) || line.rfind("# ", 0) != 0) throw std::runtime_error("no vectors in " + file_name);
  const std::vector<std::string> names = split_at_tabs(line.substr(2));
  std::vector<VectorRow> rows;
  for (int number = 2; std::getline(file, line); ++number) {
    const std::vector<std::string> cells = split_at_tabs(line);
    std::map<std::string, std::string> columns;
    for (std::size_t i = 0; i < names.size(); ++i) {
      columns[names[i]] = i < cells.size() ? without_escapes(cells[i]) : "";
    }
    rows.emplace_back(file_name, number, std::move(columns));
  }
  if (rows.empty()) throw std::runtime_error("no rows in " + file_name);
  return rows;
}

std::vector<long> numbers_in(const std::string& text, const char* separators) {
  std::vector<long> numbers;
  for (std::size_t at = text.find_first_not_of(separators); at != std::string::npos;) {
    const std::size_t end = text.find_first_of(separators, at);
    numbers.push_back(std::stol(text.substr(at, end - at)));
    at = text.find_first_not_of(separators, end);
  }
  return numbers;
}

std::string bits_of(double value) {
  char text[17];
  std::snprintf(text, sizeof text, "%016llX", static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(value)));
  return text;
}

double from_bits(const std::string& bits) {
  return std::bit_cast<double>(static_cast<std::uint64_t>(std::stoull(bits, nullptr, 16)));
}

std::uint32_t hex32(const std::string& text) { return static_cast<std::uint32_t>(std::stoul(text, nullptr, 16)); }

}  // namespace test_support
