/// The history of versioned objects. In a column's name C stands for creation and A for approval; moments are UTC.
///
/// Part of the database foundation: the schema's recordsets. A revision of -300 in a field means that none was read.
#pragma once

#include "spcbase/foundation/blob.h"

/// A whole revision without its payload.
class RSOBJREV : public TableRecordset<RSOBJREV> {
 public:
  using TableRecordset::TableRecordset;

  long revid = 0;
  long objid = 0;
  long objtype = 0;
  long revision = -300;
  long majorver = 0;
  long minorver = 0;
  long flag = 0;
  TIMESTAMP_STRUCT ctime{};
  long cuserid = 0;
  CString cuser;
  CString creason;
  long alevel = 0;
  long atype = 0;
  TIMESTAMP_STRUCT atime{};
  long auserid = 0;
  CString auser;
  CString areason;

  static constexpr const char* source = "[CSOBJREV]";
  static constexpr auto columns =
      coltab::table(coltab::key("[REVID]", &RSOBJREV::revid), coltab::field("[OBJID]", &RSOBJREV::objid),
                    coltab::field("[OBJTYPE]", &RSOBJREV::objtype), coltab::field("[REVISION]", &RSOBJREV::revision),
                    coltab::field("[MAJORVER]", &RSOBJREV::majorver), coltab::field("[MINORVER]", &RSOBJREV::minorver),
                    coltab::field("[FLAG]", &RSOBJREV::flag), coltab::field("[CTIME]", &RSOBJREV::ctime),
                    coltab::field("[CUSERID]", &RSOBJREV::cuserid), coltab::field("[CUSER]", &RSOBJREV::cuser, 255),
                    coltab::field("[CREASON]", &RSOBJREV::creason, 4000), coltab::field("[ALEVEL]", &RSOBJREV::alevel),
                    coltab::field("[ATYPE]", &RSOBJREV::atype), coltab::field("[ATIME]", &RSOBJREV::atime),
                    coltab::field("[AUSERID]", &RSOBJREV::auserid), coltab::field("[AUSER]", &RSOBJREV::auser, 255),
                    coltab::field("[AREASON]", &RSOBJREV::areason, 4000));
};

/// What a new revision is made of; the database assigns REVID, and object, type and revision tell rows apart.
class RSOBJREVForAdd : public TableRecordset<RSOBJREVForAdd> {
 public:
  using TableRecordset::TableRecordset;

  long objid = 0;
  long objtype = 0;
  long revision = -300;
  long majorver = 0;
  long minorver = 0;
  long flag = 0;
  TIMESTAMP_STRUCT ctime{};
  long cuserid = 0;
  CString cuser;
  CString creason;

  static constexpr const char* source = "[CSOBJREV]";
  static constexpr auto columns = coltab::table(
      coltab::key("[OBJID]", &RSOBJREVForAdd::objid), coltab::key("[OBJTYPE]", &RSOBJREVForAdd::objtype),
      coltab::key("[REVISION]", &RSOBJREVForAdd::revision), coltab::field("[MAJORVER]", &RSOBJREVForAdd::majorver),
      coltab::field("[MINORVER]", &RSOBJREVForAdd::minorver), coltab::field("[FLAG]", &RSOBJREVForAdd::flag),
      coltab::field("[CTIME]", &RSOBJREVForAdd::ctime), coltab::field("[CUSERID]", &RSOBJREVForAdd::cuserid),
      coltab::field("[CUSER]", &RSOBJREVForAdd::cuser, 255),
      coltab::field("[CREASON]", &RSOBJREVForAdd::creason, 4000));
};

/// What an approval fills in. The level is part of the key, so that a row is found only while it is as approved, or
/// not, as it was read: of two approvers one wins.
class RSOBJREVForApprove : public TableRecordset<RSOBJREVForApprove> {
 public:
  using TableRecordset::TableRecordset;

  long objid = 0;
  long objtype = 0;
  long revision = -300;
  long majorver = 0;
  long minorver = 0;
  long alevel = 0;
  long atype = 0;
  TIMESTAMP_STRUCT atime{};
  long auserid = 0;
  CString auser;
  CString areason;

  static constexpr const char* source = "[CSOBJREV]";
  static constexpr auto columns = coltab::table(
      coltab::key("[OBJID]", &RSOBJREVForApprove::objid), coltab::key("[OBJTYPE]", &RSOBJREVForApprove::objtype),
      coltab::key("[REVISION]", &RSOBJREVForApprove::revision),
      coltab::field("[MAJORVER]", &RSOBJREVForApprove::majorver),
      coltab::field("[MINORVER]", &RSOBJREVForApprove::minorver), coltab::key("[ALEVEL]", &RSOBJREVForApprove::alevel),
      coltab::field("[ATYPE]", &RSOBJREVForApprove::atype), coltab::field("[ATIME]", &RSOBJREVForApprove::atime),
      coltab::field("[AUSERID]", &RSOBJREVForApprove::auserid),
      coltab::field("[AUSER]", &RSOBJREVForApprove::auser, 255),
      coltab::field("[AREASON]", &RSOBJREVForApprove::areason, 4000));
};

