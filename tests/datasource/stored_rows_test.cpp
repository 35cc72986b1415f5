// Plan, for both kinds, on SQLite and MariaDB
//   create: every column, what stands in the blob, a taken id, id 0 -> Creating.*
//   retrieve: whole, empty blobs, nulls, removed, of the other kind, damaged, names cleaned -> Retrieving.*
//   refresh: missing, unchanged, changed, twice, empty and damaged blobs, no time -> Refreshing.*
//   save: every column, removed rows, the last writer, no row -> Saving.*
//   remove: marks, removed rows, no row, a row that vanished, nothing done -> Removing.*
//   without a connection nothing opens -> Stored.*
#include <utility>

#include "spcbase/datasource/internal/definition_rows.h"
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/datasource/stored_fixture.h"

namespace {

using test_support::failure_of;
using test_support::text_of;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

constexpr const char* columns = "SELECT EXDBID, NAME, DESCR, TYPE, FLG1, FLG2, VFLG FROM CSEXDB ORDER BY EXDBID";

template <class Case>
class Creating : public test_support::StoredTest<Case> {};
TYPED_TEST_SUITE(Creating, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(Creating, writes_the_identity_into_columns_and_the_rest_into_the_blob) {
  this->create(7);
  const std::string kind = std::to_string(TypeParam::Definition::kind);
  EXPECT_EQ(this->rows(columns), Texts{"7|Warehouse|what is there\r\nand what is not|stock|" + kind + "|-5|NULL"});
  const std::string xml = this->value("SELECT DATA FROM CSEXDB");
  EXPECT_EQ(xml, this->sample(7).get_xml(false, false).view());
  for (const char* element : {"<id>", "<name>", "<description>", "<type>", "<flag1>", "<flag2>"})
    EXPECT_THAT(xml, testing::Not(HasSubstr(element)));
}

TYPED_TEST(Creating, with_a_taken_id_fails_and_leaves_the_row) {
  this->create(7);
  const auto before = this->all_rows();
  auto second = this->sample(7);
  second.name = "another";
  COleDateTime modified;
  const auto outcome = guarded([&] { TypeParam::Definition::create(&this->db(), 0, second, modified); });
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::duplicate_key);
  EXPECT_EQ(this->all_rows(), before);
}

TYPED_TEST(Creating, is_not_disturbed_by_a_row_of_id_0) {
  this->create(0);
  this->create(7);
  EXPECT_EQ(this->read(0)->connection_string, this->sample(0).connection_string);
  EXPECT_EQ(this->value("SELECT COUNT(*) FROM CSEXDB"), "2");
}

TYPED_TEST(Creating, writes_empty_texts_as_such) {
  typename TypeParam::Definition bare;
  bare.id = 7;
  this->create(bare);
  const std::string kind = std::to_string(TypeParam::Definition::kind);
  EXPECT_EQ(this->rows(columns), Texts{"7||||" + kind + "|0|NULL"});
  EXPECT_EQ(text_of(*this->read(7)), text_of(bare));
}

template <class Case>
class Retrieving : public test_support::StoredTest<Case> {
 protected:
  using Definition = typename Case::Definition;

