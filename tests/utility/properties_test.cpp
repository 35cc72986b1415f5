// Plan
//   get_xml: the format, an empty vector, the same name twice, a null document
//   set_xml: what is cleared, passed over and left empty; where the walk ends; what stays after a failure
//   Round trips: any text that XML can hold, white space alone too, goes out as text and comes back
#include "spcbase/utility/properties.h"

#include <random>

#include "spcbase/platform/text/unicode.h"
#include "spcbase/utility/internal/xml_elements.h"
#include "tests/utility/xml_words.h"

namespace spcbaseutil {

static bool operator==(const Property& a, const Property& b) { return a.name == b.name && a.value == b.value; }

}  // namespace spcbaseutil

namespace {

using spcbaseutil::PropertyVec;
using xml_words::code_of;
using xml_words::db_failure_of;
using xml_words::root_of;

std::string text_of(const PropertyVec& properties) {
  IXMLDOMDocumentPtr document = make_document();
  document->PutrefdocumentElement(properties.get_xml(document));
  return xml_narrow::xml_of(*document);
}

PropertyVec read(const char* text) {
  PropertyVec properties;
  properties.set_xml(root_of(text));
  return properties;
}

TEST(PropertyVec, is_written_in_order_and_belongs_where_the_caller_puts_it) {
  PropertyVec properties = {{"colour", "blue"}, {"<&>", ""}};
  IXMLDOMDocumentPtr document = make_document();
  const IXMLDOMElementPtr element = properties.get_xml(document);
  EXPECT_FALSE(document->GetdocumentElement());
  const IXMLDOMElementPtr root = document->createElement("definition");
  root->appendChild(element);
  document->PutrefdocumentElement(root);
  EXPECT_EQ(xml_narrow::xml_of(*document),
            "<definition><properties><property><name>colour</name><value>blue</value></property><property>"
            "<name>&lt;&amp;&gt;</name><value/></property></properties></definition>\r\n");
}

TEST(PropertyVec, that_is_empty_is_written_as_an_empty_element) {
  EXPECT_EQ(text_of(PropertyVec()), "<properties/>\r\n");
}

TEST(PropertyVec, with_the_same_name_twice_comes_back_as_two_entries_in_order) {
  const PropertyVec properties = {{"n", "1"}, {"n", "2"}};
  const std::string text = text_of(properties);
  EXPECT_EQ(text,
            "<properties><property><name>n</name><value>1</value></property><property><name>n</name><value>2</value>"
            "</property></properties>\r\n");
  EXPECT_EQ(read(text.c_str()), properties);
}

TEST(PropertyVec, is_empty_after_an_element_without_children_whatever_it_held) {
  PropertyVec properties = {{"n", "1"}};
  properties.set_xml(root_of("<properties/>"));
  EXPECT_TRUE(properties.empty());
}

TEST(PropertyVec, has_an_empty_value_where_a_property_has_none) {
  EXPECT_EQ(read("<properties><property><name>n</name></property><property/></properties>"),
            (PropertyVec{{"n", ""}, {"", ""}}));
}

TEST(PropertyVec, ends_quietly_at_a_comment_between_two_properties) {
  EXPECT_EQ(read("<properties><property><name>1</name></property><!-- c --><property/></properties>").size(), 1U);
}

TEST(PropertyVec, does_not_know_a_property_with_a_capital_letter_and_passes_it_over) {
  EXPECT_EQ(read("<p><Property><name>1</name></Property><other/><property><Name>2</Name><name>3</name></property></p>"),
            (PropertyVec{{"3", ""}}));
}

TEST(PropertyVec, takes_the_last_of_several_names_and_values) {
  EXPECT_EQ(read("<p><property><name>a</name><value>1</value><name>b</name><value/></property></p>"),
            (PropertyVec{{"b", ""}}));
}

TEST(PropertyVec, is_cleared_first_and_holds_what_was_read_before_a_failure) {
  PropertyVec properties = {{"old", ""}};
  EXPECT_EQ(code_of([&] { properties.set_xml(nullptr); }), E_POINTER);
  EXPECT_TRUE(properties.empty());
  const IXMLDOMElementPtr broken =
      root_of("<p><property><name>a</name></property><property><name><b/></name></property></p>");
  EXPECT_EQ(db_failure_of([&] { properties.set_xml(broken); }), "XML error.");
  EXPECT_EQ(properties, (PropertyVec{{"a", ""}}));
}

TEST(PropertyVec, needs_a_document_and_texts_that_xml_has) {
  IXMLDOMDocumentPtr none;
  EXPECT_EQ(code_of([&] { PropertyVec().get_xml(none); }), E_POINTER);
  IXMLDOMDocumentPtr document = make_document();
  EXPECT_EQ(code_of([&] { (PropertyVec{{"n", "\x01"}}).get_xml(document); }), XML_E_BADCHARDATA);
  EXPECT_EQ(code_of([&] { (PropertyVec{{CString("a\0b", 3), ""}}).get_xml(document); }), XML_E_BADCHARDATA);
}

/// Texts that XML can hold, with the troublesome characters among them more often than chance would have it.
class RandomText {
 public:
  CString operator()() {
    static constexpr char32_t troublesome[] = {' ',  '\t',   '\n',   '\r',   '<',    '>',     '&',
                                               '"',  '\'',   ']',    '-',    ';',    0x7F,    0x85,
                                               0xA0, 0xD7FF, 0xE000, 0xFEFF, 0xFFFD, 0x10000, 0x10FFFF};
    std::u16string text;
    for (unsigned length = below(8); length > 0; --length) {
      const char32_t c = below(3) != 0 ? troublesome[below(std::size(troublesome))] : any();
      if (c >= 0x10000) text += static_cast<char16_t>(0xD7C0U + (c >> 10));
      text += static_cast<char16_t>(c >= 0x10000 ? 0xDC00U + (c & 0x3FFU) : c);
    }
    return CString(platform::to_utf8(text));
  }
  unsigned below(std::size_t end) { return static_cast<unsigned>(random_() % end); }

