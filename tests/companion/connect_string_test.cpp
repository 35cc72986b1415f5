// Plan
//   spellings   ODBC, OLE DB, ADO.NET, texts in texts, files: what is shown of each
//   keys        which are a password's and which are not
//   uneven      quotes and braces that do not come out even: nothing of the password is left
//   result      what it tells, the empty password, the second call
//   property    any password, written by the rules of each spelling, leaves nothing behind and its neighbours alone
#include "spcbase/companion/connect_string.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::string shown(std::string_view text) {
  ConnectStringUtil util{CString(text)};
  util.HidePassword();
  return std::string(util.text.view());
}

struct Line {
  const char* given;
  const char* wanted;
};

void expect_each(const std::vector<Line>& lines) {
  for (const auto& [given, wanted] : lines) {
    EXPECT_EQ(shown(given), wanted) << given;
    EXPECT_EQ(shown(wanted), wanted) << "the second time: " << given;
  }
}

TEST(HidePassword, hides_the_values_of_odbc_in_braces_or_not) {
  expect_each({
      {"DSN=plant;UID=anna;PWD=secret", "DSN=plant;UID=anna;PWD=***"},
      {"DSN=plant;pwd = secret ;UID=anna;", "DSN=plant;pwd = *** ;UID=anna;"},
      {"PWD={a;b}};c};UID=anna", "PWD=***;UID=anna"},
      {"PWD={};UID=anna", "PWD=***;UID=anna"},
      {"PWD={a}}};UID=anna", "PWD=***;UID=anna"},
      {"PWD=  ;UID=anna", "PWD=***  ;UID=anna"},
      {"PWD= {a;b} ;UID=anna", "PWD= *** ;UID=anna"},
      {"PWD==a=b;UID=anna", "PWD=***;UID=anna"},
      {"PWD=a{b;UID=anna", "PWD=***;UID=anna"},
      {"ODBC;Driver={MariaDB Unicode};SERVER=h;UID=u;PWD=p;DB=d",
       "ODBC;Driver={MariaDB Unicode};SERVER=h;UID=u;PWD=***;DB=d"},
      {"Driver={x PWD=y};PWD=z", "Driver={x PWD=y};PWD=***"},
      {"FILEDSN=c:\\plant.dsn;PWD=secret", "FILEDSN=c:\\plant.dsn;PWD=***"},
      {"DSN=x;UID=u;PWD=a;PWD=b", "DSN=x;UID=u;PWD=***;PWD=***"},
  });
}

TEST(HidePassword, hides_the_values_of_ole_db_and_ado_net_in_either_quotes) {
  expect_each({
      {"Password=\"a;b\";User ID=u", "Password=***;User ID=u"},
      {"Password='a;PWD=b';User ID=u", "Password=***;User ID=u"},
      {"Password=\"a\"\"b;c\" ;User ID=u", "Password=*** ;User ID=u"},
      {"Password='a''b;c';User ID=u", "Password=***;User ID=u"},
      {"Password='a\"b';User ID=u", "Password=***;User ID=u"},
      {" Password = \"a\" ; User ID = u ", " Password = *** ; User ID = u "},
      {"Password=a'b\"c;User ID=u", "Password=***;User ID=u"},
      {"Password==x=y;User ID=u", "Password=***;User ID=u"},
      {"My==Password=\"a;b\";User ID=u", "My==Password=***;User ID=u"},
      {"a==b=\"c;d\";Password=p", "a==b=\"c;d\";Password=***"},
      {"File Name=c:\\x.udl;Password=p", "File Name=c:\\x.udl;Password=***"},
      {"Application Name=\"it's; here\";Password=p", "Application Name=\"it's; here\";Password=***"},
  });
}

TEST(HidePassword, finds_the_pairs_inside_of_quoted_values) {
  expect_each({
      {"Provider=MSDASQL;Extended Properties=\"DSN=x;PWD=y\";User ID=u",
       "Provider=MSDASQL;Extended Properties=\"DSN=x;PWD=***\";User ID=u"},
      {"Extended Properties=\"PWD=y\"", "Extended Properties=\"PWD=***\""},
      {"Extended Properties='PWD=\"a;b\";DSN=\"it''s\"';X=1", "Extended Properties='PWD=***;DSN=\"it''s\"';X=1"},
      {"Extended Properties=\"PWD=\"\"a;b\"\";DSN=x\";X=1", "Extended Properties=\"PWD=***;DSN=x\";X=1"},
      {"Provider String={Server=s;PWD={a}}}};b}}};X=1", "Provider String={Server=s;PWD=***};X=1"},
      {"Provider String={Server=s;PWD={{a;b}}};X=1", "Provider String={Server=s;PWD=***};X=1"},
      {"provider=x;connection string='Data Source=\"y\";Password=z'",
       "provider=x;connection string='Data Source=\"y\";Password=***'"},
      {"A=\"B='C=\"\"PWD=x\"\"'\";D=1", "A=\"B='C=\"\"PWD=***\"\"'\";D=1"},
  });
}

