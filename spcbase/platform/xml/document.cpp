#include <memory>

#include "spcbase/platform/automation/counted.h"
#include "spcbase/platform/xml/characters.h"
#include "spcbase/platform/xml/narrow.h"
#include "spcbase/platform/xml/parse.h"
#include "spcbase/platform/xml/write.h"

namespace xml_model {

namespace {

class parse_report final : public counted<IXMLDOMParseError> {
 public:
  explicit parse_report(const parse_failure& failure) : failure_(failure) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool is_known = iid == interface_id<IXMLDOMParseError>::value || iid == IID_IDispatch || iid == IID_IUnknown;
    *object = is_known ? static_cast<IXMLDOMParseError*>(this) : nullptr;
    if (!is_known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  LONG GeterrorCode() override { return failure_.code; }
  _bstr_t Getreason() override {
    return guarded([&] { return failure_.code == 0 ? _bstr_t() : to_wide(failure_.reason); });
  }
  LONG Getline() override { return failure_.line; }
  LONG Getlinepos() override { return failure_.line_position; }

 private:
  parse_failure failure_;
};

/// An empty document node in a life of its own.
struct content {
  content() : held(life::begin()), top((*held).make<dom_node>(*held, NODE_DOCUMENT, "#document")) {}

  store_reference held;
  dom_node* top;
};

}  // namespace

/// A document: its content, which each load replaces, and what the last load said. As a node it is its top node.
class dom_document final : public counted<IXMLDOMDocument2> {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override;

  DOMNodeType GetnodeType() override { return NODE_DOCUMENT; }
  _bstr_t GetnodeName() override { return top().GetnodeName(); }
  _variant_t GetnodeValue() override { return top().GetnodeValue(); }
  VARIANT_BOOL hasChildNodes() override { return top().hasChildNodes(); }
  IXMLDOMNodeListPtr GetchildNodes() override { return top().GetchildNodes(); }
  IXMLDOMNodePtr appendChild(IXMLDOMNode* child) override { return top().appendChild(child); }
  void Puttext(const _bstr_t& text) override { top().Puttext(text); }

  void Putasync(VARIANT_BOOL) override {}
  void PutvalidateOnParse(VARIANT_BOOL) override {}
  VARIANT_BOOL loadXML(const _bstr_t& text) override { return load(view(text)); }
  IXMLDOMParseErrorPtr GetparseError() override {
    return guarded([&] { return IXMLDOMParseErrorPtr(new parse_report(failure_), false); });
  }
  IXMLDOMElementPtr GetdocumentElement() override { return IXMLDOMElementPtr(top().root()); }
  void PutrefdocumentElement(IXMLDOMElement* root) override;
  IXMLDOMElementPtr createElement(const _bstr_t& name) override {
    return guarded([&] { return create(checked_name(name)); });
  }
  _bstr_t Getxml() override {
    return guarded([&] { return to_wide(write(top(), head_)); });
  }
  void setProperty(const _bstr_t& name, const _variant_t& value) override;

  /// Loads UTF-16 or UTF-8.
  template <class Text>
  VARIANT_BOOL load(Text text);
  /// An element with a name that was checked.
  IXMLDOMElementPtr create(std::string_view name);
  std::string narrow_xml() const { return write(top(), head_); }
  /// The document behind an interface.
  /// Fails: E_NOINTERFACE when it is none of this model's.
  static dom_document& from(IXMLDOMDocument& document);

 private:
  dom_node& top() const noexcept { return *content_.top; }

