/// Schedules and repeats as texts: on which days and when something runs, and how often again within such a day.
///
/// Part of scheduling. Nothing here runs anything. A schedule is five fields in the manner of a cron line, parted by
/// blanks and tabs: minute, hour, day of the month, month, day of the week (0 is Sunday). What it can say:
///
///     "30 6 * * *"       every day at 06:30          "30 6 */2 * *"     every second day
///     "0 8 * * 1,3,5"    Mondays, Wednesdays and Fridays at 08:00
///     "0 8 15 1,7 *"     on 15 January and 15 July at 08:00
///     ""                 never by itself
///
/// Anything else of five fields is kept as it stands, as a customised schedule. A repeat is "INTERVAL UNIT END" with
/// "m", "h", "s" or "d" as unit; END is "2" for no end, "0 H M" until a time of day, "1 H M" for a length of time:
///
///     "10 m 0 17 30"     every 10 minutes until 17:30
///
///     schd::ScheduleStringInfo schedule;
///     schd::ScheduleStringInfo::parse_schedule_string("0 8 * * 1,3,5", schedule);
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

namespace schd {

/// A schedule.
class SPCBASE_API ScheduleStringInfo {
 public:
  /// What `type` may hold.
  enum Type : int { daily = 0, weekly = 1, monthly = 2, none = 3, customised = 4 };

  CString text;      ///< as last given to the parser
  int type = daily;  ///< one of `Type`
  int hour = 0;      ///< the second field, 0 to 23 when it means a time; not checked
  int minute = 0;    ///< the first field, not checked either
  /// Daily: the step in days. Weekly: bit n stands for day n, 0 (Sunday) to 6. Monthly: bit n for month n, 1 to 12.
  int value = 0;
  int day = 1;  ///< monthly: the day of the month, not checked

  /// A daily schedule with step 0 and no text.
  ScheduleStringInfo() = default;
  ScheduleStringInfo(const ScheduleStringInfo& other) { copy_object(other); }
  ScheduleStringInfo& operator=(const ScheduleStringInfo& other) {
    copy_object(other);
    return *this;
  }
  ~ScheduleStringInfo() = default;

  /// Fills `schedule` from a text; a null pointer reads as "". Fields that the text does not speak of stay.
  /// Numbers are read like `atoi`, so "5-7" is 5 and "x" is 0; only lists are held to digits.
  /// Kept:  an object whose type is `customised` already stays customised, however good the text is; only its text,
  ///        hour and minute are renewed.
  /// Kept:  a list of commas alone is a good and empty one; a day of the month may be anything, "*" is 0.
  /// Fails: `DBException` "invalid schedule string." when the text is not empty and has not 5 fields; `text` is set.
  static void parse_schedule_string(const char* text, ScheduleStringInfo& schedule);

  /// The text of the fields, in canonical form; of a customised schedule the text that was given.
  CString get_rep_str() const;

 private:
  void copy_object(const ScheduleStringInfo& other);
};

/// A repeat.
class SPCBASE_API RepeatStringInfo {
 public:
  /// What `unit` may hold.
  enum Unit : int { minutes = 0, hours = 1, seconds = 2, days = 3 };
  /// What `end_mode` may hold.
  enum EndMode : int { until_time = 0, for_length = 1, open = 2 };

  int interval = 10;    ///< how many units lie between two runs; not checked
  int unit = minutes;   ///< one of `Unit`; anything else counts as days
  int end_mode = open;  ///< one of `EndMode`; anything else counts as open but keeps its two numbers in the text
  int end_hour = 0;     ///< of the time of day, or the length, at which the repeats end
  int end_minute = 0;   ///< minutes of the same

  /// Every 10 minutes, without an end.
  RepeatStringInfo() = default;
  RepeatStringInfo(const RepeatStringInfo& other) { copy_object(other); }
  RepeatStringInfo& operator=(const RepeatStringInfo& other) {
    copy_object(other);
    return *this;
  }
  ~RepeatStringInfo() = default;

  /// Fills `repeat` from a text. An empty text, or a null pointer, leaves it as it is.
  /// Kept:  any unknown unit is days, and an end of three fields leaves hour and minute of the end as they were.
  /// Fails: `DBException` "Invalid repeat string." when the text has neither 3 nor 5 fields; `repeat` is unchanged.
  static void parse_repeat_string(const char* text, RepeatStringInfo& repeat);

  /// The text of the fields. An open end drops the two numbers of the end.
  CString get_rep_str() const;

 private:
  void copy_object(const RepeatStringInfo& other);
};

}  // namespace schd
