/// CString: the text type of the interfaces.
///
/// Part of the platform layer. A CString holds UTF-8; every length, index and count is in bytes. Operations that look
/// at single characters (case, sets of characters, reversal) treat a multi-byte character as one.
///
///     CString name("Line 4");
///     name += ", shift A";
///     CString head = name.Left(name.Find(','));
///
/// Differs: the text is owned, not shared between copies; a null `const char*` reads as an empty text everywhere;
/// comparison looks at all bytes, also behind a zero; `Collate` uses the root order of Unicode. A CString is not a
/// pointer: pass `GetString()` through `...`.
#pragma once

#include <compare>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "spcbase/platform/system/exceptions.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// A text.
/// Fails:  an index or count that has no meaning raises E_INVALIDARG by `AtlThrow`, so a `CNotSupportedException*`; a
/// text beyond
///         2 GB is a `CMemoryException*`.
class SPCBASE_API CString {
 public:
  /// An empty text.
  CString() noexcept = default;
  CString(const CString& other) : text_(other.text_), assigned_(true) {}
  CString(CString&& other) noexcept : text_(std::move(other.text_)), assigned_(true) { other.make_empty(); }
  /// A copy of a text; null gives an empty one.
  CString(const char* text) : text_(text ? text : ""), assigned_(true) { check_size(); }
  /// `count` times the byte `c`; below 1 gives an empty text.
  explicit CString(char c, int count = 1)
      : text_(count > 0 ? static_cast<std::size_t>(count) : 0U, c), assigned_(true) {}
  /// The first `length` bytes of a buffer, zeros included.
  CString(const char* text, int length);
  /// A copy of the text.
  explicit CString(std::string_view text) : text_(text), assigned_(true) { check_size(); }
  explicit CString(std::string&& text) : text_(std::move(text)), assigned_(true) { check_size(); }
  explicit CString(const std::string& text) : text_(text), assigned_(true) { check_size(); }
  ~CString() = default;

  /// Takes the text.
  CString& operator=(const CString& other) { return assign(other.view()); }
  CString& operator=(CString&& other) noexcept {
    if (this != &other) {
      text_ = std::move(other.text_);
      other.make_empty();
    }
    assigned_ = true;
    return *this;
  }
  CString& operator=(const char* text) { return assign(text ? std::string_view(text) : std::string_view()); }
  CString& operator=(char c) {
    text_.assign(1, c);
    assigned_ = true;
    return *this;
  }
  CString& operator=(std::string_view text) { return assign(text); }
  CString& operator=(const std::string& text) { return assign(text); }

  /// Sets the text to a copy of a text, or of the first `length` bytes of a buffer.
  void SetString(const char* text) { *this = text; }
  void SetString(const char* text, int length);
  /// Sets the text to a copy; it may lie in this CString. Returns this.
  CString& assign(std::string_view text) {
    text_.assign(text);
    assigned_ = true;
    check_size();
    return *this;
  }

