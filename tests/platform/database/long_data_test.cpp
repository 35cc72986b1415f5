// Long data through recordsets.
//
// Plan
//   LongData     in pieces and through a buffer, on each server: payloads of every size and byte value come back; null,
//                empty and data are three things; moving, editing, deleting; joins; a value that does not fit
//   BoundBytes   how large the buffer is, and what shows a null
//   LongHolders  the two holders by themselves
//   LongScript   what a driver that tells no lengths, or cannot stream, sees
#include <limits>

#include "spcbase/platform/database/connection.h"
#include "spcbase/testkit/scripted_session.h"
#include "tests/platform/database/blobs_under_test.h"

namespace database_test {
namespace {

constexpr std::size_t piece = spcdb::long_piece_bytes;
constexpr std::size_t sixteen_mib = 16UL * 1024 * 1024;

class LongData : public LongDataTest {};
INSTANTIATE_TEST_SUITE_P(, LongData, all_servers, server_name);

TEST_P(LongData, payloads_of_every_size_come_back_in_pieces) {
  const std::size_t sizes[] = {1, 2, 255, 256, 257, piece - 1, piece, piece + 1, 3 * piece, 1000003, sixteen_mib};
  long id = 0;
  for (const auto size : sizes) {
    SCOPED_TRACE(size);
    add(++id, payload(size));
    EXPECT_EQ(stored_length(id), static_cast<long>(size));
    EXPECT_TRUE(read(id) == payload(size));
    EXPECT_TRUE(read(id, CRecordset::snapshot) == payload(size));
  }
}

TEST_P(LongData, payloads_of_every_size_come_back_through_a_buffer) {
  const std::size_t sizes[] = {1, 256, piece + 1, 1000003, sixteen_mib};
  long id = 0;
  for (const auto size : sizes) {
    SCOPED_TRACE(size);
    Bound rs(&db, static_cast<int>(size));
    rs.m_strFilter.Format("ID=%ld", ++id);
    rs.Open();
    rs.AddNew();
    rs.id = id;
    put(rs.data, payload(size));
    EXPECT_TRUE(rs.Update());
    EXPECT_EQ(stored_length(id), static_cast<long>(size));
    rs.Requery();
    ASSERT_FALSE(rs.m_bEOF);
    EXPECT_TRUE(bytes_of(rs.data) == payload(size));
    EXPECT_TRUE(read(id) == payload(size));
  }
}

TEST_P(LongData, one_byte_of_any_value_comes_back_in_both_modes) {
  Bound bound(&db, 1);
  bound.Open();
  for (int value = 0; value < 256; ++value) {
    const std::string one(1, static_cast<char>(value));
    add(value + 1, one);
    bound.AddNew();
    bound.id = 1001 + value;
    put(bound.data, one);
    EXPECT_TRUE(bound.Update());
  }
  Streamed all(&db);
  all.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly);
  for (int i = 0; i < 512; ++i, all.MoveNext()) {
    ASSERT_FALSE(all.m_bEOF);
    EXPECT_FALSE(all.IsFieldNull(&all.data));
    EXPECT_EQ(bytes_of(all.data), std::string(1, static_cast<char>(i % 256))) << all.id;
  }
  EXPECT_TRUE(all.m_bEOF);
}

TEST_P(LongData, null_empty_and_data_are_three_things_in_pieces) {
  add(1, "");
  db.ExecuteSQL("INSERT INTO BLOBS (ID) VALUES (2)");
  add(3, "x");
  EXPECT_EQ(stored_length(1), 0);
  EXPECT_EQ(stored_length(2), -1);
  for (const UINT type : {CRecordset::forwardOnly, CRecordset::snapshot}) {
    Streamed rs(&db);
    rs.Open(type);
    EXPECT_FALSE(rs.IsFieldNull(&rs.data));
    EXPECT_EQ(rs.data.m_dwDataLength, 0U);
    EXPECT_EQ(rs.data.m_hData, nullptr);
    rs.MoveNext();
    EXPECT_TRUE(rs.IsFieldNull(&rs.data));
    EXPECT_EQ(rs.data.m_hData, nullptr);
    rs.MoveNext();
    EXPECT_FALSE(rs.IsFieldNull(&rs.data));
    EXPECT_EQ(bytes_of(rs.data), "x");
  }
}

TEST_P(LongData, null_empty_and_data_are_three_things_through_a_buffer) {
  Bound rs(&db, 10);
  rs.Open();
  for (long id = 1; id <= 3; ++id) {
    rs.AddNew();
    rs.id = id;
    if (id == 1) rs.data.SetSize(0);
    if (id == 3) put(rs.data, "x");
    EXPECT_TRUE(rs.Update());
  }
  EXPECT_EQ(stored_length(1), 0);
  EXPECT_EQ(stored_length(2), -1);
  rs.Requery();
  EXPECT_FALSE(rs.IsFieldNull(&rs.data));
  EXPECT_EQ(rs.data.GetSize(), 0);
  rs.MoveNext();
  EXPECT_TRUE(rs.IsFieldNull(&rs.data));
  EXPECT_EQ(bytes_of(rs.data), "\xFF") << "a null shows as this one byte";
  rs.MoveNext();
  EXPECT_FALSE(rs.IsFieldNull(&rs.data));
  EXPECT_EQ(bytes_of(rs.data), "x");
}

TEST_P(LongData, each_row_of_a_forward_read_has_its_own_data) {
  for (long id = 1; id <= 70; ++id) {
    if (id % 7 == 0)
      db.ExecuteSQL(("INSERT INTO BLOBS (ID, NAME) VALUES (" + std::to_string(id) + ", 'none')").c_str());
    else
      add(id, payload(static_cast<std::size_t>(id % 3 == 0 ? piece + 100 : 10) + static_cast<std::size_t>(id)));
  }
  Streamed rs(&db);
  rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly);
  long id = 0;
  for (; rs.m_bEOF == FALSE; rs.MoveNext()) {
    EXPECT_EQ(rs.id, ++id);
    EXPECT_EQ(rs.IsFieldNull(&rs.data) != FALSE, id % 7 == 0);
    if (id % 7 == 0) continue;
    EXPECT_TRUE(bytes_of(rs.data) ==
                payload(static_cast<std::size_t>(id % 3 == 0 ? piece + 100 : 10) + static_cast<std::size_t>(id)));
    EXPECT_EQ(GlobalSize(rs.data.m_hData), rs.data.m_dwDataLength) << "nothing lies behind the data";
  }
  EXPECT_EQ(id, 70);
}

