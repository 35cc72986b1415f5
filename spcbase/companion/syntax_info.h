/// How an outside database wants its literals: a syntax that a user may define, and the default.
///
/// Part of the companions. A definition of a data source carries one when its user has changed the default.
///
///     <sql_syntax_info>
///       <date_literal>DATE '%Y-%m-%d'</date_literal>
///       <time_literal>TIME '%H:%M:%S'</time_literal>
///       <timestamp_literal>TIMESTAMP '%Y-%m-%d %H:%M:%S'</timestamp_literal>
///       <concatenation>||</concatenation>
///     </sql_syntax_info>
#pragma once

#include <memory>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/platform/xml/dom.h"

/// Four texts. Moments are patterns in the manner of `strftime`: %Y %m %d %H %M %S.
class SPCBASE_API UserDefinedSyntaxInfo {
 public:
  CString date_literal;  ///< how a date, a time of day and a moment are written
  CString time_literal;
  CString timestamp_literal;
  CString concatenation;  ///< the operator that joins texts

  /// Writes the four texts, empty ones too. Returns a new element that `document` has created and that stands nowhere
  /// yet; the caller puts it in its place.
  /// Null:  a null document throws `_com_error` with E_POINTER.
  /// Fails: `_com_error` with the code of the document model that refuses something.
  _com_ptr_t<IXMLDOMElement> get_xml(_com_ptr_t<IXMLDOMDocument>& document, const char* name) const;
  /// Overwrites the fields from the children of an element, whose own name does not matter. What has no child keeps
  /// what it held; of several the last counts. Other elements are passed over.
  /// Kept:  nothing behind a child that is no element is read.
  /// Null:  a null element throws `_com_error` with E_POINTER.
  /// Fails: `DBException` "XML error." for a child with children but no text; what was read before it stays.
  void set_xml(const _com_ptr_t<IXMLDOMElement>& element);

  friend bool operator==(const UserDefinedSyntaxInfo&, const UserDefinedSyntaxInfo&) = default;
};

/// The literals of ISO/IEC 9075 (SQL) and its operator "||", new at every call. Never null.
SPCBASE_API std::shared_ptr<UserDefinedSyntaxInfo> get_default_user_defined_syntax_info();
