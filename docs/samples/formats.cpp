// The small XML formats as the library writes them, and one as it reads it.
#include <cstdio>
#include <vector>

#include "spcbase/foundation/outcome.h"
#include "spcbase/schedule/record.h"
#include "spcbase/time/range.h"
#include "spcbase/utility/properties.h"
#include "spcbase/utility/xml.h"

namespace {

// As a text: in a document of its own, without the declaration in front.
void print(const IXMLDOMElementPtr& element) {
  IXMLDOMDocument* made = nullptr;
  create_dom_document(&made);
  const IXMLDOMDocumentPtr alone(made, false);
  alone->appendChild(element);
  const CString text(static_cast<const char*>(alone->Getxml()));
  std::printf("%s\n", text.SpanExcluding("\r\n").GetString());
}

void run() {
  IXMLDOMDocumentPtr document = load_xml("<empty/>");

  schd::ScheduleInfo schedule;
  schedule.start_date = _variant_t();
  print(schedule.get_xml(1, document));

  DateTimeRange range;
  range.parse("last 5 day");
  range.from = COleDateTime(2024, 3, 1, 0, 0, 0);
  range.to = COleDateTime(2024, 3, 15, 23, 59, 59);
  print(range.get_xml(document, "created"));

  spcbaseutil::PropertyVec properties;
  properties.push_back({"colour", "blue"});
  print(properties.get_xml(document));

  const IXMLDOMDocumentPtr filter =
      load_xml("<filter><specification><name>line</name><value>4</value></specification></filter>");
  std::vector<CString> names, values;
  get_spec_list_from_xml(filter->GetdocumentElement(), names, values);
  std::printf("%s is %s\n", names.front().GetString(), values.front().GetString());
}

}  // namespace

int main() {
  const auto done = guarded(run);
  if (!done.ok()) std::printf("%s\n", done.failure().text.GetString());
  return done.ok() ? 0 : 1;
}
