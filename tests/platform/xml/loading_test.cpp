// Plan
//   What is told of a bad text: the parser's own code, reason, line and position; the first error counts
//   Narrowing: UTF-16 becomes UTF-8 piece by piece
//   Refused: document types and entities, characters that XML does not have, zeros, halves of pairs, texts beyond the
//            limits of bytes, attributes, declarations and names
//   White space: dropped between tags, kept when it is meant
//   Size: 10,000 and 200,000 levels, 100 MB, 50,000 names, as many attributes as may be; nothing recurses
//   Manners: nothing on standard error, several threads at once
#include <thread>
#include <vector>

#include "spcbase/platform/text/unicode.h"
#include "spcbase/platform/xml/characters.h"
#include "spcbase/platform/xml/narrow.h"
#include "spcbase/platform/xml/parse.h"
#include "tests/platform/xml/model.h"

namespace {

using model::load;
using model::narrow;
using model::new_document;
using model::xml_of;

_bstr_t wide(std::u16string_view text) {
  return _bstr_t(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())), false);
}

struct Told {
  LONG code = 0;
  std::string reason;
  LONG line = 0;
  LONG position = 0;
};

Told told_of(const _bstr_t& text) {
  const IXMLDOMDocumentPtr document = new_document();
  EXPECT_EQ(document->loadXML(text), VARIANT_FALSE);
  const IXMLDOMParseErrorPtr error = document->GetparseError();
  EXPECT_FALSE(document->GetdocumentElement());
  EXPECT_EQ(xml_of(document), "");
  return {error->GeterrorCode(), narrow(error->Getreason()), error->Getline(), error->Getlinepos()};
}

TEST(ParseError, has_the_parsers_own_code_reason_line_and_position) {
  const Told told = told_of("<list>\n  <a></b>\n</list>");
  EXPECT_EQ(told.code, 76);
  EXPECT_EQ(told.reason, "Opening and ending tag mismatch: a line 2 and b");
  EXPECT_EQ(told.line, 2);
  EXPECT_EQ(told.position, 10);
}

TEST(ParseError, of_an_empty_text_says_that_it_is_empty) {
  for (const _bstr_t& text : {_bstr_t(), _bstr_t("")}) {
    const Told told = told_of(text);
    EXPECT_EQ(told.code, 4);
    EXPECT_EQ(told.reason, "Document is empty");
    EXPECT_EQ(told.line, 1);
    EXPECT_EQ(told.position, 1);
  }
}

TEST(ParseError, is_the_first_of_several) { EXPECT_EQ(told_of("<a>\n<b x=1/>\n</c>").line, 2); }

TEST(ParseError, is_gone_after_a_good_load) {
  const IXMLDOMDocumentPtr document = new_document();
  EXPECT_EQ(document->loadXML("<a"), VARIANT_FALSE);
  EXPECT_EQ(document->loadXML("<a/>"), VARIANT_TRUE);
  EXPECT_EQ(document->GetparseError()->GeterrorCode(), 0);
  EXPECT_EQ(document->GetparseError()->Getlinepos(), 0);
}

TEST(Refused, document_types_with_their_documented_code_and_place) {
  const Told told = told_of("<?xml version='1.0'?>\n<!DOCTYPE a SYSTEM 'file:///etc/passwd'><a/>");
  EXPECT_EQ(told.code, XML_E_INVALIDATROOTLEVEL);
  EXPECT_EQ(told.reason, "A document type declaration is not allowed");
  EXPECT_EQ(told.line, 2);
  EXPECT_GT(told.position, 1);
}

TEST(Refused, entities_that_would_grow_without_end) {
  std::string text = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
  for (int i = 1; i < 40; ++i) {
    const std::string before = "&e" + std::to_string(i - 1) + ';';
    text += "<!ENTITY e" + std::to_string(i) + " '" + before + before + "'>";
  }
  EXPECT_EQ(told_of((text + "]><a>&e39;</a>").c_str()).code, XML_E_INVALIDATROOTLEVEL);
  EXPECT_FALSE(model::loads("<a>&e39;</a>"));
}

