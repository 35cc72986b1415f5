// Plan
//   Every class against tests/data/recordset_columns.tsv: source, columns in order, kinds, widths ->
//   recordset_classes.* Every class as an object: count of fields and parameters, default type, empty connect text,
//   source -> recordset.* Keys: those that edit have one, of whole numbers (settings: texts too) -> keys.* Every column
//   of every class stands in the schema's description with the same kind and at least that width Initial values: a
//   revision of -300 -> revisions.* The statements and filters that data entry opens with -> profile_lists.*
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "schema/description.h"
#include "spcbase/foundation/schema.h"

namespace {

struct ExpectedColumn {
  std::string name;
  std::string kind;
  int width;
};

struct ExpectedClass {
  std::string name;
  std::string source;
  std::vector<ExpectedColumn> columns;
};

std::vector<ExpectedClass> expected_classes() {
  std::ifstream file(SPCBASE_TEST_DATA "/recordset_columns.tsv");
  std::vector<ExpectedClass> all;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) continue;
    std::istringstream fields(line);
    std::string name, source, column, kind, width;
    std::getline(fields, name, '\t');
    std::getline(fields, source, '\t');
    std::getline(fields, column, '\t');
    std::getline(fields, kind, '\t');
    std::getline(fields, width, '\t');
    if (all.empty() || all.back().name != name) all.push_back({name, source, {}});
    all.back().columns.push_back({column, kind, std::stoi(width)});
  }
  return all;
}

const char* word_of(coltab::Kind kind) {
  switch (kind) {
    case coltab::Kind::number:
      return "long";
    case coltab::Kind::text:
      return "text";
    case coltab::Kind::moment:
      return "date";
    case coltab::Kind::real:
      return "double";
    case coltab::Kind::blob:
      return "blob";
  }
  return "";
}

TEST(recordset_classes, have_the_columns_of_the_catalogue_in_its_order) {
  const auto expected = expected_classes();
  const auto classes = coltab::recordset_classes();
  ASSERT_EQ(expected.size(), 37U);
  ASSERT_EQ(classes.size(), expected.size());
  for (std::size_t i = 0; i < classes.size(); ++i) {
    SCOPED_TRACE(expected[i].name);
    EXPECT_EQ(classes[i].class_name, expected[i].name);
    if (expected[i].source != "-") {
      EXPECT_EQ(classes[i].source, expected[i].source);
    }
    ASSERT_EQ(classes[i].columns.size(), expected[i].columns.size());
    for (std::size_t c = 0; c < classes[i].columns.size(); ++c) {
      const auto& column = classes[i].columns[c];
      EXPECT_EQ(column.name, expected[i].columns[c].name);
      EXPECT_EQ(word_of(column.kind), expected[i].columns[c].kind) << column.name;
      EXPECT_EQ(column.width_chars, expected[i].columns[c].width) << column.name;
    }
  }
}

TEST(recordset_classes, only_the_search_for_a_value_has_a_parameter) {
  for (const auto& one : coltab::recordset_classes()) {
    const bool searches = std::string_view(one.class_name) == "CRSSearchLabelValue";
    EXPECT_EQ(one.parameters.size(), searches ? 1U : 0U) << one.class_name;
  }
  const CRSSearchLabelValue search(nullptr);
  EXPECT_EQ(search.m_nFields, 2U);
  EXPECT_EQ(search.m_nParams, 1U);
  const auto parameter = std::get<0>(CRSSearchLabelValue::parameters);
  EXPECT_STREQ(parameter.name, "[CSVALUE].[NAME]");
  EXPECT_EQ(parameter.width_chars, 513);
}

template <class Recordset>
class recordset : public testing::Test {};

// One of these classes without a connection; those with a blob take the mode of its field too.
template <class Recordset>
Recordset unconnected() {
  if constexpr (std::is_base_of_v<BlobRSHelper, Recordset>)
    return Recordset(nullptr, 0);
  else
    return Recordset(nullptr);
}

using PlainClasses =
    testing::Types<RSNode1, RSNode2, RSMonInNode1, RSProfInNode1, RSExtDB, RSExtDBForDelete, RSExtDBWithOnlyID, RSMOPB,
                   RSPOPB, RSMEXT, RSOBJREV, RSOBJREVForAdd, RSOBJREVForApprove, RSOBJREVWithVersion, RSOBJREV_Minimum,
                   RSOBJDAT, RSFullRevisionInfo, CRSCharInProfile, CRSLabelInProfile, CRSLabel, CRSStations, CRSUsers,
                   CRSSample, CRSSampleRev, CRSVariable, CRSDefectData, CRSDEFTOT, CRSLabelData, CRSValue,
                   CRSValueInLabel, CRSSearchLabelValue, CRSSampleApprove, RSSQLServerSysIndex,
                   RS_INFORMATION_SCHEMA_COLUMNS_1>;
