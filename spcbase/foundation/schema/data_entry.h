/// Profiles, their characteristics and labels, and the samples taken on them.
///
/// Part of the database foundation: the schema's recordsets. CSSAMP, CSUSERV and CSSTNV are exchanged under bare names,
/// all others in square brackets; both are part of the statements that servers see.
#pragma once

#include <tuple>

#include "spcbase/foundation/schema/column_table.h"

/// A characteristic in a profile.
class CRSCharInProfile : public TableRecordset<CRSCharInProfile> {
 public:
  using TableRecordset::TableRecordset;

  long profid = 0;
  long chrtid = 0;
  long seqno = 0;

  static constexpr const char* source = "CSCINPV";
  static constexpr auto columns = coltab::table(coltab::key("[PROFID]", &CRSCharInProfile::profid),
                                                coltab::key("[CHRTID]", &CRSCharInProfile::chrtid),
                                                coltab::field("[SEQNO]", &CRSCharInProfile::seqno));
};

/// A label in a profile; `alflg` is "YES" for one that fills itself.
class CRSLabelInProfile : public TableRecordset<CRSLabelInProfile> {
 public:
  using TableRecordset::TableRecordset;

  long profid = 0;
  long labelid = 0;
  long seqno = 0;
  CString alflg;

  static constexpr const char* source = "CSLINPV";
  static constexpr auto columns = coltab::table(
      coltab::key("[PROFID]", &CRSLabelInProfile::profid), coltab::key("[LABELID]", &CRSLabelInProfile::labelid),
      coltab::field("[SEQNO]", &CRSLabelInProfile::seqno), coltab::field("[ALFLG]", &CRSLabelInProfile::alflg, 255));
};

/// The two lists of a profile with the names of what is in it. They serve one function of data entry and are opened
/// with the whole statement that stands beside them; the `%ld` is the profile.
namespace profile_lists {

/// The characteristics of a profile with their names.
class CRSCharInProfile2 : public CRSCharInProfile {
 public:
  /// A closed recordset.
  explicit CRSCharInProfile2(CDatabase* database) : CRSCharInProfile(database) { use_columns(columns); }

  void DoFieldExchange(CFieldExchange* exchange) override {
    coltab::exchange_all(*this, columns, exchange, CFieldExchange::outputColumn);
  }

  CString name;
  CString descr;
  CString ctype;

  static constexpr const char* statement =
      "SELECT PROFID, CSCINP.CHRTID, SEQNO, NAME, DESCR, CTYPE FROM CSCINP, CSCHRTV WHERE CSCINP.CHRTID=CSCHRTV.CHRTID "
      "AND PROFID=%ld";
  static constexpr auto columns = std::tuple_cat(
      CRSCharInProfile::columns, coltab::table(coltab::field("[NAME]", &CRSCharInProfile2::name, 255),
                                               coltab::field("[DESCR]", &CRSCharInProfile2::descr, 255),
                                               coltab::field("[CTYPE]", &CRSCharInProfile2::ctype, 255)));
};

/// The labels of a profile with their names.
class CRSLabelInProfile2 : public CRSLabelInProfile {
 public:
  /// A closed recordset.
  explicit CRSLabelInProfile2(CDatabase* database) : CRSLabelInProfile(database) { use_columns(columns); }

  void DoFieldExchange(CFieldExchange* exchange) override {
    coltab::exchange_all(*this, columns, exchange, CFieldExchange::outputColumn);
  }

  CString ltype;
  CString name;
  CString listtype;

  static constexpr const char* statement =
      "SELECT PROFID, CSLINP.LABELID, SEQNO, ALFLG, LTYPE, NAME, LISTTYPE FROM CSLINP, CSLABELV WHERE "
      "CSLINP.LABELID=CSLABELV.LABELID AND PROFID=%ld AND ALFLG<>'YES'";
  static constexpr auto columns = std::tuple_cat(
      CRSLabelInProfile::columns, coltab::table(coltab::field("[LTYPE]", &CRSLabelInProfile2::ltype, 255),
                                                coltab::field("[NAME]", &CRSLabelInProfile2::name, 255),
                                                coltab::field("[LISTTYPE]", &CRSLabelInProfile2::listtype, 255)));
};

}  // namespace profile_lists