  content content_;
  declaration head_;
  parse_failure failure_;
};

}  // namespace xml_model

template <>
struct interface_id<xml_model::dom_document> {
  static constexpr IID value{0x9B1C5D03, 0x6E0F, 0x4C7A, {0x8F, 0x21, 0x3D, 0x5A, 0x77, 0x10, 0xC4, 0x9E}};
};

namespace xml_model {

dom_document& dom_document::from(IXMLDOMDocument& document) {
  HRESULT result = S_OK;
  auto* const found = automation_detail::query<dom_document>(&document, result);
  if (found == nullptr) _com_issue_error(result);
  found->Release();
  return *found;
}

HRESULT dom_document::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (iid == interface_id<dom_node>::value) return top().QueryInterface(iid, object);
  const bool is_known = iid == interface_id<IXMLDOMDocument2>::value || iid == interface_id<IXMLDOMDocument>::value ||
                        iid == interface_id<dom_document>::value || iid == interface_id<IXMLDOMNode>::value ||
                        iid == IID_IDispatch || iid == IID_IUnknown;
  *object = is_known ? this : nullptr;
  if (!is_known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

template <class Text>
VARIANT_BOOL dom_document::load(Text text) {
  return guarded([&] {
    content fresh;
    parsed result = parse(text, *fresh.top);
    const bool is_good = result.failure.code == 0;
    content_ = is_good ? std::move(fresh) : content();
    head_ = is_good ? result.head : declaration();
    failure_ = std::move(result.failure);
    return is_good ? VARIANT_TRUE : VARIANT_FALSE;
  });
}

void dom_document::PutrefdocumentElement(IXMLDOMElement* root) {
  dom_node* const fresh = dom_node::from(root);
  if (fresh == nullptr) _com_issue_error(E_INVALIDARG);
  dom_node* const old = top().root();
  if (old == fresh) return;
  guarded([&] { top().move_in(*fresh, old); });
  if (old != nullptr) old->unlink();
}

IXMLDOMElementPtr dom_document::create(std::string_view name) {
  if (prefix_of(name) == "xmlns") _com_issue_error(E_FAIL);
  store& home = *content_.held;
  return IXMLDOMElementPtr(home.make<dom_node>(home, NODE_ELEMENT, home.name(name)));
}

void dom_document::setProperty(const _bstr_t& name, const _variant_t& value) {
  const bool is_prohibiting = name == "ProhibitDTD" && static_cast<bool>(value);
  if (!is_prohibiting) _com_issue_error(E_INVALIDARG);
}

}  // namespace xml_model

HRESULT create_dom_document(IXMLDOMDocument** document) noexcept {
  if (document == nullptr) return E_INVALIDARG;
  *document = nullptr;
  try {
    *document = new xml_model::dom_document;
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

namespace xml_narrow {

using xml_model::dom_document;
using xml_model::dom_node;
using xml_model::guarded;

namespace {

dom_node& node_of(IXMLDOMNode& node) {
  dom_node* const found = dom_node::from(&node);
  if (found == nullptr) _com_issue_error(E_NOINTERFACE);
  return *found;
}

}  // namespace

std::string_view name_of(IXMLDOMNode& node) { return node_of(node).name(); }

std::string_view value_of(IXMLDOMNode& node) { return node_of(node).value(); }

std::optional<std::string_view> first_text_of(IXMLDOMNode& node) {
  const xml_model::text_block* const text = node_of(node).first_text();
  return text == nullptr ? std::nullopt : std::optional(text->view());
}

IXMLDOMElementPtr create_element(IXMLDOMDocument& document, std::string_view name) {
  return guarded([&] {
    xml_model::check_name(name);
    return dom_document::from(document).create(name);
  });
}

void put_text(IXMLDOMNode& node, std::string_view text) {
  guarded([&] {
    std::string buffer;
    node_of(node).put_text(xml_model::checked_text(text, buffer));
  });
}

VARIANT_BOOL load(IXMLDOMDocument& document, std::string_view text) { return dom_document::from(document).load(text); }

std::string xml_of(IXMLDOMDocument& document) {
  return guarded([&] { return dom_document::from(document).narrow_xml(); });
}

_bstr_t to_wide(std::string_view text) {
  return guarded([&] { return xml_model::to_wide(text); });
}

}  // namespace xml_narrow
