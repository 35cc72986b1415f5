#include "spcbase/companion/internal/engine_calls.h"

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/error_info.h"

namespace SPCLib {
namespace {

/// The thread's error object when it is the engine's. Another's stays where it was: it may belong to the host.
IErrorInfo* take_engine_error() noexcept {
  IErrorInfo* info = nullptr;
  if (GetErrorInfo(0, &info) != S_OK) return nullptr;
  GUID source{};
  if (SUCCEEDED(info->GetGUID(&source)) && source == interface_id<IQsmSPC>::value) return info;
  SetErrorInfo(0, info);
  info->Release();
  return nullptr;
}

void check(HRESULT result) {
  if (FAILED(result)) throw _com_error(result, take_engine_error());
}

}  // namespace

long next_running_number(const IQsmSPCPtr& engine, const char16_t* table) {
  const _bstr_t name(table);
  LONG number = 0;
  check(engine->GetNextRunningNumber(name, &number));
  return number;
}

void set_label_value(const IQsmSPCPtr& engine, long sample, long label, const CString& value) {
  const _bstr_t text(value.GetString());
  check(engine->SetLabelValue(static_cast<LONG>(sample), 0, static_cast<LONG>(label), 0, text));
}

CharacteristicFlags characteristic_flags(const IQsmSPCPtr& engine, long id) {
  CharacteristicFlags flags;
  check(engine->GetCharacteristicFlags(static_cast<LONG>(id), &flags.first, &flags.total, &flags.third));
  return flags;
}

long subgroup_size(const IQsmSPCPtr& engine, long characteristic) {
  LONG size = 0;
  check(engine->GetSubgroupSize(static_cast<LONG>(characteristic), &size));
  return size;
}

}  // namespace SPCLib
