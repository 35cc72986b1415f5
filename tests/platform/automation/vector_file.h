/// Reading the recorded rows of platform calls.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vectors {

/// One row: its line number and its unescaped columns.
struct row {
  int line = 0;
  std::vector<std::string> columns;
  const std::string& operator[](std::size_t i) const { return columns.at(i); }
};

inline std::string unescaped(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      result += text[i];
      continue;
    }
    const char kind = text.at(++i);
    if (kind == 'x') {
      result += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      result += kind == 't' ? '\t' : kind == 'n' ? '\n' : kind == 'r' ? '\r' : kind;
    }
  }
  return result;
}

/// All rows of a file. A file that is missing or empty fails the test.
inline std::vector<row> read(const std::string& name) {
  std::ifstream file(std::string(SPCBASE_TEST_DATA) + "/vectors/" + name);
  std::vector<row> rows;
  std::string text;
  for (int line = 1; std::getline(file, text); ++line) {
    if (line == 1) continue;
    row read_row{line, {}};
    for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
      end = text.find('\t', start);
      read_row.columns.push_back(unescaped(text.substr(start, end - start)));
    }
    rows.push_back(std::move(read_row));
  }
  EXPECT_FALSE(rows.empty()) << name;
  return rows;
}

/// The rows of some classes, suspect ones left out.
inline std::vector<row> read(const std::string& name, const std::vector<std::string>& classes) {
  std::vector<row> chosen;
  for (row& each : read(name)) {
    const bool wanted = std::find(classes.begin(), classes.end(), each[0]) != classes.end();
    if (wanted && each.columns.back() != "suspect") chosen.push_back(std::move(each));
  }
  EXPECT_FALSE(chosen.empty()) << name;
  return chosen;
}

template <class... Values>
std::string text(const char* format, Values... values) {
  char buffer[200];
  std::snprintf(buffer, sizeof buffer, format, values...);
  return buffer;
}

inline std::string hex(int result) { return text("0x%08X", static_cast<unsigned>(result)); }

/// What a call gave, in the columns of a row.
struct answer {
  std::string result;
  std::string output;
};

/// The calls that the rows of a class describe, by the rows' first column.
using steps = std::map<std::string, std::function<answer()>>;

/// Plays each row of a class of a file by its step, in the order of the file; every step stands there.
inline void play(const char* file_name, const steps& known, const std::string& row_class) {
  std::size_t played = 0;
  for (const row& recorded : read(file_name, {row_class})) {
    SCOPED_TRACE(text("line %d: ", recorded.line) + recorded[1]);
    const auto step = known.find(recorded[1]);
    ASSERT_NE(step, known.end()) << "no step for this row";
    const answer told = step->second();
    EXPECT_EQ(told.result, recorded[2]);
    EXPECT_EQ(told.output, recorded[3]);
    ++played;
  }
  EXPECT_EQ(played, known.size());
}

}  // namespace vectors
