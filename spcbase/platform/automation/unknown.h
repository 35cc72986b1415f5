/// The root interfaces of automation objects and the identifiers of interfaces.
///
/// Part of the platform layer (automation). An interface names its identifier by a specialisation of `interface_id`:
///
///     template <>
///     struct interface_id<IThing> {
///       static constexpr IID value{0x12345678, 0x1234, 0x1234, {0, 1, 2, 3, 4, 5, 6, 7}};
///     };
///
/// The smart pointers of com_ptr.h use it to ask an object for an interface.
///
/// Differs: `interface_id` stands for `__uuidof`. `IDispatch` adds no methods: calls by name do not exist here.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/guid.h"
#include "spcbase/platform/system/types.h"

/// UTF-16 texts that end with a zero.
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;

/// Names the identifier of interface T by a static member `value`; specialise it beside each interface.
template <class T>
struct interface_id;

/// What every object has: interfaces by their identifier, and a count of references.
struct IUnknown {
  /// Gives the object's interface `iid` in `*object` with one reference for the caller, else null and E_NOINTERFACE.
  virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;
  /// Adds a reference; gives the new count.
  virtual ULONG AddRef() = 0;
  /// Gives a reference back and ends the object with the last one; gives the new count.
  virtual ULONG Release() = 0;

 protected:
  ~IUnknown() = default;
};

template <>
struct interface_id<IUnknown> {
  static constexpr IID value{0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
};

/// An object that automation hosts can hold in a VARIANT.
struct IDispatch : IUnknown {
 protected:
  ~IDispatch() = default;
};

template <>
struct interface_id<IDispatch> {
  static constexpr IID value{0x00020400, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
};

/// The identifiers of the interfaces.
inline constexpr IID IID_IUnknown = interface_id<IUnknown>::value;
inline constexpr IID IID_IDispatch = interface_id<IDispatch>::value;
