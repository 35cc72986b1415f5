/// `_bstr_t`: a BSTR that is shared by its copies and freed with the last, convertible from and to UTF-8.
///
/// Part of the platform layer (automation).
/// Fails: whatever needs memory throws `_com_error` with E_OUTOFMEMORY.
/// Null:  a `_bstr_t` may hold null; the pointers it gives are then null, and its length is 0.
#pragma once

#include <compare>
#include <memory>

#include "spcbase/platform/automation/bstr.h"

class CString;

/// A BSTR that copies share and the last one frees.
class SPCBASE_API _bstr_t {
 public:
  /// Null.
  _bstr_t() noexcept = default;
  /// A copy of a UTF-8 text; null stays null.
  _bstr_t(const char* text);
  /// A copy of a UTF-16 text; null stays null.
  _bstr_t(const char16_t* text);
  /// Takes `text` over, or copies it when `copy` is true.
  _bstr_t(BSTR text, bool copy);
  _bstr_t(const _bstr_t& other) noexcept = default;
  _bstr_t(_bstr_t&& other) noexcept = default;
  _bstr_t& operator=(const _bstr_t& other) noexcept = default;
  _bstr_t& operator=(_bstr_t&& other) noexcept = default;
  ~_bstr_t() = default;

  /// The length in characters.
  unsigned int length() const noexcept;
  /// Whether it is null.
  bool operator!() const noexcept { return wide() == nullptr; }

  /// The text as it is; lives as long as a copy of this object.
  operator const char16_t*() const noexcept { return wide(); }
  operator char16_t*() const noexcept { return wide(); }
  /// The text as UTF-8, made at the first call; lives as long as a copy of this object.
  operator const char*() const;
  operator char*() const;

  /// A new string, by default a copy.
  /// Owns: the caller of a copy.
  BSTR copy(bool copy = true) const;
  /// Hands the string out and becomes null.
  /// Fails: throws `_com_error` with E_POINTER when it is null already.
  BSTR Detach();
  /// Takes a string over.
  /// Owns: this object.
  void Attach(BSTR text);
  /// Copies a string in.
  void Assign(BSTR text);
  /// The string itself, writable and unshared; the object keeps it. The second is a place to receive one.
  BSTR& GetBSTR();
  /// Frees the string and gives the place to receive another.
  BSTR* GetAddress();

  /// Appends; null counts as empty.
  _bstr_t& operator+=(const _bstr_t& other);
  friend SPCBASE_API _bstr_t operator+(const _bstr_t& left, const _bstr_t& right);

  /// Character by character, unsigned; null comes before every other text, the empty one too.
  friend SPCBASE_API bool operator==(const _bstr_t& left, const _bstr_t& right) noexcept;
  friend SPCBASE_API bool operator==(const _bstr_t& left, const char* right);
  friend SPCBASE_API bool operator==(const _bstr_t& left, const char16_t* right) noexcept;
  friend SPCBASE_API std::strong_ordering operator<=>(const _bstr_t& left, const _bstr_t& right) noexcept;

 private:
  struct shared_text;
  BSTR wide() const noexcept;
  shared_text& own_text();

  std::shared_ptr<shared_text> text_;
};
