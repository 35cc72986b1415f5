// What is wrong in profiles, what they are made of, and what is stored beside them and beside monitors.
#include "tools/spc/doctor/check.h"

namespace spc::doctor {
namespace {

/// The object's own summary of its approval: a revision number and a level, both or neither.
Query half_summary(const std::string& table, const std::string& id) {
  return {table, id, "([AREV] IS NULL AND [ALEVEL] IS NOT NULL) OR ([AREV] IS NOT NULL AND [ALEVEL] IS NULL)"};
}

}  // namespace

std::vector<Check> profile_checks() {
  return {
      {"element-without-profile",
       Severity::error,
       "A characteristic or label is an entry of a profile that does not exist: the next profile that gets this id has "
       "it.",
       "Delete the rows.",
       {without_parent("CSCINP", "PROFID", "CSPROF"), without_parent("CSLINP", "PROFID", "CSPROF")}},
      {"element-missing",
       Severity::error,
       "A profile has an entry whose characteristic or label does not exist: the column is missing from its grids.",
       "Delete the rows, or enter the characteristic or label again under its id.",
       {without_parent("CSCINP", "CHRTID", "CSCHRT"), without_parent("CSLINP", "LABELID", "CSLABEL")}},
      {"auto-flag-missing",
       Severity::error,
       "An entry's ALFLG is null, and not YES or NO: the label is neither a column nor filled in by the system.",
       "Set ALFLG to NO for a column, to YES for a value that the system supplies.",
       {{"CSLINP", "LABELID", "[ALFLG] IS NULL"}}},
      {"characteristic-type-unknown",
       Severity::error,
       "The characteristic's type is neither VARIABLE nor ATTRIBUTE: its cells are written, and never read back.",
       "Set CTYPE to VARIABLE for measured numbers, to ATTRIBUTE for defects.",
       {{"CSCHRT", "CHRTID", "[VFLG] IS NULL AND ([CTYPE] IS NULL OR [CTYPE] NOT IN ('VARIABLE', 'ATTRIBUTE'))"}}},
      {"label-type-unknown",
       Severity::error,
       "The label's type is neither SAMPLE nor PIECE: no sample of a profile with this label can be saved.",
       "Set LTYPE to SAMPLE for one value of a sample, to PIECE for one of each piece, in capitals.",
       {{"CSLABEL", "LABELID",
         "[VFLG] IS NULL AND ([LTYPE] IS NULL OR [LTYPE] NOT IN ('SAMPLE', 'PIECE', 'Sample', 'Piece', 'sample', "
         "'piece'))"}}},
      {"value-link-without-row",
       Severity::warning,
       "A label's list has a value that does not exist, or a value is in the list of no label: it is never offered.",
       "Delete the rows.",
       {without_parent("CSVINL", "LABELID", "CSLABEL"), without_parent("CSVINL", "VALUEID", "CSVALUE")}},
      {"payload-without-object",
       Severity::error,
       "Data are stored for a monitor or profile that does not exist: the next one that gets this id has them.",
       "Save them if they matter (spc payload get), then delete the rows.",
       {without_parent("CSMOPB", "MONID", "CSMON"), without_parent("CSMEXT", "MONID", "CSMON"),
        without_parent("CSPOPB", "PROFID", "CSPROF")}},
      {"payload-null",
       Severity::note,
       "The row of a monitor's or profile's data holds none. It reads as no data; whoever saves none deletes the row.",
       "Nothing needs to be done; spc payload delete removes the row.",
       {{"CSMOPB", "MONID", "[OPTVAL] IS NULL"},
        {"CSMEXT", "MONID", "[DATA] IS NULL"},
        {"CSPOPB", "PROFID", "[OPTVAL] IS NULL"}}},
      {"object-approval-half-done",
       Severity::warning,
       "The object's own summary of its approval has a revision without a level, or a level without a revision.",
       "See its revisions (spc rev list), and set AREV and ALEVEL to those of the approved one, or both to null.",
       {half_summary("CSMON", "MONID"), half_summary("CSPROF", "PROFID"), half_summary("CSCHRT", "CHRTID"),
        half_summary("CSLABEL", "LABELID"), half_summary("CSDOC", "DOCID"), half_summary("CSPSQ", "PSQID"),
        half_summary("CSTS", "TSID"), half_summary("CSDASH", "DASHID")}},
  };
}

}  // namespace spc::doctor
