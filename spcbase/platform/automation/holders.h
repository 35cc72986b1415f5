/// Small holders for automation values that are ours to release.
///
/// Part of the platform layer (automation).
#pragma once

#include <utility>

#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/variant.h"

/// A VARIANT that is cleared at the end of its scope. Unlike `_variant_t` it converts nothing by itself.
class scoped_variant {
 public:
  scoped_variant() noexcept = default;
  scoped_variant(const scoped_variant&) = delete;
  scoped_variant& operator=(const scoped_variant&) = delete;
  ~scoped_variant() { VariantClear(&value_); }

  VARIANT* get() noexcept { return &value_; }
  const VARIANT* get() const noexcept { return &value_; }
  VARIANT* operator->() noexcept { return &value_; }
  const VARIANT* operator->() const noexcept { return &value_; }
  VARIANT& operator*() noexcept { return value_; }
  const VARIANT& operator*() const noexcept { return value_; }
  /// Clears it and gives the place to receive a value.
  VARIANT* receive() noexcept {
    VariantClear(&value_);
    VariantInit(&value_);
    return &value_;
  }
  /// Hands the value out and becomes empty.
  [[nodiscard]] VARIANT release() noexcept { return std::exchange(value_, VARIANT{}); }

 private:
  VARIANT value_{};
};

/// A SAFEARRAY that is destroyed at the end of its scope.
class safe_array_holder {
 public:
  safe_array_holder() noexcept = default;
  explicit safe_array_holder(SAFEARRAY* array) noexcept : array_(array) {}
  safe_array_holder(safe_array_holder&& other) noexcept : array_(other.release()) {}
  safe_array_holder& operator=(safe_array_holder&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~safe_array_holder() { SafeArrayDestroy(array_); }

  SAFEARRAY* get() const noexcept { return array_; }
  explicit operator bool() const noexcept { return array_ != nullptr; }
  /// Destroys the array and takes another over.
  void reset(SAFEARRAY* array = nullptr) noexcept {
    SAFEARRAY* const old = std::exchange(array_, array);
    if (old != array) SafeArrayDestroy(old);
  }
  /// Destroys the array and gives the place to receive another.
  SAFEARRAY** receive() noexcept {
    reset();
    return &array_;
  }
  /// Hands the array out.
  [[nodiscard]] SAFEARRAY* release() noexcept { return std::exchange(array_, nullptr); }

 private:
  SAFEARRAY* array_ = nullptr;
};

/// The data of an array for a scope: accessed at the start, given back at the end.
class safe_array_access {
 public:
  explicit safe_array_access(SAFEARRAY* array) noexcept : array_(array), result_(SafeArrayAccessData(array, &data_)) {}
  safe_array_access(const safe_array_access&) = delete;
  safe_array_access& operator=(const safe_array_access&) = delete;
  ~safe_array_access() { end(); }

  /// What `SafeArrayAccessData` gave.
  HRESULT result() const noexcept { return result_; }
  /// Gives the data back now, and tells what `SafeArrayUnaccessData` gave. Nothing when that was done or not needed.
  HRESULT end() noexcept { return SUCCEEDED(std::exchange(result_, E_FAIL)) ? SafeArrayUnaccessData(array_) : S_OK; }
  /// The elements as what they are; null when the access failed.
  template <class T>
  T* as() const noexcept {
    return static_cast<T*>(data_);
  }

 private:
  void* data_ = nullptr;
  SAFEARRAY* array_;
  HRESULT result_;
};
