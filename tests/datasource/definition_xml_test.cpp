// Plan
//   what is written, to the character, and when                        -> Definition_writing.*
//   the connection string: enciphered or hidden, never clear           -> Definition_string.*
//   merging, the syntax, failures, what the files do not show          -> Definition_reading.*
// What every version and spoilt document gives is told in tests/data/definitions (definition_versions_test.cpp).
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>

#include "spcbase/companion/connect_string.h"
#include "spcbase/datasource/definition.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/utility/internal/text_cipher.h"
#include "spcbase/utility/internal/xml_elements.h"
#include "tests/datasource/definition_fields.h"

namespace {

using test_support::changes;
using test_support::fields_of;
using test_support::full_definition;

constexpr const char* clear_string = "DSN=warehouse;UID=spc;PWD=secret";

std::string xml_of(const auto& info, bool include_identity, bool hide_password) {
  return std::string(info.get_xml(include_identity, hide_password).view());
}

std::string enciphered(const char* text, const char* key_text) {
  return TextCipher().encrypt(text, key_text).GetString();
}

int count_of(std::string_view what, std::string_view text) {
  int count = 0;
  for (std::size_t at = text.find(what); at != std::string_view::npos; at = text.find(what, at + 1))
    ++count;
  return count;
}

/// The text of the last element of a name; "none" when there is none.
std::string element_text(const std::string& xml, const char* name) {
  std::string found = "none";
  const IXMLDOMDocumentPtr document = load_xml_text(CString(xml));
  walk_child_elements(document->GetdocumentElement(), [&](const CString& child_name, const IXMLDOMElementPtr& child) {
    if (child_name == name) found = get_elem_text(child).GetString();
  });
  return found;
}

template <class Info>
struct Names;
template <>
struct Names<OLEDBInfo> {
  static constexpr const char* string_element = "connection_string_2";
};
template <>
struct Names<ADONETDBInfo> {
  static constexpr const char* string_element = "connection_string";
};

template <class Info>
class Definition_writing : public testing::Test {};
template <class Info>
class Definition_string : public testing::Test {};
template <class Info>
class Definition_reading : public testing::Test {};
using Kinds = testing::Types<OLEDBInfo, ADONETDBInfo>;
TYPED_TEST_SUITE(Definition_writing, Kinds, );
TYPED_TEST_SUITE(Definition_string, Kinds, );
TYPED_TEST_SUITE(Definition_reading, Kinds, );

TEST(OLEDBInfo_writing, a_new_definition_has_every_element_that_is_always_written) {
  EXPECT_EQ(xml_of(OLEDBInfo(), false, false),
            "<?xml version=\"1.0\" ?><external_database version=\"0\"><quote_catalog>true</quote_catalog>"
            "<quote_schema>true</quote_schema><quote_table>true</quote_table><quote_column>true</quote_column>"
            "<option>1</option><internal_option>0</internal_option><catalog_separator/><schema_separator/>"
            "<table_separator/><quote_prefix/><quote_suffix/></external_database>\r\n");
}

TEST(ADONETDBInfo_writing, a_new_definition_has_every_element_that_is_always_written) {
  EXPECT_EQ(xml_of(ADONETDBInfo(), false, false),
            "<?xml version=\"1.0\" ?><external_database version=\"0\"><provider/><quote_catalog>true</quote_catalog>"
            "<quote_schema>true</quote_schema><quote_table>true</quote_table><quote_column>true</quote_column>"
            "<catalog_separator/><schema_separator/><table_separator/><quote_prefix/><quote_suffix/><quote_suffix/>"
            "</external_database>\r\n");
}

TEST(OLEDBInfo_writing, a_full_definition_has_its_elements_in_their_order) {
  EXPECT_EQ(xml_of(full_definition<OLEDBInfo>(), true, false),
            "<?xml version=\"1.0\" ?><external_database version=\"4\"><id>7</id><name>Warehouse</name>"
            "<description>Goods&#13;\nreceived</description><type>stock</type><flag1>0</flag1><flag2>3</flag2>"
            "<connection_string_2>" +
                enciphered(clear_string, "259") +
                "</connection_string_2><quote_catalog>false</quote_catalog><quote_schema>false</quote_schema>"
                "<quote_table>false</quote_table><quote_column>false</quote_column><option>5</option>"
                "<internal_option>11</internal_option><catalog_separator>.</catalog_separator>"
                "<schema_separator>:</schema_separator><table_separator>!</table_separator>"
                "<quote_prefix>[</quote_prefix><quote_suffix>]</quote_suffix><sql_syntax_info>"
                "<date_literal>DATE '%Y-%m-%d'</date_literal><time_literal>TIME '%H:%M:%S'</time_literal>"
                "<timestamp_literal>TIMESTAMP '%Y-%m-%d %H:%M:%S'</timestamp_literal>"
                "<concatenation>||</concatenation></sql_syntax_info></external_database>\r\n");
}

TEST(ADONETDBInfo_writing, a_full_definition_has_its_elements_in_their_order) {
  ADONETDBInfo info = full_definition<ADONETDBInfo>();
  info.syntax_info.reset();
  EXPECT_EQ(xml_of(info, true, false),
            "<?xml version=\"1.0\" ?><external_database version=\"4\"><id>7</id><name>Warehouse</name>"
            "<description>Goods&#13;\nreceived</description><type>stock</type><flag1>1</flag1><flag2>3</flag2>"
            "<provider>System.Data.Odbc</provider><connection_string>" +
                enciphered(clear_string, "259") +
                "</connection_string><quote_catalog>false</quote_catalog><quote_schema>false</quote_schema>"
                "<quote_table>false</quote_table><quote_column>false</quote_column>"
                "<catalog_separator>.</catalog_separator><schema_separator>:</schema_separator>"
                "<table_separator>!</table_separator><quote_prefix>[</quote_prefix><quote_suffix>]</quote_suffix>"
                "<quote_suffix>]</quote_suffix><default_command_timeout>30</default_command_timeout>"
                "</external_database>\r\n");
}

TYPED_TEST(Definition_writing, identity_is_written_only_when_it_is_asked_for) {
  const TypeParam info = full_definition<TypeParam>();
  for (const char* name : {"id", "name", "description", "type", "flag1", "flag2"}) {
    EXPECT_NE(element_text(xml_of(info, true, true), name), "none") << name;
    EXPECT_EQ(element_text(xml_of(info, false, true), name), "none") << name;
  }
}

TEST(ADONETDBInfo_writing, xml_always_holds_two_quote_suffix_elements_on_purpose) {
  ADONETDBInfo info;
  EXPECT_EQ(count_of("<quote_suffix", xml_of(info, false, false)), 2);
  info.quote_suffix = "]";
  for (const bool identity : {false, true})
    for (const bool hidden : {false, true})
      EXPECT_EQ(count_of("<quote_suffix>]</quote_suffix>", xml_of(info, identity, hidden)), 2);
  EXPECT_EQ(count_of("<quote_suffix", xml_of(OLEDBInfo(), false, false)), 1);
}

TEST(ADONETDBInfo_writing, a_timeout_of_minus_1_writes_no_element_and_0_writes_0) {
  ADONETDBInfo info;
  EXPECT_EQ(info.default_command_timeout, -1);
  EXPECT_EQ(element_text(xml_of(info, true, true), "default_command_timeout"), "none");
  info.default_command_timeout = 0;
  EXPECT_EQ(element_text(xml_of(info, true, true), "default_command_timeout"), "0");
  info.default_command_timeout = -2;
  EXPECT_EQ(element_text(xml_of(info, true, true), "default_command_timeout"), "-2");
}

TYPED_TEST(Definition_writing, a_character_that_xml_does_not_have_is_refused) {
  TypeParam info;
  info.quote_prefix = "\x01";
  try {
    info.get_xml(false, false);
    FAIL();
  } catch (const _com_error& e) {
    EXPECT_EQ(e.Error(), XML_E_BADCHARDATA);
  }
}

TYPED_TEST(Definition_string, an_empty_one_writes_neither_element_and_is_kept_when_that_is_read) {
  TypeParam info;
  for (const bool hidden : {false, true}) {
    EXPECT_EQ(element_text(xml_of(info, true, hidden), "connection_string"), "none");
    EXPECT_EQ(element_text(xml_of(info, true, hidden), "connection_string_2"), "none");
  }
  TypeParam holder;
  holder.connection_string = clear_string;
  holder.set_xml(info.get_xml(false, false));
  EXPECT_EQ(holder.connection_string, clear_string);
}

TYPED_TEST(Definition_string, is_written_under_one_name_only) {
  const std::string xml = xml_of(full_definition<TypeParam>(), false, false);
  EXPECT_EQ(count_of("<connection_string", xml), 1);
  EXPECT_NE(element_text(xml, Names<TypeParam>::string_element), "none");
}

TYPED_TEST(Definition_string, is_hidden_as_the_companion_hides_it_or_stands_there_as_base64_alone) {
  const TypeParam info = full_definition<TypeParam>();
  ConnectStringUtil shown(info.connection_string);
  ASSERT_TRUE(shown.HidePassword());
  EXPECT_EQ(element_text(xml_of(info, true, true), Names<TypeParam>::string_element), shown.text.GetString());
  const std::string text = element_text(xml_of(info, false, false), Names<TypeParam>::string_element);
  EXPECT_EQ(text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/="),
            std::string::npos);
  EXPECT_EQ(text, enciphered(clear_string, "259"));
  EXPECT_EQ(info.connection_string, clear_string);
}

TYPED_TEST(Definition_string, the_clear_password_never_reaches_the_xml) {
  TypeParam info = full_definition<TypeParam>();
  for (const char* text : {"DSN=x;PWD=secret", "PWD={se;cret secret};DSN=x", "Password=\"secret\";Server=x",
                           "Pwd = secret", "Data Source=x;password='secret'", "DSN=x;PWD={secret"}) {
    info.connection_string = text;
    for (const bool identity : {false, true})
      for (const bool hidden : {false, true})
        EXPECT_EQ(xml_of(info, identity, hidden).find("secret"), std::string::npos) << text << identity << hidden;
  }
}

TYPED_TEST(Definition_string, the_key_is_37_times_the_id_with_its_sign_and_wraps_around) {
  struct Case {
    int id;
    const char* key_text;
  };
  constexpr Case cases[] = {{0, "0"},
                            {1, "37"},
                            {-5, "-185"},
                            {58040098, "2147483626"},
                            {58040099, "-2147483633"},
                            {std::numeric_limits<int>::max(), "2147483611"},
                            {std::numeric_limits<int>::min(), "-2147483648"}};
  for (const Case& c : cases) {
    TypeParam info;
    info.id = c.id;
    info.connection_string = clear_string;
    EXPECT_EQ(element_text(xml_of(info, false, false), Names<TypeParam>::string_element),
              enciphered(clear_string, c.key_text))
        << c.id;
    TypeParam read;
    read.set_xml(info.get_xml(true, false));
    EXPECT_EQ(read.connection_string, clear_string) << c.id;
  }
}

TYPED_TEST(Definition_string, any_bytes_come_back_zeros_among_them) {
  TypeParam info;
  info.connection_string = CString("a\0b\xff\x01", 5);
  TypeParam read;
  read.set_xml(info.get_xml(true, false));
  EXPECT_EQ(read.connection_string, info.connection_string);
  // Shown to people, there is no way to write them.
  EXPECT_THROW(info.get_xml(true, true), _com_error);
}

TYPED_TEST(Definition_string, a_changed_id_makes_the_stored_one_unreadable) {
  const TypeParam info = full_definition<TypeParam>();
  TypeParam other;
  other.id = info.id + 1;
  other.connection_string = "before";
  EXPECT_THROW(other.set_xml(info.get_xml(false, false)), std::exception);
  EXPECT_EQ(other.connection_string, "before");
}

TYPED_TEST(Definition_reading, what_was_exported_comes_back_whole_but_for_its_time) {
  TypeParam info = full_definition<TypeParam>();
  TypeParam read;
  read.modified_time = info.modified_time;
  read.set_xml(info.get_xml(true, false));
  EXPECT_EQ(changes(fields_of(info), fields_of(read)), "");
  TypeParam with_time;
  with_time.set_xml(info.get_xml(true, false));
  EXPECT_EQ(with_time.modified_time.m_dt, 0);
}

TYPED_TEST(Definition_reading, fields_without_element_keep_their_values_and_the_syntax_goes) {
  TypeParam info = full_definition<TypeParam>();
  const test_support::FieldTexts before = fields_of(info);
  info.set_xml("<external_database version=\"1\"><quote_table>true</quote_table></external_database>");
  EXPECT_EQ(changes(before, fields_of(info)), "quote_table=true | version=1 | syntax_info=none");
}

TYPED_TEST(Definition_reading, the_syntax_goes_before_anything_can_fail) {
  TypeParam info = full_definition<TypeParam>();
  const test_support::FieldTexts before = fields_of(info);
  EXPECT_THROW(info.set_xml("no document"), DBException);
  EXPECT_EQ(changes(before, fields_of(info)), "syntax_info=none");
}

TYPED_TEST(Definition_reading, a_syntax_that_others_hold_is_replaced_and_not_overwritten) {
  TypeParam info;
  const auto held = std::make_shared<UserDefinedSyntaxInfo>();
  info.syntax_info = held;
  info.set_xml(full_definition<TypeParam>().get_xml(true, false));
  ASSERT_TRUE(info.syntax_info);
  EXPECT_EQ(*info.syntax_info, *get_default_user_defined_syntax_info());
  EXPECT_EQ(*held, UserDefinedSyntaxInfo());
}

// Kept: ADO.NET definitions too are told that the text is "not OLE DB".
/// A definition of id 7 that read these elements.
OLEDBInfo read_elements(int version, const std::string& elements) {
  OLEDBInfo info;
  info.id = 7;
  info.set_xml(
      CString("<external_database version=\"" + std::to_string(version) + "\">" + elements + "</external_database>"));
  return info;
}

TEST(OLEDBInfo_reading, a_connection_string_of_version_2_is_taken_as_it_stands) {
  EXPECT_EQ(read_elements(2, "<connection_string>DSN=a;PWD=b</connection_string>").connection_string, "DSN=a;PWD=b");
}

TEST(OLEDBInfo_reading, of_both_connection_elements_the_later_one_in_the_document_counts) {
  const std::string old_element = "<connection_string>DSN=old</connection_string>";
  const std::string new_element =
      "<connection_string_2>" + enciphered("DSN=new", "259") + "</connection_string_2>";  // 7 times 37
  EXPECT_EQ(read_elements(2, old_element + new_element).connection_string, "DSN=new");
  EXPECT_EQ(read_elements(2, new_element + old_element).connection_string, "DSN=old");
}

TEST(OLEDBInfo_reading, the_old_quote_followed_by_a_suffix_leaves_each_its_own) {
  const OLEDBInfo info = read_elements(4, "<identifier_quote>[</identifier_quote><quote_suffix>]</quote_suffix>");
  EXPECT_EQ(info.quote_prefix, "[");
  EXPECT_EQ(info.quote_suffix, "]");
  const OLEDBInfo turned = read_elements(4, "<quote_suffix>]</quote_suffix><identifier_quote>[</identifier_quote>");
  EXPECT_EQ(turned.quote_suffix, "[") << "the later one counts";
}

TYPED_TEST(Definition_reading, a_definition_of_the_other_kind_is_refused_in_the_same_words_on_purpose) {
  using Other = std::conditional_t<std::is_same_v<TypeParam, OLEDBInfo>, ADONETDBInfo, OLEDBInfo>;
  TypeParam info;
  try {
    info.set_xml(full_definition<Other>().get_xml(true, false));
    FAIL();
  } catch (const DBException& e) {
    EXPECT_STREQ(e.what(), "Not OLE DB database connection.");
    EXPECT_EQ(e.error_code, result_code::failed);
  }
  EXPECT_EQ(info.type, "stock");
  EXPECT_EQ(info.flag2, 0);
}

TYPED_TEST(Definition_reading, a_text_that_is_no_document_fails_with_the_parsers_reason) {
  TypeParam info;
  try {
    info.set_xml("<external_database version=\"4\">");
    FAIL();
  } catch (const DBException& e) {
    EXPECT_EQ(e.what().Find("Load xml failed:"), 0);
    EXPECT_GT(e.what().Find("line: 1"), 0);
  }
}

// A definition of random content; texts hold what XML has trouble with.
template <class Info>
Info random_definition(std::mt19937& random) {
  const auto text = [&](bool one_line) {
    constexpr const char* pieces[] = {"a", "Ä", "漢", "<", "&", "\"", "]]>", " ", "'", "--", "\t", "\r", "\n"};
    CString result;
    for (auto left = random() % 6; left > 0; --left)
      result += pieces[random() % (one_line ? 10U : 13U)];
    return result;
  };
  const auto number = [&] { return static_cast<int>(random()); };
  Info info;
  info.id = number();
  info.name = text(true);
  info.connection_string = text(false);
  info.description = text(false);
  info.type = text(false);
  info.flag2 = number();
  for (bool* flag : {&info.quote_catalog, &info.quote_schema, &info.quote_table, &info.quote_column})
    *flag = random() % 2 == 0;
  info.version = number();
  for (CString* field :
       {&info.catalog_separator, &info.schema_separator, &info.table_separator, &info.quote_prefix, &info.quote_suffix})
    *field = text(false);
  if constexpr (std::is_same_v<Info, OLEDBInfo>) {
    info.option = number();
    info.internal_option = number();
  } else {
    info.provider = text(false);
    info.default_command_timeout = number();
  }
  if (random() % 2 == 0) {
    info.syntax_info = std::make_shared<UserDefinedSyntaxInfo>();
    info.syntax_info->date_literal = text(false);
    info.syntax_info->concatenation = text(false);
  }
  return info;
}

TYPED_TEST(Definition_reading, whatever_was_written_is_read_as_the_same) {
  std::mt19937 random(20240315);
  for (int turn = 0; turn < 300; ++turn) {
    const TypeParam info = random_definition<TypeParam>(random);
    TypeParam read;
    read.set_xml(info.get_xml(true, false));
    ASSERT_EQ(changes(fields_of(info), fields_of(read)), "") << turn;
  }
}

}  // namespace
