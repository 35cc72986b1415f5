#include "tests/tools/doctor_faults.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "schema/description.h"
#include "spcbase/foundation/connection.h"
#include "tools/spc/doctor/doctor.h"

namespace doctor_test {

using test_support::ServerKind;

namespace {

std::string revision(int revid, int objid, const std::string& numbers, const std::string& more = "NULL, NULL, NULL") {
  return "INSERT INTO CSOBJREV (REVID, OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, CTIME, ALEVEL, ATIME, AUSERID) "
         "VALUES (" +
         std::to_string(revid) + ", " + std::to_string(objid) + ", 1, " + numbers + ", '2024-03-05 08:00:00', " + more +
         ")";
}

std::string payload(int revid) {
  return "INSERT INTO CSREVDAT (REVID, DATA) VALUES (" + std::to_string(revid) + ", X'01')";
}

std::string sample(int id, const std::string& profile = "1", const std::string& revision = "NULL",
                   const std::string& time = "'2024-03-05 08:00:00'") {
  return "INSERT INTO CSSAMP (SAMPID, PROFID, PROFREV, CTIME) VALUES (" + std::to_string(id) + ", " + profile + ", " +
         revision + ", " + time + ")";
}

std::string approval(int id, const std::string& state = "0") {
  return "INSERT INTO CSSPAPPR (SAMPID, ASTAT, CSTAT, FLG1, FLG2, MUSER, MTIME) VALUES (" + std::to_string(id) + ", " +
         state + ", 0, 0, 0, 'anna', '2024-03-05 08:00:00')";
}

std::string setting(const std::string& key, int number, const std::string& text) {
  return "INSERT INTO CSINI (QUAL, SECT, KYWORD, SEQNO, OPTVAL) VALUES ('SYSTEM', 'SETTINGS', '" + key + "', " +
         std::to_string(number) + ", '" + text + "')";
}

std::string source(int id, const std::string& name, const std::string& kind, const std::string& data,
                   const std::string& time = "'2024-03-05 08:00:00'") {
  return "INSERT INTO CSEXDB (EXDBID, NAME, FLG1, FLG2, MTIME, DATA) VALUES (" + std::to_string(id) + ", '" + name +
         "', " + kind + ", 0, " + time + ", " + data + ")";
}

std::vector<Fault> number_faults() {
  return {
      {{"number-behind", "CSSPRN", {"40"}}, {"UPDATE CSSPRN SET MAXNO = 40", sample(41), approval(41)}},
      {{"number-without-row", "CSTICRN", {}}, {"DELETE FROM CSTICRN"}},
      {{"number-doubled", "CSOPRN", {"9999"}}, {"INSERT INTO CSOPRN (MAXNO) VALUES (7)"}},
      {{"id-not-positive", "CSUSER", {"0"}}, {"INSERT INTO CSUSER (USERID, NAME) VALUES (0, 'nobody')"}},
      {{"id-not-positive", "CSLOG", {"-3", "0"}}, {"INSERT INTO CSLOG VALUES (0)", "INSERT INTO CSLOG VALUES (-3)"}},
      {{"id-not-positive", "CSOBJREV", {"0"}}, {revision(90, 0, "1, 0, 1"), payload(90)}},
  };
}

std::vector<Fault> revision_faults() {
  return {
      {{"revision-without-payload", "CSOBJREV", {"21", "22"}},
       {revision(21, 21, "1, 0, 1"), revision(22, 22, "1, 0, 1"), "INSERT INTO CSREVDAT (REVID) VALUES (22)"}},
      {{"approved-without-payload", "CSOBJREV", {"23"}}, {revision(23, 23, "1, 1, 0", "3, '2024-03-06 08:00:00', 1")}},
      {{"payload-without-revision", "CSREVDAT", {"7000"}}, {payload(7000)}, true},
      {{"revision-not-positive", "CSOBJREV", {"24"}},
       {revision(24, 24, "0, 0, 1"), payload(24), revision(25, 24, "2, 0, 2"), payload(25)}},
      {{"revision-gap", "CSOBJREV", {"26"}}, {revision(26, 26, "3, 0, 1"), payload(26)}},
      {{"version-out-of-order", "CSOBJREV", {"28", "30"}},
       {revision(27, 27, "1, 0, 2"), revision(28, 27, "2, 0, 2"), revision(29, 27, "3, 1, 0"),
        revision(30, 27, "4, 0, 9"), payload(27), payload(28), payload(29), payload(30)}},
      {{"approval-half-done", "CSOBJREV", {"31", "32"}},
       {revision(31, 31, "1, 0, 1", "0, NULL, 1"), revision(32, 32, "1, 0, 1", "5, '2024-03-06 08:00:00', NULL"),
        payload(31), payload(32)}},
      {{"approval-without-level", "CSOBJREV", {"33"}},
       {revision(33, 33, "1, 0, 1", "NULL, '2024-03-06 08:00:00', 1"), payload(33)}},
      {{"approval-before-creation", "CSOBJREV", {"34"}},
       {revision(34, 34, "1, 0, 1", "5, '2024-03-05 07:59:59', 1"), payload(34)}},
      {{"revision-half-done", "CSOBJREV", {"35"}}, {revision(35, 35, "1, 0, NULL"), payload(35)}},
  };
}

std::vector<Fault> tree_faults() {
  return {
      {{"folder-without-parent", "CSNODE", {"50"}}, {"INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (50, 'x', 777)"}},
      {{"folder-parent-null", "CSNODE", {"51"}}, {"INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (51, 'y', NULL)"}},
      {{"folder-circle", "CSNODE", {"52", "53"}},
       {"INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (52, 'a', 53)",
        "INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (53, 'b', 52)",
        "INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (54, 'below the circle', 53)"}},
      {{"folder-circle", "CSNODE", {"55"}}, {"INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (55, 'self', 55)"}},
      {{"folder-name-doubled", "CSNODE", {"56"}},
       {"INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (56, 'twin', 1)",
        "INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (57, 'twin', 1)",
        "INSERT INTO CSNODE (NODEID, NAME, PNODE, VFLG) VALUES (58, 'Line', 1, 'D')"}},
      {{"member-without-folder", "CSMINN", {"778"}}, {"INSERT INTO CSMINN (NODEID, MONID) VALUES (778, 1)"}},
      {{"member-without-object", "CSPINN", {"779"}}, {"INSERT INTO CSPINN (NODEID, PROFID) VALUES (1, 779)"}},
      {{"access-without-object", "CSGINEDB", {"780"}}, {"INSERT INTO CSGINEDB (EXDBID, GROUPID) VALUES (780, 1)"}},
      {{"access-without-object", "CSUINP", {"781"}}, {"INSERT INTO CSUINP (PROFID, USERID) VALUES (781, 1)"}},
      {{"access-without-holder", "CSUINEDB", {"782"}}, {"INSERT INTO CSUINEDB (EXDBID, USERID) VALUES (1, 782)"}},
      {{"access-without-holder", "CSGINP", {"783"}}, {"INSERT INTO CSGINP (PROFID, GROUPID) VALUES (1, 783)"}},
      {{"group-member-missing", "CSUSGP", {"784"}}, {"INSERT INTO CSUSGP (GROUPID, USERID) VALUES (1, 784)"}},
  };
}

std::vector<Fault> profile_faults() {
  return {
      {{"element-without-profile", "CSCINP", {"785"}},
       {"INSERT INTO CSCINP (PROFID, CHRTID, SEQNO) VALUES (785, 1, 1)"}},
      {{"element-missing", "CSLINP", {"786"}}, {"INSERT INTO CSLINP (PROFID, LABELID, SEQNO) VALUES (1, 786, 9)"}},
      {{"characteristic-type-unknown", "CSCHRT", {"60", "61"}},
       {"INSERT INTO CSCHRT (CHRTID, NAME, CTYPE) VALUES (60, 'c', 'variable')",
        "INSERT INTO CSCHRT (CHRTID, NAME) VALUES (61, 'd')",
        "INSERT INTO CSCHRT (CHRTID, NAME, CTYPE, VFLG) VALUES (62, 'removed', 'OTHER', 'D')"}},
      {{"label-type-unknown", "CSLABEL", {"63"}},
       {"INSERT INTO CSLABEL (LABELID, NAME, LTYPE) VALUES (63, 'l', 'BATCH')"}},
      {{"value-link-without-row", "CSVINL", {"787"}}, {"INSERT INTO CSVINL (LABELID, VALUEID) VALUES (1, 787)"}},
      {{"payload-without-object", "CSPOPB", {"788"}}, {"INSERT INTO CSPOPB (PROFID, OPTVAL) VALUES (788, X'01')"}},
      {{"payload-null", "CSMEXT", {"1"}}, {"INSERT INTO CSMEXT (MONID) VALUES (1)"}},
      {{"object-approval-half-done", "CSPROF", {"64"}},
       {"INSERT INTO CSPROF (PROFID, NAME, ALEVEL) VALUES (64, 'half', 3)"}},
  };
}

std::vector<Fault> sample_faults() {
  return {
      {{"sample-without-profile", "CSSAMP", {"70"}}, {sample(70, "789"), approval(70)}},
      {{"sample-without-approval", "CSSAMP", {"71"}}, {sample(71)}},
      {{"approval-without-sample", "CSSPAPPR", {"790"}}, {approval(790)}},
      {{"sample-approval-half-done", "CSSPAPPR", {"72"}}, {sample(72), approval(72, "NULL")}},
      {{"sample-without-time", "CSSAMP", {"73"}}, {sample(73, "1", "NULL", "NULL"), approval(73)}},
      {{"sample-revision-not-positive", "CSSAMP", {"74"}}, {sample(74, "1", "0"), approval(74)}},
      {{"value-without-sample", "CSLDAT", {"791"}},
       {"INSERT INTO CSLDAT (SAMPID, LABELID, LABVALUE) VALUES (791, 1, 'x')"}},
      {{"value-without-characteristic", "CSVDAT", {"792"}},
       {sample(75, "3"), approval(75), "INSERT INTO CSCINP (PROFID, CHRTID, SEQNO) VALUES (3, 792, 5)",
        "INSERT INTO CSVDAT VALUES (75, 792, 1, 1.5)"}},
      {{"value-without-label", "CSLDAT", {"793"}},
       {"INSERT INTO CSLDAT (SAMPID, LABELID, LABVALUE) VALUES (1, 793, 'x')"}},
      {{"value-outside-profile", "CSDEFTOT", {"1"}}, {"INSERT INTO CSDEFTOT VALUES (1, 3, 4, NULL)"}},
      {{"piece-not-positive", "CSVDAT", {"1"}}, {"INSERT INTO CSVDAT VALUES (1, 1, 0, 1.5)"}},
      {{"total-not-positive", "CSDEFTOT", {"76"}},
       {sample(76), approval(76), "INSERT INTO CSDEFTOT VALUES (76, 2, 0, 50)"}},
  };
}

std::vector<Fault> stored_faults() {
  return {
      {{"setting-bad-digit", "CSINI", {"digits"}}, {setting("digits", 1, "4a4B")}},
      {{"setting-piece-missing", "CSINI", {"headless", "hole"}},
       {setting("hole", 1, "4A"), setting("hole", 3, "4B"), setting("headless", 2, "4A")}},
      {{"setting-piece-doubled", "CSINI", {"twice"}}, {setting("twice", 1, "4A"), setting(" twice", 1, "4B")}},
      {{"setting-half-byte", "CSINI", {"cut"}}, {setting("cut", 1, "4A4")}},
      {{"definition-unreadable", "CSEXDB", {"80"}}, {source(80, "damaged", "0", "X'3C78'")}},
      {{"definition-kind-unknown", "CSEXDB", {"82"}}, {source(82, "other kind", "7", "NULL")}},
      {{"definition-name-doubled", "CSEXDB", {"83"}},
       {source(83, "same name", "0", "NULL"), source(84, "same name", "1", "NULL")}},
      {{"definition-without-time", "CSEXDB", {"85"}}, {source(85, "timeless", "0", "NULL", "NULL")}},
  };
}

/// The findings, sorted by name and table.
std::vector<Found> sorted(const spc::doctor::Audit& audit) {
  for (const auto& entry : audit.not_run)
    if (entry.failed) throw std::runtime_error(std::string(entry.check->name) + " could not run: " + entry.why);
  std::vector<Found> found;
  for (const auto& finding : audit.findings) {
    // The machine's own zone is no part of the test.
    if (std::string_view(finding.check->name) == "server-zone") continue;
    found.push_back({finding.check->name, finding.table, finding.subjects.first});
  }
  std::ranges::sort(found);
  return found;
}

std::string text_of(const std::optional<std::string>& cell) { return cell.value_or("NULL"); }

}  // namespace

std::ostream& operator<<(std::ostream& out, const Found& found) {
  out << found.name << " in " << found.table << ":";
  for (const auto& id : found.ids)
    out << ' ' << id;
  return out;
}

std::ostream& operator<<(std::ostream& out, const Fault& fault) { return out << fault.found; }

const std::vector<Fault>& faults_in_rows() {
  static const std::vector<Fault> all = [] {
    std::vector<Fault> faults;
    for (const auto& theme :
         {number_faults(), revision_faults(), tree_faults(), profile_faults(), sample_faults(), stored_faults()})
      faults.insert(faults.end(), theme.begin(), theme.end());
    return faults;
  }();
  return all;
}

void build_sound_plant(test_support::SchemaDatabase& database) {
  for (const char* statement : {"INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (1, 'Forge', 0)",
                                "INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (2, 'Line', 1)",
                                "INSERT INTO CSMON (MONID, NAME) VALUES (1, 'Temperature')",
                                "INSERT INTO CSPROF (PROFID, NAME, AREV, ALEVEL) VALUES (1, 'Rings', 2, 3)",
                                "INSERT INTO CSPROF (PROFID, NAME) VALUES (3, 'Empty')",
                                "INSERT INTO CSCHRT (CHRTID, NAME, CTYPE) VALUES (1, 'Width', 'VARIABLE')",
                                "INSERT INTO CSCHRT (CHRTID, NAME, CTYPE, CFLG2) VALUES (2, 'Rejects', 'ATTRIBUTE', 1)",
                                "INSERT INTO CSCHRT (CHRTID, NAME, CTYPE, CFLG2) VALUES (3, 'Scrap', 'ATTRIBUTE', 1)",
                                "INSERT INTO CSLABEL (LABELID, NAME, LTYPE) VALUES (1, 'Shift', 'SAMPLE')",
                                "INSERT INTO CSVALUE (VALUEID, NAME) VALUES (1, 'Early')",
                                "INSERT INTO CSUSER (USERID, NAME) VALUES (1, 'anna')",
                                "INSERT INTO CSGROUP VALUES (1)",
                                "INSERT INTO CSMINN (NODEID, MONID) VALUES (2, 1)",
                                "INSERT INTO CSPINN (NODEID, PROFID) VALUES (0, 1)",
                                "INSERT INTO CSCINP (PROFID, CHRTID, SEQNO) VALUES (1, 1, 1)",
                                "INSERT INTO CSCINP (PROFID, CHRTID, SEQNO) VALUES (1, 2, 2)",
                                "INSERT INTO CSLINP (PROFID, LABELID, SEQNO) VALUES (1, 1, 3)",
                                "INSERT INTO CSVINL VALUES (1, 1)",
                                "INSERT INTO CSUSGP VALUES (1, 1)",
                                "INSERT INTO CSUINP VALUES (1, 1)",
                                "INSERT INTO CSGINP VALUES (1, 1)",
                                "INSERT INTO CSUINEDB VALUES (1, 1)",
                                "INSERT INTO CSGINEDB VALUES (1, 1)",
                                "INSERT INTO CSVDAT VALUES (1, 1, 1, 74.03)",
                                "INSERT INTO CSDEFTOT VALUES (1, 2, 3, 50)",
                                "INSERT INTO CSLDAT (SAMPID, LABELID, LABVALUE) VALUES (1, 1, 'Early')",
                                "INSERT INTO CSMOPB VALUES (1, X'0102')",
                                "INSERT INTO CSPOPB VALUES (1, X'0102')"})
    database.execute(statement);
  for (const auto& statement :
       {sample(1, "1", "2"), approval(1), revision(1, 1, "1, 0, 1"),
        revision(2, 1, "2, 1, 0", "3, '2024-03-05 09:00:00', 1"), payload(1), payload(2), setting("city", 0, "4A4B"),
        setting("city", 1, "4C"), source(1, "Warehouse", "0", "NULL")})
    database.execute(statement);
  // A counter that is ahead is no fault, so that whatever is planted has a number.
  for (const auto& number : schema::running_numbers())
    database.execute("UPDATE " + std::string(number.counter) + " SET MAXNO = 9999");
}

void plant(test_support::SchemaDatabase& database, const Fault& fault) {
  const bool switch_keys = fault.against_foreign_key && database.kind() == ServerKind::mariadb;
  if (switch_keys) database.execute("SET FOREIGN_KEY_CHECKS = 0");
  for (const auto& statement : fault.statements)
    database.execute(statement);
  if (switch_keys) database.execute("SET FOREIGN_KEY_CHECKS = 1");
}

spc::doctor::Audit audit_of(spc::Link& link, const std::vector<std::string>& only, std::size_t limit) {
  return spc::doctor::examine(link, spc::doctor::chosen_checks({only, {}, 5, false}), limit, [] {});
}

std::vector<Found> findings_of(const std::string& connect_text, std::size_t limit) {
  spc::Link link(connect_text, nullptr);
  return sorted(audit_of(link, {}, limit));
}

std::vector<Found> findings_with(test_support::SchemaDatabase& database, const Fault& fault) {
  spc::Link link(database.connect_text(), nullptr);
  CDatabaseEx& db = link.db();
  if (fault.against_foreign_key && database.kind() == ServerKind::mariadb) db.ExecuteSQL("SET FOREIGN_KEY_CHECKS = 0");
  AutoODBCTransaction transaction(db, true);
  if (fault.against_foreign_key && database.kind() == ServerKind::sqlite)
    db.ExecuteSQL("PRAGMA defer_foreign_keys = ON");
  for (const auto& statement : fault.statements)
    db.ExecuteSQL(statement.c_str());
  return sorted(audit_of(link, {}, 100));
}

void remake_sqlite_table(test_support::SchemaDatabase& database, const std::string& table, const std::string& text,
                         const std::string& replacement) {
  std::string statement =
      database.value("SELECT sql FROM sqlite_master WHERE type = 'table' AND name = '" + table + "'");
  const auto at = statement.find(text);
  if (at == std::string::npos) throw std::runtime_error("no " + text + " in " + statement);
  statement.replace(at, text.size(), replacement);
  database.execute("DROP TABLE " + table);
  database.execute(statement);
}

std::string dump_of(test_support::SchemaDatabase& database) {
  std::string dump;
  for (const auto& object : schema::required_objects()) {
    if (object.is_view) continue;
    std::vector<std::string> lines;
    for (const auto& row : database.rows("SELECT * FROM " + std::string(object.name))) {
      std::string& line = lines.emplace_back(object.name);
      for (const auto& cell : row)
        line += "|" + text_of(cell);
    }
    std::ranges::sort(lines);
    for (const auto& line : lines)
      dump += line + "\n";
  }
  return dump;
}

}  // namespace doctor_test