TEST_P(LongData, a_snapshot_asks_for_the_data_of_the_row_that_it_moves_to) {
  for (long id = 1; id <= 4; ++id)
    add(id, payload(static_cast<std::size_t>(id) * 50000));
  Streamed rs(&db);
  rs.Open();
  EXPECT_EQ(rs.GetRecordCount(), 4);
  for (const long to : {3L, 1L, 4L, 2L}) {
    rs.MoveFirst();
    rs.Move(to - 1);
    EXPECT_EQ(rs.id, to);
    EXPECT_TRUE(bytes_of(rs.data) == payload(static_cast<std::size_t>(to) * 50000));
  }
  db.ExecuteSQL("DELETE FROM BLOBS WHERE ID=3");
  EXPECT_EQ(caught([&] { rs.MoveNext(); }).code, AFX_SQL_ERROR_NO_CURRENT_RECORD);
}

TEST_P(LongData, a_snapshot_without_a_key_shows_its_first_row_and_refuses_to_move) {
  db.ExecuteSQL("CREATE VIEW BLOBVIEW AS SELECT ID, NAME, DATA FROM BLOBS");
  add(1, "one");
  add(2, "two");
  Streamed rs(&db);
  rs.set_key(0);
  rs.Open(CRecordset::snapshot, "[BLOBVIEW]");
  EXPECT_EQ(bytes_of(rs.data), "one");
  EXPECT_EQ(caught([&] { rs.MoveNext(); }).code, AFX_SQL_ERROR_ILLEGAL_MODE);
}

