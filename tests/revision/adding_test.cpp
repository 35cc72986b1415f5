// Plan, on SQLite and MariaDB
//   numbers and versions: the first, minor and major ones, other objects and types -> Adding.*versions*
//   the row: every column, moments in UTC, reasons that are cut, null texts -> Adding.*
//   the payload: every byte, one byte, none, 16 MiB -> Adding.*payload*
//   the record in the cache, with what is left out on purpose; caching off -> Adding.*cached*
//   five attempts: a number that is taken, a payload that fails, a failure that is no database failure
//     -> Adding.*attempt*
//   an index serves the highest revision -> Adding.an_index_*
#include "spcbase/platform/database/connection.h"
#include "tests/revision/revision_fixture.h"

namespace {

using test_support::bytes_of;
using test_support::error;
using test_support::HeldClock;
using test_support::payload;
using test_support::ServerKind;
using test_support::text_of;
using test_support::utc;
using test_support::version_of;
using test_support::ZoneGuard;
using Texts = std::vector<std::string>;

class Adding : public test_support::RevisionTest {
 protected:
  std::string stored_reason(const std::string& reason) {
    manager.add_new_revision(&db(), -1, 5, *payload("p"), anna, "anna", reason.c_str(), false);
    return rows("SELECT CREASON FROM CSOBJREV ORDER BY REVISION DESC").front();
  }
  /// How the server finds the highest revision.
  std::string plan(const std::string& query) {
    std::string all;
    for (const std::string& row : rows((kind() == ServerKind::sqlite ? "EXPLAIN QUERY PLAN " : "EXPLAIN ") + query))
      all += row + "\n";
    return all;
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, Adding, test_support::main_servers(), test_support::server_name);

TEST_P(Adding, the_first_version_is_0_1_whatever_the_major_flag_says) {
  EXPECT_EQ(add("a", false, 5), 1);
  EXPECT_EQ(add("a", true, 6), 1);
  EXPECT_EQ(versions(5), Texts{"1|0|1"});
  EXPECT_EQ(versions(6), Texts{"1|0|1"});
}

TEST_P(Adding, versions_go_0_1_0_2_then_1_0_for_a_major_one_then_1_1) {
  EXPECT_EQ(add("a"), 1);
  EXPECT_EQ(add("b"), 2);
  EXPECT_EQ(add("c", true), 3);
  EXPECT_EQ(add("d"), 4);
  EXPECT_EQ(add("e", true), 5);
  EXPECT_EQ(versions(), (Texts{"1|0|1", "2|0|2", "3|1|0", "4|1|1", "5|2|0"}));
}

TEST_P(Adding, versions_of_objects_and_types_are_counted_apart) {
  add("a");
  rev::RevisionManager others(4);
  EXPECT_EQ(add_by(others, "b"), 1);
  EXPECT_EQ(add("c", false, 6), 1);
  EXPECT_EQ(add("d"), 2);
  EXPECT_EQ(add("e", false, -6), 1);
}

TEST_P(Adding, stores_every_column_and_the_time_in_utc) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 7, 1, 12, 30, 15));
  add("a");
  EXPECT_EQ(rows("SELECT OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, FLAG, CUSERID, CUSER, CREASON, ALEVEL, ATYPE, "
                 "ATIME, AUSERID, AUSER, AREASON FROM CSOBJREV"),
            Texts{"5|3|1|0|1|0|7|anna|why|NULL|NULL|NULL|NULL|NULL|NULL"});
  EXPECT_THAT(value("SELECT CTIME FROM CSOBJREV"), testing::StartsWith("2024-07-01 12:30:15"));
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT JOIN CSOBJREV ON CSREVDAT.REVID = CSOBJREV.REVID"), "1");
}

TEST_P(Adding, in_the_hour_that_comes_twice_the_second_is_stored_as_the_first) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 10, 27, 1, 30));
  add("a");
  EXPECT_THAT(value("SELECT CTIME FROM CSOBJREV"), testing::StartsWith("2024-10-27 00:30:00"));
  EXPECT_EQ(text_of(get(1)->ctime), "2024-10-27 02:30:00");
}