TEST(Refused, external_entities_and_parameter_entities) {
  EXPECT_FALSE(model::loads("<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><a>&x;</a>"));
  EXPECT_FALSE(model::loads("<!DOCTYPE a [<!ENTITY % p SYSTEM 'http://localhost/x'>%p;]><a/>"));
  EXPECT_FALSE(model::loads("<!DOCTYPE a PUBLIC '-//x//y' 'http://localhost/x.dtd'><a/>"));
}

TEST(Refused, zeros_and_halves_of_pairs_wherever_they_stand) {
  const struct {
    std::u16string_view text;
    LONG line;
    LONG position;
  } cases[] = {{{u"<a/>\0", 5}, 1, 5},         {{u"<a/>\0<b/>", 9}, 1, 5}, {{u"\0<a/>", 5}, 1, 1},
               {{u"<a>\n \0</a>", 10}, 2, 2},  {u"<a>\xD800</a>", 1, 4},   {u"<a>\xDC00</a>", 1, 4},
               {u"<a>\xDC00\xD800</a>", 1, 4}, {u"<a/>\xD800", 1, 5}};
  for (const auto& each : cases) {
    const Told told = told_of(wide(each.text));
    EXPECT_EQ(told.code, 9);
    EXPECT_EQ(told.reason.substr(0, 18), "invalid Char value");
    EXPECT_EQ(told.line, each.line);
    EXPECT_EQ(told.position, each.position);
  }
}

TEST(Narrowing, finds_what_cannot_be_written_at_every_distance) {
  // It goes by blocks; a pair may lie across two of them, or across the end of the room.
  for (std::size_t before = 25; before < 75; ++before) {
    const std::u16string blanks(before, u' ');
    const std::string narrow_blanks(before, ' ');
    EXPECT_EQ(xml_model::to_narrow(blanks + u"\xD83D\xDE00" + blanks, E_FAIL),
              narrow_blanks + "\xF0\x9F\x98\x80" + narrow_blanks);
    for (const std::u16string& bad : {std::u16string(u"\xD83D"), std::u16string(u"\xDE00"), std::u16string(1, u'\0')}) {
      const std::u16string text = blanks + bad + u"\xD83D\xDE00" + blanks;
      xml_model::narrowing reading(text);
      char room[256];
      EXPECT_EQ(reading.read(room, sizeof room), before);
      EXPECT_TRUE(reading.is_stuck());
      EXPECT_EQ(reading.at(), before);
      EXPECT_EQ(reading.read(room, sizeof room), 0U);
    }
  }
}

