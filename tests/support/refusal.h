/// How the stand-ins refuse what they cannot do: by an exception that is thrown by pointer.
#pragma once

#include "spcbase/platform/system/exceptions.h"

namespace test_support {

/// Whether a call throws a CNotSupportedException, as invalid arguments do; it is released.
template <class Call>
bool refuses(Call&& call) {
  try {
    call();
  } catch (CNotSupportedException* e) {
    e->Delete();
    return true;
  }
  return false;
}

}  // namespace test_support
