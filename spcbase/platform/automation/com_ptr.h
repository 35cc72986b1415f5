/// Pointers that hold one reference to an automation object.
///
/// Part of the platform layer (automation). `_com_ptr_t<T>` and `ATL::CComPtr<T>` differ in what a plain pointer given
/// to them means only in name: both add a reference of their own; `Attach` takes the caller's over.
///
/// Null:    using a null pointer throws `_com_error` with E_POINTER.
/// Differs: the argument of `_com_ptr_t` is the interface itself; its identifier comes from `interface_id<T>`.
///          `operator&` of both releases the old object first, so that an out argument never leaks.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/unknown.h"

namespace automation_detail {

/// What the two pointers share: one counted reference.
template <class T>
class counted_pointer {
 public:
  counted_pointer() noexcept = default;
  counted_pointer(T* object) noexcept : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  counted_pointer(const counted_pointer& other) noexcept : counted_pointer(other.object_) {}
  counted_pointer(counted_pointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  counted_pointer& operator=(counted_pointer other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~counted_pointer() { reset(); }

  /// Takes over the caller's reference to `object`.
  void Attach(T* object) noexcept {
    T* const old = std::exchange(object_, object);
    if (old != nullptr) old->Release();
  }
  /// Hands the reference to the caller and becomes null.
  [[nodiscard]] T* Detach() noexcept { return std::exchange(object_, nullptr); }

  T* operator->() const { return checked(); }
  T& operator*() const { return *checked(); }
  operator T*() const noexcept { return object_; }
  bool operator!() const noexcept { return object_ == nullptr; }
  /// The place for an out argument; the old object is released.
  T** operator&() noexcept {
    reset();
    return &object_;
  }

 protected:
  void reset() noexcept { Attach(nullptr); }
  T* raw() const noexcept { return object_; }

 private:
  T* checked() const {
    if (object_ == nullptr) _com_issue_error(E_POINTER);
    return object_;
  }

  T* object_ = nullptr;
};

/// Asks `object` for T; null when it is null or does not answer. The result carries a reference.
template <class T>
T* query(IUnknown* object, HRESULT& result) {
  void* found = nullptr;
  result = object == nullptr ? E_POINTER : object->QueryInterface(interface_id<T>::value, &found);
  return SUCCEEDED(result) ? static_cast<T*>(found) : nullptr;
}

}  // namespace automation_detail

/// The pointer that the automation interfaces of the tree are passed in.
template <class T>
class _com_ptr_t : public automation_detail::counted_pointer<T> {
  using base = automation_detail::counted_pointer<T>;

 public:
  /// The interface that it points to.
  using Interface = T;

  using base::base;
  _com_ptr_t() noexcept = default;
  /// Null.
  _com_ptr_t(std::nullptr_t) noexcept {}
  /// Takes `object` over, with a reference added when `add_reference` is true.
  _com_ptr_t(T* object, bool add_reference) noexcept {
    if (add_reference && object != nullptr) object->AddRef();
    base::Attach(object);
  }
  /// The same object by its interface T; null when `other` is null or the object does not have it.
  /// Fails: throws `_com_error` with any other code that the object answers.
  template <class Other>
  requires(!std::is_same_v<Other, T>) _com_ptr_t(const _com_ptr_t<Other>& other) {
    HRESULT result = S_OK;
    if (other.GetInterfacePtr() == nullptr) return;
    base::Attach(automation_detail::query<T>(other.GetInterfacePtr(), result));
    if (FAILED(result) && result != E_NOINTERFACE) _com_issue_error(result);
  }

  using base::Attach;
  /// As `Attach`, with a reference added when `add_reference` is true.
  void Attach(T* object, bool add_reference) noexcept {
    if (add_reference && object != nullptr) object->AddRef();
    base::Attach(object);
  }
  /// Gives the reference back now.
  /// Fails: throws `_com_error` with E_POINTER when there is none.
  void Release() {
    if (base::raw() == nullptr) _com_issue_error(E_POINTER);
    base::reset();
  }
  /// Adds a reference for the caller.
  /// Fails: throws `_com_error` with E_POINTER when null.
  void AddRef() { base::operator->()->AddRef(); }
  /// The plain pointer, no reference added.
  T* GetInterfacePtr() const noexcept { return base::raw(); }
  /// Asks for interface Q of the object, with a reference for the caller.
  /// Fails: E_POINTER when null.
  template <class Q>
  HRESULT QueryInterface(REFIID iid, Q*& object) {
    object = nullptr;
    if (base::raw() == nullptr) return E_POINTER;
    return base::raw()->QueryInterface(iid, reinterpret_cast<void**>(&object));
  }
};

namespace ATL {

/// The pointer that the failure model hands error objects out in.
template <class T>
class CComPtr : public automation_detail::counted_pointer<T> {
  using base = automation_detail::counted_pointer<T>;

 public:
  using base::base;
  CComPtr() noexcept = default;
  /// Null.
  CComPtr(std::nullptr_t) noexcept {}

  /// Gives the reference back now; null does nothing.
  void Release() noexcept { base::reset(); }
  /// A reference for the caller in `*target`.
  /// Fails: E_POINTER when `target` is null.
  HRESULT CopyTo(T** target) const noexcept {
    if (target == nullptr) return E_POINTER;
    *target = base::raw();
    if (*target != nullptr) (*target)->AddRef();
    return S_OK;
  }
  /// Asks the object for interface Q, with a reference for the caller.
  /// Fails: E_POINTER when null.
  template <class Q>
  HRESULT QueryInterface(Q** target) const {
    if (target == nullptr) return E_POINTER;
    HRESULT result = S_OK;
    *target = automation_detail::query<Q>(base::raw(), result);
    return result;
  }
};

}  // namespace ATL
