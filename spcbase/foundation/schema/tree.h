/// The tree of folders, and the monitors and profiles in its nodes.
///
/// Part of the database foundation: the schema's recordsets.
#pragma once

#include "spcbase/foundation/schema/column_table.h"

/// A folder by its name.
class RSNode1 : public TableRecordset<RSNode1> {
 public:
  using TableRecordset::TableRecordset;

  long nodeid = 0;
  CString name;

  static constexpr const char* source = "[CSNODE]";
  static constexpr auto columns =
      coltab::table(coltab::key("[NODEID]", &RSNode1::nodeid), coltab::field("[NAME]", &RSNode1::name, 255));
};

/// A folder and its parent.
class RSNode2 : public TableRecordset<RSNode2> {
 public:
  using TableRecordset::TableRecordset;

  long nodeid = 0;
  CString name;
  long pnode = 0;

  static constexpr const char* source = "[CSNODE]";
  static constexpr auto columns =
      coltab::table(coltab::key("[NODEID]", &RSNode2::nodeid), coltab::field("[NAME]", &RSNode2::name, 255),
                    coltab::field("[PNODE]", &RSNode2::pnode));
};

/// A monitor in a folder. The two sources are joined by `join`, which belongs into the filter.
class RSMonInNode1 : public TableRecordset<RSMonInNode1> {
 public:
  using TableRecordset::TableRecordset;

  long monid = 0;
  CString name;
  long nodeid = 0;

  static constexpr const char* join = "[CSMONV].[MONID] = [CSMINNV].[MONID]";
  static constexpr const char* source = "[CSMINNV],[CSMONV]";
  static constexpr auto columns = coltab::table(coltab::field("[CSMONV].[MONID]", &RSMonInNode1::monid),
                                                coltab::field("[CSMONV].[NAME]", &RSMonInNode1::name, 255),
                                                coltab::field("[CSMINNV].[NODEID]", &RSMonInNode1::nodeid));
};

/// A profile in a folder. The two sources are joined by `join`, which belongs into the filter.
class RSProfInNode1 : public TableRecordset<RSProfInNode1> {
 public:
  using TableRecordset::TableRecordset;

  long profid = 0;
  CString name;
  long nodeid = 0;

  static constexpr const char* join = "[CSPROFV].[PROFID] = [CSPINNV].[PROFID]";
  static constexpr const char* source = "[CSPINNV],[CSPROFV]";
  static constexpr auto columns = coltab::table(coltab::field("[CSPROFV].[PROFID]", &RSProfInNode1::profid),
                                                coltab::field("[CSPROFV].[NAME]", &RSProfInNode1::name, 255),
                                                coltab::field("[CSPINNV].[NODEID]", &RSProfInNode1::nodeid));
};
