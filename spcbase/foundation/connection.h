/// The connection as the library uses it: adopting a handle, telling whether it lives, transactions that nest, and the
/// four SQL dialects.
///
/// Part of the database foundation. The host owns the connection for as long as it uses the library, and passes it on
/// every call:
///
///     CDatabaseEx db;
///     db.attach(hdbc, true, "DSN=plant");
///     const int dialect = dbcheck::find_db_type(db);   // once
///     AutoODBCTransaction transaction(db, true);
///     ...
///     transaction.commit();                            // else the guard's end rolls back
#pragma once

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// A connection that may have come from outside, and that knows of its open transaction.
class SPCBASE_API CDatabaseEx : public CDatabase {
 public:
  CDatabaseEx() = default;
  /// Closes a connection that this object opened. An attached handle stays open: it belongs to who attached it.
  ~CDatabaseEx() override = default;

  /// Adopts an ODBC connection handle. A handle attached before is let go and stays open; a connection that this object
  /// opened itself is closed. Does not look at `in_transaction`.
  /// Returns true.
  /// Fails:  CDBException* when the handle cannot be used.
  bool attach(void* handle, bool updatable, const char* connect_string);

  /// Whether the link is alive.
  /// `light` 0 runs a statement on CSMON, which proves that the server answers and that the schema is there. Any other
  /// value asks the driver alone, which on most drivers answers from memory and does not notice a server that went
  /// away.
  /// Fails: never.
  bool check_connection(int light);

  bool attached = false;        ///< the current handle came in through `attach`
  bool in_transaction = false;  ///< an AutoODBCTransaction has begun a transaction that is still open
};

/// A transaction for a scope. The outermost guard of a connection begins and ends the transaction; guards inside it are
/// passive, and so is a guard on a connection without transactions.
class SPCBASE_API AutoODBCTransaction {
 public:
  /// Begins a transaction, unless one is open already, the connection has none, or it is not open.
  /// Fails: CDBException* from the server when `throwing` is set; else the guard is passive and work goes on without a
  /// transaction.
  AutoODBCTransaction(CDatabaseEx& database, bool throwing);
  /// Rolls back what was not committed. A failure of that is swallowed, with `throwing` too: a guard often ends
  /// because of another failure, which must not be hidden.
  ~AutoODBCTransaction();
  AutoODBCTransaction(const AutoODBCTransaction&) = delete;
  AutoODBCTransaction& operator=(const AutoODBCTransaction&) = delete;

  /// Ends the transaction. True also when there is nothing to end: the guard is passive, or was ended before.
  /// Fails: CDBException* when `throwing` is set, else false; the transaction then counts as open, so that the guard's
  /// end rolls it back.
  bool commit();
  /// Undoes the transaction; otherwise as `commit`.
  bool rollback();

 private:
  bool end(BOOL (CDatabase::*operation)());

  CDatabaseEx& database_;
  bool passive_ = true;
  bool throwing_;
};

/// The four SQL dialects. A dialect is an integer that the host asks for once and then hands to every call that wants
/// one: 0 Microsoft SQL Server, 1 Oracle, 2 Microsoft Access, 3 MySQL, -1 none of these.
///
/// The `make_...` functions build texts and touch no database; for an unknown dialect they give an empty text.
namespace dbcheck {

/// Finds the dialect with one probe statement for each.
/// Fails: only by what is not a CDBException*.
SPCBASE_API int find_db_type(CDatabase& database);

/// `expression`, or `replacement` where it is null.
SPCBASE_API CString make_check_null_function(int dialect, const CString& expression, const CString& replacement);

/// A UTC moment as the server's local time.
/// Kept: Microsoft Access and MySQL get the expression unchanged.
SPCBASE_API CString make_to_local_time(int dialect, const CString& expression);

/// The bitwise AND of two operands.
/// Kept: this one answers for an unknown dialect too, as for SQL Server.
SPCBASE_API CString make_bitwise_and_expr(int dialect, const char* left, const char* right);

/// `expression` read as a moment. For Oracle `format` is a date format, or one of the words "use cast" and
/// "use de_to_date" in any case; it overrides `de_to_date_exists`.
/// Null: the server's function DE_TO_DATE when it exists, else the format "YYYY-MM-DD HH24:MI:SS".
SPCBASE_API CString make_cast_to_dt_expr(int dialect, bool de_to_date_exists, const CString& expression,
                                         const char* format);

/// Whether the server has the function DE_TO_DATE; false without a question for every dialect but Oracle.
SPCBASE_API bool check_de_to_date_sp_exist(CDatabase& database, int dialect);

}  // namespace dbcheck
