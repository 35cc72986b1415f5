/// Three rows to read and change.
#pragma once

#include "tests/platform/database/database_under_test.h"

namespace database_test {

class RecordsetTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    create_things();
    db.ExecuteSQL("INSERT INTO THINGS VALUES (1,'one',1.5,'2024-01-02 03:04:05.678',10)");
    db.ExecuteSQL("INSERT INTO THINGS VALUES (2,'two',NULL,NULL,NULL)");
    db.ExecuteSQL("INSERT INTO THINGS VALUES (3,NULL,3.25,'1999-12-31 23:59:59.000',30)");
  }
};

}  // namespace database_test
