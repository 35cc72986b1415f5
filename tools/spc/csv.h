/// Comma-separated values as RFC 4180 has them: quoted fields with commas, doubled quotes and line ends in them; lines
/// end in LF or CRLF; a byte order mark is passed over; the text is UTF-8.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace spc {

/// One record.
struct CsvRow {
  std::size_t line = 0;  ///< where it begins, from 1
  std::vector<std::string> fields;
};

/// A whole file: its header and the records below, every one with as many fields as the header.
struct CsvFile {
  std::string name;  ///< for messages
  CsvRow header;
  std::vector<CsvRow> rows;
};

/// Takes a text apart. Empty lines are passed over.
/// Fails: Problem, which names file and line, for a text that is not UTF-8, a quote that is never closed or stands
///        where none may, a wrong number of fields, no header, no record.
CsvFile parse_csv(std::string name, std::string_view text);

/// Reads and takes apart a file.
/// Fails: Problem; also when the file cannot be read.
CsvFile read_csv(const std::string& path);

}  // namespace spc
