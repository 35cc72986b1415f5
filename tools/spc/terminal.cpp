#include "tools/spc/terminal.h"

#include <algorithm>
#include <utility>

#include "tools/spc/json.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

/// How often a style tells.
std::size_t parts_of(ProgressStyle style) {
  switch (style) {
    case ProgressStyle::bar:
      return 30;
    case ProgressStyle::json:
      return 100;
    default:
      return 10;
  }
}

}  // namespace

ProgressStyle progress_style(std::string_view word, bool is_terminal, bool json, bool trace) {
  if (word.empty()) return is_terminal && !json && !trace ? ProgressStyle::bar : ProgressStyle::none;
  if (word == "bar") return is_terminal && !trace ? ProgressStyle::bar : ProgressStyle::line;
  if (word == "line") return ProgressStyle::line;
  return word == "json" ? ProgressStyle::json : ProgressStyle::none;
}

Progress::Progress(const Terminal& terminal, std::string what, std::size_t total)
    : err_(terminal.err),
      style_(total > 0 ? terminal.progress : ProgressStyle::none),
      what_(std::move(what)),
      total_(total) {
  if (style_ != ProgressStyle::none) tell();
}

Progress::~Progress() {
  if (style_ == ProgressStyle::bar) err_ << "\r\x1b[K" << std::flush;
}

std::size_t Progress::part() const {
  return std::min(done_, total_) * parts_of(style_) / std::max<std::size_t>(total_, 1);
}

void Progress::step() {
  ++done_;
  if (style_ != ProgressStyle::none && part() != told_) tell();
}

void Progress::tell() {
  told_ = part();
  if (style_ == ProgressStyle::bar) {
    const std::size_t width = parts_of(style_);
    err_ << '\r' << what_ << " [" << std::string(told_, '#') << std::string(width - told_, ' ') << "] " << done_ << '/'
         << total_ << "\x1b[K";
  } else if (style_ == ProgressStyle::line) {
    err_ << on_one_line(what_) << ": " << done_ << " of " << total_ << '\n';
  } else {
    err_ << "{\"task\": " << json_text(what_) << ", \"done\": " << done_ << ", \"total\": " << total_ << "}\n";
  }
  err_.flush();
}

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace spc
