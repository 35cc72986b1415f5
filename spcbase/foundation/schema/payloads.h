/// The payloads of monitors and profiles. Their blob columns are not exchanged here: the classes tell whether a row is
/// there.
///
/// Part of the database foundation: the schema's recordsets.
#pragma once

#include "spcbase/foundation/schema/column_table.h"

/// The row of a monitor's options, without the blob OPTVAL.
class RSMOPB : public TableRecordset<RSMOPB> {
 public:
  using TableRecordset::TableRecordset;

  long monid = 0;

  static constexpr const char* source = "[CSMOPB]";
  static constexpr auto columns = coltab::table(coltab::key("[MONID]", &RSMOPB::monid));
};

/// The row of a profile's options, without the blob OPTVAL.
class RSPOPB : public TableRecordset<RSPOPB> {
 public:
  using TableRecordset::TableRecordset;

  long profid = 0;

  static constexpr const char* source = "[CSPOPB]";
  static constexpr auto columns = coltab::table(coltab::key("[PROFID]", &RSPOPB::profid));
};

/// The row of a monitor's extra data, without the blob DATA.
class RSMEXT : public TableRecordset<RSMEXT> {
 public:
  using TableRecordset::TableRecordset;

  long monid = 0;

  static constexpr const char* source = "[CSMEXT]";
  static constexpr auto columns = coltab::table(coltab::key("[MONID]", &RSMEXT::monid));
};
