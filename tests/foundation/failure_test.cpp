// Plan
//   DBException: text and code come back, copies are whole, a copy onto itself does nothing, null text -> DBException.*
//   RevisionException: the text for every reason (4 as 3, others the stored text) -> RevisionException.*
//   The throwers: text and code of each, the lock failure for 0, a small, a large and a negative number -> throw_*.*
//   get_exception_error_message: no text, short, exactly 127, 128 and a very long one, sizes asked for ->
//   ..error_message.* get_err_info_data, create_err_object: no object, texts, guid, null arguments -> error_object.*
//   The codes that are raised as a long are negative 32-bit codes -> raise.*
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/system/system_error.h"

namespace {

template <class Throw>
DBException caught_from(Throw throwing) {
  try {
    throwing();
  } catch (const DBException& e) {
    return e;
  }
  ADD_FAILURE() << "nothing was thrown";
  return DBException("", 0);
}

template <class Throw>
long long_caught_from(Throw throwing) {
  try {
    throwing();
  } catch (long code) {
    return code;
  }
  ADD_FAILURE() << "nothing was thrown";
  return 0;
}

constexpr long code(std::uint32_t bits) { return static_cast<std::int32_t>(bits); }

TEST(DBException, gives_back_its_text_and_code) {
  const DBException e("it failed", code(0x80004005U));
  EXPECT_EQ(e.what(), "it failed");
  EXPECT_EQ(e.message, "it failed");
  EXPECT_EQ(e.error_code, code(0x80004005U));
}

TEST(DBException, takes_a_null_text_for_an_empty_one) { EXPECT_TRUE(DBException(nullptr, 0).what().IsEmpty()); }

TEST(DBException, has_no_base_class_and_a_virtual_destructor) {
  EXPECT_FALSE((std::is_base_of_v<std::exception, DBException>));
  EXPECT_TRUE(std::has_virtual_destructor_v<DBException>);
}

TEST(DBException, copies_text_and_code) {
  const DBException first("one", 1);
  const DBException copy(first);
  DBException assigned("two", 2);
  assigned = first;
  EXPECT_EQ(copy.what(), "one");
  EXPECT_EQ(copy.error_code, 1);
  EXPECT_EQ(assigned.what(), "one");
  EXPECT_EQ(assigned.error_code, 1);
}

TEST(DBException, copied_onto_itself_stays_as_it_is) {
  DBException e("one", 1);
  const DBException& same = e;
  e = same;
  EXPECT_EQ(e.what(), "one");
  EXPECT_EQ(e.error_code, 1);
}

TEST(RevisionException, has_the_text_of_its_reason) {
  using rev::RevisionException;
  EXPECT_EQ(RevisionException(1, 2, 3, 0).what(), "No revisions.");
  EXPECT_EQ(RevisionException(1, 2, 3, 1).what(), "Not the latest revision.");
  EXPECT_EQ(RevisionException(1, 2, 3, 2).what(), "The revision was already approved.");
  EXPECT_EQ(RevisionException(1, 2, 3, 3).what(), "Approving a broken revision is not allowed.");
}

TEST(RevisionException, reason_4_has_the_text_of_reason_3) {
  EXPECT_EQ(rev::RevisionException(1, 2, 3, 4).what(), "Approving a broken revision is not allowed.");
}

TEST(RevisionException, an_unknown_reason_gives_the_stored_text_which_is_empty) {
  rev::RevisionException e(1, 2, 3, 5);
  EXPECT_TRUE(e.what().IsEmpty());
  EXPECT_TRUE(rev::RevisionException(1, 2, 3, -1).what().IsEmpty());
  e.message = "told later";
  EXPECT_EQ(e.what(), "told later");
}

TEST(RevisionException, keeps_its_numbers_and_an_empty_message) {
  const rev::RevisionException e(11, 12, 13, 2);
  EXPECT_EQ(e.object_type, 11);
  EXPECT_EQ(e.object_id, 12);
  EXPECT_EQ(e.revision, 13);
  EXPECT_EQ(e.reason, 2);
  EXPECT_TRUE(e.message.IsEmpty());
  EXPECT_EQ(e.error_code, code(0x80004005U));
}

TEST(RevisionException, tells_its_reason_when_it_is_caught_as_its_base) {
  try {
    throw rev::RevisionException(1, 2, 3, 1);
  } catch (const DBException& e) {
    EXPECT_EQ(e.what(), "Not the latest revision.");
  }
}

TEST(throw_can_not_open_rs_exception, throws_message_1005) {
  const DBException e = caught_from(throw_can_not_open_rs_exception);
  EXPECT_EQ(e.what(), "Can not open recordset.");
  EXPECT_EQ(e.error_code, code(0x80004005U));
}

TEST(throw_xml_exception, throws_message_1002) {
  const DBException e = caught_from(throw_xml_exception);
  EXPECT_EQ(e.what(), "XML error.");
  EXPECT_EQ(e.error_code, code(0x80004005U));
}

TEST(throw_invalid_argument, throws_message_1004) {
  const DBException e = caught_from(throw_invalid_argument);
  EXPECT_EQ(e.what(), "Invalid argument.");
  EXPECT_EQ(e.error_code, code(0x80004005U));
}

TEST(throw_db_exception, throws_the_text_as_it_is) {
  const DBException e = caught_from([] { throw_db_exception("100 % of %s"); });
  EXPECT_EQ(e.what(), "100 % of %s");
  EXPECT_EQ(e.error_code, code(0x80004005U));
}

TEST(throw_db_exception_by_id, an_unknown_number_gives_an_empty_text) {
  EXPECT_TRUE(caught_from([] { throw_db_exception_by_id(4711); }).what().IsEmpty());
}

DBException lock_failure(DWORD last_error) {
  return caught_from([&] {
    SetLastError(last_error);
    throw_global_lock_error_exception();
  });
}

TEST(throw_global_lock_error_exception, a_last_error_of_0_throws_the_code_0_and_names_it) {
  const DBException e = lock_failure(0);
  EXPECT_EQ(e.error_code, 0);
  EXPECT_EQ(e.what().Find("GlobalLock() failed with error code 0: "), 0) << e.what();
}

TEST(throw_global_lock_error_exception, a_positive_number_becomes_a_result_code_with_its_low_16_bits) {
  EXPECT_EQ(lock_failure(157).error_code, code(0x8007009dU));
  EXPECT_EQ(lock_failure(0x12345U).error_code, code(0x80072345U));
}

TEST(throw_global_lock_error_exception, a_number_that_is_negative_when_signed_is_the_code_itself) {
  EXPECT_EQ(lock_failure(0x80004005U).error_code, code(0x80004005U));
  EXPECT_NE(lock_failure(0x80004005U).what().Find("error code -2147467259: "), -1);
}

TEST(throw_global_lock_error_exception, tells_number_and_text_of_the_system) {
  const CString expected = "GlobalLock() failed with error code 157: " + get_system_error_text(157);
  EXPECT_EQ(lock_failure(157).what(), expected);
}

TEST(get_system_error_text, gives_the_systems_text_and_nothing_for_a_number_without_one) {
  EXPECT_EQ(get_system_error_text(2).Find("The system cannot find the file specified."), 0);
  EXPECT_TRUE(get_system_error_text(0x0badcafeU).IsEmpty());
}

// An exception that remembers the sizes of the buffers it was given.
class Telling : public CException {
 public:
  explicit Telling(std::string text) : CException(FALSE), text_(std::move(text)) {}
  BOOL GetErrorMessage(char* buffer, UINT size, UINT* help_context) const override {
    sizes.push_back(size);
    had_help_context = had_help_context || help_context != nullptr;
    return write_message(text_.c_str(), buffer, size, help_context);
  }
  mutable std::vector<UINT> sizes;
  mutable bool had_help_context = false;

