// Plan
//   Every file of tests/data/definitions, of versions 0 to 4 and later ones, of both kinds, with elements missing,
//   doubled, out of order and spoilt, is read as its row of expected.tsv says: into a definition that has the row's id
//   and holds a connection string and a syntax already. The row's fields are all that changes; so what stands there
//   for a failure is what was read before it.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "spcbase/datasource/definition.h"
#include "spcbase/foundation/failure.h"
#include "tests/datasource/definition_fields.h"
#include "tests/support/vector_file.h"

namespace {

const std::filesystem::path folder = SPCBASE_TEST_DATA "/definitions";

std::vector<test_support::VectorRow> expected_rows() {
  return test_support::read_vectors("../definitions/expected.tsv");
}

CString content_of(const std::string& file) {
  std::ifstream stream(folder / file, std::ios::binary);
  EXPECT_TRUE(stream) << file;
  return CString(std::string(std::istreambuf_iterator<char>(stream), {}));
}

// "read", or the kind of the failure and what it says; of a text of several lines the first one.
template <class Info>
std::string outcome_of_reading(Info& info, const CString& xml) {
  try {
    info.set_xml(xml);
  } catch (const DBException& e) {
    EXPECT_EQ(e.error_code, result_code::failed);
    return std::string("DBException ") + e.what().SpanExcluding("\r\n").GetString();
  } catch (const _com_error& e) {
    CString text;
    text.Format("_com_error 0x%08X", static_cast<unsigned>(e.Error()));
    return text.GetString();
  } catch (const std::exception& e) {
    return std::string("std::exception ") + CString(e.what()).SpanExcluding("\r\n").GetString();
  }
  return "read";
}

template <class Info>
void expect_as_told(const test_support::VectorRow& row) {
  Info info;
  info.id = std::stoi(row["id"]);
  info.connection_string = "before";
  test_support::FieldTexts before = test_support::fields_of(info);
  info.syntax_info = get_default_user_defined_syntax_info();
  EXPECT_EQ(outcome_of_reading(info, content_of(row["file"])), row["outcome"]);
  EXPECT_EQ(test_support::changes(before, test_support::fields_of(info)), row["fields"]);
}

TEST(Definition_versions, every_kept_definition_is_read_as_its_row_tells) {
  for (const test_support::VectorRow& row : expected_rows()) {
    SCOPED_TRACE(row.place() + " " + row["file"] + " " + row["kind"] + " " + row["id"]);
    if (row["kind"] == "ole_db")
      expect_as_told<OLEDBInfo>(row);
    else if (row["kind"] == "adonet")
      expect_as_told<ADONETDBInfo>(row);
    else
      ADD_FAILURE() << "no such kind";
  }
}

TEST(Definition_versions, every_file_has_a_row_and_every_row_a_file) {
  std::set<std::string> told;
  for (const test_support::VectorRow& row : expected_rows())
    told.insert(row["file"]);
  std::set<std::string> kept;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.path().extension() == ".xml") kept.insert(entry.path().filename().string());
  EXPECT_EQ(told, kept);
}

// What was read can be saved and read again, however old it was: the later form of the element does not ask for the
// version.
template <class Info>
void expect_readable_once_saved(const test_support::VectorRow& row) {
  Info first;
  first.id = std::stoi(row["id"]);
  first.set_xml(content_of(row["file"]));
  Info stored;
  stored.id = first.id;
  stored.name = first.name;
  stored.description = first.description;
  stored.type = first.type;
  stored.flag2 = first.flag2;
  stored.set_xml(first.get_xml(false, false));
  EXPECT_EQ(test_support::fields_of(stored), test_support::fields_of(first));
  Info exported;
  exported.set_xml(first.get_xml(true, false));
  EXPECT_EQ(test_support::fields_of(exported), test_support::fields_of(first));
}

TEST(Definition_versions, what_was_read_at_an_old_version_stays_readable_when_it_is_saved_again) {
  int read = 0;
  for (const test_support::VectorRow& row : expected_rows()) {
    if (row["outcome"] != "read") continue;
    SCOPED_TRACE(row.place() + " " + row["file"]);
    ++read;
    if (row["kind"] == "ole_db")
      expect_readable_once_saved<OLEDBInfo>(row);
    else
      expect_readable_once_saved<ADONETDBInfo>(row);
  }
  EXPECT_GT(read, 40);
}

}  // namespace
