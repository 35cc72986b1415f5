#include "spcbase/revision/maintenance.h"

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/dialect_table.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/schema/revisions.h"

namespace rev {
namespace {

constexpr DWORD least_timeout_s = 300;

constexpr const char* statements_that_forget[] = {
    "UPDATE CSPROF SET AREV = NULL, ALEVEL = NULL",
    "UPDATE CSMON SET AREV = NULL, ALEVEL = NULL",
    "UPDATE CSDOC SET AREV = NULL, ALEVEL = NULL",
    "UPDATE CSPSQ SET AREV = NULL, ALEVEL = NULL",
    "UPDATE CSCHRT SET REVISION = NULL, AREV = NULL, ALEVEL = NULL",
    "UPDATE CSLABEL SET REVISION = NULL, AREV = NULL, ALEVEL = NULL",
    "UPDATE CSTS SET REVISION = NULL, AREV = NULL, ALEVEL = NULL",
    "UPDATE CSDASH SET REVISION = NULL, AREV = NULL, ALEVEL = NULL",
    "UPDATE CSCINP SET CHRTREV = NULL",
    "UPDATE CSLINP SET LABELREV = NULL",
    // Never truncated.
    "DELETE FROM CSATYPE",
    "DELETE FROM CSINI WHERE KYWORD = 'qdms.migration.stage'",
};

void empty_table(CDatabase& database, const char* statement_form, const char* table) {
  CString statement;
  statement.Format(statement_form, table);
  database.ExecuteSQL(statement);
}

constexpr const char* truncate_form = "TRUNCATE TABLE %s";
constexpr const char* delete_form = "DELETE FROM %s";

/// Empties the payloads, and finds how this server empties a large table best.
const char* empty_payloads(CDatabase& database) {
  constexpr const char* payloads = "CSREVDAT";
  try {
    empty_table(database, truncate_form, payloads);
    return truncate_form;
  } catch (CDBException* refused) {
    refused->Delete();
  }
  empty_table(database, delete_form, payloads);
  return delete_form;
}

void drop_foreign_key(CDatabase& database, const dialect::Row& server) {
  CString statement(server.drop_constraint);
  statement.Replace("%1", "CSREVDAT");
  statement.Replace("%2", "FKREVDAT1");
  database.ExecuteSQL(statement);
}

}  // namespace

void rebuild_version(CDatabase* database) {
  RSOBJREVWithVersion rows(database);
  rows.m_strSort = "[OBJTYPE], [OBJID], [REVISION] ASC";
  if (!open_for_update(rows)) throw_can_not_open_rs_exception();
  long object_id = 0;
  long object_type = 0;
  int counter = 1;
  for (; !rows.IsEOF(); rows.MoveNext()) {
    rows.Edit();
    // Kept: an object with the id 0 is not remembered, so the one behind it goes on counting.
    const bool first = object_id == 0;
    if (!first && (object_id != rows.objid || object_type != rows.objtype)) counter = 1;
    object_id = rows.objid;
    object_type = rows.objtype;
    rows.majorver = 0;
    rows.minorver = counter++;
    rows.Update();
  }
  rows.Close();
}

void reset_migration(CDatabaseEx& database) {
  const DWORD timeout_s = database.GetQueryTimeout();
  if (timeout_s < least_timeout_s) database.SetQueryTimeout(least_timeout_s);

  const char* const empty_form = empty_payloads(database);
  // A table that a foreign key refers to cannot be truncated.
  const dialect::Row* server = dialect::find(dbcheck::find_db_type(database));
  if (server) drop_foreign_key(database, *server);
  empty_table(database, empty_form, "CSOBJREV");
  if (server)
    database.ExecuteSQL("ALTER TABLE CSREVDAT ADD CONSTRAINT FKREVDAT1 FOREIGN KEY(REVID) REFERENCES CSOBJREV(REVID)");
  empty_table(database, empty_form, "CSMGSTAT");
  for (const char* statement : statements_that_forget)
    database.ExecuteSQL(statement);

  database.SetQueryTimeout(timeout_s);
}

}  // namespace rev
