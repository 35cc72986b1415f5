// Plan, on SQLite, MariaDB and SQLite's ODBC driver where a server is needed
//   Every rule of reading and writing, both kinds of payload and the text -> payload_live.*
//   A driver that cannot stream: the sizes that it is asked for -> payload_on_a_poor_driver.*
//   Every call into the driver fails once, in a write and in a read -> payload_failures.*
//   A payload of 64 MiB stands in memory once -> payload_memory.*
#include "spcbase/foundation/payload.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/schema/payloads.h"
#include "spcbase/platform/database/connection.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/fail_kth_call.h"
#include "spcbase/testkit/scripted_session.h"
#include "spcbase/testkit/statement_log.h"
#include "tests/support/blob_bytes.h"
#include "tests/support/failure_sweep.h"
#include "tests/support/memory_meter.h"

namespace {

using test_support::bytes_of;
using test_support::payload;
using test_support::put;
using test_support::ServerKind;

class payload_live : public test_support::DatabaseTest {
 protected:
  void set_mon(int id, const std::string& bytes, int size = 0) {
    CLongBinary data;
    put(data, bytes);
    set_mon_data(&db(), size, id, data);
  }
  void set_prof(int id, const std::string& bytes, int size = 0) {
    CLongBinary data;
    put(data, bytes);
    set_prof_data(&db(), size, id, data);
  }
  std::string mon(int id, int size = 0) {
    CLongBinary data;
    const int count = get_mon_data(&db(), size, id, data);
    EXPECT_EQ(count, static_cast<int>(data.m_dwDataLength));
    return bytes_of(data);
  }
  std::string prof(int id, int size = 0) {
    CLongBinary data;
    get_prof_data(&db(), size, id, data);
    return bytes_of(data);
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, payload_live, test_support::all_servers(), test_support::server_name);

TEST_P(payload_live, a_monitor_without_a_row_has_0_bytes_and_frees_what_the_caller_held) {
  CLongBinary data;
  put(data, "held before");
  EXPECT_EQ(get_mon_data(&db(), 0, 77, data), 0);
  EXPECT_EQ(data.m_hData, nullptr);
  EXPECT_EQ(data.m_dwDataLength, 0U);
  put(data, "held before");
  EXPECT_EQ(get_prof_data(&db(), 0, 77, data), 0);
  EXPECT_EQ(data.m_hData, nullptr);
}

TEST_P(payload_live, a_null_reads_as_no_row) {
  execute("INSERT INTO CSMOPB (MONID, OPTVAL) VALUES (1, NULL)");
  execute("INSERT INTO CSMEXT (MONID, DATA) VALUES (1, NULL)");
  CLongBinary data;
  put(data, "held before");
  EXPECT_EQ(get_mon_data(&db(), 0, 1, data), 0);
  EXPECT_EQ(data.m_hData, nullptr);
  EXPECT_TRUE(get_mon_extra_data(&db(), 0, 1).IsEmpty());
}

TEST_P(payload_live, an_empty_payload_deletes_the_row_or_does_nothing) {
  set_prof(1, "abc");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSPOPB"), "1");
  set_prof(1, "");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSPOPB"), "0");
  set_prof(1, "");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSPOPB"), "0");
  set_mon(2, "abc");
  set_mon(2, "");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMOPB"), "0");
}

TEST_P(payload_live, an_empty_text_deletes_the_row_and_reads_as_an_empty_text) {
  set_mon_extra_data(&db(), 0, 1, "some text");
  EXPECT_EQ(get_mon_extra_data(&db(), 0, 1), "some text");
  set_mon_extra_data(&db(), 0, 1, CString());
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMEXT"), "0");
  EXPECT_TRUE(get_mon_extra_data(&db(), 0, 1).IsEmpty());
}

TEST_P(payload_live, writing_twice_leaves_one_row_with_the_second_payload) {
  set_mon(1, payload(100000));
  set_mon(1, payload(70001));
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMOPB"), "1");
  EXPECT_TRUE(mon(1) == payload(70001));
  set_mon(1, "short");
  EXPECT_EQ(mon(1), "short");
}

TEST_P(payload_live, monitors_and_profiles_of_one_id_have_payloads_of_their_own) {
  set_mon(1, "monitor");
  set_prof(1, "profile");
  set_mon_extra_data(&db(), 0, 1, "extra");
  set_mon(2, "another");
  EXPECT_EQ(mon(1), "monitor");
  EXPECT_EQ(prof(1), "profile");
  EXPECT_EQ(get_mon_extra_data(&db(), 0, 1), "extra");
  EXPECT_EQ(mon(2), "another");
}

TEST_P(payload_live, every_byte_value_and_every_size_come_back) {
  for (const std::size_t size :
       {std::size_t{1}, std::size_t{256}, std::size_t{65536}, std::size_t{65537}, std::size_t{16} * 1024 * 1024}) {
    set_prof(1, payload(size));
    EXPECT_TRUE(prof(1) == payload(size)) << size;
  }
  for (const char byte : {'\0', '\x1a', '\xff'}) {
    set_prof(1, std::string(1, byte));
    EXPECT_EQ(prof(1), std::string(1, byte));
  }
}

TEST_P(payload_live, a_text_with_embedded_zero_bytes_survives) {
  const CString text(std::string_view("a\0b\0\0\xc3\xa4", 7));
  set_mon_extra_data(&db(), 0, 1, text);
  EXPECT_EQ(get_mon_extra_data(&db(), 0, 1).view(), text.view());
  EXPECT_EQ(get_mon_extra_data(&db(), 0, 1).GetLength(), 7);
}

TEST_P(payload_live, the_whole_of_a_block_that_is_larger_than_its_data_is_stored_as_is_meant) {
  CLongBinary data;
  put(data, payload(150));
  data.m_dwDataLength = 100;
  set_mon_data(&db(), 0, 1, data);
  EXPECT_EQ(mon(1), payload(150));
  data.m_dwDataLength = 0;
  set_mon_data(&db(), 0, 1, data);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMOPB"), "0") << "without data it is an empty payload, whatever its block";
}

TEST_P(payload_live, a_readers_block_stays_when_it_is_large_enough_and_else_has_the_payloads_size) {
  for (const std::size_t stored : {std::size_t{100}, std::size_t{70000}}) {
    set_prof(1, payload(stored));
    for (const std::size_t held : {stored - 1, stored, stored + 1}) {
      CLongBinary data;
      put(data, std::string(held, 'h'));
      const HGLOBAL block = data.m_hData;
      EXPECT_EQ(get_prof_data(&db(), 0, 1, data), static_cast<int>(stored));
      EXPECT_TRUE(bytes_of(data) == payload(stored)) << held;
      EXPECT_EQ(data.m_hData == block, held >= stored) << held;
      EXPECT_EQ(GlobalSize(data.m_hData), std::max(held, stored));
    }
  }
}

TEST_P(payload_live, no_transaction_is_opened_for_it) {
  test_support::StatementLog recorder(db());
  set_mon(1, payload(100000));
  mon(1);
  set_mon(1, "");
  EXPECT_GE(recorder.statements.size(), 5U);
  for (const auto& statement : recorder.statements)
    EXPECT_TRUE(statement.starts_with("SELECT") || statement.starts_with("INSERT") || statement.starts_with("DELETE"))
        << statement;
}

TEST_P(payload_live, a_negative_id_is_an_id_like_any_other) {
  set_mon(-5, "below zero");
  EXPECT_EQ(mon(-5), "below zero");
  EXPECT_EQ(mon(5), "");
}

TEST_P(payload_live, takes_part_in_the_callers_transaction) {
  {
    AutoODBCTransaction transaction(db(), true);
    set_mon(1, payload(100000));
    EXPECT_TRUE(mon(1) == payload(100000));
  }
  EXPECT_EQ(mon(1), "");
}

TEST_P(payload_live, a_second_writer_of_a_new_object_fails_on_the_key) {
  // The other one inserts between the look for the row and the insertion.
  RSMOPB rs(&db(), 0);
  set_rs_where_clause(rs, "[MONID] = 1");
  ASSERT_TRUE(open_for_update(rs));
  execute("INSERT INTO CSMOPB (MONID, OPTVAL) VALUES (1, 'theirs')");
  rs.AddNew();
  rs.monid = 1;
  rs.set_blob_data(rs, CString("ours"));
  const auto outcome = guarded([&] { return rs.Update(); });
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::duplicate_key);
  EXPECT_EQ(mon(1), "theirs");
}

TEST(payload_functions, without_an_open_connection_say_that_the_recordset_does_not_open) {
  CDatabase closed;
  CLongBinary data;
  EXPECT_THROW(get_mon_data(&closed, 0, 1, data), DBException);
  EXPECT_THROW(set_mon_extra_data(nullptr, 0, 1, "x"), DBException);
}

// A real database behind a driver that refuses whatever travels in pieces.
class payload_on_a_poor_driver : public payload_live {
 protected:
  static spcdb::Diagnostic refusal() { return test_support::error("HYC00", 106, "The driver has no such feature"); }
  void use_poor_driver() {
    script = std::make_shared<test_support::Script>();
    script->refuse_streaming(refusal());
    script->column_sizes_zero();
    test_support::play(db(), script);
  }
  // The sizes with which the blob column was asked for.
  std::vector<std::string> sizes() {
    std::vector<std::string> seen;
    for (const auto& call : script->calls_of("bind_bytes"))
      seen.push_back(call.parameters);
    script->forget_calls();
    return seen;
  }
  std::shared_ptr<test_support::Script> script;
};
using Sizes = std::vector<std::string>;
INSTANTIATE_TEST_SUITE_P(Servers, payload_on_a_poor_driver, test_support::all_servers(), test_support::server_name);

TEST_P(payload_on_a_poor_driver, a_read_with_maximum_size_0_rethrows_the_first_failure) {
  set_mon(1, payload(3000));
  use_poor_driver();
  CLongBinary data;
  const auto outcome = guarded([&] { return get_mon_data(&db(), 0, 1, data); });
  EXPECT_EQ(outcome.failure().native, 106);
  EXPECT_EQ(sizes(), Sizes{"0"});
}

TEST_P(payload_on_a_poor_driver, a_read_of_3000_bytes_with_1000_comes_back_whole_through_1001_2002_and_4004) {
  set_mon(1, payload(3000));
  set_mon_extra_data(&db(), 0, 1, CString(payload(3000)));
  use_poor_driver();
  EXPECT_EQ(mon(1, 1000), payload(3000));
  EXPECT_EQ(sizes(), (Sizes{"0", "1001", "2002", "4004"}));
  EXPECT_EQ(get_mon_extra_data(&db(), 1000, 1).view(), payload(3000));
  EXPECT_EQ(sizes(), (Sizes{"0", "1001", "2002", "4004"}));
}

TEST_P(payload_on_a_poor_driver, a_read_with_a_negative_size_gets_1024_bytes_in_12_calls_and_no_more) {
  set_mon(1, payload(1024));
  set_mon(2, payload(1025));
  use_poor_driver();
  EXPECT_EQ(mon(1, -1), payload(1024));
  const Sizes twelve{"0", "1", "2", "4", "8", "16", "32", "64", "128", "256", "512", "1024"};
  EXPECT_EQ(sizes(), twelve);
  CLongBinary data;
  const auto outcome = guarded([&] { return get_mon_data(&db(), -1, 2, data); });
  EXPECT_EQ(outcome.failure().code, AFX_SQL_ERROR_DATA_TRUNCATED);
  EXPECT_EQ(sizes(), twelve);
}

TEST_P(payload_on_a_poor_driver, a_write_of_5000_bytes_goes_on_with_5001) {
  use_poor_driver();
  for (const int maximum : {100, 0, -1}) {
    set_mon(1, payload(5000), maximum);
    EXPECT_EQ(sizes(), (Sizes{"0", "5001"})) << maximum;
    EXPECT_EQ(mon(1, 5000), payload(5000));
    EXPECT_EQ(sizes(), (Sizes{"0", "5001"}));
    set_mon(1, "", 5000);
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSMOPB"), "0");
    script->forget_calls();
  }
}

TEST_P(payload_on_a_poor_driver, a_write_over_a_larger_payload_doubles_until_the_old_one_fits) {
  set_mon(1, payload(9000));
  use_poor_driver();
  set_mon(1, payload(3000), 0);
  EXPECT_EQ(sizes(), (Sizes{"0", "3001", "6002", "12004"}));
  EXPECT_EQ(mon(1, 9000), payload(3000));
}

TEST_P(payload_on_a_poor_driver, the_same_payload_once_more_is_no_failure_though_nothing_is_written) {
  use_poor_driver();
  set_mon(1, payload(300));
  test_support::StatementLog recorder(db());
  set_mon(1, payload(300));
  EXPECT_EQ(std::ranges::count_if(recorder.statements, [](const auto& s) { return s.starts_with("UPDATE"); }), 0)
      << "a buffer is compared with what was read";
  EXPECT_EQ(mon(1, 300), payload(300));
  set_mon(1, payload(300).replace(0, 1, "x"));
  EXPECT_EQ(std::ranges::count_if(recorder.statements, [](const auto& s) { return s.starts_with("UPDATE"); }), 1);
}

TEST_P(payload_on_a_poor_driver, an_administrator_is_told_of_the_buffer_and_of_its_size) {
  set_mon(1, payload(3000));
  use_poor_driver();
  CLongBinary data;
  const auto refused = guarded([&] { return get_mon_data(&db(), 0, 1, data); });
  EXPECT_NE(refused.failure().advice.Find("--max-size"), -1) << refused.failure().advice;
  const auto cut = guarded([&] { return get_mon_data(&db(), 1, 1, data); });
  EXPECT_EQ(cut.failure().failure_class, FailureClass::value_too_long);
  EXPECT_NE(cut.failure().text.Find("has 3000 bytes and its buffer 2048"), -1) << cut.failure().text;
  EXPECT_NE(cut.failure().advice.Find("--max-size"), -1) << cut.failure().advice;
}

TEST_P(payload_on_a_poor_driver, an_empty_payload_with_maximum_size_0_gives_the_first_failure) {
  set_mon(1, "abc");
  use_poor_driver();
  const auto outcome = guarded([&] { set_mon(1, "", 0); });
  EXPECT_EQ(outcome.failure().native, 106);
  EXPECT_EQ(sizes(), Sizes{"0"});
}

class payload_failures : public payload_live {
 protected:
  // Another state than HY000, which at a prepare is a reason to try the text with its literals in place.
  static spcdb::Diagnostic staged() {
    auto diagnostic = test_support::FailKthCall::staged();
    diagnostic.sqlstate = "HY001";
    return diagnostic;
  }

