// The reference data-entry engine.
//
// Plan
//   running numbers      one after the other in each table; unknown tables; a missing row; its own transaction and the
//                        caller's; a plain connection; concurrent connections
//   labels               added, changed, kept apart by characteristic and piece
//   facts                flags and sizes, null, unknown ids
//   failures             codes, error objects with the database's words, null arguments, a closed connection
//   the object           its interfaces and references
#include "schema/description.h"
#include "spcbase/companion/internal/engine_calls.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "tests/dataentry/data_entry_fixture.h"

namespace {

using test_support::DataEntryTest;
using test_support::failure_of;
using test_support::StatementLog;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ReferenceEngine : public DataEntryTest {
 protected:
  SPCLib::IQsmSPCPtr make() { return reference_engine::make(db()); }
  HRESULT next(const char16_t* table, LONG& number) { return reference->GetNextRunningNumber(_bstr_t(table), &number); }
  HRESULT store(LONG characteristic, LONG label, LONG piece, const char* text) {
    return reference->SetLabelValue(8, characteristic, label, piece, _bstr_t(text));
  }
  std::vector<std::string> labels() {
    return rows("SELECT SAMPID, CHRTID, LABELID, PIECENO, LABVALUE FROM CSLDAT ORDER BY LABELID, CHRTID, PIECENO");
  }
  /// The description of the thread's error object, which is taken.
  static std::string description() {
    CString text, source;
    GUID guid{};
    if (!get_err_info_data(text, source, &guid)) return "none";
    EXPECT_EQ(guid, interface_id<SPCLib::IQsmSPC>::value);
    return text.GetString();
  }

  SPCLib::IQsmSPCPtr reference = make();
};

// Running numbers

TEST_P(ReferenceEngine, numbers_follow_each_other_in_each_of_the_27_tables) {
  for (const auto& number : schema::running_numbers()) {
    const _bstr_t table(std::string(number.counter).c_str());
    LONG first = 0;
    LONG second = 0;
    EXPECT_EQ(reference->GetNextRunningNumber(table, &first), S_OK) << number.counter;
    EXPECT_EQ(reference->GetNextRunningNumber(table, &second), S_OK) << number.counter;
    EXPECT_EQ(first, 1) << number.counter;
    EXPECT_EQ(second, 2) << number.counter;
  }
  EXPECT_EQ(value("SELECT MAXNO FROM CSVLRN"), "2");
}

TEST_P(ReferenceEngine, a_table_that_is_no_running_number_is_invalid_and_not_touched) {
  const StatementLog log(db());
  for (const char16_t* table : {u"CSSAMP", u"", u"cssprn", u"CSSPRN; DROP TABLE CSSAMP"}) {
    LONG number = 7;
    EXPECT_EQ(next(table, number), E_INVALIDARG);
    EXPECT_EQ(number, 0);
    EXPECT_THAT(description(), HasSubstr("There is no running-number table"));
  }
  EXPECT_THAT(log.statements, IsEmpty());
}

TEST_P(ReferenceEngine, a_table_without_its_row_is_a_failure_and_gets_none) {
  execute("DELETE FROM CSSPRN");
  LONG number = 7;
  EXPECT_EQ(next(u"CSSPRN", number), E_FAIL);
  EXPECT_EQ(number, 0);
  EXPECT_EQ(description(), "The running-number table CSSPRN has no row.");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSPRN"), "0");
  EXPECT_FALSE(db().in_transaction);
}

TEST_P(ReferenceEngine, a_number_is_raised_before_it_is_read_in_one_transaction) {
  const StatementLog log(db());
  LONG number = 0;
  ASSERT_EQ(next(u"CSSPRN", number), S_OK);
  ASSERT_EQ(log.statements.size(), 4U);
  EXPECT_EQ(log.statements[0], "BEGIN");
  EXPECT_EQ(log.statements[1], "UPDATE CSSPRN SET MAXNO = MAXNO + 1");
  EXPECT_THAT(log.statements[2], HasSubstr("MAXNO"));
  EXPECT_EQ(log.statements[3], "COMMIT");
}

TEST_P(ReferenceEngine, a_number_belongs_to_the_callers_transaction) {
  LONG number = 0;
  {
    AutoODBCTransaction transaction(db(), true);
    ASSERT_EQ(next(u"CSSPRN", number), S_OK);
    EXPECT_EQ(number, 1);
  }
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "0");
  ASSERT_EQ(next(u"CSSPRN", number), S_OK);
  EXPECT_EQ(number, 1);
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "1");
}

