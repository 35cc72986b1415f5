/// Connections to outside databases.
///
/// Part of the database foundation: the schema's recordsets.
#pragma once

#include "spcbase/foundation/blob.h"

/// A stored connection and its definition. `flg1` tells its kind.
class RSExtDB : public SingleBlobColumnRecordset<RSExtDB> {
 public:
  using SingleBlobColumnRecordset::SingleBlobColumnRecordset;

  long exdbid = 0;
  CString name;
  CString descr;
  CString type;
  long flg1 = 0;
  long flg2 = 0;
  TIMESTAMP_STRUCT mtime{};
  CString vflg;

  static constexpr const char* source = "[CSEXDB]";
  static constexpr auto columns = coltab::table(
      coltab::key("[EXDBID]", &RSExtDB::exdbid), coltab::field("[NAME]", &RSExtDB::name, 255),
      coltab::field("[DESCR]", &RSExtDB::descr, 255), coltab::field("[TYPE]", &RSExtDB::type, 255),
      coltab::field("[FLG1]", &RSExtDB::flg1), coltab::field("[FLG2]", &RSExtDB::flg2),
      coltab::field("[MTIME]", &RSExtDB::mtime), coltab::field("[VFLG]", &RSExtDB::vflg, 255), coltab::blob("[DATA]"));
};

/// What marks a stored connection as deleted.
class RSExtDBForDelete : public TableRecordset<RSExtDBForDelete> {
 public:
  using TableRecordset::TableRecordset;

  long exdbid = 0;
  CString vflg;

  static constexpr const char* source = "[CSEXDB]";
  static constexpr auto columns = coltab::table(coltab::key("[EXDBID]", &RSExtDBForDelete::exdbid),
                                                coltab::field("[VFLG]", &RSExtDBForDelete::vflg, 255));
};

/// The ids of the live connections.
class RSExtDBWithOnlyID : public TableRecordset<RSExtDBWithOnlyID> {
 public:
  using TableRecordset::TableRecordset;

  long exdbid = 0;

  static constexpr const char* source = "[CSEXDBV]";
  static constexpr auto columns = coltab::table(coltab::key("[EXDBID]", &RSExtDBWithOnlyID::exdbid));
};
