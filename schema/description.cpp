#include "schema/description.h"

#include <algorithm>

#include "spcbase/foundation/schema/running_numbers.h"

namespace schema {
namespace {

constexpr Column key(std::string_view name) { return {name, ColumnType::integer, 0, false}; }
constexpr Column integer(std::string_view name) { return {name, ColumnType::integer}; }
constexpr Column text(std::string_view name, int width_chars = 255) { return {name, ColumnType::text, width_chars}; }
constexpr Column text_key(std::string_view name) { return {name, ColumnType::text, 255, false}; }
constexpr Column moment(std::string_view name) { return {name, ColumnType::moment}; }
constexpr Column blob(std::string_view name) { return {name, ColumnType::blob}; }

// The deletion mark: a row is live while it is null.
constexpr Column vflg = text("VFLG");

// A measured value is never null: SQLite would store a NaN as one, and the piece would read as 0 afterwards.
constexpr Column measured(std::string_view name) { return {name, ColumnType::real, 0, false}; }
constexpr Column real(std::string_view name) { return {name, ColumnType::real}; }

// Entry columns are found by ALFLG<>'YES', which a null would not pass: the column would vanish from the profile.
constexpr Column auto_label_flag = {"ALFLG", ColumnType::text, 255, false, "NO"};

Table id_only(std::string_view name, std::string_view id) { return {name, {key(id)}, {id}}; }

Table link(std::string_view name, std::string_view first, std::string_view second, std::string_view index) {
  return {name, {key(first), key(second)}, {first, second}, {}, {{index, {second}}}};
}

std::vector<Table> object_tables() {
  return {
      {"CSNODE",
       {key("NODEID"), text("NAME"), integer("PNODE"), vflg},
       {"NODEID"},
       {},
       {{"IXNODE1", {"PNODE", "NAME"}}}},
      {"CSMON", {key("MONID"), text("NAME"), text("DESCR"), integer("AREV"), integer("ALEVEL"), vflg}, {"MONID"}},
      {"CSPROF", {key("PROFID"), text("NAME"), text("DESCR"), integer("AREV"), integer("ALEVEL"), vflg}, {"PROFID"}},
      // The flags and the size are the data-entry engine's: CFLG2 not 0 marks a total, SGSIZE 0 or null means that the
      // characteristic has no fixed number of pieces.
      {"CSCHRT",
       {key("CHRTID"), text("NAME"), text("DESCR"), text("CTYPE"), integer("REVISION"), integer("AREV"),
        integer("ALEVEL"), integer("CFLG1"), integer("CFLG2"), integer("CFLG3"), integer("SGSIZE"), vflg},
       {"CHRTID"}},
      {"CSLABEL",
       {key("LABELID"), text("NAME"), text("LTYPE"), text("LISTTYPE"), text("DEFLG"), integer("REVISION"),
        integer("AREV"), integer("ALEVEL"), vflg},
       {"LABELID"}},
      {"CSVALUE", {key("VALUEID"), text("NAME"), vflg}, {"VALUEID"}, {}, {{"IXVALUE1", {"NAME"}}}},
      {"CSSTN", {key("STNID"), text("NAME"), vflg}, {"STNID"}},
      {"CSUSER", {key("USERID"), text("NAME"), text("FULLNAME"), text("PASSWORD"), vflg}, {"USERID"}},
      {"CSDOC", {key("DOCID"), integer("AREV"), integer("ALEVEL")}, {"DOCID"}},
      {"CSPSQ", {key("PSQID"), integer("AREV"), integer("ALEVEL")}, {"PSQID"}},
      {"CSTS", {key("TSID"), integer("REVISION"), integer("AREV"), integer("ALEVEL")}, {"TSID"}},
      {"CSDASH", {key("DASHID"), integer("REVISION"), integer("AREV"), integer("ALEVEL")}, {"DASHID"}},
      {"CSEXDB",
       {key("EXDBID"), text("NAME"), text("DESCR"), text("TYPE"), integer("FLG1"), integer("FLG2"), moment("MTIME"),
        vflg, blob("DATA")},
       {"EXDBID"}},
  };
}

// Tables of which the library knows no more than the id that a running number counts.
std::vector<Table> id_tables() {
  return {
      id_only("CSGROUP", "GROUPID"), id_only("CSICON", "ICONID"),     id_only("CSOPT", "OPTID"),
      id_only("CSENT", "ENT_ID"),    id_only("CSHDFS", "HDFSID"),     id_only("CSSBDA", "SBDAID"),
      id_only("CSTIC", "TICID"),     id_only("CSALARM", "ALARMID"),   id_only("CSCOLOR", "COLORID"),
      id_only("CSBATCH", "BATCHID"), id_only("CSDESESS", "DESESSID"), id_only("CSAUSR", "SESID"),
      id_only("CSLOG", "LOGID"),
  };
}

std::vector<Table> link_tables() {
  return {
      {"CSCINP",
       {key("PROFID"), key("CHRTID"), integer("SEQNO"), integer("CHRTREV"), vflg},
       {"PROFID", "CHRTID"},
       {},
       {{"IXCINP1", {"CHRTID"}}}},
      {"CSLINP",
       {key("PROFID"), key("LABELID"), integer("SEQNO"), auto_label_flag, integer("LABELREV"), vflg},
       {"PROFID", "LABELID"},
       {},
       {{"IXLINP1", {"LABELID"}}}},
      {"CSMINN", {key("NODEID"), key("MONID"), vflg}, {"NODEID", "MONID"}, {}, {{"IXMINN1", {"MONID"}}}},
      {"CSPINN", {key("NODEID"), key("PROFID"), vflg}, {"NODEID", "PROFID"}, {}, {{"IXPINN1", {"PROFID"}}}},
      link("CSVINL", "LABELID", "VALUEID", "IXVINL1"),
      link("CSUINP", "PROFID", "USERID", "IXUINP1"),
      link("CSGINP", "PROFID", "GROUPID", "IXGINP1"),
      link("CSUSGP", "GROUPID", "USERID", "IXUSGP1"),
      link("CSUINEDB", "EXDBID", "USERID", "IXUINEDB1"),
      link("CSGINEDB", "EXDBID", "GROUPID", "IXGINEDB1"),
  };
}

std::vector<Table> sample_tables() {
  return {
      {"CSSAMP",
       {key("SAMPID"), integer("PROFID"), integer("PROFREV"), moment("CTIME")},
       {"SAMPID"},
       {},
       {{"IXSAMP1", {"PROFID", "CTIME"}}}},
      {"CSSPAPPR",
       {key("SAMPID"), integer("ASTAT"), integer("CSTAT"), integer("FLG1"), integer("FLG2"), text("MUSER"),
        moment("MTIME")},
       {"SAMPID"}},
      {"CSVDAT", {key("SAMPID"), key("CHRTID"), key("PIECENO"), measured("VARVALUE")}, {"SAMPID", "CHRTID", "PIECENO"}},
      {"CSDEFDAT",
       {key("SAMPID"), key("CHRTID"), key("PIECENO"), integer("DEFCOUNT"), text("LABVALUE", 513)},
       {"SAMPID", "CHRTID", "PIECENO"}},
      {"CSDEFTOT", {key("SAMPID"), key("CHRTID"), integer("NFAIL"), real("SSIZE")}, {"SAMPID", "CHRTID"}},
      // A label of the whole sample has neither characteristic nor piece.
      {"CSLDAT",
       {key("SAMPID"), integer("CHRTID"), key("LABELID"), integer("PIECENO"), text("LABVALUE", 513)},
       {},
       {{"UKLDAT1", {"SAMPID", "LABELID", "CHRTID", "PIECENO"}}}},
  };
}

std::vector<Table> revision_and_settings_tables() {
  return {
      {"CSOBJREV",
       {{"REVID", ColumnType::auto_id, 0, false},
        key("OBJID"),
        key("OBJTYPE"),
        key("REVISION"),
        integer("MAJORVER"),
        integer("MINORVER"),
        integer("FLAG"),
        moment("CTIME"),
        integer("CUSERID"),
        text("CUSER"),
        text("CREASON", 4000),
        integer("ALEVEL"),
        integer("ATYPE"),
        moment("ATIME"),
        integer("AUSERID"),
        text("AUSER"),
        text("AREASON", 4000)},
       {"REVID"},
       {{"UKOBJREV1", {"OBJID", "OBJTYPE", "REVISION"}}}},
      {"CSREVDAT", {key("REVID"), blob("DATA")}, {"REVID"}, {}, {}, {{"FKREVDAT1", "REVID", "CSOBJREV", "REVID"}}},
      id_only("CSMGSTAT", "MGSTATID"),
      {"CSATYPE", {key("ATYPE"), text("NAME")}, {"ATYPE"}},
      {"CSMOPB", {key("MONID"), blob("OPTVAL")}, {"MONID"}},
      {"CSPOPB", {key("PROFID"), blob("OPTVAL")}, {"PROFID"}},
      {"CSMEXT", {key("MONID"), blob("DATA")}, {"MONID"}},
      {"CSINI",
       {text_key("QUAL"), text_key("SECT"), text_key("KYWORD"), key("SEQNO"), text("OPTVAL")},
       {},
       {{"UKINI1", {"QUAL", "SECT", "KYWORD", "SEQNO"}}}},
  };
}

std::vector<Table> all_tables() {
  std::vector<Table> all;
  for (const auto& group :
       {object_tables(), id_tables(), link_tables(), sample_tables(), revision_and_settings_tables()}) {
    all.insert(all.end(), group.begin(), group.end());
  }
  return all;
}

}  // namespace

const Column* Table::find(std::string_view column) const {
  const auto found = std::ranges::find(columns, column, &Column::name);
  return found == columns.end() ? nullptr : &*found;
}

const std::vector<Table>& tables() {
  static const std::vector<Table> all = all_tables();
  return all;
}

const std::vector<View>& views() {
  static const std::vector<View> all = {
      {"CSMONV", "CSMON"},           {"CSPROFV", "CSPROF"}, {"CSCHRTV", "CSCHRT"}, {"CSLABELV", "CSLABEL"},
      {"CSVALUEV", "CSVALUE", true}, {"CSUSERV", "CSUSER"}, {"CSSTNV", "CSSTN"},   {"CSEXDBV", "CSEXDB"},
      {"CSCINPV", "CSCINP"},         {"CSLINPV", "CSLINP"}, {"CSMINNV", "CSMINN"}, {"CSPINNV", "CSPINN"},
  };
  return all;
}

const std::vector<RunningNumber>& running_numbers() {
  static const std::vector<RunningNumber> all = [] {
    std::vector<RunningNumber> numbers;
    for (const running_number& number : ::running_numbers)
      numbers.push_back({number.table, number.id_column, number.counter});
    return numbers;
  }();
  return all;
}

const Table* find_table(std::string_view name) {
  const auto found = std::ranges::find(tables(), name, &Table::name);
  return found == tables().end() ? nullptr : &*found;
}

std::vector<std::string_view> columns_of(const View& view) {
  std::vector<std::string_view> shown;
  for (const Column& column : find_table(view.table)->columns) {
    if (column.name != vflg.name) shown.push_back(column.name);
  }
  return shown;
}

std::vector<RequiredObject> required_objects() {
  std::vector<RequiredObject> all;
  for (const Table& table : tables()) {
    RequiredObject& object = all.emplace_back(RequiredObject{table.name, false, {}});
    for (const Column& column : table.columns)
      object.columns.push_back(column.name);
  }
  for (const RunningNumber& number : running_numbers())
    all.push_back({number.counter, false, {"MAXNO"}});
  for (const View& view : views())
    all.push_back({view.name, true, columns_of(view)});
  return all;
}

}  // namespace schema
