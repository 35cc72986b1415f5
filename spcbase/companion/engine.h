/// The data-entry engine's automation interface, as data entry uses it.
///
/// Part of the companions: the engine is a closed neighbour of the same product, which a host hands in as an
/// `SPCLib::IQsmSPCPtr`. It owns the running numbers, the auto labels and the facts about characteristics.
///
/// Every method returns a result code and lets no exception out. A failing method may leave an error object that names
/// `IQsmSPC` on the calling thread (`SetErrorInfo`), which data entry puts into the `_com_error` that it throws. A host
/// that calls a method itself does the same (`GetErrorInfo`); else what the engine said is lost.
///
/// Null:    a null pointer, used, throws `_com_error` with E_POINTER.
/// Threads: as the engine that is handed in allows; data entry calls it on the caller's thread only.
/// Differs: calls by name (IDispatch) do not exist here, so the interface stands on IUnknown.
#pragma once

#include "spcbase/platform/automation/bstr.h"
#include "spcbase/platform/automation/com_ptr.h"
#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/system/types.h"

namespace SPCLib {

/// The operations that data entry calls, in the order of the interface.
struct IQsmSPC : IUnknown {
  /// The next number of a running-number table: "CSSPRN" for a new sample, "CSVLRN" for a new label value.
  virtual HRESULT GetNextRunningNumber(BSTR table, LONG* number) = 0;
  /// Stores the value of one auto label of a sample. Characteristic and piece are 0 for a label of the whole sample,
  /// the only kind that data entry stores this way.
  virtual HRESULT SetLabelValue(LONG sample, LONG characteristic, LONG label, LONG piece, BSTR value) = 0;
  /// Three facts about a characteristic. Data entry reads the second alone: when it is not 0, a characteristic of type
  /// "ATTRIBUTE" keeps a total for each sample. It is asked about labels too, by their id.
  virtual HRESULT GetCharacteristicFlags(LONG id, LONG* first, LONG* total, LONG* third) = 0;
  /// The fixed number of pieces in a sample of a characteristic; 0 when there is none.
  virtual HRESULT GetSubgroupSize(LONG characteristic, LONG* size) = 0;

 protected:
  ~IQsmSPC() = default;
};

/// The pointer that the engine is passed in.
using IQsmSPCPtr = _com_ptr_t<IQsmSPC>;

}  // namespace SPCLib

template <>
struct interface_id<SPCLib::IQsmSPC> {
  static constexpr IID value{0x6B0B3A51, 0x2F5C, 0x4E0A, {0x9C, 0x41, 0x7D, 0x1E, 0x55, 0x08, 0xA3, 0x6F}};
};
