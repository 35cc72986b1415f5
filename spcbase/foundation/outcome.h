/// One catch for every kind of failure: `guarded` runs a callable and gives its result, or a `Failure` that tells an
/// administrator what went wrong and what to do.
///
/// Part of the database foundation. For instance:
///
///     auto saved = guarded([&] { return helper.set_data(...); });
///     if (!saved) report(saved.failure().text, saved.failure().advice);
///
/// A deadlock may be tried again; a commit whose outcome is not known never, since the work may stand already.
#pragma once

#include <functional>
#include <type_traits>
#include <utility>
#include <variant>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

class CDBException;

/// What was thrown (failure.h has the list).
enum class FailureKind : unsigned char {
  library,      ///< DBException
  revision,     ///< rev::RevisionException
  result_code,  ///< long
  database,     ///< CDBException*
  platform,     ///< any other CException*
  automation,   ///< _com_error
  standard,     ///< std::exception
};

/// What went wrong, whatever the server and driver call it.
enum class FailureClass : unsigned char {
  duplicate_key,
  missing_reference,  ///< a foreign key finds no row, or still has rows that refer to it
  value_too_long,     ///< for its column when written, for its field when read
  deadlock,           ///< the server has undone the transaction in favour of another
  lock_timeout,       ///< another connection held a lock for too long
  link_lost,          ///< the server went away or was never reached
  commit_in_doubt,    ///< the link was lost during a commit: nobody knows whether it was done
  no_such_object,     ///< a table, view or column that is not there
  syntax,             ///< the server does not understand the statement
  permission,         ///< the login or one of its rights was refused, or the database is read-only
  storage_full,
  other,
};

/// A failure as data. What was thrown by pointer has been released.
struct SPCBASE_API Failure {
  FailureKind kind = FailureKind::library;           ///< who threw it
  FailureClass failure_class = FailureClass::other;  ///< what a database's failure means; `other` for what is none
  long code = 0;                                     ///< the result code; of a CDBException its `m_nRetCode`
  CString sqlstate;                                  ///< five characters; empty when no database had a say
  long native = 0;                                   ///< the server's own number; of a RevisionException its `reason`
  CString text;                                      ///< what the thrower said
  CString advice;                                    ///< one sentence on what to do about it

  /// Whether the same work may be done again from its beginning: true for a deadlock alone.
  bool may_retry() const noexcept { return failure_class == FailureClass::deadlock; }
};

/// The class in words: "duplicate key", "commit in doubt".
SPCBASE_API const char* describe(FailureClass failure_class) noexcept;

/// Tells what a database's failure means.
/// Owns: the exception stays the caller's.
SPCBASE_API Failure describe_failure(const CDBException& exception);

/// Describes the exception that is being handled and releases it when it was thrown by pointer. To be called inside a
/// `catch (...)` only. What is none of the seven kinds is thrown on.
SPCBASE_API Failure describe_current_failure();

/// The result of a callable, or its failure.
template <class T>
class Outcome {
 public:
  /// The result; nothing for a callable that gives nothing.
  using value_type = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

  /// A result, or a failure.
  explicit Outcome(value_type value) : content_(std::in_place_index<0>, std::move(value)) {}
  explicit Outcome(Failure failure) : content_(std::in_place_index<1>, std::move(failure)) {}

  /// Whether the callable came to its end.
  bool ok() const noexcept { return content_.index() == 0; }
  explicit operator bool() const noexcept { return ok(); }

  /// The result.
  /// Fails: std::bad_variant_access when there is none.
  value_type& value() & { return std::get<0>(content_); }
  const value_type& value() const& { return std::get<0>(content_); }
  value_type&& value() && { return std::get<0>(std::move(content_)); }
  /// The failure.
  /// Fails: std::bad_variant_access when there is none.
  const Failure& failure() const { return std::get<1>(content_); }

 private:
  std::variant<value_type, Failure> content_;
};

/// Runs `work` and catches whatever of the seven kinds it throws.
template <class Work>
auto guarded(Work&& work) -> Outcome<std::remove_cvref_t<std::invoke_result_t<Work>>> {
  using Result = std::remove_cvref_t<std::invoke_result_t<Work>>;
  try {
    if constexpr (std::is_void_v<Result>) {
      std::invoke(std::forward<Work>(work));
      return Outcome<Result>(std::monostate{});
    } else {
      return Outcome<Result>(std::invoke(std::forward<Work>(work)));
    }
  } catch (...) {
    return Outcome<Result>(describe_current_failure());
  }
}
