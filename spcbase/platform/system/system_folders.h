/// Where the system puts things: the one place that asks it.
///
/// Part of the platform layer; not for hosts, and not exported. Tests put other folders in place on their thread with
/// `HeldFolders`.
#pragma once

#include <string>

namespace platform {

/// The folder for temporary files, without a separator at its end; empty when the system names none.
std::string temporary_folder();
/// The home of the user that the process acts as; empty when the user database names none.
std::string home_folder();

struct SystemFolders {
  std::string temporary;
  std::string home;
};

/// Gives the calling thread these folders for as long as the object lives. Objects nest; each must end on its thread,
/// the latest first.
class HeldFolders {
 public:
  explicit HeldFolders(SystemFolders folders) noexcept;
  ~HeldFolders();
  HeldFolders(const HeldFolders&) = delete;
  HeldFolders& operator=(const HeldFolders&) = delete;

  const SystemFolders& folders() const noexcept { return folders_; }

 private:
  SystemFolders folders_;
  const HeldFolders* outer_;
};

}  // namespace platform
