// Plan
//   exact statements of each operation, for both kinds, on SQLite and MariaDB -> StoredStatements.*
//   the same as a server with brackets gets them, without a real server -> StoredOnBrackets.*
//   the retry: sizes, one attempt, failures that end it, nothing read twice -> StoredRetry.*
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/statement_log.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/datasource/stored_fixture.h"

namespace {

using test_support::HeldClock;
using test_support::StatementLog;
using test_support::text_of;
using test_support::utc;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using Texts = std::vector<std::string>;

const std::string columns = "[EXDBID],[NAME],[DESCR],[TYPE],[FLG1],[FLG2],[MTIME],[VFLG],[DATA]";

template <class Case>
class StoredStatements : public test_support::StoredTest<Case> {
 protected:
  static std::string select(const std::string& filter) {
    return "SELECT " + columns + " FROM [CSEXDB] WHERE " + filter;
  }
  static std::string kind_number() { return std::to_string(Case::Definition::kind); }
};
TYPED_TEST_SUITE(StoredStatements, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(StoredStatements, of_create_are_a_look_at_no_row_and_an_insert_of_all_but_the_flag) {
  StatementLog log(this->db());
  this->create(7);
  EXPECT_THAT(log.statements, ElementsAre(this->select("[EXDBID] = 0"),
                                          "INSERT INTO [CSEXDB] ([EXDBID],[NAME],[DESCR],[TYPE],[FLG1],[FLG2],[MTIME],"
                                          "[DATA]) VALUES (?,?,?,?,?,?,?,?)"));
}

TYPED_TEST(StoredStatements, of_save_are_a_look_at_the_row_and_an_update_of_what_changed) {
  this->insert_row(7, "");
  StatementLog log(this->db());
  this->sample(7).save(&this->db(), 0);
  EXPECT_THAT(log.statements, ElementsAre(this->select("[EXDBID] = 7"),
                                          "UPDATE [CSEXDB] SET [NAME]=?,[DESCR]=?,[TYPE]=?,[FLG2]=?,[MTIME]=?,"
                                          "[DATA]=? WHERE [EXDBID]=?"));
}

TYPED_TEST(StoredStatements, of_retrieve_and_refresh_are_one_look_at_the_row) {
  this->create(-7);
  StatementLog log(this->db());
  const auto definition = this->read(-7);
  definition->refresh(&this->db(), 0);
  EXPECT_THAT(log.statements, ElementsAre(this->select("[EXDBID] = -7"), this->select("[EXDBID] = -7")));
}

TYPED_TEST(StoredStatements, of_remove_are_a_look_at_the_row_and_an_update_of_the_flag) {
  this->create(7);
  StatementLog log(this->db());
  this->sample(7).remove(&this->db());
  EXPECT_THAT(log.statements, ElementsAre("SELECT [EXDBID],[VFLG] FROM [CSEXDB] WHERE [EXDBID] = 7",
                                          "UPDATE [CSEXDB] SET [VFLG]=? WHERE [EXDBID]=?"));
}

TYPED_TEST(StoredStatements, of_a_list_is_one_with_the_predicate_for_a_user_only) {
  StatementLog log(this->db());
  this->ids_for(0);
  this->ids_for(12);
  const std::string filter = "[VFLG] IS NULL AND [FLG1] = " + this->kind_number();
  EXPECT_THAT(
      log.statements,
      ElementsAre(this->select(filter),
                  this->select(filter + " AND ((([EXDBID] IN (SELECT EXDBID FROM CSUINEDB WHERE USERID = 12)) OR "
                                        "([EXDBID] IN (SELECT EXDBID FROM CSGINEDB WHERE GROUPID IN (SELECT GROUPID "
                                        "FROM CSUSGP WHERE USERID = 12)))))")));
}

TYPED_TEST(StoredStatements, of_the_ids_is_one_on_the_view_without_a_test_of_the_flag) {
  StatementLog log(this->db());
  std::vector<int> ids;
  TestFixture::Kind::list_ids(&this->db(), ids);
  EXPECT_THAT(log.statements, ElementsAre("SELECT [EXDBID] FROM [CSEXDBV] WHERE [FLG1] = " + this->kind_number()));
}

TYPED_TEST(StoredStatements, of_the_rewriting_are_the_ids_and_three_for_each_in_their_order) {
  this->create(1);
  this->create(2);
  StatementLog log(this->db());
  int found = 0;
  int saved = 0;
  TestFixture::Kind::rewrite_all(&this->db(), 0, found, saved);
  EXPECT_THAT(log.statements,
              ElementsAre(HasSubstr("[CSEXDBV]"), this->select("[EXDBID] = 1"), this->select("[EXDBID] = 1"),
                          StartsWith("UPDATE"), this->select("[EXDBID] = 2"), this->select("[EXDBID] = 2"),
                          StartsWith("UPDATE")));
}

TYPED_TEST(StoredStatements, of_removing_a_removed_row_ask_again_where_only_changed_rows_are_counted) {
  this->create(7);
  this->sample(7).remove(&this->db());
  std::string text = this->database().connect_text();
  if (const auto found_rows = text.find("OPTION=2"); found_rows != std::string::npos)
    text.replace(found_rows, 8, "OPTION=0");
  CDatabaseEx counts_changes;
  counts_changes.OpenEx(text.c_str());
  StatementLog log(counts_changes);
  this->sample(7).remove(&counts_changes);
  const bool is_mariadb = TypeParam::server == test_support::ServerKind::mariadb;
  EXPECT_EQ(log.count("SELECT COUNT(*) FROM [CSEXDB] WHERE [EXDBID]=?"), is_mariadb ? 1 : 0);
  EXPECT_EQ(log.count("UPDATE"), 1);
  EXPECT_EQ(this->value("SELECT VFLG FROM CSEXDB"), "D");
}

// A server that is played, with names in brackets as SQL Server has them.
class StoredOnBrackets : public testing::Test {
 protected:
  StoredOnBrackets() {
    script->quotes('[', ']');
    script->on_regex("INSERT .*|UPDATE .*").affect(1);
    db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  }
  ~StoredOnBrackets() override { db.Close(); }
  static std::string select(const std::string& filter) {
    return "SELECT " + columns + " FROM [CSEXDB] WHERE " + filter;
  }
  /// Answers every look at whole rows.
  void answer(std::vector<std::vector<test_support::Cell>> with) {
    script->on_regex("SELECT \\[EXDBID\\],\\[NAME\\].*")
        .answer({"EXDBID", "NAME", "DESCR", "TYPE", "FLG1", "FLG2", "MTIME", "VFLG", "DATA"}, std::move(with));
  }
  /// The executed statements with their values.
  Texts executed() {
    Texts texts;
    for (const auto& call : script->calls_of("execute"))
      texts.push_back(call.statement + " <- " + call.parameters);
    return texts;
  }
  static std::vector<test_support::Cell> row(int id) {
    return {id, "row", nullptr, "type", 0, 3, "2024-07-01 12:00:00", nullptr, ""};
  }

  std::shared_ptr<test_support::Script> script = std::make_shared<test_support::Script>();
  CDatabaseEx db;
  test_support::ZoneGuard zone{"America/New_York"};
  HeldClock clock{utc(2024, 7, 1, 16, 30)};
};

TEST_F(StoredOnBrackets, create_inserts_with_every_value_as_a_parameter) {
  answer({});
  auto definition = test_support::sample_definition<OLEDBInfo>(7);
  definition.name = "O'Brien; DROP TABLE CSEXDB --";
  const std::string size = std::to_string(definition.get_xml(false, false).GetLength());
  COleDateTime modified;
  OLEDBInfo::create(&db, 0, definition, modified);
  EXPECT_THAT(executed(),
              ElementsAre(select("[EXDBID] = ?") + " <- 0",
                          "INSERT INTO [CSEXDB] ([EXDBID],[NAME],[DESCR],[TYPE],[FLG1],[FLG2],[MTIME],[DATA]) VALUES "
                          "(?,?,?,?,?,?,?,?) <- 7, 'O''Brien; DROP TABLE CSEXDB --', 'what is there\r\nand what is "
                          "not', 'stock', 0, -5, '2024-07-01 16:30:00.000', " +
                              size + " bytes in pieces"));
}

TEST_F(StoredOnBrackets, save_updates_by_the_id) {
  answer({row(7)});
  auto definition = test_support::sample_definition<OLEDBInfo>(7);
  definition.type = "type";
  const std::string size = std::to_string(definition.get_xml(false, false).GetLength());
  definition.save(&db, 0);
  EXPECT_THAT(executed(),
              ElementsAre(select("[EXDBID] = ?") + " <- 7",
                          "UPDATE [CSEXDB] SET [NAME]=?,[DESCR]=?,[FLG2]=?,[MTIME]=?,[DATA]=? WHERE [EXDBID]=? <- "
                          "'Warehouse', 'what is there\r\nand what is not', -5, '2024-07-01 16:30:00.000', " +
                              size + " bytes in pieces, 7"));
}

TEST_F(StoredOnBrackets, remove_writes_the_flag_by_the_id) {
  script->on_prefix("SELECT [EXDBID],[VFLG]").answer({"EXDBID", "VFLG"}, {{7, "D"}});
  test_support::sample_definition<ADONETDBInfo>(7).remove(&db);
  EXPECT_THAT(executed(), ElementsAre("SELECT [EXDBID],[VFLG] FROM [CSEXDB] WHERE [EXDBID] = ? <- 7",
                                      "UPDATE [CSEXDB] SET [VFLG]=? WHERE [EXDBID]=? <- 'D', 7"));
}

TEST_F(StoredOnBrackets, lists_give_the_user_twice) {
  answer({row(7), row(8)});
  script->on_prefix("SELECT [EXDBID] FROM [CSEXDBV]").answer({"EXDBID"}, {{7}});
  std::vector<std::shared_ptr<ADONETDBInfo>> all;
  COleDateTime newest;
  EXPECT_EQ(get_all_adonet_db(&db, 0, 12, all, newest), 2);
  std::vector<int> ids;
  EXPECT_EQ(get_all_adonet_db_id(&db, ids), 1);
  EXPECT_THAT(executed(),
              ElementsAre(select("[VFLG] IS NULL AND [FLG1] = ? AND ((([EXDBID] IN (SELECT EXDBID FROM CSUINEDB WHERE "
                                 "USERID = ?)) OR ([EXDBID] IN (SELECT EXDBID FROM CSGINEDB WHERE GROUPID IN (SELECT "
                                 "GROUPID FROM CSUSGP WHERE USERID = ?)))))") +
                              " <- 1, 12, 12",
                          "SELECT [EXDBID] FROM [CSEXDBV] WHERE [FLG1] = ? <- 1"));
}

TEST_F(StoredOnBrackets, a_count_of_no_row_at_the_removal_is_a_failure_with_code_1008) {
  script = std::make_shared<test_support::Script>();
  script->on_prefix("SELECT [EXDBID],[VFLG]").answer({"EXDBID", "VFLG"}, {{7, nullptr}});
  script->on_prefix("SELECT COUNT(*)").answer({"N"}, {{0}});
  script->on_prefix("UPDATE").affect(0);
  script->quotes('[', ']');
  db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  const auto outcome = guarded([&] { test_support::sample_definition<OLEDBInfo>(7).remove(&db); });
  EXPECT_EQ(outcome.failure().kind, FailureKind::database);
  EXPECT_EQ(outcome.failure().code, 1008);
}

// A driver that refuses whatever travels in pieces.
template <class Case>
class StoredRetry : public test_support::StoredTest<Case> {
 protected:
  using Definition = typename Case::Definition;
  static spcdb::Diagnostic refusal() { return test_support::error("HYC00", 106, "The driver has no such feature"); }
  void use_poor_driver() {
    script = test_support::play(this->db());
    script->refuse_streaming(refusal());
    script->column_sizes_zero();
  }
  /// The sizes with which the blob was asked for since the last time.
  Texts sizes() {
    Texts seen;
    for (const auto& call : script->calls_of("bind_bytes"))
      seen.push_back(call.parameters);
    script->forget_calls();
    return seen;
  }
  static int length_of(const Definition& definition) { return definition.get_xml(false, false).GetLength(); }
  static std::string size(int bytes) { return std::to_string(bytes); }

  std::shared_ptr<test_support::Script> script;
};
TYPED_TEST_SUITE(StoredRetry, test_support::StoredCases, test_support::StoredCaseNames);

TYPED_TEST(StoredRetry, reading_with_maximum_size_0_is_one_attempt) {
  this->create(7);
  this->use_poor_driver();
  auto definition = this->sample(7);
  typename TestFixture::Definitions all;
  COleDateTime newest;
  const std::function<void()> reads[] = {[&] { this->read(7); }, [&] { definition.refresh(&this->db(), 0); },
                                         [&] { TestFixture::Kind::list(&this->db(), 0, 0, all, newest); }};
  for (const auto& read : reads) {
    this->script->forget_calls();
    EXPECT_EQ(guarded(read).failure().native, 106);
    EXPECT_THAT(this->script->statements(), testing::SizeIs(1));
  }
}

TYPED_TEST(StoredRetry, reading_goes_on_with_a_buffer_that_doubles) {
  this->create(7);
  const int length = this->length_of(this->sample(7));
  this->use_poor_driver();
  // Three attempts: a third of the length, two thirds, all.
  const int begin = length / 3;
  const Texts wanted{"0", this->size(begin + 1), this->size(2 * (begin + 1)), this->size(4 * (begin + 1))};
  EXPECT_EQ(text_of(*this->read(7, begin)), text_of(this->sample(7)));
  EXPECT_EQ(this->sizes(), wanted);
  typename TypeParam::Definition definition;
  definition.id = 7;
  EXPECT_EQ(definition.refresh(&this->db(), begin), 1);
  EXPECT_EQ(this->sizes(), wanted);
  EXPECT_EQ(text_of(definition), text_of(this->sample(7))) << "what was tried before left nothing behind";
  typename TestFixture::Definitions all;
  COleDateTime newest;
  EXPECT_EQ(TestFixture::Kind::list(&this->db(), begin, 0, all, newest), 1);
  EXPECT_EQ(this->sizes(), wanted);
}

TYPED_TEST(StoredRetry, a_list_that_is_cut_off_in_the_middle_holds_every_row_once) {
  this->insert_row(1, "");
  this->create(2);
  this->use_poor_driver();
  const int half = this->length_of(this->sample(2)) / 2;
  auto all = typename TestFixture::Definitions{nullptr};
  COleDateTime newest;
  EXPECT_EQ(TestFixture::Kind::list(&this->db(), half, 0, all, newest), 2);
  ASSERT_EQ(all.size(), 3U);
  EXPECT_EQ(all[0], nullptr);
  EXPECT_EQ(all[1]->id + all[2]->id, 3);
}

TYPED_TEST(StoredRetry, writing_goes_on_with_the_length_of_the_xml_whatever_the_maximum) {
  this->use_poor_driver();
  const int length = this->length_of(this->sample(7));
  for (const int maximum : {0, 100, -1}) {
    auto definition = this->sample(7);
    COleDateTime modified;
    TypeParam::Definition::create(&this->db(), maximum, definition, modified);
    EXPECT_EQ(this->sizes(), (Texts{"0", this->size(length + 1)})) << maximum;
    EXPECT_EQ(text_of(*this->read(7, length)), text_of(this->sample(7)));
    this->script->forget_calls();
    this->execute("DELETE FROM CSEXDB");
  }
}

TYPED_TEST(StoredRetry, saving_over_a_longer_blob_doubles_until_the_old_one_fits) {
  auto longer = this->sample(7);
  const int length = this->length_of(this->sample(7));
  longer.catalog_separator = CString('.', 3 * length);
  this->create(longer);
  this->use_poor_driver();
  this->sample(7).save(&this->db(), 0);
  EXPECT_EQ(this->sizes(),
            (Texts{"0", this->size(length + 1), this->size(2 * (length + 1)), this->size(4 * (length + 1))}));
  EXPECT_EQ(text_of(*this->read(7, length)), text_of(this->sample(7)));
}

TYPED_TEST(StoredRetry, a_failure_that_is_no_cut_ends_the_second_phase) {
  this->create(7);
  this->use_poor_driver();
  this->script->on_prefix("UPDATE").refuse(test_support::error("40001", 1213, "Deadlock found"));
  auto definition = this->sample(7);
  definition.name = "another";
  const auto outcome = guarded([&] { definition.save(&this->db(), 0); });
  EXPECT_EQ(outcome.failure().native, 1213);
  EXPECT_THAT(this->sizes(), testing::SizeIs(2)) << "in pieces, and once through a buffer";
  EXPECT_EQ(this->value("SELECT NAME FROM CSEXDB"), "Warehouse");
}

TYPED_TEST(StoredRetry, failures_of_the_librarys_own_rules_are_not_tried_again) {
  this->script = test_support::play(this->db());
  EXPECT_EQ(test_support::failure_of([&] { this->read(7, 1000); }), test_support::not_there);
  EXPECT_EQ(test_support::failure_of([&] { this->sample(7).save(&this->db(), 1000); }), test_support::not_there);
  EXPECT_EQ(this->sizes(), (Texts{"0", "0"}));
}

TYPED_TEST(StoredRetry, a_blob_beyond_the_last_size_is_cut_off_for_good) {
  auto longer = this->sample(7);
  longer.catalog_separator = CString('.', 2000);
  this->create(longer);
  this->use_poor_driver();
  const auto outcome = guarded([&] { this->read(7, -1); });
  EXPECT_EQ(outcome.failure().code, AFX_SQL_ERROR_DATA_TRUNCATED);
  EXPECT_THAT(this->sizes(), testing::SizeIs(12));
}

}  // namespace