TYPED_TEST_SUITE(recordset, PlainClasses);

TYPED_TEST(recordset, starts_as_its_column_table_says) {
  auto rs = unconnected<TypeParam>();
  EXPECT_EQ(rs.m_nFields, std::tuple_size_v<std::remove_cvref_t<decltype(TypeParam::columns)>>);
  EXPECT_EQ(rs.m_nParams, std::tuple_size_v<std::remove_cvref_t<decltype(TypeParam::parameters)>>);
  EXPECT_EQ(rs.m_nDefaultType, CRecordset::snapshot);
  EXPECT_TRUE(rs.GetDefaultConnect().IsEmpty());
  EXPECT_EQ(rs.GetDefaultSQL(), TypeParam::source);
  EXPECT_EQ(rs.m_pDatabase, nullptr);
}

TYPED_TEST(recordset, derives_from_the_common_base_unless_it_maps_a_servers_catalogue) {
  constexpr bool of_server =
      std::is_same_v<TypeParam, RSSQLServerSysIndex> || std::is_same_v<TypeParam, RS_INFORMATION_SCHEMA_COLUMNS_1>;
  EXPECT_NE((std::is_base_of_v<CRecordsetFix, TypeParam>), of_server);
}

TYPED_TEST(recordset, without_a_connection_does_not_open) {
  auto rs = unconnected<TypeParam>();
  EXPECT_FALSE(rs.Open());
  EXPECT_FALSE(rs.IsOpen());
}

TEST(blob_classes, have_their_blob_as_the_last_column_and_count_it) {
  for (const auto& one : coltab::recordset_classes())
    for (const auto& column : one.columns)
      if (column.kind == coltab::Kind::blob) {
        EXPECT_EQ(&column, &one.columns.back()) << one.class_name;
      }
  EXPECT_EQ(RSMOPB(nullptr, 0).m_nFields, 2U);
  EXPECT_EQ(RSMOPB(nullptr, 0).blob_column, "[OPTVAL]");
  EXPECT_EQ(RSPOPB(nullptr, 0).blob_column, "[OPTVAL]");
  EXPECT_EQ(RSMEXT(nullptr, 0).blob_column, "[DATA]");
  EXPECT_EQ(RSOBJDAT(nullptr, 0).blob_column, "[DATA]");
  EXPECT_EQ(RSExtDB(nullptr, 0).m_nFields, 9U);
  EXPECT_EQ(RSFullRevisionInfo(nullptr, 100).m_nFields, 18U);
}

TEST(profile_lists, add_their_columns_to_those_of_their_base) {
  profile_lists::CRSCharInProfile2 characteristics(nullptr);
  EXPECT_EQ(characteristics.m_nFields, 6U);
  EXPECT_EQ(characteristics.GetDefaultSQL(), "CSCINPV");
  profile_lists::CRSLabelInProfile2 labels(nullptr);
  EXPECT_EQ(labels.m_nFields, 7U);
  EXPECT_EQ(labels.GetDefaultSQL(), "CSLINPV");
}

TEST(keys, are_the_columns_that_tell_rows_apart) {
  std::map<std::string, std::set<std::string>> keys;
  for (const auto& one : coltab::recordset_classes())
    for (const auto& column : one.columns)
      if (column.is_key) keys[one.class_name].insert(column.name);
  using Names = std::set<std::string>;
  EXPECT_EQ(keys["CRSVariable"], (Names{"[SAMPID]", "[CHRTID]", "[PIECENO]"}));
  EXPECT_EQ(keys["CRSDefectData"], (Names{"[SAMPID]", "[CHRTID]", "[PIECENO]"}));
  EXPECT_EQ(keys["CRSDEFTOT"], (Names{"[SAMPID]", "[CHRTID]"}));
  EXPECT_EQ(keys["CRSLabelData"], (Names{"[SAMPID]", "[CHRTID]", "[LABELID]", "[PIECENO]"}));
  EXPECT_EQ(keys["CRSSampleRev"], Names{"SAMPID"});
  EXPECT_EQ(keys["RSOBJREV"], Names{"[REVID]"});
  // With the level, so that only one of two approvers finds the row.
  EXPECT_EQ(keys["RSOBJREVForApprove"], (Names{"[OBJID]", "[OBJTYPE]", "[REVISION]", "[ALEVEL]"}));
  EXPECT_EQ(keys["RSOBJREVWithVersion"], (Names{"[OBJID]", "[OBJTYPE]", "[REVISION]"}));
  EXPECT_EQ(keys["RSExtDBForDelete"], Names{"[EXDBID]"});
  EXPECT_EQ(keys["RSINI"], (Names{"[QUAL]", "[SECT]", "[KYWORD]", "[SEQNO]"}));
}

