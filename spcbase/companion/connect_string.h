/// Connection strings that may be shown.
///
/// Part of the companions.
///
///     ConnectStringUtil shown(definition.connection_string);
///     shown.HidePassword();   // "DSN=plant;UID=anna;PWD=***"
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// A connection string in one of the spellings of ODBC, OLE DB and ADO.NET: pairs KEY=value parted by semicolons, a
/// value with special characters in braces (ODBC) or in single or double quotes (OLE DB, ADO.NET).
class SPCBASE_API ConnectStringUtil {
 public:
  CString text;  ///< the string as it stands at the moment

  explicit ConnectStringUtil(const CString& connection_string) : text(connection_string) {}

  /// Replaces the value of every password key by "***", with its quotes or braces. Returns whether there was one.
  /// A text that is no list of pairs, or whose quotes or braces are never closed, is hidden as far as a password may
  /// reach: too much rather than too little.
  bool HidePassword();
};