  // Fails the k-th call of `work` for every k; `check` looks at the database after each failure.
  void sweep(const std::function<void(CDatabaseEx&)>& work, const std::function<void(const std::string&)>& check) {
    bool fired = true;
    for (std::size_t k = 1; fired; ++k) {
      SCOPED_TRACE(k);
      test_support::FailKthCall hook(k, staged());
      auto own = second_connection();
      own->connection()->session().gate().set_hook(&hook);
      const auto outcome = guarded([&] { work(*own); });
      fired = hook.fired();
      EXPECT_EQ(outcome.ok(), !fired) << hook.failed_function();
      if (!outcome.ok()) {
        test_support::expect_staged_failure(outcome.failure());
        check(hook.failed_function());
      }
      test_support::expect_nothing_held(*own);
      own->Close();
      // The hook came after the connection and its environment were made, and saw them go.
      EXPECT_EQ(test_support::calls_without_release(hook), kind() == ServerKind::sqlite ? 0 : -2)
          << hook.failed_function();
      ASSERT_LT(k, 500U);
    }
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, payload_failures, test_support::all_servers(), test_support::server_name);

TEST_P(payload_failures, a_write_that_fails_anywhere_leaves_the_old_payload_whole) {
  set_mon(1, "old");
  CLongBinary data;
  put(data, payload(200000));
  // The recordset by itself: the retry would mend it.
  sweep(
      [&](CDatabaseEx& own) {
        RSMOPB rs(&own, 0);
        set_rs_where_clause(rs, "[MONID] = 1");
        open_for_update(rs);
        rs.Edit();
        rs.set_blob_data(rs, data);
        rs.Update();
      },
      [&](const std::string& failed) {
        // Asked for its count the server has done the work.
        EXPECT_TRUE(mon(1) == (failed == "SQLRowCount" ? payload(200000) : "old")) << failed;
        set_mon(1, "old");
      });
  EXPECT_TRUE(mon(1) == payload(200000));
}

TEST_P(payload_failures, an_insertion_that_fails_anywhere_leaves_no_row) {
  CLongBinary data;
  put(data, payload(200000));
  sweep(
      [&](CDatabaseEx& own) {
        RSPOPB rs(&own, 0);
        set_rs_where_clause(rs, "[PROFID] = 1");
        open_for_update(rs);
        rs.AddNew();
        rs.profid = 1;
        rs.set_blob_data(rs, data);
        rs.Update();
      },
      [&](const std::string& failed) {
        EXPECT_TRUE(prof(1) == (failed == "SQLRowCount" ? payload(200000) : "")) << failed;
        execute("DELETE FROM CSPOPB");
      });
  EXPECT_TRUE(prof(1) == payload(200000));
}

TEST_P(payload_failures, a_read_that_fails_anywhere_leaves_what_the_caller_held) {
  set_mon(1, payload(200000));
  CLongBinary data;
  put(data, std::string(200000, 'h'));
  sweep([&](CDatabaseEx& own) { get_mon_data(&own, 0, 1, data); },
        [&](const std::string& failed) { EXPECT_TRUE(bytes_of(data) == std::string(200000, 'h')) << failed; });
  EXPECT_TRUE(bytes_of(data) == payload(200000));
}

TEST_P(payload_failures, one_failure_in_a_write_is_mended_by_the_second_phase) {
  CLongBinary data;
  put(data, payload(200000));
  bool fired = true;
  for (std::size_t k = 1; fired; ++k) {
    test_support::FailKthCall hook(k, staged());
    auto own = second_connection();
    own->connection()->session().gate().set_hook(&hook);
    const auto outcome = guarded([&] { set_mon_data(own.get(), 0, static_cast<int>(k), data); });
    EXPECT_TRUE(outcome.ok()) << k << " " << hook.failed_function() << ": " << outcome.failure().text;
    fired = hook.fired();
    own->connection()->session().gate().set_hook(nullptr);
    EXPECT_TRUE(mon(static_cast<int>(k)) == payload(200000)) << k << " " << hook.failed_function();
    ASSERT_LT(k, 500U);
  }
}

// How much more memory a child process holds at its peak than before `work`, in KiB.
long peak_growth_kib(const std::function<std::function<void()>()>& prepare) {
  int ends[2];
  if (pipe(ends) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    const auto work = prepare();
    std::ofstream("/proc/self/clear_refs") << "5";  // the peak begins anew
    const long before = test_support::process_kib("VmRSS:");
    work();
    const long growth = test_support::process_kib("VmHWM:") - before;
    const bool told = write(ends[1], &growth, sizeof growth) == static_cast<ssize_t>(sizeof growth);
    _exit(told ? 0 : 1);
  }
  close(ends[1]);
  long growth = -1;
  if (read(ends[0], &growth, sizeof growth) != static_cast<ssize_t>(sizeof growth)) growth = -1;
  close(ends[0]);
  int state = 0;
  waitpid(child, &state, 0);
  return growth;
}

// SQLite alone: the other servers' drivers keep a whole row in the client's memory, whoever asks for it in pieces.
class payload_memory : public test_support::DatabaseTest {
 protected:
  static constexpr std::size_t payload_bytes = 64UL * 1024 * 1024;
  static constexpr long payload_kib = payload_bytes / 1024;
  // SQLite's cache of pages, one piece, the index of the log.
#ifdef __SANITIZE_ADDRESS__
  static constexpr long small_constant_kib = 16L * 1024;  // its books of 64 MiB alone are 8
#else
  static constexpr long small_constant_kib = 6L * 1024;
#endif

