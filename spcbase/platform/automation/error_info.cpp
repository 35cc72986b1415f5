#include "spcbase/platform/automation/error_info.h"

#include <new>

#include "spcbase/platform/automation/bstr.h"
#include "spcbase/platform/automation/com_ptr.h"
#include "spcbase/platform/automation/counted.h"

namespace {

// One text of an error object.
class text_slot {
 public:
  text_slot() noexcept = default;
  text_slot(const text_slot&) = delete;
  text_slot& operator=(const text_slot&) = delete;
  ~text_slot() { SysFreeString(text_); }

  HRESULT set(LPCOLESTR text) noexcept { return SysReAllocString(&text_, text) ? S_OK : E_OUTOFMEMORY; }

  HRESULT get(BSTR* target) const noexcept {
    if (target == nullptr) return E_INVALIDARG;
    *target = SysAllocString(text_);
    return *target != nullptr || text_ == nullptr ? S_OK : E_OUTOFMEMORY;
  }

 private:
  BSTR text_ = nullptr;
};

class error_object final : public counted<ICreateErrorInfo, IErrorInfo> {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_ICreateErrorInfo || iid == IID_IUnknown) *object = static_cast<ICreateErrorInfo*>(this);
    if (iid == IID_IErrorInfo) *object = static_cast<IErrorInfo*>(this);
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  HRESULT SetGUID(REFGUID interface_id) override {
    guid_ = interface_id;
    return S_OK;
  }
  HRESULT SetSource(LPCOLESTR source) override { return source_.set(source); }
  HRESULT SetDescription(LPCOLESTR description) override { return description_.set(description); }
  HRESULT SetHelpFile(LPCOLESTR help_file) override { return help_file_.set(help_file); }
  HRESULT SetHelpContext(DWORD help_context) override {
    help_context_ = help_context;
    return S_OK;
  }

  HRESULT GetGUID(GUID* interface_id) override {
    if (interface_id == nullptr) return E_INVALIDARG;
    *interface_id = guid_;
    return S_OK;
  }
  HRESULT GetSource(BSTR* source) override { return source_.get(source); }
  HRESULT GetDescription(BSTR* description) override { return description_.get(description); }
  HRESULT GetHelpFile(BSTR* help_file) override { return help_file_.get(help_file); }
  HRESULT GetHelpContext(DWORD* help_context) override {
    if (help_context == nullptr) return E_INVALIDARG;
    *help_context = help_context_;
    return S_OK;
  }

 private:
  GUID guid_{};
  DWORD help_context_ = 0;
  text_slot source_;
  text_slot description_;
  text_slot help_file_;
};

ATL::CComPtr<IErrorInfo>& current_error() {
  thread_local ATL::CComPtr<IErrorInfo> error;
  return error;
}

}  // namespace

HRESULT CreateErrorInfo(ICreateErrorInfo** info) noexcept {
  if (info == nullptr) return E_INVALIDARG;
  *info = new (std::nothrow) error_object;
  return *info == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) noexcept {
  if (reserved != 0) return E_INVALIDARG;
  current_error() = ATL::CComPtr<IErrorInfo>(info);
  return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) noexcept {
  if (info == nullptr) return E_INVALIDARG;
  *info = nullptr;
  if (reserved != 0) return E_INVALIDARG;
  *info = current_error().Detach();
  return *info == nullptr ? S_FALSE : S_OK;
}

HRESULT ProgIDFromCLSID(REFCLSID, LPOLESTR* name) noexcept {
  if (name == nullptr) return E_INVALIDARG;
  *name = nullptr;
  return REGDB_E_CLASSNOTREG;
}
