// Plan
//   Interfaces: what each object answers to; null pointers and null texts
//   Nodes: names, values, children, live lists; what cannot stand where; text of every kind of node
//   Attributes; the root; properties of a document; characters and names that XML does not have
//   Lifetime: nodes outlive their document's pointer, a new load, being taken out, being moved between documents
#include "spcbase/platform/xml/narrow.h"
#include "tests/platform/xml/model.h"

namespace {

using model::code_of;
using model::load;
using model::narrow;
using model::new_document;
using model::value_of;
using model::xml_of;

template <class T>
HRESULT answer_to(IUnknown* object) {
  ATL::CComPtr<T> found;
  return object->QueryInterface(interface_id<T>::value, reinterpret_cast<void**>(&found));
}

IXMLDOMNodePtr child_of(const IXMLDOMNodePtr& parent, int index = 0) {
  const IXMLDOMNodeListPtr children = parent->GetchildNodes();
  IXMLDOMNodePtr child = children->nextNode();
  for (; index > 0; --index)
    child = children->nextNode();
  return child;
}

TEST(Interfaces, a_document_answers_to_both_of_its_generations) {
  const IXMLDOMDocumentPtr document = new_document();
  EXPECT_EQ(answer_to<IXMLDOMDocument2>(document), S_OK);
  EXPECT_EQ(answer_to<IXMLDOMDocument>(document), S_OK);
  EXPECT_EQ(answer_to<IXMLDOMNode>(document), S_OK);
  EXPECT_EQ(answer_to<IDispatch>(document), S_OK);
  EXPECT_EQ(answer_to<IUnknown>(document), S_OK);
  EXPECT_EQ(answer_to<IXMLDOMElement>(document), E_NOINTERFACE);
  EXPECT_EQ(document->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST(Interfaces, only_elements_answer_as_elements) {
  const IXMLDOMDocumentPtr document = load("<a>t<!--c--></a>");
  const IXMLDOMNodePtr root = document->GetdocumentElement();
  EXPECT_EQ(answer_to<IXMLDOMElement>(root), S_OK);
  EXPECT_EQ(answer_to<IXMLDOMElement>(child_of(root)), E_NOINTERFACE);
  EXPECT_EQ(answer_to<IXMLDOMNode>(child_of(root)), S_OK);
  EXPECT_EQ(answer_to<IXMLDOMDocument>(root), E_NOINTERFACE);
  EXPECT_EQ(root->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST(Interfaces, a_pointer_of_another_kind_asks_for_its_interface) {
  const IXMLDOMDocumentPtr document = load("<a>t</a>");
  const IXMLDOMNodePtr root = document->GetdocumentElement();
  EXPECT_TRUE(IXMLDOMElementPtr(root));
  EXPECT_FALSE(IXMLDOMElementPtr(child_of(root)));
  EXPECT_FALSE(IXMLDOMElementPtr(IXMLDOMNodePtr()));
  EXPECT_TRUE(IXMLDOMDocument2Ptr(document));
}

TEST(Interfaces, lists_and_errors_answer_to_their_own) {
  const IXMLDOMDocumentPtr document = new_document();
  EXPECT_EQ(answer_to<IXMLDOMNodeList>(document->GetchildNodes()), S_OK);
  EXPECT_EQ(answer_to<IXMLDOMNode>(document->GetchildNodes()), E_NOINTERFACE);
  EXPECT_EQ(answer_to<IXMLDOMParseError>(document->GetparseError()), S_OK);
  EXPECT_EQ(answer_to<IXMLDOMNode>(document->GetparseError()), E_NOINTERFACE);
  EXPECT_EQ(document->GetparseError()->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(document->GetchildNodes()->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST(Interfaces, a_null_place_for_a_document_is_refused) { EXPECT_EQ(create_dom_document(nullptr), E_INVALIDARG); }

TEST(Interfaces, a_null_pointer_throws_when_it_is_used) {
  const IXMLDOMDocumentPtr document;
  EXPECT_EQ(code_of([&] { document->Putasync(VARIANT_FALSE); }), E_POINTER);
  const IXMLDOMElementPtr element;
  EXPECT_EQ(code_of([&] { element->GetchildNodes(); }), E_POINTER);
}

TEST(Node, has_the_name_and_value_of_its_kind) {
  const IXMLDOMDocumentPtr document = load("<a>t<![CDATA[s]]><!--c--><?target data?></a>");
  const IXMLDOMNodePtr root = document->GetdocumentElement();
  const struct {
    DOMNodeType type;
    const char* name;
    const char* value;
  } expected[] = {{NODE_TEXT, "#text", "t"},
                  {NODE_CDATA_SECTION, "#cdata-section", "s"},
                  {NODE_COMMENT, "#comment", "c"},
                  {NODE_PROCESSING_INSTRUCTION, "target", "data"}};
  int index = 0;
  for (const auto& each : expected) {
    const IXMLDOMNodePtr node = child_of(root, index++);
    EXPECT_EQ(node->GetnodeType(), each.type);
    EXPECT_EQ(narrow(node->GetnodeName()), each.name);
    EXPECT_EQ(value_of(node->GetnodeValue()), each.value);
  }
  EXPECT_EQ(narrow(document->GetnodeName()), "#document");
  EXPECT_EQ(document->GetnodeType(), NODE_DOCUMENT);
  EXPECT_EQ(document->GetnodeValue().vt, VT_NULL);
  EXPECT_EQ(root->GetnodeValue().vt, VT_NULL);
}

TEST(NodeList, reaches_a_child_that_is_appended_meanwhile) {
  const IXMLDOMDocumentPtr document = load("<a><b/></a>");
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  const IXMLDOMNodeListPtr children = root->GetchildNodes();
  EXPECT_EQ(narrow(children->nextNode()->GetnodeName()), "b");
  EXPECT_FALSE(children->nextNode());
  root->appendChild(document->createElement("c"));
  EXPECT_EQ(narrow(children->nextNode()->GetnodeName()), "c");
  EXPECT_FALSE(children->nextNode());
}

TEST(NodeList, ends_when_its_place_has_moved_elsewhere) {
  const IXMLDOMDocumentPtr document = load("<a><b/><c/></a>");
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  const IXMLDOMNodeListPtr children = root->GetchildNodes();
  const IXMLDOMNodePtr b = children->nextNode();
  document->createElement("other")->appendChild(b);
  EXPECT_FALSE(children->nextNode());
}

TEST(AppendChild, returns_the_child_and_moves_it_last) {
  const IXMLDOMDocumentPtr document = load("<a><b/><c/></a>");
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  const IXMLDOMNodePtr b = child_of(root);
  EXPECT_EQ(root->appendChild(b).GetInterfacePtr(), b.GetInterfacePtr());
  EXPECT_EQ(xml_of(document), "<a><c/><b/></a>\r\n");
  root->appendChild(b);
  EXPECT_EQ(xml_of(document), "<a><c/><b/></a>\r\n");
}

TEST(AppendChild, refuses_what_cannot_stand_there) {
  const IXMLDOMDocumentPtr document = load("<a><b><c/></b>t</a>");
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  const IXMLDOMNodePtr b = child_of(root);
  const IXMLDOMNodePtr text = child_of(root, 1);
  EXPECT_EQ(code_of([&] { root->appendChild(nullptr); }), E_INVALIDARG);
  EXPECT_EQ(code_of([&] { root->appendChild(root); }), E_FAIL);
  EXPECT_EQ(code_of([&] { child_of(b)->appendChild(root); }), E_FAIL);
  EXPECT_EQ(code_of([&] { root->appendChild(document); }), E_FAIL);
  EXPECT_EQ(code_of([&] { document->appendChild(text); }), E_FAIL);
  EXPECT_EQ(code_of([&] { document->appendChild(b); }), E_FAIL);
  EXPECT_EQ(code_of([&] { text->appendChild(b); }), E_FAIL);
  EXPECT_EQ(xml_of(document), "<a><b><c/></b>t</a>\r\n");
}

TEST(AppendChild, lets_a_document_have_its_first_root) {
  const IXMLDOMDocumentPtr document = new_document();
  const IXMLDOMElementPtr root = document->createElement("a");
  document->appendChild(root);
  document->appendChild(root);
  EXPECT_EQ(xml_of(document), "<a/>\r\n");
}

TEST(PutText, replaces_children_and_leaves_none_when_empty) {
  const IXMLDOMDocumentPtr document = load("<a>t<b/>u</a>");
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  root->Puttext("new");
  EXPECT_EQ(xml_of(document), "<a>new</a>\r\n");
  root->Puttext(_bstr_t());
  EXPECT_EQ(root->hasChildNodes(), VARIANT_FALSE);
  EXPECT_EQ(xml_of(document), "<a/>\r\n");
}

TEST(PutText, leaves_a_text_alone_that_somebody_holds) {
  const IXMLDOMDocumentPtr document = load("<a>old</a>");
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  const IXMLDOMNodePtr held = child_of(root);
  root->Puttext("new");
  EXPECT_EQ(value_of(held->GetnodeValue()), "old");
  EXPECT_EQ(value_of(child_of(root)->GetnodeValue()), "new");
}

TEST(PutText, grows_and_shrinks_again_and_again) {
  const IXMLDOMDocumentPtr document = load("<a/>");
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  for (std::size_t length : {1U, 100U, 3U, 1000U, 999U, 0U, 5U}) {
    const std::string text(length, 'x');
    root->Puttext(text.c_str());
    EXPECT_EQ(xml_of(document), length == 0 ? "<a/>\r\n" : "<a>" + text + "</a>\r\n");
  }
}

TEST(PutText, sets_the_text_of_other_nodes_unless_it_would_end_them) {
  const IXMLDOMDocumentPtr document = load("<a>t<![CDATA[s]]><!--c--><?p d?></a>");
  const IXMLDOMNodePtr root = document->GetdocumentElement();
  const char* const fatal[] = {nullptr, "a]]>b", "a--b", "a?>b"};
  for (int i = 0; i < 4; ++i) {
    const IXMLDOMNodePtr node = child_of(root, i);
    if (fatal[i] != nullptr) {
      EXPECT_EQ(code_of([&] { node->Puttext(fatal[i]); }), XML_E_BADCHARDATA);
    }
    node->Puttext("new");
  }
  EXPECT_EQ(code_of([&] { child_of(root, 2)->Puttext("ends-"); }), XML_E_BADCHARDATA);
  EXPECT_EQ(xml_of(document), "<a>new<![CDATA[new]]><!--new--><?p new?></a>\r\n");
  EXPECT_EQ(code_of([&] { document->Puttext("x"); }), E_FAIL);
}

TEST(PutText, refuses_characters_that_xml_does_not_have) {
  const IXMLDOMElementPtr element = new_document()->createElement("a");
  const std::u16string refused[] = {std::u16string(u"a\0b", 3),
                                    u"\x01",
                                    u"\x1F",
                                    u"\xFFFE",
                                    u"\xFFFF",
                                    u"a\xD800",
                                    u"\xDC00",
                                    u"\xD800x",
                                    u"\xDC00\xD800"};
  for (const std::u16string& text : refused) {
    const _bstr_t given(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())), false);
    EXPECT_EQ(code_of([&] { element->Puttext(given); }), XML_E_BADCHARDATA);
    EXPECT_EQ(code_of([&] { element->setAttribute("b", given); }), XML_E_BADCHARDATA);
  }
  EXPECT_EQ(element->hasChildNodes(), VARIANT_FALSE);
  EXPECT_EQ(code_of([&] { element->Puttext(u"\t\n\r \x7F\x85\xD7FF\xE000\xFFFD\xD83D\xDE00"); }), S_OK);
}

TEST(Attribute, is_read_back_and_absent_ones_are_null) {
  const IXMLDOMElementPtr element = new_document()->createElement("a");
  element->setAttribute("version", "3");
  EXPECT_EQ(value_of(element->getAttribute("version")), "3");
  element->setAttribute("version", "");
  EXPECT_EQ(value_of(element->getAttribute("version")), "");
  EXPECT_EQ(element->getAttribute("Version").vt, VT_NULL);
  EXPECT_EQ(element->getAttribute(_bstr_t()).vt, VT_NULL);
}

TEST(Attribute, takes_values_that_are_strings_or_change_into_them) {
  const IXMLDOMElementPtr element = new_document()->createElement("a");
  element->setAttribute("number", 7);
  EXPECT_EQ(value_of(element->getAttribute("number")), "7");
  _variant_t null;
  null.vt = VT_NULL;
  EXPECT_EQ(code_of([&] { element->setAttribute("number", null); }), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(value_of(element->getAttribute("number")), "7");
}

TEST(Attribute, with_a_prefix_and_declarations_are_read_from_a_loaded_text) {
  const IXMLDOMElementPtr root =
      load("<a xmlns='urn:d' xmlns:p='urn:p' p:b='1' b='2' xml:space='default'/>")->GetdocumentElement();
  EXPECT_EQ(value_of(root->getAttribute("p:b")), "1");
  EXPECT_EQ(value_of(root->getAttribute("b")), "2");
  EXPECT_EQ(value_of(root->getAttribute("xmlns")), "urn:d");
  EXPECT_EQ(value_of(root->getAttribute("xmlns:p")), "urn:p");
  EXPECT_EQ(value_of(root->getAttribute("xml:space")), "default");
}

TEST(Attribute, cannot_declare_a_namespace) {
  const IXMLDOMElementPtr element = new_document()->createElement("a");
  EXPECT_EQ(code_of([&] { element->setAttribute("xmlns", "urn:x"); }), E_FAIL);
  EXPECT_EQ(code_of([&] { element->setAttribute("xmlns:p", "urn:x"); }), E_FAIL);
}

TEST(Names, that_xml_does_not_have_are_refused) {
  const IXMLDOMDocumentPtr document = new_document();
  const IXMLDOMElementPtr element = document->createElement("a");
  const std::pair<std::u16string, HRESULT> refused[] = {{u"", E_FAIL},
                                                        {u"-a", XML_E_BADSTARTNAMECHAR},
                                                        {u"1", XML_E_BADSTARTNAMECHAR},
                                                        {u" a", XML_E_BADSTARTNAMECHAR},
                                                        {u"a b", XML_E_BADNAMECHAR},
                                                        {u"a>", XML_E_BADNAMECHAR},
                                                        {u"a:b:c", XML_E_BADNAMECHAR},
                                                        {u":a", XML_E_BADSTARTNAMECHAR},
                                                        {u"a:", XML_E_BADNAMECHAR},
                                                        {u"a\xD800", XML_E_BADNAMECHAR},
                                                        {std::u16string(u"a\0b", 3), XML_E_BADNAMECHAR}};
  for (const auto& [name, code] : refused) {
    const _bstr_t given(SysAllocStringLen(name.data(), static_cast<UINT>(name.size())), false);
    EXPECT_EQ(code_of([&] { document->createElement(given); }), code) << narrow(given);
    EXPECT_EQ(code_of([&] { element->setAttribute(given, "v"); }), code) << narrow(given);
  }
  EXPECT_EQ(code_of([&] { document->createElement("xmlns:a"); }), E_FAIL);
  EXPECT_EQ(code_of([&] { document->createElement("\xC3\xA4-\xE4\xB8\xAD.1"); }), S_OK);
}

TEST(Root, is_replaced_in_its_place) {
  const IXMLDOMDocumentPtr document = load("<!--1--><a/><!--2-->");
  const IXMLDOMElementPtr old = document->GetdocumentElement();
  document->PutrefdocumentElement(document->createElement("b"));
  EXPECT_EQ(xml_of(document), "<!--1-->\r\n<b/>\r\n<!--2-->\r\n");
  document->PutrefdocumentElement(document->GetdocumentElement());
  EXPECT_EQ(xml_of(document), "<!--1-->\r\n<b/>\r\n<!--2-->\r\n");
  EXPECT_EQ(narrow(old->GetnodeName()), "a");
  EXPECT_EQ(code_of([&] { document->PutrefdocumentElement(nullptr); }), E_INVALIDARG);
}

TEST(Root, can_be_an_element_from_further_down) {
  const IXMLDOMDocumentPtr document = load("<a><b><c/></b></a>");
  document->PutrefdocumentElement(IXMLDOMElementPtr(child_of(document->GetdocumentElement())));
  EXPECT_EQ(xml_of(document), "<b><c/></b>\r\n");
}

TEST(Property, document_types_are_prohibited_and_stay_so) {
  const IXMLDOMDocument2Ptr document = new_document();
  EXPECT_EQ(code_of([&] { document->setProperty("ProhibitDTD", true); }), S_OK);
  EXPECT_EQ(code_of([&] { document->setProperty("ProhibitDTD", false); }), E_INVALIDARG);
  EXPECT_EQ(code_of([&] { document->setProperty("Prohibit", true); }), E_INVALIDARG);
}

TEST(Lifetime, a_node_outlives_the_pointer_to_its_document) {
  IXMLDOMElementPtr root;
  IXMLDOMNodeListPtr children;
  {
    const IXMLDOMDocumentPtr document = load("<a><b>text</b></a>");
    root = document->GetdocumentElement();
    children = root->GetchildNodes();
  }
  root.Release();
  const IXMLDOMNodePtr b = children->nextNode();
  children.Release();
  EXPECT_EQ(value_of(child_of(b)->GetnodeValue()), "text");
  b->Puttext("other");
  EXPECT_EQ(value_of(child_of(b)->GetnodeValue()), "other");
}

TEST(Lifetime, an_element_that_was_never_attached_outlives_its_document) {
  const IXMLDOMElementPtr alone = new_document()->createElement("a");
  alone->Puttext("t");
  EXPECT_EQ(value_of(child_of(alone)->GetnodeValue()), "t");
}

TEST(Lifetime, nodes_of_an_earlier_load_stay_usable_and_can_come_back) {
  const IXMLDOMDocumentPtr document = load("<a><b>1</b></a>");
  const IXMLDOMNodePtr b = child_of(document->GetdocumentElement());
  EXPECT_EQ(document->loadXML("<c/>"), VARIANT_TRUE);
  EXPECT_EQ(value_of(child_of(b)->GetnodeValue()), "1");
  document->GetdocumentElement()->appendChild(b);
  EXPECT_EQ(xml_of(document), "<c><b>1</b></c>\r\n");
}

TEST(Lifetime, a_node_moves_between_documents_and_both_may_go) {
  IXMLDOMNodePtr moved;
  IXMLDOMDocumentPtr target = load("<target/>");
  {
    IXMLDOMDocumentPtr source = load("<source><moved>m</moved><stays/></source>");
    moved = child_of(source->GetdocumentElement());
    target->GetdocumentElement()->appendChild(moved);
    EXPECT_EQ(xml_of(source), "<source><stays/></source>\r\n");
    // What one document makes can stand below what came from the other.
    moved->appendChild(target->createElement("t"));
    moved->appendChild(source->createElement("s"));
  }
  EXPECT_EQ(xml_of(target), "<target><moved>m<t/><s/></moved></target>\r\n");
  target.Release();
  EXPECT_EQ(narrow(child_of(moved, 2)->GetnodeName()), "s");
}

TEST(Lifetime, three_documents_that_met_in_any_order_end_together) {
  IXMLDOMDocumentPtr first = load("<first/>");
  IXMLDOMDocumentPtr second = load("<second/>");
  IXMLDOMDocumentPtr third = load("<third/>");
  second->GetdocumentElement()->appendChild(third->GetdocumentElement());
  first->GetdocumentElement()->appendChild(second->GetdocumentElement());
  third->appendChild(third->createElement("new"));
  second.Release();
  EXPECT_EQ(xml_of(first), "<first><second><third/></second></first>\r\n");
  first.Release();
  EXPECT_EQ(xml_of(third), "<new/>\r\n");
}

TEST(Lifetime, references_are_counted) {
  const IXMLDOMElementPtr element = new_document()->createElement("a");
  EXPECT_EQ(element->AddRef(), 2U);
  EXPECT_EQ(element->Release(), 1U);
}

/// An element of another implementation; nothing but its count is ever asked.
class Foreign final : public IXMLDOMElement {
 public:
  HRESULT QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG AddRef() override { return 1; }
  ULONG Release() override { return 1; }
  DOMNodeType GetnodeType() override { return NODE_ELEMENT; }
  _bstr_t GetnodeName() override { return "foreign"; }
  _variant_t GetnodeValue() override { return {}; }
  VARIANT_BOOL hasChildNodes() override { return VARIANT_FALSE; }
  IXMLDOMNodeListPtr GetchildNodes() override { return nullptr; }
  IXMLDOMNodePtr appendChild(IXMLDOMNode*) override { return nullptr; }
  void Puttext(const _bstr_t&) override {}
  _variant_t getAttribute(const _bstr_t&) override { return {}; }
  void setAttribute(const _bstr_t&, const _variant_t&) override {}
};

TEST(Foreign, objects_of_another_implementation_are_refused) {
  Foreign foreign;
  const IXMLDOMDocumentPtr document = load("<a/>");
  EXPECT_EQ(code_of([&] { document->GetdocumentElement()->appendChild(&foreign); }), E_INVALIDARG);
  EXPECT_EQ(code_of([&] { document->PutrefdocumentElement(&foreign); }), E_INVALIDARG);
  EXPECT_EQ(code_of([&] { xml_narrow::name_of(foreign); }), E_NOINTERFACE);
}

TEST(Narrow, operations_do_what_the_wide_ones_do) {
  const IXMLDOMDocumentPtr document = new_document();
  EXPECT_EQ(xml_narrow::load(*document, "<a>\xC3\xA4</a>"), VARIANT_TRUE);
  const IXMLDOMNodePtr text = child_of(document->GetdocumentElement());
  EXPECT_EQ(xml_narrow::name_of(*text), "#text");
  EXPECT_EQ(xml_narrow::value_of(*text), "\xC3\xA4");
  xml_narrow::put_text(*document->GetdocumentElement(),
                       "a\xFF"
                       "b");
  EXPECT_EQ(xml_narrow::xml_of(*document),
            "<a>a\xEF\xBF\xBD"
            "b</a>\r\n");
  EXPECT_EQ(code_of([&] { xml_narrow::put_text(*text, std::string_view("a\0b", 3)); }), XML_E_BADCHARDATA);
  EXPECT_EQ(code_of([&] { xml_narrow::create_element(*document, "a\xFF"); }), XML_E_BADNAMECHAR);
  EXPECT_EQ(xml_narrow::load(*document, std::string_view("<a/>\0", 5)), VARIANT_FALSE);
  EXPECT_EQ(xml_narrow::load(*document, "<a>\xFF</a>"), VARIANT_TRUE);
  EXPECT_EQ(xml_narrow::xml_of(*document), "<a>\xEF\xBF\xBD</a>\r\n");
}

TEST(Narrow, a_text_may_be_set_to_a_part_of_itself) {
  const IXMLDOMDocumentPtr document = load("<a/>");
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  xml_narrow::put_text(*root, "abcdef");
  const std::string_view part = xml_narrow::value_of(*child_of(root)).substr(2);
  xml_narrow::put_text(*root, part);
  EXPECT_EQ(xml_narrow::xml_of(*document), "<a>cdef</a>\r\n");
}

}  // namespace
