#include <memory>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/system/memory.h"
#include "spcbase/utility/text.h"

_bstr_t get_iid_string(const GUID& id) {
  OLECHAR* text = nullptr;
  _com_util::CheckError(StringFromIID(id, &text));
  const std::unique_ptr<OLECHAR, decltype(&CoTaskMemFree)> owned(text, CoTaskMemFree);
  return _bstr_t(text);
}

CString create_uuid_str() {
  UUID id{};
  CoCreateGuid(&id);
  unsigned char* text = nullptr;
  if (UuidToStringA(&id, &text) != 0) return {};
  CString result;
  try {
    result = reinterpret_cast<const char*>(text);
  } catch (...) {
    RpcStringFreeA(&text);
    throw;
  }
  RpcStringFreeA(&text);
  return result;
}
