/// Definitions of outside databases: a stored connection of the kind OLE DB or ADO.NET, its XML, its row, and a holder
/// for either.
///
/// Part of the data sources. A definition lives in one row of `CSEXDB`: what identifies it in columns, the rest as XML
/// in the blob. Data sources have no revisions: a row is changed in place, and `MTIME` is all its history. A removed
/// row stays, marked by "D".
///
///     OLEDBInfo source;
///     source.id = 7;                              // from the running number of CSEXDB
///     source.name = "Warehouse";
///     source.connection_string = "DSN=warehouse;UID=spc;PWD=secret";
///     COleDateTime written;
///     OLEDBInfo::create(&db, 0, source, written);
///     std::unique_ptr<OLEDBInfo> read(OLEDBInfo::retrieve(&db, 0, 7));
///
/// Format: docs/formats/external_database.md. The connection string is enciphered with the row's id, so a definition
/// must have its id before it reads or writes XML. That hides a password from whoever sees the XML alone; it is no
/// protection against who has the database and this library.
///
/// The maximum size of a blob in bytes, where one is asked for, matters on drivers that cannot stream: 0 gives their
/// refusal to the caller when reading, else it is the size that a buffer starts with.
///
/// Fails: of all operations on rows: `DBException` "Can not open recordset." when a recordset does not open, "Can not
///        find the specified database connection." when there is no row of the id; CDBException* for a database error;
///        what `get_xml` and `set_xml` throw.
#pragma once

#include <memory>

#include "spcbase/companion/adonet_support.h"
#include "spcbase/companion/oledb_connection.h"
#include "spcbase/companion/syntax_info.h"
#include "spcbase/platform/database/database.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// What both kinds have.
class SPCBASE_API DataSourceInfoBase {
 public:
  DataSourceInfoBase() = default;
  DataSourceInfoBase(const DataSourceInfoBase&) = default;
  DataSourceInfoBase& operator=(const DataSourceInfoBase&) = default;
  virtual ~DataSourceInfoBase();

  int id = 0;                 ///< of the row; also the key of the cipher
  CString name;               ///< for people
  CString connection_string;  ///< clear, password included
};

/// The answers of `refresh`.
enum RefreshResult : int { refresh_unchanged = 0, refresh_changed = 1, refresh_missing = 2 };

/// A source of the kind OLE DB.
class SPCBASE_API OLEDBInfo : public DataSourceInfoBase {
 public:
  CString description;         ///< for people
  CString type;                ///< free text
  int flag2 = 0;               ///< a number of the host's
  COleDateTime modified_time;  ///< local time; null for a definition that is not stored
  bool quote_catalog = true;   ///< whether that kind of identifier is quoted
  bool quote_schema = true;
  bool quote_table = true;
  bool quote_column = true;
  int option = 1;             ///< a number of the host's
  int version = 0;            ///< of the format
  int internal_option = 0;    ///< what is known of the source: the bits below
  CString catalog_separator;  ///< behind each part of a name
  CString schema_separator;
  CString table_separator;
  CString quote_prefix;  ///< around an identifier
  CString quote_suffix;
  std::shared_ptr<UserDefinedSyntaxInfo> syntax_info;  ///< null: the default

  /// The bits of `internal_option`.
  static constexpr int escape_clauses = 1;  ///< ODBC's escape clauses
  static constexpr int ansi_sql = 2;        ///< entry level of SQL-92 or above
  static constexpr int jet_engine = 4;
  static constexpr int new_datetime_type = 8;  ///< see `can_ask_for_sql_server_new_datetime_info`
  /// The kind, in `FLG1` and "flag1".
  static constexpr int kind = 0;
  /// The present version of the format.
  static constexpr int present_version = 4;

  OLEDBInfo();
  OLEDBInfo(const OLEDBInfo& other);  ///< the syntax is copied too
  OLEDBInfo& operator=(const OLEDBInfo& other);
  ~OLEDBInfo() override;

  /// Writes the definition. `include_identity` adds what the row has in columns; `hide_password` writes the connection
  /// string as `ConnectStringUtil::HidePassword` leaves it, else it is enciphered. The clear password never stands in
  /// the result.
  /// Fails: `_com_error` with the code of the document model that refuses something, a character that XML does not have
  ///        for example; std::exception from the cipher.
  CString get_xml(bool include_identity, bool hide_password) const;
  /// Reads a definition into this one: `syntax_info` goes first of all, whatever else has no element keeps its value.
  /// Numbers that cannot be read are 0.
  /// Fails: `DBException` "Load xml failed:" with the parser's reason, "Not OLE DB database connection." for one of the
  ///        other kind, "XML error." for an element with children but no text; `_com_error` for a root without a number
  ///        as version; std::exception for a connection string that was not enciphered under this id. What was read
  ///        before the failure stays.
  void set_xml(const CString& xml);

  /// Learns the facts of an open connection; the version becomes the present one.
  void update_internal_data(OLEDBConnection& connection);
  /// Whether `new_datetime_type` means anything: older definitions were made without asking.
  bool can_ask_for_sql_server_new_datetime_info() const { return version > 1; }

