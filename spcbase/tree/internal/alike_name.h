/// Names that are the same but for case, white space at the ends and what names must not hold.
///
/// Part of the object tree; not for hosts.
#pragma once

#include <string_view>

#include "spcbase/platform/text/cstring.h"

/// A name that others are compared with, very many perhaps.
class AlikeName {
 public:
  explicit AlikeName(const CString& name);

  /// Whether a name as it was stored is the wanted one: `fix_spc_name` goes over it first, but not over the wanted one.
  bool matches(const CString& stored) const;

 private:
  CString wanted_;
  bool plain_;  ///< nothing but what ASCII prints
};
