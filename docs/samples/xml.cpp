// A host that keeps its settings as XML: it writes a definition, loads it again, and tells what is wrong with a bad
// text.
#include <cstdio>
#include <vector>

#include "spcbase/utility/properties.h"
#include "spcbase/utility/xml.h"

namespace {

IXMLDOMDocumentPtr new_document() {
  IXMLDOMDocumentPtr document;
  _com_util::CheckError(create_dom_document(&document));
  return document;
}

// An element belongs to the document that created it, and stands where it is appended.
_bstr_t write_definition(const spcbaseutil::PropertyVec& settings) {
  IXMLDOMDocumentPtr document = new_document();
  const IXMLDOMElementPtr root = document->createElement("chart");
  root->setAttribute("version", "1");
  const IXMLDOMElementPtr title = document->createElement("title");
  title->Puttext("Bohrung < 8 mm");
  root->appendChild(title);
  root->appendChild(settings.get_xml(document));
  document->PutrefdocumentElement(root);
  return document->Getxml();
}

void read_definition(const _bstr_t& text) {
  const IXMLDOMElementPtr root = load_xml(text)->GetdocumentElement();
  const IXMLDOMNodeListPtr children = root->GetchildNodes();
  while (const IXMLDOMElementPtr child = children->nextNode()) {
    const CString name(child->GetnodeName());
    if (name == "title") {
      std::printf("title: %s\n", static_cast<const char*>(get_elem_value(child)));
    } else if (name == "properties") {
      spcbaseutil::PropertyVec settings;
      settings.set_xml(child);
      for (const spcbaseutil::Property& setting : settings)
        std::printf("%s: \"%s\"\n", setting.name.GetString(), setting.value.GetString());
    }
  }
}

void read_specifications() {
  const IXMLDOMDocumentPtr document = load_xml(
      "<filter>"
      "  <specification><name>line</name><value>4</value></specification>"
      "  <specification><name>shift</name><value>early</value></specification>"
      "  <specification><name>line</name><value>7</value></specification>"
      "</filter>");
  std::vector<CString> names, values;
  get_spec_list_from_xml(document->GetdocumentElement(), names, values);
  for (std::size_t i = 0; i < names.size(); ++i)
    std::printf("%s is %s\n", names[i].GetString(), values[i].GetString());
}

void load_bad_text() {
  try {
    load_xml("<chart>\n  <title>Bohrung</tilte>\n</chart>");
  } catch (const DBException& e) {
    std::printf("%s\n", e.what().GetString());
  }
}

}  // namespace

int main() {
  const _bstr_t text = write_definition({{"colour", "blue"}, {"separator", " "}, {"colour", "red"}});
  std::printf("%s\n", CString(text).TrimRight().GetString());
  read_definition(text);
  read_specifications();
  load_bad_text();
}
