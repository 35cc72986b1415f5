/// Listens to a connection and keeps what was sent.
#pragma once

#include <string>
#include <vector>

#include "spcbase/platform/database/database.h"

class StatementRecorder : public spcdb::StatementObserver {
 public:
  explicit StatementRecorder(CDatabase& database) : database_(database) { database_.set_observer(this); }
  ~StatementRecorder() override { database_.set_observer(nullptr); }
  StatementRecorder(const StatementRecorder&) = delete;
  StatementRecorder& operator=(const StatementRecorder&) = delete;

  void on_statement(const spcdb::StatementReport& report) noexcept override {
    statements.emplace_back(report.statement);
  }

  std::vector<std::string> statements;

 private:
  CDatabase& database_;
};
