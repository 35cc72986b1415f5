/// The system settings as an administrator sees them: their bytes, and what is wrong with how they are stored.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/link.h"

namespace spc {

/// What may be wrong with how a setting is stored.
enum class SettingFault : unsigned char { none, doubled_piece, missing_piece, bad_digit, half_byte };

/// One setting.
struct SettingView {
  std::string key;
  std::string bytes;
  SettingFault fault = SettingFault::none;
  std::string damage;  ///< why the bytes may not be what was stored; empty when nothing is wrong
};

/// All settings, by key.
/// Fails: Problem.
std::vector<SettingView> read_settings(Link& link);

}  // namespace spc
