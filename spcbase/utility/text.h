/// Words, numbers, hexadecimal, names, command-line parameters and identifiers.
///
/// Part of the utilities. A neutral number text has a point as decimal mark whatever the user's locale is; that is the
/// form in which numbers are stored. The current locale is the process's own (`setlocale`, `localeconv`): these
/// functions ask it and never change it.
///
///     CString stored = double_to_eng(1.5);                // "1.5", in every locale
///     double value = eng_to_double(stored);
///     eng_to_i18n(stored);                                // now "1,5" where the comma is the decimal mark
///
/// Texts are UTF-8, and multi-byte characters stay whole. A `CString` ends for these functions at its first zero byte,
/// where nothing else is said.
/// Threads: every function may run in several threads at once, as long as none changes the locale meanwhile.
#pragma once

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/variant.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/guid.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

// Words. They are parted by white space of any language; a no-break space belongs to its word.

/// The first word of a text; empty when there is none.
SPCBASE_API CString GetFirstWord(const CString& text);

/// Takes the first word away, with the white space before and after it. Nothing left: the text becomes empty.
SPCBASE_API void RemoveFirstWord(CString& text);

/// Puts a blank in the place of every white-space byte of ASCII, behind zero bytes too; the length stays.
/// Kept:   nothing is removed, whatever the name says.
SPCBASE_API void RemoveWhiteSpace(CString& text);

// Numbers.

/// Whether a text is a number by the current locale, as `VariantChangeType` reads it: group marks, signs on either
/// side, brackets and "&H" numbers too. `value` is set only when it is one.
/// Null:   a null or empty text is none.
SPCBASE_API bool IsNumericString(const char* text, double& value);

/// Whether a text consists of the digits 0 to 9; a sign is refused.
/// `value`, when not null, becomes 0 at first and then the number. A number beyond `int` counts as digits and gives the
/// largest `int`.
/// Null:   a null or empty text has no digits.
SPCBASE_API bool is_int_str(const char* text, int* value);

/// The neutral text of a number, with 20 decimal places less the zeros at its end: "1.5", "2.0", "-0.0".
/// Every double whose fraction 20 places can hold comes back the same from `eng_to_double`. Tiny ones become "0.0".
/// What is no finite number gives "inf", "-inf", "nan" or "-nan".
SPCBASE_API CString double_to_eng(double value);

/// The number that a neutral text begins with, as `atof` reads it; 0 when there is none. A number that is too large is
/// infinite.
/// Null:   0.
SPCBASE_API double eng_to_double(const char* text);

/// The neutral text of a value, by its type:
///
///     empty                        an empty text
///     float, double                `double_to_eng`
///     integers up to 32 bits       decimal
///     text of digits alone         decimal, leading zeros gone
///     text that is a number        by the current locale, as `IsNumericString` says: `double_to_eng`
///     any other text               as it is, zero bytes too
///     anything else                as `VariantChangeType` makes a text of it, by the current locale
///
/// References to a VARIANT are followed; a reference to anything else counts as anything else.
/// Kept:   a text of digits beyond `int` gives the largest `int`.
/// Fails:  `_com_error`: E_INVALIDARG for a null pointer, a null reference or references that run in a circle;
///         DISP_E_OVERFLOW for an unsigned integer beyond 32 signed bits; the code of a conversion that fails.
SPCBASE_API CString variant_to_eng(const VARIANT* value);

/// Neutral text becomes text of the user's locale, by `TableHelpers::ParseToLocale`. Returns the argument.
SPCBASE_API CString& eng_to_i18n(CString& text);
/// Text of the user's locale becomes neutral, by `TableHelpers::ParseTextBuffer`. Returns the argument.
SPCBASE_API CString& i18n_to_eng(CString& text);

// Hexadecimal text of an alphabet of its own: 0 to 9 and K to P, so the byte 0xAB is "KL".

/// Two characters for each byte, high half first.
/// Null:   a count of 0 or less gives an empty text.
/// Fails:  `DBException` "Invalid argument." for null bytes that count; `CMemoryException*` when the text would be
///         longer than a CString can be.
SPCBASE_API CString byte_to_hex_text(const BYTE* bytes, int count);

/// The bytes of such a text, half as many as `length_chars`, rounded down. The text must have so many characters; what
/// is not of the alphabet gives some byte or other.
/// Owns:   the caller releases the array with `delete[]`; it is never null.
/// Fails:  `DBException` "Invalid argument." for a length below -1, or for a null text that counts.
SPCBASE_API BYTE* hex_text_to_byte(const char* text, int length_chars);

// Names.

/// A name without what cannot be shown: control and format characters, ill-formed bytes. With `keep_line_ends` carriage
/// returns and line feeds stay.
SPCBASE_API CString fix_spc_name(const CString& name, bool keep_line_ends);

// Command-line parameters.

/// Takes the next parameter of a command line. A parameter that opens with a double or single quote runs to the next
/// one of its kind or the end, quotes left out; any other runs to the next white space of ASCII.
/// Shape:  `parameter` must not hold the command line itself.
/// Null:   `parameter` becomes empty, and null comes back.
/// Returns where to go on. At the end that is the terminating zero, and `parameter` is empty; so it is for "" alone.
SPCBASE_API const char* GetNextParm(const char* command_line, CString& parameter);

/// The reason that a command line passes in a file: the content of the file named behind "/n" or "/N". The first name
/// that is not empty counts. The file is deleted, so a reason is read once. No name gives an empty text.
/// Null:   an empty text.
/// Fails:  as `FileToText` (files.h): `CFileException*` when the file cannot be opened or read.
SPCBASE_API CString get_reason_param(const char* command_line);

// Identifiers.

/// "{00020400-0000-0000-C000-000000000046}".
/// Fails:  `_com_error` E_OUTOFMEMORY.
SPCBASE_API _bstr_t get_iid_string(const GUID& id);

/// A new identifier, "00020400-0000-4000-8000-000000000046"; empty when it could not be made into a text.
SPCBASE_API CString create_uuid_str();
