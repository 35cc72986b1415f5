/// The part of the memory job that runs in a process of its own.
#pragma once

#include <string>

namespace bench {

/// The word by which this program is told to be that process; the side ("ours" or "plain"), the server and the texts of
/// the place follow.
inline constexpr const char* scan_memory_word = "--scan-memory";

/// Scans 200,000 rows of CSVDAT, then all 1,000,000, and prints by how many KiB the peak of this process's memory grew
/// with the second scan.
/// Returns  the exit status.
int scan_and_print_growth(const std::string& side, const std::string& server, const std::string& text);

}  // namespace bench
