// Plan
//   What is installed is shown everywhere; numbers that are not given stay English; nothing installed restores
//   Refusals: placeholders that take other values, unknown numbers, bytes that are no UTF-8; the table stays then
//   Placeholders: which translations fit, by order and by number; the own texts hold only what the check knows
//   Threads: readers under load see one table or the other; a text lives while its table is replaced
#include "spcbase/foundation/messages.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/message_table.h"
#include "spcbase/foundation/internal/placeholders.h"
#include "spcbase/foundation/internal/raise.h"
#include "tests/support/german_messages.h"

namespace {

using test_support::german_messages;
using test_support::InstalledMessages;

/// What the library says about a refused table, or "" for one that it takes.
std::string refusal(const std::map<UINT, CString>& texts) {
  try {
    const InstalledMessages installed(texts);
    return "";
  } catch (const std::invalid_argument& failure) {
    return failure.what();
  }
}

TEST(library_messages, are_the_whole_table_for_who_translates_it) {
  const auto table = all_messages();
  ASSERT_EQ(std::size(library_messages), table.size());
  for (std::size_t i = 0; i < table.size(); ++i) {
    EXPECT_EQ(library_messages[i].number, table[i].id);
    EXPECT_STREQ(library_messages[i].english, table[i].text);
  }
}

TEST(install_messages, a_text_for_every_number_is_taken) {
  std::map<UINT, CString> all;
  for (const auto& message : library_messages)
    all[message.number] = message.english;
  install_messages(all);
  for (const auto& message : library_messages)
    EXPECT_STREQ(load_message(message.number).GetString(), message.english);
  install_messages({});
}

TEST(install_messages, shows_the_installed_text_and_english_for_numbers_it_lacks) {
  const InstalledMessages installed({{1019, "Heute"}});
  EXPECT_EQ(load_message(1019), "Heute");
  EXPECT_EQ(load_message(1020), "This week");
  EXPECT_TRUE(load_message(53).IsEmpty());
}

TEST(install_messages, an_empty_table_brings_english_back) {
  install_messages({{1019, "Heute"}, {52, "Unbekannter Fehler"}});
  install_messages({});
  EXPECT_EQ(load_message(1019), "Today");
  EXPECT_EQ(load_message(52), "An unknown error occurred");
}

TEST(install_messages, a_second_table_takes_the_place_of_the_first_whole) {
  const InstalledMessages first({{1019, "Heute"}, {1020, "Diese Woche"}});
  const InstalledMessages second({{1019, "Aujourd'hui"}});
  EXPECT_EQ(load_message(1019), "Aujourd'hui");
  EXPECT_EQ(load_message(1020), "This week");
}

TEST(install_messages, copies_the_texts) {
  std::map<UINT, CString> texts{{1019, "Heute"}};
  const InstalledMessages installed(texts);
  texts[1019] = "changed";
  EXPECT_EQ(load_message(1019), "Heute");
}

TEST(install_messages, a_text_may_be_empty) {
  const InstalledMessages installed({{22, ""}});
  EXPECT_TRUE(load_message(22).IsEmpty());
}

TEST(install_messages, failures_speak_the_installed_language) {
  const InstalledMessages installed(
      {{1005, "Die Datensätze lassen sich nicht öffnen."}, {500, "Keine Fassungen."}, {52, "Unbekannter Fehler"}});
  EXPECT_EQ(rev::RevisionException(1, 2, 3, 0).what(), "Keine Fassungen.");
  try {
    throw_can_not_open_rs_exception();
  } catch (const DBException& failure) {
    EXPECT_EQ(failure.what(), "Die Datensätze lassen sich nicht öffnen.");
  }
}

TEST(install_messages, a_hosts_own_current_table_is_left_alone) {
  const HINSTANCE before = AfxGetResourceHandle();
  const InstalledMessages installed({{1019, "Heute"}});
  load_message(1019);
  EXPECT_EQ(AfxGetResourceHandle(), before);
}

TEST(install_messages, a_whole_german_table_fits) {
  const InstalledMessages installed(german_messages());
  for (const auto& [id, text] : german_messages())
    EXPECT_EQ(load_message(id), text) << "message " << id;
  CString sentence;
  sentence.Format(load_message(msg::on_day_of_months).GetString(), 15, "März");
  EXPECT_EQ(sentence, "am 15. von März");
}

TEST(install_messages, numbered_placeholders_change_the_order_of_values) {
  const InstalledMessages installed({{1034, "%2$s: %1$d"}});
  CString text;
  text.Format(load_message(1034).GetString(), 5, "days");
  EXPECT_EQ(text, "days: 5");
}

TEST(install_messages, refuses_placeholders_that_take_other_values_and_names_the_number) {
  EXPECT_EQ(refusal({{1034, "letzte %s %s"}}),
            "message 1034: the placeholders must be those of the English text, %d %s, but are %s %s");
  EXPECT_EQ(refusal({{13, "alle Tage"}}),
            "message 13: the placeholders must be those of the English text, %d, but are none");
  EXPECT_EQ(refusal({{1019, "Heute %s"}}),
            "message 1019: the placeholders must be those of the English text, none, but are %s");
}

TEST(install_messages, refuses_a_number_that_the_library_does_not_have) {
  EXPECT_EQ(refusal({{0, ""}}), "message 0: the library has no message of this number");
  EXPECT_EQ(refusal({{1041, "neu"}}), "message 1041: the library has no message of this number");
}

TEST(install_messages, refuses_bytes_that_are_no_utf8) {
  EXPECT_EQ(refusal({{25, "M\xE4rz"}}), "message 25: the text is not UTF-8");
}

TEST(install_messages, a_refused_table_leaves_the_installed_one) {
  const InstalledMessages installed({{1019, "Heute"}});
  EXPECT_THROW(install_messages({{1019, "Aujourd'hui"}, {1034, "%n"}}), std::invalid_argument);
  EXPECT_EQ(load_message(1019), "Heute");
}

struct PlaceholderCase {
  const char* english;
  const char* translation;
  bool fits;
};

constexpr PlaceholderCase placeholder_cases[] = {
    {"last %d %s", "letzte %d %s", true},
    {"last %d %s", "%d%s", true},
    {"last %d %s", "100 %% von %d %s", true},
    {"last %d %s", "%1$d %2$s", true},
    {"last %d %s", "%2$s %1$d", true},
    {"last %d %s", "%2$s %1$d %2$s", true},
    {"last %d %s", "%s %d", false},     // the other order
    {"last %d %s", "%d", false},        // one is missing
    {"last %d %s", "%d %s %s", false},  // too many
    {"last %d %s", "", false},
    {"last %d %s", "%1$d %s", false},    // by number and by order
    {"last %d %s", "%2$s", false},       // the first is not named
    {"last %d %s", "%1$s %2$s", false},  // a number as a text
    {"last %d %s", "%1$d %2$s %3$s", false},
    {"last %d %s", "%0$d %2$s", false},
    {"last %d %s", "%5d %s", false},  // a width is not known here
    {"last %d %s", "%*d %s", false},  // would take a value more
    {"last %d %s", "%ld %s", false},
    {"last %d %s", "%d %n", false},     // would write
    {"last %d %s", "%d %s 5%", false},  // ends in the middle
    {"last %d %s", "%d %s 5% mehr", false},
    {"last %d %s", "%", false},
    {"between %s and %s", "%2$s bis %1$s", true},
    {"between %s and %s", "%1$s bis %1$s", false},
    {"Today", "Heute", true},
    {"Today", "100 % von heute", true},  // no format: a percent sign is one
    {"Today", "100%", true},
    {"Today", "100%%", true},
    {"Today", "Heute %d", false},
    {"Today", "Heute %1$s", false},
};

TEST(placeholder_problem, finds_every_translation_that_takes_other_values) {
  for (const PlaceholderCase& row : placeholder_cases) {
    EXPECT_EQ(placeholder_problem(row.english, row.translation).empty(), row.fits)
        << row.english << " -> " << row.translation;
  }
}

/// What `CString::Format` must make of a text with a number 7 and a text "x", whose placeholders fit.
std::string filled(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    ++i;
    if (text[i] == '1' || text[i] == '2') i += 2;
    result += text[i] == 'd' ? "7" : text[i] == 's' ? "x" : "%";
  }
  return result;
}

