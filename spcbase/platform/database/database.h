/// CDatabase: a connection to a server, or to an SQLite file.
///
/// Part of the database platform layer. Connect texts:
///
///     ODBC;DSN=plant;UID=u;PWD=p             any ODBC data source ("ODBC;" may be left out)
///     Driver={MariaDB Unicode};SOCKET=...    any ODBC driver without a data source
///     sqlite:FILE                            an SQLite file, without a driver; the file must exist
///     sqlite:FILE;Create=1;Timeout=2000      options: Create=1 makes the file when it is missing, Timeout is the
///                                            longest wait for a lock in milliseconds (default 5000)
///     sqlite::memory:                        a database of this connection alone
///
/// Differs: no dialog is ever shown; there is no cursor library; a connection keeps its prepared statements, so that
/// the tenth look-up of a kind costs one execution. Recordsets that are open when the connection closes are closed with
/// it.
#pragma once

#include <cstdint>
#include <memory>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/observer.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

class CRecordset;

namespace spcdb {
class Session;
class Connection;
}  // namespace spcdb

/// A connection. Belongs to one thread at a time.
class SPCBASE_API CDatabase {
 public:
  /// What `OpenEx` may be told.
  enum DbOpenOptions : DWORD {
    openExclusive = 0x0001,
    openReadOnly = 0x0002,
    useCursorLib = 0x0004,
    noOdbcDialog = 0x0008,
    forceOdbcDialog = 0x0010
  };

  CDatabase();
  virtual ~CDatabase();  ///< closes
  CDatabase(const CDatabase&) = delete;
  CDatabase& operator=(const CDatabase&) = delete;

  /// The ODBC connection handle, or the sqlite3*; null when not connected.
  void* m_hdbc = nullptr;
  /// The connect text as it was given.
  CString m_strConnect;
  /// Not 0 when rows may be written.
  BOOL m_bUpdatable = FALSE;
  /// Not 0 when the session reports transactions.
  BOOL m_bTransactions = FALSE;

  /// Connects. `dsn` names a data source and may be null when `connect` tells all.
  /// Fails: CDBException* when the text names no driver, data source or file, and for every refusal of the driver. No
  ///        password of the connect text stands in it.
  virtual BOOL Open(const char* dsn, BOOL exclusive = FALSE, BOOL read_only = FALSE, const char* connect = "ODBC;",
                    BOOL use_cursor_library = TRUE);
  /// Connects by a connect text alone; `options` are DbOpenOptions, of which openReadOnly alone has an effect.
  virtual BOOL OpenEx(const char* connect, DWORD options = 0);
  /// Closes open recordsets, drops kept statements, rolls back what is open, disconnects. A handle that a host handed
  /// in stays open. Harmless when not connected.
  virtual void Close();
  /// Whether there is a connection.
  BOOL IsOpen() const { return m_hdbc != nullptr; }

  /// What was found when connecting: whether rows may be changed, whether there are transactions, the connect text.
  BOOL CanUpdate() const { return m_bUpdatable; }
  BOOL CanTransact() const { return m_bTransactions; }
  const CString& GetConnect() const { return m_strConnect; }

  /// Runs a statement whose rows nobody wants, as it is given.
  void ExecuteSQL(const char* sql);

  /// Begins, commits and rolls back the one transaction of a connection. Not 0 for success; 0 when the session has no
  /// transactions, when one is open already (BeginTrans) or none is open (the others).
  /// Fails: CDBException* for a refusal of the server. A commit after the server has rolled the transaction back by
  /// itself (a deadlock) fails with AFX_SQL_ERROR_TRANSACTION_LOST; `Rollback` then ends it.
  BOOL BeginTrans();
  BOOL CommitTrans();
  BOOL Rollback();

  /// Seconds that a statement may take; 0 is no limit. Kept without effect where the driver has no such thing.
  void SetQueryTimeout(DWORD seconds);
  DWORD GetQueryTimeout() const;

  /// SQLGetInfo of a 4-byte value: the driver's return code, 0 and 1 being success; -2 when not connected.
  RETCODE GetInfo(WORD type, DWORD& value);
  /// The same of a text, empty when it is refused. Ours: the documented type has one `GetInfo` for both.
  RETCODE information_text(WORD type, CString& text);

  /// Who is told of every statement; null ends it. Not owned. Survives Close and Open.
  void set_observer(spcdb::StatementObserver* observer);
  spcdb::StatementObserver* observer() const;

  /// Asks the driver whether the link is known to be dead. False also when the driver cannot tell.
  bool link_is_dead();
  /// Name and version of server and driver, for people; empty when not connected.
  CString describe_server();

  /// For this layer and its tests: the session and the kept statements under this connection; null when not connected.
  spcdb::Connection* connection() const { return connection_.get(); }
  /// For tests and hosts with a session of their own: takes it in place of the present one and learns its facts.
  void adopt_session(std::unique_ptr<spcdb::Session> session, BOOL updatable = TRUE);

 protected:
  /// The two steps by which a connection learns of the driver's abilities: the first takes m_hdbc under a session (for
  /// a handle that came from outside), the second asks it and sets m_bTransactions and m_bUpdatable.
  virtual void VerifyConnect();
  virtual void GetConnectInfo();

 private:
  friend class CRecordset;

  std::unique_ptr<spcdb::Connection> connection_;
  spcdb::StatementObserver* observer_ = nullptr;
  DWORD query_timeout_s_ = 0;
};
