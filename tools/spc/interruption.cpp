#include "tools/spc/interruption.h"

#include <csignal>

#include "spcbase/platform/database/connection.h"
#include "spcbase/platform/system/signals.h"

namespace spc {

bool interrupted() noexcept { return platform::noted_stop_signal() != 0; }

Problem interruption(std::string what_stands) {
  return {"interrupted", std::move(what_stands), "",
          platform::noted_stop_signal() == SIGTERM ? exit_terminated : exit_interrupted};
}

bool is_interruption(const Problem& problem) {
  return interrupted() && (problem.status == exit_interrupted || problem.status == exit_terminated ||
                           problem.why.find("HY008") != std::string::npos);
}

void stop_if_interrupted(const std::string& what_stands) {
  if (interrupted()) throw interruption(what_stands);
}

void stop_when_interrupted(CDatabase& db) {
  platform::note_stop_signals();
  if (auto* connection = db.connection()) connection->wants_to_stop = interrupted;
}

Undisturbed::Undisturbed(CDatabase& db) : db_(db) {
  if (auto* connection = db_.connection()) connection->wants_to_stop = nullptr;
}

Undisturbed::~Undisturbed() {
  if (auto* connection = db_.connection()) connection->wants_to_stop = interrupted;
}

}  // namespace spc
