// Plan
//   load_xml and load_xml_text: what they return, message 1003 filled in, document types refused
//   get_elem_value and its companions; check_bool_value; the child walk and where it ends
//   get_spec_from_xml, get_spec_list_from_xml: what is kept, merged and replaced; what stays after a failure
//   Making elements; XMLSerializable through a class of its own; null pointers
#include "spcbase/utility/xml.h"

#include <gtest/gtest.h>

#include "spcbase/utility/internal/xml_elements.h"
#include "tests/utility/xml_words.h"

namespace {

using xml_words::code_of;
using xml_words::db_failure_of;
using xml_words::root_of;

TEST(LoadXml, gives_a_document_that_lives_by_itself) {
  const IXMLDOMDocumentPtr document = load_xml("<a><b>1</b></a>");
  EXPECT_EQ(document->Getxml(), _bstr_t("<a><b>1</b></a>\r\n"));
}

TEST(LoadXml, of_an_empty_string_fails_with_the_parsers_code_reason_line_and_position) {
  const char* const message = "Load xml failed:\n\nerror code: 4\nreason: Document is empty\nline: 1\nline position: 1";
  EXPECT_EQ(db_failure_of([] { load_xml(""); }), message);
  EXPECT_EQ(db_failure_of([] { load_xml(_bstr_t()); }), message);
  EXPECT_EQ(db_failure_of([] { load_xml_text(""); }), message);
}

TEST(LoadXml, fills_the_message_with_where_the_text_is_wrong) {
  EXPECT_EQ(db_failure_of([] { load_xml("<a>\n<b>\n</a>"); }),
            "Load xml failed:\n\nerror code: 76\nreason: Opening and ending tag mismatch: b line 2 and a\nline: 3\n"
            "line position: 5");
}

TEST(LoadXml, refuses_a_document_type_declaration_with_message_1003) {
  const CString message = db_failure_of([] { load_xml("<!DOCTYPE a [<!ENTITY x 'y'>]><a>&x;</a>"); });
  EXPECT_EQ(message.Left(28), "Load xml failed:\n\nerror code");
  EXPECT_NE(message.Find("A document type declaration is not allowed"), -1);
}

TEST(LoadXmlText, loads_narrow_text) {
  EXPECT_EQ(get_elem_text(load_xml_text("<a>\xC3\xA4</a>")->GetdocumentElement()), "\xC3\xA4");
  EXPECT_NE(db_failure_of([] { load_xml_text(CString("<a/>\0<b/>", 9)); }).Find("invalid Char value 0x0"), -1);
}

TEST(GetElemValue, of_an_empty_element_is_an_empty_text) {
  const _bstr_t value = get_elem_value(IXMLDOMNodePtr(root_of("<a/>")));
  EXPECT_FALSE(!value);
  EXPECT_EQ(value.length(), 0U);
  EXPECT_EQ(get_elem_text(root_of("<a></a>")), "");
  EXPECT_EQ(get_elem_text(root_of("<a> \n </a>")), "");
}

TEST(GetElemValue, is_the_first_text_whatever_stands_before_it) {
  EXPECT_EQ(get_elem_value(root_of("<a><!--c--><b>x</b>first<b/>second</a>")), _bstr_t("first"));
  EXPECT_EQ(get_elem_value(root_of("<a>only</a>")), _bstr_t("only"));
  EXPECT_EQ(get_elem_text(root_of("<a>one<!--c-->two</a>")), "one");
}

TEST(GetElemValue, of_an_element_that_holds_only_child_elements_fails_with_message_1002) {
  EXPECT_EQ(db_failure_of([] { get_elem_value(root_of("<a><b>x</b></a>")); }), "XML error.");
}

TEST(GetElemValue, does_not_take_a_cdata_section_for_a_text) {
  EXPECT_EQ(db_failure_of([] { get_elem_value(root_of("<a><![CDATA[x]]></a>")); }), "XML error.");
  EXPECT_EQ(get_elem_text(root_of("<a><![CDATA[x]]>y</a>")), "y");
}

TEST(GetElemValue, of_what_is_no_element_fails_with_message_1002) {
  const IXMLDOMDocumentPtr document = load_xml("<a>text</a>");
  const IXMLDOMNodePtr text = document->GetdocumentElement()->GetchildNodes()->nextNode();
  EXPECT_EQ(db_failure_of([&] { get_elem_value(text); }), "XML error.");
  EXPECT_EQ(db_failure_of([&] { get_elem_value(document); }), "XML error.");
}

TEST(GetElemValue, of_a_null_pointer_is_a_pointer_error) {
  EXPECT_EQ(code_of([] { get_elem_value(nullptr); }), E_POINTER);
  EXPECT_EQ(code_of([] { get_elem_text(nullptr); }), E_POINTER);
}

TEST(GetElemInt, reads_what_atoi_reads) {
  EXPECT_EQ(get_elem_int(root_of("<a>-17</a>")), -17);
  EXPECT_EQ(get_elem_int(root_of("<a>  12px</a>")), 12);
  EXPECT_EQ(get_elem_int(root_of("<a>none</a>")), 0);
  EXPECT_EQ(get_elem_int(root_of("<a/>")), 0);
}

TEST(GetElemInt, of_a_number_beyond_int_is_the_nearest_int) {
  EXPECT_EQ(get_elem_int(root_of("<a>2147483648</a>")), 2'147'483'647);
  EXPECT_EQ(get_elem_int(root_of("<a>-2147483648</a>")), -2'147'483'647 - 1);
  EXPECT_EQ(get_elem_int(root_of("<a>-99999999999999999999</a>")), -2'147'483'647 - 1);
}

TEST(CheckBoolValue, knows_three_words_in_any_case) {
  for (const char* word : {"TRUE", "true", "tRuE", "Yes", "YES", "yes", "1"})
    EXPECT_TRUE(check_bool_value(word)) << word;
  for (const char* word : {"0", "on", "false", "", " true", "true ", "yess", "11", "ja"})
    EXPECT_FALSE(check_bool_value(word)) << word;
  EXPECT_FALSE(check_bool_value(nullptr));
}

std::string walked(const char* text) {
  std::string names;
  walk_child_elements(root_of(text), [&](const CString& name, const IXMLDOMElementPtr& child) {
    names += name.GetString();
    names += child->hasChildNodes() == VARIANT_TRUE ? "+ " : " ";
  });
  return names;
}

TEST(ChildWalk, visits_child_elements_in_order_with_their_names) {
  EXPECT_EQ(walked("<a> <b>1</b> <C/> <b/> <p:d xmlns:p='u'/> </a>"), "b+ C b p:d ");
  EXPECT_EQ(walked("<a/>"), "");
}

TEST(ChildWalk, ends_quietly_at_the_first_child_that_is_no_element) {
  for (const char* obstacle : {"<!--c-->", "<?pi?>", "text", "<![CDATA[ ]]>", "&#32;"})
    EXPECT_EQ(walked((std::string("<a><b/>") + obstacle + "<c/></a>").c_str()), "b ") << obstacle;
}

TEST(ChildWalk, of_a_null_pointer_is_a_pointer_error) {
  EXPECT_EQ(code_of([] { walk_child_elements(nullptr, [](const CString&, const IXMLDOMElementPtr&) {}); }), E_POINTER);
}

TEST(GetSpec, keeps_what_has_no_child_and_takes_the_later_of_two) {
  CString name = "before";
  CString value = "kept";
  get_spec_from_xml(root_of("<s><name>first</name><other/><Value>x</Value><name>last</name></s>"), name, value);
  EXPECT_EQ(name, "last");
  EXPECT_EQ(value, "kept");
  get_spec_from_xml(root_of("<s><value/></s>"), name, value);
  EXPECT_EQ(name, "last");
  EXPECT_EQ(value, "");
}

TEST(GetSpec, leaves_what_it_read_before_a_failure) {
  CString name;
  CString value = "kept";
  EXPECT_EQ(db_failure_of([&] { get_spec_from_xml(root_of("<s><name>n</name><value><b/></value></s>"), name, value); }),
            "XML error.");
  EXPECT_EQ(name, "n");
  EXPECT_EQ(value, "kept");
  EXPECT_EQ(code_of([&] { get_spec_from_xml(nullptr, name, value); }), E_POINTER);
}

using Texts = std::vector<CString>;

std::string spec(const char* name, const char* value) {
  return std::string("<specification><name>") + name + "</name><value>" + value + "</value></specification>";
}

void merge(const std::string& specifications, Texts& names, Texts& values) {
  get_spec_list_from_xml(root_of(("<list>" + specifications + "</list>").c_str()), names, values);
}

TEST(GetSpecList, over_the_names_a_b_a_has_two_entries_and_the_second_value_of_a) {
  Texts names, values;
  merge(spec("a", "1") + spec("b", "2") + spec("a", "3"), names, values);
  EXPECT_EQ(names, (Texts{"a", "b"}));
  EXPECT_EQ(values, (Texts{"3", "2"}));
}

TEST(GetSpecList, ends_silently_at_a_comment_between_two_specifications) {
  Texts names, values;
  merge(spec("a", "1") + "<!-- c -->" + spec("b", "2"), names, values);
  EXPECT_EQ(names, (Texts{"a"}));
  EXPECT_EQ(values, (Texts{"1"}));
}

TEST(GetSpecList, gives_a_specification_without_a_value_an_empty_one) {
  Texts names = {"a"}, values = {"old"};
  merge("<specification><name>a</name></specification><specification/>", names, values);
  EXPECT_EQ(names, (Texts{"a", ""}));
  EXPECT_EQ(values, (Texts{"", ""}));
}

TEST(GetSpecList, merges_into_what_the_vectors_held) {
  Texts names = {"x", "a", "x"}, values = {"1", "2", "3"};
  merge(spec("x", "new") + spec("A", "other case") + "<Specification/>" + spec("", "nameless") + spec("", "again"),
        names, values);
  EXPECT_EQ(names, (Texts{"x", "a", "x", "A", ""}));
  EXPECT_EQ(values, (Texts{"new", "2", "3", "other case", "again"}));
}

TEST(GetSpecList, keeps_what_was_merged_before_a_failure) {
  Texts names, values;
  EXPECT_EQ(db_failure_of([&] { merge(spec("a", "1") + spec("b", "<c/>") + spec("d", "2"), names, values); }),
            "XML error.");
  EXPECT_EQ(names, (Texts{"a"}));
  EXPECT_EQ(values, (Texts{"1"}));
  EXPECT_EQ(code_of([&] { get_spec_list_from_xml(nullptr, names, values); }), E_POINTER);
}

TEST(GetSpecList, takes_a_long_list_in_one_pass) {
  std::string text;
  for (int i = 0; i < 20'000; ++i)
    text += spec(std::to_string(i).c_str(), "v");
  Texts names, values;
  merge(text, names, values);
  EXPECT_EQ(names.size(), 20'000U);
  EXPECT_EQ(names.back(), "19999");
}

TEST(MakeElement, creates_elements_that_stand_nowhere_yet) {
  const IXMLDOMDocumentPtr document = make_document();
  const IXMLDOMElementPtr root = make_text_element(document, "root", "a<b");
  EXPECT_FALSE(document->GetdocumentElement());
  set_int_attribute(root, "version", -3);
  document->PutrefdocumentElement(root);
  EXPECT_EQ(document->Getxml(), _bstr_t("<root version=\"-3\">a&lt;b</root>\r\n"));
  document->PutrefdocumentElement(make_int_element(document, "number", -2147483647 - 1));
  EXPECT_EQ(document->Getxml(), _bstr_t("<number>-2147483648</number>\r\n"));
}

TEST(MakeElement, refuses_null_pointers_and_texts_that_xml_does_not_have) {
  const IXMLDOMDocumentPtr document = make_document();
  EXPECT_EQ(code_of([] { make_text_element(nullptr, "a", "t"); }), E_POINTER);
  EXPECT_EQ(code_of([] { make_int_element(nullptr, "a", 1); }), E_POINTER);
  EXPECT_EQ(code_of([] { set_int_attribute(nullptr, "a", 1); }), E_POINTER);
  EXPECT_EQ(code_of([&] { make_text_element(document, "a", "\x01"); }), XML_E_BADCHARDATA);
  EXPECT_EQ(code_of([&] { make_text_element(document, "1", "t"); }), XML_E_BADSTARTNAMECHAR);
}

/// A thing with one number.
class Numbered : public XMLSerializable {
 public:
  IXMLDOMElementPtr get_xml(int version, IXMLDOMDocumentPtr& document) const override {
    const IXMLDOMElementPtr element = document->createElement("numbered");
    set_int_attribute(element, "version", version);
    element->appendChild(make_int_element(document, "number", number));
    return element;
  }
  void set_xml(int, const IXMLDOMElementPtr& element) override {
    walk_child_elements(element, [&](const CString& name, const IXMLDOMElementPtr& child) {
      if (name == "number") number = get_elem_int(child);
    });
  }

  int number = 0;
};

TEST(XmlSerializable, carries_an_object_through_a_document) {
  Numbered written;
  written.number = 42;
  IXMLDOMDocumentPtr document = make_document();
  document->PutrefdocumentElement(written.get_xml(2, document));
  EXPECT_EQ(document->Getxml(), _bstr_t("<numbered version=\"2\"><number>42</number></numbered>\r\n"));
  const std::unique_ptr<XMLSerializable> read = std::make_unique<Numbered>();
  read->set_xml(2, load_xml(document->Getxml())->GetdocumentElement());
  EXPECT_EQ(static_cast<const Numbered&>(*read).number, 42);
}

}  // namespace
