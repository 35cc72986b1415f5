#include "spcbase/companion/connect_string.h"

#include <utility>

#include "spcbase/platform/database/connect_text.h"

bool ConnectStringUtil::HidePassword() {
  auto masked = spcdb::mask_passwords(text.view());
  if (masked.passwords.empty()) return false;
  text = CString(std::move(masked.text));
  return true;
}
