// The lists of stored definitions and of their ids.
#include <functional>
#include <iterator>

#include "spcbase/datasource/internal/definition_rows.h"
#include "spcbase/datasource/stored.h"
#include "spcbase/foundation/access_predicate.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/blob_retry.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/time/calendar.h"

namespace {

template <class Definition>
using Definitions = std::vector<std::shared_ptr<Definition>>;

void restrict_to(CRecordset& rows, int kind, int user) {
  rows.m_strFilter.Format("[VFLG] IS NULL AND [FLG1] = %d", kind);
  if (user != 0)
    set_rs_where_clause(rows, access_predicate::fill(access_predicate::data_sources, "[EXDBID]", user).GetString());
}

template <class Definition>
Definitions<Definition> read_rows(CDatabase* database, int buffer_size, int user, COleDateTime& newest) {
  RSExtDB row(database, buffer_size);
  restrict_to(row, Definition::kind, user);
  if (!open_for_read(row)) throw_can_not_open_rs_exception();
  newest.SetStatus(COleDateTime::null);
  const LocalMomentReader moments;
  Definitions<Definition> definitions;
  for (; row.m_bEOF == FALSE; row.MoveNext()) {
    auto definition = std::make_shared<Definition>();
    definition->id = static_cast<int>(row.exdbid);
    DefinitionRows::take(row, moments, *definition);
    definitions.push_back(std::move(definition));
    const COleDateTime modified = DefinitionRows::utc_time(row);
    if (newest.GetStatus() == COleDateTime::null || less_than_dt(newest, modified)) newest = modified;
  }
  row.Close();
  return definitions;
}

/// The rows are appended when all of them were read, so that a second attempt finds none of the first.
template <class Definition>
int append_rows(CDatabase* database, int maximum_blob_size, int user, Definitions<Definition>& definitions,
                COleDateTime& newest) {
  auto found = run_with_blob_retry<Definitions<Definition>>(
      maximum_blob_size, [&](int buffer_size) { return read_rows<Definition>(database, buffer_size, user, newest); });
  definitions.insert(definitions.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
  return static_cast<int>(found.size());
}

int append_ids(CDatabase* database, int kind, std::vector<int>& ids) {
  RSExtDBWithOnlyID row(database);
  row.m_strFilter.Format("[FLG1] = %d", kind);
  if (!open_for_read(row)) throw_can_not_open_rs_exception();
  int count = 0;
  for (; row.m_bEOF == FALSE; row.MoveNext(), ++count)
    ids.push_back(static_cast<int>(row.exdbid));
  row.Close();
  return count;
}

}  // namespace

int get_all_ole_db(CDatabase* database, int maximum_blob_size, int user,
                   std::vector<std::shared_ptr<OLEDBInfo>>& definitions, COleDateTime& newest) {
  return append_rows(database, maximum_blob_size, user, definitions, newest);
}

int get_all_adonet_db(CDatabase* database, int maximum_blob_size, int user,
                      std::vector<std::shared_ptr<ADONETDBInfo>>& definitions, COleDateTime& newest) {
  return append_rows(database, maximum_blob_size, user, definitions, newest);
}

int get_all_ole_db_id(CDatabase* database, std::vector<int>& ids) { return append_ids(database, OLEDBInfo::kind, ids); }

int get_all_adonet_db_id(CDatabase* database, std::vector<int>& ids) {
  return append_ids(database, ADONETDBInfo::kind, ids);
}
