#include "tools/spc/sample_view.h"

#include <algorithm>
#include <map>

#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/platform/datetime/timestamp.h"
#include "tools/spc/moments.h"
#include "tools/spc/problem.h"
#include "tools/spc/viewer.h"

namespace spc {
namespace {

void open_for_reading(CRecordset& rows) {
  if (!rows.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly)) throw_can_not_open_rs_exception();
}

std::string text_of(const TIMESTAMP_STRUCT& moment) {
  CString text;
  text.Format("%04d-%02d-%02d %02d:%02d:%02d", moment.year, moment.month, moment.day, moment.hour, moment.minute,
              moment.second);
  return std::string(text.view());
}

/// The profile of a sample; 0 when there is no such sample.
int profile_of(Link& link, long sample) {
  CRSSample row(&link.db());
  row.m_strFilter.Format("SAMPID=%ld", sample);
  open_for_reading(row);
  return row.m_bEOF ? 0 : static_cast<int>(row.profid);
}

std::string label_name(Link& link, int label) {
  CRSLabel row(&link.db());
  row.m_strFilter.Format("[LABELID]=%d", label);
  open_for_reading(row);
  return row.m_bEOF ? std::to_string(label) : std::string(row.name.view());
}

/// The labels that the grid leaves out, since the system fills them.
std::vector<std::pair<std::string, std::string>> read_auto_labels(Link& link, long sample, int profile) {
  std::vector<int> labels;
  if (!oldde::get_auto_label(&link.db(), profile, labels)) throw_can_not_open_rs_exception();
  std::vector<std::pair<std::string, std::string>> found;
  for (const int label : labels) {
    CRSLabelData row(&link.db());
    row.m_strFilter.Format("SAMPID=%ld AND LABELID=%d AND CHRTID IS NULL AND PIECENO IS NULL", sample, label);
    open_for_reading(row);
    if (row.m_bEOF) continue;
    std::string value(row.labvalue.view());
    row.Close();
    found.emplace_back(label_name(link, label), std::move(value));
  }
  return found;
}

Table table_of(const SampleView& view, const std::string& indent) {
  Table table(indent);
  table.add_column("piece", Align::right);
  for (const auto& column : view.shape.columns)
    table.add_column(column.name, column.numeric ? Align::right : Align::left);
  for (LONG row = 0; row < shown_rows(view); ++row) {
    std::vector<std::string> cells = {std::to_string(row + 1)};
    for (const auto& column : view.shape.columns)
      cells.push_back(cell_text(view.grid.at(column.index, row)));
    table.add_row(std::move(cells));
  }
  return table;
}

void write_cell(JsonWriter& json, const VARIANT& cell) {
  if (cell.vt == VT_EMPTY)
    json.null();
  else if (cell.vt == VT_R8)
    json.value(cell.dblVal);
  else if (cell.vt == VT_I4)
    json.value(cell.lVal);
  else
    json.value(cell_text(cell));
}

}  // namespace

// A grid may be longer, since labels of a sample without pieces count as rows.
LONG shown_rows(const SampleView& view) {
  return std::min(view.grid.rows(), std::max(view.grid.filled_rows(), static_cast<LONG>(view.shape.pieces)));
}

SampleView read_sample(Link& link, long sample) {
  const std::string what = "cannot show sample " + std::to_string(sample);
  return doing(what, [&] {
    const int profile = profile_of(link, sample);
    if (profile == 0) throw Problem{what, "there is no such sample", "See spc sample list."};
    oldde::DEHelper helper;
    double date = 0;
    Grid grid(helper.get_data(link.engine(), link.db(), static_cast<int>(sample), profile, 0, 0, 0, &date));
    return SampleView{sample, shape_of(helper, {profile, profile_name(link, profile)}), moment_text(date),
                      read_auto_labels(link, sample, profile), std::move(grid)};
  });
}

void print_sample(std::ostream& out, const SampleView& view, const std::string& indent) {
  out << indent << "Sample " << view.sample << " of " << view.shape.name << ", taken " << view.taken;
  for (const auto& [name, value] : view.auto_labels)
    out << ", " << name << " " << value;
  out << "\n\n";
  table_of(view, indent + "  ").print(out);
}

void write_sample(JsonWriter& json, const SampleView& view) {
  json.begin_object();
  json.key("sample").value(view.sample);
  json.key("profile").value(view.shape.id);
  json.key("profile_name").value(view.shape.name);
  json.key("taken").value(view.taken);
  json.key("auto_labels").begin_object();
  for (const auto& [name, value] : view.auto_labels)
    json.key(name).value(value);
  json.end_object();
  json.key("columns").begin_array();
  for (const auto& column : view.shape.columns)
    json.value(column.name);
  json.end_array();
  json.key("rows").begin_array();
  for (LONG row = 0; row < shown_rows(view); ++row) {
    json.begin_array();
    for (const auto& column : view.shape.columns)
      write_cell(json, view.grid.at(column.index, row));
    json.end_array();
  }
  json.end_array();
  json.end_object();
}

std::vector<SampleLine> list_samples(Link& link, int profile, std::size_t limit, int as_user) {
  auto lines = doing("cannot list samples", [&] {
    std::vector<SampleLine> found;
    CRSSample rows(&link.db());
    if (profile != 0) rows.m_strFilter.Format("PROFID=%d", profile);
    set_rs_where_clause(rows, visible_profiles("PROFID", as_user));
    rows.m_strSort = "SAMPID DESC";
    open_for_reading(rows);
    for (; !rows.m_bEOF && found.size() < limit; rows.MoveNext())
      found.push_back({rows.sampid, static_cast<int>(rows.profid), {}, text_of(rows.ctime)});
    return found;
  });
  std::map<int, std::string> names;
  for (auto& line : lines) {
    auto& name = names[line.profile];
    if (name.empty()) name = profile_name(link, line.profile);
    line.profile_name = name;
  }
  return lines;
}

}  // namespace spc