TEST_P(LongData, an_edit_sends_what_was_marked_dirty_and_nothing_else) {
  add(1, "before");
  Streamed rs(&db);
  rs.Open();
  rs.Edit();
  put(rs.data, "not marked");
  EXPECT_FALSE(rs.IsFieldDirty(&rs.data));
  EXPECT_FALSE(rs.Update());
  EXPECT_EQ(read(1), "before");
  rs.Edit();
  rs.name = "only this";
  EXPECT_TRUE(rs.Update());
  EXPECT_EQ(read(1), "before");
  rs.Edit();
  rs.give(payload(3 * piece));
  EXPECT_TRUE(rs.IsFieldDirty(&rs.data));
  EXPECT_TRUE(rs.Update());
  EXPECT_TRUE(bytes_of(rs.data) == payload(3 * piece)) << "the holder keeps what was written";
  EXPECT_TRUE(read(1) == payload(3 * piece));
  rs.Edit();
  rs.SetFieldNull(&rs.data);
  EXPECT_FALSE(rs.IsFieldDirty(&rs.data)) << "null alone does not mark it";
  rs.SetFieldDirty(&rs.data);
  EXPECT_TRUE(rs.Update());
  EXPECT_EQ(stored_length(1), -1);
}

TEST_P(LongData, a_larger_and_a_smaller_value_replace_the_old_one) {
  add(1, payload(100));
  for (const std::size_t size : {std::size_t{500000}, std::size_t{5}, piece + 1, std::size_t{0}}) {
    Streamed rs(&db);
    rs.Open();
    rs.Edit();
    rs.give(payload(size));
    EXPECT_TRUE(rs.Update());
    EXPECT_EQ(stored_length(1), static_cast<long>(size));
    EXPECT_TRUE(read(1) == payload(size));
  }
}

TEST_P(LongData, an_edit_through_a_buffer_compares_it) {
  Bound rs(&db, 100);
  rs.Open();
  rs.AddNew();
  rs.id = 1;
  put(rs.data, "same");
  EXPECT_TRUE(rs.Update());
  rs.Requery();
  rs.Edit();
  put(rs.data, "same");
  EXPECT_FALSE(rs.IsFieldDirty(&rs.data));
  EXPECT_FALSE(rs.Update());
  rs.Edit();
  put(rs.data, "samE");
  EXPECT_TRUE(rs.IsFieldDirty(&rs.data));
  EXPECT_TRUE(rs.Update());
  EXPECT_EQ(bytes_of(rs.data), "samE");
  EXPECT_EQ(read(1), "samE");
  rs.Edit();
  rs.SetFieldNull(&rs.data);
  EXPECT_TRUE(rs.Update());
  EXPECT_EQ(stored_length(1), -1);
  EXPECT_EQ(bytes_of(rs.data), "\xFF");
}

TEST_P(LongData, cancelling_an_edit_through_a_buffer_restores_it) {
  add(1, "kept");
  Bound rs(&db, 100);
  rs.Open();
  rs.Edit();
  put(rs.data, "dropped");
  rs.CancelUpdate();
  EXPECT_EQ(bytes_of(rs.data), "kept");
}

TEST_P(LongData, deleting_a_row_frees_the_holder) {
  add(1, "x");
  Streamed rs(&db);
  rs.Open();
  rs.Delete();
  EXPECT_EQ(rs.data.m_hData, nullptr);
  EXPECT_EQ(rs.data.m_dwDataLength, 0U);
  EXPECT_TRUE(rs.IsFieldNull(&rs.data));
  EXPECT_EQ(stored_length(1), -2);
}

