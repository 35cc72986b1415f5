/// What is stored for a schedule: its two texts and the window in which they hold, as XML too.
///
/// Part of scheduling.
///
///     schd::ScheduleInfo daily;                                  // every day at 8, from now on
///     IXMLDOMElementPtr element = daily.get_xml(1, document);    // the caller puts it in its place
///
/// The element, all four children always in this order:
///
///     <schedule_info>
///       <schedule_string>0 8 * * *</schedule_string>
///       <start_date>45293.5</start_date>           a variant time in UTC, as `double_to_eng` writes it
///       <end_date/>                                no date
///       <repeat_string/>
///     </schedule_info>
#pragma once

#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/utility/xml.h"

namespace schd {

/// A stored schedule. Nothing here looks into the two texts; see strings.h.
class SPCBASE_API ScheduleInfo : public XMLSerializable {
 public:
  CString schedule_string;  ///< a schedule, "0 8 * * *" at first
  _variant_t start_date;    ///< local time as a variant time; at first the present. Empty: no date
  _variant_t end_date;      ///< likewise; at first empty
  CString repeat_string;    ///< a repeat; empty: none

  ScheduleInfo();
  ScheduleInfo(const ScheduleInfo& other);
  ScheduleInfo& operator=(const ScheduleInfo& other);
  ~ScheduleInfo() override;

  /// Equality of texts, with regard to case, and of dates, whatever the type of their variants. An empty date equals
  /// only an empty one; two that cannot be converted are equal.
  bool operator==(const ScheduleInfo& other) const;

  /// A new element "schedule_info" of `document`, which stands nowhere yet. There is one format, whatever the version.
  /// A date is written in UTC; one that the zone cannot convert as it stands.
  /// Fails: `_com_error` with E_POINTER for a null document, else with the code of the document model.
  _com_ptr_t<IXMLDOMElement> get_xml(int version, _com_ptr_t<IXMLDOMDocument>& document) const override;

  /// Sets the fields from the children of an element, read by the child walk; its own name does not matter. What has no
  /// child keeps what it held. Dates lose what is below a second.
  /// Fails: `_com_error` with E_POINTER for a null element; `DBException` "XML error." where a child has children
  ///        but no text. Fields that were read before keep their new values.
  void set_xml(int version, const _com_ptr_t<IXMLDOMElement>& element) override;

 private:
  void copy_object(const ScheduleInfo& other);
};

}  // namespace schd
