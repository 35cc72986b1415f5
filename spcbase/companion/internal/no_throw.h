/// What an automation method says when an exception would leave it.
///
/// Companions only.
#pragma once

#include <new>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/system/exceptions.h"
#include "spcbase/platform/system/types.h"

/// The result of `act`, or the code that fits what it threw.
template <class Act>
HRESULT no_throw(Act&& act) noexcept {
  try {
    return act();
  } catch (const _com_error& e) {
    return e.Error();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (CException* e) {
    e->Delete();
    return E_FAIL;
  } catch (...) {
    return E_FAIL;
  }
}
