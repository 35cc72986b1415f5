/// How most automation objects live: counted, and gone with the last reference.
///
/// Part of the platform layer (automation).
#pragma once

#include <atomic>

#include "spcbase/platform/automation/unknown.h"

/// The counting half of an object that implements `Interfaces`; `QueryInterface` stays with the object.
/// Owns:   the object stands on the heap and begins with one reference, its maker's. Any thread may count.
template <class... Interfaces>
class counted : public Interfaces... {
 public:
  counted() noexcept = default;
  counted(const counted&) = delete;
  counted& operator=(const counted&) = delete;

  ULONG AddRef() override { return ++references_; }
  ULONG Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~counted() = default;

 private:
  std::atomic<ULONG> references_{1};
};