/// A label.
class CRSLabel : public TableRecordset<CRSLabel> {
 public:
  using TableRecordset::TableRecordset;

  long labelid = 0;
  CString name;
  CString ltype;
  CString listtype;
  CString deflg;

  static constexpr const char* source = "CSLABELV";
  static constexpr auto columns = coltab::table(
      coltab::key("[LABELID]", &CRSLabel::labelid), coltab::field("[NAME]", &CRSLabel::name, 255),
      coltab::field("[LTYPE]", &CRSLabel::ltype, 255), coltab::field("[LISTTYPE]", &CRSLabel::listtype, 255),
      coltab::field("[DEFLG]", &CRSLabel::deflg, 255));
};

/// A station.
class CRSStations : public TableRecordset<CRSStations> {
 public:
  using TableRecordset::TableRecordset;

  long stnid = 0;
  CString name;

  static constexpr const char* source = "CSSTNV";
  static constexpr auto columns =
      coltab::table(coltab::key("STNID", &CRSStations::stnid), coltab::field("NAME", &CRSStations::name, 255));
};

/// A user.
class CRSUsers : public TableRecordset<CRSUsers> {
 public:
  using TableRecordset::TableRecordset;

  long userid = 0;
  CString name;
  CString fullname;
  CString password;

  static constexpr const char* source = "[CSUSERV]";
  static constexpr auto columns = coltab::table(
      coltab::key("USERID", &CRSUsers::userid), coltab::field("NAME", &CRSUsers::name, 255),
      coltab::field("FULLNAME", &CRSUsers::fullname, 255), coltab::field("PASSWORD", &CRSUsers::password, 255));
};

/// A sample. `ctime` is local time.
class CRSSample : public TableRecordset<CRSSample> {
 public:
  using TableRecordset::TableRecordset;

  long sampid = 0;
  long profid = 0;
  long profrev = 0;
  TIMESTAMP_STRUCT ctime{};

  static constexpr const char* source = "CSSAMP";
  static constexpr auto columns =
      coltab::table(coltab::key("SAMPID", &CRSSample::sampid), coltab::field("PROFID", &CRSSample::profid),
                    coltab::field("PROFREV", &CRSSample::profrev), coltab::field("CTIME", &CRSSample::ctime));
};

/// The revision of the profile that a sample was taken under.
class CRSSampleRev : public TableRecordset<CRSSampleRev> {
 public:
  using TableRecordset::TableRecordset;

  long sampid = 0;
  long profrev = 0;

  static constexpr const char* source = "CSSAMP";
  static constexpr auto columns =
      coltab::table(coltab::key("SAMPID", &CRSSampleRev::sampid), coltab::field("PROFREV", &CRSSampleRev::profrev));
};

/// A measured value of a piece.
class CRSVariable : public TableRecordset<CRSVariable> {
 public:
  using TableRecordset::TableRecordset;

  long sampid = 0;
  long chrtid = 0;
  long pieceno = 0;
  double varvalue = 0;

  static constexpr const char* source = "[CSVDAT]";
  static constexpr auto columns = coltab::table(
      coltab::key("[SAMPID]", &CRSVariable::sampid), coltab::key("[CHRTID]", &CRSVariable::chrtid),
      coltab::key("[PIECENO]", &CRSVariable::pieceno), coltab::field("[VARVALUE]", &CRSVariable::varvalue));
};

/// The defects of a piece: what and how many.
class CRSDefectData : public TableRecordset<CRSDefectData> {
 public:
  using TableRecordset::TableRecordset;

  long chrtid = 0;
  long defcount = 0;
  CString labvalue;
  long pieceno = 0;
  long sampid = 0;

  static constexpr const char* source = "[CSDEFDAT]";
  static constexpr auto columns = coltab::table(
      coltab::key("[CHRTID]", &CRSDefectData::chrtid), coltab::field("[DEFCOUNT]", &CRSDefectData::defcount),
      coltab::field("[LABVALUE]", &CRSDefectData::labvalue, 513), coltab::key("[PIECENO]", &CRSDefectData::pieceno),
      coltab::key("[SAMPID]", &CRSDefectData::sampid));
};

/// The total of a sample: how many failed of how many.
class CRSDEFTOT : public TableRecordset<CRSDEFTOT> {
 public:
  using TableRecordset::TableRecordset;

