// Plan, for both kinds, on SQLite and MariaDB: texts that hurt, in every field that travels and through every function,
// come back as they went, and no other row changes.
//   by columns and by the blob -> HurtfulTexts.come_back_*
//   as what is there already when other operations run -> HurtfulTexts.*
#include "spcbase/testkit/held_clock.h"
#include "tests/datasource/stored_fixture.h"

namespace {

using test_support::text_of;

const std::vector<std::string>& hurtful_texts() {
  static const std::vector<std::string> all = {
      "O'Brien",
      "''",
      "'; DROP TABLE CSEXDB; --",
      "' OR '1'='1",
      "x' WHERE 1=1 /*",
      "[EXDBID]",
      "]; DELETE FROM [CSEXDB] --",
      "100%",
      "%s%n%d",
      "_%",
      "back\\slash\\",
      "\\'",
      "\\",
      "?",
      "?=?",
      "{ts '2024-01-01 00:00:00'}",
      "{fn NOW()}",
      "}{",
      "`back`quote`",
      "\"double\"",
      "\xC3\x84rger \303\266ffnen",
      "\xE5\x80\x89\xE5\xBA\xAB",
      "\xF0\x9F\x98\x80 face",
      "<b>&amp;</b>",
      "]]>",
      "<![CDATA[",
      "&#65;",
      ":name @name $1",
      "a,b;c",
      "NULL",
      "1 UNION SELECT PASSWORD FROM CSUSER",
      "=CMD()",
  };
  return all;
}

template <class Case>
class HurtfulTexts : public test_support::StoredTest<Case> {
 protected:
  using Definition = typename Case::Definition;
  using Kind = test_support::OfKind<Definition>;

  /// A definition with the text wherever one can be.
  static Definition made_of(int id, const std::string& bytes) {
    const CString text(bytes);
    Definition definition;
    definition.id = id;
    definition.name = text;
    definition.description = text;
    definition.type = text;
    definition.connection_string = "DSN=x;PWD=" + text;
    definition.catalog_separator = text;
    definition.schema_separator = text;
    definition.table_separator = text;
    definition.quote_prefix = text;
    definition.quote_suffix = text;
    definition.syntax_info = std::make_shared<UserDefinedSyntaxInfo>();
    definition.syntax_info->date_literal = text;
    definition.syntax_info->time_literal = text;
    definition.syntax_info->timestamp_literal = text;
    definition.syntax_info->concatenation = text;
    if constexpr (requires { definition.provider; }) definition.provider = text;
    return definition;
  }
  static void expect_same(const Definition& read, const Definition& written) {
    EXPECT_EQ(text_of(read), text_of(written));
    EXPECT_EQ(read.connection_string, written.connection_string);
    ASSERT_NE(read.syntax_info, nullptr);
    EXPECT_EQ(*read.syntax_info, *written.syntax_info);
  }
  /// Rows of all tables, those of the definition 7 left out.
  std::vector<std::string> others() {
    auto rows = this->all_rows();
    std::erase_if(rows, [](const std::string& row) { return row.starts_with("7|"); });
    return rows;
  }
  void plant_others() {
    this->create(6);
    this->create(test_support::sample_definition<typename test_support::StoredTest<Case>::Other>(8));
    this->insert_row(9, "", "'D'");
    this->execute("INSERT INTO CSUINEDB (EXDBID, USERID) VALUES (6, 12)");
    this->execute("INSERT INTO CSUSGP (GROUPID, USERID) VALUES (70, 12)");
    this->execute("INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (1, 'plant', 0)");
  }
};
TYPED_TEST_SUITE(HurtfulTexts, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(HurtfulTexts, come_back_from_every_function_as_they_went_and_change_nothing_else) {
  this->plant_others();
  const auto others = this->others();
  for (const std::string& text : hurtful_texts()) {
    SCOPED_TRACE(text);
    const auto written = this->made_of(7, text);
    this->create(written);
    this->expect_same(*this->read(7), written);

    auto saved = this->read(7);
    saved->flag2 = 3;
    saved->save(&this->db(), 0);
    typename TypeParam::Definition refreshed;
    refreshed.id = 7;
    EXPECT_EQ(refreshed.refresh(&this->db(), 0), 1);
    this->expect_same(refreshed, *saved);

    typename TestFixture::Definitions all;
    COleDateTime newest;
    EXPECT_EQ(TestFixture::Kind::list(&this->db(), 0, 0, all, newest), 2);
    for (const auto& definition : all)
      if (definition->id == 7) this->expect_same(*definition, *saved);

    refreshed.remove(&this->db());
    this->expect_same(*this->read(7), *saved);
    EXPECT_EQ(this->others(), others);
    this->execute("DELETE FROM CSEXDB WHERE EXDBID = 7");
  }
}

TYPED_TEST(HurtfulTexts, take_each_others_place_when_saved) {
  this->plant_others();
  const auto others = this->others();
  this->create(7);
  for (const std::string& text : hurtful_texts()) {
    SCOPED_TRACE(text);
    const auto written = this->made_of(7, text);
    auto saved = written;
    saved.save(&this->db(), 0);
    this->expect_same(*this->read(7), written);
  }
  EXPECT_EQ(this->others(), others);
}

TYPED_TEST(HurtfulTexts, are_written_in_the_present_form_with_all_the_others) {
  constexpr int first = 100;
  int id = first;
  for (const std::string& text : hurtful_texts())
    this->create(this->made_of(id++, text));
  this->execute("INSERT INTO CSUINEDB (EXDBID, USERID) SELECT EXDBID, 12 FROM CSEXDB");
  int found = 0;
  int saved = 0;
  TestFixture::Kind::rewrite_all(&this->db(), 0, found, saved);
  EXPECT_EQ(found, id - first);
  EXPECT_EQ(saved, id - first);
  id = first;
  for (const std::string& text : hurtful_texts()) {
    SCOPED_TRACE(text);
    this->expect_same(*this->read(id), this->made_of(id, text));
    ++id;
  }
  EXPECT_EQ(this->ids_for(12).size(), hurtful_texts().size());
}

}  // namespace
