/// Catalogues of the servers themselves, and the list of all recordset classes as data.
///
/// Part of the database foundation: the schema's recordsets.
#pragma once

#include <span>

#include "spcbase/foundation/schema/column_table.h"
#include "spcbase/platform/system/export.h"

/// An index of a SQL Server's table.
class RSSQLServerSysIndex : public TableRecordset<RSSQLServerSysIndex, CRecordset> {
 public:
  using TableRecordset::TableRecordset;

  long object_id = 0;
  CString name;
  long index_id = 0;

  static constexpr const char* source = "sys.indexes";
  static constexpr auto columns = coltab::table(coltab::field("[object_id]", &RSSQLServerSysIndex::object_id),
                                                coltab::field("[name]", &RSSQLServerSysIndex::name, 255),
                                                coltab::field("[index_id]", &RSSQLServerSysIndex::index_id));
};

/// The type of a column.
class RS_INFORMATION_SCHEMA_COLUMNS_1 : public TableRecordset<RS_INFORMATION_SCHEMA_COLUMNS_1, CRecordset> {
 public:
  using TableRecordset::TableRecordset;

  CString data_type;

  static constexpr const char* source = "INFORMATION_SCHEMA.COLUMNS";
  static constexpr auto columns =
      coltab::table(coltab::field("[DATA_TYPE]", &RS_INFORMATION_SCHEMA_COLUMNS_1::data_type, 255));
};

namespace coltab {

/// One column of a class as plain data.
struct ColumnFact {
  const char* name;  ///< as it is written in statements
  Kind kind;         ///< how it is exchanged
  int width_chars;   ///< of a text, else 0
  bool is_key;       ///< one of the columns that tell rows apart
};

/// One recordset class as plain data.
struct ClassFact {
  const char* class_name;                  ///< the C++ name
  const char* source;                      ///< a table, a list of tables, a join, or a whole statement
  std::span<const ColumnFact> columns;     ///< in the order of the select list
  std::span<const ColumnFact> parameters;  ///< in the order of the marks in the filter
};

/// Every recordset class with a column table, by theme and in the order of its header; those on the catalogues of
/// servers last.
SPCBASE_API std::span<const ClassFact> recordset_classes();

}  // namespace coltab
