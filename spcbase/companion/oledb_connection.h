/// What a definition of an OLE DB source learns from an open connection.
///
/// Part of the companions. The default learns from an ODBC connection, or from an SQLite file.
///
///     CDatabase outside;
///     outside.OpenEx(definition.connection_string);
///     OLEDBConnection connection(outside);
///     definition.update_internal_data(connection);
#pragma once

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

/// The facts. They are read once, when the object is made; the connection is not needed any more then.
class SPCBASE_API OLEDBConnection {
 public:
  /// Knows nothing: no capability, empty texts. For facts that come from elsewhere.
  OLEDBConnection() = default;
  /// Asks an open connection.
  /// Fails: CDBException* for a connection that is not open, and when the driver refuses an answer that every driver
  ///        must have.
  explicit OLEDBConnection(CDatabase& database);

  /// Whether the source is a Jet engine (Microsoft Access).
  bool is_msjet() const { return msjet; }
  /// Whether the server has the date and time types of SQL Server 2008: date, time, datetime2, datetimeoffset.
  bool has_sql_server_new_datetime_type() const { return new_datetime_type; }

  /// What the source understands of SQL, as OLE DB's property DBPROP_SQLSUPPORT has it: the levels of the ODBC grammar
  /// (1, 2, 4), of ANSI SQL (0x08 to 0x80), and 0x100 for ODBC's escape clauses.
  DWORD sql_support = 0;
  CString catalog_separator;  ///< behind the name of a catalog, empty where there are none
  CString schema_separator;
  CString table_separator;
  CString quote_prefix;  ///< around an identifier, empty where none can be quoted
  CString quote_suffix;

  bool msjet = false;              ///< what `is_msjet` says
  bool new_datetime_type = false;  ///< what `has_sql_server_new_datetime_type` says
};