 private:
  std::string text_;
};

TEST(get_exception_error_message, an_exception_without_a_text_is_an_unknown_error) {
  Telling e("");
  EXPECT_EQ(get_exception_error_message(&e), "An unknown error occurred");
  EXPECT_EQ(e.sizes, std::vector<UINT>{128});
}

TEST(get_exception_error_message, a_text_of_126_bytes_is_had_at_the_first_attempt) {
  const std::string text(126, 'x');
  Telling e(text);
  EXPECT_EQ(get_exception_error_message(&e), text.c_str());
  EXPECT_EQ(e.sizes, std::vector<UINT>{128});
  EXPECT_FALSE(e.had_help_context);
}

TEST(get_exception_error_message, a_text_of_exactly_127_bytes_is_asked_for_again_with_256) {
  const std::string text(127, 'x');
  Telling e(text);
  EXPECT_EQ(get_exception_error_message(&e), text.c_str());
  EXPECT_EQ(e.sizes, (std::vector<UINT>{128, 256}));
}

TEST(get_exception_error_message, a_long_text_comes_whole) {
  const std::string text(100000, 'y');
  Telling e(text);
  EXPECT_EQ(get_exception_error_message(&e), text.c_str());
  EXPECT_EQ(e.sizes.back(), 131072U);
}

TEST(get_exception_error_message, leaves_the_exception_to_its_owner) {
  auto* e = new CMemoryException;
  EXPECT_FALSE(get_exception_error_message(e).IsEmpty());
  EXPECT_EQ(get_exception_error_message(e), get_exception_error_message(e));
  e->Delete();
}

constexpr GUID some_interface{0x11223344, 0x5566, 0x7788, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID some_class{0x99aabbcc, 0x0011, 0x2233, {8, 7, 6, 5, 4, 3, 2, 1}};

void forget_error_object() { SetErrorInfo(0, nullptr); }

TEST(get_err_info_data, without_an_object_returns_false_and_leaves_both_texts) {
  forget_error_object();
  CString description("as it was");
  CString source("here");
  GUID guid = some_class;
  EXPECT_FALSE(get_err_info_data(description, source, &guid));
  EXPECT_EQ(description, "as it was");
  EXPECT_EQ(source, "here");
  EXPECT_EQ(guid, some_class);
}

TEST(get_err_info_data, reads_the_object_and_clears_it) {
  ATL::CComPtr<ICreateErrorInfo> creator;
  ASSERT_EQ(CreateErrorInfo(&creator), S_OK);
  creator->SetGUID(some_interface);
  creator->SetSource(u"Gauge.Reader");
  creator->SetDescription(u"no signal \u00b5");
  ATL::CComPtr<IErrorInfo> info;
  creator.QueryInterface(&info);
  SetErrorInfo(0, info);

  CString description;
  CString source;
  GUID guid{};
  EXPECT_TRUE(get_err_info_data(description, source, &guid));
  EXPECT_EQ(description, "no signal \xc2\xb5");
  EXPECT_EQ(source, "Gauge.Reader");
  EXPECT_EQ(guid, some_interface);
  EXPECT_FALSE(get_err_info_data(description, source, &guid));
}

TEST(get_err_info_data, takes_a_null_guid) {
  create_err_object(nullptr, &some_interface, "it failed");
  CString description;
  CString source;
  EXPECT_TRUE(get_err_info_data(description, source, nullptr));
  EXPECT_EQ(description, "it failed");
}

TEST(create_err_object, with_three_nulls_publishes_an_empty_object_and_returns_it) {
  forget_error_object();
  const auto [result, info] = create_err_object(nullptr, nullptr, nullptr);
  EXPECT_EQ(result, S_OK);
  ASSERT_TRUE(info != nullptr);
  ATL::CComPtr<IErrorInfo> current;
  EXPECT_EQ(GetErrorInfo(0, &current), S_OK);
  EXPECT_EQ(static_cast<IErrorInfo*>(current), static_cast<IErrorInfo*>(info));
  GUID guid = some_class;
  EXPECT_EQ(info->GetGUID(&guid), S_OK);
  EXPECT_EQ(guid, GUID_NULL);
}

TEST(create_err_object, sets_what_it_is_given) {
  const auto [result, info] = create_err_object(&some_class, &some_interface, "no signal \xc2\xb5");
  EXPECT_EQ(result, S_OK);
  CString description;
  CString source("untouched by a class without a name");
  GUID guid{};
  EXPECT_TRUE(get_err_info_data(description, source, &guid));
  EXPECT_EQ(description, "no signal \xc2\xb5");
  EXPECT_EQ(guid, some_interface);
}

TEST(create_err_object, the_pair_holds_a_reference_of_its_own) {
  auto made = create_err_object(nullptr, nullptr, "kept");
  forget_error_object();
  BSTR text = nullptr;
  ASSERT_EQ(made.second->GetDescription(&text), S_OK);
  EXPECT_EQ(to_cstring(_bstr_t(text, false).GetBSTR()), "kept");
}

TEST(raise, throws_the_codes_of_data_entry_as_negative_longs) {
  EXPECT_EQ(long_caught_from(raise_update_failed), code(0x80041507U));
  EXPECT_EQ(long_caught_from(raise_open_failed), code(0x80041508U));
  EXPECT_EQ(long_caught_from(raise_bad_value), code(0x8004150aU));
  EXPECT_EQ(long_caught_from(raise_no_array_or_row), code(0x8004150dU));
  EXPECT_EQ(long_caught_from(raise_invalid_argument_code), E_INVALIDARG);
  EXPECT_EQ(long_caught_from(raise_unexpected), E_UNEXPECTED);
  EXPECT_EQ(long_caught_from([] { raise_result(DISP_E_BADINDEX); }), DISP_E_BADINDEX);
  EXPECT_LT(result_code::open_failed, 0);
}

}  // namespace