TEST_P(Adding, a_reason_is_cut_to_4000_and_never_within_a_character) {
  EXPECT_EQ(stored_reason(std::string(4000, 'x')), std::string(4000, 'x'));
  EXPECT_EQ(stored_reason(std::string(4001, 'x')), std::string(4000, 'x'));
  EXPECT_EQ(stored_reason(std::string(5000, 'x')), std::string(4000, 'x'));
  std::string umlauts;
  for (int i = 0; i < 2500; ++i)
    umlauts += "\u00e4";
  EXPECT_EQ(stored_reason(umlauts), umlauts.substr(0, 4000));
  EXPECT_EQ(stored_reason("x" + umlauts), "x" + umlauts.substr(0, 3998));
}

TEST_P(Adding, behind_the_last_number_of_the_column_comes_its_first) {
  insert_row(5, 2147483647);
  execute("UPDATE CSOBJREV SET MAJORVER = 2147483647, MINORVER = 2147483647");
  constexpr int first = -2147483647 - 1;
  EXPECT_EQ(add("a"), first);
  EXPECT_EQ(versions().front(), "-2147483648|2147483647|-2147483648");
  EXPECT_EQ(bytes_of(*get(first)), "a");
}

TEST_P(Adding, null_texts_are_stored_as_empty_ones) {
  manager.add_new_revision(&db(), -1, 5, *payload("p"), anna, nullptr, nullptr, false);
  EXPECT_EQ(rows("SELECT CUSER, CREASON FROM CSOBJREV"), Texts{"|"});
  EXPECT_EQ(get(1)->creason, "");
}

TEST_P(Adding, quotes_and_backslashes_are_stored_as_they_are) {
  manager.add_new_revision(&db(), -1, 5, *payload("p"), anna, "O'Hara \\", "it's \\' a % test", false);
  EXPECT_EQ(rows("SELECT CUSER, CREASON FROM CSOBJREV"), Texts{"O'Hara \\|it's \\' a % test"});
}

TEST_P(Adding, a_payload_comes_back_byte_for_byte) {
  std::string every_byte;
  for (int i = 0; i < 1024; ++i)
    every_byte += static_cast<char>(i % 256);
  std::string large(16U << 20U, '\0');
  for (std::size_t i = 0; i < large.size(); ++i)
    large[i] = static_cast<char>(i * 7 + i / 251);
  rev::RevisionManager reader(object_type, -1);
  for (const std::string& bytes : {every_byte, std::string("1"), std::string(1, '\0'), large}) {
    const int revision = add(bytes);
    const auto record = reader.get_revision_info(&db(), -1, 5, revision);
    ASSERT_NE(record, nullptr);
    EXPECT_TRUE(bytes_of(*record) == bytes) << bytes.size() << " bytes";
  }
}

TEST_P(Adding, an_empty_payload_is_none_and_makes_a_broken_revision) {
  EXPECT_EQ(add(""), 1);
  rev::RevisionManager reader(object_type, -1);
  EXPECT_EQ(bytes_of(*reader.get_revision_info(&db(), -1, 5, 1)), "none");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT WHERE DATA IS NULL"), "1");
}

TEST_P(Adding, the_cached_record_has_no_id_and_version_and_the_whole_reason_as_is_meant) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 7, 1, 12, 30, 15));
  add("a");
  const auto block = payload("second");
  const std::string reason(4500, 'r');
  manager.add_new_revision(&db(), -1, 5, *block, anna, "anna", reason.c_str(), true);
  EXPECT_EQ(versions().back(), "2|1|0");

  const auto record = get(0);
  EXPECT_EQ(record->revision, 2);
  EXPECT_EQ(record->revid, 0);
  EXPECT_EQ(version_of(*record), "0.0");
  EXPECT_EQ(record->flag, 0);
  EXPECT_EQ(record->creason, reason.c_str());
  EXPECT_EQ(record->cuserid, 7);
  EXPECT_EQ(record->cuser, "anna");
  EXPECT_EQ(text_of(record->ctime), "2024-07-01 14:30:15");
  EXPECT_EQ(record->approval, nullptr);
  EXPECT_EQ(bytes_of(*record), "second");
  EXPECT_NE(record->data.long_bin.m_hData, block->m_hData);
  EXPECT_EQ(known_latest(), 2);
}