TEST(keys, are_told_as_bits_by_position) {
  EXPECT_EQ(coltab::key_bits(CRSVariable::columns), 0b0111U);
  EXPECT_EQ(coltab::key_bits(CRSDefectData::columns), 0b11001U);
  EXPECT_EQ(coltab::key_bits(RSMonInNode1::columns), 0U);
}

// The tables and views that a source names, without brackets.
std::vector<std::string> objects_of(std::string source) {
  const auto from = source.find(" FROM ");
  if (source.starts_with("SELECT ") && from != std::string::npos)
    source = source.substr(from + 6, source.find(" WHERE ") - from - 6);
  std::vector<std::string> names;
  std::string word;
  for (const char c : source + " ") {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_') {
      word += c;
      continue;
    }
    const bool is_object = word.starts_with("CS") && c != '.';
    if (is_object && std::find(names.begin(), names.end(), word) == names.end()) names.push_back(word);
    word.clear();
  }
  return names;
}

std::string bare(std::string_view name) {
  std::string text;
  for (const char c : name)
    if (c != '[' && c != ']') text += c;
  return text;
}

const schema::Column* described(const std::string& object, const std::string& column) {
  std::string table = object;
  for (const auto& view : schema::views()) {
    if (view.name != object) continue;
    const auto shown = schema::columns_of(view);
    if (std::find(shown.begin(), shown.end(), column) == shown.end()) return nullptr;
    table = view.table;
  }
  const auto* found = schema::find_table(table);
  return found != nullptr ? found->find(column) : nullptr;
}

const schema::Column* described_in_any(const std::vector<std::string>& objects, const std::string& name) {
  const auto dot = name.find('.');
  if (dot != std::string::npos) return described(name.substr(0, dot), name.substr(dot + 1));
  for (const auto& object : objects)
    if (const auto* column = described(object, name)) return column;
  return nullptr;
}

TEST(recordset_classes, name_only_columns_that_the_schema_describes) {
  for (const auto& one : coltab::recordset_classes()) {
    const auto objects = objects_of(one.source);
    if (objects.empty()) continue;  // a catalogue of the server's own
    for (const auto& column : one.columns) {
      const auto* found = described_in_any(objects, bare(column.name));
      ASSERT_NE(found, nullptr) << one.class_name << " " << column.name;
      using schema::ColumnType;
      switch (column.kind) {
        case coltab::Kind::number:
          EXPECT_TRUE(found->type == ColumnType::integer || found->type == ColumnType::auto_id)
              << one.class_name << " " << column.name;
          break;
        case coltab::Kind::text:
          EXPECT_EQ(found->type, ColumnType::text) << one.class_name << " " << column.name;
          EXPECT_EQ(found->width_chars, column.width_chars) << one.class_name << " " << column.name;
          break;
        case coltab::Kind::moment:
          EXPECT_EQ(found->type, ColumnType::moment) << one.class_name << " " << column.name;
          break;
        case coltab::Kind::real:
          EXPECT_EQ(found->type, ColumnType::real) << one.class_name << " " << column.name;
          break;
        case coltab::Kind::blob:
          EXPECT_EQ(found->type, ColumnType::blob) << one.class_name << " " << column.name;
          break;
      }
    }
  }
}

TEST(revisions, hold_the_mark_of_absence_before_a_read) {
  EXPECT_EQ(RSOBJREV(nullptr).revision, -300);
  EXPECT_EQ(RSOBJREVForAdd(nullptr).revision, -300);
  EXPECT_EQ(RSOBJREVForApprove(nullptr).revision, -300);
  EXPECT_EQ(RSOBJREVWithVersion(nullptr).revision, -300);
  EXPECT_EQ(RSOBJREV_Minimum(nullptr).revision, -300);
  EXPECT_EQ(RSFullRevisionInfo(nullptr, 0).revision, -300);
}

TEST(profile_lists, open_with_these_statements) {
  EXPECT_STREQ(profile_lists::CRSCharInProfile2::statement,
               "SELECT PROFID, CSCINP.CHRTID, SEQNO, NAME, DESCR, CTYPE FROM CSCINP, CSCHRTV WHERE "
               "CSCINP.CHRTID=CSCHRTV.CHRTID AND PROFID=%ld");
  EXPECT_STREQ(profile_lists::CRSLabelInProfile2::statement,
               "SELECT PROFID, CSLINP.LABELID, SEQNO, ALFLG, LTYPE, NAME, LISTTYPE FROM CSLINP, CSLABELV WHERE "
               "CSLINP.LABELID=CSLABELV.LABELID AND PROFID=%ld AND ALFLG<>'YES'");
  EXPECT_STREQ(CRSSearchLabelValue::filter,
               "[CSVINL].VALUEID = [CSVALUE].VALUEID AND [CSVINL].LABELID = %d AND [CSVALUE].[NAME] = ?");
}

}  // namespace
