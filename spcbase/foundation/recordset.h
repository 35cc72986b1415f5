/// The recordset frame: the common bases of the typed recordsets, requerying, filters, aggregates, and the questions to
/// a SQL Server catalogue.
///
/// Part of the database foundation. A typed recordset is opened in one of two ways: for reading (forward-only,
/// read-only) by whoever only looks up, or for updating by whoever calls AddNew, Edit or Delete. For instance:
///
///     RSCount count(&db, "CSSAMP", nullptr);
///     set_rs_where_clause(count, "PROFID = 3");
///     requery_rs_for_read(count, nullptr, true);
///     long samples = count.m_bEOF ? 0 : count.result;
#pragma once

#include "spcbase/platform/database/recordset.h"
#include "spcbase/platform/datetime/timestamp.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// The common type of every recordset that maps a table of the schema.
class CRecordsetFix : public CRecordset {
 public:
  /// A closed recordset on a connection.
  explicit CRecordsetFix(CDatabase* database) : CRecordset(database) {}
};

/// A recordset whose select may carry a hint to the server to keep the result at hand.
class RSWithHint : public CRecordsetFix {
 public:
  /// A closed recordset; with `hint` its select carries the hint.
  RSWithHint(CDatabase* database, bool hint) : CRecordsetFix(database), use_hint(hint) {}

  bool use_hint;  ///< read by the DoFieldExchange of the derived class
};

/// The number of rows of a table or a list of tables, or another whole number that an expression gives.
class SPCBASE_API RSCount : public CRecordset {
 public:
  /// Null: an expression of null stands for "COUNT(*)".
  RSCount(CDatabase* database, const CString& table_list, const char* count_expression);

  CString GetDefaultConnect() override { return {}; }
  CString GetDefaultSQL() override { return table; }
  void DoFieldExchange(CFieldExchange* exchange) override;

  /// The value that the current row has.
  long result = 0;
  /// What it was made with.
  CString table;
  CString expression;
  CString column_name;  ///< the server's name of the result column, once it is known
};

/// The highest value of a column of whole numbers. Of no rows it is one row whose value is null.
class SPCBASE_API RSMax : public CRecordset {
 public:
  /// The names are used as they are given.
  RSMax(CDatabase* database, const CString& table_name, const CString& id_column);

  CString GetDefaultConnect() override { return {}; }
  CString GetDefaultSQL() override { return table; }
  void DoFieldExchange(CFieldExchange* exchange) override;

  /// The value that the current row has.
  long result = 0;
  /// What it was made with.
  CString table;
  CString column;
  CString column_name;  ///< the server's name of the result column, once it is known
};

/// The latest moment of a column.
class SPCBASE_API RSMaxDateTime : public CRecordset {
 public:
  /// The names are used as they are given.
  RSMaxDateTime(CDatabase* database, const CString& table_name, const CString& moment_column);

  CString GetDefaultConnect() override { return {}; }
  CString GetDefaultSQL() override { return table; }
  void DoFieldExchange(CFieldExchange* exchange) override;

  /// The value that the current row has.
  TIMESTAMP_STRUCT result{};
  /// What it was made with.
  CString table;
  CString column;
  CString column_name;  ///< the server's name of the result column, once it is known
};

/// A property of a SQL Server, as text. For the library's own use, not exported; a host asks `get_sql_server_edition`.
class RSSQLServerProperty : public CRecordset {
 public:
  /// The name of a property as SERVERPROPERTY takes it.
  RSSQLServerProperty(CDatabase* database, const CString& property_name);

  CString GetDefaultConnect() override { return {}; }
  CString GetDefaultSQL() override;
  void DoFieldExchange(CFieldExchange* exchange) override;

  /// The value that the current row has.
  CString value;
  /// What it was made with.
  CString property;
  CString column_name;  ///< the server's name of the result column, once it is known
};

/// Reads the rows anew, opening the recordset for updating when it is closed, was opened with `executeDirect`, or its
/// requery fails.
/// Null:   a null filter keeps the one in place; an empty one takes it away.
/// Fails:  a failed open is false, or with `throwing` `DBException` "Can not open recordset."; a database error is a
///         CDBException* whatever `throwing` says. The recordset is closed then, and its filter stays changed.
SPCBASE_API bool requery_rs(CRecordset& rs, const char* filter, bool throwing);

/// As `requery_rs`, opening for reading.
SPCBASE_API bool requery_rs_for_read(CRecordset& rs, const char* filter, bool throwing);

/// Adds a condition to the recordset's filter. The first condition stands bare; a later one is appended as
/// " AND (condition)", so a first condition that holds an OR must bring its own brackets.
/// Null:   a null or empty condition changes nothing and gives false.
SPCBASE_API bool set_rs_where_clause(CRecordset& rs, const char* condition);

/// The type of a column in the server's own words, from INFORMATION_SCHEMA; empty when there is no such column.
/// Fails:  CDBException* on a server without that catalogue.
SPCBASE_API CString get_column_data_type(CDatabase* database, const char* table, const char* column);

/// The edition of a SQL Server; empty for every other server.
/// Fails:  `DBException` "Can not open recordset." when the connection is not open.
SPCBASE_API CString get_sql_server_edition(CDatabase* database);

/// Whether a table of a SQL Server has the index: any index of that name with `any_index`, else only the clustered one.
SPCBASE_API bool check_sql_server_index(CDatabase* database, const char* table, const char* index, bool any_index);