TEST_P(ReferenceEngine, works_on_a_plain_connection_with_and_without_a_transaction_of_the_caller) {
  CDatabase plain;
  plain.OpenEx(database().connect_text().c_str());
  reference = reference_engine::make(plain);
  LONG number = 0;
  ASSERT_EQ(next(u"CSSPRN", number), S_OK);
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "1");
  ASSERT_TRUE(plain.BeginTrans());
  ASSERT_EQ(next(u"CSSPRN", number), S_OK);
  EXPECT_EQ(number, 2);
  ASSERT_TRUE(plain.Rollback());
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "1");
  execute("DELETE FROM CSSPRN");
  EXPECT_EQ(next(u"CSSPRN", number), E_FAIL);
  EXPECT_TRUE(plain.BeginTrans()) << "its own transaction was ended";
  plain.Rollback();
}

TEST_P(ReferenceEngine, two_connections_never_get_one_number) {
  const auto other = second_connection();
  const auto second = reference_engine::make(*other);
  for (LONG expected = 1; expected <= 6; expected += 2) {
    LONG number = 0;
    ASSERT_EQ(next(u"CSSPRN", number), S_OK);
    EXPECT_EQ(number, expected);
    ASSERT_EQ(second->GetNextRunningNumber(_bstr_t(u"CSSPRN"), &number), S_OK);
    EXPECT_EQ(number, expected + 1);
  }
}

TEST_P(ReferenceEngine, a_number_beyond_32_bits_is_a_failure_and_nothing_stays) {
  execute("UPDATE CSSPRN SET MAXNO = 2147483647");
  LONG number = 7;
  EXPECT_EQ(next(u"CSSPRN", number), E_FAIL);
  EXPECT_EQ(number, 0);
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "2147483647");
}

// Labels

TEST_P(ReferenceEngine, a_label_of_the_sample_has_neither_characteristic_nor_piece) {
  EXPECT_EQ(store(0, 30, 0, "Nörth"), S_OK);
  EXPECT_THAT(labels(), ElementsAre("8|NULL|30|NULL|Nörth"));
}

TEST_P(ReferenceEngine, a_label_that_is_there_is_changed) {
  EXPECT_EQ(store(0, 30, 0, "North"), S_OK);
  EXPECT_EQ(store(0, 30, 0, "North"), S_OK);
  EXPECT_EQ(store(0, 30, 0, "South"), S_OK);
  EXPECT_THAT(labels(), ElementsAre("8|NULL|30|NULL|South"));
}

TEST_P(ReferenceEngine, characteristics_and_pieces_are_kept_apart) {
  EXPECT_EQ(store(0, 30, 0, "a"), S_OK);
  EXPECT_EQ(store(0, 30, 2, "b"), S_OK);
  EXPECT_EQ(store(5, 30, 0, "c"), S_OK);
  EXPECT_EQ(store(5, 30, 2, "d"), S_OK);
  EXPECT_EQ(store(5, 30, 2, "e"), S_OK);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSLDAT"), "4");
  EXPECT_EQ(value("SELECT LABVALUE FROM CSLDAT WHERE CHRTID = 5 AND PIECENO = 2"), "e");
}

TEST_P(ReferenceEngine, a_null_text_is_an_empty_one) {
  EXPECT_EQ(reference->SetLabelValue(8, 0, 30, 0, nullptr), S_OK);
  EXPECT_THAT(labels(), ElementsAre("8|NULL|30|NULL|"));
}

// Facts

TEST_P(ReferenceEngine, flags_come_from_the_characteristic_and_null_is_0) {
  execute("UPDATE CSCHRT SET CFLG1 = 4, CFLG2 = NULL, CFLG3 = 6 WHERE CHRTID = 10");
  LONG first = 1, total = 1, third = 1;
  EXPECT_EQ(reference->GetCharacteristicFlags(10, &first, &total, &third), S_OK);
  EXPECT_EQ(first, 4);
  EXPECT_EQ(total, 0);
  EXPECT_EQ(third, 6);
  EXPECT_EQ(reference->GetCharacteristicFlags(12, &first, &total, &third), S_OK);
  EXPECT_EQ(total, 1);
}