TEST_P(LongData, a_value_that_does_not_fit_the_buffer_is_a_truncation_and_tells_its_length) {
  add(1, payload(3000));
  for (const UINT type : {CRecordset::forwardOnly, CRecordset::snapshot}) {
    Bound rs(&db, 2999);
    const auto failure = caught([&] { rs.Open(type); });
    EXPECT_EQ(failure.code, AFX_SQL_ERROR_DATA_TRUNCATED);
    EXPECT_EQ(failure.code, 1021);
    EXPECT_NE(failure.text.find("3000 bytes"), std::string::npos) << failure.text;
    EXPECT_FALSE(rs.IsOpen());
  }
  Bound fits(&db, 3000);
  fits.Open();
  EXPECT_TRUE(bytes_of(fits.data) == payload(3000));
}

TEST_P(LongData, a_join_gives_the_data_of_its_own_row_or_a_null) {
  db.ExecuteSQL("CREATE TABLE HEADS (HID INTEGER NOT NULL PRIMARY KEY)");
  db.ExecuteSQL("INSERT INTO HEADS VALUES (1)");
  db.ExecuteSQL("INSERT INTO HEADS VALUES (2)");
  db.ExecuteSQL("INSERT INTO HEADS VALUES (3)");
  add(1, payload(2 * piece));
  add(3, payload(3 * piece));
  Streamed rs(&db);
  rs.m_strSort = "HID";
  rs.Open(CRecordset::forwardOnly, "HEADS LEFT JOIN BLOBS ON HEADS.HID = BLOBS.ID", CRecordset::readOnly);
  EXPECT_TRUE(bytes_of(rs.data) == payload(2 * piece));
  rs.MoveNext();
  EXPECT_TRUE(rs.IsFieldNull(&rs.data));
  rs.MoveNext();
  EXPECT_TRUE(bytes_of(rs.data) == payload(3 * piece));
}

TEST_P(LongData, a_failed_write_leaves_the_row_and_the_transaction_as_they_were) {
  add(1, payload(2 * piece));
  db.BeginTrans();
  add(2, payload(2 * piece));
  EXPECT_NE(caught([&] { add(1, payload(3 * piece)); }).code, 0) << "the key is taken";
  add(3, payload(piece + 1));
  db.CommitTrans();
  EXPECT_TRUE(read(1) == payload(2 * piece));
  EXPECT_TRUE(read(2) == payload(2 * piece));
  EXPECT_TRUE(read(3) == payload(piece + 1));
}

TEST_P(LongData, an_onlooker_is_told_how_many_bytes_were_sent) {
  Record record;
  db.set_observer(&record);
  add(1, payload(100000));
  db.set_observer(nullptr);
  ASSERT_EQ(record.lines.size(), 2U);
  EXPECT_EQ(record.lines[1].parameters, "1, 100000 bytes");
}

TEST_P(LongData, a_length_beyond_the_block_is_refused) {
  Streamed rs(&db);
  rs.Open();
  rs.AddNew();
  rs.id = 1;
  rs.give("abc");
  rs.data.m_dwDataLength = 4;
  try {
    rs.Update();
    ADD_FAILURE() << "nothing was thrown";
  } catch (CInvalidArgException* e) {
    e->Delete();
  }
  EXPECT_EQ(stored_length(1), -2);
}

// A recordset on a script that answers with one row.
class LongScript : public testing::Test {
 protected:
  LongScript() { db.adopt_session(std::make_unique<test_support::ScriptedSession>(script)); }

  std::vector<std::string> buffers() const {
    std::vector<std::string> sizes;
    for (const auto& call : script->calls_of("bind_bytes"))
      sizes.push_back(call.parameters);
    return sizes;
  }

  std::shared_ptr<test_support::Script> script = std::make_shared<test_support::Script>();
  CDatabase db;
};

class BoundBytes : public LongScript {};

// The scripted server reports 255 for every column.
TEST_F(BoundBytes, have_the_size_that_the_driver_reports) {
  script->on_prefix("SELECT").answer({"ID", "NAME", "DATA"}, {{1, "a", "bytes"}});
  Bound rs(&db, 1000);
  rs.Open();
  EXPECT_EQ(bytes_of(rs.data), "bytes");
  EXPECT_EQ(buffers(), std::vector<std::string>{"255"});
}