/// The version that people see.
class RSOBJREVWithVersion : public TableRecordset<RSOBJREVWithVersion> {
 public:
  using TableRecordset::TableRecordset;

  long objid = 0;
  long objtype = 0;
  long revision = -300;
  long majorver = 0;
  long minorver = 0;

  static constexpr const char* source = "[CSOBJREV]";
  static constexpr auto columns = coltab::table(coltab::key("[OBJID]", &RSOBJREVWithVersion::objid),
                                                coltab::key("[OBJTYPE]", &RSOBJREVWithVersion::objtype),
                                                coltab::key("[REVISION]", &RSOBJREVWithVersion::revision),
                                                coltab::field("[MAJORVER]", &RSOBJREVWithVersion::majorver),
                                                coltab::field("[MINORVER]", &RSOBJREVWithVersion::minorver));
};

/// The ids of a revision.
class RSOBJREV_Minimum : public TableRecordset<RSOBJREV_Minimum> {
 public:
  using TableRecordset::TableRecordset;

  long revid = 0;
  long objid = 0;
  long objtype = 0;
  long revision = -300;

  static constexpr const char* source = "[CSOBJREV]";
  static constexpr auto columns = coltab::table(
      coltab::key("[REVID]", &RSOBJREV_Minimum::revid), coltab::field("[OBJID]", &RSOBJREV_Minimum::objid),
      coltab::field("[OBJTYPE]", &RSOBJREV_Minimum::objtype), coltab::field("[REVISION]", &RSOBJREV_Minimum::revision));
};

/// A revision's payload.
class RSOBJDAT : public SingleBlobColumnRecordset<RSOBJDAT> {
 public:
  using SingleBlobColumnRecordset::SingleBlobColumnRecordset;

  long revid = 0;

  static constexpr const char* source = "[CSREVDAT]";
  static constexpr auto columns = coltab::table(coltab::key("[REVID]", &RSOBJDAT::revid), coltab::blob("[DATA]"));
};

/// A revision joined with its payload. For reading only.
class RSFullRevisionInfo : public SingleBlobColumnRecordset<RSFullRevisionInfo> {
 public:
  using SingleBlobColumnRecordset::SingleBlobColumnRecordset;

  long revid = 0;
  long objid = 0;
  long objtype = 0;
  long revision = -300;
  long majorver = 0;
  long minorver = 0;
  long flag = 0;
  TIMESTAMP_STRUCT ctime{};
  long cuserid = 0;
  CString cuser;
  CString creason;
  long alevel = 0;
  long atype = 0;
  TIMESTAMP_STRUCT atime{};
  long auserid = 0;
  CString auser;
  CString areason;

  static constexpr const char* source = "CSOBJREV LEFT JOIN CSREVDAT ON CSOBJREV.REVID = CSREVDAT.REVID";
  static constexpr auto columns = coltab::table(
      coltab::field("[CSOBJREV].[REVID]", &RSFullRevisionInfo::revid),
      coltab::field("[OBJID]", &RSFullRevisionInfo::objid), coltab::field("[OBJTYPE]", &RSFullRevisionInfo::objtype),
      coltab::field("[REVISION]", &RSFullRevisionInfo::revision),
      coltab::field("[MAJORVER]", &RSFullRevisionInfo::majorver),
      coltab::field("[MINORVER]", &RSFullRevisionInfo::minorver), coltab::field("[FLAG]", &RSFullRevisionInfo::flag),
      coltab::field("[CTIME]", &RSFullRevisionInfo::ctime), coltab::field("[CUSERID]", &RSFullRevisionInfo::cuserid),
      coltab::field("[CUSER]", &RSFullRevisionInfo::cuser, 255),
      coltab::field("[CREASON]", &RSFullRevisionInfo::creason, 4000),
      coltab::field("[ALEVEL]", &RSFullRevisionInfo::alevel), coltab::field("[ATYPE]", &RSFullRevisionInfo::atype),
      coltab::field("[ATIME]", &RSFullRevisionInfo::atime), coltab::field("[AUSERID]", &RSFullRevisionInfo::auserid),
      coltab::field("[AUSER]", &RSFullRevisionInfo::auser, 255),
      coltab::field("[AREASON]", &RSFullRevisionInfo::areason, 4000), coltab::blob("[DATA]"));
};
