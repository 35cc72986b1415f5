/// Arrays and types in the notation of the recorded rows, and an object that counts its references.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/unknown.h"
#include "vector_file.h"

namespace vectors {

inline const std::map<std::string, VARTYPE>& type_names() {
  static const std::map<std::string, VARTYPE> names = {
      {"EMPTY", VT_EMPTY},     {"NULL", VT_NULL},
      {"I2", VT_I2},           {"I4", VT_I4},
      {"R4", VT_R4},           {"R8", VT_R8},
      {"CY", VT_CY},           {"DATE", VT_DATE},
      {"BSTR", VT_BSTR},       {"DISPATCH", VT_DISPATCH},
      {"ERROR", VT_ERROR},     {"BOOL", VT_BOOL},
      {"VARIANT", VT_VARIANT}, {"UNKNOWN", VT_UNKNOWN},
      {"DECIMAL", VT_DECIMAL}, {"I1", VT_I1},
      {"UI1", VT_UI1},         {"UI2", VT_UI2},
      {"UI4", VT_UI4},         {"I8", VT_I8},
      {"UI8", VT_UI8},         {"INT", VT_INT},
      {"UINT", VT_UINT},       {"VOID", VT_VOID},
      {"HRESULT", VT_HRESULT}, {"PTR", VT_PTR},
      {"LPSTR", VT_LPSTR},
  };
  return names;
}

inline VARTYPE type_of(const std::string& name) {
  const auto found = type_names().find(name);
  return found != type_names().end() ? found->second : static_cast<VARTYPE>(std::stoi(name));
}

inline std::string name_of(VARTYPE type) {
  for (const auto& [name, value] : type_names()) {
    if (value == type) return name;
  }
  return std::to_string(type);
}

inline std::string describe(SAFEARRAY* array) {
  if (array == nullptr) return "null";
  std::string told = text("features=0x%04X element_size=%u locks=%u dims=%u", array->fFeatures,
                          SafeArrayGetElemsize(array), array->cLocks, SafeArrayGetDim(array));
  VARTYPE type = VT_EMPTY;
  const HRESULT result = SafeArrayGetVartype(array, &type);
  told += " vartype=" + (SUCCEEDED(result) ? name_of(type) : hex(result));
  for (UINT dimension = 1; dimension <= SafeArrayGetDim(array); ++dimension) {
    LONG lower = 0;
    LONG upper = 0;
    EXPECT_EQ(SafeArrayGetLBound(array, dimension, &lower), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(array, dimension, &upper), S_OK);
    told += text(" [%d..%d]", lower, upper);
  }
  return told + (array->pvData != nullptr ? " data" : " no-data");
}

/// An object on the stack; it begins with one reference, its owner's.
class counted_object final : public IDispatch {
 public:
  ULONG references = 1;

  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IDispatch || iid == IID_IUnknown ? static_cast<IDispatch*>(this) : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    ++references;
    return S_OK;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }
};

/// The code of the _com_error that a call throws; S_OK when it throws none.
template <class Call>
HRESULT code_thrown_by(Call call) {
  try {
    call();
  } catch (const _com_error& error) {
    return error.Error();
  }
  return S_OK;
}

}  // namespace vectors