  /// The length in bytes.
  int GetLength() const noexcept { return static_cast<int>(text_.size()); }
  /// Whether there are none.
  bool IsEmpty() const noexcept { return text_.empty(); }
  /// Makes the text empty.
  void Empty() noexcept { make_empty(); }
  /// The byte at an index from 0 to the length; there it is the terminating zero.
  char GetAt(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) > text_.size()) AtlThrow(E_INVALIDARG);
    return text_.c_str()[index];
  }
  char operator[](int index) const { return GetAt(index); }
  /// Replaces the byte at an index below the length.
  void SetAt(int index, char c);

  /// The text with a terminating zero, valid until this changes. Never null.
  operator const char*() const noexcept { return text_.c_str(); }
  const char* GetString() const noexcept { return text_.c_str(); }
  /// The bytes of the text, valid until this changes.
  std::string_view view() const noexcept { return text_; }

  /// Adds a text at the end.
  CString& operator+=(const CString& other) { return append(other.view()); }
  CString& operator+=(const char* text) { return append(text ? std::string_view(text) : std::string_view()); }
  CString& operator+=(char c) {
    text_.push_back(c);
    assigned_ = true;
    check_size();
    return *this;
  }
  CString& operator+=(std::string_view text) { return append(text); }
  void Append(const CString& other) { append(other.view()); }
  void Append(const char* text) { *this += text; }
  void Append(const char* text, int length);
  void AppendChar(char c) { *this += c; }
  /// Adds a text at the end; it may lie in this CString. Returns this.
  CString& append(std::string_view text) {
    text_.append(text);
    assigned_ = true;
    check_size();
    return *this;
  }

  friend CString operator+(const CString& a, const CString& b) { return joined(a.view(), b.view()); }
  friend CString operator+(const CString& a, const char* b) { return joined(a.view(), safe_view(b)); }
  friend CString operator+(const char* a, const CString& b) { return joined(safe_view(a), b.view()); }
  friend CString operator+(const CString& a, char b) { return joined(a.view(), std::string_view(&b, 1)); }
  friend CString operator+(char a, const CString& b) { return joined(std::string_view(&a, 1), b.view()); }

  friend bool operator==(const CString& a, const CString& b) noexcept { return a.text_ == b.text_; }
  friend bool operator==(const CString& a, const char* b) noexcept { return a.view() == safe_view(b); }
  friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept {
    return a.view().compare(b.view()) <=> 0;
  }
  friend std::strong_ordering operator<=>(const CString& a, const char* b) noexcept {
    return a.view().compare(safe_view(b)) <=> 0;
  }

  /// Compares byte by byte. Returns -1, 0 or 1.
  int Compare(const char* other) const noexcept { return sign(view().compare(safe_view(other))); }
  /// Compares without regard to case, by Unicode. Returns -1, 0 or 1.
  int CompareNoCase(const char* other) const noexcept;
  /// Compares in dictionary order. Returns -1, 0 or 1.
  int Collate(const char* other) const;
  int CollateNoCase(const char* other) const;

  /// A part of the text. A negative `first` or `count` counts as 0; what lies beyond the end is cut off.
  CString Mid(int first) const { return Mid(first, GetLength()); }
  CString Mid(int first, int count) const;
  CString Left(int count) const { return Mid(0, count); }
  CString Right(int count) const;
  /// The longest beginning that holds only (or none of) the characters of a set.
  CString SpanIncluding(const char* set) const;
  CString SpanExcluding(const char* set) const;

  /// The index of the first occurrence at or after `start`, or -1. A `start` outside the text gives -1.
  int Find(char c, int start = 0) const noexcept;
  int Find(const char* text, int start = 0) const noexcept;
  /// The index of the last occurrence, or -1.
  int ReverseFind(char c) const noexcept;
  /// The index of the first character that is one of a set, or -1.
  int FindOneOf(const char* set) const noexcept;

  /// Replaces every occurrence. Returns their number; an empty `old_text` has none.
  int Replace(char old_char, char new_char);
  int Replace(const char* old_text, const char* new_text);
  /// Takes every occurrence out. Returns their number.
  int Remove(char c);
  /// Puts a text before an index; a negative index counts as 0, one beyond the end as the end. Returns the new length.
  int Insert(int index, char c);
  int Insert(int index, const char* text);
  /// Takes `count` bytes out from an index on. Negative numbers count as 0. Returns the new length.
  int Delete(int index, int count = 1);
  /// Cuts the text to `length` bytes; a length not below the present one changes nothing.
  void Truncate(int length);

  /// Takes white space (space, tab, line feed, vertical tab, form feed, carriage return) off one end or both.
  CString& Trim() { return TrimRight().TrimLeft(); }
  CString& TrimLeft();
  CString& TrimRight();
  /// Takes a character, or the characters of a set, off one end or both.
  CString& Trim(char c) { return TrimRight(c).TrimLeft(c); }
  CString& TrimLeft(char c);
  CString& TrimRight(char c);
  CString& Trim(const char* set) { return TrimRight(set).TrimLeft(set); }
  CString& TrimLeft(const char* set);
  CString& TrimRight(const char* set);

  /// Turns every letter into its capital, or into its small letter.
  CString& MakeUpper();
  CString& MakeLower();
  /// Turns the order of the characters round.
  CString& MakeReverse();

  /// The next piece of the text between separators.
  /// `separators` is a set of characters; `start` says where to look and is moved behind the piece and its separator.
  /// Leading separators are passed over. No further piece: an empty text, and `start` is -1.
  CString Tokenize(const char* separators, int& start) const;

  /// Sets the text by the rules of `printf`; arguments may lie in this CString. A null format raises E_INVALIDARG.
  void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void FormatV(const char* format, va_list arguments) __attribute__((format(printf, 2, 0)));
  void AppendFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void AppendFormatV(const char* format, va_list arguments) __attribute__((format(printf, 2, 0)));

  /// A buffer to write to: at least `min_length` bytes and a zero. Until `ReleaseBuffer` no other operation may be
  /// used.
  char* GetBuffer(int min_length);
  char* GetBuffer() { return GetBuffer(GetLength()); }
  /// A buffer of exactly `length` bytes; the text has that length at once.
  char* GetBufferSetLength(int length);
  /// Ends the use of a buffer. The text has `length` bytes, or ends at the first zero when it is -1.
  void ReleaseBuffer(int length = -1);
  void ReleaseBufferSetLength(int length) { ReleaseBuffer(length < 0 ? 0 : length); }
  /// Makes room for `length` bytes; the text stays.
  void Preallocate(int length);
  /// Gives room that is not needed back.
  void FreeExtra();

  /// Loads a text by number from the calling thread's current source (or the given one).
  /// FALSE when there is none; the text stays as it was.
  BOOL LoadString(UINT id);
  BOOL LoadString(HINSTANCE source, UINT id);

 private:
  friend struct CStringAssignment;

  static std::string_view safe_view(const char* text) noexcept {
    return text ? std::string_view(text) : std::string_view();
  }
  static int sign(int value) noexcept { return (value > 0) - (value < 0); }
  static CString joined(std::string_view a, std::string_view b);
  void check_size() const {
    if (text_.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) AtlThrow(E_OUTOFMEMORY);
  }
  void make_empty() noexcept {
    text_.clear();
    assigned_ = true;
  }

  std::string text_;
  bool assigned_ = false;
};

/// Whether a text was set since it was last cleared here, to an empty or equal text too. The database exchange tells
/// "set to empty" from "never set" by it: a new CString is not set, one that was given a text, or is a copy, is.
struct CStringAssignment {
  /// Makes the text empty and not set.
  static void clear(CString& text) noexcept {
    text.text_.clear();
    text.assigned_ = false;
  }
  /// Marks the text as not set and leaves it as it is.
  static void forget(CString& text) noexcept { text.assigned_ = false; }
  /// Whether the text is set.
  static bool test(const CString& text) noexcept { return text.assigned_; }
};

template <>
struct std::hash<CString> {
  std::size_t operator()(const CString& text) const noexcept { return std::hash<std::string_view>()(text.view()); }
};
