/// COleSafeArray: a VARIANT that holds an array and clears itself.
///
/// Part of the platform layer (automation). Its base is the VARIANT: `vt` is the element type with VT_ARRAY, `parray`
/// the array, which the functions of safe_array.h read. It has the size of VARIANT and no virtual member.
///
/// Differs: only what makes, copies, clears and hands over; no element access of its own. `Clear` reports an array that
/// is locked, and nothing is lost then. Failures other than a lack of memory are `_com_error`.
#pragma once

#include "spcbase/platform/automation/safe_array.h"
#include "spcbase/platform/automation/variant.h"

/// A VARIANT that holds an array and clears itself.
class SPCBASE_API COleSafeArray : public tagVARIANT {
 public:
  /// Empty: VT_EMPTY.
  COleSafeArray() noexcept : tagVARIANT{} {}
  /// A copy with copies of the elements.
  /// Fails: `_com_error` with E_INVALIDARG when the source holds no array, otherwise as `VariantCopy`.
  COleSafeArray(const VARIANT& source);
  COleSafeArray(const COleSafeArray& source);
  COleSafeArray& operator=(const VARIANT& source);
  COleSafeArray& operator=(const COleSafeArray& source);
  ~COleSafeArray() { VariantClear(this); }

  /// Releases the array; VT_EMPTY is left.
  /// Fails: `_com_error` with DISP_E_ARRAYISLOCKED while its data are accessed; it then stays as it was.
  void Clear();

  /// Clears and makes an array of zeroed elements. `bounds`, or the numbers of elements of dimensions that begin at 0,
  /// stand leftmost first.
  /// Fails: `CMemoryException*` when it cannot be made, whatever the reason; as `Clear`.
  void Create(VARTYPE type, DWORD dimensions, const DWORD* counts);
  void Create(VARTYPE type, DWORD dimensions, const SAFEARRAYBOUND* bounds);

  /// Clears and makes an array of one dimension. The elements are copied in as bits, so that the array owns every
  /// string and reference in them from then on; without `elements` they are zero.
  /// Fails: as `Create`; the elements are then still the caller's.
  void CreateOneDim(VARTYPE type, DWORD count, const void* elements = nullptr, LONG lower_bound = 0);

  /// Clears, takes the array of `source` over and leaves it empty.
  /// Fails: E_INVALIDARG when it holds no array; as `Clear`.
  void Attach(VARIANT& source);
  /// Hands the array out and becomes empty.
  /// Owns: the caller, with `VariantClear`.
  [[nodiscard]] VARIANT Detach() noexcept;
};
