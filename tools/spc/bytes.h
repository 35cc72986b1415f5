/// Bytes that belong to others: settings and payloads, from and into files, and as people read them.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/spc/json.h"

namespace spc {

/// The content of a file.
/// Fails: Problem when it cannot be read.
std::string read_file(const std::string& path);

/// The content of a file that is to be stored as a payload.
/// Fails: Problem; also for a file that is empty or larger than a payload can be.
std::string read_payload_file(const std::string& path);

/// Writes a file that is not there yet.
/// Fails: Problem; also when it is there already, which stays as it is.
void write_new_file(const std::string& path, std::string_view bytes);

/// The same for what its owner alone may read and write.
void write_private_file(const std::string& path, std::string_view bytes);

/// Whether bytes are a text that a terminal can show: well-formed UTF-8 in which only tabs and line ends are controls.
bool is_printable(std::string_view bytes);

/// The text itself where it is one that can be shown, else hexadecimal digits.
std::string readable(std::string_view bytes);

/// As `readable`, on one line of at most so many columns; "..." stands for the rest.
std::string readable_in(std::string_view bytes, std::size_t columns);

/// Writes the members "bytes" (how many) and "text" or "hex".
void write_bytes(JsonWriter& json, std::string_view bytes);

}  // namespace spc
