#include "spcbase/platform/system/system_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>
#include <vector>

namespace platform {

namespace {

thread_local const HeldFolders* held = nullptr;

std::string home_of_user() {
  std::vector<char> texts(1024);
  passwd entry{};
  passwd* found = nullptr;
  // An entry has no greatest size that the system would tell; an absurd one counts as none.
  while (::getpwuid_r(::geteuid(), &entry, texts.data(), texts.size(), &found) == ERANGE && texts.size() < 1U << 20U) {
    texts.resize(texts.size() * 2);
  }
  return found && entry.pw_dir ? entry.pw_dir : "";
}

}  // namespace

std::string temporary_folder() { return held ? held->folders().temporary : P_tmpdir; }

std::string home_folder() { return held ? held->folders().home : home_of_user(); }

HeldFolders::HeldFolders(SystemFolders folders) noexcept : folders_(std::move(folders)), outer_(held) { held = this; }

HeldFolders::~HeldFolders() { held = outer_; }

}  // namespace platform
