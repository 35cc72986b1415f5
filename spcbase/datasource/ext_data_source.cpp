#include <memory>

#include "spcbase/datasource/definition.h"

namespace {

/// A copy of a definition of a kind; null when there is none, or none of a known kind.
std::unique_ptr<DataSourceInfoBase> copy_of(const DataSourceInfoBase* info, int kind) {
  if (!info) return nullptr;
  switch (kind) {
    case OLEDBInfo::kind:
      return std::make_unique<OLEDBInfo>(static_cast<const OLEDBInfo&>(*info));
    case ADONETDBInfo::kind:
      return std::make_unique<ADONETDBInfo>(static_cast<const ADONETDBInfo&>(*info));
    default:
      return nullptr;
  }
}

}  // namespace

void ExtDataSourceInfo::release() {
  if (owned && (kind == OLEDBInfo::kind || kind == ADONETDBInfo::kind)) delete info;
  kind = no_kind;
  info = nullptr;
  owned = false;
}

void ExtDataSourceInfo::copy_object(const ExtDataSourceInfo& other, bool deep) {
  const bool itself = this == &other;
  if (itself && (!deep || owned)) return;
  if (!deep && !other.owned) {
    // Letting go of what the other one shares with this would leave both with nothing.
    if (owned && info == other.info) return;
    release();
    info = other.info;
    kind = other.kind;
    return;
  }
  if (itself && !info) {
    // Kept: though nothing is held.
    kind = ADONETDBInfo::kind;
    return;
  }
  // Copied before letting go: the other one may share what this one owns.
  const int copied_kind = other.kind;
  std::unique_ptr<DataSourceInfoBase> copy = copy_of(other.info, copied_kind);
  release();
  if (!copy) return;
  info = copy.release();
  kind = copied_kind;
  owned = true;
}
