/// Reading and marking the rows of definitions: one rule for both kinds.
///
/// Part of the data sources; not for hosts.
#pragma once

#include "spcbase/foundation/schema/data_sources.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/time/internal/row_moment.h"
#include "spcbase/utility/text.h"

/// The way to what the definitions keep to themselves.
struct DefinitionRows {
  /// Makes a definition that has its id the one that a row holds. What an empty blob does not tell becomes that of a
  /// new definition.
  /// Kept: a syntax stays where the blob is empty. Where the blob cannot be read, the columns are taken already, the
  ///       time too, so that the next `refresh` finds no difference.
  template <class Definition>
  static void take(RSExtDB& row, const LocalMomentReader& moments, Definition& definition) {
    definition.name = fix_spc_name(fix_spc_name(row.name, false), false);
    definition.description = fix_spc_name(row.descr, true);
    definition.type = row.type;
    definition.flag2 = static_cast<int>(row.flg2);
    definition.modified_time = local_time(row, moments);
    const CString xml = row.get_blob_str(row);
    if (xml.IsEmpty())
      forget_what_xml_tells(definition);
    else
      definition.set_xml(xml);
  }

  /// The time of a row, fraction included; null where the row has none.
  static COleDateTime local_time(RSExtDB& row, const LocalMomentReader& moments) {
    return row.IsFieldNull(&row.mtime) != FALSE ? no_time() : moments.read(row.mtime);
  }

  /// The same in UTC, to the second.
  static COleDateTime utc_time(RSExtDB& row) {
    const TIMESTAMP_STRUCT& t = row.mtime;
    if (row.IsFieldNull(&t) != FALSE) return no_time();
    return {t.year, t.month, t.day, t.hour, t.minute, t.second};
  }

 private:
  static COleDateTime no_time() {
    COleDateTime none;
    none.SetStatus(COleDateTime::null);
    return none;
  }

  template <class Definition>
  static void forget_what_xml_tells(Definition& definition) {
    definition.init(false);
    for (CString* text : {&definition.connection_string, &definition.catalog_separator, &definition.schema_separator,
                          &definition.table_separator, &definition.quote_prefix, &definition.quote_suffix})
      text->Empty();
  }
};

/// The filter for the row of an id.
inline CString filter_for_definition(int id) {
  CString filter;
  filter.Format("[EXDBID] = %d", id);
  return filter;
}

/// Marks the row of an id as removed, through a closed recordset.
/// Fails: as `OLEDBInfo::remove`.
void mark_as_removed(RSExtDBForDelete& rows, int id);
