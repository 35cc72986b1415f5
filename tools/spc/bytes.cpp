#include "tools/spc/bytes.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <system_error>

#include "spcbase/platform/system/file.h"
#include "spcbase/platform/system/system_error.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

constexpr const char* advice_for_new_file = "See that the folder is there, writable and not full.";

std::string hex(std::string_view bytes) {
  constexpr const char* digits = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
  }
  return text;
}

bool is_control(std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < 0x20) return byte != '\n' && byte != '\t' && byte != '\r';
  // The second row of controls has two bytes each.
  return byte == 0x7F || (byte == 0xC2 && static_cast<unsigned char>(text[at + 1]) < 0xA0);
}

}  // namespace

std::string read_file(const std::string& path) {
  const std::string what = "cannot read " + path;
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) throw Problem{what, "it is a folder", ""};
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw Problem{what, std::generic_category().message(errno), "See that the file is there and readable."};
  std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.bad()) throw Problem{what, "reading broke off", ""};
  return bytes;
}

std::string read_payload_file(const std::string& path) {
  std::string bytes = read_file(path);
  const std::string what = "cannot store " + path;
  if (bytes.empty()) throw Problem{what, "the file is empty", "A payload has at least one byte: name another file."};
  if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
    throw Problem{what, "the file has 2 GiB or more", "A payload has less: name a smaller file."};
  return bytes;
}

void write_new_file(const std::string& path, std::string_view bytes) {
  const std::string what = "cannot write " + path;
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored))
    throw Problem{what, "the file is there already", "Name a file that does not exist yet."};
  errno = 0;
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw Problem{what, std::generic_category().message(errno), advice_for_new_file};
}

void write_private_file(const std::string& path, std::string_view bytes) {
  const std::string what = "cannot write " + path;
  CFile file;
  file.m_hFile = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file.m_hFile == CFile::hFileNull) {
    const auto error = static_cast<LONG>(GetLastError());
    if (error == ERROR_FILE_EXISTS)
      throw Problem{what, "the file is there already", "Name a file that does not exist yet."};
    const auto refused = guarded([&] { CFileException::ThrowOsError(error, path.c_str()); });
    Problem problem = problem_of(what, refused.failure());
    problem.advice = advice_for_new_file;
    throw problem;
  }
  doing(what, [&] {
    file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    file.Close();
  });
}

bool is_printable(std::string_view bytes) {
  if (find_invalid_utf8(bytes)) return false;
  for (std::size_t at = 0; at < bytes.size(); ++at)
    if (is_control(bytes, at)) return false;
  return true;
}

std::string readable(std::string_view bytes) { return is_printable(bytes) ? std::string(bytes) : hex(bytes); }

std::string readable_in(std::string_view bytes, std::size_t columns) {
  constexpr std::string_view rest = "...";
  std::string text = on_one_line(readable(bytes));
  if (display_width(text) <= columns) return text;
  while (!text.empty() && (find_invalid_utf8(text) || display_width(text) > columns - rest.size()))
    text.pop_back();
  return text.append(rest);
}

void write_bytes(JsonWriter& json, std::string_view bytes) {
  json.key("bytes").value(bytes.size());
  json.key(is_printable(bytes) ? "text" : "hex").value(readable(bytes));
}

}  // namespace spc
