#include "spcbase/time/unit_words.h"

#include "spcbase/foundation/internal/raise.h"

CString GetDayStr() { return load_message(msg::unit_day); }
CString GetWeekStr() { return load_message(msg::unit_week); }
CString GetMonthStr() { return load_message(msg::unit_month); }
CString GetQuarterStr() { return load_message(msg::unit_quarter); }
CString GetYearStr() { return load_message(msg::unit_year); }
CString GetHourStr() { return load_message(msg::unit_hour); }
CString GetMinuteStr() { return load_message(msg::unit_minute); }
CString GetSecondStr() { return load_message(msg::unit_second); }

bool IsDayStr(const CString& word) { return word == GetDayStr(); }
bool IsWeekStr(const CString& word) { return word == GetWeekStr(); }
bool IsMonthStr(const CString& word) { return word == GetMonthStr(); }
bool IsQuarterStr(const CString& word) { return word == GetQuarterStr(); }
bool IsYearStr(const CString& word) { return word == GetYearStr(); }
bool IsHourStr(const CString& word) { return word == GetHourStr(); }
bool IsMinuteStr(const CString& word) { return word == GetMinuteStr(); }
bool IsSecondStr(const CString& word) { return word == GetSecondStr(); }
