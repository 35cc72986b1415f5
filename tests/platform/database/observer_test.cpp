// What is hidden from an onlooker.
//
// Plan
//   statements     every place in which a password's literal may stand, and those that must stay readable
//   backslashes    a literal that ends in two ways hides the password by either
//   connect texts  every password key, braces, quotes, semicolons inside
#include "spcbase/platform/database/observer.h"

#include <gtest/gtest.h>

#include <utility>

#include "spcbase/platform/database/connect_text.h"

namespace {

using spcdb::mask_password_in_connect_text;
using spcdb::mask_password_literals;

TEST(mask_password_literals, literals_of_password_columns_are_hidden_wherever_they_stand) {
  const std::pair<const char*, const char*> rows[] = {
      {"UPDATE U SET PASSWORD='secret' WHERE ID=1", "UPDATE U SET PASSWORD='***' WHERE ID=1"},
      {"update u set name='ann', [Password] = 'it''s', x='y'", "update u set name='ann', [Password] = '***', x='y'"},
      {"SELECT * FROM U WHERE PWD='a' AND NAME='b'", "SELECT * FROM U WHERE PWD='***' AND NAME='b'"},
      {"SELECT * FROM U WHERE NAME='b' AND U.`pwd`<>'a'", "SELECT * FROM U WHERE NAME='b' AND U.`pwd`<>'***'"},
      {"SELECT 1 FROM U WHERE 'a'=PWD OR NAME='b'", "SELECT 1 FROM U WHERE '***'=PWD OR NAME='b'"},
      {"SELECT 1 FROM U WHERE 'a' = [U].[PWD]", "SELECT 1 FROM U WHERE '***' = [U].[PWD]"},
      {"SELECT 1 FROM U WHERE UPPER(USERPASSWORD)='A'", "SELECT 1 FROM U WHERE UPPER(USERPASSWORD)='***'"},
      {"SELECT 1 FROM U WHERE 'A'=UPPER(USERPASSWORD)", "SELECT 1 FROM U WHERE '***'=UPPER(USERPASSWORD)"},
      {"SELECT 1 FROM U WHERE PWD IN ('a', 'b') AND N IN ('c')",
       "SELECT 1 FROM U WHERE PWD IN ('***', '***') AND N IN ('c')"},
      {"SELECT 1 FROM U WHERE PWD NOT LIKE 'a%' OR N LIKE 'c%'",
       "SELECT 1 FROM U WHERE PWD NOT LIKE '***' OR N LIKE 'c%'"},
      {"SELECT 1 FROM U WHERE PWD BETWEEN 'a' AND 'b' AND N='c'",
       "SELECT 1 FROM U WHERE PWD BETWEEN '***' AND '***' AND N='c'"},
      {"SELECT 1 FROM U WHERE (PWD='a') AND (N='c')", "SELECT 1 FROM U WHERE (PWD='***') AND (N='c')"},
      {"UPDATE U SET PWD='a'||'b', N='c'", "UPDATE U SET PWD='***'||'***', N='c'"},
      {"UPDATE U SET PWD=N'a' WHERE X='c'", "UPDATE U SET PWD=N'***' WHERE X='c'"},
      {"UPDATE U SET PWD /* 'x' */ = -- 'y'\n 'a'", "UPDATE U SET PWD /* 'x' */ = -- 'y'\n '***'"},
      {"UPDATE U SET PWD=\"a\"", "UPDATE U SET PWD='***'"},
      {"INSERT INTO U (ID, PWD, NAME) VALUES (1, 'a', 'b')", "INSERT INTO U (ID, PWD, NAME) VALUES (1, '***', 'b')"},
      {"INSERT INTO U(PWD,N)VALUES('a','b'),('c','d')", "INSERT INTO U(PWD,N)VALUES('***','b'),('***','d')"},
      {"INSERT INTO [S].[U] ([N], [PASSWORD]) VALUES (F('x','y'), UPPER('a'))",
       "INSERT INTO [S].[U] ([N], [PASSWORD]) VALUES (F('x','y'), UPPER('***'))"},
      {"INSERT INTO U (N, PWD) SELECT 'n', 'a' FROM X WHERE Y='z'",
       "INSERT INTO U (N, PWD) SELECT 'n', '***' FROM X WHERE Y='z'"},
      {"INSERT INTO U (N, PWD) VALUES ('a)b', 'c')", "INSERT INTO U (N, PWD) VALUES ('a)b', '***')"},
      {"CREATE USER ann IDENTIFIED BY 'a'", "CREATE USER ann IDENTIFIED BY '***'"},
      {"SET PASSWORD FOR ann = PASSWORD('a')", "SET PASSWORD FOR ann = PASSWORD('***')"},
      {"UPDATE U SET PWD='unfinished", "UPDATE U SET PWD='***'"},
  };
  for (const auto& [given, wanted] : rows)
    EXPECT_EQ(mask_password_literals(given), wanted);
}

TEST(mask_password_literals, everything_else_stays_as_it_is) {
  for (const char* text :
       {"", "SELECT PWD FROM U", "SELECT PASSWORD, 'x' FROM U", "SELECT 1 FROM U WHERE N='PWD=''a'''",
        "INSERT INTO U (N, M) VALUES ('PASSWORD', 'b')", "SELECT 1 FROM U WHERE PWD IS NULL AND N='a'",
        "SELECT 1 FROM U WHERE PWD=? AND N='a'", "UPDATE U SET PWDAGE='a'", "SELECT 1 -- PWD='a'",
        "SELECT 1 FROM U WHERE PWD IN (SELECT P FROM X WHERE N='a')", "SELECT 1 FROM U ORDER BY PWD, 'x'",
        "INSERT INTO U VALUES (1, 'a')"})
    EXPECT_EQ(mask_password_literals(text), text);
}

TEST(mask_password_literals, a_literal_with_a_backslash_before_its_end_hides_the_password_by_either_reading) {
  // Where the backslash escapes, the first literal is "a', PWD=" no more than "a\" is one where it does not.
  EXPECT_EQ(mask_password_literals("UPDATE U SET N='a\\'b', PWD='secret'").find("secret"), std::string::npos);
  EXPECT_EQ(mask_password_literals("UPDATE U SET N='a\\', PWD='secret'").find("secret"), std::string::npos);
  EXPECT_EQ(mask_password_literals("UPDATE U SET PWD='sec\\'ret'").find("ret"), std::string::npos);
}

TEST(names_a_password, quoted_and_qualified_names_in_any_case_are_told) {
  for (const char* name : {"PWD", "pwd", "[Pwd]", "`PWD`", "T.PWD", "[T].[PWD]", "PASSWORD", "UserPasswordHash"})
    EXPECT_TRUE(spcdb::names_a_password(name)) << name;
  for (const char* name : {"", "PWDS", "OLDPWD", "[]", "PASS", "PWD.X"})
    EXPECT_FALSE(spcdb::names_a_password(name)) << name;
}

TEST(mask_password_in_connect_text, the_value_of_every_password_key_is_hidden) {
  const std::pair<const char*, const char*> rows[] = {
      {"DSN=x;UID=u;PWD=secret", "DSN=x;UID=u;PWD=***"},
      {"DSN=x;pwd = secret ;UID=u", "DSN=x;pwd = *** ;UID=u"},
      {"PWD={a;b}};c};UID=u", "PWD=***;UID=u"},
      {"Driver={x PWD=y};PWD=z", "Driver={x PWD=y};PWD=***"},
      {"Password=\"a;b\";User ID=u", "Password=***;User ID=u"},
      {"Password='a;PWD=b';User ID=u", "Password=***;User ID=u"},
      {"Password=\"a", "Password=***"},
      {"PWD={never closed;UID=u", "PWD=***"},
      {"PWD=;UID=u", "PWD=***;UID=u"},
      {"SSLKEYPASSWORD=k;TrustPwd=t", "SSLKEYPASSWORD=***;TrustPwd=***"},
      {"DSN=PWD;UID=password", "DSN=PWD;UID=password"},
      {"sqlite:a.db;Create=1", "sqlite:a.db;Create=1"},
      {"", ""},
  };
  for (const auto& [given, wanted] : rows)
    EXPECT_EQ(mask_password_in_connect_text(given), wanted) << given;
}

}  // namespace