 private:
  char32_t any() {
    const char32_t c = 0x20 + below(0x10FFFF - 0x20 + 1);
    const bool is_character = (c < 0xD800 || c > 0xDFFF) && c != 0xFFFE && c != 0xFFFF;
    return is_character ? c : U'x';
  }

  std::mt19937 random_{20240611};
};

TEST(PropertyVec, of_any_texts_comes_back_from_its_text_as_it_was) {
  RandomText random_text;
  for (int round = 0; round < 400; ++round) {
    PropertyVec properties;
    for (unsigned count = random_text.below(5); count > 0; --count)
      properties.push_back({random_text(), random_text()});
    const std::string text = text_of(properties);
    ASSERT_EQ(read(text.c_str()), properties) << text;
    ASSERT_EQ(text_of(read(text.c_str())), text);
  }
}

TEST(PropertyVec, keeps_every_character_that_xml_has) {
  for (char32_t first = 0x20; first < 0x110000; first += 0x800) {
    if (first >= 0xD800 - 0x7FF && first < 0xE000) continue;
    std::string all;
    for (char32_t c = first; c < first + 0x800; ++c)
      if (c != 0xFFFE && c != 0xFFFF && c < 0x110000) {
        const char16_t pair[] = {static_cast<char16_t>(c >= 0x10000 ? 0xD7C0U + (c >> 10) : c),
                                 static_cast<char16_t>(0xDC00U + (c & 0x3FFU))};
        all += platform::to_utf8({pair, c >= 0x10000 ? 2U : 1U});
      }
    const PropertyVec properties = {{"all", CString(all)}};
    ASSERT_EQ(read(text_of(properties).c_str()), properties) << static_cast<unsigned>(first);
  }
}

}  // namespace