  /// What an empty blob leaves: the defaults.
  static void expect_default_options(const Definition& definition) {
    Definition defaults;
    defaults.id = definition.id;
    defaults.name = definition.name;
    defaults.description = definition.description;
    defaults.type = definition.type;
    defaults.flag2 = definition.flag2;
    EXPECT_EQ(text_of(definition), text_of(defaults));
    EXPECT_TRUE(definition.connection_string.IsEmpty());
  }
};
TYPED_TEST_SUITE(Retrieving, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(Retrieving, gives_back_what_was_created) {
  this->create(7);
  EXPECT_EQ(text_of(*this->read(7)), text_of(this->sample(7)));
  EXPECT_EQ(this->read(7)->connection_string, this->sample(7).connection_string);
}

TYPED_TEST(Retrieving, an_id_that_is_not_in_the_table_is_told_in_words) {
  this->create(7);
  EXPECT_EQ(failure_of([&] { this->read(8); }), test_support::not_there);
  EXPECT_THROW(this->read(8), DBException);
}

TYPED_TEST(Retrieving, an_empty_blob_gives_default_options_and_an_empty_connection_string) {
  this->insert_row(7, "");
  this->insert_row(8, "");
  this->execute("UPDATE CSEXDB SET DATA = NULL, DESCR = 'd', TYPE = 't', FLG2 = 4 WHERE EXDBID = 8");
  for (const int id : {7, 8})
    this->expect_default_options(*this->read(id));
  EXPECT_EQ(this->read(8)->name, "row");
  EXPECT_EQ(this->read(8)->description, "d");
  EXPECT_EQ(this->read(8)->type, "t");
  EXPECT_EQ(this->read(8)->flag2, 4) << "a column, which the blob has no say in";
}

TYPED_TEST(Retrieving, nulls_read_as_empty_texts_0_and_no_time) {
  this->execute("INSERT INTO CSEXDB (EXDBID) VALUES (7)");
  const auto definition = this->read(7);
  EXPECT_EQ(definition->id, 7);
  EXPECT_TRUE(definition->name.IsEmpty());
  EXPECT_TRUE(definition->description.IsEmpty());
  EXPECT_TRUE(definition->type.IsEmpty());
  EXPECT_EQ(definition->flag2, 0);
  EXPECT_EQ(text_of(definition->modified_time), "null");
  this->expect_default_options(*definition);
}

TYPED_TEST(Retrieving, reads_a_removed_row_as_is_meant) {
  this->create(7);
  this->read(7)->remove(&this->db());
  EXPECT_EQ(text_of(*this->read(7)), text_of(this->sample(7)));
}

TYPED_TEST(Retrieving, reads_a_row_of_the_other_kind_without_complaint_as_is_meant) {
  this->create(test_support::sample_definition<typename TestFixture::Other>(7));
  const auto definition = this->read(7);
  EXPECT_EQ(definition->name, "Warehouse");
  EXPECT_EQ(definition->schema_separator, "!");
  EXPECT_EQ(definition->quote_prefix, "[");
  // "connection_string" is an element of both kinds, "connection_string_2" of one.
  const bool is_ole_db = TypeParam::Definition::kind == OLEDBInfo::kind;
  const auto string_of_sample = this->sample(7).connection_string;
  if (!is_ole_db) {
    EXPECT_TRUE(definition->connection_string.IsEmpty());
  } else {
    EXPECT_NE(definition->connection_string, string_of_sample) << "version 3 takes it for another cipher's text";
  }
}

TYPED_TEST(Retrieving, takes_out_of_names_what_cannot_be_shown_and_leaves_line_ends_in_descriptions) {
  this->insert_row(7, "");
  auto saved = this->read(7);
  saved->name = "ware\thouse\r\n";
  saved->description = "one\r\ntwo\tthree";
  saved->type = "a\tb";
  saved->save(&this->db(), 0);
  EXPECT_EQ(this->value("SELECT NAME FROM CSEXDB"), "ware\thouse\r\n") << "written as it is";
  EXPECT_EQ(this->read(7)->name, "warehouse");
  EXPECT_EQ(this->read(7)->description, "one\r\ntwothree");
  EXPECT_EQ(this->read(7)->type, "a\tb") << "copied";
}

TYPED_TEST(Retrieving, a_damaged_blob_fails_as_reading_its_xml_does) {
  this->insert_row(7, "<external_database");
  this->insert_row(8, "<external_database/>");
  this->insert_row(9, R"(<external_database version="1"><flag1>7</flag1></external_database>)");
  this->insert_row(10, R"(<external_database version="4"><connection_string_2>QUJD</connection_string_2>)"
                       "<connection_string>QUJD</connection_string></external_database>");
  EXPECT_THAT(failure_of([&] { this->read(7); }), HasSubstr("Load xml failed:"));
  EXPECT_EQ(guarded([&] { this->read(8); }).failure().kind, FailureKind::automation) << "no version";
  EXPECT_EQ(failure_of([&] { this->read(9); }), "Not OLE DB database connection.");
  EXPECT_EQ(guarded([&] { this->read(10); }).failure().kind, FailureKind::standard) << "no cipher text";
}

TYPED_TEST(Retrieving, a_connection_string_under_another_id_is_not_the_one_that_was_stored) {
  this->create(7);
  this->execute("UPDATE CSEXDB SET EXDBID = 8");
  const auto outcome = guarded([&] { return this->read(8)->connection_string; });
  if (outcome.ok())
    EXPECT_NE(outcome.value(), this->sample(7).connection_string);
  else
    EXPECT_EQ(outcome.failure().kind, FailureKind::standard);
}

template <class Case>
class Refreshing : public test_support::StoredTest<Case> {
 protected:
  int refresh(typename Case::Definition& definition) { return definition.refresh(&this->db(), 0); }
};
TYPED_TEST_SUITE(Refreshing, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(Refreshing, a_row_that_does_not_exist_gives_2_and_leaves_the_object) {
  auto definition = this->sample(7);
  definition.modified_time = COleDateTime(2024, 1, 2, 3, 4, 5);
  EXPECT_EQ(this->refresh(definition), 2);
  EXPECT_EQ(text_of(definition), text_of(this->sample(7)));
  EXPECT_EQ(text_of(definition.modified_time), "2024-01-02 03:04:05");
}

TYPED_TEST(Refreshing, straight_after_another_gives_0) {
  this->create(7);
  typename TypeParam::Definition definition;
  definition.id = 7;
  EXPECT_EQ(this->refresh(definition), 1);
  EXPECT_EQ(this->refresh(definition), 0);
}

TYPED_TEST(Refreshing, an_unchanged_row_leaves_the_object_as_it_was_with_what_was_changed_in_it) {
  this->create(7);
  const auto definition = this->read(7);
  definition->name = "mine";
  definition->connection_string = "DSN=mine";
  this->execute("UPDATE CSEXDB SET NAME = 'theirs', DATA = NULL");
  EXPECT_EQ(this->refresh(*definition), 0) << "the time alone decides";
  EXPECT_EQ(definition->name, "mine");
  EXPECT_EQ(definition->connection_string, "DSN=mine");
}

TYPED_TEST(Refreshing, a_row_of_another_time_is_read_whole) {
  this->create(7);
  const auto definition = this->read(7);
  definition->name = "mine";
  this->execute("UPDATE CSEXDB SET NAME = 'theirs', FLG2 = 8, MTIME = '2001-02-03 04:05:06'");
  EXPECT_EQ(this->refresh(*definition), 1) << "an older time is another one too";
  EXPECT_EQ(definition->name, "theirs");
  EXPECT_EQ(definition->flag2, 8);
}

TYPED_TEST(Refreshing, a_difference_within_a_second_counts) {
  this->insert_row(7, "", "NULL", TypeParam::Definition::kind, "'2024-07-01 12:00:00.000'");
  const auto definition = this->read(7);
  this->execute("UPDATE CSEXDB SET MTIME = '2024-07-01 12:00:00.250'");
  EXPECT_EQ(this->refresh(*definition), 1);
  EXPECT_EQ(this->refresh(*definition), 0);
}

TYPED_TEST(Refreshing, an_empty_blob_takes_the_connection_string_and_the_separators_away) {
  this->insert_row(7, "");
  auto definition = this->sample(7);
  EXPECT_EQ(this->refresh(definition), 1);
  for (const CString* text :
       {&definition.connection_string, &definition.catalog_separator, &definition.schema_separator,
        &definition.table_separator, &definition.quote_prefix, &definition.quote_suffix})
    EXPECT_TRUE(text->IsEmpty());
  EXPECT_TRUE(definition.quote_schema);
  EXPECT_EQ(definition.version, 0);
  ASSERT_NE(definition.syntax_info, nullptr) << "kept: an empty blob says nothing of it";
  EXPECT_EQ(definition.syntax_info->concatenation, "&");
}

TYPED_TEST(Refreshing, a_damaged_blob_leaves_the_columns_and_the_time_taken_as_is_meant) {
  this->insert_row(7, "<external_database");
  auto definition = this->sample(7);
  EXPECT_THAT(failure_of([&] { this->refresh(definition); }), HasSubstr("Load xml failed:"));
  EXPECT_EQ(definition.name, "row");
  EXPECT_EQ(definition.connection_string, this->sample(7).connection_string);
  EXPECT_EQ(this->refresh(definition), 0);
}

TYPED_TEST(Refreshing, a_row_without_a_time_is_read_once) {
  this->insert_row(7, "", "NULL", TypeParam::Definition::kind, "NULL");
  auto definition = this->sample(7);
  EXPECT_EQ(this->refresh(definition), 1);
  EXPECT_EQ(text_of(definition.modified_time), "null");
  EXPECT_EQ(this->refresh(definition), 0);
}

TYPED_TEST(Refreshing, reads_removed_rows_and_those_of_the_other_kind) {
  this->insert_row(7, "", "'D'");
  this->insert_row(8, "", "NULL", TestFixture::Other::kind);
  for (const int id : {7, 8}) {
    auto definition = this->sample(id);
    EXPECT_EQ(this->refresh(definition), 1);
    EXPECT_EQ(definition.name, "row");
  }
}

template <class Case>
class Saving : public test_support::StoredTest<Case> {};
TYPED_TEST_SUITE(Saving, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(Saving, writes_every_column_and_the_blob) {
  this->insert_row(7, "");
  this->sample(7).save(&this->db(), 0);
  const std::string kind = std::to_string(TypeParam::Definition::kind);
  EXPECT_EQ(this->rows(columns), Texts{"7|Warehouse|what is there\r\nand what is not|stock|" + kind + "|-5|NULL"});
  EXPECT_EQ(text_of(*this->read(7)), text_of(this->sample(7)));
}

TYPED_TEST(Saving, changes_no_other_row) {
  this->create(6);
  this->create(test_support::sample_definition<typename TestFixture::Other>(8));
  const auto others = this->all_rows();
  this->insert_row(7, "");
  this->sample(7).save(&this->db(), 0);
  this->execute("DELETE FROM CSEXDB WHERE EXDBID = 7");
  EXPECT_EQ(this->all_rows(), others);
}

TYPED_TEST(Saving, a_removed_row_leaves_it_removed) {
  this->create(7);
  const auto definition = this->read(7);
  definition->remove(&this->db());
  definition->name = "still written";
  definition->save(&this->db(), 0);
  EXPECT_EQ(this->rows("SELECT NAME, VFLG FROM CSEXDB"), Texts{"still written|D"});
  EXPECT_TRUE(this->ids_for(0).empty());
}

TYPED_TEST(Saving, an_id_that_is_not_in_the_table_is_told_in_words_and_nothing_is_written) {
  this->create(7);
  const auto before = this->all_rows();
  EXPECT_EQ(failure_of([&] { this->sample(8).save(&this->db(), 0); }), test_support::not_there);
  EXPECT_EQ(this->all_rows(), before);
}

TYPED_TEST(Saving, does_not_ask_who_has_written_in_between_as_is_meant) {
  this->create(7);
  const auto mine = this->read(7);
  const auto theirs = this->read(7);
  theirs->name = "theirs";
  theirs->save(&this->db(), 0);
  mine->name = "mine";
  mine->save(&this->db(), 0);
  EXPECT_EQ(this->value("SELECT NAME FROM CSEXDB"), "mine");
}

TYPED_TEST(Saving, a_row_read_as_the_other_kind_makes_it_one_of_this_kind) {
  this->create(test_support::sample_definition<typename TestFixture::Other>(7));
  auto definition = this->sample(7);
  definition.save(&this->db(), 0);
  EXPECT_EQ(this->value("SELECT FLG1 FROM CSEXDB"), std::to_string(TypeParam::Definition::kind));
}

TYPED_TEST(Saving, twice_is_no_failure) {
  const test_support::HeldClock clock(test_support::utc(2024, 7, 1, 12));
  this->create(7);
  const auto definition = this->read(7);
  definition->save(&this->db(), 0);
  const auto before = this->all_rows();
  definition->save(&this->db(), 0);
  EXPECT_EQ(this->all_rows(), before);
}

template <class Case>
class Removing : public test_support::StoredTest<Case> {};
TYPED_TEST_SUITE(Removing, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(Removing, marks_the_row_and_changes_nothing_else) {
  this->create(6);
  this->create(7);
  auto wanted = this->all_rows();
  this->read(7)->remove(&this->db());
  EXPECT_EQ(this->rows("SELECT EXDBID, VFLG FROM CSEXDB ORDER BY EXDBID"), (Texts{"6|NULL", "7|D"}));
  this->execute("UPDATE CSEXDB SET VFLG = NULL");
  EXPECT_EQ(this->all_rows(), wanted);
}

TYPED_TEST(Removing, a_removed_row_succeeds_and_leaves_D) {
  this->create(7);
  const auto definition = this->read(7);
  definition->remove(&this->db());
  definition->remove(&this->db());
  EXPECT_EQ(this->value("SELECT VFLG FROM CSEXDB"), "D");
}

TYPED_TEST(Removing, an_id_that_is_not_in_the_table_is_told_in_words) {
  this->create(7);
  const auto before = this->all_rows();
  EXPECT_EQ(failure_of([&] { this->sample(8).remove(&this->db()); }), test_support::not_there);
  EXPECT_EQ(this->all_rows(), before);
}

// Between the opening and the change another writer takes the row away.
struct VanishingRows : RSExtDBForDelete {
  VanishingRows(CDatabase* database, std::function<void()> before_update)
      : RSExtDBForDelete(database), before(std::move(before_update)) {}
  BOOL Update() override {
    before();
    return RSExtDBForDelete::Update();
  }
  std::function<void()> before;
};

struct IdleRows : RSExtDBForDelete {
  using RSExtDBForDelete::RSExtDBForDelete;
  BOOL Update() override {
    CancelUpdate();
    return FALSE;
  }
};

/// The code of the CDBException that is thrown; 0 when none is.
template <class Work>
int database_code_of(Work&& work) {
  try {
    work();
  } catch (CDBException* failure) {
    const int code = failure->m_nRetCode;
    failure->Delete();
    return code;
  }
  return 0;
}

TYPED_TEST(Removing, a_row_that_vanished_since_the_opening_is_a_failure_with_code_1008) {
  this->create(7);
  VanishingRows rows(&this->db(), [&] { this->execute("DELETE FROM CSEXDB"); });
  EXPECT_EQ(database_code_of([&] { mark_as_removed(rows, 7); }), 1008);
}

TYPED_TEST(Removing, an_update_that_does_nothing_is_a_failure_with_code_1008) {
  this->create(7);
  IdleRows rows(&this->db());
  EXPECT_EQ(database_code_of([&] { mark_as_removed(rows, 7); }), 1008);
  EXPECT_EQ(this->value("SELECT VFLG FROM CSEXDB"), "NULL");
}

template <class Case>
class Stored : public test_support::StoredTest<Case> {};
TYPED_TEST_SUITE(Stored, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(Stored, every_operation_without_an_open_connection_says_that_the_recordset_does_not_open) {
  using Info = typename TypeParam::Definition;
  using Functions = typename TestFixture::Kind;
  CDatabase closed;
  auto definition = this->sample(7);
  COleDateTime moment;
  typename TestFixture::Definitions all;
  std::vector<int> ids;
  int found = 5;
  int saved = 5;
  for (CDatabase* database : {&closed, static_cast<CDatabase*>(nullptr)}) {
    const std::function<void()> operations[] = {[&] { Info::create(database, 0, definition, moment); },
                                                [&] { Info::retrieve(database, 0, 7); },
                                                [&] { definition.refresh(database, 0); },
                                                [&] { definition.save(database, 0); },
                                                [&] { definition.remove(database); },
                                                [&] { Functions::list(database, 0, 0, all, moment); },
                                                [&] { Functions::list_ids(database, ids); },
                                                [&] { Functions::rewrite_all(database, 0, found, saved); }};
    for (const auto& operation : operations)
      EXPECT_EQ(failure_of(operation), test_support::does_not_open);
  }
  EXPECT_EQ(found, 0);
  EXPECT_EQ(saved, 0);
}

}  // namespace
