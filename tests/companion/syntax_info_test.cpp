// Plan
//   the default; what is written; where it stands
//   what is read: overwriting, merging, unknown elements, the end of the walk
//   failures and null
#include "spcbase/companion/syntax_info.h"

#include <gtest/gtest.h>

#include <string>

#include "spcbase/foundation/failure.h"

namespace {

IXMLDOMDocumentPtr document_of(const char* text) {
  IXMLDOMDocumentPtr document;
  create_dom_document(&document);
  if (*text != '\0') {
    EXPECT_EQ(document->loadXML(text), VARIANT_TRUE);
  }
  return document;
}

IXMLDOMElementPtr root_of(const char* text) { return document_of(text)->GetdocumentElement(); }

UserDefinedSyntaxInfo made_of(const char* date, const char* time, const char* timestamp, const char* concatenation) {
  UserDefinedSyntaxInfo syntax;
  syntax.date_literal = date;
  syntax.time_literal = time;
  syntax.timestamp_literal = timestamp;
  syntax.concatenation = concatenation;
  return syntax;
}

std::string written(const UserDefinedSyntaxInfo& syntax, const char* name) {
  IXMLDOMDocumentPtr document = document_of("");
  document->PutrefdocumentElement(syntax.get_xml(document, name));
  return static_cast<const char*>(document->Getxml());
}

TEST(UserDefinedSyntaxInfo, the_default_is_that_of_the_standard_and_new_each_time) {
  const auto syntax = get_default_user_defined_syntax_info();
  EXPECT_EQ(*syntax, made_of("DATE '%Y-%m-%d'", "TIME '%H:%M:%S'", "TIMESTAMP '%Y-%m-%d %H:%M:%S'", "||"));
  syntax->concatenation = "+";
  EXPECT_EQ(get_default_user_defined_syntax_info()->concatenation, "||");
}

TEST(UserDefinedSyntaxInfo, a_new_one_is_empty_and_a_copy_has_all_four_texts) {
  EXPECT_EQ(UserDefinedSyntaxInfo(), made_of("", "", "", ""));
  const UserDefinedSyntaxInfo syntax = made_of("d", "t", "ts", "+");
  const UserDefinedSyntaxInfo copy(syntax);
  EXPECT_EQ(copy, syntax);
  EXPECT_EQ(copy.timestamp_literal, "ts");
}

TEST(UserDefinedSyntaxInfo, writes_four_elements_in_order_empty_ones_too) {
  EXPECT_EQ(written(made_of("d", "", "ts", "<+>"), "sql_syntax_info"),
            "<sql_syntax_info><date_literal>d</date_literal><time_literal/><timestamp_literal>ts</timestamp_literal>"
            "<concatenation>&lt;+&gt;</concatenation></sql_syntax_info>\r\n");
}

TEST(UserDefinedSyntaxInfo, the_written_element_stands_nowhere_yet) {
  IXMLDOMDocumentPtr document = document_of("<root/>");
  const IXMLDOMElementPtr element = made_of("d", "t", "ts", "+").get_xml(document, "any");
  EXPECT_EQ(static_cast<std::string>(static_cast<const char*>(document->Getxml())), "<root/>\r\n");
  document->GetdocumentElement()->appendChild(element);
  EXPECT_NE(std::string(static_cast<const char*>(document->Getxml())).find("<root><any><date_literal>d<"),
            std::string::npos);
}

TEST(UserDefinedSyntaxInfo, what_was_written_is_read_as_the_same) {
  for (const UserDefinedSyntaxInfo& syntax :
       {*get_default_user_defined_syntax_info(), made_of("", "", "", ""), made_of(" ", "\r\n", "Ä漢", "]]>&")}) {
    IXMLDOMDocumentPtr document = document_of("");
    UserDefinedSyntaxInfo read = made_of("1", "2", "3", "4");
    read.set_xml(root_of(written(syntax, "x").c_str()));
    EXPECT_EQ(read, syntax);
  }
}

TEST(UserDefinedSyntaxInfo, what_has_no_element_keeps_what_it_held_and_the_last_of_several_counts) {
  UserDefinedSyntaxInfo syntax = made_of("d", "t", "ts", "+");
  syntax.set_xml(
      root_of("<x><time_literal>1</time_literal><other>2</other><date_literal/>"
              "<time_literal>3</time_literal><Concatenation>4</Concatenation></x>"));
  EXPECT_EQ(syntax, made_of("", "3", "ts", "+"));
}

TEST(UserDefinedSyntaxInfo, reading_ends_at_the_first_child_that_is_no_element_on_purpose) {
  UserDefinedSyntaxInfo syntax;
  syntax.set_xml(root_of("<x><date_literal>1</date_literal><!-- --><time_literal>2</time_literal></x>"));
  EXPECT_EQ(syntax, made_of("1", "", "", ""));
  syntax.set_xml(root_of("<x>text<time_literal>2</time_literal></x>"));
  EXPECT_EQ(syntax, made_of("1", "", "", ""));
}

TEST(UserDefinedSyntaxInfo, a_child_with_children_but_no_text_fails_and_what_was_read_before_stays) {
  UserDefinedSyntaxInfo syntax = made_of("d", "t", "ts", "+");
  for (const char* child : {"<b/>", "<![CDATA[2]]>", "<!-- 2 -->"}) {
    const std::string text = std::string("<x><date_literal>1</date_literal><time_literal>") + child +
                             "</time_literal><concatenation>3</concatenation></x>";
    try {
      syntax.set_xml(root_of(text.c_str()));
      ADD_FAILURE() << child;
    } catch (const DBException& e) {
      EXPECT_STREQ(e.what(), "XML error.");
      EXPECT_EQ(e.error_code, result_code::failed);
    }
    EXPECT_EQ(syntax, made_of("1", "t", "ts", "+"));
  }
}

TEST(UserDefinedSyntaxInfo, an_element_with_other_content_that_is_not_of_the_syntax_is_passed_over) {
  UserDefinedSyntaxInfo syntax;
  syntax.set_xml(root_of("<x><other><b/></other><concatenation>3</concatenation></x>"));
  EXPECT_EQ(syntax.concatenation, "3");
}

template <class Call>
HRESULT code_of(Call&& call) {
  try {
    call();
  } catch (const _com_error& e) {
    return e.Error();
  }
  return S_OK;
}

TEST(UserDefinedSyntaxInfo, null_and_what_xml_does_not_have_fail_with_the_models_code) {
  UserDefinedSyntaxInfo syntax;
  IXMLDOMDocumentPtr none;
  EXPECT_EQ(code_of([&] { syntax.get_xml(none, "x"); }), E_POINTER);
  EXPECT_EQ(code_of([&] { syntax.set_xml(IXMLDOMElementPtr()); }), E_POINTER);
  IXMLDOMDocumentPtr document = document_of("");
  EXPECT_EQ(code_of([&] { syntax.get_xml(document, "two words"); }), XML_E_BADNAMECHAR);
  EXPECT_EQ(code_of([&] { syntax.get_xml(document, nullptr); }), E_FAIL);
  syntax.date_literal = "\x01";
  EXPECT_EQ(code_of([&] { syntax.get_xml(document, "x"); }), XML_E_BADCHARDATA);
}

}  // namespace
