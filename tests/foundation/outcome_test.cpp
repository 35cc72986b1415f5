// Plan
//   guarded: results of every shape, each of the seven kinds with code and text, what is none of them passes ->
//   guarded.* What was thrown by pointer is released -> guarded.releases_* Classes: the diagnostics of SQLite (both
//   ways), MariaDB, PostgreSQL, SQL Server and Oracle -> diagnostics.* Several records, truncation on reading, a
//   failure without any diagnostics -> describe_failure.* Only a deadlock may be tried again, a commit in doubt never;
//   every class has a name and an advice -> Failure.*
#include "spcbase/foundation/outcome.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/messages.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/error_info.h"
#include "spcbase/platform/database/database.h"
#include "spcbase/platform/database/db_exception.h"
#include "spcbase/schedule/strings.h"

namespace {

TEST(guarded, gives_the_result_of_the_work) {
  const auto number = guarded([] { return 42; });
  ASSERT_TRUE(number);
  EXPECT_EQ(number.value(), 42);
  const auto text = guarded([] { return CString("done"); });
  EXPECT_EQ(text.value(), "done");
}

TEST(guarded, work_without_a_result_has_an_outcome_too) {
  bool done = false;
  EXPECT_TRUE(guarded([&] { done = true; }).ok());
  EXPECT_TRUE(done);
  EXPECT_FALSE(guarded([] { throw DBException("no", E_FAIL); }).ok());
}

TEST(guarded, a_result_that_cannot_be_copied_is_handed_out) {
  auto made = guarded([] { return std::make_unique<int>(7); });
  const std::unique_ptr<int> taken = std::move(made).value();
  EXPECT_EQ(*taken, 7);
}

TEST(guarded, asking_for_what_is_not_there_fails) {
  const auto done = guarded([] { return 1; });
  EXPECT_THROW(done.failure(), std::bad_variant_access);
  const auto failed = guarded([]() -> int { throw 5L; });
  EXPECT_THROW(failed.value(), std::bad_variant_access);
}

template <class Thrown>
Failure failure_from(Thrown thrown) {
  const auto outcome = guarded([&]() -> int { throw thrown; });
  EXPECT_FALSE(outcome.ok());
  return outcome.failure();
}

TEST(guarded, tells_the_librarys_own_failure) {
  const Failure f = guarded([] { throw_can_not_open_rs_exception(); }).failure();
  EXPECT_EQ(f.kind, FailureKind::library);
  EXPECT_EQ(f.code, E_FAIL);
  EXPECT_EQ(f.text, "Can not open recordset.");
  EXPECT_EQ(f.failure_class, FailureClass::other);
  EXPECT_TRUE(f.sqlstate.IsEmpty());
  EXPECT_EQ(f.advice, "See that the connection is open; when its link was lost, connect again.");
}

TEST(guarded, knows_what_to_do_about_the_librarys_own_failure_in_another_language_too) {
  install_messages({{1036, "unbrauchbarer Zeitplan"}});
  const Failure f = guarded([] {
                      schd::ScheduleStringInfo schedule;
                      schd::ScheduleStringInfo::parse_schedule_string("1 2", schedule);
                    }).failure();
  install_messages({});
  EXPECT_EQ(f.text, "unbrauchbarer Zeitplan");
  EXPECT_EQ(f.advice, "Give five fields: minute, hour, day of the month, month, day of the week.");
}

TEST(guarded, has_no_special_advice_for_a_text_that_it_does_not_know) {
  EXPECT_GE(failure_from(DBException("a host's own", E_FAIL)).advice.Find("nothing else is known"), 0);
}

TEST(guarded, tells_a_failure_of_revision_control) {
  const Failure f = failure_from(rev::RevisionException(1, 2, 3, 4));
  EXPECT_EQ(f.kind, FailureKind::revision);
  EXPECT_EQ(f.code, E_FAIL);
  EXPECT_EQ(f.text, "Approving a broken revision is not allowed.");
  EXPECT_EQ(f.native, 4);
}

TEST(guarded, tells_the_reasons_of_revision_control_apart) {
  std::set<std::string> advices;
  for (int reason = 0; reason <= 4; ++reason) {
    const Failure f = failure_from(rev::RevisionException(1, 2, 3, reason));
    EXPECT_EQ(f.native, reason);
    EXPECT_EQ(f.advice.Find("nothing else is known"), -1) << reason;
    advices.insert(f.advice.GetString());
  }
  EXPECT_EQ(advices.size(), 5U);
  for (const int unknown : {-1, 5}) {
    const Failure f = failure_from(rev::RevisionException(1, 2, 3, unknown));
    EXPECT_EQ(f.native, unknown);
    EXPECT_GE(f.advice.Find("nothing else is known"), 0) << unknown;
  }
}

TEST(guarded, tells_what_is_wrong_with_an_array) {
  for (const long code : {result_code::invalid_argument, long{DISP_E_BADINDEX}}) {
    const Failure f = failure_from(code);
    EXPECT_EQ(f.code, code);
    EXPECT_FALSE(f.text.IsEmpty());
    EXPECT_GE(f.advice.Find("dimensions"), 0) << f.advice;
  }
}

TEST(guarded, tells_a_result_code_in_words) {
  for (const long code : {result_code::update_failed, result_code::open_failed, result_code::bad_value,
                          result_code::no_array_or_row, result_code::invalid_argument}) {
    const Failure f = failure_from(code);
    EXPECT_EQ(f.kind, FailureKind::result_code);
    EXPECT_EQ(f.code, code);
    EXPECT_FALSE(f.text.IsEmpty());
    EXPECT_FALSE(f.advice.IsEmpty());
  }
  EXPECT_NE(failure_from(result_code::open_failed).text, failure_from(result_code::bad_value).text);
}

TEST(guarded, tells_a_database_failure_with_state_and_native_code) {
  const auto outcome = guarded([] {
    spcdb::raise(spcdb::Diagnostic{"23000", 1062, "Duplicate entry '1' for key 'PRIMARY'", "[ma-3.1.15]"});
  });
  const Failure& f = outcome.failure();
  EXPECT_EQ(f.kind, FailureKind::database);
  EXPECT_EQ(f.failure_class, FailureClass::duplicate_key);
  EXPECT_EQ(f.code, -1);
  EXPECT_EQ(f.sqlstate, "23000");
  EXPECT_EQ(f.native, 1062);
  EXPECT_EQ(f.text, "Duplicate entry '1' for key 'PRIMARY'");
}

TEST(guarded, tells_the_failures_of_the_platform) {
  const Failure memory = guarded([] { AfxThrowMemoryException(); }).failure();
  EXPECT_EQ(memory.kind, FailureKind::platform);
  EXPECT_EQ(memory.code, E_OUTOFMEMORY);
  EXPECT_FALSE(memory.text.IsEmpty());
  const Failure argument = guarded([] { AfxThrowInvalidArgException(); }).failure();
  EXPECT_EQ(argument.kind, FailureKind::platform);
  EXPECT_EQ(argument.code, E_INVALIDARG);
  const Failure unsupported = guarded([] { AfxThrowNotSupportedException(); }).failure();
  EXPECT_EQ(unsupported.kind, FailureKind::platform);
  EXPECT_EQ(unsupported.code, E_FAIL);
}

TEST(guarded, tells_an_automation_failure) {
  const Failure f = failure_from(_com_error(E_POINTER));
  EXPECT_EQ(f.kind, FailureKind::automation);
  EXPECT_EQ(f.code, E_POINTER);
  EXPECT_FALSE(f.text.IsEmpty());
}

TEST(guarded, prefers_the_description_of_an_automation_failure) {
  auto made = create_err_object(nullptr, nullptr, "the gauge is off");
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(failure_from(_com_error(E_FAIL, made.second, true)).text, "the gauge is off");
}

TEST(guarded, finds_the_databases_diagnostics_behind_an_automation_failures_description) {
  auto made = create_err_object(nullptr, nullptr, "Deadlock found\nState:40001,Native:1213");
  SetErrorInfo(0, nullptr);
  const Failure f = failure_from(_com_error(E_FAIL, made.second, true));
  EXPECT_EQ(f.kind, FailureKind::automation);
  EXPECT_EQ(f.failure_class, FailureClass::deadlock);
  EXPECT_TRUE(f.may_retry());
  EXPECT_EQ(f.text, "Deadlock found");
  EXPECT_EQ(f.sqlstate, "40001");
  EXPECT_EQ(f.native, 1213);
}

TEST(guarded, tells_a_standard_failure) {
  const Failure f = failure_from(std::length_error("vector<T> too long"));
  EXPECT_EQ(f.kind, FailureKind::standard);
  EXPECT_EQ(f.code, E_FAIL);
  EXPECT_EQ(f.text, "vector<T> too long");
  EXPECT_EQ(failure_from(std::bad_alloc()).code, E_OUTOFMEMORY);
}

TEST(guarded, lets_pass_what_is_none_of_the_seven_kinds) {
  EXPECT_THROW(guarded([]() -> int { throw 'x'; }), char);
  EXPECT_THROW(guarded([]() -> int { throw 5; }), int);
}

// Counts its own end.
class Counted : public CException {
 public:
  explicit Counted(int& ended) : ended_(ended) {}
  ~Counted() override { ++ended_; }

