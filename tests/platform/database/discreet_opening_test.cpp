// Plan
//   failing to open   a wrong password, host, driver, file, malformed texts, in each spelling: no password in what is
//                     told, and the reason still there
//   echo              a driver that repeats what happens to be the password, in its text and in its origin
//   messages          what is replaced and what is left
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "spcbase/platform/database/connect_text.h"
#include "spcbase/platform/database/odbc_session.h"
#include "tests/platform/database/database_under_test.h"

namespace {

using database_test::Caught;
using database_test::caught;
using spcdb::mask_passwords_in_message;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* secret = "Xq7-secret";

Caught failure_of(const std::string& connect_text) {
  CDatabase database;
  database_test::Record onlooker;
  database.set_observer(&onlooker);
  const auto failure = caught([&] { database.OpenEx(connect_text.c_str()); });
  EXPECT_TRUE(onlooker.lines.empty()) << "a connection that was never there has no statements";
  EXPECT_FALSE(database.IsOpen());
  EXPECT_EQ(database.GetConnect(), "");
  return failure;
}

void expect_discreet(const Caught& failure) {
  for (const auto& text : {failure.text, failure.state, failure.statement})
    EXPECT_THAT(text, Not(HasSubstr("secret")));
  EXPECT_NE(failure.text, "");
}

/// A password in the spellings that a person may use.
std::vector<std::string> password_pairs() {
  const std::string password = secret;
  return {"PWD=" + password,
          "PWD={" + password + "}",
          "Password=\"" + password + "\"",
          "password = " + password,
          "PWD={" + password,
          "PWD=\"" + password,
          "Password='" + password,
          "Extended Properties=\"PWD=" + password + "\"",
          "PWD={a}" + password};
}

TEST(FailingToOpen, a_driver_that_is_not_there_tells_no_password) {
  for (const auto& pair : password_pairs()) {
    const auto failure = failure_of("Driver={No such driver};SERVER=h;" + pair);
    expect_discreet(failure);
    EXPECT_THAT(failure.text, HasSubstr("No such driver"));
  }
}

TEST(FailingToOpen, a_data_source_that_is_not_there_tells_no_password) {
  for (const auto& pair : password_pairs())
    expect_discreet(failure_of("ODBC;DSN=no such source;" + pair));
}

TEST(FailingToOpen, a_host_that_is_not_there_tells_no_password) {
  for (const auto& pair : password_pairs())
    expect_discreet(failure_of("Driver={MariaDB Unicode};SERVER=127.0.0.1;PORT=9;UID=u;" + pair));
}

/// The way to the server with other credentials than the right ones.
std::string with_credentials(const std::string& credentials) {
  const auto own = test_support::PrivateMariaDb::shared().create_database();
  std::string text;
  for (const auto& item : spcdb::parse_connect_text(own.odbc_connect_text()))
    if (item.key != "PWD" && item.key != "UID" && item.key != "DB") text += item.key + "={" + item.value + "};";
  return text + credentials;
}

TEST(FailingToOpen, a_wrong_password_is_not_told) {
  for (const auto& pair : password_pairs()) {
    const auto failure = failure_of(with_credentials("UID=spc;" + pair));
    expect_discreet(failure);
    EXPECT_THAT(failure.text, AnyOf(HasSubstr("Access denied for user"), HasSubstr("Error while parsing DSN")));
  }
}

TEST(FailingToOpen, a_password_that_the_driver_repeats_is_hidden) {
  const auto failure = failure_of(with_credentials(std::string("UID=") + secret + ";PWD=" + secret));
  expect_discreet(failure);
  EXPECT_THAT(failure.text, HasSubstr("Access denied for user '***'@"));
}

TEST(FailingToOpen, state_and_number_stay_readable_whatever_the_password_is) {
  EXPECT_THAT(failure_of(with_credentials("UID=u;PWD=1045")).state, HasSubstr("State:28000,Native:1045,Origin:[ma-"));
  EXPECT_THAT(failure_of(with_credentials("UID=u;PWD=Native")).state, HasSubstr("State:28000,Native:1045,Origin:[ma-"));
  EXPECT_THAT(failure_of(with_credentials("UID=u;PWD=[ma-")).state, HasSubstr("State:28000,Native:1045,Origin:***"));
}

TEST(FailingToOpen, a_text_without_driver_or_source_is_not_repeated) {
  for (const auto& pair : password_pairs())
    expect_discreet(failure_of(pair));
  expect_discreet(failure_of(std::string("Driver={never closed;PWD=") + secret));
  expect_discreet(failure_of(std::string("ODBC;") + secret));
}

TEST(FailingToOpen, the_embedded_database_repeats_no_password_in_its_refusals) {
  for (const auto& pair : password_pairs()) {
    expect_discreet(failure_of("sqlite::memory:;" + pair));
    expect_discreet(failure_of("sqlite:/nowhere/at/all.db;" + pair));
    expect_discreet(failure_of("sqlite::memory:;Timeout={5;" + pair));
    expect_discreet(failure_of("sqlite:{/nowhere/at/all.db;" + pair + "}"));
    expect_discreet(failure_of("sqlite:{never closed;" + pair));
  }
}

TEST(FailingToOpen, an_attempt_while_connected_tells_no_password) {
  CDatabase database;
  database.OpenEx("sqlite::memory:");
  expect_discreet(caught([&] { database.OpenEx((std::string("DSN=x;PWD=") + secret).c_str()); }));
}

TEST(MaskPasswordsInMessage, replaces_what_a_driver_repeats) {
  EXPECT_EQ(mask_passwords_in_message("cannot log in with \"PWD=Xq7\", Xq7 is wrong", "DSN=x;PWD=Xq7"),
            "cannot log in with \"PWD=***\", *** is wrong");
  EXPECT_EQ(mask_passwords_in_message("given: {a;b}}c}, read: a;b}c", "PWD={a;b}}c}"), "given: ***, read: ***");
  EXPECT_EQ(mask_passwords_in_message("read: se, then cret", "PWD=se;cret;UID=u"), "read: ***, then ***");
  EXPECT_EQ(mask_passwords_in_message("read: {secret, and more", "PWD={secret;DB=more"), "read: {***, and more");
  EXPECT_EQ(mask_passwords_in_message("long abcdef, short abc", "PWD=abc;NEWPWD=abcdef"), "long ***, short ***");
}

TEST(MaskPasswordsInMessage, leaves_words_in_which_a_short_password_happens_to_stand) {
  EXPECT_EQ(mask_passwords_in_message("Access denied for a user: a, 'a'", "PWD=a"),
            "Access denied for *** user: ***, '***'");
  EXPECT_EQ(mask_passwords_in_message("nothing to hide", "PWD=;UID=to"), "nothing to hide");
  EXPECT_EQ(mask_passwords_in_message("***", "PWD=***"), "***");
}

}  // namespace
