/// The words for units of time, in the language of the message table (messages.h).
///
/// Part of time. `Get...Str` gives the word: "Day" in English. `Is...Str` tells whether a text is exactly that word;
/// case matters.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// The word for a unit, from the message table.
SPCBASE_API CString GetDayStr();
SPCBASE_API CString GetWeekStr();
SPCBASE_API CString GetMonthStr();
SPCBASE_API CString GetQuarterStr();
SPCBASE_API CString GetYearStr();
SPCBASE_API CString GetHourStr();
SPCBASE_API CString GetMinuteStr();
SPCBASE_API CString GetSecondStr();

/// Whether a text is that word, in any case of letters.
SPCBASE_API bool IsDayStr(const CString& word);
SPCBASE_API bool IsWeekStr(const CString& word);
SPCBASE_API bool IsMonthStr(const CString& word);
SPCBASE_API bool IsQuarterStr(const CString& word);
SPCBASE_API bool IsYearStr(const CString& word);
SPCBASE_API bool IsHourStr(const CString& word);
SPCBASE_API bool IsMinuteStr(const CString& word);
SPCBASE_API bool IsSecondStr(const CString& word);
