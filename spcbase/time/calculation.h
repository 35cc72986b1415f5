/// Named periods and offsets: which moments "last quarter" or "the last five days" mean.
///
/// Part of time. A period is reckoned from the present moment, an offset from a moment that is given.
///
///     DateTimeCalculation calculation(2);                     // weeks start on Monday
///     COleDateTime start, end;
///     calculation.GetLastWeek(start, end);
///     COleDateTime five_days_back = calculation.GetLastNDay(end, 5);
///
/// The zone enters at one point: where the present is read. With `use_utc` set, today is the UTC date that contains the
/// present; with it clear, the date on the local clock. The boundaries are then reckoned on those calendar fields and
/// never converted back, so a change to or from daylight saving time makes no day longer or shorter: a day is 00:00:00
/// to 23:59:59 of its date. In the hour that a change back repeats, the present in UTC is read with the daylight
/// offset.
///
/// Nothing here throws. A present that the platform cannot express, or fields that are no date of the years 100 to
/// 9999, show as status `invalid` of the results.
#pragma once

#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/export.h"

/// The two settings of a calculation, and the calculations.
class SPCBASE_API DateTimeCalculation {
 public:
  /// The two settings, as they are given.
  explicit DateTimeCalculation(int first_day = 1, bool utc = false) noexcept
      : first_day_of_week(first_day), use_utc(utc) {}

  /// The day on which a week starts: 1 is Sunday, 2 Monday, up to 7, Saturday. Not checked.
  int first_day_of_week;
  /// Whether the present is expressed in UTC and not in local time.
  bool use_utc;

  /// A period of the present.
  /// Kept: it is a period to date, from its first day at 00:00:00 to today at 23:59:59, and not to its own end.
  void GetToday(COleDateTime& start, COleDateTime& end) const;
  void GetThisWeek(COleDateTime& start, COleDateTime& end) const;
  void GetThisMonth(COleDateTime& start, COleDateTime& end) const;
  void GetThisQuarter(COleDateTime& start, COleDateTime& end) const;
  void GetThisYear(COleDateTime& start, COleDateTime& end) const;

  /// The whole period before the present one, from its first day at 00:00:00 to its last at 23:59:59.
  void GetYesterday(COleDateTime& start, COleDateTime& end) const;
  void GetLastWeek(COleDateTime& start, COleDateTime& end) const;
  void GetLastMonth(COleDateTime& start, COleDateTime& end) const;
  void GetLastQuarter(COleDateTime& start, COleDateTime& end) const;
  void GetLastYear(COleDateTime& start, COleDateTime& end) const;

  // An offset reads no present and does not look at `use_utc`. The members change nothing either; that they are not
  // const belongs to their signatures.

  /// The reference's date at 00:00:00, less `count` days; a negative count moves on. The status is always valid.
  COleDateTime GetLastNDay(const COleDateTime& reference, int count);
  /// The first day of the week `count` weeks before the reference's week; a negative count moves on. The status is
  /// always valid.
  /// Kept:    the reference's time of day stays in the result, unlike in every other offset to a date.
  COleDateTime GetLastNWeek(const COleDateTime& reference, int count);
  /// The first day, at 00:00:00, of the month `count` months before the reference's. A count below 0 counts as 0.
  COleDateTime GetLastNMonth(const COleDateTime& reference, int count);
  /// The first day, at 00:00:00, of the quarter `count` quarters before the reference's. A count below 0 counts as 0.
  COleDateTime GetLastNQuarter(const COleDateTime& reference, int count);
  /// 1 January, 00:00:00, of the reference's year less `count`; a negative count moves on.
  COleDateTime GetLastNYear(const COleDateTime& reference, int count);

  /// The reference less `count` hours, minutes or seconds as fractions of a day; a negative count moves on. The status
  /// is always valid.
  /// Kept:    this counts on the clock's face, so across a change of daylight saving time the time that passed differs
  ///          by the size of the change.
  COleDateTime GetLastNHour(const COleDateTime& reference, int count);
  COleDateTime GetLastNMinute(const COleDateTime& reference, int count);
  COleDateTime GetLastNSecond(const COleDateTime& reference, int count);
};
