#include "spcbase/testkit/fail_kth_call.h"

#include <stdexcept>

#include "spcbase/platform/database/connection.h"
#include "spcbase/platform/database/session.h"

namespace test_support {

FailKthCall::FailKthCall(CDatabase& db, std::size_t k, spcdb::Diagnostic diagnostic)
    : k_(k), diagnostic_(std::move(diagnostic)), db_(&db) {
  if (db.connection() == nullptr) throw std::logic_error("FailKthCall: the connection is not open");
  db.connection()->session().gate().set_hook(this);
}

FailKthCall::~FailKthCall() {
  if (db_ == nullptr || db_->connection() == nullptr) return;
  auto& gate = db_->connection()->session().gate();
  if (gate.hook() == this) gate.set_hook(nullptr);
}

}  // namespace test_support
