/// The document model: XML text as a tree of counted objects.
///
/// Part of the platform layer (xml). It has the operations that the library's formats need, under the names that
/// generated wrappers of the interfaces give them (`GetnodeName` for the property `nodeName`, `Putasync` for `async`):
///
///     IXMLDOMDocumentPtr document;
///     _com_util::CheckError(create_dom_document(&document));
///     if (document->loadXML("<list><item>1</item></list>") == VARIANT_FALSE) ...   // GetparseError tells why
///     IXMLDOMNodeListPtr children = document->GetdocumentElement()->GetchildNodes();
///     while (IXMLDOMNodePtr child = children->nextNode()) ...
///
/// Null:    a text may be null and then counts as empty; using a null pointer throws `_com_error` with E_POINTER.
/// Fails:   each method throws `_com_error` with the failing code; E_OUTOFMEMORY when memory runs out.
/// Owns:    a pointer to any node, list or document keeps everything alive that was made for the same document, and so
///          does it for documents whose nodes were moved into one another. What is taken out of a document stays
///          usable.
/// Threads: a document and all that belongs to it serve one thread at a time; different documents are independent.
/// Differs: a document type declaration is always refused, so there are no entities but the five of XML itself.
///          Nothing outside the text is ever read. White space alone is dropped between tags unless xml:space says
///          "preserve"; written as a character reference, or in a CDATA section, it stays. Characters and names that
///          XML does not have are refused when they are set, so that whatever is written can be loaded again,
///          up to the limits of `loadXML`.
#pragma once

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_ptr.h"
#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/automation/variant_t.h"

struct IXMLDOMNode;
struct IXMLDOMElement;
struct IXMLDOMNodeList;
struct IXMLDOMParseError;
struct IXMLDOMDocument;
struct IXMLDOMDocument2;

/// The pointers that the interfaces are passed in.
using IXMLDOMNodePtr = _com_ptr_t<IXMLDOMNode>;
using IXMLDOMElementPtr = _com_ptr_t<IXMLDOMElement>;
using IXMLDOMNodeListPtr = _com_ptr_t<IXMLDOMNodeList>;
using IXMLDOMParseErrorPtr = _com_ptr_t<IXMLDOMParseError>;
using IXMLDOMDocumentPtr = _com_ptr_t<IXMLDOMDocument>;
using IXMLDOMDocument2Ptr = _com_ptr_t<IXMLDOMDocument2>;

/// The kinds of nodes. Those that a document never has here, attributes and what a document type declares, are left
/// out.
enum DOMNodeType : int {
  NODE_ELEMENT = 1,
  NODE_TEXT = 3,
  NODE_CDATA_SECTION = 4,
  NODE_PROCESSING_INSTRUCTION = 7,
  NODE_COMMENT = 8,
  NODE_DOCUMENT = 9
};

/// The codes with which the model refuses what XML does not allow.
inline constexpr HRESULT XML_E_BADSTARTNAMECHAR = make_hresult(0xC00CE504U);
inline constexpr HRESULT XML_E_BADNAMECHAR = make_hresult(0xC00CE505U);
inline constexpr HRESULT XML_E_BADCHARDATA = make_hresult(0xC00CE508U);
/// `errorCode` of a text with a document type declaration; every other error has the parser's own code.
inline constexpr HRESULT XML_E_INVALIDATROOTLEVEL = make_hresult(0xC00CE556U);

/// A node of a document: an element, a text, a CDATA section, a comment, a processing instruction or the document.
struct IXMLDOMNode : IDispatch {
  /// The kind.
  virtual DOMNodeType GetnodeType() = 0;
  /// The name with its prefix of an element, the target of an instruction, else "#text", "#cdata-section", "#comment"
  /// or "#document".
  virtual _bstr_t GetnodeName() = 0;
  /// The text of a text, CDATA section, comment or instruction; VT_NULL for an element and the document.
  virtual _variant_t GetnodeValue() = 0;
  /// Whether there are children.
  virtual VARIANT_BOOL hasChildNodes() = 0;
  /// The children from the first on; a list of its own for each call.
  virtual IXMLDOMNodeListPtr GetchildNodes() = 0;
  /// Puts a node behind the last child. It is taken from where it stood, out of another document too. Returns it.
  /// Fails: E_INVALIDARG for null or an object that is not of this model; E_FAIL when a node of this kind cannot stand
  ///        here, when it is this node or holds it, or when the document would get a second root.
  virtual IXMLDOMNodePtr appendChild(IXMLDOMNode* child) = 0;
  /// Replaces all children of an element by one text, or by nothing when it is empty. The text of any other node
  /// becomes this one.
  /// Fails: XML_E_BADCHARDATA for characters that XML does not have and for "--", "?>" and "]]>" where they would end
  ///        the node; E_FAIL for the document.
  virtual void Puttext(const _bstr_t& text) = 0;

 protected:
  ~IXMLDOMNode() = default;
};

