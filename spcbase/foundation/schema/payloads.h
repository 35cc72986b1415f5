/// The payloads of monitors and profiles.
///
/// Part of the database foundation: the schema's recordsets.
#pragma once

#include "spcbase/foundation/blob.h"

/// A monitor's data.
class RSMOPB : public SingleBlobColumnRecordset<RSMOPB> {
 public:
  using SingleBlobColumnRecordset::SingleBlobColumnRecordset;

  long monid = 0;

  static constexpr const char* source = "[CSMOPB]";
  static constexpr auto columns = coltab::table(coltab::key("[MONID]", &RSMOPB::monid), coltab::blob("[OPTVAL]"));
};

/// A profile's data.
class RSPOPB : public SingleBlobColumnRecordset<RSPOPB> {
 public:
  using SingleBlobColumnRecordset::SingleBlobColumnRecordset;

  long profid = 0;

  static constexpr const char* source = "[CSPOPB]";
  static constexpr auto columns = coltab::table(coltab::key("[PROFID]", &RSPOPB::profid), coltab::blob("[OPTVAL]"));
};

/// A monitor's extra data, a text.
class RSMEXT : public SingleBlobColumnRecordset<RSMEXT> {
 public:
  using SingleBlobColumnRecordset::SingleBlobColumnRecordset;

  long monid = 0;

  static constexpr const char* source = "[CSMEXT]";
  static constexpr auto columns = coltab::table(coltab::key("[MONID]", &RSMEXT::monid), coltab::blob("[DATA]"));
};
