#include "spcbase/platform/xml/node.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "spcbase/platform/automation/counted.h"
#include "spcbase/platform/xml/characters.h"

namespace xml_model {

namespace {

// Within the library an identifier is mostly the very object that is named here.
template <class T>
bool asks_for(REFIID iid) {
  return &iid == &interface_id<T>::value || iid == interface_id<T>::value;
}

/// The list of a node's children. It remembers the one that it gave last: nodes never vanish while it lives.
class child_list final : public counted<IXMLDOMNodeList> {
 public:
  explicit child_list(dom_node& parent) noexcept : life_(*parent.home), parent_(&parent) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool is_known = asks_for<IXMLDOMNodeList>(iid) || asks_for<IDispatch>(iid) || asks_for<IUnknown>(iid);
    *object = is_known ? static_cast<IXMLDOMNodeList*>(this) : nullptr;
    if (!is_known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  IXMLDOMNodePtr nextNode() override {
    dom_node* next = nullptr;
    if (last_ == nullptr) {
      next = guarded([&] { return parent_->first_child(); });
    } else if (last_->parent() == parent_) {
      next = last_->next();
    }
    if (next != nullptr) last_ = next;
    return IXMLDOMNodePtr(next);
  }

 private:
  store_reference life_;
  dom_node* parent_;
  dom_node* last_ = nullptr;
};

// What would end a node of this kind in the middle of its text.
bool ends_early(DOMNodeType type, std::string_view text) {
  switch (type) {
    case NODE_COMMENT:
      return text.find("--") != std::string_view::npos || text.ends_with('-');
    case NODE_PROCESSING_INSTRUCTION:
      return text.find("?>") != std::string_view::npos;
    case NODE_CDATA_SECTION:
      return text.find("]]>") != std::string_view::npos;
    default:
      return false;
  }
}

}  // namespace

HRESULT dom_node::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  const bool is_known = (asks_for<IXMLDOMElement>(iid) && type() == NODE_ELEMENT) || asks_for<dom_node>(iid) ||
                        asks_for<IXMLDOMNode>(iid) || asks_for<IDispatch>(iid) || asks_for<IUnknown>(iid);
  *object = is_known ? this : nullptr;
  if (!is_known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

ULONG dom_node::AddRef() {
  home->owner().add_reference();
  return ++references_;
}

ULONG dom_node::Release() {
  const ULONG left = --references_;
  home->owner().release();
  return left;
}

_bstr_t dom_node::GetnodeName() {
  return guarded([&] { return to_wide(name()); });
}

_variant_t dom_node::GetnodeValue() {
  _variant_t result;
  if (holds_children()) {
    result.vt = VT_NULL;
  } else {
    result.bstrVal = guarded([&] { return to_wide(value()).Detach(); });
    result.vt = VT_BSTR;
  }
  return result;
}

IXMLDOMNodeListPtr dom_node::GetchildNodes() {
  return guarded([&] { return IXMLDOMNodeListPtr(new child_list(*this), false); });
}

IXMLDOMNodePtr dom_node::appendChild(IXMLDOMNode* child) {
  dom_node* const node = from(child);
  if (node == nullptr) _com_issue_error(E_INVALIDARG);
  check_place(*node);
  guarded([&] { move_in(*node); });
  return IXMLDOMNodePtr(node);
}

void dom_node::Puttext(const _bstr_t& text) {
  guarded([&] { put_text(checked_text(text)); });
}

_variant_t dom_node::getAttribute(const _bstr_t& attribute_name) {
  _variant_t result;
  result.vt = VT_NULL;
  guarded([&] {
    const attribute* const found = find_attribute(to_narrow(view(attribute_name), XML_E_BADNAMECHAR));
    if (found == nullptr) return;
    result.bstrVal = to_wide(found->value).Detach();
    result.vt = VT_BSTR;
  });
  return result;
}

void dom_node::setAttribute(const _bstr_t& attribute_name, const _variant_t& attribute_value) {
  guarded([&] {
    const std::string checked = checked_name(attribute_name);
    // A declaration would change what names mean that stand in the tree already.
    if (checked == "xmlns" || prefix_of(checked) == "xmlns") _com_issue_error(E_FAIL);
    set_attribute(checked, checked_text(static_cast<_bstr_t>(attribute_value)));
  });
}

dom_node* dom_node::from(IUnknown* object) {
  HRESULT result = S_OK;
  auto* const node = automation_detail::query<dom_node>(object, result);
  if (node != nullptr) node->Release();
  return node;
}

void dom_node::link(dom_node& child, dom_node* before) noexcept {
  child.parent_ = this;
  child.next_ = before;
  child.previous_ = before != nullptr ? before->previous_ : static_cast<dom_node*>(children_.last_or_text);
  (child.previous_ != nullptr ? child.previous_->next_ : children_.first) = &child;
  if (before != nullptr) {
    before->previous_ = &child;
  } else {
    children_.last_or_text = &child;
  }
}

void dom_node::unlink() noexcept {
  if (parent_ == nullptr) return;
  (previous_ != nullptr ? previous_->next_ : parent_->children_.first) = next_;
  if (next_ != nullptr) {
    next_->previous_ = previous_;
  } else {
    parent_->children_.last_or_text = previous_;
  }
  parent_ = previous_ = next_ = nullptr;
}

void dom_node::move_in(dom_node& child, dom_node* before) {
  if (before == &child) return;
  life& here = home->owner();
  if (&here != &child.home->owner()) here.take_over(child.home->owner());
  if (lone_text() != nullptr) make_text_node();
  child.unlink();
  link(child, before);
}

void dom_node::check_place(const dom_node& child) const {
  const bool is_document = type() == NODE_DOCUMENT;
  const bool is_text = child.type() == NODE_TEXT || child.type() == NODE_CDATA_SECTION;
  bool is_allowed = holds_children() && child.type() != NODE_DOCUMENT && !(is_document && is_text) && &child != this;
  if (is_document && child.type() == NODE_ELEMENT && root() != nullptr && root() != &child) is_allowed = false;
  // Only a node that has children can be above this one; a fresh leaf is not looked for among the ancestors.
  const dom_node* above = child.first_node() != nullptr ? parent_ : nullptr;
  for (; is_allowed && above != nullptr; above = above->parent_)
    is_allowed = above != &child;
  if (!is_allowed) _com_issue_error(E_FAIL);
}

void dom_node::put_text(std::string_view text) {
  if (type() == NODE_DOCUMENT) _com_issue_error(E_FAIL);
  if (ends_early(type(), text)) _com_issue_error(XML_E_BADCHARDATA);
  if (type() != NODE_ELEMENT) return put_value(text);
  while (children_.first != nullptr)
    children_.first->unlink();
  if (text.empty()) {
    children_.last_or_text = nullptr;
  } else {
    put_lone_text(text);
  }
}

void text_block::put(std::string_view text) noexcept {
  std::memmove(begin(), text.data(), text.size());
  size_bytes = static_cast<std::uint32_t>(text.size());
}

void dom_node::put_value(std::string_view value) {
  if (value.size() > text_->room_bytes) text_ = home->make_text(value, text_->room_bytes);
  if (!value.empty()) text_->put(value);
  text_->size_bytes = static_cast<std::uint32_t>(value.size());
}

void dom_node::put_lone_text(std::string_view text) {
  text_block* const old = lone_text();
  if (old != nullptr && old->room_bytes >= text.size()) return old->put(text);
  children_.last_or_text = home->make_text(text, old == nullptr ? 0 : old->room_bytes);
}

void dom_node::make_text_node() {
  dom_node* const node = home->make<dom_node>(*home, NODE_TEXT, "#text", lone_text());
  children_.last_or_text = nullptr;
  link(*node);
}

void dom_node::add_text(std::string_view text) {
  if (!has_children()) return put_lone_text(text);
  add_node(NODE_TEXT, "#text", text);
}

dom_node* dom_node::add_node(DOMNodeType type, std::string_view name, std::string_view value) {
  if (lone_text() != nullptr) make_text_node();
  const bool has_value = type != NODE_ELEMENT;
  dom_node* const node = home->make<dom_node>(*home, type, name, has_value ? home->make_text(value, 0) : nullptr);
  link(*node);
  return node;
}

const text_block* dom_node::first_text() const noexcept {
  if (lone_text() != nullptr) return lone_text();
  const dom_node* child = first_node();
  while (child != nullptr && child->type() != NODE_TEXT)
    child = child->next_;
  return child == nullptr ? nullptr : child->text_;
}

attribute* dom_node::find_attribute(std::string_view attribute_name) const noexcept {
  attribute* found = attributes();
  while (found != nullptr && found->name != attribute_name)
    found = found->next;
  return found;
}

void dom_node::set_attribute(std::string_view attribute_name, std::string_view attribute_value) {
  const std::string_view kept = home->keep(attribute_value);
  if (attribute* const known = find_attribute(attribute_name)) {
    known->value = kept;
    return;
  }
  attribute** end = &children_.attributes;
  while (*end != nullptr)
    end = &(*end)->next;
  *end = home->make<attribute>(attribute{home->name(attribute_name), kept, nullptr});
}

dom_node* dom_node::root() const noexcept {
  dom_node* found = first_node();
  while (found != nullptr && found->type() != NODE_ELEMENT)
    found = found->next_;
  return found;
}

}  // namespace xml_model