/// An element.
struct IXMLDOMElement : IXMLDOMNode {
  /// The value of an attribute as a string; VT_NULL when there is none. A prefix is part of the name.
  virtual _variant_t getAttribute(const _bstr_t& name) = 0;
  /// Sets an attribute to the value as a string; a new one stands behind the others.
  /// Fails: E_FAIL for an empty name and for names that declare namespaces, XML_E_BADSTARTNAMECHAR or XML_E_BADNAMECHAR
  ///        for other unusable names, XML_E_BADCHARDATA as `Puttext`, the code of `VariantChangeType` for a value that
  ///        is no string.
  virtual void setAttribute(const _bstr_t& name, const _variant_t& value) = 0;

 protected:
  ~IXMLDOMElement() = default;
};

/// The children of a node, one after the other. The list is live: a child that is appended meanwhile is reached. When
/// the child that was given last stands elsewhere by then, the list is at its end.
struct IXMLDOMNodeList : IDispatch {
  /// The next child, null at the end.
  virtual IXMLDOMNodePtr nextNode() = 0;

 protected:
  ~IXMLDOMNodeList() = default;
};

/// What the last loading said.
struct IXMLDOMParseError : IDispatch {
  /// The parser's own code, 0 when the text was good.
  virtual LONG GeterrorCode() = 0;
  /// The parser's own words without line end; null when the text was good.
  virtual _bstr_t Getreason() = 0;
  /// Where the text is wrong, both from 1; 0 when it was good.
  virtual LONG Getline() = 0;
  virtual LONG Getlinepos() = 0;

 protected:
  ~IXMLDOMParseError() = default;
};

/// A document. It is a node that holds one root element beside comments and instructions.
struct IXMLDOMDocument : IXMLDOMNode {
  /// Loading is always finished when `loadXML` returns, whatever is set here.
  virtual void Putasync(VARIANT_BOOL is_async) = 0;
  /// There is nothing to validate against, since document types are refused; both values mean the same.
  virtual void PutvalidateOnParse(VARIANT_BOOL validates) = 0;
  /// Replaces the content by a parsed text. An encoding that the text declares has no meaning and is passed over.
  /// Returns VARIANT_FALSE for a text that is no XML, or longer than 500 million characters, or that the parser would
  /// take the square of its length for: an element of more than 4,000 attributes or namespace declarations, those
  /// around it among them, more than 100,000 different names. The document is empty then, and `GetparseError` tells
  /// why. Never fails by what the text holds.
  virtual VARIANT_BOOL loadXML(const _bstr_t& text) = 0;
  /// What was wrong with the text that was parsed last.
  virtual IXMLDOMParseErrorPtr GetparseError() = 0;
  /// The root, null when there is none.
  virtual IXMLDOMElementPtr GetdocumentElement() = 0;
  /// Puts a root in the place of the present one, or behind what there is.
  /// Fails: E_INVALIDARG for null or an object that is not of this model.
  virtual void PutrefdocumentElement(IXMLDOMElement* root) = 0;
  /// A new element that stands nowhere yet.
  /// Fails: E_FAIL for an empty name and one with the prefix "xmlns", XML_E_BADSTARTNAMECHAR or XML_E_BADNAMECHAR for
  ///        other unusable names.
  virtual IXMLDOMElementPtr createElement(const _bstr_t& name) = 0;
  /// The document as text: each node of the document itself ends in a carriage return and a line feed, no white space
  /// is added elsewhere. A declaration stands there when the text that was loaded had one, without its encoding. Empty
  /// for an empty document.
  /// Fails: E_FAIL when a name has a prefix that nothing declares where it stands now.
  virtual _bstr_t Getxml() = 0;

 protected:
  ~IXMLDOMDocument() = default;
};

/// A document with properties by name.
struct IXMLDOMDocument2 : IXMLDOMDocument {
  /// "ProhibitDTD" may be set to true, which it always is.
  /// Fails: E_INVALIDARG for other names and for false.
  virtual void setProperty(const _bstr_t& name, const _variant_t& value) = 0;

 protected:
  ~IXMLDOMDocument2() = default;
};

template <>
struct interface_id<IXMLDOMNode> {
  static constexpr IID value{0x2933BF80, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
};
template <>
struct interface_id<IXMLDOMDocument> {
  static constexpr IID value{0x2933BF81, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
};
template <>
struct interface_id<IXMLDOMNodeList> {
  static constexpr IID value{0x2933BF82, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
};
template <>
struct interface_id<IXMLDOMElement> {
  static constexpr IID value{0x2933BF86, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
};
template <>
struct interface_id<IXMLDOMDocument2> {
  static constexpr IID value{0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
};
template <>
struct interface_id<IXMLDOMParseError> {
  static constexpr IID value{0x3EFAA426, 0x272F, 0x11D2, {0x83, 0x6F, 0x00, 0x00, 0xF8, 0x7A, 0x77, 0x82}};
};

/// Makes an empty document.
/// Fails: E_INVALIDARG when `document` is null, E_OUTOFMEMORY.
/// Owns:  the caller holds one reference.
SPCBASE_API HRESULT create_dom_document(IXMLDOMDocument** document) noexcept;
