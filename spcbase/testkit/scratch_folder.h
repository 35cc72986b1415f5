/// A temporary folder that nobody else can choose, removed with all that is in it when the object goes.
#pragma once

#include <filesystem>
#include <string>

namespace test_support {

/// One such folder.
class ScratchFolder {
 public:
  /// Fails: std::filesystem::filesystem_error when the folder cannot be made.
  [[nodiscard]] ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  /// Its full path.
  const std::filesystem::path& path() const { return path_; }

  /// The full path of a file of that name in it.
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace test_support
