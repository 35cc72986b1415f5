// Plan
//   The copies between holders and texts: sizes, blocks that stay, what lies behind the data -> copy_blob.*,
//     set_blob_data.*, get_blob_data.*
//   Handing a block over where a copy would leave the same -> hand_blob_over.*
//   The field of a blob column: its construction -> BlobRSHelper.*, both modes, on every server -> BlobRSHelper_live.*
//   The retry: which sizes, how many calls, what passes -> run_with_blob_retry_reading.*, run_with_blob_retry_writing.*
#include "spcbase/foundation/blob.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/blob_retry.h"
#include "spcbase/foundation/internal/hand_over.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/testkit/database_fixture.h"
#include "tests/support/blob_bytes.h"

namespace {

using test_support::bytes_of;
using test_support::payload;
using test_support::put;

unsigned char* raw(std::string& bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }

TEST(copy_blob, of_no_bytes_into_a_long_binary_frees_its_block) {
  CLongBinary target;
  put(target, "0123456789");
  EXPECT_EQ(copy_blob(target, nullptr, 0UL), 0);
  EXPECT_EQ(target.m_hData, nullptr);
  EXPECT_EQ(target.m_dwDataLength, 0U);
  put(target, "0123456789");
  EXPECT_EQ(copy_blob(target, CLongBinary()), 0);
  EXPECT_EQ(target.m_hData, nullptr);
  put(target, "0123456789");
  EXPECT_EQ(copy_blob(target, CByteArray()), 0);
  EXPECT_EQ(target.m_hData, nullptr);
  EXPECT_EQ(target.m_dwDataLength, 0U);
}

TEST(copy_blob, of_ten_bytes_keeps_a_block_that_is_large_enough) {
  CLongBinary target;
  put(target, std::string(25, 'x'));
  const HGLOBAL block = target.m_hData;
  std::string ten = "0123456789";
  EXPECT_EQ(copy_blob(target, raw(ten), 10UL), 10);
  EXPECT_EQ(target.m_hData, block);
  EXPECT_EQ(target.m_dwDataLength, 10U);
  EXPECT_EQ(GlobalSize(block), 25U);
  EXPECT_EQ(bytes_of(target), ten);
}

TEST(copy_blob, makes_a_new_block_where_the_old_one_is_too_small) {
  CLongBinary target;
  put(target, "abc");
  std::string ten = "0123456789";
  EXPECT_EQ(copy_blob(target, raw(ten), 10UL), 10);
  EXPECT_EQ(GlobalSize(target.m_hData), 10U);
  EXPECT_EQ(bytes_of(target), ten);
}

TEST(copy_blob, of_a_long_binary_takes_the_whole_block_and_not_only_the_data) {
  CLongBinary source;
  put(source, "0123456789");
  source.m_dwDataLength = 4;
  CLongBinary target;
  EXPECT_EQ(copy_blob(target, source), 10);
  EXPECT_EQ(target.m_dwDataLength, 10U);
  EXPECT_EQ(bytes_of(target), "0123456789");
  CByteArray bytes;
  bytes.Add(1);
  EXPECT_EQ(copy_blob(target, bytes), 1);
  EXPECT_EQ(GlobalSize(target.m_hData), 10U);
}

TEST(copy_blob, of_a_holder_into_itself_changes_nothing_but_its_length) {
  CLongBinary holder;
  put(holder, "0123");
  EXPECT_EQ(copy_blob(holder, holder), 4);
  EXPECT_EQ(bytes_of(holder), "0123");
  CByteArray array;
  array.Add(5);
  EXPECT_EQ(copy_blob(array, array), 1);
  EXPECT_EQ(array[0], 5);
}

TEST(copy_blob, fills_byte_arrays) {
  CByteArray target;
  std::string bytes = payload(1000);
  EXPECT_EQ(copy_blob(target, raw(bytes), 1000), 1000);
  CByteArray second;
  EXPECT_EQ(copy_blob(second, target), 1000);
  EXPECT_EQ(bytes_of(second), bytes);
  EXPECT_EQ(copy_blob(second, nullptr, 0), 0);
  EXPECT_EQ(second.GetSize(), 0);
  CLongBinary holder;
  EXPECT_EQ(copy_blob(holder, target), 1000);
  EXPECT_EQ(bytes_of(holder), bytes);
}

TEST(copy_blob, refuses_a_negative_count) {
  CByteArray target;
  EXPECT_EQ(guarded([&] { return copy_blob(target, nullptr, -1); }).failure().kind, FailureKind::platform);
}

TEST(copy_blob, tells_of_a_block_that_cannot_be_locked) {
  // A discarded block has a handle and no address.
  CLongBinary source;
  source.m_hData = GlobalAlloc(GMEM_MOVEABLE, 0);
  source.m_dwDataLength = 5;
  EXPECT_THROW(get_blob_data(source), DBException);
  CLongBinary target;
  EXPECT_EQ(copy_blob(target, source), 0) << "its size is 0";
}

TEST(copy_blob, tells_of_memory_that_runs_out) {
  CLongBinary target;
  unsigned char byte = 0;
  try {
    copy_blob(target, &byte, std::numeric_limits<unsigned long>::max());
    ADD_FAILURE() << "nothing was thrown";
  } catch (CMemoryException* e) {
    e->Delete();
  }
  EXPECT_EQ(target.m_hData, nullptr);
  EXPECT_EQ(target.m_dwDataLength, 0U);
}

// What is handed over is what a copy would be, by the block's handle where it stays, its size, its length and its
// bytes.
TEST(hand_blob_over, leaves_what_a_copy_leaves_whatever_the_target_held) {
  for (const std::string held : {"", "abc", "0123456789", "a longer block than the bytes"}) {
    for (const std::string bytes : {"", "9876543210"}) {
      SCOPED_TRACE(held + " <- " + bytes);
      CLongBinary source;
      CLongBinary copied;
      CLongBinary handed;
      put(source, bytes);
      put(copied, held);
      put(handed, held);
      const HGLOBAL before = handed.m_hData;
      const int count = copy_blob(copied, source);
      EXPECT_EQ(hand_blob_over(handed, source), count);
      EXPECT_EQ(bytes_of(handed), bytes);
      EXPECT_EQ(handed.m_dwDataLength, copied.m_dwDataLength);
      EXPECT_EQ(handed.m_hData == nullptr, copied.m_hData == nullptr);
      if (bytes.empty()) continue;
      EXPECT_EQ(GlobalSize(handed.m_hData), GlobalSize(copied.m_hData));
      EXPECT_EQ(handed.m_hData == before, held.size() >= bytes.size()) << "a block that is large enough stays";
    }
  }
}

TEST(hand_blob_over, copies_no_bytes_into_a_target_without_a_block_or_with_one_of_the_same_size) {
  for (const std::string held : {"", "0123456789"}) {
    CLongBinary source;
    CLongBinary target;
    put(source, "9876543210");
    put(target, held);
    const void* const address = GlobalLock(source.m_hData);
    GlobalUnlock(source.m_hData);
    EXPECT_EQ(hand_blob_over(target, source), 10);
    EXPECT_EQ(GlobalLock(target.m_hData), address);
    GlobalUnlock(target.m_hData);
    EXPECT_EQ(bytes_of(target), "9876543210");
  }
}

TEST(hand_blob_over, copies_into_a_block_that_its_owner_has_locked) {
  CLongBinary source;
  CLongBinary target;
  put(source, "abc");
  put(target, "xyz");
  const auto* address = static_cast<const char*>(GlobalLock(target.m_hData));
  EXPECT_EQ(hand_blob_over(target, source), 3);
  EXPECT_EQ(std::string_view(address, 3), "abc");
  GlobalUnlock(target.m_hData);
}

TEST(hand_blob_over, takes_the_whole_of_the_block_as_a_copy_does) {
  for (const std::string held : {"", "0123456789"}) {
    CLongBinary source;
    CLongBinary target;
    put(source, "9876543210");
    source.m_dwDataLength = 3;
    put(target, held);
    EXPECT_EQ(hand_blob_over(target, source), 10);
    EXPECT_EQ(bytes_of(target), "9876543210");
  }
}

TEST(set_blob_data, stores_a_text_as_its_bytes_without_terminator) {
  const CString text(std::string_view("a\0\xc3\xa4", 4));
  CLongBinary holder;
  EXPECT_EQ(set_blob_data(holder, text), 4);
  EXPECT_EQ(bytes_of(holder), std::string_view("a\0\xc3\xa4", 4));
  EXPECT_EQ(GlobalSize(holder.m_hData), 4U);
  CByteArray array;
  EXPECT_EQ(set_blob_data(array, text), 4);
  EXPECT_EQ(bytes_of(array), std::string_view("a\0\xc3\xa4", 4));
  EXPECT_EQ(set_blob_data(holder, CString()), 0);
  EXPECT_EQ(holder.m_hData, nullptr);
  EXPECT_EQ(set_blob_data(array, CString()), 0);
  EXPECT_EQ(array.GetSize(), 0);
}

TEST(set_blob_data, of_bytes_is_the_same_as_copying_them) {
  std::string bytes = payload(300);
  CLongBinary holder;
  EXPECT_EQ(set_blob_data(holder, raw(bytes), 300UL), 300);
  EXPECT_EQ(bytes_of(holder), bytes);
  CByteArray array;
  EXPECT_EQ(set_blob_data(array, raw(bytes), 300UL), 300);
  EXPECT_EQ(bytes_of(array), bytes);
}

TEST(get_blob_data, keeps_zero_bytes_within_the_data) {
  CLongBinary holder;
  put(holder, std::string("\0a\0\0b\0", 6));
  const CString text = get_blob_data(holder);
  EXPECT_EQ(text.GetLength(), 6);
  EXPECT_EQ(text.view(), std::string_view("\0a\0\0b\0", 6));
  CByteArray array;
  set_blob_data(array, text);
  EXPECT_EQ(get_blob_data(array).view(), std::string_view("\0a\0\0b\0", 6));
}

TEST(get_blob_data, has_the_length_of_the_data_and_not_of_the_block) {
  CLongBinary holder;
  put(holder, "0123456789");
  holder.m_dwDataLength = 3;
  EXPECT_EQ(get_blob_data(holder), "012");
}

TEST(get_blob_data, of_nothing_is_an_empty_text) {
  CLongBinary holder;
  EXPECT_TRUE(get_blob_data(holder).IsEmpty());
  EXPECT_TRUE(get_blob_data(CByteArray()).IsEmpty());
  put(holder, "abc");
  holder.m_dwDataLength = 0;
  EXPECT_TRUE(get_blob_data(holder).IsEmpty());
}

TEST(BlobRSHelper, refuses_an_exchange_without_object_or_name) {
  for (const int size : {0, 10}) {
    RSMOPB rs(nullptr, size);
    CFieldExchange exchange(CFieldExchange::Fixup, &rs);
    auto& field = static_cast<BlobRSHelper&>(rs);
    const auto refused = [&](CFieldExchange* which, const char* name) {
      try {
        field.DoFieldExchange(which, name);
        return false;
      } catch (CInvalidArgException* e) {
        e->Delete();
        return true;
      }
    };
    EXPECT_TRUE(refused(nullptr, "[DATA]"));
    EXPECT_TRUE(refused(&exchange, nullptr));
    CFieldExchange of_nothing(CFieldExchange::Fixup, nullptr);
    EXPECT_TRUE(refused(&of_nothing, "[DATA]"));
  }
}

class BlobRSHelper_live : public test_support::DatabaseTest {
 protected:
  // A row begun with AddNew.
  struct NewRow : RSMOPB {
    NewRow(CDatabase* database, int size, int id) : RSMOPB(database, size) {
      m_strFilter.Format("[MONID] = %d", id);
      EXPECT_TRUE(open_for_update(*this));
      AddNew();
      monid = id;
    }
    // Whether the field would be sent: the key is dirty in any case.
    bool is_dirty() {
      monid = 0;
      SetFieldDirty(&monid, FALSE);
      return IsFieldDirty(nullptr) != FALSE;
    }
    bool is_null() { return is_null_or_empty(*this); }
  };
};
INSTANTIATE_TEST_SUITE_P(Servers, BlobRSHelper_live, test_support::all_servers(), test_support::server_name);

TEST_P(BlobRSHelper_live, a_copy_shares_the_holder_as_is_meant) {
  for (const int size : {0, 10}) {
    NewRow rs(&db(), size, 1);
    // Both would delete the holder: the copy is never destroyed.
    alignas(BlobRSHelper) std::byte place[sizeof(BlobRSHelper)];
    auto* const copy = new (place) BlobRSHelper(static_cast<const BlobRSHelper&>(rs));
    EXPECT_EQ(copy->maximum_size, size);
    rs.set_blob_data(rs, CString("first"));
    EXPECT_EQ(copy->get_blob_str(rs), "first");
    copy->set_blob_data(rs, CString("second"));
    EXPECT_EQ(rs.get_blob_str(rs), "second");
  }
}

TEST_P(BlobRSHelper_live, an_empty_text_in_streaming_mode_is_marked_dirty_and_null) {
  NewRow rs(&db(), 0, 1);
  rs.set_blob_data(rs, CString());
  EXPECT_TRUE(rs.IsFieldNull(nullptr));
  EXPECT_TRUE(rs.is_null());
  EXPECT_TRUE(rs.is_dirty());
}

TEST_P(BlobRSHelper_live, an_empty_long_binary_in_streaming_mode_is_marked_null_and_not_dirty) {
  NewRow rs(&db(), 0, 1);
  rs.set_blob_data(rs, CLongBinary());
  EXPECT_TRUE(rs.is_null());
  EXPECT_FALSE(rs.is_dirty());
}

TEST_P(BlobRSHelper_live, data_in_streaming_mode_are_marked_dirty_and_not_null) {
  NewRow text(&db(), 0, 1);
  text.set_blob_data(text, CString("abc"));
  EXPECT_FALSE(text.is_null());
  EXPECT_EQ(text.get_blob_str(text), "abc");
  EXPECT_TRUE(text.is_dirty());
  CLongBinary data;
  put(data, "abc");
  NewRow binary(&db(), 0, 2);
  binary.set_blob_data(binary, data);
  EXPECT_FALSE(binary.is_null());
  EXPECT_TRUE(binary.is_dirty());
}

TEST_P(BlobRSHelper_live, a_buffer_of_100_takes_100_bytes_and_refuses_101) {
  for (const int length : {100, 101}) {
    NewRow rs(&db(), 100, length);
    CLongBinary data;
    put(data, payload(static_cast<std::size_t>(length)));
    const CString text('x', length);
    for (const auto& outcome :
         {guarded([&] { rs.set_blob_data(rs, text); }), guarded([&] { rs.set_blob_data(rs, data); })}) {
      EXPECT_EQ(outcome.ok(), length == 100);
      if (outcome.ok()) continue;
      EXPECT_EQ(outcome.failure().text, "The data is larger than the maximum BLOB size.");
      EXPECT_EQ(outcome.failure().code, E_FAIL);
    }
    if (length != 100) continue;
    EXPECT_TRUE(rs.Update());
    EXPECT_EQ(value("SELECT LENGTH(OPTVAL) FROM CSMOPB"), "100");
  }
}

TEST_P(BlobRSHelper_live, a_buffer_tests_the_length_of_the_data_and_takes_the_whole_block) {
  CLongBinary data;
  put(data, payload(150));
  data.m_dwDataLength = 100;
  NewRow rs(&db(), 100, 1);
  rs.set_blob_data(rs, data);
  EXPECT_EQ(rs.get_blob_str(rs).GetLength(), 150);
}

TEST_P(BlobRSHelper_live, a_field_that_is_null_or_empty_gives_no_text_and_no_bytes) {
  execute("INSERT INTO CSMOPB (MONID, OPTVAL) VALUES (1, NULL)");
  execute("INSERT INTO CSMOPB (MONID, OPTVAL) VALUES (2, '')");
  for (const int size : {0, 10}) {
    for (const int id : {1, 2}) {
      RSMOPB rs(&db(), size);
      rs.m_strFilter.Format("[MONID] = %d", id);
      ASSERT_TRUE(open_for_read(rs));
      EXPECT_TRUE(rs.is_null_or_empty(rs));
      EXPECT_TRUE(rs.get_blob_str(rs).IsEmpty());
      CLongBinary target;
      put(target, "old");
      rs.get_blob_long_bin(rs, target);
      EXPECT_EQ(target.m_hData, nullptr);
      EXPECT_EQ(target.m_dwDataLength, 0U);
    }
  }
}

TEST_P(BlobRSHelper_live, both_modes_read_what_either_wrote) {
  const std::string bytes = payload(70000);
  CLongBinary data;
  put(data, bytes);
  for (const int writing : {0, 100000}) {
    NewRow rs(&db(), writing, writing + 1);
    rs.set_blob_data(rs, data);
    EXPECT_TRUE(rs.Update());
    for (const int reading : {0, 100000}) {
      RSMOPB back(&db(), reading);
      back.m_strFilter.Format("[MONID] = %d", writing + 1);
      ASSERT_TRUE(open_for_read(back));
      EXPECT_FALSE(back.is_null_or_empty(back));
      EXPECT_TRUE(back.get_blob_str(back).view() == bytes);
      CLongBinary target;
      back.get_blob_long_bin(back, target);
      EXPECT_TRUE(bytes_of(target) == bytes);
    }
  }
}

TEST_P(BlobRSHelper_live, a_revision_is_read_whole_with_its_payload_or_without) {
  execute("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION, CREASON) VALUES (1, 1, 1, 'first')");
  execute("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION, CREASON) VALUES (1, 1, 2, 'broken')");
  const std::string bytes = payload(200000);
  const int revid = std::stoi(value("SELECT REVID FROM CSOBJREV WHERE REVISION = 1"));
  RSOBJDAT add(&db(), 0);
  ASSERT_TRUE(open_for_update(add));
  add.AddNew();
  add.revid = revid;
  CLongBinary data;
  put(data, bytes);
  add.set_blob_data(add, data);
  EXPECT_TRUE(add.Update());
  for (const int size : {0, 300000}) {
    RSFullRevisionInfo rs(&db(), size);
    rs.m_strFilter = "OBJID = 1 AND OBJTYPE = 1";
    rs.m_strSort = "REVISION";
    ASSERT_TRUE(open_for_read(rs));
    EXPECT_EQ(rs.revid, revid);
    EXPECT_EQ(rs.creason, "first");
    EXPECT_TRUE(rs.get_blob_str(rs).view() == bytes);
    rs.MoveNext();
    EXPECT_EQ(rs.creason, "broken");
    EXPECT_TRUE(rs.is_null_or_empty(rs));
    rs.MoveNext();
    EXPECT_TRUE(rs.m_bEOF);
  }
}

TEST_P(BlobRSHelper_live, a_stored_connection_takes_its_definition) {
  RSExtDB rs(&db(), 0);
  ASSERT_TRUE(open_for_update(rs));
  rs.AddNew();
  rs.exdbid = 1;
  rs.name = "plant";
  rs.flg1 = 2;
  rs.set_blob_data(rs, CString("<external_database/>"));
  EXPECT_TRUE(rs.Update());
  RSExtDB back(&db(), 100);
  ASSERT_TRUE(open_for_read(back));
  EXPECT_EQ(back.get_blob_str(back), "<external_database/>");
  EXPECT_EQ(back.name, "plant");
}

// An operation that notes the sizes it was called with, and fails until `good` is reached.
class run_with_blob_retry_test : public testing::Test {
 protected:
  std::function<int(int)> operation(int good, RETCODE code = AFX_SQL_ERROR_DATA_TRUNCATED) {
    return [this, good, code](int size) {
      sizes.push_back(size);
      if (size == 0) spcdb::raise(-1, "HYC00", "no streaming");
      if (size < good) spcdb::raise(code, "01004", "cut off");
      return size;
    };
  }
  static CDBException* failure_of(const std::function<int()>& call) {
    try {
      call();
    } catch (CDBException* e) {
      return e;
    }
    return nullptr;
  }

