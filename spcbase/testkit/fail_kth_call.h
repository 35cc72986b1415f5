/// Fails one call into the driver, the k-th, as if the driver had: for sweeps over k = 1, 2, 3 ... until a run
/// succeeds.
///
///     for (std::size_t k = 1;; ++k) {
///       test_support::FailKthCall hook(db, k);
///       run_and_check();
///       if (!hook.fired()) break;  // the run needs fewer than k calls
///     }
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "spcbase/platform/database/call_gate.h"
#include "spcbase/platform/database/database.h"

namespace test_support {

/// The hook: counts the calls that pass a session's gate, and fails one.
class FailKthCall final : public spcdb::CallHook {
 public:
  /// Fails the `k`-th call from now on, counted from 1; 0 fails none and only counts.
  /// Whoever sets it as the hook of a session's gate takes it away again.
  explicit FailKthCall(std::size_t k, spcdb::Diagnostic diagnostic = staged())
      : k_(k), diagnostic_(std::move(diagnostic)) {}
  /// The same, set as the hook of an open connection for as long as the object lives, or until the connection closes.
  /// The connection must outlive it.
  /// Fails: std::logic_error when the connection is not open.
  [[nodiscard]] FailKthCall(CDatabase& db, std::size_t k, spcdb::Diagnostic diagnostic = staged());
  ~FailKthCall() override;
  FailKthCall(const FailKthCall&) = delete;
  FailKthCall& operator=(const FailKthCall&) = delete;

  /// The diagnostic of a call that fails for no reason that a driver would have.
  static spcdb::Diagnostic staged() {
    spcdb::Diagnostic diagnostic;
    diagnostic.sqlstate = "HY000";
    diagnostic.native = 4711;
    diagnostic.text = "staged failure";
    diagnostic.origin = "[test]";
    return diagnostic;
  }

  std::optional<spcdb::Diagnostic> before_call(const char* function) override {
    functions_.emplace_back(function);
    if (functions_.size() != k_) return std::nullopt;
    return diagnostic_;
  }
  void before_release(const char* function) noexcept override { releases_.emplace_back(function); }

  /// Whether the k-th call was reached, and so failed.
  bool fired() const { return k_ != 0 && functions_.size() >= k_; }
  /// The function whose call was failed; empty when none was.
  std::string failed_function() const { return fired() ? functions_[k_ - 1] : std::string(); }
  /// Every call that was asked for, in order, and every release.
  const std::vector<std::string>& functions() const { return functions_; }
  const std::vector<std::string>& releases() const { return releases_; }

 private:
  std::size_t k_;
  spcdb::Diagnostic diagnostic_;
  CDatabase* db_ = nullptr;
  std::vector<std::string> functions_;
  std::vector<std::string> releases_;
};

}  // namespace test_support
