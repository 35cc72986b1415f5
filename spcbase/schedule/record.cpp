#include "spcbase/schedule/record.h"

#include "spcbase/platform/automation/var_date.h"
#include "spcbase/time/calendar.h"
#include "spcbase/utility/internal/xml_elements.h"
#include "spcbase/utility/text.h"

namespace schd {
namespace {

bool is_empty(const _variant_t& date) { return date.vt == VT_EMPTY; }

bool equal_dates(const _variant_t& left, const _variant_t& right) {
  if (is_empty(left) || is_empty(right)) return is_empty(left) && is_empty(right);
  return to_ole_datetime(left) == to_ole_datetime(right);
}

CString date_text(const _variant_t& date) {
  if (is_empty(date)) return {};
  COleDateTime moment = to_ole_datetime(date);
  to_utc(moment);
  return double_to_eng(moment);
}

_variant_t date_from(const CString& text) {
  if (text.IsEmpty()) return {};
  COleDateTime moment(eng_to_double(text));
  to_local(moment);
  return {static_cast<double>(moment)};
}

}  // namespace

ScheduleInfo::ScheduleInfo()
    : schedule_string("0 8 * * *"), start_date(static_cast<double>(COleDateTime::GetCurrentTime())) {}
ScheduleInfo::ScheduleInfo(const ScheduleInfo& other) : XMLSerializable(other) { copy_object(other); }
ScheduleInfo& ScheduleInfo::operator=(const ScheduleInfo& other) {
  copy_object(other);
  return *this;
}
ScheduleInfo::~ScheduleInfo() = default;

void ScheduleInfo::copy_object(const ScheduleInfo& other) {
  if (this == &other) return;
  schedule_string = other.schedule_string;
  start_date = other.start_date;
  end_date = other.end_date;
  repeat_string = other.repeat_string;
}

bool ScheduleInfo::operator==(const ScheduleInfo& other) const {
  return schedule_string == other.schedule_string && equal_dates(start_date, other.start_date) &&
         equal_dates(end_date, other.end_date) && repeat_string == other.repeat_string;
}

IXMLDOMElementPtr ScheduleInfo::get_xml(int /*version*/, IXMLDOMDocumentPtr& document) const {
  IXMLDOMElementPtr element = document->createElement("schedule_info");
  element->appendChild(make_text_element(document, "schedule_string", schedule_string));
  element->appendChild(make_text_element(document, "start_date", date_text(start_date)));
  element->appendChild(make_text_element(document, "end_date", date_text(end_date)));
  element->appendChild(make_text_element(document, "repeat_string", repeat_string));
  return element;
}

void ScheduleInfo::set_xml(int /*version*/, const IXMLDOMElementPtr& element) {
  walk_child_elements(element, [this](const CString& name, const IXMLDOMElementPtr& child) {
    if (name == "schedule_string")
      schedule_string = get_elem_text(child);
    else if (name == "start_date")
      start_date = date_from(get_elem_text(child));
    else if (name == "end_date")
      end_date = date_from(get_elem_text(child));
    else if (name == "repeat_string")
      repeat_string = get_elem_text(child);
  });
}

}  // namespace schd