  std::vector<int> sizes;
};
using Sizes = std::vector<int>;

class run_with_blob_retry_reading : public run_with_blob_retry_test {};
class run_with_blob_retry_writing : public run_with_blob_retry_test {};

TEST_F(run_with_blob_retry_reading, calls_once_when_streaming_works) {
  const std::function<int(int)> works = [&](int size) {
    sizes.push_back(size);
    return 42;
  };
  EXPECT_EQ(run_with_blob_retry(1000, works), 42);
  EXPECT_EQ(sizes, Sizes{0});
}

TEST_F(run_with_blob_retry_reading, with_maximum_size_0_rethrows_the_first_failure_unchanged) {
  auto* thrown = new CDBException(-1);
  const std::function<int(int)> fails = [&](int size) -> int {
    sizes.push_back(size);
    throw thrown;
  };
  EXPECT_EQ(failure_of([&] { return run_with_blob_retry(0, fails); }), thrown);
  thrown->Delete();
  EXPECT_EQ(sizes, Sizes{0});
}

TEST_F(run_with_blob_retry_reading, of_3000_bytes_with_maximum_size_1000_calls_with_0_1001_2002_and_4004) {
  EXPECT_EQ(run_with_blob_retry(1000, operation(3000)), 4004);
  EXPECT_EQ(sizes, (Sizes{0, 1001, 2002, 4004}));
}

TEST_F(run_with_blob_retry_reading, with_a_negative_maximum_size_begins_at_1_and_ends_at_1024) {
  auto* failure = failure_of([&] { return run_with_blob_retry(-1, operation(1025)); });
  ASSERT_NE(failure, nullptr);
  EXPECT_EQ(failure->m_nRetCode, AFX_SQL_ERROR_DATA_TRUNCATED);
  failure->Delete();
  EXPECT_EQ(sizes, (Sizes{0, 1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024}));
  sizes.clear();
  EXPECT_EQ(run_with_blob_retry(-77, operation(1024)), 1024);
  EXPECT_EQ(sizes.size(), 12U) << "there are at most 12 calls";
}

TEST_F(run_with_blob_retry_reading, lets_another_failure_of_the_second_phase_pass) {
  auto* failure = failure_of([&] { return run_with_blob_retry(1000, operation(3000, AFX_SQL_ERROR)); });
  ASSERT_NE(failure, nullptr);
  EXPECT_EQ(failure->m_nRetCode, AFX_SQL_ERROR);
  failure->Delete();
  EXPECT_EQ(sizes, (Sizes{0, 1001}));
}

TEST_F(run_with_blob_retry_reading, lets_what_is_no_database_failure_pass_at_once) {
  const std::function<int(int)> fails = [&](int size) -> int {
    sizes.push_back(size);
    throw std::runtime_error("other");
  };
  EXPECT_THROW(run_with_blob_retry(1000, fails), std::runtime_error);
  EXPECT_EQ(sizes, Sizes{0});
}

TEST_F(run_with_blob_retry_reading, never_asks_for_more_than_an_int_holds) {
  constexpr int largest = std::numeric_limits<int>::max();
  auto* failure = failure_of([&] {
    return run_with_blob_retry<int>(largest - 1, [&](int size) -> int {
      sizes.push_back(size);
      spcdb::raise(AFX_SQL_ERROR_DATA_TRUNCATED, "01004", "cut off");
    });
  });
  ASSERT_NE(failure, nullptr);
  failure->Delete();
  Sizes expected(12, largest);
  expected.front() = 0;
  EXPECT_EQ(sizes, expected);
}

TEST_F(run_with_blob_retry_writing, of_5000_bytes_with_maximum_size_100_goes_on_with_5001) {
  EXPECT_EQ(run_with_blob_retry(100, operation(5000), 5000), 5001);
  EXPECT_EQ(sizes, (Sizes{0, 5001}));
}

TEST_F(run_with_blob_retry_writing, with_maximum_size_0_takes_the_length_of_the_data) {
  EXPECT_EQ(run_with_blob_retry(0, operation(5000), 5000), 5001);
  EXPECT_EQ(sizes, (Sizes{0, 5001}));
}

TEST_F(run_with_blob_retry_writing, of_no_data_with_maximum_size_0_rethrows_the_first_failure) {
  auto* failure = failure_of([&] { return run_with_blob_retry(0, operation(1), 0); });
  ASSERT_NE(failure, nullptr);
  EXPECT_EQ(failure->m_strError, "no streaming");
  failure->Delete();
  EXPECT_EQ(sizes, Sizes{0});
}

TEST_F(run_with_blob_retry_writing, keeps_a_maximum_size_beyond_the_data) {
  EXPECT_EQ(run_with_blob_retry(9000, operation(1), 5000), 9001);
  EXPECT_EQ(run_with_blob_retry(-1, operation(1), 0), 1);
  EXPECT_EQ(run_with_blob_retry(-1, operation(1), 5000), 5001);
}

TEST_F(run_with_blob_retry_writing, may_give_nothing_back) {
  run_with_blob_retry<void>(
      0, [&](int size) { sizes.push_back(size); }, 7);
  EXPECT_EQ(sizes, Sizes{0});
}

}  // namespace
