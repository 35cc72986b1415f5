#include "spcbase/platform/xml/dom.h"
#include "tools/spc/json.h"
#include "tools/spc/moments.h"
#include "tools/spc/problem.h"
#include "tools/spc/range_line.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"
#include "tools/spc/utf8.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

constexpr const char* element_name = "range";

/// The number of a weekday as `DateTimeCalculation` counts: 1 is Sunday.
int first_day_of(const std::string& text) {
  if (const int number = plain_number(text); number >= 1 && number <= 7) return number;
  const CString wanted(text.c_str());
  for (int day = 0; day < 7; ++day) {
    const CString name = weekday_name(day);
    if (wanted.CompareNoCase(name) == 0 || wanted.CompareNoCase(name.Left(3)) == 0) return day + 1;
  }
  throw Problem{"cannot read the command line", "--week-start: " + quoted(text) + " is not a weekday",
                "Weekdays are named, as in Monday or Mon, or numbered from 1, Sunday, to 7, Saturday.", exit_misuse};
}

bool is_known(const COleDateTime& moment) {
  SYSTEMTIME fields;
  return moment.GetStatus() == COleDateTime::null || moment.GetAsSystemTime(fields);
}

/// Reckons the two moments.
void reckon(DateTimeRange& range, const RangeRequest& request) {
  const DateTimeCalculation calculation(first_day_of(request.week_start), request.utc);
  const COleDateTime now = request.at.empty() ? COleDateTime::GetCurrentTime() : moment_of_option("--at", request.at);
  doing("cannot reckon the range", [&] { range.recalculate_at(calculation, now); });
  if (!is_known(range.from) || !is_known(range.to))
    throw Problem{"cannot reckon the range",
                  std::string("it ") + (is_known(range.to) ? "begins" : "ends") + " outside the years 100 to 9999",
                  "Take a number nearer to 0, as in \"last 5 day\"."};
}

std::string xml_of(const DateTimeRange& range) {
  return doing("cannot write the range as XML", [&] {
    IXMLDOMDocumentPtr document;
    _com_util::CheckError(create_dom_document(&document));
    document->PutrefdocumentElement(range.get_xml(document, element_name));
    CString xml(static_cast<const char*>(document->Getxml()));
    return std::string(xml.TrimRight().view());
  });
}

void write_moment(JsonWriter& json, const char* key, const COleDateTime& moment) {
  json.key(key);
  moment.GetStatus() == COleDateTime::valid ? json.value(moment_text(moment.m_dt)) : json.null();
}

/// A fixed range is what was typed, whatever the zone.
bool in_utc(const DateTimeRange& range, const RangeRequest& request) {
  return request.utc && range.type != DateTimeRange::fixed_range;
}

void write_range(std::ostream& out, const ReadRange& read, const RangeRequest& request) {
  const DateTimeRange& range = read.range;
  JsonWriter json(out);
  json.begin_object();
  json.key("range").value(range.to_string().view());
  json.key("type").value(static_cast<int>(range.type));
  if (range.type == DateTimeRange::last_units) {
    json.key("count").value(range.count);
    json.key("unit").value(DateTimeRange::get_unit_eng_str(range.time_unit).view());
  }
  write_moment(json, "from", range.from);
  write_moment(json, "to", range.to);
  json.key("utc").value(in_utc(range, request));
  json.key("display").value(range.get_display_string("").view());
  json.key("log").value(range.get_log_str().view());
  json.key("xml").value(xml_of(range));
  write_warnings(json, read.warnings);
  json.end_object();
}

void print_range(std::ostream& out, const ReadRange& read, const RangeRequest& request) {
  const DateTimeRange& range = read.range;
  const auto shown = [utc = in_utc(range, request)](const COleDateTime& moment) {
    if (moment.GetStatus() != COleDateTime::valid) return std::string("none");
    return moment_text(moment.m_dt) + (utc ? " UTC" : "");
  };
  print_facts(out, {{"range", std::string(range.to_string().view())},
                    {"from", shown(range.from)},
                    {"to", shown(range.to)},
                    {"display", std::string(range.get_display_string("").view())},
                    {"log", std::string(range.get_log_str().view())},
                    {"xml", xml_of(range)}});
}

}  // namespace

int show_range(const RangeRequest& request, const Terminal& terminal) {
  if (request.xml && terminal.json)
    throw Problem{"cannot read the command line", "--xml prints XML, --json JSON", "Give one of them.", exit_misuse};
  use_dates_of_user();
  ReadRange read = read_range(request.line);
  reckon(read.range, request);
  if (request.xml)
    terminal.out << xml_of(read.range) << '\n';
  else if (terminal.json)
    write_range(terminal.out, read, request);
  else
    print_range(terminal.out, read, request);
  terminal.out.flush();
  print_warnings(terminal.err, read.warnings);
  return exit_done;
}

}  // namespace spc
