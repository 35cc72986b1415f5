// A document of 10 MB of property lists, parsed and walked: load_xml and PropertyVec beside libxml2's own tree with the
// same parser options. Ours begins with the UTF-16 that a host hands over, libxml2 with UTF-8. Both keep every name and
// value as a text.
#include <libxml/parser.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/jobs.h"
#include "spcbase/utility/properties.h"
#include "spcbase/utility/xml.h"

namespace bench {
namespace {

constexpr std::size_t document_bytes = 10'000'000;
constexpr int list_length = 1'000;

std::string make_text() {
  std::string text = "<lists>";
  for (int number = 0; text.size() < document_bytes;) {
    text += "<properties>";
    for (int i = 0; i < list_length; ++i, ++number)
      text += "<property><name>chart.limit.upper." + std::to_string(number) + "</name><value>74.0" +
              std::to_string(number % 9'000 + 1'000) + " &lt; \xC3\xB8</value></property>";
    text += "</properties>";
  }
  return text + "</lists>";
}

double digest(std::string_view text) {
  double sum = 0;
  for (std::size_t i = 0; i < text.size(); ++i)
    sum += static_cast<double>(static_cast<unsigned char>(text[i])) * static_cast<double>(i + 1);
  return sum;
}

class OurReading : public WorkAlone {
 public:
  void run() override {
    lists_.clear();
    const IXMLDOMDocumentPtr document = load_xml(text_);
    const IXMLDOMNodeListPtr children = document->GetdocumentElement()->GetchildNodes();
    while (const IXMLDOMElementPtr list = children->nextNode()) {
      lists_.emplace_back();
      lists_.back().set_xml(list);
    }
  }
  double result() override {
    double sum = 0;
    for (const spcbaseutil::PropertyVec& list : lists_)
      for (const spcbaseutil::Property& each : list)
        sum += digest(each.name.view()) + 2 * digest(each.value.view());
    return sum;
  }

 private:
  _bstr_t text_ = make_text().c_str();
  std::vector<spcbaseutil::PropertyVec> lists_;
};

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

using TextPair = std::pair<std::string, std::string>;

class PlainReading : public WorkAlone {
 public:
  void run() override {
    lists_.clear();
    const std::unique_ptr<xmlDoc, FreeDocument> document(
        xmlReadMemory(text_.data(), static_cast<int>(text_.size()), nullptr, nullptr,
                      XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC));
    if (document == nullptr) std::abort();
    for (const xmlNode* list = xmlDocGetRootElement(document.get())->children; list != nullptr; list = list->next)
      lists_.push_back(read_list(*list));
  }
  double result() override {
    double sum = 0;
    for (const auto& list : lists_)
      for (const auto& [name, value] : list)
        sum += digest(name) + 2 * digest(value);
    return sum;
  }

 private:
  static bool is_element(const xmlNode& node, const char* name) {
    return node.type == XML_ELEMENT_NODE && xmlStrEqual(node.name, reinterpret_cast<const xmlChar*>(name)) != 0;
  }
  static std::string text_of(const xmlNode& element) {
    for (const xmlNode* child = element.children; child != nullptr; child = child->next)
      if (child->type == XML_TEXT_NODE) return reinterpret_cast<const char*>(child->content);
    return {};
  }
  static TextPair read_property(const xmlNode& element) {
    TextPair property;
    for (const xmlNode* child = element.children; child != nullptr; child = child->next) {
      if (is_element(*child, "name")) {
        property.first = text_of(*child);
      } else if (is_element(*child, "value")) {
        property.second = text_of(*child);
      }
    }
    return property;
  }
  static std::vector<TextPair> read_list(const xmlNode& element) {
    std::vector<TextPair> list;
    for (const xmlNode* child = element.children; child != nullptr; child = child->next)
      if (is_element(*child, "property")) list.push_back(read_property(*child));
    return list;
  }

  std::string text_ = make_text();
  std::vector<std::vector<TextPair>> lists_;
};

Pair make_pair_alone() { return {std::make_unique<OurReading>(), std::make_unique<PlainReading>()}; }

}  // namespace

Job read_xml() {
  Job job;
  job.name = "read 10 MB of property lists from XML";
  job.pair_alone = make_pair_alone;
  job.alone_limit = 1.3;
  return job;
}

}  // namespace bench
