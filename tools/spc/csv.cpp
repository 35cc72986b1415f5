#include "tools/spc/csv.h"

#include <algorithm>

#include "tools/spc/bytes.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

[[noreturn]] void refuse(const std::string& name, std::size_t line, const std::string& why, std::string advice = {}) {
  const std::string where = line == 0 ? "" : "line " + std::to_string(line) + ": ";
  throw Problem{"cannot read " + name, where + why, std::move(advice)};
}

/// Reads records one after the other.
class Reader {
 public:
  Reader(const std::string& name, std::string_view text) : name_(name), text_(text) {}

  /// False at the end of the text.
  bool next(CsvRow& row) {
    skip_empty_lines();
    if (at_ == text_.size()) return false;
    row.line = line_;
    row.fields.clear();
    do {
      row.fields.push_back(field());
    } while (take(','));
    end_line();
    return true;
  }

 private:
  bool take(char c) {
    if (at_ == text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }

  bool at_line_end() const { return at_ == text_.size() || text_[at_] == '\n' || text_.substr(at_, 2) == "\r\n"; }

  void end_line() {
    if (!at_line_end()) refuse(name_, line_, "text stands behind a closing quote", quoting);
    take('\r');
    if (take('\n')) ++line_;
  }

  void skip_empty_lines() {
    while (at_ < text_.size() && at_line_end())
      end_line();
  }

  std::string field() { return take('"') ? quoted_field() : plain_field(); }

  std::string plain_field() {
    const std::size_t begin = at_;
    while (!at_line_end() && text_[at_] != ',') {
      if (text_[at_] == '"')
        refuse(name_, line_, "a quote stands inside a field that does not begin with one", quoting);
      ++at_;
    }
    return std::string(text_.substr(begin, at_ - begin));
  }

  std::string quoted_field() {
    const std::size_t opened_on = line_;
    std::string value;
    while (true) {
      if (at_ == text_.size()) refuse(name_, opened_on, "a quote is never closed", quoting);
      const char c = text_[at_++];
      if (c == '\n') ++line_;
      if (c == '"' && !take('"')) return value;
      value += c;
    }
  }

  static constexpr const char* quoting =
      "Put the whole field in quotes and double each quote inside it: \"say \"\"hello\"\"\".";

  const std::string& name_;
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
};

void check_text(const std::string& name, std::string_view text) {
  const auto bad = find_invalid_utf8(text);
  const auto zero = text.find('\0');
  const std::size_t at = std::min(bad.value_or(std::string_view::npos), zero);
  if (at == std::string_view::npos) return;
  const auto line = static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<long>(at), '\n')) + 1;
  refuse(name, line, at == zero ? "a zero byte, so this is not a text" : "bytes that are not UTF-8",
         "Save the file as UTF-8.");
}

/// A spreadsheet may part fields otherwise, as its country does.
void check_separator(const CsvFile& file) {
  if (file.header.fields.size() != 1) return;
  const std::string& heading = file.header.fields.front();
  const char* separator = heading.find(';') != std::string::npos    ? "semicolons"
                          : heading.find('\t') != std::string::npos ? "tabs"
                                                                    : nullptr;
  if (separator != nullptr)
    refuse(file.name, file.header.line, "the fields are parted by " + std::string(separator),
           "Save the file with commas between the fields, and points in the numbers.");
}

void check_width(const CsvFile& file, const CsvRow& row) {
  const std::size_t wanted = file.header.fields.size();
  if (row.fields.size() == wanted) return;
  refuse(file.name, row.line,
         std::to_string(row.fields.size()) + " fields, but the header has " + std::to_string(wanted));
}

}  // namespace

CsvFile parse_csv(std::string name, std::string_view text) {
  check_text(name, text);
  if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
  CsvFile file;
  file.name = std::move(name);
  Reader reader(file.name, text);
  if (!reader.next(file.header)) refuse(file.name, 0, "the file is empty");
  for (auto& heading : file.header.fields)
    heading = trimmed(heading);
  check_separator(file);
  for (CsvRow row; reader.next(row);) {
    check_width(file, row);
    file.rows.push_back(std::move(row));
  }
  if (file.rows.empty()) refuse(file.name, 0, "there is a header and nothing below it");
  return file;
}

CsvFile read_csv(const std::string& path) { return parse_csv(path, read_file(path)); }

}  // namespace spc
