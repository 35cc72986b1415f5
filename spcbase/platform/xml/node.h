/// The nodes of the tree.
///
/// Part of the platform layer (xml), for the model itself. A node is its own automation object: walking makes nothing
/// but the list. It lives in its store (store.h) and counts its references from outside there.
#pragma once

#include <cstdint>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "spcbase/platform/xml/dom.h"
#include "spcbase/platform/xml/store.h"

namespace xml_model {

/// An attribute of an element, namespace declarations among them.
struct attribute {
  std::string_view name;
  std::string_view value;
  attribute* next = nullptr;
};

/// Any node; `type` tells its kind. What is no element does not answer to `IXMLDOMElement`.
class dom_node final : public IXMLDOMElement {
 public:
  dom_node(store& owner, DOMNodeType kind, std::string_view node_name, std::string_view node_value) noexcept
      : home(&owner), name(node_name), value(node_value), type(kind) {}

  HRESULT QueryInterface(REFIID iid, void** object) override;
  ULONG AddRef() override;
  ULONG Release() override;

  DOMNodeType GetnodeType() override { return type; }
  _bstr_t GetnodeName() override;
  _variant_t GetnodeValue() override;
  VARIANT_BOOL hasChildNodes() override { return first_child != nullptr ? VARIANT_TRUE : VARIANT_FALSE; }
  IXMLDOMNodeListPtr GetchildNodes() override;
  IXMLDOMNodePtr appendChild(IXMLDOMNode* child) override;
  void Puttext(const _bstr_t& text) override;
  _variant_t getAttribute(const _bstr_t& attribute_name) override;
  void setAttribute(const _bstr_t& attribute_name, const _variant_t& attribute_value) override;

  /// The node behind an object, null when it is none of this model's.
  static dom_node* from(IUnknown* object);
  /// Puts a node that stands nowhere before one of the children, or last.
  void link(dom_node& child, dom_node* before = nullptr) noexcept;
  /// Takes the node from where it stands, if it does.
  void unlink() noexcept;
  /// Moves the node, from another life too, before one of the children, or last. Both may stand here.
  void move_in(dom_node& child, dom_node* before = nullptr);
  /// `Puttext` for a text that was checked.
  void put_text(std::string_view text);
  /// The attribute with this name, or null.
  attribute* find_attribute(std::string_view attribute_name) const noexcept;
  void set_attribute(std::string_view attribute_name, std::string_view attribute_value);
  /// The root of a document node, or null.
  dom_node* root() const noexcept;

  store* home;
  dom_node* parent = nullptr;
  dom_node* first_child = nullptr;
  dom_node* last_child = nullptr;
  dom_node* previous = nullptr;
  dom_node* next = nullptr;
  attribute* attributes = nullptr;
  std::string_view name;
  std::string_view value;

 private:
  void check_place(const dom_node& child) const;
  void put_value(std::string_view text);

  std::size_t room_ = 0;
  std::uint32_t references_ = 0;

 public:
  DOMNodeType type;
};

/// Calls, and words a lack of memory as the interfaces do.
template <class Call>
auto guarded(Call&& call) -> decltype(call()) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    _com_issue_error(E_OUTOFMEMORY);
  } catch (const std::length_error&) {
    _com_issue_error(E_OUTOFMEMORY);
  }
}

}  // namespace xml_model

template <>
struct interface_id<xml_model::dom_node> {
  static constexpr IID value{0x9B1C5D02, 0x6E0F, 0x4C7A, {0x8F, 0x21, 0x3D, 0x5A, 0x77, 0x10, 0xC4, 0x9E}};
};
