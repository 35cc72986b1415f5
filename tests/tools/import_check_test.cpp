// Plan
//   Cells: numbers, counts, texts, moments, empty ones; every wrong field has its words
//   Files: pieces and samples become grids; names and constants; entries of the sample's own take one value
//   Refused before anything is written: missing, extra, doubled column; text where a number belongs (file, line and
//     column named); pieces not 1..n; too few or too many pieces; a sample that comes again; a text too long; a count
//     without a defect; two entries of one name; --map and --set that name nothing, or the same twice
#include "tools/spc/import_check.h"

#include <gtest/gtest.h>

#include "tools/spc/cell_reader.h"
#include "tools/spc/problem.h"

namespace {

oldde::CProfileInfo element(int kind, const char* name, const char* type, const char* detail = "", bool total = false) {
  oldde::CProfileInfo made;
  made.kind = kind;
  made.name = name;
  made.type = type;
  made.detail = detail;
  made.is_total = total;
  return made;
}

/// Everything there is: label, number, defects, total, moment, label by piece.
spc::ProfileShape whole_shape(std::size_t pieces) {
  oldde::CProfileInfoColl elements;
  elements.push_back(element(1, "Batch", "SAMPLE"));
  elements.push_back(element(0, "Width", "VARIABLE"));
  elements.push_back(element(0, "Scratch", "ATTRIBUTE"));
  elements.push_back(element(0, "Leak", "ATTRIBUTE", "", true));
  elements.push_back(element(1, "Taken", "SAMPLE", "DATETIME"));
  elements.push_back(element(1, "Gauge", "PIECE"));
  return {"Cans", 3, spc::columns_of(elements), spc::grid_width(elements), pieces};
}

spc::ProfileShape width_shape(std::size_t pieces) {
  oldde::CProfileInfoColl elements;
  elements.push_back(element(0, "Width", "VARIABLE"));
  return {"Rings", 1, spc::columns_of(elements), spc::grid_width(elements), pieces};
}

std::vector<spc::PreparedSample> prepare(const char* text, const spc::ProfileShape& shape,
                                         const spc::ImportRules& rules = {}) {
  return spc::prepare_samples(spc::parse_csv("a.csv", text), shape, rules);
}

spc::Problem refusal(const char* text, const spc::ProfileShape& shape, const spc::ImportRules& rules = {}) {
  try {
    prepare(text, shape, rules);
  } catch (const spc::Problem& problem) {
    EXPECT_EQ(problem.what, "cannot import a.csv");
    EXPECT_EQ(problem.status, spc::exit_failed);
    return problem;
  }
  return {"", "nothing is wrong"};
}

std::string why_not(const char* text, const spc::ProfileShape& shape, const spc::ImportRules& rules = {}) {
  return refusal(text, shape, rules).why;
}

spc::Constant constant(const char* entry, const char* value) {
  return {entry, [value](std::size_t, std::size_t) { return std::string(value); }};
}

std::string read(const char* field, spc::CellKind kind) {
  spc::GridColumn column;
  column.kind = kind;
  column.max_chars = 5;
  const auto cell = spc::read_cell(field, column);
  return cell.wrong.empty() ? spc::cell_text(cell.value) : "! " + cell.wrong;
}

TEST(ReadCell, reads_numbers_as_they_are_written) {
  EXPECT_EQ(read("74.03", spc::CellKind::number), "74.03");
  EXPECT_EQ(read(" +1e3 ", spc::CellKind::number), "1000");
  EXPECT_EQ(read("-0.5", spc::CellKind::number), "-0.5");
  EXPECT_EQ(read("", spc::CellKind::number), "");
}

TEST(ReadCell, refuses_what_is_no_number) {
  for (const char* field : {"abc", "1.2.3", "1 2", "nan", "inf", "0x10", "--1", "+-1", "1e999"})
    EXPECT_EQ(read(field, spc::CellKind::number), "! \"" + std::string(field) + "\" is not a number");
}

TEST(ReadCell, tells_of_the_point_when_a_comma_parts_decimals) {
  spc::GridColumn column;
  column.kind = spc::CellKind::number;
  EXPECT_EQ(spc::read_cell("74,03", column).advice, "A point parts the decimals: 74.03.");
}

TEST(ReadCell, reads_counts_as_whole_numbers_from_0_on) {
  EXPECT_EQ(read("12", spc::CellKind::count), "12");
  EXPECT_EQ(read("1.5", spc::CellKind::count), "! \"1.5\" is not a whole number");
  EXPECT_EQ(read("-1", spc::CellKind::count), "! \"-1\" is below 0, and this counts something");
  EXPECT_EQ(read("2147483648", spc::CellKind::count), "! \"2147483648\" is too large for a count");
}

TEST(ReadCell, counts_the_characters_of_a_text) {
  EXPECT_EQ(read("größe", spc::CellKind::text), "größe");
  EXPECT_EQ(read("größer", spc::CellKind::text), "! a text of 6 characters, and 5 fit");
  EXPECT_EQ(read(" a ", spc::CellKind::text), " a ");
  EXPECT_EQ(read("  ", spc::CellKind::text), "");
}

TEST(ReadCell, reads_moments_and_refuses_days_that_are_none) {
  EXPECT_EQ(read("2024-02-29", spc::CellKind::moment), "2024-02-29 00:00:00");
  EXPECT_EQ(read("2024-03-05 08:30", spc::CellKind::moment), "2024-03-05 08:30:00");
  EXPECT_EQ(read("2024-03-05T08:30:59", spc::CellKind::moment), "2024-03-05 08:30:59");
  for (const char* field : {"2023-02-29", "05.03.2024", "2024-3-5", "2024-03-05 24:00", "2024-13-01", "soon"})
    EXPECT_EQ(read(field, spc::CellKind::moment), "! \"" + std::string(field) + "\" is not a date");
}

TEST(ReadCell, shortens_a_long_field_in_its_message) {
  const std::string shown = read(std::string(100, 'x').c_str(), spc::CellKind::number);
  EXPECT_EQ(shown, "! \"" + std::string(40, 'x') + "...\" is not a number");
}

TEST(PrepareSamples, makes_a_grid_of_each_sample) {
  const auto samples = prepare(
      "sample,piece,Batch,Width,Scratch.text,Scratch.count,Leak,Leak.size,Taken,Gauge\n"
      "7,1,B1,1.5,deep,2,3,50,2024-03-05,A\n"
      "7,2,,2.5,,,,,,B\n"
      "8,1,B2,,light,,,,,\n"
      "8,2,B2,4,,,,,,\n",
      whole_shape(2));
  ASSERT_EQ(samples.size(), 2U);
  EXPECT_EQ(samples[1].key, "8");
  EXPECT_EQ(samples[1].line, 4U);
  const spc::Grid& grid = samples[0].grid;
  EXPECT_EQ(grid.columns(), 8);
  EXPECT_EQ(grid.rows(), 2);
  const char* const wanted[8][2] = {
      {"B1", ""}, {"1.5", "2.5"}, {"deep", ""}, {"2", ""}, {"3", ""}, {"50", ""}, {"2024-03-05 00:00:00", ""},
      {"A", "B"}};
  for (LONG column = 0; column < 8; ++column)
    for (LONG row = 0; row < 2; ++row)
      EXPECT_EQ(spc::cell_text(grid.at(column, row)), wanted[column][row]) << column << ' ' << row;
  EXPECT_EQ(grid.at(1, 0).vt, VT_R8);
  EXPECT_EQ(grid.at(3, 0).vt, VT_I4);
  EXPECT_EQ(grid.at(6, 0).vt, VT_DATE);
  EXPECT_EQ(samples[1].grid.at(1, 0).vt, VT_EMPTY);
}

TEST(PrepareSamples, takes_other_names_and_constants) {
  spc::ImportRules rules;
  rules.names = {{"mm", "Width"}};
  EXPECT_EQ(spc::cell_text(prepare("sample,mm\n1,5\n", width_shape(1), rules)[0].grid.at(0, 0)), "5");
  spc::ImportRules all;
  all.names = {{"sample", "Width"}, {"no", "sample"}};
  EXPECT_NE(why_not("sample,no\n1,5\n", width_shape(1), all), "nothing is wrong") << "sample must keep its name";
  rules.names.clear();
  rules.constants = {constant("Width", "2.5")};
  EXPECT_EQ(spc::cell_text(prepare("sample\n1\n", width_shape(1), rules)[0].grid.at(0, 0)), "2.5");
}

TEST(PrepareSamples, numbers_pieces_by_their_order_without_a_column_for_them) {
  EXPECT_EQ(prepare("sample,Width\n1,5\n1,6\n2,7\n2,8\n", width_shape(2)).size(), 2U);
  EXPECT_EQ(prepare("sample,Width\n1,5\n1,6\n2,7\n", width_shape(0))[1].grid.rows(), 1) << "any number of pieces";
}

TEST(PrepareSamples, names_file_line_and_column_of_a_text_where_a_number_belongs) {
  EXPECT_EQ(why_not("sample,Width\n1,5\n2,wide\n", width_shape(1)), "line 3, column Width: \"wide\" is not a number");
  spc::ImportRules rules;
  rules.constants = {constant("Width", "wide")};
  EXPECT_EQ(why_not("sample\n1\n", width_shape(1), rules), "line 2, --set Width: \"wide\" is not a number");
}

TEST(PrepareSamples, refuses_missing_extra_and_doubled_columns) {
  const auto missing = refusal("sample\n1\n", width_shape(1));
  EXPECT_EQ(missing.why, "line 1: there is no column \"Width\"");
  EXPECT_NE(missing.advice.find("--map COLUMN=Width"), std::string::npos) << missing.advice;
  EXPECT_EQ(why_not("Width\n1\n", width_shape(1)), "line 1: there is no column \"sample\"");
  EXPECT_EQ(why_not("sample,Width,Depth\n1,2,3\n", width_shape(1)),
            "line 1: the column \"Depth\" is not in the profile");
  EXPECT_EQ(why_not("sample,Width,Width\n1,2,3\n", width_shape(1)), "line 1: two columns are named \"Width\"");
  spc::ImportRules rules;
  rules.names = {{"mm", "Width"}};
  EXPECT_EQ(why_not("sample,Width,mm\n1,2,3\n", width_shape(1), rules), "line 1: two columns stand for \"Width\"");
}

TEST(PrepareSamples, refuses_rules_that_name_nothing_or_the_same_twice) {
  spc::ImportRules rules;
  rules.names = {{"mm", "Width"}};
  EXPECT_EQ(why_not("sample,Width\n1,2\n", width_shape(1), rules),
            "line 1: --map names the column \"mm\", which is not there");
  rules.names = {{"mm", "Depth"}};
  EXPECT_EQ(why_not("sample,Width,mm\n1,2,3\n", width_shape(1), rules),
            "line 1: the column \"Depth\" (--map mm) is not in the profile");
  rules.names.clear();
  rules.constants = {constant("Depth", "1")};
  EXPECT_EQ(why_not("sample,Width\n1,2\n", width_shape(1), rules),
            "--set names \"Depth\", which is not in the profile");
  rules.constants = {constant("Width", "1")};
  EXPECT_EQ(why_not("sample,Width\n1,2\n", width_shape(1), rules), "\"Width\" is given twice");
}

TEST(PrepareSamples, refuses_pieces_that_are_not_1_to_n) {
  EXPECT_EQ(why_not("sample,piece,Width\n1,1,5\n1,3,6\n", width_shape(2)),
            "line 3, column piece: \"3\" where 2 is next in sample 1");
  EXPECT_EQ(why_not("sample,piece,Width\n1,0,5\n1,1,6\n", width_shape(2)),
            "line 2, column piece: \"0\" where 1 is next in sample 1");
}

TEST(PrepareSamples, refuses_a_sample_of_the_wrong_shape) {
  EXPECT_EQ(why_not("sample,Width\n1,5\n", width_shape(2)),
            "line 2: sample 1 has 1 piece, and the profile \"Rings\" wants 2");
  EXPECT_EQ(why_not("sample,Width\n1,5\n2,6\n2,7\n", width_shape(1)),
            "line 3: sample 2 has 2 pieces, and the profile \"Rings\" wants 1");
}

TEST(PrepareSamples, refuses_a_sample_without_name_or_in_two_places) {
  EXPECT_EQ(why_not("sample,Width\n ,5\n", width_shape(1)), "line 2, column sample: there is no sample");
  EXPECT_EQ(why_not("sample,Width\n1,5\n2,6\n1,7\n", width_shape(0)),
            "line 4: sample 1 comes again: its lines must stand together");
}

TEST(PrepareSamples, refuses_a_text_that_is_too_long) {
  oldde::CProfileInfoColl elements;
  elements.push_back(element(1, "Note", "SAMPLE"));
  const spc::ProfileShape shape{"Notes", 1, spc::columns_of(elements), spc::grid_width(elements), 1};
  const std::string fits = "sample,Note\n1," + std::string(513, 'x') + "\n";
  EXPECT_EQ(prepare(fits.c_str(), shape).size(), 1U);
  const std::string longer = "sample,Note\n1," + std::string(514, 'x') + "\n";
  EXPECT_EQ(why_not(longer.c_str(), shape), "line 2, column Note: a text of 514 characters, and 513 fit");
}

TEST(PrepareSamples, refuses_two_values_where_the_sample_takes_one) {
  EXPECT_EQ(why_not("sample,Batch,Width,Scratch.text,Scratch.count,Leak,Leak.size,Taken,Gauge\n"
                    "1,B1,1,,,,,,\n1,B2,1,,,,,,\n",
                    whole_shape(2)),
            "line 3, column Batch: sample 1 has another value in line 2, and it takes one for all its pieces");
}

TEST(PrepareSamples, refuses_a_count_without_a_defect) {
  EXPECT_EQ(
      why_not("sample,Batch,Width,Scratch.text,Scratch.count,Leak,Leak.size,Taken,Gauge\n1,,,,2,,,,\n", whole_shape(1)),
      "line 2, column Scratch.count: a count without a Scratch.text");
}

TEST(PrepareSamples, refuses_a_profile_with_two_entries_of_one_name) {
  oldde::CProfileInfoColl elements;
  elements.push_back(element(0, "Width", "VARIABLE"));
  elements.push_back(element(1, "Width", "PIECE"));
  const spc::ProfileShape shape{"Twice", 1, spc::columns_of(elements), spc::grid_width(elements), 1};
  EXPECT_EQ(why_not("sample,Width\n1,2\n", shape), "the profile \"Twice\" has two entries named \"Width\"");
}

}  // namespace
