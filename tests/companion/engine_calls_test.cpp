// Calls to the data-entry engine.
//
// Plan
//   null engine          _com_error with E_POINTER
//   failing call         _com_error with the method's own code
//   error object         the engine's own goes into the _com_error; another's stays the thread's
//   arguments            names and texts arrive as UTF-16, the two zeros of an auto label in their places
#include "spcbase/companion/internal/engine_calls.h"

#include <gtest/gtest.h>

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_error.h"
#include "tests/support/recording_engine.h"

namespace {

using test_support::RecordingEngine;

template <class Call>
_com_error error_of(Call call) {
  try {
    call();
  } catch (const _com_error& e) {
    return e;
  }
  ADD_FAILURE() << "nothing was thrown";
  return _com_error(S_OK);
}

TEST(EngineCalls, a_null_engine_is_e_pointer) {
  const SPCLib::IQsmSPCPtr none;
  EXPECT_EQ(error_of([&] { SPCLib::next_running_number(none, u"CSSPRN"); }).Error(), E_POINTER);
  EXPECT_EQ(error_of([&] { SPCLib::set_label_value(none, 1, 2, "x"); }).Error(), E_POINTER);
  EXPECT_EQ(error_of([&] { SPCLib::characteristic_flags(none, 1); }).Error(), E_POINTER);
  EXPECT_EQ(error_of([&] { SPCLib::subgroup_size(none, 1); }).Error(), E_POINTER);
}

TEST(EngineCalls, a_failing_call_is_raised_with_its_own_code) {
  RecordingEngine engine;
  engine.fail("GetNextRunningNumber", E_INVALIDARG);
  engine.fail("SetLabelValue", E_OUTOFMEMORY);
  engine.fail("GetCharacteristicFlags", E_FAIL);
  engine.fail("GetSubgroupSize", DISP_E_OVERFLOW);
  EXPECT_EQ(error_of([&] { SPCLib::next_running_number(engine.pointer(), u"CSSPRN"); }).Error(), E_INVALIDARG);
  EXPECT_EQ(error_of([&] { SPCLib::set_label_value(engine.pointer(), 1, 2, "x"); }).Error(), E_OUTOFMEMORY);
  EXPECT_EQ(error_of([&] { SPCLib::characteristic_flags(engine.pointer(), 1); }).Error(), E_FAIL);
  EXPECT_EQ(error_of([&] { SPCLib::subgroup_size(engine.pointer(), 1); }).Error(), DISP_E_OVERFLOW);
}

TEST(EngineCalls, a_call_that_succeeds_gives_its_answer) {
  RecordingEngine engine;
  engine.numbers["CSSPRN"] = 41;
  engine.flags[7] = {1, 2, 3};
  engine.sizes[7] = 5;
  EXPECT_EQ(SPCLib::next_running_number(engine.pointer(), u"CSSPRN"), 42);
  EXPECT_EQ(SPCLib::characteristic_flags(engine.pointer(), 7).total, 2);
  EXPECT_EQ(SPCLib::subgroup_size(engine.pointer(), 7), 5);
}

TEST(EngineCalls, an_auto_label_goes_with_zeros_for_characteristic_and_piece) {
  RecordingEngine engine;
  SPCLib::set_label_value(engine.pointer(), 12, 7, "Süd 2");
  EXPECT_EQ(engine.calls, std::vector<std::string>{"SetLabelValue 12 0 7 0 Süd 2"});
}

TEST(EngineCalls, the_engines_error_object_goes_into_the_exception) {
  create_err_object(nullptr, &interface_id<SPCLib::IQsmSPC>::value, "no numbers left");
  RecordingEngine engine;
  engine.fail("GetNextRunningNumber", E_FAIL);
  const _com_error error = error_of([&] { SPCLib::next_running_number(engine.pointer(), u"CSSPRN"); });
  EXPECT_STREQ(static_cast<const char*>(error.Description()), "no numbers left");
  CString description, source;
  EXPECT_FALSE(get_err_info_data(description, source, nullptr)) << "the thread's object was taken";
}

TEST(EngineCalls, an_error_object_of_somebody_else_stays_the_threads) {
  const GUID other{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  create_err_object(nullptr, &other, "the host's own");
  RecordingEngine engine;
  engine.fail("GetSubgroupSize", E_FAIL);
  const _com_error error = error_of([&] { SPCLib::subgroup_size(engine.pointer(), 1); });
  EXPECT_EQ(error.ErrorInfo(), nullptr);
  CString description, source;
  ASSERT_TRUE(get_err_info_data(description, source, nullptr));
  EXPECT_EQ(description, "the host's own");
}

}  // namespace