TEST(HidePassword, reads_braces_inside_of_braces_that_were_not_doubled) {
  EXPECT_EQ(shown("Extended Properties={DRIVER={SQL Server};SERVER=s;PWD=y}"),
            "Extended Properties={DRIVER={SQL Server};SERVER=s;PWD=***");
}

TEST(HidePassword, hides_what_is_a_password_by_either_reading) {
  expect_each({
      {"Driver={a;PWD=secret};UID=u", "Driver={a;PWD=***};UID=u"},
      {"UID='x;PWD=secret';DSN=d", "UID='x;PWD=***';DSN=d"},
      {"host=h user=u password=secret", "host=h user=u password=***"},
      {"Options=a=b,password=secret;X=1", "Options=a=b,password=***;X=1"},
  });
}

TEST(HidePassword, reads_the_files_that_hold_pairs_on_lines) {
  expect_each({
      {"[ODBC]\nDRIVER=x\nUID=sa\nPWD=secret\nSERVER=s\n", "[ODBC]\nDRIVER=x\nUID=sa\nPWD=***\nSERVER=s\n"},
      {"[ODBC]\r\nPWD=\r\nUID=sa\r\n", "[ODBC]\r\nPWD=***\r\nUID=sa\r\n"},
      {"[oledb]\r\n; Everything after this line\r\nProvider=x;Password='a;b';User ID=u\r\n",
       "[oledb]\r\n; Everything after this line\r\nProvider=x;Password=***;User ID=u\r\n"},
  });
  EXPECT_EQ(shown("[PWD=a;b]\nc;UID=u"), "[PWD=***;UID=u") << "pairs are no heading";
  EXPECT_EQ(shown("UID=sa\nPWD=secret\nSERVER=s"), "UID=sa\nPWD=***") << "without a heading a line end parts nothing";
}

TEST(HidePassword, knows_the_keys_of_passwords) {
  for (const char* key :
       {"PWD", "pwd", "Password", "PASSWORD", "Pass", "User Pass", "User Password", "Jet OLEDB:Database Password",
        "Jet OLEDB:New Database Password", "Proxy Password", "Proxy Pwd", "NEWPWD", "TrustStorePwd", "SSLKeyPassword",
        "Passwd", "key_passphrase", "PW", "Password2", "  Password\t"}) {
    const std::string begin = std::string("A=b;") + key + "=";
    EXPECT_EQ(shown(begin + "secret;C=d"), begin + "***;C=d");
  }
}

TEST(HidePassword, leaves_other_pairs_and_texts_without_pairs) {
  for (const char* text :
       {"", ";", "=", "plain words", "DSN=PWD;UID=password", "Bypass=1;Compass=2;PWDS=3", "sqlite:a.db;Create=1",
        "sqlite:/data/my pwd=1/a.db", "sqlite::memory:", "Persist Security Info=False;Integrated Security=SSPI",
        "Encrypt Password=True;Mask Password=no", "DSN=\"never closed;UID=u", "DSN={a}b;UID=u"}) {
    ConnectStringUtil util{CString(text)};
    EXPECT_FALSE(util.HidePassword()) << text;
    EXPECT_EQ(util.text, text);
  }
  EXPECT_EQ(shown("Encrypt Password=secret"), "Encrypt Password=***") << "no value of a switch";
}

TEST(HidePassword, takes_words_that_are_no_pairs_for_the_rest_of_the_password_before_them) {
  expect_each({
      {"PWD=se;cret;UID=u", "PWD=***;UID=u"},
      {"UID=u;PWD=se;cr;et ;;", "UID=u;PWD=*** ;;"},
      {"PWD={a};b};UID=u", "PWD=***;UID=u"},
      {"PWD=a;;b;UID=u", "PWD=***;UID=u"},
      {"X=\"PWD=a;b\";c;Y=1", "X=\"PWD=***\";c;Y=1"},
      {"PWD=a; ;UID=u", "PWD=***; ;UID=u"},
  });
}

