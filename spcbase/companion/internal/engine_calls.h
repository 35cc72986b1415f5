/// Calls to the data-entry engine that throw what a failing method reports.
///
/// Part of the companions; not for hosts.
/// Fails: `_com_error` with E_POINTER for a null engine, else with the method's own code and, when the engine left one,
///        its error object.
#pragma once

#include "spcbase/companion/engine.h"
#include "spcbase/platform/text/cstring.h"

namespace SPCLib {

/// What `GetCharacteristicFlags` gives.
struct CharacteristicFlags {
  LONG first = 0;
  LONG total = 0;
  LONG third = 0;
};

long next_running_number(const IQsmSPCPtr& engine, const char16_t* table);
void set_label_value(const IQsmSPCPtr& engine, long sample, long label, const CString& value);
CharacteristicFlags characteristic_flags(const IQsmSPCPtr& engine, long id);
long subgroup_size(const IQsmSPCPtr& engine, long characteristic);

}  // namespace SPCLib
