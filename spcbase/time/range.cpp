#include "spcbase/time/range.h"

#include <algorithm>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/time/calendar.h"
#include "spcbase/time/internal/present.h"
#include "spcbase/time/internal/range_words.h"
#include "spcbase/utility/internal/xml_elements.h"
#include "spcbase/utility/text.h"

namespace {

using range_words::choices;
using range_words::row_of;
using range_words::units;

constexpr LCID user_locale = 0x400;
constexpr LCID american_english = 0x409;

/// A message or log word with what it takes put in; `unit` gives the word of the unit where that is wanted.
template <class Unit>
CString filled(const DateTimeRange& range, const CString& format, LCID locale, Unit unit) {
  CString text = format;
  if (range.type == DateTimeRange::fixed_range)
    text.Format(format, range.from.Format(0, locale).GetString(), range.to.Format(0, locale).GetString());
  else if (range.type == DateTimeRange::last_units)
    text.Format(format, range.count, unit().GetString());
  return text;
}

}  // namespace

DateTimeRange::DateTimeRange() {
  from.SetStatus(COleDateTime::null);
  to.SetStatus(COleDateTime::null);
}

void DateTimeRange::copy_object(const DateTimeRange& other) {
  if (this == &other) return;
  from = other.from;
  to = other.to;
  type = other.type;
  count = other.count;
  time_unit = other.time_unit;
}

CString DateTimeRange::get_display_string(const CString& name) const {
  const auto* choice = row_of(choices, type);
  if (!choice) return {};
  const CString text = filled(*this, load_message(choice->message), user_locale, [this] {
    const auto* unit = row_of(units, time_unit);
    return load_message(unit ? unit->message : 0);
  });
  return name.IsEmpty() ? text : name + " = " + text;
}

CString DateTimeRange::get_log_str() const {
  const auto* choice = row_of(choices, type);
  if (!choice) return {};
  return filled(*this, choice->log, american_english, [this] { return get_unit_eng_str(time_unit); });
}

IXMLDOMElementPtr DateTimeRange::get_xml(IXMLDOMDocumentPtr& document, const CString& tag) const {
  IXMLDOMElementPtr element = document->createElement(tag.GetString());
  element->appendChild(make_text_element(document, "type", get_range_type_eng_str(type)));
  element->appendChild(make_int_element(document, "count", count));
  element->appendChild(make_text_element(document, "time_unit", get_unit_eng_str(time_unit)));
  element->appendChild(make_text_element(document, "from", double_to_eng(from)));
  element->appendChild(make_text_element(document, "to", double_to_eng(to)));
  return element;
}

void DateTimeRange::set_xml(const IXMLDOMElementPtr& element) {
  walk_child_elements(element, [this](const CString& name, const IXMLDOMElementPtr& child) {
    if (name == "type")
      type = get_range_type(get_elem_text(child));
    else if (name == "count")
      count = get_elem_int(child);
    else if (name == "time_unit")
      time_unit = get_unit(get_elem_text(child));
    else if (name == "from")
      from = COleDateTime(eng_to_double(get_elem_text(child)));
    else if (name == "to")
      to = COleDateTime(eng_to_double(get_elem_text(child)));
  });
}

CString DateTimeRange::get_range_type_eng_str(RangeType type) {
  const auto* choice = row_of(choices, type);
  return choice ? choice->xml : choices[this_week].xml;
}

DateTimeRange::RangeType DateTimeRange::get_range_type(const CString& word) {
  const auto* found = std::find_if(choices.begin(), choices.end(), [&](const auto& row) { return word == row.xml; });
  return found == choices.end() ? this_week : static_cast<RangeType>(found - choices.begin());
}

CString DateTimeRange::get_unit_eng_str(RangeUnit unit) {
  const auto* row = row_of(units, unit);
  return row ? row->word : units[week].word;
}

DateTimeRange::RangeUnit DateTimeRange::get_unit(const CString& word) {
  const auto* found = std::find_if(units.begin(), units.end(), [&](const auto& row) { return word == row.word; });
  return found == units.end() ? week : static_cast<RangeUnit>(found - units.begin());
}

bool operator==(const DateTimeRange& left, const DateTimeRange& right) {
  if (&left == &right) return true;
  if (left.type != right.type) return false;
  if (left.type == DateTimeRange::fixed_range) return equal_dt(left.from, right.from) && equal_dt(left.to, right.to);
  if (left.type == DateTimeRange::last_units) return left.count == right.count && left.time_unit == right.time_unit;
  return true;
}
