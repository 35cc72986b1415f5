/// The connection and the syntax object of ADO.NET, as a definition of an ADO.NET source uses them.
///
/// Part of the companions: the component is a closed neighbour of the same product. What stands here is the default,
/// made to be replaced: when a program, or a library linked in front of this one, defines
/// `ADONETSupport::create_syntax_info` itself, the library calls that.
///
/// Every method returns a result code and lets no exception out.
///
/// Null:    a null pointer, used, throws `_com_error` with E_POINTER.
/// Differs: calls by name (IDispatch) do not exist here, so the interfaces stand on IUnknown.
#pragma once

#include "spcbase/platform/automation/bstr.h"
#include "spcbase/platform/automation/com_ptr.h"
#include "spcbase/platform/automation/unknown.h"
#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

namespace ADONETSupport {

// The component's own names.
// NOLINTBEGIN(bugprone-reserved-identifier)

/// An open connection.
struct _DbConnection : IUnknown {
  /// A fact about the source by ODBC's number for it (SQLGetInfo), numbers as decimal text. S_FALSE and an empty text:
  /// the source does not tell. The caller frees `*fact`.
  virtual HRESULT get_information(unsigned short type, BSTR* fact) = 0;

 protected:
  ~_DbConnection() = default;
};

/// What tells how names are put together and quoted on a connection.
struct _DbSyntaxInfo : IUnknown {
  /// The connection that was set. Nobody in the library asks for it.
  virtual HRESULT get_connection(_DbConnection** connection) = 0;
  /// The separators behind the parts of a name, and what stands around a quoted one. The caller frees `*text`.
  virtual HRESULT get_catalog_separator(BSTR* text) = 0;
  virtual HRESULT get_schema_separator(BSTR* text) = 0;
  virtual HRESULT get_table_separator(BSTR* text) = 0;
  virtual HRESULT get_quote_prefix(BSTR* text) = 0;
  virtual HRESULT get_quote_suffix(BSTR* text) = 0;
  /// Names the connection that the answers are about.
  virtual HRESULT set_connection(_DbConnection* connection) = 0;

 protected:
  ~_DbSyntaxInfo() = default;
};

/// A new syntax object; null when none can be made. The default asks the connection for what ODBC knows, and gives its
/// failures on. Before a connection is set, every method but `set_connection` fails with E_UNEXPECTED.
SPCBASE_API _com_ptr_t<_DbSyntaxInfo> create_syntax_info();

/// A connection of ours as one of the component's. It must live for as long as the result is used; while it is not
/// open, the result's methods fail with E_UNEXPECTED.
SPCBASE_API _com_ptr_t<_DbConnection> connection_on(CDatabase& database);

// NOLINTEND(bugprone-reserved-identifier)

}  // namespace ADONETSupport

template <>
struct interface_id<ADONETSupport::_DbConnection> {
  static constexpr IID value{0x3D0C5B1E, 0x7A42, 0x4B9B, {0x8E, 0x6A, 0x15, 0xC4, 0x90, 0x2F, 0x6B, 0xD1}};
};
template <>
struct interface_id<ADONETSupport::_DbSyntaxInfo> {
  static constexpr IID value{0x9F1A7C60, 0x54D3, 0x4E8F, {0xA2, 0x0B, 0x61, 0x3E, 0x7D, 0x88, 0x42, 0x5C}};
};
