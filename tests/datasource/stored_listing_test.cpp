// Plan, for both kinds, on SQLite and MariaDB
//   lists: which rows, appended, whole, none when one is damaged -> Listing.*
//   who may see what: directly, by a group, by both, by none; user 0 -> ListingFor.*
//   ids: what the view shows, appended -> ListingIds.*
//   rewriting: none, three rows of which one fails in each way, the other kind, the old form -> Rewriting.*
#include "spcbase/testkit/held_clock.h"
#include "spcbase/utility/encoders.h"
#include "tests/datasource/stored_fixture.h"

namespace {

using test_support::text_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

template <class Case>
class Listing : public test_support::StoredTest<Case> {};
TYPED_TEST_SUITE(Listing, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(Listing, shows_the_live_rows_of_its_kind_whole) {
  this->create(1);
  this->create(2);
  this->read(2)->remove(&this->db());
  this->create(test_support::sample_definition<typename TestFixture::Other>(3));
  this->create(4);
  typename TestFixture::Definitions all;
  COleDateTime newest;
  EXPECT_EQ(TestFixture::Kind::list(&this->db(), 0, 0, all, newest), 2);
  ASSERT_EQ(all.size(), 2U);
  for (const auto& definition : all) {
    EXPECT_EQ(text_of(*definition), text_of(this->sample(definition->id)));
    EXPECT_EQ(definition->modified_time, this->read(definition->id)->modified_time);
  }
  EXPECT_THAT(this->ids_for(0), UnorderedElementsAre(1, 4));
}

TYPED_TEST(Listing, appends_and_counts_only_what_is_new) {
  this->create(1);
  typename TestFixture::Definitions all;
  COleDateTime newest;
  EXPECT_EQ(TestFixture::Kind::list(&this->db(), 0, 0, all, newest), 1);
  EXPECT_EQ(TestFixture::Kind::list(&this->db(), 0, 0, all, newest), 1);
  ASSERT_EQ(all.size(), 2U);
  EXPECT_NE(all[0], all[1]);
}

TYPED_TEST(Listing, an_empty_flag_is_not_null_and_hides_a_row) {
  this->insert_row(1, "", "''");
  this->insert_row(2, "", "'X'");
  EXPECT_TRUE(this->ids_for(0).empty());
}

TYPED_TEST(Listing, a_damaged_row_fails_as_its_xml_does_and_nothing_is_appended) {
  this->create(1);
  this->insert_row(2, "<external_database");
  typename TestFixture::Definitions all;
  COleDateTime newest;
  EXPECT_THAT(test_support::failure_of([&] { TestFixture::Kind::list(&this->db(), 0, 0, all, newest); }),
              HasSubstr("Load xml failed:"));
  EXPECT_TRUE(all.empty());
}

TYPED_TEST(Listing, an_empty_blob_is_a_definition_with_default_options) {
  this->insert_row(1, "");
  EXPECT_THAT(this->ids_for(0), ElementsAre(1));
}

// User 7 is in the groups 70 and 71, user 8 in none.
template <class Case>
class ListingFor : public test_support::StoredTest<Case> {
 protected:
  ListingFor() {
    for (const int id : {1, 2, 3, 4, 5})
      this->create(id);
    this->create(test_support::sample_definition<typename test_support::StoredTest<Case>::Other>(6));
    for (const char* membership : {"70, 7", "71, 7", "72, 9"})
      this->execute("INSERT INTO CSUSGP (GROUPID, USERID) VALUES (" + std::string(membership) + ")");
  }
  void admit_user(int id, int user) { admit("CSUINEDB (EXDBID, USERID)", id, user); }
  void admit_group(int id, int group) { admit("CSGINEDB (EXDBID, GROUPID)", id, group); }

 private:
  void admit(const std::string& table, int id, int whom) {
    this->execute("INSERT INTO " + table + " VALUES (" + std::to_string(id) + ", " + std::to_string(whom) + ")");
  }
};
TYPED_TEST_SUITE(ListingFor, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(ListingFor, user_0_applies_no_access_predicate) {
  EXPECT_THAT(this->ids_for(0), UnorderedElementsAre(1, 2, 3, 4, 5));
}

TYPED_TEST(ListingFor, a_user_shows_what_admits_the_user_or_a_group_of_the_user_each_once) {
  this->admit_user(1, 7);
  this->admit_group(2, 70);
  this->admit_user(3, 7);
  this->admit_group(3, 70);
  this->admit_group(3, 71);
  this->admit_group(4, 72);
  this->admit_user(5, 8);
  EXPECT_THAT(this->ids_for(7), UnorderedElementsAre(1, 2, 3));
  EXPECT_THAT(this->ids_for(8), ElementsAre(5));
  EXPECT_THAT(this->ids_for(9), ElementsAre(4));
}

TYPED_TEST(ListingFor, a_user_that_nothing_admits_sees_nothing) {
  this->admit_user(1, 7);
  EXPECT_TRUE(this->ids_for(10).empty());
  EXPECT_TRUE(this->ids_for(-7).empty());
}

TYPED_TEST(ListingFor, being_admitted_shows_neither_removed_rows_nor_those_of_the_other_kind) {
  for (const int id : {1, 2, 6})
    this->admit_user(id, 7);
  this->read(2)->remove(&this->db());
  EXPECT_THAT(this->ids_for(7), ElementsAre(1));
}

template <class Case>
class ListingIds : public test_support::StoredTest<Case> {};
TYPED_TEST_SUITE(ListingIds, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(ListingIds, appends_what_the_view_shows_of_its_kind) {
  this->insert_row(1, "<damaged");
  this->insert_row(2, "", "'D'");
  this->insert_row(3, "", "NULL", TestFixture::Other::kind);
  this->insert_row(4, "");
  std::vector<int> ids{99};
  EXPECT_EQ(TestFixture::Kind::list_ids(&this->db(), ids), 2);
  EXPECT_THAT(ids, UnorderedElementsAre(99, 1, 4));
  EXPECT_EQ(ids.front(), 99);
}

TYPED_TEST(ListingIds, leaves_it_to_the_view_whether_removed_rows_are_shown) {
  this->insert_row(1, "", "'D'");
  this->database().spoil();
  this->execute("DROP VIEW CSEXDBV");
  this->execute("CREATE VIEW CSEXDBV AS SELECT EXDBID, FLG1 FROM CSEXDB");
  std::vector<int> ids;
  EXPECT_EQ(TestFixture::Kind::list_ids(&this->db(), ids), 1);
}

template <class Case>
class Rewriting : public test_support::StoredTest<Case> {
 protected:
  void rewrite() { test_support::StoredTest<Case>::Kind::rewrite_all(&this->db(), 0, found, saved); }
  int found = -1;
  int saved = -1;
};
TYPED_TEST_SUITE(Rewriting, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(Rewriting, an_empty_table_leaves_found_and_saved_at_0) {
  this->rewrite();
  EXPECT_EQ(this->found, 0);
  EXPECT_EQ(this->saved, 0);
}

TYPED_TEST(Rewriting, three_rows_of_which_the_second_holds_xml_that_cannot_be_read_are_found_3_and_saved_2) {
  this->create(1);
  this->insert_row(2, "<external_database");
  this->create(3);
  this->execute("UPDATE CSEXDB SET MTIME = '2001-01-01 00:00:00'");
  const auto damaged = this->value("SELECT DATA FROM CSEXDB WHERE EXDBID = 2");
  EXPECT_NO_THROW(this->rewrite());
  EXPECT_EQ(this->found, 3);
  EXPECT_EQ(this->saved, 2);
  EXPECT_EQ(this->value("SELECT DATA FROM CSEXDB WHERE EXDBID = 2"), damaged);
  EXPECT_EQ(this->value("SELECT COUNT(*) FROM CSEXDB WHERE MTIME < '2002-01-01'"), "1") << "the others were written";
  for (const int id : {1, 3})
    EXPECT_EQ(text_of(*this->read(id)), text_of(this->sample(id)));
}

TYPED_TEST(Rewriting, drops_failures_of_every_kind) {
  const auto element = [](const std::string& content) {
    return R"(<external_database version="4">)" + content + "</external_database>";
  };
  this->insert_row(1, "no xml");                // DBException
  this->insert_row(2, "<external_database/>");  // _com_error: no version
  this->insert_row(3, element("<connection_string>QUJD</connection_string><connection_string_2>QUJD"
                              "</connection_string_2>"));  // std::exception: no cipher text
  this->insert_row(4, element("<flag1>5</flag1>"));        // DBException: the other kind
  this->insert_row(5, element("<name><first/></name>"));   // DBException: XML error
  this->create(6);
  this->rewrite();
  EXPECT_EQ(this->found, 6);
  EXPECT_EQ(this->saved, 1);
}

TYPED_TEST(Rewriting, drops_failures_of_the_database_and_releases_them) {
  test_support::HeldClock clock(test_support::utc(2024, 7, 1, 12));
  for (const int id : {1, 2, 3})
    this->create(id);
  clock.advance(std::chrono::seconds(1));
  const auto script = test_support::play(this->db());
  // Of the first definition, in pieces and through a buffer.
  script->on_regex("UPDATE .*").times(2).refuse(test_support::error("40001", 1213, "Deadlock found"));
  this->rewrite();
  EXPECT_EQ(this->found, 3);
  EXPECT_EQ(this->saved, 2);
  EXPECT_THAT(this->rows("SELECT EXDBID FROM CSEXDB WHERE MTIME LIKE '%12:00:00%'"), testing::SizeIs(1));
}

TYPED_TEST(Rewriting, fails_itself_when_the_ids_cannot_be_read) {
  this->create(1);
  const auto script = test_support::play(this->db());
  script->on_regex("SELECT .*CSEXDBV.*").refuse_at_prepare(test_support::error("42S02", 1146, "CSEXDBV is missing"));
  EXPECT_THAT(test_support::failure_of([&] { this->rewrite(); }), HasSubstr("CSEXDBV is missing"));
  EXPECT_EQ(this->found, 0);
  EXPECT_EQ(this->saved, 0);
}

TYPED_TEST(Rewriting, leaves_rows_of_the_other_kind_and_removed_ones) {
  this->create(test_support::sample_definition<typename TestFixture::Other>(1));
  this->create(2);
  this->read(2)->remove(&this->db());
  const auto before = this->all_rows();
  this->rewrite();
  EXPECT_EQ(this->found, 0);
  EXPECT_EQ(this->all_rows(), before);
}

TYPED_TEST(Rewriting, fills_an_empty_blob_with_the_defaults) {
  this->insert_row(1, "");
  this->rewrite();
  EXPECT_EQ(this->saved, 1);
  typename TypeParam::Definition defaults;
  EXPECT_EQ(this->value("SELECT DATA FROM CSEXDB"), defaults.get_xml(false, false).view());
}

using OleDbOn = testing::Types<test_support::StoredCase<OLEDBInfo, test_support::ServerKind::sqlite>,
                               test_support::StoredCase<OLEDBInfo, test_support::ServerKind::mariadb>>;
template <class Case>
class RewritingOldForms : public test_support::StoredTest<Case> {};
TYPED_TEST_SUITE(RewritingOldForms, OleDbOn, test_support::StoredCaseNames);

TYPED_TEST(RewritingOldForms, hides_the_clear_string_of_version_2_and_the_one_of_version_3_in_the_present_element) {
  const std::string clear = "DSN=old;PWD=Geheim 1";
  const std::string hidden = encode_str(CString(clear), "74").GetString();  // 37 times the id
  this->insert_row(
      1, R"(<external_database version="2"><connection_string>)" + clear + "</connection_string></external_database>");
  this->insert_row(
      2, R"(<external_database version="3"><connection_string>)" + hidden + "</connection_string></external_database>");
  int found = 0;
  int saved = 0;
  read_and_save_all_ole_db(&this->db(), 0, found, saved);
  EXPECT_EQ(saved, 2);
  for (const int id : {1, 2}) {
    const std::string xml = this->value("SELECT DATA FROM CSEXDB WHERE EXDBID = " + std::to_string(id));
    EXPECT_THAT(xml, HasSubstr("<connection_string_2>"));
    EXPECT_THAT(xml, testing::Not(HasSubstr("Geheim")));
    EXPECT_THAT(xml, testing::Not(HasSubstr(hidden)));
    const auto definition = this->read(id);
    EXPECT_EQ(definition->connection_string, clear.c_str());
    EXPECT_EQ(definition->version, id + 1) << "the version tells of the options, and stays";
  }
}

}  // namespace