TEST_F(BoundBytes, have_the_maximum_size_where_the_driver_reports_more) {
  script->on_prefix("SELECT").answer({"ID", "NAME", "DATA"}, {{1, "a", "bytes"}});
  Bound rs(&db, 100);
  rs.Open();
  EXPECT_EQ(buffers(), std::vector<std::string>{"100"});
}

TEST_F(BoundBytes, have_the_maximum_size_where_the_driver_reports_none) {
  script->column_sizes_zero();
  script->on_prefix("SELECT").answer({"ID", "NAME", "DATA"}, {{1, "a", std::string(1000, 'x')}});
  Bound rs(&db, 1000);
  rs.Open();
  EXPECT_EQ(rs.data.GetSize(), 1000);
  EXPECT_EQ(buffers(), std::vector<std::string>{"1000"});
}

TEST_F(BoundBytes, are_refused_a_size_below_one) {
  script->on_prefix("SELECT").answer({"ID", "NAME", "DATA"}, {});
  for (const int size : {0, -1, std::numeric_limits<int>::min()}) {
    Bound rs(&db, size);
    try {
      rs.Open();
      ADD_FAILURE() << "nothing was thrown";
    } catch (CInvalidArgException* e) {
      e->Delete();
    }
    EXPECT_FALSE(rs.IsOpen());
  }
}

TEST_F(LongScript, data_whose_length_nobody_tells_are_read_to_their_end) {
  script->long_lengths_unknown();
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, piece - 1, piece, piece + 1, 5 * piece + 7}) {
    script->on_prefix("SELECT").answer({"ID", "NAME", "DATA"}, {{1, "a", payload(size)}}).once();
    Streamed rs(&db);
    rs.Open(CRecordset::forwardOnly);
    EXPECT_TRUE(bytes_of(rs.data) == payload(size)) << size;
    EXPECT_EQ(rs.data.m_hData == nullptr ? 0 : GlobalSize(rs.data.m_hData), size);
    EXPECT_FALSE(rs.IsFieldNull(&rs.data));
  }
}

TEST_F(LongScript, a_driver_that_cannot_stream_fails_the_opening) {
  script->refuse_streaming(test_support::error("HYC00", 7, "The driver has no such feature"));
  script->on_prefix("SELECT").answer({"ID", "NAME", "DATA"}, {{1, "a", "x"}});
  Streamed rs(&db);
  EXPECT_NE(caught([&] { rs.Open(); }).state.find("HYC00"), std::string::npos);
  EXPECT_FALSE(rs.IsOpen());
  Bound bound(&db, 10);
  bound.Open();
  EXPECT_EQ(bytes_of(bound.data), "x");
}

TEST(LongHolders, a_byte_array_grows_with_zeros_and_refuses_what_is_outside) {
  CByteArray array;
  EXPECT_TRUE(array.IsEmpty());
  EXPECT_EQ(array.GetData(), nullptr);
  EXPECT_EQ(array.Add(7), 0);
  array.SetSize(3);
  EXPECT_EQ(array.GetUpperBound(), 2);
  EXPECT_EQ(array[2], 0);
  array[2] = 9;
  array.SetAt(1, 8);
  EXPECT_EQ(bytes_of(array), std::string("\7\10\11"));
  const auto refused = [&](INT_PTR index) {
    try {
      array.SetAt(index, 1);
      return false;
    } catch (CInvalidArgException* e) {
      e->Delete();
      return true;
    }
  };
  EXPECT_TRUE(refused(3));
  EXPECT_TRUE(refused(-1));
  CByteArray copy;
  copy.Copy(array);
  copy.Copy(copy);
  EXPECT_EQ(copy.GetCount(), 3);
  copy.RemoveAll();
  EXPECT_EQ(copy.GetSize(), 0);
}

TEST(LongHolders, a_byte_array_refuses_a_negative_size) {
  CByteArray array;
  try {
    array.SetSize(-1);
    ADD_FAILURE() << "nothing was thrown";
  } catch (CInvalidArgException* e) {
    e->Delete();
  }
  EXPECT_EQ(array.GetSize(), 0);
}

}  // namespace
}  // namespace database_test
