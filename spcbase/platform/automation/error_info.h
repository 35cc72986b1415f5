/// Error objects: a description and a source that travel beside a result code, one current object for each thread.
///
/// Part of the platform layer (automation). `CoTaskMemFree`, for what these calls hand out, is in system/memory.h.
///
/// Differs: there is no registry of classes, so `ProgIDFromCLSID` knows no class.
#pragma once

#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/system/memory.h"

/// What a reader of an error sees. Texts are new strings that the caller frees with `SysFreeString`; unset ones are
/// null.
/// Fails: every method gives E_INVALIDARG for a null argument, E_OUTOFMEMORY when memory runs out.
struct IErrorInfo : IUnknown {
  /// One piece of the error each: the interface that failed, who reports, the text, the help file and the place in it.
  virtual HRESULT GetGUID(GUID* interface_id) = 0;
  virtual HRESULT GetSource(BSTR* source) = 0;
  virtual HRESULT GetDescription(BSTR* description) = 0;
  virtual HRESULT GetHelpFile(BSTR* help_file) = 0;
  virtual HRESULT GetHelpContext(DWORD* help_context) = 0;

 protected:
  ~IErrorInfo() = default;
};

/// What the maker of an error fills. Texts are copied; null clears.
struct ICreateErrorInfo : IUnknown {
  /// The same pieces, to be set.
  virtual HRESULT SetGUID(REFGUID interface_id) = 0;
  virtual HRESULT SetSource(LPCOLESTR source) = 0;
  virtual HRESULT SetDescription(LPCOLESTR description) = 0;
  virtual HRESULT SetHelpFile(LPCOLESTR help_file) = 0;
  virtual HRESULT SetHelpContext(DWORD help_context) = 0;

 protected:
  ~ICreateErrorInfo() = default;
};

template <>
struct interface_id<IErrorInfo> {
  static constexpr IID value{0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
};

template <>
struct interface_id<ICreateErrorInfo> {
  static constexpr IID value{0x22F03340, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
};

/// The identifiers of the interfaces.
inline constexpr IID IID_IErrorInfo = interface_id<IErrorInfo>::value;
inline constexpr IID IID_ICreateErrorInfo = interface_id<ICreateErrorInfo>::value;

/// A new, empty error object; it answers to `IErrorInfo` too.
/// Fails: E_INVALIDARG for null, E_OUTOFMEMORY.
/// Owns:  the caller holds one reference.
SPCBASE_API HRESULT CreateErrorInfo(ICreateErrorInfo** info) noexcept;

/// Makes `info` the current error of the calling thread, in the place of the old one; null leaves none.
/// Fails: E_INVALIDARG when `reserved` is not 0.
SPCBASE_API HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) noexcept;

/// Takes the calling thread's current error; the thread has none afterwards.
/// Null:  S_FALSE and null when there is none.
/// Fails: E_INVALIDARG when `reserved` is not 0 or `info` is null.
/// Owns:  the caller holds the reference.
SPCBASE_API HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) noexcept;

/// The programmatic name of a class: there are no registered classes here, so always null and REGDB_E_CLASSNOTREG.
/// Fails: E_INVALIDARG when `name` is null.
SPCBASE_API HRESULT ProgIDFromCLSID(REFCLSID class_id, LPOLESTR* name) noexcept;