TEST(Narrowing, gives_the_same_text_in_any_room) {
  std::u16string text;
  for (char16_t i = 0; i < 300; ++i) {
    text += std::u16string(i % 40, u'x');
    text += static_cast<char16_t>(1 + i * 180);
    text += u"\xDBFF\xDFFF";
  }
  const std::string expected = platform::to_utf8(text);
  for (const std::size_t room : {4U, 5U, 33U, 64U, 4'000U}) {
    xml_model::narrowing reading(text);
    std::string given;
    std::string buffer(room, '\0');
    while (const std::size_t count = reading.read(buffer.data(), room))
      given.append(buffer, 0, count);
    EXPECT_FALSE(reading.is_stuck());
    EXPECT_EQ(given, expected);
  }
}

TEST(Refused, texts_beyond_the_limit_with_a_clear_message) {
  xml_model::store& home = xml_model::life::begin();
  const xml_model::store_reference held(home);
  auto* const document = home.make<xml_model::dom_node>(home, NODE_DOCUMENT, "#document");
  const auto result = xml_model::parse(std::string_view("<abcdef/>"), *document, 8);
  EXPECT_EQ(result.failure.reason, "The text is longer than 8 bytes");
  EXPECT_EQ(xml_model::parse(std::u16string_view(u"<abcdef/>"), *document, 8).failure.code, 1);
  // The limit is of UTF-8: eight characters can be nine bytes.
  EXPECT_EQ(xml_model::parse(std::u16string_view(u"<abcd\xE4/>"), *document, 8).failure.code, 1);
  EXPECT_EQ(xml_model::parse(std::u16string_view(u"<abcd\xE4/>"), *document, 9).failure.code, 0);
}

// An element with so many attributes, whose values hold what looks like more of the text.
std::string element_with_attributes(std::size_t count) {
  std::string text = "<a";
  for (std::size_t i = 0; i < count; ++i)
    text += "\nn" + std::to_string(i) + (i % 2 == 0 ? "=\"'/>\"" : "='\">'");
  return text + "/>";
}

TEST(Refused, an_element_of_too_many_attributes_with_a_clear_message) {
  const std::string most = element_with_attributes(xml_model::most_attributes);
  EXPECT_TRUE(model::loads(most.c_str()));
  EXPECT_TRUE(model::loads(("<!-- " + most + " --><r>" + most + most + "</r>").c_str()));
  for (const std::size_t count : {xml_model::most_attributes + 1, std::size_t{1'000'000}}) {
    const std::string text = "<r>\n" + element_with_attributes(count) + "</r>";
    const Told told = told_of(text.c_str());
    EXPECT_EQ(told.code, 1);
    EXPECT_EQ(told.reason, "An element has more than 4000 attributes");
    EXPECT_GT(told.line, 2);
    EXPECT_GT(told.position, 0);
    EXPECT_EQ(xml_narrow::load(*new_document(), text), VARIANT_FALSE);
  }
}

TEST(Refused, an_element_within_too_many_namespaces_with_a_clear_message) {
  const auto nested_declarations = [](std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
      text += "<p:a xmlns:p='u'>";
    for (std::size_t i = 0; i < count; ++i)
      text += "</p:a>";
    return text;
  };
  EXPECT_TRUE(model::loads(nested_declarations(xml_model::most_declarations).c_str()));
  const Told told = told_of(nested_declarations(xml_model::most_declarations + 1).c_str());
  EXPECT_EQ(told.code, 1);
  EXPECT_EQ(told.reason, "More than 4000 namespaces are declared for an element");
  // One after the other there may be any number.
  std::string siblings = "<r>";
  for (std::size_t i = 0; i < 2 * xml_model::most_declarations; ++i)
    siblings += "<p:a xmlns:p='u'/>";
  EXPECT_TRUE(model::loads((siblings + "</r>").c_str()));
}

TEST(Refused, too_many_different_names_with_a_clear_message) {
  for (const char* mark : {"", "?"}) {
    std::string text = "<r>";
    for (std::size_t i = 0; i <= xml_model::most_names; ++i)
      text.append("<").append(mark).append("n" + std::to_string(i)).append(*mark == '?' ? "?>" : "/>");
    const Told told = told_of((text + "</r>").c_str());
    EXPECT_EQ(told.code, 1);
    EXPECT_EQ(told.reason, "The text has more than 100000 different names");
  }
}

TEST(Refused, what_follows_a_fault_is_not_read) {
  // Half of a pair would be told of in the place of the fault if the text were read to its end.
  const Told told = told_of(wide(u"<r>\n<a></b>" + std::u16string(100'000, u' ') + u"\xD800"));
  EXPECT_EQ(told.code, 76);
  EXPECT_EQ(told.line, 2);
}

TEST(WhiteSpace, between_tags_is_dropped_in_any_amount) {
  EXPECT_EQ(xml_of(load("<a>\r\n\t <b/> \r <c> \n </c>\n</a>")), "<a><b/><c/></a>\r\n");
}

TEST(WhiteSpace, written_as_a_reference_or_in_a_section_is_kept) {
  EXPECT_EQ(xml_of(load("<a>&#32;</a>")), "<a>&#32;</a>\r\n");
  EXPECT_EQ(xml_of(load("<a> &#x9;\n</a>")), "<a>&#32;\t\n</a>\r\n");
  EXPECT_EQ(xml_of(load("<a> \n&#13;</a>")), "<a>&#32;\n&#13;</a>\r\n");
  EXPECT_EQ(xml_of(load("<a><![CDATA[ ]]></a>")), "<a><![CDATA[ ]]></a>\r\n");
  // A semicolon of another text before it says nothing.
  EXPECT_EQ(xml_of(load("<a><b>;</b> <c>&amp;</c> <?p ;?> <!--;--> </a>")),
            "<a><b>;</b><c>&amp;</c><?p ;?><!--;--></a>\r\n");
}

TEST(WhiteSpace, is_kept_where_xml_space_says_so_and_only_there) {
  EXPECT_EQ(xml_of(load("<a> <b xml:space='preserve'> <c> <d xml:space='default'> </d></c></b> </a>")),
            "<a><b xml:space=\"preserve\"> <c> <d xml:space=\"default\"/></c></b></a>\r\n");
}

TEST(Text, in_pieces_becomes_one_node) {
  const IXMLDOMDocumentPtr document = load("<a>x&lt;&#65;\xC3\xA4]] &amp;y\r\nz</a>");
  const IXMLDOMNodeListPtr children = document->GetdocumentElement()->GetchildNodes();
  EXPECT_EQ(model::value_of(children->nextNode()->GetnodeValue()), "x<A\xC3\xA4]] &y\nz");
  EXPECT_FALSE(children->nextNode());
}

TEST(Text, may_begin_with_a_byte_order_mark_and_declare_any_encoding) {
  EXPECT_EQ(xml_of(load("\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-16' standalone='yes'?><a>\xC3\xA4</a>")),
            "<?xml version=\"1.0\" standalone=\"yes\"?>\r\n<a>\xC3\xA4</a>\r\n");
  EXPECT_EQ(xml_of(load("<?xml version='1.0' standalone='no'?><a/>")),
            "<?xml version=\"1.0\" standalone=\"no\"?>\r\n<a/>\r\n");
  EXPECT_EQ(xml_of(load("<?xml-style x?><a/>")), "<?xml-style x?>\r\n<a/>\r\n");
}

std::string nested(int levels) {
  std::string text;
  for (int i = 0; i < levels; ++i)
    text += "<a>";
  text += "x";
  for (int i = 0; i < levels; ++i)
    text += "</a>";
  return text;
}

int depth_of(const IXMLDOMDocumentPtr& document) {
  int depth = 0;
  IXMLDOMNodePtr node = document->GetdocumentElement();
  while (node->GetnodeType() == NODE_ELEMENT) {
    ++depth;
    node = node->GetchildNodes()->nextNode();
  }
  return depth;
}

TEST(Size, deep_documents_are_loaded_walked_written_and_ended) {
  for (const int levels : {10'000, 200'000}) {
    const std::string text = nested(levels);
    const IXMLDOMDocumentPtr document = load(text.c_str());
    EXPECT_EQ(depth_of(document), levels);
    EXPECT_EQ(xml_of(document), text + "\r\n");
    // Taking the whole tree out and moving it into another document goes through no level either.
    const IXMLDOMDocumentPtr other = load("<root/>");
    other->GetdocumentElement()->appendChild(document->GetdocumentElement());
    EXPECT_EQ(depth_of(other), levels + 1);
    other->GetdocumentElement()->Puttext("gone");
  }
}

TEST(Size, deep_documents_are_built_downwards_and_fail_clearly_when_cut) {
  const IXMLDOMDocumentPtr document = load("<a/>");
  IXMLDOMNodePtr end = document->GetdocumentElement();
  for (int i = 1; i < 100'000; ++i)
    end = end->appendChild(document->createElement("a"));
  EXPECT_EQ(xml_of(document).size(), 99'999U * 7 + 4 + 2);
  const std::string text = nested(10'000);
  EXPECT_EQ(told_of(text.substr(0, text.size() - 1).c_str()).code, 73);
}

// A hundred million bytes where the library is optimised; where it is not, or watched by a sanitizer, they would take
// minutes and a tenth of them must do.
#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__)
constexpr std::size_t large_bytes = 100'000'000;
#else
constexpr std::size_t large_bytes = 10'000'000;
#endif

TEST(Size, a_hundred_megabytes_load_and_can_be_read) {
  std::u16string text = u"<list>";
  std::size_t count = 0;
  const std::u16string item = u"<item>" + std::u16string(4'000, u'x') + u"\xE4</item>";
  for (; text.size() < large_bytes; ++count)
    text += item;
  text += u"</list>";
  const IXMLDOMDocumentPtr document = new_document();
  {
    const _bstr_t given = wide(text);
    std::u16string().swap(text);
    ASSERT_EQ(document->loadXML(given), VARIANT_TRUE);
  }
  const IXMLDOMNodeListPtr items = document->GetdocumentElement()->GetchildNodes();
  std::size_t found = 0;
  while (const IXMLDOMNodePtr node = items->nextNode()) {
    ++found;
    EXPECT_EQ(xml_narrow::value_of(*node->GetchildNodes()->nextNode()).size(), 4'002U);
  }
  EXPECT_EQ(found, count);
}

TEST(Size, a_hundred_megabytes_in_one_text_load_and_a_fault_at_their_end_is_told) {
  std::string text = "<a>" + std::string(large_bytes, 'x');
  const IXMLDOMDocumentPtr document = new_document();
  EXPECT_EQ(xml_narrow::load(*document, text), VARIANT_FALSE);
  EXPECT_EQ(document->GetparseError()->GeterrorCode(), 77);
  text += "</a>";
  EXPECT_EQ(xml_narrow::load(*document, text), VARIANT_TRUE);
  EXPECT_EQ(xml_narrow::value_of(*document->GetdocumentElement()->GetchildNodes()->nextNode()).size(), large_bytes);
}

TEST(Size, many_children_names_and_attributes_load) {
  std::string text = "<a>";
  for (int i = 0; i < 50'000; ++i)
    text += "<n" + std::to_string(i) + "/>";
  EXPECT_EQ(xml_of(load((text + "</a>").c_str())), text + "</a>\r\n");
  std::string attributes = "<a";
  for (int i = 0; i < 2'000; ++i)
    attributes += " n" + std::to_string(i) + "=\"\"";
  EXPECT_EQ(xml_of(load((attributes + "/>").c_str())), attributes + "/>\r\n");
}

TEST(Manners, nothing_is_written_to_standard_error) {
  testing::internal::CaptureStderr();
  for (const char* text : {"<a>", "", "<a x:b='1'/>", "<!DOCTYPE a><a/>", "<a xmlns='relative'/>", "<a xml:space='x'/>",
                           "<?xml version='9'?><a/>", "<a>&x;</a>", "\x01"})
    new_document()->loadXML(text);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Manners, a_warning_of_the_parser_is_no_error) {
  EXPECT_TRUE(model::loads("<a xmlns='relative'/>"));
  EXPECT_TRUE(model::loads("<a xml:space='x'/>"));
}

TEST(Manners, documents_of_several_threads_do_not_meet) {
  std::vector<std::thread> threads;
  std::vector<int> good(4);
  for (std::size_t t = 0; t < good.size(); ++t)
    threads.emplace_back([&good, t] {
      for (int i = 0; i < 200; ++i) {
        IXMLDOMDocumentPtr document;
        create_dom_document(&document);
        const std::string text = "<a" + std::to_string(t) + "><b>" + std::to_string(i) + "</b></a" +
                                 std::to_string(i % 2 == 0 ? t : 9) + ">";
        const bool loaded = document->loadXML(text.c_str()) == VARIANT_TRUE;
        if (loaded == (i % 2 == 0) && (!loaded || xml_of(document) == text + "\r\n")) ++good[t];
      }
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(good, std::vector<int>(4, 200));
}

}  // namespace