TEST_P(Adding, with_caching_off_nothing_is_kept) {
  rev::RevisionManager forgetful(object_type, -1);
  add_by(forgetful, "a");
  EXPECT_EQ(rev::RevisionManagerProbe::revisions(forgetful), nullptr);
  EXPECT_EQ(rev::RevisionManagerProbe::latest(forgetful).entries, nullptr);
}

TEST_P(Adding, up_to_five_attempts_are_made_with_a_number_asked_for_each_time) {
  const auto script = test_support::play(db());
  script->on_regex("INSERT INTO .?CSOBJREV.*").times(4).refuse(error("23000", 1062, "Duplicate entry"));
  EXPECT_EQ(add("a"), 1);
  int questions = 0;
  for (const std::string& statement : script->statements())
    questions += statement.find("MAX(REVISION)") != std::string::npos;
  EXPECT_EQ(questions, 5);
  EXPECT_EQ(versions(), Texts{"1|0|1"});
}

TEST_P(Adding, the_failure_of_the_fifth_attempt_passes_and_the_caches_stay_as_they_were) {
  add("a");
  const auto before = kept();
  const auto script = test_support::play(db());
  script->on_regex("INSERT INTO .?CSOBJREV.*").times(5).refuse(error("23000", 1062, "Duplicate entry"));
  const auto outcome = guarded([&] { return add("b"); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::duplicate_key);
  EXPECT_EQ(kept(), before);
  EXPECT_EQ(known_latest(), 1);
  EXPECT_EQ(add("b"), 2) << "five refusals were used up";
}

TEST_P(Adding, an_attempt_goes_past_the_number_that_another_writer_took) {
  // The other writer inserts between our question and our row.
  class Other : public spcdb::StatementObserver {
   public:
    Other(CDatabase& db, CDatabaseEx& second) : db_(db), second_(second) { db_.set_observer(this); }
    ~Other() override { db_.set_observer(nullptr); }
    Other(const Other&) = delete;
    Other& operator=(const Other&) = delete;
    void on_statement(const spcdb::StatementReport& report) noexcept override {
      if (done_ || report.statement.find("MAX(REVISION)") == std::string_view::npos) return;
      done_ = true;
      rev::RevisionManager(object_type, -1)
          .add_new_revision(&second_, -1, 5, *payload("theirs"), bob, "bob", "", false);
    }

   private:
    CDatabase& db_;
    CDatabaseEx& second_;
    bool done_ = false;
  };
  const auto second = second_connection();
  const Other other(db(), *second);
  EXPECT_EQ(add("ours"), 2);
  EXPECT_EQ(rows("SELECT REVISION, MINORVER, CUSER FROM CSOBJREV ORDER BY REVISION"), (Texts{"1|1|bob", "2|2|anna"}));
  EXPECT_EQ(bytes_of(*get(1)), "theirs");
  EXPECT_EQ(bytes_of(*get(2)), "ours");
}

TEST_P(Adding, an_attempt_whose_payload_failed_leaves_a_broken_revision_and_the_next_goes_past_it) {
  const auto script = test_support::play(db());
  // Streaming and the buffer behind it.
  script->on_regex("INSERT INTO .?CSREVDAT.*").times(2).refuse(error("HY000", 4711, "no room"));
  EXPECT_EQ(add("a"), 2);
  EXPECT_EQ(versions(), (Texts{"1|0|1", "2|0|2"}));
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT"), "1");
  EXPECT_EQ(bytes_of(*get(1)), "none");
  EXPECT_EQ(bytes_of(*get(2)), "a");
}

TEST_P(Adding, a_payload_is_its_own_whether_it_is_streamed_or_goes_through_a_buffer) {
  const auto script = test_support::play(db());
  for (const char* way : {"streamed", "buffered", "Streamed", "Buffered", "BUFFERED", "STREAMED"}) {
    const bool buffered = way[0] == 'b' || way[0] == 'B';
    if (buffered) script->on_regex("INSERT INTO .?CSREVDAT.*").once().refuse(error("HY000", 4711, "no streaming"));
    add(way);
  }
  rev::RevisionManager reader(object_type, -1);
  Texts read;
  for (int revision = 1; revision <= 6; ++revision)
    read.push_back(bytes_of(*reader.get_revision_info(&db(), -1, 5, revision)));
  EXPECT_EQ(read, (Texts{"streamed", "buffered", "Streamed", "Buffered", "BUFFERED", "STREAMED"}));
}

TEST_P(Adding, in_the_callers_transaction_a_broken_revision_goes_with_it) {
  const auto script = test_support::play(db());
  script->on_regex("INSERT INTO .?CSREVDAT.*").refuse(error("HY000", 4711, "no room"));
  const auto outcome = guarded([&] {
    AutoODBCTransaction transaction(db(), true);
    add("a");
    transaction.commit();
  });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().native, 4711);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV"), "0");
  EXPECT_TRUE(kept().empty());
  EXPECT_EQ(known_latest(), 0);
}