  // A child's own connection.
  std::shared_ptr<CDatabaseEx> connect() {
    auto own = std::make_shared<CDatabaseEx>();
    own->OpenEx(database().connect_text().c_str());
    return own;
  }
  static void fill(CLongBinary& data) {
    data.m_hData = GlobalAlloc(GMEM_MOVEABLE, payload_bytes);
    data.m_dwDataLength = static_cast<DWORD>(payload_bytes);
    std::memset(GlobalLock(data.m_hData), 'p', payload_bytes);
    GlobalUnlock(data.m_hData);
  }
  std::string stored_bytes() { return value("SELECT LENGTH(OPTVAL) FROM CSMOPB"); }
};
INSTANTIATE_TEST_SUITE_P(Servers, payload_memory, testing::Values(ServerKind::sqlite), test_support::server_name);

TEST_P(payload_memory, a_recordset_writes_64_mib_with_its_holder_and_one_piece) {
  const long writing = peak_growth_kib([&]() -> std::function<void()> {
    auto own = connect();
    auto rs = std::make_shared<RSMOPB>(own.get(), 0);
    set_rs_where_clause(*rs, "[MONID] = 1");
    open_for_update(*rs);
    rs->AddNew();
    rs->monid = 1;
    CLongBinary data;
    fill(data);
    rs->set_blob_data(*rs, data);
    return [own, rs] { rs->Update(); };
  });
  EXPECT_GE(writing, 0);
  EXPECT_LE(writing, small_constant_kib) << "beside the holder";
  EXPECT_EQ(stored_bytes(), std::to_string(payload_bytes));
}

TEST_P(payload_memory, a_host_writes_and_reads_64_mib_that_stand_beside_its_own_holder_once_or_not_at_all) {
  const long writing = peak_growth_kib([&]() -> std::function<void()> {
    auto own = connect();
    auto data = std::make_shared<CLongBinary>();
    fill(*data);
    return [own, data] { set_mon_data(own.get(), 0, 1, *data); };
  });
  EXPECT_GE(writing, payload_kib) << "the recordset's holder";
  EXPECT_LE(writing, payload_kib + small_constant_kib);
  EXPECT_EQ(stored_bytes(), std::to_string(payload_bytes));
  const long reading = peak_growth_kib([&]() -> std::function<void()> {
    auto own = connect();
    auto data = std::make_shared<CLongBinary>();
    return [own, data] { get_mon_data(own.get(), 0, 1, *data); };
  });
  EXPECT_GE(reading, payload_kib) << "the host's holder";
  EXPECT_LE(reading, payload_kib + small_constant_kib);
}

}  // namespace
