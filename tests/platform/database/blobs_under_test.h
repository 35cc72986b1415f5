// The table of long data under test, and its recordsets in both modes.
#pragma once

#include <string>

#include "tests/platform/database/database_under_test.h"
#include "tests/support/blob_bytes.h"

namespace database_test {

using test_support::bytes_of;
using test_support::payload;
using test_support::put;

/// The rows of BLOBS, their long data in pieces.
struct Streamed : CRecordset {
  long id = 0;
  CString name;
  CLongBinary data;

  explicit Streamed(CDatabase* database) : CRecordset(database) {
    m_nFields = 3;
    m_nDefaultType = snapshot;
    m_keyColumns = 1;
    m_strSort = "[ID]";
  }
  CString GetDefaultSQL() override { return "[BLOBS]"; }
  void DoFieldExchange(CFieldExchange* fx) override {
    fx->SetFieldType(CFieldExchange::outputColumn);
    RFX_Long(fx, "[ID]", id);
    RFX_Text(fx, "[NAME]", name, 20);
    RFX_LongBinary(fx, "[DATA]", data);
  }
  void set_key(std::uint64_t bits) { m_keyColumns = bits; }
  void give(const std::string& bytes) {
    put(data, bytes);
    SetFieldDirty(&data);
    SetFieldNull(&data, FALSE);
  }
};

/// The same through a buffer.
struct Bound : CRecordset {
  long id = 0;
  CString name;
  CByteArray data;
  int room;

  Bound(CDatabase* database, int bytes) : CRecordset(database), room(bytes) {
    m_nFields = 3;
    m_nDefaultType = snapshot;
    m_keyColumns = 1;
    m_strSort = "[ID]";
  }
  CString GetDefaultSQL() override { return "[BLOBS]"; }
  void DoFieldExchange(CFieldExchange* fx) override {
    fx->SetFieldType(CFieldExchange::outputColumn);
    RFX_Long(fx, "[ID]", id);
    RFX_Text(fx, "[NAME]", name, 20);
    spcdb::exchange_bytes(fx, "[DATA]", data, room);
  }
};

class LongDataTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    create_blobs(db);
  }
  void create_blobs(CDatabase& database) const {
    database.ExecuteSQL(on_mariadb()
                            ? "CREATE TABLE BLOBS (ID INTEGER NOT NULL PRIMARY KEY, NAME VARCHAR(20), DATA LONGBLOB)"
                            : "CREATE TABLE BLOBS (ID INTEGER NOT NULL PRIMARY KEY, NAME VARCHAR(20), DATA BLOB)");
  }

  void add(long id, const std::string& bytes) {
    Streamed rs(&db);
    rs.m_strFilter = "ID < 0";
    rs.Open();
    rs.AddNew();
    rs.id = id;
    rs.give(bytes);
    EXPECT_TRUE(rs.Update());
  }
  /// What is stored, as the server says it: the length, or -1 for a null; -2 when there is no row.
  long stored_length(long id) {
    struct Length : CRecordset {
      long length = 0;
      using CRecordset::CRecordset;
      void DoFieldExchange(CFieldExchange* fx) override {
        fx->SetFieldType(CFieldExchange::outputColumn);
        RFX_Long(fx, "LENGTH(DATA)", length);
      }
    } rs(&db);
    rs.m_nFields = 1;
    rs.m_strFilter.Format("ID=%ld", id);
    rs.Open(CRecordset::forwardOnly, "BLOBS", CRecordset::readOnly);
    if (rs.m_bEOF != FALSE) return -2;
    return rs.IsFieldNull(&rs.length) != FALSE ? -1 : rs.length;
  }
  std::string read(long id, UINT type = CRecordset::forwardOnly) {
    Streamed rs(&db);
    rs.m_strFilter.Format("ID=%ld", id);
    rs.Open(type, nullptr, type == CRecordset::forwardOnly ? CRecordset::readOnly : CRecordset::none);
    EXPECT_FALSE(rs.m_bEOF);
    return bytes_of(rs.data);
  }
};

}  // namespace database_test
