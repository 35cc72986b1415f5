/// Reads the recorded vectors: rows of tab-separated columns with escapes, under a first line that names the columns.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace test_support {

/// One row. Columns are asked for by name.
class VectorRow {
 public:
  VectorRow(std::string file, int line, std::map<std::string, std::string> columns)
      : file_(std::move(file)), line_(line), columns_(std::move(columns)) {}

  /// The text of a column, escapes resolved; throws std::out_of_range for a column that the file does not have.
  const std::string& operator[](const std::string& column) const { return columns_.at(column); }
  int line() const { return line_; }
  /// "oledate.tsv:17", for SCOPED_TRACE.
  std::string place() const { return file_ + ":" + std::to_string(line_); }
  /// Whether the note says that the row binds nobody, or not wholly.
  bool is_suspect() const { return columns_.at("note").find("suspect") != std::string::npos; }

 private:
  std::string file_;
  int line_;
  std::map<std::string, std::string> columns_;
};

/// All rows of a file in tests/data/vectors/. Throws std::runtime_error when it cannot be read or has no rows.
std::vector<VectorRow> read_vectors(const std::string& file_name);

/// The numbers of a text, parted by any of `separators`.
std::vector<long> numbers_in(const std::string& text, const char* separators = ", ");

/// The bits of a double as 16 hexadecimal digits.
std::string bits_of(double value);
/// The double with these bits.
double from_bits(const std::string& bits);
/// A number written with 0x, or without any prefix in base 16.
std::uint32_t hex32(const std::string& text);

}  // namespace test_support
