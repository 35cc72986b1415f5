// Ranges as XML: whatever is read is written so that it is read as the same again.
#include <cstdint>

#include <cmath>
#include <cstdlib>

#include "spcbase/foundation/failure.h"
#include "spcbase/time/range.h"
#include "spcbase/utility/internal/xml_elements.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const CString text(reinterpret_cast<const char*>(data), static_cast<int>(size));
  DateTimeRange range;
  try {
    range.set_xml(load_xml_text(text)->GetdocumentElement());
  } catch (const DBException&) {
    return 0;
  }
  IXMLDOMDocumentPtr document = make_document();
  document->PutrefdocumentElement(range.get_xml(document, "range"));
  DateTimeRange again;
  again.set_xml(load_xml_text(CString(static_cast<const char*>(document->Getxml())))->GetdocumentElement());
  // Twenty places hold every day number but the tiniest; what is no finite number has no order.
  const auto same = [](double a, double b) { return std::fabs(a - b) < 1e-19 || a == b || !(std::fabs(a) < HUGE_VAL); };
  if (again.type != range.type || again.count != range.count || again.time_unit != range.time_unit) std::abort();
  if (!same(again.from.m_dt, range.from.m_dt) || !same(again.to.m_dt, range.to.m_dt)) std::abort();
  return 0;
}
