#include "spcbase/testkit/plant.h"

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/schema/column_table.h"
#include "spcbase/foundation/schema/tree.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/testkit/reference_engine.h"

namespace plant {
namespace {

class StationRow : public TableRecordset<StationRow> {
 public:
  using TableRecordset::TableRecordset;
  long stnid = 0;
  CString name;
  static constexpr const char* source = "[CSSTN]";
  static constexpr auto columns =
      coltab::table(coltab::key("[STNID]", &StationRow::stnid), coltab::field("[NAME]", &StationRow::name, 255));
};

class UserRow : public TableRecordset<UserRow> {
 public:
  using TableRecordset::TableRecordset;
  long userid = 0;
  CString name;
  CString fullname;
  CString password;
  static constexpr const char* source = "[CSUSER]";
  static constexpr auto columns = coltab::table(
      coltab::key("[USERID]", &UserRow::userid), coltab::field("[NAME]", &UserRow::name, 255),
      coltab::field("[FULLNAME]", &UserRow::fullname, 255), coltab::field("[PASSWORD]", &UserRow::password, 255));
};

class CharacteristicRow : public TableRecordset<CharacteristicRow> {
 public:
  using TableRecordset::TableRecordset;
  long chrtid = 0;
  CString name;
  CString descr;
  CString ctype;
  long cflg2 = 0;
  long sgsize = 0;
  static constexpr const char* source = "[CSCHRT]";
  static constexpr auto columns = coltab::table(
      coltab::key("[CHRTID]", &CharacteristicRow::chrtid), coltab::field("[NAME]", &CharacteristicRow::name, 255),
      coltab::field("[DESCR]", &CharacteristicRow::descr, 255),
      coltab::field("[CTYPE]", &CharacteristicRow::ctype, 255), coltab::field("[CFLG2]", &CharacteristicRow::cflg2),
      coltab::field("[SGSIZE]", &CharacteristicRow::sgsize));
};

class LabelRow : public TableRecordset<LabelRow> {
 public:
  using TableRecordset::TableRecordset;
  long labelid = 0;
  CString name;
  CString ltype;
  CString listtype;
  static constexpr const char* source = "[CSLABEL]";
  static constexpr auto columns = coltab::table(
      coltab::key("[LABELID]", &LabelRow::labelid), coltab::field("[NAME]", &LabelRow::name, 255),
      coltab::field("[LTYPE]", &LabelRow::ltype, 255), coltab::field("[LISTTYPE]", &LabelRow::listtype, 255));
};

class ProfileRow : public TableRecordset<ProfileRow> {
 public:
  using TableRecordset::TableRecordset;
  long profid = 0;
  CString name;
  CString descr;
  static constexpr const char* source = "[CSPROF]";
  static constexpr auto columns =
      coltab::table(coltab::key("[PROFID]", &ProfileRow::profid), coltab::field("[NAME]", &ProfileRow::name, 255),
                    coltab::field("[DESCR]", &ProfileRow::descr, 255));
};

class CharacteristicEntryRow : public TableRecordset<CharacteristicEntryRow> {
 public:
  using TableRecordset::TableRecordset;
  long profid = 0;
  long chrtid = 0;
  long seqno = 0;
  static constexpr const char* source = "[CSCINP]";
  static constexpr auto columns = coltab::table(coltab::key("[PROFID]", &CharacteristicEntryRow::profid),
                                                coltab::key("[CHRTID]", &CharacteristicEntryRow::chrtid),
                                                coltab::field("[SEQNO]", &CharacteristicEntryRow::seqno));
};

class LabelEntryRow : public TableRecordset<LabelEntryRow> {
 public:
  using TableRecordset::TableRecordset;
  long profid = 0;
  long labelid = 0;
  long seqno = 0;
  CString alflg;
  static constexpr const char* source = "[CSLINP]";
  static constexpr auto columns = coltab::table(
      coltab::key("[PROFID]", &LabelEntryRow::profid), coltab::key("[LABELID]", &LabelEntryRow::labelid),
      coltab::field("[SEQNO]", &LabelEntryRow::seqno), coltab::field("[ALFLG]", &LabelEntryRow::alflg, 255));
};

class MonitorRow : public TableRecordset<MonitorRow> {
 public:
  using TableRecordset::TableRecordset;
  long monid = 0;
  CString name;
  CString descr;
  static constexpr const char* source = "[CSMON]";
  static constexpr auto columns =
      coltab::table(coltab::key("[MONID]", &MonitorRow::monid), coltab::field("[NAME]", &MonitorRow::name, 255),
                    coltab::field("[DESCR]", &MonitorRow::descr, 255));
};

class GroupRow : public TableRecordset<GroupRow> {
 public:
  using TableRecordset::TableRecordset;
  long groupid = 0;
  static constexpr const char* source = "[CSGROUP]";
  static constexpr auto columns = coltab::table(coltab::key("[GROUPID]", &GroupRow::groupid));
};

/// A row that says which two belong together.
template <class Names>
class LinkRow : public TableRecordset<LinkRow<Names>> {
 public:
  using TableRecordset<LinkRow<Names>>::TableRecordset;
  long first = 0;
  long second = 0;
  static constexpr const char* source = Names::table;
  static constexpr auto columns =
      coltab::table(coltab::key(Names::first, &LinkRow::first), coltab::key(Names::second, &LinkRow::second));
};

struct MonitorInFolder {
  static constexpr const char* table = "[CSMINN]";
  static constexpr const char* first = "[NODEID]";
  static constexpr const char* second = "[MONID]";
};
struct ProfileInFolder {
  static constexpr const char* table = "[CSPINN]";
  static constexpr const char* first = "[NODEID]";
  static constexpr const char* second = "[PROFID]";
};
struct UserInGroup {
  static constexpr const char* table = "[CSUSGP]";
  static constexpr const char* first = "[GROUPID]";
  static constexpr const char* second = "[USERID]";
};
struct UserOfProfile {
  static constexpr const char* table = "[CSUINP]";
  static constexpr const char* first = "[PROFID]";
  static constexpr const char* second = "[USERID]";
};
struct GroupOfProfile {
  static constexpr const char* table = "[CSGINP]";
  static constexpr const char* first = "[PROFID]";
  static constexpr const char* second = "[GROUPID]";
};
struct UserOfSource {
  static constexpr const char* table = "[CSUINEDB]";
  static constexpr const char* first = "[EXDBID]";
  static constexpr const char* second = "[USERID]";
};
struct GroupOfSource {
  static constexpr const char* table = "[CSGINEDB]";
  static constexpr const char* first = "[EXDBID]";
  static constexpr const char* second = "[GROUPID]";
};

/// Adds one row, which `fill` sets the fields of.
template <class Row, class Fill>
void add(CDatabase& db, Fill fill) {
  Row row(&db);
  row.m_strFilter = "1=0";
  if (!row.Open(CRecordset::snapshot, nullptr, CRecordset::appendOnly)) throw_can_not_open_rs_exception();
  row.AddNew();
  fill(row);
  row.Update();
}

const char* list_type(Values values) {
  switch (values) {
    case Values::moment:
      return "DATETIME";
    case Values::growing_list:
      return "DYNAMIC";
    case Values::text:
      break;
  }
  return "";
}

}  // namespace

Builder::Builder(CDatabase& db) : db_(db), engine_(reference_engine::make(db)) {}

int Builder::next(const char16_t* counter) {
  LONG number = 0;
  const HRESULT result = engine_->GetNextRunningNumber(_bstr_t(counter), &number);
  if (result < 0) {
    CString description;
    CString source;
    get_err_info_data(description, source, nullptr);
    throw DBException(description, result);
  }
  ++rows_;
  return number;
}

int Builder::add_station(const std::string& name) {
  const int id = next(u"CSSTRN");
  add<StationRow>(db_, [&](StationRow& row) {
    row.stnid = id;
    row.name = name;
  });
  return id;
}

int Builder::add_user(const std::string& name, const std::string& full_name, const std::string& password) {
  const int id = next(u"CSUSRN");
  add<UserRow>(db_, [&](UserRow& row) {
    row.userid = id;
    row.name = name;
    row.fullname = full_name;
    row.password = password;
  });
  return id;
}

int Builder::add_characteristic(const Characteristic& made) {
  const int id = next(u"CSCHRN");
  add<CharacteristicRow>(db_, [&](CharacteristicRow& row) {
    row.chrtid = id;
    row.name = made.name;
    row.descr = made.description;
    row.ctype = made.kind == Kind::number ? "VARIABLE" : "ATTRIBUTE";
    row.cflg2 = made.kind == Kind::total ? 1 : 0;
    row.SetFieldDirty(&row.cflg2);
    row.SetFieldNull(&row.cflg2, FALSE);
    row.sgsize = made.pieces;
    row.SetFieldDirty(&row.sgsize);
    row.SetFieldNull(&row.sgsize, FALSE);
  });
  return id;
}

int Builder::add_label(const Label& made) {
  const int id = next(u"CSLBRN");
  add<LabelRow>(db_, [&](LabelRow& row) {
    row.labelid = id;
    row.name = made.name;
    row.ltype = made.holds == Holds::whole_sample ? "SAMPLE" : "PIECE";
    row.listtype = list_type(made.values);
  });
  return id;
}

int Builder::add_monitor(const std::string& name, const std::string& description) {
  const int id = next(u"CSMNRN");
  add<MonitorRow>(db_, [&](MonitorRow& row) {
    row.monid = id;
    row.name = name;
    row.descr = description;
  });
  return id;
}

int Builder::add_group() {
  const int id = next(u"CSGPRN");
  add<GroupRow>(db_, [&](GroupRow& row) { row.groupid = id; });
  return id;
}

int Builder::add_folder(const std::string& name, int parent) {
  const int id = next(u"CSNDRN");
  add<RSNode2>(db_, [&](RSNode2& row) {
    row.nodeid = id;
    row.name = name;
    row.pnode = parent;
    row.SetFieldDirty(&row.pnode);
    row.SetFieldNull(&row.pnode, FALSE);
  });
  return id;
}

template <class Names>
void Builder::link(int first, int second) {
  add<LinkRow<Names>>(db_, [&](LinkRow<Names>& row) {
    row.first = first;
    row.second = second;
  });
  ++rows_;
}

void Builder::put_monitor(int folder, int monitor) { link<MonitorInFolder>(folder, monitor); }
void Builder::put_profile(int folder, int profile) { link<ProfileInFolder>(folder, profile); }
void Builder::add_member(int group, int user) { link<UserInGroup>(group, user); }

void Builder::show_profile(int profile, const Viewer& viewer) {
  viewer.is_group ? link<GroupOfProfile>(profile, viewer.id) : link<UserOfProfile>(profile, viewer.id);
}

void Builder::show_data_source(int source, const Viewer& viewer) {
  viewer.is_group ? link<GroupOfSource>(source, viewer.id) : link<UserOfSource>(source, viewer.id);
}

int Builder::add_profile(const std::string& name, const std::string& description, const std::vector<Entry>& entries) {
  const int id = next(u"CSPFRN");
  add<ProfileRow>(db_, [&](ProfileRow& row) {
    row.profid = id;
    row.name = name;
    row.descr = description;
  });
  long seqno = 0;
  for (const auto& entry : entries) {
    ++seqno;
    ++rows_;
    if (entry.is_label)
      add<LabelEntryRow>(db_, [&](LabelEntryRow& row) {
        row.profid = id;
        row.labelid = entry.id;
        row.seqno = seqno;
        row.alflg = entry.automatic ? "YES" : "NO";
      });
    else
      add<CharacteristicEntryRow>(db_, [&](CharacteristicEntryRow& row) {
        row.profid = id;
        row.chrtid = entry.id;
        row.seqno = seqno;
      });
  }
  return id;
}

}  // namespace plant
