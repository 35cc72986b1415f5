/// CObject: the common base of classes that are deleted through a pointer to it.
///
/// Part of the platform layer.
/// Differs: no run-time class information, no serialisation.
#pragma once

#include "spcbase/platform/system/export.h"

/// Objects of identity: they are not copied.
class SPCBASE_API CObject {
 public:
  CObject() noexcept = default;
  virtual ~CObject();
  CObject(const CObject&) = delete;
  CObject& operator=(const CObject&) = delete;
};
