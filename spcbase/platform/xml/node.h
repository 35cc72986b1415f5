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

/// A text in a store, which follows it in memory, with the room that it may grow into.
struct text_block {
  std::uint32_t size_bytes;
  std::uint32_t room_bytes;

  char* begin() noexcept { return reinterpret_cast<char*>(this + 1); }
  std::string_view view() const noexcept { return {reinterpret_cast<const char*>(this + 1), size_bytes}; }
  /// Becomes a copy of a text that has room; it may be a part of this.
  void put(std::string_view text) noexcept;
};

/// Any node; `type()` tells its kind. What is no element does not answer to `IXMLDOMElement`. A document has very many
/// of them, so they are kept small: an element or document has children, any other node has text, in one place.
class dom_node final : public IXMLDOMElement {
 public:
  /// A node that has text takes it as `text`; any other has none.
  dom_node(store& owner, DOMNodeType kind, std::string_view node_name, text_block* text = nullptr) noexcept
      : home(&owner),
        name_(node_name.data()),
        name_bytes_(static_cast<std::uint32_t>(node_name.size())),
        references_(0),
        type_(static_cast<std::uint32_t>(kind) & 0xFU) {
    if (holds_children()) {
      children_ = {nullptr, nullptr, nullptr};
    } else {
      text_ = text;
    }
  }

  HRESULT QueryInterface(REFIID iid, void** object) override;
  ULONG AddRef() override;
  ULONG Release() override;

  DOMNodeType GetnodeType() override { return type(); }
  _bstr_t GetnodeName() override;
  _variant_t GetnodeValue() override;
  VARIANT_BOOL hasChildNodes() override { return has_children() ? VARIANT_TRUE : VARIANT_FALSE; }
  IXMLDOMNodeListPtr GetchildNodes() override;
  IXMLDOMNodePtr appendChild(IXMLDOMNode* child) override;
  void Puttext(const _bstr_t& text) override;
  _variant_t getAttribute(const _bstr_t& attribute_name) override;
  void setAttribute(const _bstr_t& attribute_name, const _variant_t& attribute_value) override;

  /// The node behind an object, null when it is none of this model's.
  static dom_node* from(IUnknown* object);

  DOMNodeType type() const noexcept { return static_cast<DOMNodeType>(type_); }
  std::string_view name() const noexcept { return {name_, name_bytes_}; }
  /// The text of a node that has one, else empty.
  std::string_view value() const noexcept { return holds_children() ? std::string_view() : text_->view(); }
  bool has_children() const noexcept { return holds_children() && children_.last_or_text != nullptr; }
  /// The text of an element that has nothing but one text, as long as nobody asked for that as a node.
  text_block* lone_text() const noexcept {
    const bool is_there = type() == NODE_ELEMENT && children_.first == nullptr;
    return is_there ? static_cast<text_block*>(children_.last_or_text) : nullptr;
  }
  /// The first child that is a node, null before a lone text.
  dom_node* first_node() const noexcept { return holds_children() ? children_.first : nullptr; }
  /// The first child; a lone text becomes a node.
  dom_node* first_child() {
    if (lone_text() != nullptr) make_text_node();
    return first_node();
  }
  dom_node* parent() const noexcept { return parent_; }
  dom_node* next() const noexcept { return next_; }
  /// The root of a document node, or null.
  dom_node* root() const noexcept;
  attribute* attributes() const noexcept { return holds_children() ? children_.attributes : nullptr; }
  /// The attribute with this name, or null.
  attribute* find_attribute(std::string_view attribute_name) const noexcept;

  /// Puts a node that stands nowhere before one of the children, or last. This has no lone text.
  void link(dom_node& child, dom_node* before = nullptr) noexcept;
  /// Makes a text, or any other node, behind the last child.
  void add_text(std::string_view text);
  dom_node* add_node(DOMNodeType type, std::string_view name, std::string_view value);
  /// Takes the node from where it stands, if it does.
  void unlink() noexcept;
  /// Moves the node, from another life too, before one of the children, or last. Both may stand here.
  void move_in(dom_node& child, dom_node* before = nullptr);
  /// The first child that is a text, null when there is none.
  const text_block* first_text() const noexcept;
  /// `Puttext` for a text that was checked.
  void put_text(std::string_view text);
  void set_attribute(std::string_view attribute_name, std::string_view attribute_value);
  /// Gives an element that has none its attributes.
  void put_attributes(attribute* first) noexcept { children_.attributes = first; }

  store* const home;

 private:
  struct child_part {
    dom_node* first;
    /// The last child, or a lone text: that goes with no first child.
    void* last_or_text;
    attribute* attributes;
  };
  bool holds_children() const noexcept { return type() == NODE_ELEMENT || type() == NODE_DOCUMENT; }
  void check_place(const dom_node& child) const;
  void put_value(std::string_view value);
  void put_lone_text(std::string_view text);
  void make_text_node();

  dom_node* parent_ = nullptr;
  dom_node* previous_ = nullptr;
  dom_node* next_ = nullptr;
  union {
    child_part children_;
    text_block* text_;
  };
  const char* name_;
  std::uint32_t name_bytes_;
  std::uint32_t references_ : 28;
  std::uint32_t type_ : 4;
};
static_assert(sizeof(dom_node) == 80);

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