 private:
  int& ended_;
};

TEST(guarded, releases_what_was_thrown_by_pointer) {
  int ended = 0;
  const auto outcome = guarded([&] { throw static_cast<CException*>(new Counted(ended)); });
  EXPECT_EQ(ended, 1);
  EXPECT_EQ(outcome.failure().text, "An unknown error occurred");
}

struct Sample {
  const char* server;
  const char* state;
  long native;
  const char* text;
  FailureClass expected;
};

// What the drivers say, word for word.
const Sample samples[] = {
    {"sqlite", "23000", 1555, "UNIQUE constraint failed: EP.ID", FailureClass::duplicate_key},
    {"sqlite", "23000", 2067, "UNIQUE constraint failed: E2.A, E2.B", FailureClass::duplicate_key},
    {"sqlite", "23000", 787, "FOREIGN KEY constraint failed", FailureClass::missing_reference},
    {"sqlite", "23000", 1299, "NOT NULL constraint failed: E2.A", FailureClass::other},
    {"sqlite", "23000", 275, "CHECK constraint failed: POSITIVE", FailureClass::other},
    {"sqlite", "22001", 275, "CHECK constraint failed: CSVALUE_NAME_WIDTH", FailureClass::value_too_long},
    {"sqlite", "42S02", 1, "no such table: T", FailureClass::no_such_object},
    {"sqlite", "42S22", 1, "no such column: C", FailureClass::no_such_object},
    {"sqlite", "42000", 1, "near \"X\": syntax error", FailureClass::syntax},
    {"sqlite", "HYT00", 5, "database is locked", FailureClass::lock_timeout},
    {"sqlite", "40001", 517, "database is locked", FailureClass::deadlock},
    {"sqlite", "25006", 8, "attempt to write a readonly database", FailureClass::permission},
    {"sqlite", "53100", 13, "database or disk is full", FailureClass::storage_full},
    {"sqlite", "08001", 14, "unable to open database file", FailureClass::link_lost},
    {"sqlite", "08001", 26, "file is not a database", FailureClass::other},

    {"sqlite odbc", "HY000", 19, "UNIQUE constraint failed: EP.ID (19)", FailureClass::duplicate_key},
    {"sqlite odbc", "HY000", 19, "FOREIGN KEY constraint failed (19)", FailureClass::missing_reference},
    {"sqlite odbc", "HY000", 19, "CHECK constraint failed: CSVALUE_NAME_WIDTH (19)", FailureClass::value_too_long},
    {"sqlite odbc", "HY000", 19, "NOT NULL constraint failed: E2.A (19)", FailureClass::other},
    {"sqlite odbc", "HY000", 1, "no such table: T (1)", FailureClass::no_such_object},
    {"sqlite odbc", "HY000", 1, "no such column: C (1)", FailureClass::no_such_object},
    {"sqlite odbc", "HY000", 1, "near \"X\": syntax error (1)", FailureClass::syntax},
    {"sqlite odbc", "HY000", 5, "database is locked (5)", FailureClass::lock_timeout},
    {"sqlite odbc", "HY000", 14, "connect failed", FailureClass::link_lost},

    {"mariadb", "23000", 1062, "Duplicate entry '1-1' for key 'UKE2'", FailureClass::duplicate_key},
    {"mariadb", "23000", 1452, "Cannot add or update a child row: a foreign key constraint fails",
     FailureClass::missing_reference},
    {"mariadb", "23000", 1451, "Cannot delete or update a parent row: a foreign key constraint fails",
     FailureClass::missing_reference},
    {"mariadb", "23000", 1048, "Column 'A' cannot be null", FailureClass::other},
    {"mariadb", "HY000", 1364, "Field 'A' doesn't have a default value", FailureClass::other},
    {"mariadb", "22001", 1406, "Data too long for column 'NAME' at row 1", FailureClass::value_too_long},
    {"mariadb", "22003", 1264, "Out of range value for column 'V' at row 1", FailureClass::other},
    {"mariadb", "42S02", 1146, "Table 'd.T' doesn't exist", FailureClass::no_such_object},
    {"mariadb", "42S22", 1054, "Unknown column 'C' in 'field list'", FailureClass::no_such_object},
    {"mariadb", "42000", 1064, "You have an error in your SQL syntax", FailureClass::syntax},
    {"mariadb", "42000", 1142, "SELECT command denied to user", FailureClass::permission},
    {"mariadb", "42000", 1049, "Unknown database 'd'", FailureClass::no_such_object},
    {"mariadb", "42000", 1091, "Can't DROP FOREIGN KEY `FK`; check that it exists", FailureClass::no_such_object},
    {"mariadb", "28000", 1045, "Access denied for user", FailureClass::permission},
    {"mariadb", "HY000", 1205, "Lock wait timeout exceeded; try restarting transaction", FailureClass::lock_timeout},
    {"mariadb", "40001", 1213, "Deadlock found when trying to get lock; try restarting transaction",
     FailureClass::deadlock},
    {"mariadb", "HY018", 1969, "Query execution was interrupted (max_statement_time exceeded)",
     FailureClass::lock_timeout},
    {"mariadb", "HY000", 5014, "Write error: Broken pipe (32)", FailureClass::link_lost},
    {"mariadb", "08S01", 2006, "Server has gone away", FailureClass::link_lost},
    {"mariadb, at a prepare", "HY001", 2006, "Server has gone away", FailureClass::link_lost},
    {"mariadb, at a prepare", "HY001", 2013, "Lost connection to server during query", FailureClass::link_lost},
    {"mariadb", "08S01", 1047, "WSREP has not yet prepared node for application use", FailureClass::link_lost},
    {"mariadb", "08003", 0, "Connection does not exist", FailureClass::link_lost},
    {"mariadb", "HY000", 2002, "Can't connect to local server through socket", FailureClass::link_lost},
    {"mariadb", "HY000", 1114, "The table 'T' is full", FailureClass::storage_full},
    {"mariadb", "HY000", 1105, "Unknown error", FailureClass::other},

    {"postgresql", "23505", 1, "duplicate key value violates unique constraint \"pkep\"", FailureClass::duplicate_key},
    {"postgresql", "23503", 1, "violates foreign key constraint \"fk\"", FailureClass::missing_reference},
    {"postgresql", "23502", 1, "null value in column \"a\"", FailureClass::other},
    {"postgresql", "22001", 1, "value too long for type character varying(255)", FailureClass::value_too_long},
    {"postgresql", "42P01", 1, "relation \"t\" does not exist", FailureClass::no_such_object},
    {"postgresql", "42703", 1, "column \"c\" does not exist", FailureClass::no_such_object},
    {"postgresql", "42601", 1, "syntax error at or near \"X\"", FailureClass::syntax},
    {"postgresql", "42501", 1, "permission denied for table t", FailureClass::permission},
    {"postgresql", "55P03", 1, "canceling statement due to lock timeout", FailureClass::lock_timeout},
    {"postgresql", "57014", 1, "canceling statement due to statement timeout", FailureClass::lock_timeout},
    {"postgresql", "40P01", 1, "deadlock detected", FailureClass::deadlock},
    {"postgresql", "57P01", 1, "terminating connection due to administrator command", FailureClass::link_lost},
    {"postgresql", "HY000", 1, "server closed the connection unexpectedly\n\tThis probably means",
     FailureClass::link_lost},
    {"postgresql", "08007", 0, "the outcome of the transaction is not known", FailureClass::commit_in_doubt},
    {"postgresql", "53100", 1, "could not extend file: No space left on device", FailureClass::storage_full},

    {"sql server", "23000", 2627, "Violation of PRIMARY KEY constraint 'PK_T'.", FailureClass::duplicate_key},
    {"sql server", "23000", 2601, "Cannot insert duplicate key row in object 'dbo.T'", FailureClass::duplicate_key},
    {"sql server", "23000", 547, "The INSERT statement conflicted with the FOREIGN KEY constraint \"FK\".",
     FailureClass::missing_reference},
    {"sql server", "23000", 547, "The INSERT statement conflicted with the CHECK constraint \"CK\".",
     FailureClass::other},
    {"sql server", "22001", 8152, "String or binary data would be truncated.", FailureClass::value_too_long},
    {"sql server", "40001", 1205,
     "Transaction was deadlocked on lock resources and has been chosen as the deadlock victim.",
     FailureClass::deadlock},
    {"sql server", "HYT00", 0, "Query timeout expired", FailureClass::lock_timeout},
    {"sql server", "42000", 1222, "Lock request time out period exceeded.", FailureClass::lock_timeout},
    {"sql server", "42S02", 208, "Invalid object name 'T'.", FailureClass::no_such_object},
    {"sql server", "42S22", 207, "Invalid column name 'C'.", FailureClass::no_such_object},
    {"sql server", "42000", 102, "Incorrect syntax near 'X'.", FailureClass::syntax},
    {"sql server", "42000", 229, "The SELECT permission was denied on the object 'T'", FailureClass::permission},
    {"sql server", "42000", 1105, "Could not allocate space for object 'T' in database", FailureClass::storage_full},
    {"sql server", "08S01", 10054, "TCP Provider: An existing connection was forcibly closed", FailureClass::link_lost},

    {"oracle", "23000", 1, "unique constraint (SPC.PKMON) violated", FailureClass::duplicate_key},
    {"oracle", "23000", 2291, "integrity constraint (SPC.FK) violated - parent key not found",
     FailureClass::missing_reference},
    {"oracle", "HY000", 12899, "value too large for column NAME (actual: 256, maximum: 255)",
     FailureClass::value_too_long},
    {"oracle", "HY000", 60, "deadlock detected while waiting for resource", FailureClass::deadlock},
    {"oracle", "HY000", 54, "resource busy and acquire with NOWAIT specified", FailureClass::lock_timeout},
    {"oracle", "42S02", 942, "table or view does not exist", FailureClass::no_such_object},
    {"oracle", "HY000", 904, "\"C\": invalid identifier", FailureClass::no_such_object},
    {"oracle", "HY000", 1031, "insufficient privileges", FailureClass::permission},
    {"oracle", "28000", 1017, "invalid username/password; logon denied", FailureClass::permission},
    {"oracle", "HY000", 1653, "unable to extend table SPC.T by 128 in tablespace USERS", FailureClass::storage_full},
    {"oracle", "HY000", 3113, "end-of-file on communication channel", FailureClass::link_lost},

    {"standard", "40003", 0, "statement completion unknown", FailureClass::commit_in_doubt},
    {"standard", "37000", 0, "syntax error or access violation", FailureClass::syntax},
    {"driver manager", "IM002", 0, "Data source name not found and no default driver specified", FailureClass::other},
    {"driver manager", "01000", 0, "Can't open lib 'nosuch' : file not found", FailureClass::other},
};

TEST(diagnostics, mean_what_their_drivers_mean) {
  for (const Sample& sample : samples) {
    const CDBException e(spcdb::Diagnostic{sample.state, sample.native, sample.text, "[driver][5.1,Native:1062]"});
    const Failure f = describe_failure(e);
    EXPECT_EQ(f.failure_class, sample.expected)
        << sample.server << ": " << sample.text << " is told as " << describe(f.failure_class);
    EXPECT_EQ(f.sqlstate, sample.state);
    EXPECT_EQ(f.native, sample.native) << sample.text;
  }
}

Failure failure_of_records(spcdb::Diagnostic first, const spcdb::Diagnostic& second) {
  first.further.push_back(second);
  const CDBException e(first);
  return describe_failure(e);
}

TEST(describe_failure, the_first_record_that_tells_something_decides) {
  const Failure f = failure_of_records({"01000", 0, "The statement has been terminated.", ""},
                                       {"23000", 2627, "Violation of PRIMARY KEY constraint", ""});
  EXPECT_EQ(f.failure_class, FailureClass::duplicate_key);
  EXPECT_EQ(f.sqlstate, "23000");
  EXPECT_EQ(f.native, 2627);
  const Failure lost = failure_of_records({"08S01", 1, "link", ""}, {"42000", 2, "statement", ""});
  EXPECT_EQ(lost.failure_class, FailureClass::link_lost);
  EXPECT_EQ(lost.native, 1);
}

TEST(describe_failure, a_doubt_about_a_commit_outweighs_every_other_record) {
  const Failure f = failure_of_records({"40001", 1213, "deadlock", ""}, {"08007", 0, "commit", ""});
  EXPECT_EQ(f.failure_class, FailureClass::commit_in_doubt);
  EXPECT_EQ(f.sqlstate, "08007");
  EXPECT_FALSE(f.may_retry());
}

TEST(describe_failure, a_value_cut_on_reading_is_too_long) {
  CDBException e(AFX_SQL_ERROR_DATA_TRUNCATED);
  e.m_strError = "A value does not fit its field.";
  const Failure f = describe_failure(e);
  EXPECT_EQ(f.failure_class, FailureClass::value_too_long);
  EXPECT_EQ(f.code, 1021);
  EXPECT_GE(f.advice.Find("allow long data more bytes (--max-size"), 0) << f.advice;
}

TEST(describe_failure, a_driver_that_cannot_stream_gets_an_advice_of_its_own) {
  for (const char* state : {"HYC00", "IM001"}) {
    const Failure f = describe_failure(CDBException(spcdb::Diagnostic{state, 106, "no such feature", "[driver]"}));
    EXPECT_EQ(f.failure_class, FailureClass::other);
    EXPECT_GE(f.advice.Find("allow long data a buffer (--max-size"), 0) << f.advice;
  }
}

TEST(describe_failure, connecting_twice_is_no_lost_link) {
  CDatabase db;
  db.OpenEx("sqlite::memory:");
  const Failure f = guarded([&] { db.OpenEx("sqlite::memory:"); }).failure();
  EXPECT_EQ(f.sqlstate, "08002");
  EXPECT_EQ(f.failure_class, FailureClass::other);
}

TEST(describe_failure, a_lost_transaction_may_be_tried_again) {
  const CDBException e(spcdb::Diagnostic{"40001", 0, "The server has rolled this transaction back", "[spcbase]",
                                         AFX_SQL_ERROR_TRANSACTION_LOST});
  EXPECT_TRUE(describe_failure(e).may_retry());
}

TEST(describe_failure, without_any_diagnostics_it_is_an_unknown_error) {
  const Failure f = describe_failure(CDBException(-1));
  EXPECT_EQ(f.failure_class, FailureClass::other);
  EXPECT_EQ(f.text, "An unknown error occurred");
  EXPECT_EQ(f.native, 0);
}

TEST(Failure, only_a_deadlock_may_be_tried_again) {
  for (int i = 0; i <= static_cast<int>(FailureClass::other); ++i) {
    Failure f;
    f.failure_class = static_cast<FailureClass>(i);
    EXPECT_EQ(f.may_retry(), f.failure_class == FailureClass::deadlock) << describe(f.failure_class);
  }
}

TEST(Failure, every_class_has_a_name_of_its_own) {
  std::vector<std::string> names;
  for (int i = 0; i <= static_cast<int>(FailureClass::other); ++i)
    names.emplace_back(describe(static_cast<FailureClass>(i)));
  EXPECT_EQ(names, (std::vector<std::string>{"duplicate key", "missing reference", "value too long", "deadlock",
                                             "lock time-out", "link lost", "commit in doubt", "no such object",
                                             "syntax", "permission", "storage full", "other"}));
}

TEST(Failure, has_an_advice_of_one_sentence) {
  for (const Sample& sample : samples) {
    const CDBException e(spcdb::Diagnostic{sample.state, sample.native, sample.text, ""});
    const CString advice = describe_failure(e).advice;
    ASSERT_FALSE(advice.IsEmpty()) << sample.text;
    EXPECT_EQ(advice.Right(1), ".") << advice;
  }
}

}  // namespace
