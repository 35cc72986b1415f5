// Values on their way to a server and back, on every session.
//
// Plan
//   doubles   200,000 random ones to the last bit, denormals and extremes; -0.0; not a number; infinity
//   moments   to the millisecond over the whole calendar; finer digits cut; no moment refused; every text form read
//   texts     every width in one to four bytes a character; backslashes, quotes, controls; empty apart from null; too
//   wide integers  the ends of 64 bits; what is no whole number; what is too large nulls     of every kind, and the
//   targets left alone
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "tests/platform/database/session_under_test.h"

namespace database_test {
namespace {

using spcdb::ColumnBinding;
using spcdb::Reading;

class SessionValues : public SessionTest {
 protected:
  /// Inserts many values, a hundred to a statement.
  void insert_all(const std::vector<P>& values) {
    constexpr std::size_t per_statement = 100;
    ASSERT_EQ(values.size() % per_statement, 0U);
    std::string sql = "INSERT INTO V (ID, X) VALUES (?,?)";
    for (std::size_t i = 1; i < per_statement; ++i)
      sql += ",(?,?)";
    const auto statement = session->prepare(sql, Reading::all);
    std::vector<P> row(2 * per_statement);
    session->begin();
    for (std::size_t i = 0; i < values.size(); ++i) {
      row[2 * (i % per_statement)] = P::of_integer(static_cast<std::int64_t>(i));
      row[2 * (i % per_statement) + 1] = values[i];
      if ((i + 1) % per_statement == 0) statement->execute(row);
    }
    session->commit();
  }

  /// Writes one text and reads it back.
  std::string round_trip(std::string_view text, int width) {
    session->run("DELETE FROM V");
    const auto statement = session->prepare("INSERT INTO V (ID, X) VALUES (1,?)", Reading::all);
    const P value = P::of_text(text);
    statement->execute({&value, 1});
    const auto rows = query("SELECT X FROM V", Kind::text, width);
    std::string_view read = "nothing";
    EXPECT_TRUE(rows->fetch() && rows->text(0, read));
    return std::string(read);
  }