  /// Inserts the row of a definition. `modified` and `modified_time` become the time of writing.
  /// Kept: in UTC, so that the first `refresh` elsewhere than in UTC reads the row anew.
  static void create(CDatabase* database, int maximum_blob_size, OLEDBInfo& definition, COleDateTime& modified);
  /// Reads the definition of an id into a new object, which the caller owns.
  /// Kept: removed rows are read too, and so are those of the other kind.
  static OLEDBInfo* retrieve(CDatabase* database, int maximum_blob_size, int id);
  /// Reads the row again if its time differs from `modified_time`. Gives a RefreshResult.
  int refresh(CDatabase* database, int maximum_blob_size);
  /// Marks the row as removed; a removed one stays so.
  /// Fails: also CDBException* with code 1008 when the row goes away meanwhile.
  void remove(CDatabase* database);
  /// Writes the row, whoever has written it in between; `modified_time` becomes the local time of writing. A removed
  /// row stays removed.
  void save(CDatabase* database, int maximum_blob_size);

 protected:
  /// Becomes a copy, with a syntax of its own.
  void copy_object(const OLEDBInfo& other);

 private:
  friend struct DefinitionRows;

  void init(bool with_flag2);
};

/// A source of the kind ADO.NET.
class SPCBASE_API ADONETDBInfo : public DataSourceInfoBase {
 public:
  CString description;         ///< for people
  CString type;                ///< free text
  int flag2 = 0;               ///< a number of the host's
  COleDateTime modified_time;  ///< local time; null for a definition that is not stored
  CString provider;            ///< the provider's invariant name
  bool quote_catalog = true;   ///< whether that kind of identifier is quoted
  bool quote_schema = true;
  bool quote_table = true;
  bool quote_column = true;
  int version = 0;            ///< of the format
  CString catalog_separator;  ///< behind each part of a name
  CString schema_separator;
  CString table_separator;
  CString quote_prefix;  ///< around an identifier
  CString quote_suffix;
  int default_command_timeout = -1;                    ///< in seconds; -1: unset
  std::shared_ptr<UserDefinedSyntaxInfo> syntax_info;  ///< null: the default

  /// The kind, in `FLG1` and "flag1".
  static constexpr int kind = 1;

  ADONETDBInfo();
  ADONETDBInfo(const ADONETDBInfo& other);  ///< the syntax is copied too
  ADONETDBInfo& operator=(const ADONETDBInfo& other);
  ~ADONETDBInfo() override;

  /// As `OLEDBInfo::get_xml`.
  /// Kept: "quote_suffix" stands there twice.
  CString get_xml(bool include_identity, bool hide_password) const;
  /// As `OLEDBInfo::set_xml`.
  /// Kept: a definition of the other kind is refused with the same words.
  void set_xml(const CString& xml);

  /// Learns the separators and quotes of an open connection; the version becomes 0.
  /// Fails: `_com_error` with the code of the syntax object's refusal; with E_POINTER when no object can be made. What
  ///        was learnt before stays.
  void update_internal_data(_com_ptr_t<ADONETSupport::_DbConnection>& connection);

  /// As those of `OLEDBInfo`.
  static void create(CDatabase* database, int maximum_blob_size, ADONETDBInfo& definition, COleDateTime& modified);
  static ADONETDBInfo* retrieve(CDatabase* database, int maximum_blob_size, int id);
  int refresh(CDatabase* database, int maximum_blob_size);
  void remove(CDatabase* database);
  void save(CDatabase* database, int maximum_blob_size);

 protected:
  /// Becomes a copy, with a syntax of its own.
  void copy_object(const ADONETDBInfo& other);

 private:
  friend struct DefinitionRows;

  void init(bool with_flag2);
};

/// A holder of one definition of either kind, its own or a shared one.
class SPCBASE_API ExtDataSourceInfo {
 public:
  /// The kind of an empty holder.
  static constexpr int no_kind = -1;

  bool owned = false;                  ///< the holder deletes `info` when it lets go
  DataSourceInfoBase* info = nullptr;  ///< may be null
  int kind = no_kind;                  ///< `OLEDBInfo::kind` or `ADONETDBInfo::kind`

  ExtDataSourceInfo() = default;
  /// Copies share what the other one shares, and get a definition of their own where it owns one. A shared definition
  /// must outlive its holders. One that owns what the other one shares stays its owner.
  ExtDataSourceInfo(const ExtDataSourceInfo& other) { copy_object(other, false); }
  ExtDataSourceInfo& operator=(const ExtDataSourceInfo& other) {
    copy_object(other, false);
    return *this;
  }
  ~ExtDataSourceInfo() { release(); }

  /// Takes a definition of its own, a copy of what the other one holds or shares. With itself: what was shared becomes
  /// its own.
  /// Kept: with itself, shared and empty, the kind becomes 1.
  void clone(const ExtDataSourceInfo& other) { copy_object(other, true); }
  /// Lets go: deletes the definition when it is owned and of a known kind, and is empty then.
  void release();

 private:
  void copy_object(const ExtDataSourceInfo& other, bool deep);
};
