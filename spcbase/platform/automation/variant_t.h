/// `_variant_t`: a VARIANT that clears itself and converts by the change-type rules.
///
/// Part of the platform layer (automation). It has the size of VARIANT and no virtual member, so a pointer to it serves
/// wherever a `VARIANT*` is asked for.
/// Fails:   every conversion that fails throws `_com_error` with the result of `VariantChangeType`.
/// Differs: `int` (as `LONG` is one here) makes VT_I4. A `long` has 64 bits here: it makes VT_I4 when it fits, else it
/// throws
///          `_com_error` with DISP_E_OVERFLOW.
#pragma once

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/automation/variant.h"

/// A VARIANT that clears itself, made from a value of each type and converted to each.
class SPCBASE_API _variant_t : public tagVARIANT {
 public:
  _variant_t() noexcept;
  /// A copy.
  _variant_t(const VARIANT& source);
  _variant_t(const VARIANT* source);
  _variant_t(const _variant_t& source);
  _variant_t(_variant_t&& source) noexcept;
  /// Takes `source` over and leaves it empty, or copies it when `copy` is true.
  _variant_t(VARIANT& source, bool copy);
  /// VT_I2, or VT_BOOL when asked.
  /// Fails: E_INVALIDARG for other types.
  explicit _variant_t(short value, VARTYPE type = VT_I2);
  /// VT_I4, or VT_ERROR or VT_BOOL when asked.
  /// Fails: E_INVALIDARG for other types.
  _variant_t(int value, VARTYPE type = VT_I4);
  _variant_t(long value, VARTYPE type = VT_I4);
  /// VT_R4.
  _variant_t(float value) noexcept;
  /// VT_R8, or VT_DATE when asked.
  /// Fails: E_INVALIDARG for other types.
  _variant_t(double value, VARTYPE type = VT_R8);
  /// A value of the type that is documented for the argument; texts are copied, objects get a reference when asked.
  _variant_t(const CY& value) noexcept;
  _variant_t(const _bstr_t& value);
  _variant_t(const char16_t* value);
  _variant_t(const char* value);
  _variant_t(IDispatch* value, bool add_reference = true) noexcept;
  _variant_t(IUnknown* value, bool add_reference = true) noexcept;
  _variant_t(bool value) noexcept;
  _variant_t(BYTE value) noexcept;
  _variant_t(char value) noexcept;
  _variant_t(unsigned short value) noexcept;
  _variant_t(unsigned int value) noexcept;
  _variant_t(unsigned long value);
  _variant_t(long long value) noexcept;
  _variant_t(unsigned long long value) noexcept;
  ~_variant_t();

  /// Becomes a copy of the value.
  _variant_t& operator=(const VARIANT& source);
  _variant_t& operator=(const VARIANT* source);
  _variant_t& operator=(const _variant_t& source);
  _variant_t& operator=(_variant_t&& source) noexcept;

  /// The value in that type, converted as by `VariantChangeType`.
  /// Fails: `_com_error` with the code of the conversion.
  operator short() const;
  operator int() const;
  operator long() const;
  operator float() const;
  operator double() const;
  operator CY() const;
  operator _bstr_t() const;
  operator bool() const;
  operator BYTE() const;
  operator char() const;
  operator unsigned short() const;
  operator unsigned int() const;
  operator unsigned long() const;
  operator long long() const;
  operator unsigned long long() const;
  /// The object with a reference added.
  /// Owns: the caller.
  operator IDispatch*() const;
  operator IUnknown*() const;

  /// Same type and same value, texts by their characters, arrays by identity.
  bool operator==(const VARIANT& other) const noexcept;
  bool operator==(const _variant_t& other) const noexcept { return *this == static_cast<const VARIANT&>(other); }

  /// Makes it empty.
  /// Fails: throws `_com_error`.
  void Clear();
  /// Takes `source` over and leaves it empty.
  void Attach(VARIANT& source);
  /// Hands the value out and becomes empty.
  VARIANT Detach() noexcept;
  /// The value itself.
  VARIANT& GetVARIANT() noexcept { return *this; }
  /// Clears and gives the place to receive a value.
  VARIANT* GetAddress();
  /// Converts in place, or from `source`.
  void ChangeType(VARTYPE type, const VARIANT* source = nullptr);
  void SetString(const char* text);
};
