/// The one door through which every call into unixODBC or sqlite3 goes.
///
/// Part of the database platform layer. A session asks its gate before each call; the gate counts the call and lets a
/// test's hook refuse it with given diagnostics, as if the driver had failed. Without a hook the cost is one branch.
///
/// Calls that only release (finalize, free handle, close cursor, disconnect) pass `release`: they are shown to the hook
/// but cannot be refused, since whoever releases has nobody to tell.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace spcdb {

/// What a driver, or the layer in its place, said about a call that failed.
struct Diagnostic {
  std::string sqlstate;                  ///< five characters, "HY000" when nothing better is known
  long native = 0;                       ///< the server's own number
  std::string text;                      ///< the message without state, number and origin
  std::string origin;                    ///< the driver's prefix, e.g. "[ma-3.1.15][10.11.19-MariaDB]"; may be empty
  short return_code = -1;                ///< what CDBException::m_nRetCode becomes; -1 is SQL_ERROR
  std::vector<Diagnostic> further = {};  ///< the records behind the first one
};

/// What a test places behind the door.
class CallHook {
 public:
  virtual ~CallHook() = default;
  /// Told before each call that may fail. A diagnostic in return means: do not make the call, it failed like this.
  virtual std::optional<Diagnostic> before_call(const char* function) = 0;
  /// Told before each call that only releases.
  virtual void before_release(const char* function) noexcept { static_cast<void>(function); }
};

/// The door itself; each session has one.
class CallGate {
 public:
  /// Sets or removes (null) the hook. Not owned.
  void set_hook(CallHook* hook) noexcept { hook_ = hook; }
  /// The hook, null when there is none.
  CallHook* hook() const noexcept { return hook_; }

  /// True when a hook refuses the call; `refusal` then holds its diagnostic.
  bool refused(const char* function) {
    if (hook_ == nullptr) [[likely]]
      return false;
    return ask_hook(function);
  }
  /// Announces a call that only releases.
  void release(const char* function) noexcept {
    if (hook_ != nullptr) [[unlikely]]
      hook_->before_release(function);
  }
  /// The diagnostic of the last refusal.
  const Diagnostic& refusal() const noexcept { return refusal_; }

 private:
  bool ask_hook(const char* function) {
    auto answer = hook_->before_call(function);
    if (!answer) return false;
    refusal_ = *std::move(answer);
    return true;
  }

  CallHook* hook_ = nullptr;
  Diagnostic refusal_;
};

}  // namespace spcdb
