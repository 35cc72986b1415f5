#include "spcbase/platform/xml/node.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "spcbase/platform/automation/counted.h"
#include "spcbase/platform/xml/characters.h"

namespace xml_model {

namespace {

/// The list of a node's children. It remembers the one that it gave last: nodes never vanish while it lives.
class child_list final : public counted<IXMLDOMNodeList> {
 public:
  explicit child_list(dom_node& parent) noexcept : life_(*parent.home), parent_(&parent) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool is_known = iid == interface_id<IXMLDOMNodeList>::value || iid == IID_IDispatch || iid == IID_IUnknown;
    *object = is_known ? static_cast<IXMLDOMNodeList*>(this) : nullptr;
    if (!is_known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  IXMLDOMNodePtr nextNode() override {
    dom_node* next = parent_->first_child;
    if (last_ != nullptr) next = last_->parent == parent_ ? last_->next : nullptr;
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
  const bool is_known = (iid == interface_id<IXMLDOMElement>::value && type == NODE_ELEMENT) ||
                        iid == interface_id<dom_node>::value || iid == interface_id<IXMLDOMNode>::value ||
                        iid == IID_IDispatch || iid == IID_IUnknown;
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
  return guarded([&] { return to_wide(name); });
}

_variant_t dom_node::GetnodeValue() {
  _variant_t result;
  if (type == NODE_ELEMENT || type == NODE_DOCUMENT) {
    result.vt = VT_NULL;
  } else {
    result.bstrVal = guarded([&] { return to_wide(value).Detach(); });
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
    const attribute* const found = find_attribute(to_narrow(view(attribute_name)));
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
  child.parent = this;
  child.next = before;
  child.previous = before != nullptr ? before->previous : last_child;
  (child.previous != nullptr ? child.previous->next : first_child) = &child;
  (before != nullptr ? before->previous : last_child) = &child;
}

void dom_node::unlink() noexcept {
  if (parent == nullptr) return;
  (previous != nullptr ? previous->next : parent->first_child) = next;
  (next != nullptr ? next->previous : parent->last_child) = previous;
  parent = previous = next = nullptr;
}

void dom_node::move_in(dom_node& child, dom_node* before) {
  if (before == &child) return;
  life& here = home->owner();
  if (&here != &child.home->owner()) here.take_over(child.home->owner());
  child.unlink();
  link(child, before);
}

void dom_node::check_place(const dom_node& child) const {
  const bool is_document = type == NODE_DOCUMENT;
  const bool is_text = child.type == NODE_TEXT || child.type == NODE_CDATA_SECTION;
  bool is_allowed = (is_document || type == NODE_ELEMENT) && child.type != NODE_DOCUMENT && !(is_document && is_text);
  if (is_document && child.type == NODE_ELEMENT && root() != nullptr && root() != &child) is_allowed = false;
  // Only a node that has children can be above this one; a fresh leaf is not looked for among the ancestors.
  if (&child == this) is_allowed = false;
  for (const dom_node* above = parent; is_allowed && above != nullptr && child.first_child != nullptr;
       above = above->parent)
    is_allowed = above != &child;
  if (!is_allowed) _com_issue_error(E_FAIL);
}

void dom_node::put_text(std::string_view text) {
  if (type == NODE_DOCUMENT) _com_issue_error(E_FAIL);
  if (ends_early(type, text)) _com_issue_error(XML_E_BADCHARDATA);
  if (type != NODE_ELEMENT) return put_value(text);
  // One text that nobody holds takes the new one, so that setting it again and again needs no new node each time.
  dom_node* only = first_child == last_child ? first_child : nullptr;
  const bool is_reusable = only != nullptr && only->type == NODE_TEXT && only->references_ == 0 && !text.empty();
  if (is_reusable) return only->put_value(text);
  dom_node* const fresh = text.empty() ? nullptr : home->make<dom_node>(*home, NODE_TEXT, "#text", home->keep(text));
  while (first_child != nullptr)
    first_child->unlink();
  if (fresh != nullptr) link(*fresh);
}

void dom_node::put_value(std::string_view text) {
  if (text.size() > room_) {
    const std::size_t wanted = std::max(text.size(), 2 * room_);
    value = {home->make_room(wanted), 0};
    room_ = wanted;
  }
  if (!text.empty()) std::memmove(const_cast<char*>(value.data()), text.data(), text.size());
  value = {value.data(), text.size()};
}

attribute* dom_node::find_attribute(std::string_view attribute_name) const noexcept {
  attribute* found = attributes;
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
  attribute** end = &attributes;
  while (*end != nullptr)
    end = &(*end)->next;
  *end = home->make<attribute>(attribute{home->name(attribute_name), kept, nullptr});
}

dom_node* dom_node::root() const noexcept {
  dom_node* found = first_child;
  while (found != nullptr && found->type != NODE_ELEMENT)
    found = found->next;
  return found;
}

}  // namespace xml_model
