/// CSystemTime: a moment on its way between the date types of the database, the automation layer and the system.
///
/// Part of time; not for hosts. Made on the stack as a converter:
///
///     CSystemTime moment;
///     moment.FromTimestamp(&row.CTIME);
///     COleDateTime date;
///     moment.ToOleDateTime(&date);
///
/// The conversions report by field values and status; only `ToTime` raises.
#pragma once

#include "spcbase/platform/datetime/ctime.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/datetime/system_time.h"
#include "spcbase/platform/datetime/timestamp.h"

/// The eight fields of a system time behind virtual operations, whose order is fixed.
class CSystemTime final : public _SYSTEMTIME {
 public:
  /// All fields are zero.
  CSystemTime() noexcept : _SYSTEMTIME{} {}
  CSystemTime(const CSystemTime& other) noexcept = default;
  virtual ~CSystemTime();

  /// Makes all fields zero.
  virtual void Clear();
  /// -1, 0 or 1 by year, month, day, hour, minute, second, milliseconds; the day of the week takes no part.
  virtual int Compare(const CSystemTime& other) const;

  /// A null pointer clears in all of the following.
  /// Kept: the fraction counts as hundredths of a second here, so milliseconds are the low 16 bits of ten times the
  ///       fraction, the reverse of `ToTimestamp`; and January and February have a weekday of their own reckoning.
  virtual void FromTimestamp(const tagTIMESTAMP_STRUCT* timestamp);
  /// Zero fields when the file time cannot be split.
  virtual void FromFileTime(const FILETIME* file_time);
  virtual void FromSystemTime(const _SYSTEMTIME* system_time);
  /// Zero fields when the status is not valid. A valid value that cannot be split gives 0xFFFF in the fields and 0xFFFE
  /// as day of week.
  virtual void FromOleDateTime(const COleDateTime& moment);
  /// In local time. Outside the platform's years: date 0, everything else 0xFFFF, milliseconds 0.
  virtual void FromTime(const CTime& moment);
  virtual void FromFileTimeRef(const FILETIME& file_time);
  virtual void FromSystemTimeObject(const CSystemTime* other);

  /// A null pointer does nothing.
  /// Kept: the fraction is a tenth of the milliseconds, not billionths of a second.
  virtual void ToTimestamp(tagTIMESTAMP_STRUCT* timestamp) const;
  /// The moment of these local fields.
  /// Fails: CNotSupportedException* for a year below 1970, a field out of its range, or a time that does not exist.
  virtual void ToTime(CTime* moment) const;
  /// To the second. The status is valid only when the value gives the same six fields back, else invalid.
  virtual void ToOleDateTime(COleDateTime* moment) const;

  /// The present in UTC, with milliseconds.
  virtual void SetNow();
  /// Does nothing; a place in the table of operations.
  virtual int Reserved();

  virtual CSystemTime& operator=(const COleDateTime& moment);
  virtual CSystemTime& operator=(const CTime& moment);
  virtual CSystemTime& operator=(const FILETIME* file_time);
  virtual CSystemTime& operator=(const CSystemTime& other);
  virtual bool operator==(const CSystemTime& other) const;
  virtual bool operator>(const CSystemTime& other) const;
  virtual bool operator<(const CSystemTime& other) const;
};
