// Plan
// - the current source belongs to the thread; a new thread has none
// - LoadStringA: whole text, cut without splitting a character, unknown number, no source, no room
#include "spcbase/platform/system/message_source.h"

#include <gtest/gtest.h>

#include <thread>

#include "spcbase/platform/system/system_error.h"

namespace {

class Greetings : public MessageSource {
 public:
  const char* find(UINT id) const noexcept override { return id == 7 ? "gr\u00FC\u00DFe" : nullptr; }
};

/// Takes the current source back at the end.
struct SourceGuard {
  HINSTANCE before = AfxGetResourceHandle();
  ~SourceGuard() { AfxSetResourceHandle(before); }
};

TEST(AfxResourceHandle, belongs_to_the_calling_thread) {
  const SourceGuard guard;
  const Greetings greetings;
  AfxSetResourceHandle(greetings.handle());
  EXPECT_EQ(AfxGetResourceHandle(), greetings.handle());
  HINSTANCE elsewhere = greetings.handle();
  std::thread([&] { elsewhere = AfxGetResourceHandle(); }).join();
  EXPECT_EQ(elsewhere, nullptr);
}

TEST(FindMessage, gives_the_text_or_null) {
  const Greetings greetings;
  EXPECT_STREQ(find_message(greetings.handle(), 7), "gr\u00FC\u00DFe");
  EXPECT_EQ(find_message(greetings.handle(), 8), nullptr);
  EXPECT_EQ(find_message(nullptr, 7), nullptr);
}

TEST(LoadStringA, copies_the_text_and_gives_its_length) {
  const Greetings greetings;
  char buffer[16];
  EXPECT_EQ(LoadStringA(greetings.handle(), 7, buffer, sizeof buffer), 7);
  EXPECT_STREQ(buffer, "gr\u00FC\u00DFe");
}

TEST(LoadStringA, a_cut_never_splits_a_character) {
  const Greetings greetings;
  char buffer[16];
  EXPECT_EQ(LoadStringA(greetings.handle(), 7, buffer, 4), 2);
  EXPECT_STREQ(buffer, "gr");
  EXPECT_EQ(LoadStringA(greetings.handle(), 7, buffer, 5), 4);
  EXPECT_STREQ(buffer, "gr\u00FC");
}

TEST(LoadStringA, an_unknown_number_gives_0_and_an_empty_text) {
  const Greetings greetings;
  char buffer[4] = "abc";
  EXPECT_EQ(LoadStringA(greetings.handle(), 8, buffer, sizeof buffer), 0);
  EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(LoadStringA(nullptr, 7, buffer, sizeof buffer), 0);
}

TEST(LoadStringA, without_room_gives_0) {
  const Greetings greetings;
  EXPECT_EQ(LoadStringA(greetings.handle(), 7, nullptr, 10), 0);
  char untouched = 'x';
  EXPECT_EQ(LoadStringA(greetings.handle(), 7, &untouched, 0), 0);
  EXPECT_EQ(untouched, 'x');
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

}  // namespace
