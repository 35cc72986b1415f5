/// Numbers as texts: the reader and the writers of the change-type calls. Internal.
/// The marks that part the digits are the caller's choice; everything else is by the rules of US English.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/number_marks.h"

namespace automation_detail {

/// An integer of any of the types: sign and magnitude.
struct whole_number {
  bool negative = false;
  std::uint64_t magnitude = 0;
};

/// A number as it stands in a text: digits times ten to the exponent, or the bits of a "&H" or "&O" number.
struct text_number {
  bool negative = false;
  bool is_bits = false;
  std::uint64_t bits = 0;
  /// Without leading zeros; empty for zero.
  std::string digits;
  long long exponent = 0;
};

/// Reads a number. White space may stand around it and between its signs and its digits; a sign before or behind, or
/// brackets, make it negative; one "$" may stand before it; group marks behind the first digit are passed over.
/// Fails: DISP_E_TYPEMISMATCH when the text is no number, DISP_E_OVERFLOW for more than 64 bits of "&H" or "&O".
HRESULT read_number(std::u16string_view text, const platform::NumberMarks& marks, text_number& number);

/// The nearest double; what is too small becomes zero.
/// Fails: DISP_E_OVERFLOW.
HRESULT to_double(const text_number& number, double& value);

/// The nearest integer of `number` times ten to the power of `scale`, halves to even.
/// Fails: DISP_E_OVERFLOW beyond 64 bits.
HRESULT to_whole(const text_number& number, int scale, whole_number& value);

/// The nearest integer, halves to even.
/// Fails: DISP_E_OVERFLOW beyond 64 bits or for what is no number.
HRESULT to_whole(double number, whole_number& value);

/// `value` divided by ten thousand, rounded to the nearest integer, halves to even.
whole_number currency_to_whole(std::int64_t value);

/// "12.5", "1E+15", "INF": the shortest form of at most `digits` significant digits; zero has no sign.
/// Shape of these texts: ASCII, with a point.
std::string real_text(double value, int digits);

/// "-1.5" from -15000.
std::string currency_text(std::int64_t value);

std::string whole_text(whole_number value);

}  // namespace automation_detail