TEST(HidePassword, hides_all_behind_a_password_that_is_never_closed) {
  expect_each({
      {"DSN=x;PWD={never closed;UID=u", "DSN=x;PWD=***"},
      {"DSN=x;PWD={never}} closed;UID=u", "DSN=x;PWD=***"},
      {"Password=\"never;User ID=u", "Password=***"},
      {"Password='it''s never;User ID=u", "Password=***"},
      {"PWD={a}b;c};UID=u", "PWD=***"},
      {"Password=\"a\"b;c\";User ID=u", "Password=***"},
      {"PWD==\"a;b;UID=u", "PWD=***"},
      {"DSN={never closed;PWD=a;b", "DSN={never closed;PWD=***"},
      {"UID='x;PWD=sec'ret;Y=1", "UID='x;PWD=***"},
      {"Extended Properties=\"PWD=a;b;c", "Extended Properties=\"PWD=***"},
      {"Extended Properties=\"DSN=x;PWD={a\";b}\";X=1", "Extended Properties=\"DSN=x;PWD=***\""},
  });
}

TEST(HidePassword, tells_whether_there_was_a_password_key_and_hides_an_empty_one_too) {
  ConnectStringUtil empty("PWD=;UID=u");
  EXPECT_TRUE(empty.HidePassword());
  EXPECT_EQ(empty.text, "PWD=***;UID=u");
  ConnectStringUtil last("UID=u;PWD=");
  EXPECT_TRUE(last.HidePassword());
  EXPECT_EQ(last.text, "UID=u;PWD=***");
  EXPECT_TRUE(last.HidePassword()) << "the second time as the first";
  EXPECT_EQ(last.text, "UID=u;PWD=***");
  ConnectStringUtil nested("X=\"PWD=a\"");
  EXPECT_TRUE(nested.HidePassword());
}

TEST(HidePassword, keeps_characters_of_many_bytes_beside_the_password) {
  EXPECT_EQ(shown("DSN=Prüfstand;UID=Jürgen;PWD=größe;DB=日本"), "DSN=Prüfstand;UID=Jürgen;PWD=***;DB=日本");
}

TEST(HidePassword, takes_a_hostile_text_in_its_stride) {
  std::string text;
  for (int i = 0; i < 20000; ++i)
    text += "={'\"";
  EXPECT_EQ(shown(text + ";PWD=secret;x"), text + ";PWD=***");
}

/// The spellings, and how each writes a value so that it may hold anything.
enum class Spelling { odbc, single_quotes, double_quotes, nested_in_quotes, nested_in_braces };

std::string enclosed(char opener, std::string_view value) {
  const char closer = opener == '{' ? '}' : opener;
  std::string text(1, opener);
  for (const char c : value)
    text.append(c == closer ? 2 : 1, c);
  return text + closer;
}

bool plain_enough(std::string_view value) {
  return !value.empty() && value.find_first_of(" ;{}'\"=[]()?*!@\t\n") == value.npos;
}

std::string with_value(Spelling spelling, const std::string& before, const std::string& value,
                       const std::string& after) {
  switch (spelling) {
    case Spelling::odbc:
      return before + (plain_enough(value) ? value : enclosed('{', value)) + after;
    case Spelling::single_quotes:
      return before + enclosed('\'', value) + after;
    case Spelling::double_quotes:
      return before + enclosed('"', value) + after;
    case Spelling::nested_in_quotes:
      return "X=" + enclosed('"', before + enclosed('"', value) + after) + ";Y='z;1'";
    case Spelling::nested_in_braces:
      return "X=" + enclosed('{', before + enclosed('{', value) + after) + ";Y={z;1}";
  }
  return {};
}

std::string shown_value(Spelling spelling, const std::string& before, const std::string& after) {
  if (spelling == Spelling::nested_in_quotes) return "X=" + enclosed('"', before + "***" + after) + ";Y='z;1'";
  if (spelling == Spelling::nested_in_braces) return "X=" + enclosed('{', before + "***" + after) + ";Y={z;1}";
  return before + "***" + after;
}

TEST(HidePassword, leaves_nothing_of_any_password_in_any_spelling_and_every_other_pair_alone) {
  std::mt19937 random(20260514);
  const std::vector<std::string> pieces{";",    "=", "{",  "}", "'",  "\"", " ", "\t", "\n",
                                        "PWD=", "a", "Q7", "ü", "日", "[",  "]", "\\"};
  for (int round = 0; round < 20000; ++round) {
    std::string password;
    for (auto left = random() % 9; left > 0; --left)
      password += pieces[random() % pieces.size()];
    for (const auto spelling : {Spelling::odbc, Spelling::single_quotes, Spelling::double_quotes,
                                Spelling::nested_in_quotes, Spelling::nested_in_braces}) {
      const std::string before = "DSN=plant floor; UID = anna ;PWD=", after = " ;Z=it's \"so\"{;W=1";
      const auto given = with_value(spelling, before, password, after);
      ASSERT_EQ(shown(given), shown_value(spelling, before, after)) << given;
    }
  }
}

}  // namespace
