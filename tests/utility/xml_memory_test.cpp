// Plan
//   Each allocation of the document model, of loading, walking and writing fails in turn: the failure is told by
//   E_OUTOFMEMORY, nothing leaks, and a document that could not be loaded has what it had
//   A document that cannot be made shows as E_POINTER at its first use
#include <functional>
#include <new>

#include "spcbase/utility/internal/xml_elements.h"
#include "tests/utility/failing_allocation.h"
#include "tests/utility/xml_words.h"

namespace {

using test_support::FailingAllocation;

// Long enough to be allocated, and to need more than one block for its nodes.
const char* const text =
    "<?xml version='1.0'?><list kind='a kind that is long enough to be allocated' xmlns:p='urn:p'><p:item p:a='1'/>"
    "<item>a text that is long enough to be allocated</item>one<item>two</item><!--c--><?pi d?><![CDATA[s]]>"
    "<a><b><c><d><e><f><g><h><i><j><k><l>deep</l></k></j></i></h></g></f></e></d></c></b></a></list>";

/// Runs with each allocation failing in turn. Returns how many runs failed.
int failures_of(const std::function<void()>& run) {
  int failed = 0;
  for (int k = 1; k < 1'000; ++k) {
    HRESULT code = S_OK;
    bool reached = false;
    {
      const FailingAllocation failing(k);
      code = xml_words::code_of(run);
      reached = FailingAllocation::reached();
    }
    if (!reached) return failed;
    EXPECT_EQ(code, E_OUTOFMEMORY) << "allocation " << k;
    ++failed;
  }
  ADD_FAILURE() << "no end of allocations";
  return failed;
}

TEST(Memory, that_runs_out_while_loading_leaves_what_was_loaded_before) {
  const IXMLDOMDocumentPtr document = load_xml("<before/>");
  const _bstr_t given(text);
  const int failed = failures_of([&] {
    if (document->loadXML(given) == VARIANT_FALSE) _com_issue_error(E_FAIL);
  });
  EXPECT_GT(failed, 5);
  EXPECT_EQ(get_elem_text(document->GetdocumentElement()), "one");
}

TEST(Memory, that_runs_out_at_any_time_of_a_load_changes_nothing) {
  const IXMLDOMDocumentPtr document = load_xml("<before/>");
  const _bstr_t given(text);
  for (int k = 1;; ++k) {
    {
      const FailingAllocation failing(k);
      xml_words::code_of([&] { document->loadXML(given); });
      if (!FailingAllocation::reached()) break;
    }
    ASSERT_EQ(document->Getxml(), _bstr_t("<before/>\r\n")) << k;
  }
}

TEST(Memory, that_runs_out_while_walking_and_writing_is_told) {
  const IXMLDOMDocumentPtr document = load_xml(text);
  EXPECT_GT(failures_of([&] {
              const IXMLDOMElementPtr root = document->GetdocumentElement();
              root->getAttribute("kind");
              const IXMLDOMNodeListPtr children = root->GetchildNodes();
              while (const IXMLDOMNodePtr child = children->nextNode()) {
                child->GetnodeName();
                child->GetnodeValue();
                child->GetchildNodes()->nextNode();
              }
              document->Getxml();
              document->GetparseError()->Getreason();
            }),
            10);
}

TEST(Memory, that_runs_out_while_building_and_moving_is_told) {
  const _bstr_t long_text(
      "a text that is long enough to be allocated, and longer than the first block of a new document");
  EXPECT_GT(failures_of([&] {
              IXMLDOMDocumentPtr first;
              _com_util::CheckError(create_dom_document(&first));
              IXMLDOMDocumentPtr second;
              _com_util::CheckError(create_dom_document(&second));
              const IXMLDOMElementPtr root = first->createElement("root");
              first->PutrefdocumentElement(root);
              for (int i = 0; i < 20; ++i) {
                const IXMLDOMElementPtr element = second->createElement("element");
                element->Puttext(long_text);
                element->setAttribute("name", long_text);
                root->appendChild(element);
              }
            }),
            20);
}

TEST(Memory, that_does_not_suffice_for_a_document_shows_at_its_first_use) {
  const _bstr_t given("<a/>");
  const FailingAllocation failing(1);
  EXPECT_EQ(xml_words::code_of([&] { load_xml(given); }), E_POINTER);
  EXPECT_TRUE(FailingAllocation::reached());
}

}  // namespace
