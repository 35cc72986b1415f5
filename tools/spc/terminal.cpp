#include "tools/spc/terminal.h"

#include <algorithm>
#include <utility>

namespace spc {
namespace {

constexpr std::size_t bar_width = 30;

}  // namespace

Progress::Progress(const Terminal& terminal, std::string what, std::size_t total)
    : err_(terminal.err),
      shown_(terminal.bars && !terminal.json && !terminal.trace && total > 0),
      what_(std::move(what)),
      total_(total) {
  if (shown_) draw();
}

Progress::~Progress() {
  if (shown_) err_ << "\r\x1b[K" << std::flush;
}

void Progress::step() {
  ++done_;
  const std::size_t filled = std::min(done_, total_) * bar_width / std::max<std::size_t>(total_, 1);
  if (shown_ && filled != drawn_) draw();
}

void Progress::draw() {
  drawn_ = std::min(done_, total_) * bar_width / total_;
  err_ << '\r' << what_ << " [" << std::string(drawn_, '#') << std::string(bar_width - drawn_, ' ') << "] " << done_
       << '/' << total_ << "\x1b[K" << std::flush;
}

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace spc
