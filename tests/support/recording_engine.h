/// A data-entry engine for tests: it keeps what it was asked, answers from memory or hands on to another engine, and
/// can be told to fail.
///
///     test_support::RecordingEngine engine;
///     engine.sizes[7] = 5;                                // characteristic 7 has five pieces
///     engine.fail("SetLabelValue", E_FAIL);
///     helper.load_from_db(engine.pointer(), ...);
///     EXPECT_EQ(engine.count("GetSubgroupSize"), 1);
///
/// The object stands wherever the test puts it: the last `Release` ends nothing. At its end nobody may hold it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/companion/engine.h"
#include "spcbase/platform/automation/error_info.h"
#include "spcbase/platform/text/cstring.h"

namespace test_support {

class RecordingEngine final : public SPCLib::IQsmSPC {
 public:
  /// With `inner`, every call that does not fail goes on to it.
  explicit RecordingEngine(SPCLib::IQsmSPCPtr inner = nullptr) : inner_(std::move(inner)) {}
  RecordingEngine(const RecordingEngine&) = delete;
  RecordingEngine& operator=(const RecordingEngine&) = delete;
  ~RecordingEngine() { EXPECT_EQ(references_, 0U) << "somebody still holds the engine"; }

  SPCLib::IQsmSPCPtr pointer() { return SPCLib::IQsmSPCPtr(this); }

  /// Makes a method fail from its call number `first` on, counted from 1 and from now.
  void fail(const std::string& method, HRESULT code, int first = 1) {
    failures_[method] = {code, count(method) + first};
  }
  void mend(const std::string& method) { failures_.erase(method); }

  /// How often a method was called.
  int count(std::string_view method) const {
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const std::string& call) {
      return call.starts_with(method) && (call.size() == method.size() || call[method.size()] == ' ');
    }));
  }

  /// Each call as "SetLabelValue 12 0 7 0 North".
  std::vector<std::string> calls;
  /// The answers from memory: the last number of each running-number table, the flags and sizes by id.
  std::map<std::string, LONG> numbers;
  std::map<LONG, std::array<LONG, 3>> flags;
  std::map<LONG, LONG> sizes;

  HRESULT QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == interface_id<SPCLib::IQsmSPC>::value;
    *object = known ? static_cast<SPCLib::IQsmSPC*>(this) : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override { return --references_; }

  HRESULT GetNextRunningNumber(BSTR table, LONG* number) override {
    const std::string name = to_cstring(table).GetString();
    if (const HRESULT result = record("GetNextRunningNumber", name); FAILED(result)) return result;
    if (inner_) return inner_->GetNextRunningNumber(table, number);
    *number = ++numbers[name];
    return S_OK;
  }

  HRESULT SetLabelValue(LONG sample, LONG characteristic, LONG label, LONG piece, BSTR value) override {
    CString text;
    text.Format("%d %d %d %d %s", sample, characteristic, label, piece, to_cstring(value).GetString());
    if (const HRESULT result = record("SetLabelValue", text.GetString()); FAILED(result)) return result;
    return inner_ ? inner_->SetLabelValue(sample, characteristic, label, piece, value) : S_OK;
  }

  HRESULT GetCharacteristicFlags(LONG id, LONG* first, LONG* total, LONG* third) override {
    if (const HRESULT result = record("GetCharacteristicFlags", std::to_string(id)); FAILED(result)) return result;
    if (inner_) return inner_->GetCharacteristicFlags(id, first, total, third);
    const auto known = flags.contains(id) ? flags.at(id) : std::array<LONG, 3>{};
    *first = known[0];
    *total = known[1];
    *third = known[2];
    return S_OK;
  }

  HRESULT GetSubgroupSize(LONG characteristic, LONG* size) override {
    if (const HRESULT result = record("GetSubgroupSize", std::to_string(characteristic)); FAILED(result)) return result;
    if (inner_) return inner_->GetSubgroupSize(characteristic, size);
    *size = sizes.contains(characteristic) ? sizes.at(characteristic) : 0;
    return S_OK;
  }

 private:
  struct Failure {
    HRESULT code;
    int first;
  };

  HRESULT record(const std::string& method, const std::string& arguments) {
    calls.push_back(method + " " + arguments);
    const auto failure = failures_.find(method);
    if (failure == failures_.end() || count(method) < failure->second.first) return S_OK;
    return failure->second.code;
  }

  SPCLib::IQsmSPCPtr inner_;
  std::map<std::string, Failure> failures_;
  ULONG references_ = 0;
};

}  // namespace test_support