  void create_values(const std::string& type) {
    session->run("CREATE TABLE V (ID INTEGER NOT NULL PRIMARY KEY, X " + type + ")");
  }
};

INSTANTIATE_TEST_SUITE_P(, SessionValues, all_servers, server_name);

std::vector<double> many_doubles() {
  using Limits = std::numeric_limits<double>;
  std::vector<double> doubles{0.0,
                              1.0 / 3,
                              0.1 + 0.2,
                              Limits::max(),
                              Limits::lowest(),
                              Limits::min(),
                              Limits::denorm_min(),
                              -Limits::denorm_min(),
                              std::nextafter(Limits::min(), 0.0),
                              Limits::epsilon(),
                              9007199254740993.0,
                              123456789.123456789,
                              1e22,
                              1e23};
  std::mt19937_64 random(20240203);
  while (doubles.size() < 150000) {
    const auto value = std::bit_cast<double>(random());
    if (std::isfinite(value)) doubles.push_back(value);
  }
  std::uniform_real_distribution<double> measurements(-1000, 1000);
  while (doubles.size() < 190000)
    doubles.push_back(measurements(random));
  while (doubles.size() < 200000)  // denormals: no exponent, any digits
    doubles.push_back(std::bit_cast<double>(random() & 0x800FFFFFFFFFFFFFULL));
  for (auto& value : doubles)
    if (value == 0) value = 0;  // the negative zero has a test of its own
  return doubles;
}

TEST_P(SessionValues, two_hundred_thousand_doubles_come_back_to_the_last_bit) {
  create_values("DOUBLE");
  const auto doubles = many_doubles();
  ASSERT_EQ(doubles.size(), 200000U);
  std::vector<P> values(doubles.size());
  std::transform(doubles.begin(), doubles.end(), values.begin(), [](double value) { return P::of_real(value); });
  insert_all(values);
  const auto rows = session->prepare("SELECT " + double_column("X") + " FROM V ORDER BY ID", Reading::forward);
  const ColumnBinding real{Kind::real, 0};
  rows->bind_columns({&real, 1});
  rows->execute({});
  std::size_t row = 0;
  std::size_t wrong = 0;
  for (double value = 0; rows->fetch(); ++row) {
    ASSERT_TRUE(rows->real(0, value));
    ASSERT_LT(row, doubles.size());
    if (std::bit_cast<std::uint64_t>(value) != std::bit_cast<std::uint64_t>(doubles[row])) ++wrong;
  }
  EXPECT_EQ(row, doubles.size());
  EXPECT_EQ(wrong, 0U);
}

TEST_P(SessionValues, a_bound_double_finds_its_row) {
  create_values("DOUBLE");
  const double third = 1.0 / 3;
  const auto insert = session->prepare("INSERT INTO V VALUES (1,?)", Reading::all);
  const P value = P::of_real(third);
  insert->execute({&value, 1});
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM V WHERE X=?", {value}), 1);
}

TEST_P(SessionValues, a_negative_zero_comes_back_as_zero_since_no_server_keeps_its_sign) {
  create_values("DOUBLE");
  const auto insert = session->prepare("INSERT INTO V VALUES (1,?)", Reading::all);
  const P value = P::of_real(-0.0);
  insert->execute({&value, 1});
  const auto rows = query("SELECT " + double_column("X") + " FROM V", Kind::real);
  double read = 1;
  ASSERT_TRUE(rows->fetch() && rows->real(0, read));
  EXPECT_EQ(read, 0.0);
  EXPECT_FALSE(std::signbit(read));
}

TEST_P(SessionValues, what_is_no_number_is_refused_and_nothing_is_stored) {
  create_values("DOUBLE");
  const auto insert = session->prepare("INSERT INTO V VALUES (1,?)", Reading::all);
  const P value = P::of_real(std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(has_state(caught([&] { insert->execute({&value, 1}); }), "22003"));
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM V"), 0);
}

TEST_P(SessionValues, infinity_is_kept_or_refused_but_never_changed) {
  create_values("DOUBLE");
  const auto insert = session->prepare("INSERT INTO V VALUES (1,?)", Reading::all);
  const P value = P::of_real(-std::numeric_limits<double>::infinity());
  if (!facts().takes_infinity) {
    EXPECT_TRUE(has_state(caught([&] { insert->execute({&value, 1}); }), "22003"));
    return;
  }
  insert->execute({&value, 1});
  const auto rows = query("SELECT " + double_column("X") + " FROM V", Kind::real);
  double read = 1;
  ASSERT_TRUE(rows->fetch() && rows->real(0, read));
  EXPECT_EQ(read, -std::numeric_limits<double>::infinity());
}

TEST_P(SessionValues, moments_come_back_to_the_millisecond_over_the_whole_calendar) {
  create_values(on_mariadb() ? "DATETIME(3)" : "TIMESTAMP");
  std::vector<TIMESTAMP_STRUCT> moments{{1899, 12, 30, 0, 0, 0, 0},
                                        {9999, 12, 31, 23, 59, 59, 999000000},
                                        {2024, 2, 29, 12, 0, 0, 1000000},
                                        {2000, 1, 1, 0, 0, 0, 999000000}};
  std::mt19937 random(5);
  while (moments.size() < 1000)
    moments.push_back({static_cast<short>(1000 + random() % 9000), static_cast<unsigned short>(1 + random() % 12),
                       static_cast<unsigned short>(1 + random() % 28), static_cast<unsigned short>(random() % 24),
                       static_cast<unsigned short>(random() % 60), static_cast<unsigned short>(random() % 60),
                       static_cast<unsigned>(random() % 1000 * 1000000)});
  std::vector<P> values;
  for (const auto& moment : moments)
    values.push_back(P::of_moment(moment));
  insert_all(values);
  const auto rows = query("SELECT X FROM V ORDER BY ID", Kind::moment);
  for (const auto& wanted : moments) {
    TIMESTAMP_STRUCT read{};
    ASSERT_TRUE(rows->fetch() && rows->moment(0, read));
    ASSERT_EQ(std::memcmp(&read, &wanted, sizeof read), 0) << wanted.year << "-" << wanted.month << "-" << wanted.day;
  }
}

TEST_P(SessionValues, digits_behind_the_millisecond_are_cut_not_rounded) {
  create_values(on_mariadb() ? "DATETIME(3)" : "TIMESTAMP");
  const auto insert = session->prepare("INSERT INTO V VALUES (1,?)", Reading::all);
  const P value = P::of_moment({2024, 2, 3, 4, 5, 6, 123999999});
  insert->execute({&value, 1});
  const auto rows = query("SELECT X FROM V", Kind::moment);
  TIMESTAMP_STRUCT read{};
  ASSERT_TRUE(rows->fetch() && rows->moment(0, read));
  EXPECT_EQ(read.fraction, 123000000U);
}

TEST_P(SessionValues, a_value_that_is_no_moment_is_refused_and_nothing_is_stored) {
  create_values(on_mariadb() ? "DATETIME(3)" : "TIMESTAMP");
  const auto insert = session->prepare("INSERT INTO V VALUES (1,?)", Reading::all);
  for (const TIMESTAMP_STRUCT& bad :
       {TIMESTAMP_STRUCT{}, TIMESTAMP_STRUCT{2023, 2, 29, 0, 0, 0, 0}, TIMESTAMP_STRUCT{2023, 13, 1, 0, 0, 0, 0},
        TIMESTAMP_STRUCT{2023, 1, 1, 24, 0, 0, 0}, TIMESTAMP_STRUCT{10000, 1, 1, 0, 0, 0, 0}}) {
    const P value = P::of_moment(bad);
    EXPECT_TRUE(has_state(caught([&] { insert->execute({&value, 1}); }), "22007")) << bad.year << "-" << bad.month;
  }
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM V"), 0);
}

TEST_P(SessionValues, a_moment_is_read_from_every_text_form_and_no_other) {
  create_values("VARCHAR(40)");
  const std::pair<const char*, TIMESTAMP_STRUCT> good[] = {
      {"2024-02-03", {2024, 2, 3, 0, 0, 0, 0}},
      {"2024-02-03 04:05", {2024, 2, 3, 4, 5, 0, 0}},
      {"2024-02-03 04:05:06", {2024, 2, 3, 4, 5, 6, 0}},
      {"2024-02-03T04:05:06", {2024, 2, 3, 4, 5, 6, 0}},
      {"2024-02-03T04:05:06.5", {2024, 2, 3, 4, 5, 6, 500000000}},
      {"2024-02-03 04:05:06.123456789", {2024, 2, 3, 4, 5, 6, 123456789}},
  };
  const auto find = session->prepare("SELECT X FROM V WHERE ID=1", Reading::all);
  const ColumnBinding moment{Kind::moment, 0};
  find->bind_columns({&moment, 1});
  const auto store = [&](const std::string& text) { round_trip(text, 40); };
  TIMESTAMP_STRUCT read{};
  for (const auto& [text, wanted] : good) {
    store(text);
    find->execute({});
    ASSERT_TRUE(find->fetch() && find->moment(0, read)) << text;
    EXPECT_EQ(std::memcmp(&read, &wanted, sizeof read), 0) << text;
  }
  for (const char* text : {"", "soon", "2024-2-3", "2024-02-30", "2024-02-03 4:05", "2024-02-03 04:05:06.", "20240203",
                           "2024-02-03 04:05:06 ", "0000-00-00 00:00:00"}) {
    store(text);
    find->execute({});
    ASSERT_TRUE(find->fetch());
    EXPECT_TRUE(has_state(caught([&] { find->moment(0, read); }), "22007")) << text;
  }
}

TEST_P(SessionValues, timestamp_escapes_are_understood_and_equal_what_was_bound) {
  create_values(on_mariadb() ? "DATETIME(3)" : "TIMESTAMP");
  const auto insert = session->prepare("INSERT INTO V VALUES (1,?)", Reading::all);
  const P value = P::of_moment({2024, 2, 3, 4, 5, 6, 0});
  insert->execute({&value, 1});
  EXPECT_EQ(session->run("UPDATE V SET X={ts '2024-02-03 04:05:07'} WHERE ID=1"), 1);
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM V WHERE X>{ts '2024-02-03 04:05:06'}"), 1);
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM V WHERE X>={d '2024-02-03'}"), 1);
}

TEST_P(SessionValues, texts_of_every_width_come_back_in_one_to_four_bytes_a_character) {
  create_values(on_mariadb() ? "VARCHAR(4000) COLLATE utf8mb4_nopad_bin" : "VARCHAR(4000)");
  for (const std::string_view character : {"a", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
    std::string text;
    std::size_t length = 0;
    for (const auto width :
         std::initializer_list<std::size_t>{0, 1, 2, 63, 64, 65, 254, 255, 256, 513, 1023, 3999, 4000}) {
      for (; length < width; ++length)
        text += character;
      ASSERT_EQ(round_trip(text, static_cast<int>(std::max<std::size_t>(width, 1))), text) << width;
    }
  }
}

TEST_P(SessionValues, backslashes_quotes_and_controls_pass_unchanged) {
  create_values(on_mariadb() ? "VARCHAR(255) COLLATE utf8mb4_nopad_bin" : "VARCHAR(255)");
  for (const std::string_view text : {"a\\b", "\\", "\\'", "it's", "''", "\"", "`", "[x]", "?", "%s", "a\r\nb\t",
                                      "{ts 'x'}", "-- x", "/* x */", "; DROP TABLE V", " lead and trail  "})
    EXPECT_EQ(round_trip(text, 255), text);
  const std::string_view with_zero("a\0b", 3);
  EXPECT_EQ(round_trip(with_zero, 255), facts().reads_past_zero ? with_zero : "a");
}

TEST_P(SessionValues, a_parameter_s_text_may_shrink_and_grow_between_executions) {
  create_values("VARCHAR(4000)");
  for (const auto length : std::initializer_list<std::size_t>{10, 3000, 0, 257, 1, 4000, 2})
    EXPECT_EQ(round_trip(std::string(length, 'x'), 4000).size(), length);
}

TEST_P(SessionValues, an_empty_text_is_not_null_and_null_is_no_text) {
  create_values("VARCHAR(20)");
  const auto insert = session->prepare("INSERT INTO V VALUES (?,?)", Reading::all);
  const P empty[] = {P::of_integer(1), P::of_text("")};
  const P null[] = {P::of_integer(2), P::null_of(Kind::text)};
  insert->execute(empty);
  insert->execute(null);
  const auto rows = query("SELECT X FROM V ORDER BY ID", Kind::text, 20);
  std::string_view text = "untouched";
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(rows->text(0, text));
  EXPECT_EQ(text, "");
  text = "untouched";
  ASSERT_TRUE(rows->fetch());
  EXPECT_FALSE(rows->text(0, text));
  EXPECT_EQ(text, "untouched");
}

TEST_P(SessionValues, a_text_wider_than_is_read_fails_by_characters_and_names_the_column) {
  create_values("VARCHAR(40)");
  session->run("INSERT INTO V VALUES (1,'\xC3\xA4\xC3\xB6\xC3\xBC')");
  const auto exact = query("SELECT X FROM V", Kind::text, 3);
  std::string_view text;
  ASSERT_TRUE(exact->fetch());
  EXPECT_TRUE(exact->text(0, text));
  const auto narrow = query("SELECT X FROM V", Kind::text, 2);
  ASSERT_TRUE(narrow->fetch());
  const auto failure = caught([&] { narrow->text(0, text); });
  EXPECT_EQ(failure.code, AFX_SQL_ERROR_DATA_TRUNCATED);
  EXPECT_NE(failure.text.find("column X"), std::string::npos) << failure.text;
}

TEST_P(SessionValues, a_text_wider_than_its_column_is_refused_where_the_server_keeps_widths) {
  create_values("VARCHAR(3)");
  EXPECT_EQ(round_trip("\xC3\xA4\xC3\xB6\xC3\xBC", 3), "\xC3\xA4\xC3\xB6\xC3\xBC") << "characters, not bytes";
  if (facts().limits_widths)
    EXPECT_TRUE(has_state(caught([&] { session->run("INSERT INTO V VALUES (2,'abcd')"); }), "22001"));
  else
    EXPECT_EQ(session->run("INSERT INTO V VALUES (2,'abcd')"), 1);
}

TEST_P(SessionValues, the_ends_of_64_bits_come_back) {
  create_values("BIGINT");
  using Limits = std::numeric_limits<std::int64_t>;
  const auto insert = session->prepare("INSERT INTO V VALUES (?,?)", Reading::all);
  std::int64_t id = 0;
  for (const std::int64_t value :
       {Limits::min(), std::int64_t{-1}, std::int64_t{0}, std::int64_t{3000000000}, Limits::max()}) {
    const P values[] = {P::of_integer(++id), P::of_integer(value)};
    insert->execute(values);
    EXPECT_EQ(integer_of("SELECT X FROM V WHERE ID=?", {P::of_integer(id)}), value);
  }
}

TEST_P(SessionValues, what_is_no_whole_number_or_too_large_for_one_fails) {
  create_values("VARCHAR(40)");
  std::int64_t value = 0;
  const auto read = [&](const std::string& text) {
    round_trip(text, 40);
    const auto rows = query("SELECT X FROM V", Kind::integer);
    EXPECT_TRUE(rows->fetch());
    rows->integer(0, value);
  };
  for (const char* text : {"abc", "", "1.5", "1 ", "0x10", "NaN"})
    EXPECT_TRUE(has_state(caught([&] { read(text); }), "22018")) << text;
  for (const char* text : {"9223372036854775808", "1e30", "-9223372036854775809"})
    EXPECT_TRUE(has_state(caught([&] { read(text); }), "22003")) << text;
  read("-12");
  EXPECT_EQ(value, -12);
  read("1200.0");
  EXPECT_EQ(value, 1200);
}

TEST_P(SessionValues, a_double_column_read_as_a_whole_number_wants_one) {
  create_values("DOUBLE");
  std::int64_t value = 0;
  session->run("INSERT INTO V VALUES (1,3)");
  session->run("INSERT INTO V VALUES (2,3.5)");
  const auto rows = query("SELECT X FROM V ORDER BY ID", Kind::integer);
  ASSERT_TRUE(rows->fetch() && rows->integer(0, value));
  EXPECT_EQ(value, 3);
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(has_state(caught([&] { rows->integer(0, value); }), "22018"));
}

TEST_P(SessionValues, text_that_is_no_number_fails_as_a_double) {
  create_values("VARCHAR(40)");
  round_trip("1,5", 40);
  const auto rows = query("SELECT X FROM V", Kind::real);
  double value = 0;
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(has_state(caught([&] { rows->real(0, value); }), "22018"));
}

TEST_P(SessionValues, numbers_and_moments_are_read_as_texts_with_all_their_digits) {
  create_table();
  const double third = 1.0 / 3;
  insert(7, P::of_text("x"), P::of_real(third), P::of_moment({2024, 2, 3, 4, 5, 6, 7000000}),
         P::null_of(Kind::integer));
  EXPECT_EQ(text_of("SELECT ID FROM T"), "7");
  EXPECT_EQ(std::stod(text_of("SELECT " + double_column("D") + " FROM T")), third);
  EXPECT_EQ(text_of("SELECT M FROM T"), "2024-02-03 04:05:06.007");
}

TEST_P(SessionValues, nulls_of_every_kind_come_back_and_leave_the_targets_alone) {
  create_table();
  insert(1, P::null_of(Kind::text), P::null_of(Kind::real), P::null_of(Kind::moment), P::null_of(Kind::integer));
  const auto rows = session->prepare("SELECT N, " + double_column("D") + ", M, I FROM T", Reading::all);
  const ColumnBinding bindings[] = {{Kind::text, 20}, {Kind::real, 0}, {Kind::moment, 0}, {Kind::integer, 0}};
  rows->bind_columns(bindings);
  rows->execute({});
  ASSERT_TRUE(rows->fetch());
  std::string_view text = "untouched";
  double real = 5;
  TIMESTAMP_STRUCT moment{2024, 1, 1, 0, 0, 0, 0};
  std::int64_t integer = 5;
  EXPECT_FALSE(rows->text(0, text));
  EXPECT_FALSE(rows->real(1, real));
  EXPECT_FALSE(rows->moment(2, moment));
  EXPECT_FALSE(rows->integer(3, integer));
  EXPECT_EQ(text, "untouched");
  EXPECT_EQ(real, 5);
  EXPECT_EQ(moment.year, 2024);
  EXPECT_EQ(integer, 5);
}

TEST_P(SessionValues, the_greatest_of_no_rows_is_null) {
  create_table();
  const auto rows = query("SELECT MAX(ID) FROM T", Kind::integer);
  std::int64_t value = 5;
  ASSERT_TRUE(rows->fetch());
  EXPECT_FALSE(rows->integer(0, value));
  EXPECT_FALSE(rows->fetch());
}

TEST_P(SessionValues, the_greatest_moment_is_read_as_a_moment) {
  create_table();
  insert(1, P::of_text("x"), P::null_of(Kind::real), P::of_moment({2024, 2, 3, 4, 5, 6, 7000000}),
         P::null_of(Kind::integer));
  const auto rows = query("SELECT MAX(M) FROM T", Kind::moment);
  TIMESTAMP_STRUCT moment{};
  ASSERT_TRUE(rows->fetch() && rows->moment(0, moment));
  EXPECT_EQ(moment.fraction, 7000000U);
}

}  // namespace
}  // namespace database_test
