/// Texts of tables between the neutral form, in which they are stored, and the form of the user's locale.
///
/// Part of the companions: a product has table helpers of its own. What stands here is the default, made to be
/// replaced: when a program, or a library linked in front of this one, defines one of these functions itself, the
/// library calls that.
///
///     namespace TableHelpers {
///     CString ParseToLocale(const CString& text) { return my_tables::shown(text); }
///     }
///
/// The default takes a text cell by cell, as a table travels: tabs and line ends part cells. A cell that is one number,
/// with nothing but spaces around it, has its decimal mark changed; every other cell stays as it is, and so do the
/// spaces. A number is an optional sign, digits with at most one decimal mark among them, and an optional exponent.
///
///     locale with a decimal comma:   "1.5\tpart 1.5\t-2e3"  <->  "1,5\tpart 1.5\t-2e3"
///
/// The current locale is the one of `localeconv`. Under the locale "C" a text comes back as it is.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

namespace TableHelpers {

/// Neutral text for the user: the decimal points of numbers become the locale's mark. No group marks are put in.
SPCBASE_API CString ParseToLocale(const CString& text);

/// The user's text in the neutral form: the locale's decimal marks become points, and group marks go where they part
/// groups of three digits. What is no number by the locale stays, so a neutral number passes unchanged unless it reads
/// as one with group marks ("1.234" is 1234 where the point parts thousands).
/// Shape:  `kind` says what the text is: the library passes 0, a plain text, and the default does not look at it.
SPCBASE_API CString ParseTextBuffer(int kind, const CString& text);

}  // namespace TableHelpers