// Every text of these beginnings and five of these characters, so that no accepted one makes the formatter read a value
// that is not there.
TEST(placeholder_problem, lets_only_texts_pass_that_the_formatter_fills_with_the_right_values) {
  constexpr std::string_view alphabet = "%ds12$*n";
  long accepted = 0;
  for (const char* const beginning : {"%", "%1$d%", "%2$s%"}) {
    for (std::uint32_t code = 0; code < 1U << 15; ++code) {
      std::string text = beginning;
      for (int i = 0; i < 5; ++i)
        text += alphabet[code >> (3 * i) & 7U];
      if (!placeholder_problem("last %d %s", text).empty()) continue;
      ++accepted;
      CString formatted;
      formatted.Format(text.c_str(), 7, "x");
      ASSERT_EQ(formatted.GetString(), filled(text)) << text;
    }
  }
  EXPECT_GT(accepted, 100);
}

TEST(placeholder_problem, knows_all_that_the_own_texts_use) {
  for (const Message& message : all_messages())
    EXPECT_EQ(placeholder_problem(message.text, message.text), "") << "message " << message.id;
}

TEST(current_messages, a_text_lives_as_long_as_its_table_is_held) {
  std::shared_ptr<const MessageSource> held;
  {
    const InstalledMessages installed({{1019, "Heute"}});
    held = current_messages();
  }
  EXPECT_STREQ(held->find(1019), "Heute");
  EXPECT_STREQ(current_messages()->find(1019), "Today");
}

TEST(current_messages, readers_under_load_see_one_whole_table_or_the_other) {
  constexpr int replacements = 50;
  std::atomic<bool> stop{false};
  std::atomic<long> wrong{0};
  std::array<std::atomic<long>, 4> reads{};
  std::vector<std::thread> readers;
  for (auto& count : reads) {
    readers.emplace_back([&stop, &wrong, &count] {
      while (!stop) {
        const auto messages = current_messages();
        const bool german = std::string(messages->find(1019)) == "Heute";
        if (std::string(messages->find(1020)) != (german ? "Diese Woche" : "This week")) ++wrong;
        const CString text = load_message(1024);
        if (text != "Letzte Woche" && text != "Last week") ++wrong;
        ++count;
      }
    });
  }
  const std::map<UINT, CString> german_table = german_messages();
  for (int i = 0; i < replacements; ++i) {
    const InstalledMessages installed(german_table);
    std::this_thread::yield();
  }
  for (auto& count : reads)
    while (count == 0)
      std::this_thread::yield();
  stop = true;
  for (std::thread& reader : readers)
    reader.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(load_message(1024), "Last week");
}

}  // namespace
