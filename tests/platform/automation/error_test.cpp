// Plan
//   smart pointers: count, attach, detach, out argument, null use, asking for interfaces
//   _com_error: code, text, error object, copies
//   error objects: fields, both interfaces, the thread's current one is taken once, each thread has its own
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>

#include "array_text.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/automation/com_ptr.h"
#include "spcbase/platform/automation/error_info.h"

namespace {

using vectors::code_thrown_by;
using vectors::counted_object;

template <class Pointer>
class SmartPointer : public testing::Test {};
using pointers = testing::Types<_com_ptr_t<IDispatch>, ATL::CComPtr<IDispatch>>;
TYPED_TEST_SUITE(SmartPointer, pointers);

TYPED_TEST(SmartPointer, counts_one_reference_for_each_copy) {
  counted_object object;
  {
    TypeParam first(&object);
    EXPECT_EQ(object.references, 2U);
    TypeParam second(first);
    EXPECT_EQ(object.references, 3U);
    TypeParam third(std::move(second));
    EXPECT_EQ(object.references, 3U);
    first = third;
    EXPECT_EQ(object.references, 3U);
    first = nullptr;
    EXPECT_EQ(object.references, 2U);
    third = &object;
    EXPECT_EQ(object.references, 2U);
    third.Release();
    EXPECT_EQ(object.references, 1U);
    EXPECT_TRUE(!third);
  }
  EXPECT_EQ(object.references, 1U);
}

TYPED_TEST(SmartPointer, attach_takes_over_and_detach_hands_out) {
  counted_object object;
  {
    TypeParam pointer;
    object.AddRef();
    pointer.Attach(&object);
    EXPECT_EQ(object.references, 2U);
    IDispatch* const out = pointer.Detach();
    EXPECT_EQ(out, &object);
    EXPECT_EQ(object.references, 2U);
    pointer.Attach(out);
  }
  EXPECT_EQ(object.references, 1U);
}

TYPED_TEST(SmartPointer, the_out_argument_releases_the_old_object) {
  counted_object object;
  TypeParam pointer(&object);
  IDispatch** const place = &pointer;
  EXPECT_EQ(object.references, 1U);
  EXPECT_EQ(*place, nullptr);
}

TYPED_TEST(SmartPointer, using_null_throws_e_pointer) {
  TypeParam none;
  EXPECT_EQ(code_thrown_by([&] { none->AddRef(); }), E_POINTER);
  EXPECT_EQ(code_thrown_by([&] { (void)*none; }), E_POINTER);
  EXPECT_EQ(static_cast<IDispatch*>(none), nullptr);
}

TEST(ComPtrT, asks_counts_and_shows_its_object) {
  counted_object object;
  {
    _com_ptr_t<IDispatch> pointer(&object, true);
    EXPECT_EQ(object.references, 2U);
    EXPECT_EQ(pointer.GetInterfacePtr(), &object);
    IUnknown* root = nullptr;
    EXPECT_EQ(pointer.QueryInterface(IID_IUnknown, root), S_OK);
    ASSERT_NE(root, nullptr);
    root->Release();
    pointer.AddRef();
    EXPECT_EQ(object.Release(), 2U);
    pointer.Attach(&object, true);
    EXPECT_EQ(object.references, 2U);
    IErrorInfo* other = nullptr;
    EXPECT_EQ(pointer.QueryInterface(IID_IErrorInfo, other), E_NOINTERFACE);
  }
  EXPECT_EQ(object.references, 1U);
  _com_ptr_t<IDispatch> none;
  EXPECT_EQ(code_thrown_by([&] { none.Release(); }), E_POINTER);
  EXPECT_EQ(code_thrown_by([&] { none.AddRef(); }), E_POINTER);
  IUnknown* root = nullptr;
  EXPECT_EQ(none.QueryInterface(IID_IUnknown, root), E_POINTER);
}

TEST(CComPtr, asks_by_the_interface_and_copies_out) {
  ATL::CComPtr<ICreateErrorInfo> maker;
  ASSERT_EQ(CreateErrorInfo(&maker), S_OK);
  ATL::CComPtr<IErrorInfo> reader;
  ASSERT_EQ(maker.QueryInterface(&reader), S_OK);
  EXPECT_TRUE(reader);
  ATL::CComPtr<IDispatch> stranger;
  EXPECT_EQ(maker.QueryInterface(&stranger), E_NOINTERFACE);
  EXPECT_FALSE(stranger);
  ATL::CComPtr<IErrorInfo> copy;
  ASSERT_EQ(reader.CopyTo(&copy), S_OK);
  EXPECT_EQ(static_cast<IErrorInfo*>(copy), static_cast<IErrorInfo*>(reader));
  EXPECT_EQ(reader.CopyTo(nullptr), E_POINTER);
  ATL::CComPtr<IErrorInfo>().Release();
}

TEST(ComError, tells_its_code_and_its_text) {
  const _com_error out_of_memory(E_OUTOFMEMORY);
  EXPECT_EQ(out_of_memory.Error(), E_OUTOFMEMORY);
  const std::string text = out_of_memory.ErrorMessage();
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
  EXPECT_STREQ(_com_error(make_hresult(0x80041508U)).ErrorMessage(), "IDispatch error #4872");
  EXPECT_STREQ(_com_error(make_hresult(0x8FFF1234U)).ErrorMessage(), "Unknown error 0x8FFF1234");
  EXPECT_EQ(_com_error::HRESULTToWCode(make_hresult(0x80040200U)), 0);
  EXPECT_EQ(_com_error::HRESULTToWCode(make_hresult(0x80050000U)), 0);
}

TEST(ComError, is_thrown_for_failures_only) {
  EXPECT_EQ(code_thrown_by([] { _com_util::CheckError(S_FALSE); }), S_OK);
  EXPECT_EQ(code_thrown_by([] { _com_util::CheckError(E_FAIL); }), E_FAIL);
  EXPECT_EQ(code_thrown_by([] { _com_issue_error(E_NOTIMPL); }), E_NOTIMPL);
}

ATL::CComPtr<IErrorInfo> make_error(const char16_t* description) {
  ATL::CComPtr<ICreateErrorInfo> maker;
  EXPECT_EQ(CreateErrorInfo(&maker), S_OK);
  EXPECT_EQ(maker->SetDescription(description), S_OK);
  ATL::CComPtr<IErrorInfo> reader;
  EXPECT_EQ(maker.QueryInterface(&reader), S_OK);
  return reader;
}

TEST(ComError, carries_the_error_object_through_copies) {
  ATL::CComPtr<IErrorInfo> info = make_error(u"what went wrong");
  _com_error first(E_FAIL, info, true);
  const _com_error second(first);
  first = _com_error(E_NOTIMPL);
  EXPECT_TRUE(!first.Description());
  EXPECT_TRUE(second.Description() == "what went wrong");
  EXPECT_TRUE(!second.Source());
  ATL::CComPtr<IErrorInfo> got;
  got.Attach(second.ErrorInfo());
  EXPECT_EQ(static_cast<IErrorInfo*>(got), static_cast<IErrorInfo*>(info));
  EXPECT_EQ(_com_error(E_FAIL).ErrorInfo(), nullptr);
}

TEST(ErrorInfo, keeps_every_field) {
  ATL::CComPtr<ICreateErrorInfo> maker;
  ASSERT_EQ(CreateErrorInfo(&maker), S_OK);
  const GUID id{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  EXPECT_EQ(maker->SetGUID(id), S_OK);
  EXPECT_EQ(maker->SetSource(u"source"), S_OK);
  EXPECT_EQ(maker->SetDescription(u"first"), S_OK);
  EXPECT_EQ(maker->SetDescription(u"second"), S_OK);
  EXPECT_EQ(maker->SetHelpFile(u"help"), S_OK);
  EXPECT_EQ(maker->SetHelpContext(12), S_OK);
  ATL::CComPtr<IErrorInfo> reader;
  ASSERT_EQ(maker.QueryInterface(&reader), S_OK);
  GUID got_id{};
  DWORD context = 0;
  _bstr_t source;
  _bstr_t description;
  _bstr_t help;
  EXPECT_EQ(reader->GetGUID(&got_id), S_OK);
  EXPECT_EQ(reader->GetSource(source.GetAddress()), S_OK);
  EXPECT_EQ(reader->GetDescription(description.GetAddress()), S_OK);
  EXPECT_EQ(reader->GetHelpFile(help.GetAddress()), S_OK);
  EXPECT_EQ(reader->GetHelpContext(&context), S_OK);
  EXPECT_EQ(got_id, id);
  EXPECT_TRUE(source == "source");
  EXPECT_TRUE(description == "second");
  EXPECT_TRUE(help == "help");
  EXPECT_EQ(context, 12U);
}

TEST(ErrorInfo, unset_texts_are_null_and_null_arguments_are_refused) {
  ATL::CComPtr<ICreateErrorInfo> maker;
  ASSERT_EQ(CreateErrorInfo(&maker), S_OK);
  EXPECT_EQ(maker->SetSource(nullptr), S_OK);
  ATL::CComPtr<IErrorInfo> reader;
  ASSERT_EQ(maker.QueryInterface(&reader), S_OK);
  BSTR text = nullptr;
  EXPECT_EQ(reader->GetDescription(&text), S_OK);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(reader->GetSource(nullptr), E_INVALIDARG);
  EXPECT_EQ(reader->GetGUID(nullptr), E_INVALIDARG);
  EXPECT_EQ(reader->GetHelpContext(nullptr), E_INVALIDARG);
  EXPECT_EQ(CreateErrorInfo(nullptr), E_INVALIDARG);
  EXPECT_EQ(maker->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST(ErrorInfo, the_current_one_is_taken_once) {
  ATL::CComPtr<IErrorInfo> info = make_error(u"current");
  ASSERT_EQ(SetErrorInfo(0, info), S_OK);
  ATL::CComPtr<IErrorInfo> got;
  EXPECT_EQ(GetErrorInfo(0, &got), S_OK);
  EXPECT_EQ(static_cast<IErrorInfo*>(got), static_cast<IErrorInfo*>(info));
  EXPECT_EQ(GetErrorInfo(0, &got), S_FALSE);
  EXPECT_FALSE(got);
  ASSERT_EQ(SetErrorInfo(0, info), S_OK);
  ASSERT_EQ(SetErrorInfo(0, nullptr), S_OK);
  EXPECT_EQ(GetErrorInfo(0, &got), S_FALSE);
  EXPECT_EQ(SetErrorInfo(1, info), E_INVALIDARG);
  EXPECT_EQ(GetErrorInfo(1, &got), E_INVALIDARG);
  EXPECT_EQ(GetErrorInfo(0, nullptr), E_INVALIDARG);
}

TEST(ErrorInfo, each_thread_has_its_own_and_frees_it_at_its_end) {
  ASSERT_EQ(SetErrorInfo(0, make_error(u"outer")), S_OK);
  HRESULT seen_at_start = E_FAIL;
  std::thread other([&] {
    ATL::CComPtr<IErrorInfo> got;
    seen_at_start = GetErrorInfo(0, &got);
    SetErrorInfo(0, make_error(u"inner"));
  });
  other.join();
  EXPECT_EQ(seen_at_start, S_FALSE);
  ATL::CComPtr<IErrorInfo> got;
  ASSERT_EQ(GetErrorInfo(0, &got), S_OK);
  _bstr_t description;
  ASSERT_EQ(got->GetDescription(description.GetAddress()), S_OK);
  EXPECT_TRUE(description == "outer");
}

TEST(ErrorInfo, no_class_has_a_name_here) {
  OLECHAR nothing[] = u"x";
  LPOLESTR name = nothing;
  EXPECT_EQ(ProgIDFromCLSID(GUID_NULL, &name), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(name, nullptr);
  EXPECT_EQ(ProgIDFromCLSID(GUID_NULL, nullptr), E_INVALIDARG);
}

}  // namespace
