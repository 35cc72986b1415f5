/// Date-time ranges: a period that a user chose, and the two moments that it meant when it was last reckoned.
///
/// Part of time.
///
///     DateTimeRange range;
///     if (range.parse("last 5 day")) range.Recalculate(DateTimeCalculation(2));
///     CString shown = range.get_display_string("Created");       // "Created = last 5 day"
///
/// A range has two stored forms, both neutral, and two readable ones:
///
/// | form         | function             | language          | keeps                                     |
/// |--------------|----------------------|-------------------|-------------------------------------------|
/// | one line     | `to_string`, `parse` | neutral           | the choice; of a fixed range the moments  |
/// | XML          | `get_xml`, `set_xml` | neutral           | everything, moments as day numbers        |
/// | display text | `get_display_string` | message table     | dates in the user's locale                |
/// | log text     | `get_log_str`        | English           | dates in American English                 |
///
/// Kept: two words differ between line and XML, and neither takes the other's: a fixed range is "fixed_range" in a line
///       and "user_defined" in XML, all data are "all_data" and "all".
#pragma once

#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/platform/xml/dom.h"
#include "spcbase/time/calculation.h"

/// A range.
class SPCBASE_API DateTimeRange {
 public:
  /// What was chosen. The numbers are fixed.
  enum RangeType : int {
    fixed_range = 0,
    today = 1,
    this_week = 2,
    this_month = 3,
    this_quarter = 4,
    this_year = 5,
    last_units = 6,  ///< `count` units of `time_unit` back from the present
    no_initial_data = 7,
    all_data = 8,
    yesterday = 9,
    last_week = 10,
    last_month = 11,
    last_quarter = 12,
    last_year = 13
  };
  /// The units of `last_units`. The numbers are fixed.
  enum RangeUnit : int { day = 0, week = 1, month = 2, quarter = 3, hour = 4, minute = 5, second = 6, year = 7 };

  COleDateTime from;           ///< local time (or UTC, as the calculation was set), included; null at first
  COleDateTime to;             ///< likewise
  RangeType type = this_week;  ///< which of the periods
  int count = 1;               ///< how many units; means something for `last_units` alone
  RangeUnit time_unit = week;  ///< the unit of `last_units`

  /// This week, not yet reckoned.
  DateTimeRange();
  DateTimeRange(const DateTimeRange& other) { copy_object(other); }
  DateTimeRange& operator=(const DateTimeRange& other) {
    copy_object(other);
    return *this;
  }
  ~DateTimeRange() = default;

  /// Reckons the moments anew, from the present and the settings of `calculation`.
  /// A fixed range keeps its moments; for all data and no initial data they become null and keep their numbers. The
  /// last `count` days, weeks, months, quarters and years begin so many whole units before the present one and end
  /// today at 23:59:59; hours, minutes and seconds end at the present moment.
  /// Kept:    the last weeks begin at 23:59:59 on the first day of their first week, since `GetLastNWeek` keeps the
  ///          time of day. A unit outside the table leaves `from` and sets `to`.
  /// Returns false, and changes nothing, for a type outside the table. A present that cannot be read shows as status
  ///          invalid of the moments.
  bool Recalculate(const DateTimeCalculation& calculation);
  /// Reckons them as `Recalculate` would have done at another moment: to show what a choice means on a day to come, or
  /// what it meant on a past one.
  /// `now` is local time, to the second, and a calculation in UTC converts it. One that is not valid shows as status
  /// invalid of the moments.
  bool recalculate_at(const DateTimeCalculation& calculation, const COleDateTime& now);

  /// Reads a line: one of the twelve keywords, "fixed_range MOMENT MOMENT", or "last NUMBER UNIT". Words are parted by
  /// blanks; what follows the end of a line is passed over. A moment is a date as the user writes it, each '#' a blank.
  /// The number is read like `atoi`; the unit in any case of letters. A named period is not reckoned.
  /// Returns false, with the range as it was, for everything else.
  bool parse(const CString& line);
  /// The line. Empty for a type outside the table; a unit outside it leaves its word out.
  CString to_string() const;

  /// The choice in the words of the message table, behind "NAME = " unless the name is empty. Empty for a type outside
  /// the table.
  CString get_display_string(const CString& name) const;
  /// The choice in English for logs. Empty for a type outside the table.
  CString get_log_str() const;

  /// A new element of `document` with the name `tag` and the children "type", "count", "time_unit", "from" and "to",
  /// always all of them; it stands nowhere yet.
  /// Fails: `_com_error` with E_POINTER for a null document, else with the code of the document model.
  _com_ptr_t<IXMLDOMElement> get_xml(_com_ptr_t<IXMLDOMDocument>& document, const CString& tag) const;
  /// Sets the fields from the children of an element, read by the child walk. What has no child keeps what it held; a
  /// word that is none is this week, or the unit week; the moments become valid.
  /// Fails: `_com_error` with E_POINTER for a null element; `DBException` "XML error." where a child has children
  ///        but no text.
  void set_xml(const _com_ptr_t<IXMLDOMElement>& element);

  /// The XML words. A value outside its table gives "this_week" and "week"; a word that is none, case counts, gives
  /// `this_week` and `week`.
  static CString get_range_type_eng_str(RangeType type);
  static RangeType get_range_type(const CString& word);
  static CString get_unit_eng_str(RangeUnit unit);
  static RangeUnit get_unit(const CString& word);

 private:
  void copy_object(const DateTimeRange& other);
};

/// Equality of the choice: of type, of the moments of a fixed range to the second, of count and unit of `last_units`.
/// The moments of a named period take no part.
SPCBASE_API bool operator==(const DateTimeRange& left, const DateTimeRange& right);