  long sampid = 0;
  long chrtid = 0;
  long nfail = 0;
  double ssize = 0;

  static constexpr const char* source = "[CSDEFTOT]";
  static constexpr auto columns =
      coltab::table(coltab::key("[SAMPID]", &CRSDEFTOT::sampid), coltab::key("[CHRTID]", &CRSDEFTOT::chrtid),
                    coltab::field("[NFAIL]", &CRSDEFTOT::nfail), coltab::field("[SSIZE]", &CRSDEFTOT::ssize));
};

/// The value of a label, of a sample (`pieceno` null) or of a piece.
class CRSLabelData : public TableRecordset<CRSLabelData> {
 public:
  using TableRecordset::TableRecordset;

  long sampid = 0;
  long chrtid = 0;
  long labelid = 0;
  long pieceno = 0;
  CString labvalue;

  static constexpr const char* source = "[CSLDAT]";
  static constexpr auto columns =
      coltab::table(coltab::key("[SAMPID]", &CRSLabelData::sampid), coltab::key("[CHRTID]", &CRSLabelData::chrtid),
                    coltab::key("[LABELID]", &CRSLabelData::labelid), coltab::key("[PIECENO]", &CRSLabelData::pieceno),
                    coltab::field("[LABVALUE]", &CRSLabelData::labvalue, 513));
};

/// A value that labels may take. Rows are added through this view.
class CRSValue : public TableRecordset<CRSValue> {
 public:
  using TableRecordset::TableRecordset;

  long valueid = 0;
  CString name;

  static constexpr const char* source = "[CSVALUEV]";
  static constexpr auto columns =
      coltab::table(coltab::key("[VALUEID]", &CRSValue::valueid), coltab::field("[NAME]", &CRSValue::name, 255));
};

/// That a label may take a value.
class CRSValueInLabel : public TableRecordset<CRSValueInLabel> {
 public:
  using TableRecordset::TableRecordset;

  long labelid = 0;
  long valueid = 0;

  static constexpr const char* source = "[CSVINL]";
  static constexpr auto columns = coltab::table(coltab::key("[LABELID]", &CRSValueInLabel::labelid),
                                                coltab::key("[VALUEID]", &CRSValueInLabel::valueid));
};

/// Finds a label's value by its text, which is a parameter, so that quotes in it need no care. The filter is `filter`,
/// with the label in place of `%d`.
class CRSSearchLabelValue : public TableRecordset<CRSSearchLabelValue> {
 public:
  using TableRecordset::TableRecordset;

  long labelid = 0;
  long valueid = 0;
  CString name;  ///< the parameter

  static constexpr const char* filter =
      "[CSVINL].VALUEID = [CSVALUE].VALUEID AND [CSVINL].LABELID = %d AND [CSVALUE].[NAME] = ?";
  static constexpr const char* source = "[CSVINL], [CSVALUE]";
  static constexpr auto columns = coltab::table(coltab::field("[CSVINL].[LABELID]", &CRSSearchLabelValue::labelid),
                                                coltab::field("[CSVINL].[VALUEID]", &CRSSearchLabelValue::valueid));
  static constexpr auto parameters = coltab::table(coltab::field("[CSVALUE].[NAME]", &CRSSearchLabelValue::name, 513));
};

/// The approval state of a sample.
class CRSSampleApprove : public TableRecordset<CRSSampleApprove> {
 public:
  using TableRecordset::TableRecordset;

  long sampid = 0;
  long astat = 0;
  long cstat = 0;
  long flg1 = 0;
  long flg2 = 0;
  CString muser;
  TIMESTAMP_STRUCT mtime{};

  static constexpr const char* source = "[CSSPAPPR]";
  static constexpr auto columns = coltab::table(
      coltab::key("[SAMPID]", &CRSSampleApprove::sampid), coltab::field("[ASTAT]", &CRSSampleApprove::astat),
      coltab::field("[CSTAT]", &CRSSampleApprove::cstat), coltab::field("[FLG1]", &CRSSampleApprove::flg1),
      coltab::field("[FLG2]", &CRSSampleApprove::flg2), coltab::field("[MUSER]", &CRSSampleApprove::muser, 255),
      coltab::field("[MTIME]", &CRSSampleApprove::mtime));
};
