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
/// value with special characters in braces (ODBC) or in single or double quotes (OLE DB, ADO.NET). The text of a file
/// that holds such pairs on lines (a file DSN, a data link) is understood too.
class SPCBASE_API ConnectStringUtil {
 public:
  CString text;  ///< the string as it stands at the moment

  /// Keeps a copy of the text.
  explicit ConnectStringUtil(const CString& connection_string) : text(connection_string) {}

  /// Replaces the value of every password key by "***", with its quotes or braces; every other pair stays as it is. A
  /// key is one of a password when "password", "passwd" or "passphrase" stands in it, when it ends in "pwd", or when
  /// its last word is "pass" or "pw", in any case of letters. A value in quotes or braces may hold pairs itself.
  /// Whatever looks like a pair counts as one, a word behind a password that is no pair belongs to it, and where quotes
  /// or braces do not come out even, everything from the first password on is hidden: too much rather than too little.
  /// Returns whether there was a password key. What its value is plays no part: an empty one is hidden too, and a
  /// second call changes nothing and returns the same.
  bool HidePassword();
};
