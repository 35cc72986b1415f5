/// Texts that do not show what they say: bytes as hexadecimal digits, and a text mixed with a key and written as
/// letters.
///
/// Part of utilities.
///
///     const CString stored = encode_str("Pass word 1", "3337");
///     const CString clear = decode_str(stored, "3337");
///
/// This is no protection against anybody who has the text and this library, or knows a part of what is hidden: it only
/// keeps a password from being read over a shoulder. It stays so that stored texts can be read.
/// Format: docs/formats/protected_texts.md.
/// Memory of the library's own that held a secret is wiped; arguments and results are the caller's.
/// Fails:  no data are refused. A result beyond 2 GB is a `CMemoryException*`, before memory is asked for.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// Bytes as hexadecimal digits: two for each byte, the high one first, "0" to "9" and "A" to "F".
/// `count` is the number of bytes; a negative one counts them up to the first zero byte.
/// Null:   null bytes give an empty text.
SPCBASE_API CString ConvertToASCII(const char* bytes, int count);

/// Hexadecimal digits as bytes: each two of them, the high one first, are one byte. An odd last character is passed
/// over.
/// `length` is the length of the text; a negative one counts up to the first zero byte. `output` must have room for
/// half of it; no zero is put behind the bytes.
/// Null:   a null text or output does nothing.
/// Kept:   every character but "0" to "9" and "A" to "F" counts as 0, lower-case letters among them.
SPCBASE_API void ConvertFromASCII(const char* text, int length, char* output);

/// Hides a text: white space (space, tab, line feed, vertical tab, form feed, carriage return) at its right end is cut,
/// its bytes are mixed with the key and written as letters, two for each byte.
/// Null:   a null key means the library's own one. An empty key leaves the bytes as they are.
SPCBASE_API CString encode_str(const CString& text, const char* key);

/// Reads what `encode_str` wrote with the same key. The result may hold zero bytes.
/// White space at the right end of the text is passed over, and so is an odd last letter.
/// Null:   a null key means the library's own one.
/// Kept:   a text with any character that `encode_str` does not write gives an empty text.
SPCBASE_API CString decode_str(const CString& text, const char* key);