TEST_P(Adding, a_row_whose_id_cannot_be_read_back_is_reason_4_in_the_first_attempt) {
  const auto script = test_support::play(db());
  script->on_regex("SELECT .?REVID.?,.?OBJID.?,.?OBJTYPE.?,.?REVISION.? FROM .*")
      .answer({"REVID", "OBJID", "OBJTYPE", "REVISION"}, {});
  try {
    add("a");
    FAIL() << "the id was read";
  } catch (const rev::RevisionException& failure) {
    EXPECT_EQ(failure.reason, 4);
    EXPECT_EQ(failure.object_type, 3);
    EXPECT_EQ(failure.object_id, 5);
    EXPECT_EQ(failure.revision, 1);
    EXPECT_EQ(failure.what(), "Approving a broken revision is not allowed.");
  }
  EXPECT_EQ(versions().size(), 1U) << "the row stays";
  EXPECT_TRUE(kept().empty());
}

TEST_P(Adding, on_a_connection_that_is_not_open_cannot_open) {
  CDatabaseEx closed;
  const auto outcome =
      guarded([&] { return manager.add_new_revision(&closed, 0, 5, *payload("a"), 7, "anna", "", false); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().text, "Can not open recordset.");
}

TEST_P(Adding, an_index_serves_the_highest_revision) {
  std::string values;
  for (int row = 0; row < 1000; ++row)
    values += (row == 0 ? "(" : ", (") + std::to_string(row / 25) + ", 3, " + std::to_string(row % 25 + 1) + ")";
  execute("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION) VALUES " + values);
  if (kind() == ServerKind::mariadb) execute("ANALYZE TABLE CSOBJREV");
  const std::string found = plan(
      "SELECT REVISION FROM CSOBJREV WHERE OBJID = 5 AND OBJTYPE = 3 AND REVISION = (SELECT MAX(REVISION) FROM "
      "CSOBJREV "
      "WHERE OBJID = 5 AND OBJTYPE = 3)");
  if (kind() == ServerKind::sqlite) {
    EXPECT_EQ(found.find("SCAN"), std::string::npos) << found;
    EXPECT_THAT(found, testing::HasSubstr("(OBJID=? AND OBJTYPE=? AND REVISION=?)"));
    EXPECT_THAT(found, testing::HasSubstr("(OBJID=? AND OBJTYPE=?)"));
  } else {
    EXPECT_THAT(found, testing::HasSubstr("UKOBJREV1"));
    EXPECT_THAT(found, testing::HasSubstr("Select tables optimized away")) << "one look into the index";
  }
}

}  // namespace
