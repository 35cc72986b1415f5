// What is wrong in samples and what was measured.
#include "tools/spc/doctor/check.h"

namespace spc::doctor {
namespace {

/// Values of a characteristic that is none of their sample's profile.
Query outside_profile(const std::string& table) {
  const std::string begin = "[" + table + "].";
  return {table, "SAMPID",
          "EXISTS (SELECT [CSSAMP].[SAMPID] FROM [CSSAMP] WHERE [CSSAMP].[SAMPID] = " + begin +
              "[SAMPID] AND NOT EXISTS (SELECT [CSCINP].[CHRTID] FROM [CSCINP] WHERE [CSCINP].[PROFID] = "
              "[CSSAMP].[PROFID] AND [CSCINP].[CHRTID] = " +
              begin + "[CHRTID]))"};
}

}  // namespace

std::vector<Check> sample_checks() {
  return {
      {"sample-without-profile",
       Severity::error,
       "The sample's profile does not exist or is null, so nobody can read the sample.",
       "Set PROFID to the profile it was taken on.",
       {without_parent("CSSAMP", "SAMPID", "PROFID", "CSPROF", "PROFID"), {"CSSAMP", "SAMPID", "[PROFID] IS NULL"}}},
      {"sample-without-approval",
       Severity::error,
       "The sample has no approval row: it was saved in part, or written by a program that forgot it.",
       "Add a row of CSSPAPPR with its SAMPID, zeros, the user and the moment in UTC, or import the sample again.",
       {{"CSSAMP", "SAMPID",
         "NOT EXISTS (SELECT [CSSPAPPR].[SAMPID] FROM [CSSPAPPR] WHERE [CSSPAPPR].[SAMPID] = [CSSAMP].[SAMPID])"}}},
      {"approval-without-sample",
       Severity::error,
       "An approval row belongs to no sample: the next sample that gets this id counts as looked at.",
       "Delete the row.",
       {without_parent("CSSPAPPR", "SAMPID", "CSSAMP")}},
      {"sample-approval-half-done",
       Severity::warning,
       "The sample's approval row lacks a state, a flag or the moment of its last change.",
       "Set ASTAT, CSTAT, FLG1 and FLG2 to 0 where they are null, and MTIME to the moment of the change in UTC.",
       {{"CSSPAPPR", "SAMPID",
         "[ASTAT] IS NULL OR [CSTAT] IS NULL OR [FLG1] IS NULL OR [FLG2] IS NULL OR [MTIME] IS NULL"}}},
      {"sample-without-time",
       Severity::error,
       "The sample's date is null, so that it has no place in time.",
       "Set CTIME to the local time at which it was taken.",
       {{"CSSAMP", "SAMPID", "[CTIME] IS NULL"}}},
      {"sample-revision-not-positive",
       Severity::warning,
       "The sample names the revision 0 or below of its profile, which there never is; no revision is null.",
       "Set PROFREV to null.",
       {{"CSSAMP", "SAMPID", "[PROFREV] < 1"}}},
      {"value-without-sample",
       Severity::error,
       "Values belong to no sample: nobody sees them, and the next sample that gets this id has them.",
       "Save them if they matter, then delete the rows.",
       {without_parent("CSVDAT", "SAMPID", "CSSAMP"), without_parent("CSDEFDAT", "SAMPID", "CSSAMP"),
        without_parent("CSDEFTOT", "SAMPID", "CSSAMP"), without_parent("CSLDAT", "SAMPID", "CSSAMP")}},
      {"value-without-characteristic",
       Severity::error,
       "Values belong to a characteristic that does not exist, so nobody sees them.",
       "Enter the characteristic again under its id, or delete the rows.",
       {without_parent("CSVDAT", "CHRTID", "CSCHRT"), without_parent("CSDEFDAT", "CHRTID", "CSCHRT"),
        without_parent("CSDEFTOT", "CHRTID", "CSCHRT"), without_parent("CSLDAT", "CHRTID", "CSCHRT")}},
      {"value-without-label",
       Severity::error,
       "Values belong to a label that does not exist, so nobody sees them.",
       "Enter the label again under its id, or delete the rows.",
       {without_parent("CSLDAT", "LABELID", "CSLABEL")}},
      {"value-outside-profile",
       Severity::note,
       "Values belong to a characteristic that the sample's profile no longer has: they are kept, and not shown.",
       "Nothing needs to be done, unless the characteristic left the profile by mistake: then add it again.",
       {outside_profile("CSVDAT"), outside_profile("CSDEFDAT"), outside_profile("CSDEFTOT")}},
      {"piece-not-positive",
       Severity::error,
       "Values have the piece number 0 or below. Pieces count from 1, and values of other pieces are never shown.",
       "Give them the number of their piece, or delete the rows.",
       {{"CSVDAT", "SAMPID", "[PIECENO] < 1"},
        {"CSDEFDAT", "SAMPID", "[PIECENO] < 1"},
        {"CSLDAT", "SAMPID", "[PIECENO] < 1"}}},
      {"total-not-positive",
       Severity::warning,
       "A total counts fewer than one failure or none at all. Without failures there is no row.",
       "Delete the row, or set NFAIL.",
       {{"CSDEFTOT", "SAMPID", "[NFAIL] IS NULL OR [NFAIL] < 1"}}},
  };
}

}  // namespace spc::doctor