TEST_P(ReferenceEngine, flags_of_an_id_that_is_no_characteristic_are_0) {
  LONG first = 1, total = 1, third = 1;
  EXPECT_EQ(reference->GetCharacteristicFlags(30, &first, &total, &third), S_OK);
  EXPECT_EQ(first + total + third, 0);
}

TEST_P(ReferenceEngine, sizes_come_from_the_characteristic_and_null_is_0) {
  execute("UPDATE CSCHRT SET SGSIZE = NULL WHERE CHRTID = 11");
  LONG size = 7;
  EXPECT_EQ(reference->GetSubgroupSize(10, &size), S_OK);
  EXPECT_EQ(size, 5);
  EXPECT_EQ(reference->GetSubgroupSize(11, &size), S_OK);
  EXPECT_EQ(size, 0);
}

TEST_P(ReferenceEngine, the_size_of_no_characteristic_is_invalid) {
  LONG size = 7;
  EXPECT_EQ(reference->GetSubgroupSize(999, &size), E_INVALIDARG);
  EXPECT_EQ(size, 0);
  EXPECT_EQ(description(), "There is no characteristic 999.");
}

// Failures

TEST_P(ReferenceEngine, a_refusal_of_the_database_is_told_with_its_diagnostics) {
  const std::string wide(600, 'x');
  const Failure failure = failure_of([&] { SPCLib::set_label_value(reference, 8, 30, wide.c_str()); });
  EXPECT_EQ(failure.kind, FailureKind::automation);
  EXPECT_EQ(failure.code, long{E_FAIL});
  EXPECT_EQ(failure.failure_class, FailureClass::value_too_long);
  EXPECT_EQ(failure.sqlstate.GetLength(), 5);
  EXPECT_THAT(labels(), IsEmpty());
}

TEST_P(ReferenceEngine, null_arguments_are_e_pointer) {
  LONG value = 0;
  EXPECT_EQ(reference->GetNextRunningNumber(_bstr_t(u"CSSPRN"), nullptr), E_POINTER);
  EXPECT_EQ(reference->GetCharacteristicFlags(10, nullptr, &value, &value), E_POINTER);
  EXPECT_EQ(reference->GetCharacteristicFlags(10, &value, nullptr, &value), E_POINTER);
  EXPECT_EQ(reference->GetCharacteristicFlags(10, &value, &value, nullptr), E_POINTER);
  EXPECT_EQ(reference->GetSubgroupSize(10, nullptr), E_POINTER);
  EXPECT_EQ(reference->GetNextRunningNumber(nullptr, &value), E_INVALIDARG);
  description();
}

TEST_P(ReferenceEngine, a_closed_connection_is_a_failing_code_and_no_exception) {
  db().Close();
  LONG number = 0;
  LONG second = 0;
  LONG third = 0;
  EXPECT_LT(next(u"CSSPRN", number), 0);
  EXPECT_NE(description(), "none");
  EXPECT_LT(store(0, 30, 0, "North"), 0);
  EXPECT_LT(reference->GetCharacteristicFlags(10, &number, &second, &third), 0);
  EXPECT_LT(reference->GetSubgroupSize(10, &number), 0);
  EXPECT_EQ(description(), "Can not open recordset.");
}

// The object

TEST_P(ReferenceEngine, answers_to_its_two_interfaces_and_counts_references) {
  void* found = nullptr;
  EXPECT_EQ(reference->QueryInterface(IID_IUnknown, &found), S_OK);
  EXPECT_EQ(found, reference.GetInterfacePtr());
  EXPECT_EQ(reference->Release(), 1U);
  EXPECT_EQ(reference->QueryInterface(interface_id<SPCLib::IQsmSPC>::value, &found), S_OK);
  EXPECT_EQ(reference->Release(), 1U);
  EXPECT_EQ(reference->QueryInterface(IID_IDispatch, &found), E_NOINTERFACE);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(reference->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

INSTANTIATE_TEST_SUITE_P(Servers, ReferenceEngine, test_support::main_servers(), test_support::server_name);

}  // namespace
