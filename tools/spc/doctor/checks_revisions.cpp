// What is wrong in the histories of objects.
#include "spcbase/foundation/schema/column_table.h"
#include "spcbase/platform/database/connection.h"
#include "tools/spc/doctor/check.h"
#include "tools/spc/doctor/examination.h"

namespace spc::doctor {
namespace {

/// What tells the order of revisions, by the key that keeps them apart.
class VersionRow : public TableRecordset<VersionRow> {
 public:
  using TableRecordset::TableRecordset;
  long objid = 0;
  long objtype = 0;
  long revision = 0;
  long majorver = 0;
  long minorver = 0;
  long revid = 0;
  static constexpr const char* source = "[CSOBJREV]";
  static constexpr auto columns = coltab::table(
      coltab::key("[OBJID]", &VersionRow::objid), coltab::key("[OBJTYPE]", &VersionRow::objtype),
      coltab::key("[REVISION]", &VersionRow::revision), coltab::field("[MAJORVER]", &VersionRow::majorver),
      coltab::field("[MINORVER]", &VersionRow::minorver), coltab::field("[REVID]", &VersionRow::revid));
};

/// Pages come in the order of the key by themselves; an answer that is streamed has to be sorted.
void open_in_order(VersionRow& row, CDatabase& db) {
  if (db.connection()->quirks().streams_forward) row.m_strSort = "[OBJID],[OBJTYPE],[REVISION]";
  row.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::inPages);
}

void look_at_versions(Examination& examination) {
  struct Last {
    long objid = 0;
    long objtype = 0;
    long majorver = 0;
    long minorver = 0;
  };
  Subjects revisions{"REVID", {}};
  VersionRow row(&examination.link().db());
  std::optional<Last> last;
  for (open_in_order(row, examination.link().db()); row.m_bEOF == FALSE; row.MoveNext()) {
    const bool same_object = last && last->objid == row.objid && last->objtype == row.objtype;
    const bool higher = same_object && (row.majorver > last->majorver ||
                                        (row.majorver == last->majorver && row.minorver > last->minorver));
    if (same_object && !higher) add(revisions, std::to_string(row.revid), examination.limit());
    last = {row.objid, row.objtype, row.majorver, row.minorver};
  }
  examination.found("CSOBJREV", std::move(revisions));
}

/// Groups of rows of one object, by its id.
Query groups(const std::string& id, const std::string& columns, const std::string& having) {
  return {"CSOBJREV", "FIRSTID", "",
          "(SELECT MIN([" + id + "]) AS FIRSTID FROM [CSOBJREV] GROUP BY " + columns + " HAVING " + having + ") D"};
}

const std::string has_payload =
    "EXISTS (SELECT [CSREVDAT].[REVID] FROM [CSREVDAT] WHERE [CSREVDAT].[REVID] = [CSOBJREV].[REVID] AND "
    "[CSREVDAT].[DATA] IS NOT NULL)";

}  // namespace

std::vector<Check> revision_checks() {
  return {
      {"revision-without-payload",
       Severity::error,
       "The revision is broken: its row stands and its payload does not. It cannot be approved, nor read as data.",
       "Save the object again (spc rev add), which makes a whole revision behind it; the broken one may stay.",
       {{"CSOBJREV", "REVID", "[ALEVEL] IS NULL AND NOT " + has_payload}}},
      {"approved-without-payload",
       Severity::error,
       "The revision is approved and broken at once: an approval with a major version lost its payload.",
       "Restore its payload from a backup, or save the object again (spc rev add) and approve that (spc rev approve).",
       {{"CSOBJREV", "REVID", "[ALEVEL] IS NOT NULL AND NOT " + has_payload}}},
      {"payload-without-revision",
       Severity::error,
       "A payload belongs to no revision, so nobody can read it; the foreign key FKREVDAT1 is missing or was off.",
       "Save it if it matters, delete the row, and see that the foreign key stands.",
       {without_parent("CSREVDAT", "REVID", "CSOBJREV")}},
      {"revision-not-positive",
       Severity::error,
       "The revision's number is 0 or below. 0 asks for the latest, so nobody can ask for this one.",
       "Give it a number that its object does not have yet.",
       {{"CSOBJREV", "REVID", "[REVISION] < 1"}}},
      {"revision-doubled",
       Severity::error,
       "An object has two revisions of one number; the unique key UKOBJREV1 is missing or was off.",
       "Give one of them a number that the object does not have yet, and see that the unique key stands.",
       {groups("REVID", "[OBJTYPE], [OBJID], [REVISION]", "COUNT(*) > 1")}},
      {"revision-gap",
       Severity::note,
       "An object's revisions are not 1, 2, 3 and so on: one was deleted, which this library never does.",
       "Nothing needs to be done, unless the missing revision can be had from a backup. spc rev list shows the rest.",
       {groups("OBJID", "[OBJTYPE], [OBJID]", "MAX([REVISION]) <> COUNT(*)")}},
      {"version-out-of-order",
       Severity::warning,
       "The revision's version is not higher than that of the revision before it, so people take the older for newer.",
       "spc rev rebuild counts the versions of all objects anew, without major versions.",
       {},
       look_at_versions,
       "CSOBJREV"},
      {"approval-half-done",
       Severity::warning,
       "The revision is approved and lacks the moment or the user of its approval.",
       "Fill in ATIME (in UTC), AUSERID and AUSER from what is known of the approval.",
       {{"CSOBJREV", "REVID", "[ALEVEL] IS NOT NULL AND ([ATIME] IS NULL OR [AUSERID] IS NULL)"}}},
      {"approval-without-level",
       Severity::error,
       "An approval was filled in without its level. The level alone decides, so the revision counts as not approved.",
       "Set ALEVEL if it was approved, else ATIME, AUSERID, AUSER, AREASON and ATYPE to null.",
       {{"CSOBJREV", "REVID",
         "[ALEVEL] IS NULL AND ([ATIME] IS NOT NULL OR [AUSERID] IS NOT NULL OR [AUSER] IS NOT NULL OR [ATYPE] IS NOT "
         "NULL OR [AREASON] IS NOT NULL)"}}},
      {"approval-before-creation",
       Severity::warning,
       "The revision was approved before it was created: a clock was wrong, or one of the two moments is local time.",
       "Correct CTIME or ATIME; both are in UTC.",
       {{"CSOBJREV", "REVID", "[ATIME] < [CTIME]"}}},
      {"revision-half-done",
       Severity::warning,
       "The revision lacks its version or the moment of its creation.",
       "Fill in MAJORVER, MINORVER and CTIME (in UTC); spc rev rebuild counts all versions anew.",
       {{"CSOBJREV", "REVID", "[MAJORVER] IS NULL OR [MINORVER] IS NULL OR [CTIME] IS NULL"}}},
  };
}

}  // namespace spc::doctor
