/// The statements that a connection was given, BEGIN, COMMIT and ROLLBACK too.
///
///     test_support::StatementLog log(db);
///     save(db);
///     EXPECT_EQ(log.count("INSERT INTO [CSVDAT]"), 5);
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/database/observer.h"

namespace test_support {

/// Keeps the statements of a connection for a scope.
class StatementLog : public spcdb::StatementObserver {
 public:
  /// Becomes the observer of a connection, which must outlive it. The former observer hears nothing until the object
  /// goes.
  [[nodiscard]] explicit StatementLog(CDatabase& db) : db_(db), former_(db.observer()) { db_.set_observer(this); }
  ~StatementLog() override { db_.set_observer(former_); }
  StatementLog(const StatementLog&) = delete;
  StatementLog& operator=(const StatementLog&) = delete;
  void on_statement(const spcdb::StatementReport& report) noexcept override {
    statements.emplace_back(report.statement);
  }
  /// How many statements hold a text.
  int count(const std::string& text) const {
    return static_cast<int>(
        std::ranges::count_if(statements, [&](const auto& s) { return s.find(text) != std::string::npos; }));
  }

  /// Their texts as they were given, in order; `?` for a parameter of the library's own.
  std::vector<std::string> statements;

 private:
  CDatabase& db_;
  spcdb::StatementObserver* former_;
};

}  // namespace test_support
